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

namespace {

// Why a counting line is no entry; empty when entry has been filled.
QString EntryProblem(const QString& line, UpdateEntry& entry) {
    const QStringList f = line.split(QLatin1Char('|'));
    if (f.size() < 5) return QStringLiteral("Die Zeile hat weniger als fünf Felder.");
    UpdateEntry e;
    e.Name = f[0];
    if (e.Name.trimmed().isEmpty()) return QStringLiteral("Der Dateiname fehlt.");
    if (!ParseCount(f[1], e.Version)) return QStringLiteral("Die Version ist keine ganze Zahl.");
    e.Datum = f[2];
    if (!ParseCount(f[3], e.Size)) return QStringLiteral("Die Größe ist keine ganze Zahl.");
    if (!IsMd5(f[4])) return QStringLiteral("Die Prüfsumme (MD5) hat nicht 32 Hexadezimalziffern.");
    e.Md5 = f[4].trimmed();
    if (f.size() > 5) e.Info = f.mid(5).join(QLatin1Char('|'));
    const QString name = RefusedNameReason(e.Name);
    if (!name.isEmpty()) return name;
    entry = e;
    return {};
}

bool IsControl(QChar c) {
    return c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0);
}

QString Visible(const QString& line) {
    QString out;
    for (QChar c : line)
        out += IsControl(c) ? QStringLiteral("<0x%1>").arg(c.unicode(), 2, 16, QLatin1Char('0')) : QString(c);
    return out;
}

} // namespace

QStringList UpdatableFiles() {
    return {QStringLiteral("bez_koord.txt"), QStringLiteral("BZ_Karte.gif"), QStringLiteral("KOLBOHilfe.pdf"),
            QStringLiteral("OeCallList.txt"), QString::fromLatin1(kProgramUpdateName)};
}

QString RefusedNameReason(const QString& raw) {
    const QString name = raw.trimmed();
    for (QChar c : name)
        if (IsControl(c)) return QStringLiteral("Der Dateiname enthält ein Steuerzeichen.");
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return QStringLiteral("Der Dateiname enthält einen Ordner (\"/\" oder \"\\\").");
    if (name.contains(QStringLiteral(".."))) return QStringLiteral("Der Dateiname enthält \"..\".");
    if (name.startsWith(QLatin1Char('.'))) return QStringLiteral("Der Dateiname beginnt mit einem Punkt.");
    for (const QString& allowed : UpdatableFiles())
        if (name.compare(allowed, Qt::CaseInsensitive) == 0) return {};
    return QStringLiteral("%1 gehört nicht zu den Dateien, die ein Update ersetzen darf.").arg(name);
}

QString DataFileName(const QString& raw) {
    const QString name = raw.trimmed();
    for (const QString& allowed : UpdatableFiles())
        if (name.compare(allowed, Qt::CaseInsensitive) == 0 && allowed != QLatin1String(kProgramUpdateName))
            return allowed;
    return name;
}

QString RefusedLineReason(const QString& line) {
    UpdateEntry e;
    return EntryProblem(line, e);
}

bool ParseListLine(const QString& line, UpdateEntry& entry) {
    if (!IsListLine(line)) return false;
    return EntryProblem(line, entry).isEmpty();
}

std::vector<UpdateEntry> ParseUpdateList(const QString& text, std::vector<RefusedLine>& refused) {
    std::vector<UpdateEntry> out;
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\n|\r"));
    int number = 0;
    for (const QString& line : text.split(lineEnd)) {
        ++number;
        if (!IsListLine(line)) continue;
        UpdateEntry e;
        const QString problem = EntryProblem(line, e);
        if (problem.isEmpty())
            out.push_back(std::move(e));
        else
            refused.push_back({number, Visible(line), problem});
    }
    return out;
}

std::vector<UpdateEntry> ParseUpdateList(const QString& text) {
    std::vector<RefusedLine> refused;
    return ParseUpdateList(text, refused);
}

QString RefusedLinesText(const std::vector<RefusedLine>& refused) {
    QString text = QStringLiteral("Diese Zeilen der Update-Liste werden nicht verwendet:");
    for (const RefusedLine& r : refused)
        text += QStringLiteral("\r\n\r\nZeile %1: %2\r\n%3").arg(r.number).arg(r.text, r.reason);
    return text;
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
    const QString name = e.Name.trimmed().toUpper();
    return name == executableName.toUpper() + QStringLiteral(".BIN") ||
           name == QString::fromLatin1(kProgramUpdateName).toUpper();
}

} // namespace kolibrino::upkeep
