#include "core/settings.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"

#include <QFile>

namespace kolibrino {
namespace {

QString g_defaultIni;
std::function<void()> g_beep;

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

Profile ReadProfile(const QString& path) {
    Profile p;
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(path, &ok);
    if (!ok) return p;
    p.existed = true;
    QString text = FromCp1252(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    p.lines = text.split(QLatin1Char('\n'));
    if (!p.lines.isEmpty() && p.lines.last().isEmpty()) p.lines.removeLast();
    return p;
}

void WriteProfile(const QString& path, const QStringList& lines) {
    QString text;
    for (const QString& l : lines)
        text += l + QStringLiteral("\r\n");
    WriteFileAtomic(path, ToCp1252(text)); // failures are not reported, as ever
}

// Name of a section header line, or the null text when the line is none.
QString SectionName(const QString& line) {
    const QString t = line.trimmed();
    if (!t.startsWith(QLatin1Char('['))) return {};
    const qsizetype close = t.indexOf(QLatin1Char(']'));
    if (close < 0) return {};
    return t.mid(1, close - 1).trimmed();
}

bool SameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
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

} // namespace

void SetDefaultIniPath(const QString& path) {
    g_defaultIni = path;
}
QString DefaultIniPath() {
    return g_defaultIni;
}
void SetIniBeepHandler(std::function<void()> beep) {
    g_beep = std::move(beep);
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
    const Profile p = ReadProfile(path);
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) return {};
    for (qsizetype i = b + 1; i < e; ++i) {
        QString k, v;
        if (SplitKey(p.lines[i], &k, &v) && SameName(k, key)) return v;
    }
    return {};
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
    Profile p = ReadProfile(path);
    const QString line = key + QLatin1Char('=') + value;
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) {
        p.lines << QLatin1Char('[') + section.toUpper() + QLatin1Char(']') << line;
        WriteProfile(path, p.lines);
        return;
    }
    for (qsizetype i = b + 1; i < e; ++i) {
        QString k, v;
        if (SplitKey(p.lines[i], &k, &v) && SameName(k, key)) {
            p.lines[i] = line;
            WriteProfile(path, p.lines);
            return;
        }
    }
    p.lines.insert(InsertPoint(p.lines, b, e), line);
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
    const Profile p = ReadProfile(path);
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) return;
    QStringList found;
    for (qsizetype i = b + 1; i < e; ++i) {
        const QString t = p.lines[i].trimmed();
        if (!t.isEmpty()) found << t;
    }
    if (!found.isEmpty()) list = found;
}

void IniWriteSection(const QString& file, const QString& section, const QStringList& lines) {
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty()) {
        Beep();
        return;
    }
    Profile p = ReadProfile(path);
    QStringList body;
    for (const QString& l : lines)
        if (!l.trimmed().isEmpty()) body << l.trimmed();
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) {
        p.lines << QLatin1Char('[') + section.toUpper() + QLatin1Char(']');
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
    const QString path = Resolve(file);
    if (path.isEmpty() || section.isEmpty()) {
        Beep();
        return;
    }
    Profile p = ReadProfile(path);
    qsizetype b = 0, e = 0;
    if (!FindSection(p.lines, section, &b, &e)) return;
    p.lines.remove(b, e - b);
    WriteProfile(path, p.lines);
}

} // namespace kolibrino
