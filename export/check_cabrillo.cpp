#include "export/check_cabrillo.h"

#include "core/vb_text.h"
#include "export/export_common.h"

#include <QTime>
#include <array>

namespace kolibrino::exporting {
namespace {

const QString kCrLf = QStringLiteral("\r\n");

const std::array<const char*, 9> kCategories = {
    "HIGH-POWER SSB", "LOW-POWER SSB",       "HIGH-POWER MIX",     "LOW-POWER MIX",     "HIGH-POWER CW",
    "LOW-POWER CW",   "HIGH-POWER NEWCOMER", "LOW-POWER NEWCOMER", "STAATSFUNKSTELLEN",
};

QString Message(const QString& detail) {
    QString m = QStringLiteral("Die Datei ist kein gültiges Cabrillo-Log!\n");
    if (!detail.isEmpty()) m += detail + QLatin1Char('\n');
    return m + QStringLiteral("Hochladen abgebrochen!");
}

QString Missing(const char* keyword) {
    return Message(QStringLiteral("Eintrag '%1' fehlt.").arg(QLatin1String(keyword)));
}

QString OverlayInvalid() {
    return Message(QStringLiteral("Eintrag 'CATEGORY-OVERLAY:' ungültig!\n\nErlaubte Werte,\n"
                                  "CATEGORY-OVERLAY: OM\nCATEGORY-OVERLAY: YL"));
}

QString CategoryInvalid() {
    QString d = QStringLiteral("Eintrag 'CATEGORY:' ungültig!\n\nErlaubte Werte,");
    for (const char* c : kCategories)
        d += QStringLiteral("\nCATEGORY: ") + QLatin1String(c);
    return Message(d);
}

QString QsoInvalid(const char* what) {
    return Message(QStringLiteral("Eintrag %1 bei den QSOs ist ungültig.").arg(QString::fromUtf8(what)));
}

// The value behind the keyword at pos up to the next CR LF, trimmed; without a CR LF
// the value is empty.
QString ValueAt(const QString& text, qsizetype pos, qsizetype keywordLength) {
    const qsizetype start = pos + keywordLength;
    const qsizetype end = text.indexOf(kCrLf, start);
    if (end < 0) return {};
    return TrimBlanks(text.mid(start, end - start));
}

// Takes the first field off rest: up to the first blank; the rest is trimmed.
QString TakeField(QString& rest) {
    const qsizetype blank = rest.indexOf(QLatin1Char(' '));
    QString field;
    if (blank < 0) {
        field = rest;
        rest.clear();
    } else {
        field = rest.left(blank);
        rest = TrimBlanks(rest.mid(blank + 1));
    }
    return field;
}

bool ValidDate(const QString& field, const LocaleFormats& f) {
    if (QDate::fromString(field, QStringLiteral("yyyy-MM-dd")).isValid()) return true;
    return f.ParseDate(field).has_value();
}

bool ValidTime(const QString& field) {
    if (field.size() != 4) return false;
    for (QChar c : field)
        if (!c.isDigit()) return false;
    return QTime(field.left(2).toInt(), field.mid(2).toInt()).isValid();
}

} // namespace

QString CheckCabrillo(const QString& original, const LocaleFormats& formats) {
    const QString text = original.toUpper();
    if (text.size() < 5) return Message({});
    if (!text.contains(QStringLiteral("START-OF-LOG:")))
        return Message(QStringLiteral("Kopfzeile 'START-OF-LOG:' fehlt."));
    if (!text.contains(QStringLiteral("END-OF-LOG:")))
        return Message(QStringLiteral("Logende 'END-OF-LOG:' fehlt."));

    qsizetype pos = text.indexOf(QStringLiteral("CALLSIGN:"));
    if (pos < 0) return Missing("CALLSIGN:");
    if (ValueAt(text, pos, 9).size() < 3) return Message(QStringLiteral("Rufzeichen ungültig!"));

    pos = text.indexOf(QStringLiteral("CATEGORY-OVERLAY:"));
    if (pos < 0) return Missing("CATEGORY-OVERLAY:");
    const QString overlay = ValueAt(text, pos, 17);
    if (overlay != QLatin1String("OM") && overlay != QLatin1String("YL")) return OverlayInvalid();

    pos = text.indexOf(QStringLiteral("CATEGORY:"));
    if (pos < 0) return Missing("CATEGORY:");
    const QString category = ValueAt(text, pos, 9);
    bool known = false;
    for (const char* c : kCategories)
        known = known || category == QLatin1String(c);
    if (!known) return CategoryInvalid();

    pos = text.indexOf(QStringLiteral("LOCATION:"));
    if (pos < 0) return Missing("LOCATION:");
    if (ValueAt(text, pos, 9).size() != 2) return Message(QStringLiteral("Bezirk ungültig!"));

    pos = text.indexOf(QStringLiteral("QSO:"));
    if (pos < 0) return Missing("QSO:");
    for (int n = 0; n < 20 && pos >= 0; ++n) {
        QString rest = ValueAt(text, pos, 4);
        const QString freq = TakeField(rest);
        if (!IsNumericText(freq)) return QsoInvalid("Frequenz");
        const QString mode = TakeField(rest);
        if (mode != QLatin1String("PH") && mode != QLatin1String("CW")) return QsoInvalid("Mode");
        if (!ValidDate(TakeField(rest), formats)) return QsoInvalid("Datum");
        if (!ValidTime(TakeField(rest))) return QsoInvalid("Zeit");
        const std::optional<double> period = NumericValue(TakeField(rest));
        if (!period || (*period != 1 && *period != 2)) return QsoInvalid("Vormittag/Nachmittag");
        const qsizetype lineEnd = text.indexOf(kCrLf, pos + 4);
        pos = lineEnd < 0 ? -1 : text.indexOf(QStringLiteral("QSO:"), lineEnd);
    }
    return {};
}

QStringList CheckCabrilloMessages() {
    QStringList all{Message({}),
                    Message(QStringLiteral("Kopfzeile 'START-OF-LOG:' fehlt.")),
                    Message(QStringLiteral("Logende 'END-OF-LOG:' fehlt.")),
                    Missing("CALLSIGN:"),
                    Message(QStringLiteral("Rufzeichen ungültig!")),
                    Missing("CATEGORY-OVERLAY:"),
                    OverlayInvalid(),
                    Missing("CATEGORY:"),
                    CategoryInvalid(),
                    Missing("LOCATION:"),
                    Message(QStringLiteral("Bezirk ungültig!")),
                    Missing("QSO:")};
    for (const char* w : {"Frequenz", "Mode", "Datum", "Zeit", "Vormittag/Nachmittag"})
        all << QsoInvalid(w);
    return all;
}

} // namespace kolibrino::exporting
