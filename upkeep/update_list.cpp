#include "upkeep/update_list.h"

#include "core/log_model.h"
#include "core/settings.h"

#include <QRegularExpression>
#include <limits>

namespace kolibrino::upkeep {
namespace {

// A whole number from 0 to the 32-bit maximum, optionally framed by blanks.
bool ParseCount(const QString& field, int& out) {
    const QString t = field.trimmed();
    if (t.isEmpty() || t.size() > 10) return false;
    qint64 v = 0;
    for (QChar c : t) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return false;
        v = v * 10 + (c.unicode() - '0');
    }
    if (v > std::numeric_limits<int>::max()) return false;
    out = int(v);
    return true;
}

bool IsMd5(const QString& field) {
    const QString t = field.trimmed();
    if (t.size() != 32) return false;
    for (QChar c : t)
        if (!c.isDigit() && !(c.toLower() >= QLatin1Char('a') && c.toLower() <= QLatin1Char('f')))
            return false;
    return true;
}

} // namespace

bool IsListLine(const QString& line) {
    const QString t = line.trimmed();
    if (t.size() <= 10) return false;
    const QChar first = t.at(0);
    return first != QLatin1Char(';') && first != QLatin1Char(':') && first != QLatin1Char('\'');
}

bool ParseListLine(const QString& line, UpdateEntry& entry) {
    if (!IsListLine(line)) return false;
    const QStringList f = line.split(QLatin1Char('|'));
    if (f.size() < 5) return false;
    UpdateEntry e;
    e.Name = f[0];
    if (e.Name.trimmed().isEmpty()) return false;
    if (!ParseCount(f[1], e.Version)) return false;
    e.Datum = f[2];
    if (!ParseCount(f[3], e.Size)) return false;
    if (!IsMd5(f[4])) return false;
    e.Md5 = f[4].trimmed();
    if (f.size() > 5) e.Info = f.mid(5).join(QLatin1Char('|'));
    entry = e;
    return true;
}

std::vector<UpdateEntry> ParseUpdateList(const QString& text) {
    std::vector<UpdateEntry> out;
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\n|\r"));
    for (const QString& line : text.split(lineEnd)) {
        UpdateEntry e;
        if (ParseListLine(line, e)) out.push_back(std::move(e));
    }
    return out;
}

int InstalledVersion(const QString& iniFile, const QString& name) {
    const double v = IniReadInt(iniFile, name.trimmed().toUpper(), QStringLiteral("Version"));
    if (v < 0 || v > std::numeric_limits<int>::max()) return 0;
    return int(v);
}

void NoteInstalledVersion(const QString& iniFile, const QString& name, int version) {
    IniWrite(iniFile, name.trimmed(), QStringLiteral("Version"), version);
}

std::vector<int> OfferedEntries(const std::vector<UpdateEntry>& entries, const QString& iniFile) {
    std::vector<int> offered;
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i].Version > InstalledVersion(iniFile, entries[i].Name)) offered.push_back(int(i));
    return offered;
}

QString SizeText(int size, const QLocale& locale) {
    QLocale l = locale;
    l.setNumberOptions(QLocale::OmitGroupSeparator);
    if (size < 1000) return QString::number(size) + QStringLiteral(" Bytes");
    if (size >= 1000000) return l.toString(size / 1000000.0, 'f', 2) + QStringLiteral(" MB");
    return l.toString(size / 1000.0, 'f', 2) + QStringLiteral(" KB");
}

QString DateText(const QString& digits, QChar separator) {
    return digits.left(2) + separator + digits.mid(2, 2) + separator + digits.mid(4);
}

QString EntryCaption(const UpdateEntry& e, const QLocale& locale, QChar dateSeparator) {
    QStringList lines;
    lines << QStringLiteral("Datei:   ") + e.Name.trimmed();
    lines << QStringLiteral("Version:   ") + QString::number(e.Version);
    lines << QStringLiteral("Größe:   ") + QString::number(e.Size) + QStringLiteral(" Bytes (") +
                 SizeText(e.Size, locale) + QLatin1Char(')');
    lines << QStringLiteral("Datum:   ") + DateText(e.Datum, dateSeparator);
    lines << QStringLiteral("Info:   ") + e.Info;
    return lines.join(QLatin1Char('\n'));
}

QString EntryLine(const UpdateEntry& e) {
    return QStringLiteral("%1 %2 %3").arg(e.Name.trimmed()).arg(e.Version).arg(e.Size);
}

int RunningVersionNumber() {
    return ProgramVersionNumber();
}

bool IsProgramEntry(const UpdateEntry& e, const QString& executableName) {
    return e.Name.trimmed().toUpper() == executableName.toUpper() + QStringLiteral(".BIN");
}

} // namespace kolibrino::upkeep
