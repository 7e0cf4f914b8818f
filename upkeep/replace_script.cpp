#include "upkeep/replace_script.h"

#include "core/atomic_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryFile>

namespace kolibrino::upkeep {

QByteArray ShellQuote(const QByteArray& bytes) {
    QByteArray out = "'";
    for (char c : bytes) {
        if (c == '\'')
            out += "'\\''";
        else
            out += c;
    }
    out += '\'';
    return out;
}

QByteArray ReplacementScript(const QString& source, const QString& target, qint64 pid, int mode,
                             const QString& scriptPath) {
    const QByteArray src = ShellQuote(QFile::encodeName(source));
    const QByteArray tgt = ShellQuote(QFile::encodeName(target));
    const QByteArray self = ShellQuote(QFile::encodeName(scriptPath));
    QByteArray s;
    s += "#!/bin/sh\n";
    s += "# Kolibrino: puts a new program in place after an update, then deletes itself.\n";
    s += "pid=" + QByteArray::number(pid) + "\n";
    s += "source=" + src + "\n";
    s += "target=" + tgt + "\n";
    s += "script=" + self + "\n";
    s += "if [ -f \"$source\" ]; then\n";
    s += "  while kill -0 \"$pid\" 2>/dev/null; do sleep 0.1; done\n";
    s += "  new=\"$target.neu.$$\"\n";
    s += "  if cp -- \"$source\" \"$new\" 2>/dev/null && chmod " +
         QByteArray::number(mode, 8).rightJustified(4, '0') +
         " \"$new\" && mv -f -- \"$new\" \"$target\"; then :; else rm -f -- \"$new\"; fi\n";
    s += "  rm -f -- \"$source\"\n";
    s += "fi\n";
    s += "\"$target\" </dev/null >/dev/null 2>&1 &\n";
    s += "rm -f -- \"$script\"\n";
    return s;
}

QString ReplacementScriptPath(const QString& source) {
    return source + QStringLiteral(".sh");
}

namespace {
int ModeOf(const QString& path) {
    const QFileInfo fi(path);
    if (!fi.exists()) return 0755;
    const QFile::Permissions p = fi.permissions();
    int mode = 0;
    if (p & QFile::ReadOwner) mode |= 0400;
    if (p & QFile::WriteOwner) mode |= 0200;
    if (p & QFile::ExeOwner) mode |= 0100;
    if (p & QFile::ReadGroup) mode |= 040;
    if (p & QFile::WriteGroup) mode |= 020;
    if (p & QFile::ExeGroup) mode |= 010;
    if (p & QFile::ReadOther) mode |= 04;
    if (p & QFile::WriteOther) mode |= 02;
    if (p & QFile::ExeOther) mode |= 01;
    // The owner can always write and run the new program, whatever the old one allowed.
    return mode | 0300;
}
} // namespace

QString WriteReplacementScript(const QString& source, const QString& target, qint64 pid) {
    const QString path = ReplacementScriptPath(source);
    const QString error = WriteFileAtomic(path, ReplacementScript(source, target, pid, ModeOf(target), path));
    if (!error.isEmpty()) return error;
    if (!QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        return QStringLiteral(
                   "Das Skript zum Ersetzen des Programms kann nicht ausführbar gemacht werden:\n") +
               path;
    return {};
}

bool StartReplacementScript(const QString& scriptPath) {
    return QProcess::startDetached(QStringLiteral("/bin/sh"), {scriptPath});
}

QString ExecutablePath() {
    const QString path = QCoreApplication::applicationFilePath();
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

bool FolderWritable(const QString& folder) {
    QTemporaryFile probe(folder + QStringLiteral("/.kolibrino-probe-XXXXXX"));
    return probe.open();
}

} // namespace kolibrino::upkeep
