#include "core/settings.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kolibrino {
namespace {

QString g_defaultIni;
std::function<void()> g_beep;
std::function<void(const QString&)> g_refused;
bool g_refusedTold = false;

void Beep() {
    if (g_beep) g_beep();
}

QString Resolve(const QString& file) {
    return file.isEmpty() ? g_defaultIni : file;
}

// The file as lines, line ends removed.
struct Profile {
    QStringList lines;
    bool existed = false;
};

Profile ParseProfile(const QByteArray& bytes) {
    Profile p;
    p.existed = true;
    QString text = FromCp1252(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    p.lines = text.split(QLatin1Char('\n'));
    if (!p.lines.isEmpty() && p.lines.last().isEmpty()) p.lines.removeLast();
    return p;
}

Profile ReadProfile(const QString& path) {
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(path, &ok);
    if (!ok) return {};
    return ParseProfile(bytes);
}

// The profile a write starts from. False when the file is there but cannot be read:
// writing then would replace every setting with the one key, so the write is refused
// and the operator told, once.
bool ReadForWrite(const QString& path, Profile* p) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        *p = Profile();
        return true;
    }
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(path, &ok);
    if (ok) {
        *p = ParseProfile(bytes);
        return true;
    }
    if (!g_refusedTold && g_refused) {
        g_refusedTold = true;
        g_refused(IniWriteRefusedText(path));
    }
    return false;
}

QByteArray ProfileBytes(const QStringList& lines) {
    QString text;
    for (const QString& l : lines)
        text += l + QStringLiteral("\r\n");
    return ToCp1252(text);
}

void WriteProfile(const QString& path, const QStringList& lines) {
    // A setting that does not reach the disk is told once, with its cause; the program
    // goes on with the value in memory.
    const QString error = WriteFileAtomic(path, ProfileBytes(lines));
    if (error.isEmpty() || g_refusedTold || !g_refused) return;
    g_refusedTold = true;
    g_refused(QStringLiteral("Die Einstellungen können nicht gespeichert werden!\r\n\r\n%1").arg(error));
}

// Name of a section header line, or the null text when the line is none. The name
// runs to the last "]", so a name that holds one (a file of the update list, whose
// version is noted under its name) reads back as it was written.
QString SectionName(const QString& line) {
    const QString t = line.trimmed();
    if (!t.startsWith(QLatin1Char('['))) return {};
    const qsizetype close = t.lastIndexOf(QLatin1Char(']'));
    if (close < 0) return {};
    return t.mid(1, close - 1).trimmed();
}

// Names are equal when their capitals are: the rule the headers are written by, so a
// name with "ß" (whose capitals are "SS") finds the section it was written to.
bool SameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0 || a.toUpper() == b.toUpper();
}

// A section header's name in capitals, as far as the code page has them: "µ" keeps its
// form rather than turning into a Greek capital the file cannot hold.
QString HeaderName(const QString& section) {
    QString out;
    out.reserve(section.size());
    for (const QChar c : section) {
        const QString upper = QString(c).toUpper();
        out += Cp1252Clean(upper) == upper ? upper : QString(c);
    }
    return out;
}

// [begin, end) of the first section of that name: begin is the header line.
bool FindSection(const QStringList& lines, const QString& section, qsizetype* begin, qsizetype* end) {
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString name = SectionName(lines[i]);
        if (name.isNull() || !SameName(name, section)) continue;
        qsizetype j = i + 1;
        while (j < lines.size() && SectionName(lines[j]).isNull())
            ++j;
        *begin = i;
        *end = j;
        return true;
    }
    return false;
}

bool SplitKey(const QString& line, QString* key, QString* value) {
    const qsizetype eq = line.indexOf(QLatin1Char('='));
    if (eq < 0) return false;
    *key = line.left(eq).trimmed();
    *value = line.mid(eq + 1).trimmed();
    if (value->size() >= 2) {
        const QChar q = value->front();
        if ((q == u'"' || q == u'\'') && value->back() == q) *value = value->mid(1, value->size() - 2);
    }
    return true;
}

// Last line of the section that is not blank, for appending behind it.
qsizetype InsertPoint(const QStringList& lines, qsizetype begin, qsizetype end) {
    qsizetype at = end;
    while (at > begin + 1 && lines[at - 1].trimmed().isEmpty())
        --at;
    return at;
}

QString KeyValue(const Profile& p, const QString& section, const QString& key) {
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) return {};
    for (qsizetype i = b + 1; i < e; ++i) {
        QString k, v;
        if (SplitKey(p.lines[i], &k, &v) && SameName(k, key)) return v;
    }
    return {};
}

void SetKey(Profile& p, const QString& section, const QString& key, const QString& value) {
    const QString line = key + QLatin1Char('=') + value;
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) {
        p.lines << QLatin1Char('[') + HeaderName(section) + QLatin1Char(']') << line;
        return;
    }
    for (qsizetype i = b + 1; i < e; ++i) {
        QString k, v;
        if (SplitKey(p.lines[i], &k, &v) && SameName(k, key)) {
            p.lines[i] = line;
            return;
        }
    }
    p.lines.insert(InsertPoint(p.lines, b, e), line);
}

QStringList SectionLines(const Profile& p, const QString& section) {
    qsizetype b = 0, e = 0;
    QStringList found;
    if (!FindSection(p.lines, section, &b, &e)) return found;
    for (qsizetype i = b + 1; i < e; ++i) {
        const QString t = p.lines[i].trimmed();
        if (!t.isEmpty()) found << t;
    }
    return found;
}

} // namespace

QString ProfileReadString(const QByteArray& bytes, const QString& section, const QString& key) {
    return KeyValue(ParseProfile(bytes), section, key);
}

QStringList ProfileReadSection(const QByteArray& bytes, const QString& section) {
    return SectionLines(ParseProfile(bytes), section);
}

QByteArray ProfileWrite(const QByteArray& bytes, const QString& section, const QString& key,
                        const QString& value) {
    Profile p = ParseProfile(bytes);
    SetKey(p, section, key, value);
    return ProfileBytes(p.lines);
}

void SetDefaultIniPath(const QString& path) {
    g_defaultIni = path;
}
QString DefaultIniPath() {
    return g_defaultIni;
}
void SetIniBeepHandler(std::function<void()> beep) {
    g_beep = std::move(beep);
}
void SetIniWriteRefusedHandler(std::function<void(const QString&)> tell) {
    g_refused = std::move(tell);
    g_refusedTold = false;
}
QString IniWriteRefusedText(const QString& path) {
    return QStringLiteral("Die Einstellungen können nicht gespeichert werden!\r\n\r\nDie Datei\r\n%1\r\n"
                          "kann nicht gelesen werden und bleibt unverändert.")
        .arg(QDir::toNativeSeparators(path));
}

int ProfileInt(const QString& value) {
    const QString t = value.trimmed();
    qsizetype i = 0;
    bool negative = false;
    if (i < t.size() && (t[i] == u'-' || t[i] == u'+')) negative = t[i++] == u'-';
    qint64 v = 0;
    bool any = false;
    while (i < t.size() && t[i] >= u'0' && t[i] <= u'9') {
        v = v * 10 + (t[i++].unicode() - u'0');
        if (v > 0x7fffffffLL) v = 0x7fffffffLL;
        any = true;
    }
    if (!any) return 0;
    return int(negative ? -v : v);
}

QString IniReadString(const QString& file, const QString& section, const QString& key) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty() || key.isEmpty() || !QFile::exists(path)) {
        Beep();
        return {};
    }
    return KeyValue(ReadProfile(path), section, key);
}

double IniReadInt(const QString& file, const QString& section, const QString& key) {
    return ProfileInt(IniReadString(file, section, key));
}

void IniWrite(const QString& file, const QString& section, const QString& key, const QString& value) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty() || key.isEmpty()) {
        Beep();
        return;
    }
    Profile p;
    if (!ReadForWrite(path, &p)) return;
    SetKey(p, section, key, value);
    WriteProfile(path, p.lines);
}

void IniWrite(const QString& file, const QString& section, const QString& key, int value) {
    IniWrite(file, section, key, QString::number(value));
}

void IniReadSection(const QString& file, const QString& section, QStringList& list) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty() || !QFile::exists(path)) {
        Beep();
        return;
    }
    const QStringList found = SectionLines(ReadProfile(path), section);
    if (!found.isEmpty()) list = found;
}

namespace {
// The lines of a section as written: trimmed, blank ones left out.
QStringList SectionBody(const QStringList& lines) {
    QStringList body;
    for (const QString& l : lines)
        if (!l.trimmed().isEmpty()) body << l.trimmed();
    return body;
}
} // namespace

void IniWriteSection(const QString& file, const QString& section, const QStringList& lines) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty()) {
        Beep();
        return;
    }
    Profile p;
    if (!ReadForWrite(path, &p)) return;
    const QStringList body = SectionBody(lines);
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) {
        p.lines << QLatin1Char('[') + HeaderName(section) + QLatin1Char(']');
        p.lines << body;
    } else {
        const qsizetype keep = InsertPoint(p.lines, b, e);
        p.lines.remove(b + 1, keep - b - 1);
        for (qsizetype i = 0; i < body.size(); ++i)
            p.lines.insert(b + 1 + i, body[i]);
    }
    WriteProfile(path, p.lines);
}

void IniDeleteSection(const QString& file, const QString& section) {
    IniReplaceSection(file, section, {});
}

void IniReplaceSection(const QString& file, const QString& section, const QStringList& lines) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty()) {
        Beep();
        return;
    }
    Profile p;
    if (!ReadForWrite(path, &p)) return;
    bool changed = false;
    qsizetype b = 0, e = 0;
    if (FindSection(p.lines, section, &b, &e)) {
        p.lines.remove(b, e - b);
        changed = true;
    }
    if (!lines.isEmpty()) {
        p.lines << QLatin1Char('[') + HeaderName(section) + QLatin1Char(']');
        p.lines << SectionBody(lines);
        changed = true;
    }
    if (changed) WriteProfile(path, p.lines);
}

} // namespace kolibrino
