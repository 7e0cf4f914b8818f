#include "corrections/bulk_change.h"

#include "core/atomic_file.h"
#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/storable_text.h"
#include "core/tallies.h"
#include "core/vb_text.h"

namespace kolibrino::corrections {
namespace {

struct KindDef {
    const char* caption;
    const char* label;
    const char* second;
};

const KindDef kKinds[6] = {
    {"&Stunden", "Stunden", "+/-"},    {"&Minuten", "Minuten", "+/-"}, {"&Datum", "Jahr", ""},
    {"O&P-Call", "Operator-Call", ""}, {"&Band", "Band", ""},          {"M&ode", "Mode", ""},
};

bool InRange(int kind) {
    return kind >= 0 && kind < 6;
}

} // namespace

QString BulkOptionCaption(int kind) {
    return InRange(kind) ? QString::fromUtf8(kKinds[kind].caption) : QString();
}
QString BulkLabel(int kind) {
    return InRange(kind) ? QString::fromUtf8(kKinds[kind].label) : QString();
}
QString BulkSecondLabel(int kind) {
    return InRange(kind) ? QString::fromUtf8(kKinds[kind].second) : QString();
}

QStringList BulkValues(int kind, const QStringList& opCalls) {
    switch (kind) {
    case BulkKind::Stunden:
    case BulkKind::Minuten:
        return {QStringLiteral("0")};
    case BulkKind::OpCall:
        return opCalls;
    case BulkKind::Band:
        return {QStringLiteral("40m"), QStringLiteral("80m"), QStringLiteral("30m")};
    case BulkKind::Mode:
        return {QStringLiteral("SSB"), QStringLiteral("CW")};
    default:
        return {};
    }
}

QString DateLabelText(const Model& m, const QString& yearText) {
    const auto d = m.Formats.ParseDate(QStringLiteral("1.5.") + yearText);
    if (!d || yearText.isEmpty()) return QStringLiteral("ungültig");
    return m.Formats.RecordDate(*d);
}

std::optional<BulkFailure> ApplyBulkChange(const Model& m, std::vector<QsoRecord>& copy, int kind,
                                           const QString& value, const QString& label2, int first, int last) {
    const QString v = TrimBlanks(value).toUpper();
    first = std::max(first, 0);
    last = std::min(last, int(copy.size()) - 1);
    int number = 0;
    if (kind <= BulkKind::Datum) {
        const auto n = NumericValue(v);
        if (!n || *n == 0) return BulkFailure{QStringLiteral("Zahl ungültig!"), Msg::Information};
        number = int(*n);
    }
    switch (kind) {
    case BulkKind::Stunden:
    case BulkKind::Minuten: {
        const int limit = kind == BulkKind::Stunden ? 24 : 60;
        if (number < -limit || number > limit)
            return BulkFailure{QStringLiteral("Es sind nur Zahlen von -%1 bis %1 möglich!").arg(limit)};
        const int secs = number * (kind == BulkKind::Stunden ? 3600 : 60);
        for (int i = first; i <= last; ++i) {
            QsoRecord& r = copy[size_t(i)];
            if (const auto t = m.Formats.ParseTime(r.Zeit)) r.Zeit = m.Formats.RecordTime(t->addSecs(secs));
        }
        return std::nullopt;
    }
    case BulkKind::Datum: {
        if (number < 1900 || number > 3000)
            return BulkFailure{QStringLiteral("Es sind nur Zahlen von 1900 bis 3000 möglich!")};
        const auto d = m.Formats.ParseDate(label2);
        if (!d) return BulkFailure{QStringLiteral("Das angegebene Datum ist ungültig!")};
        const QString datum = m.Formats.RecordDate(*d);
        for (int i = first; i <= last; ++i)
            copy[size_t(i)].Datum = datum;
        return std::nullopt;
    }
    case BulkKind::OpCall: {
        if (v.size() < 4) return BulkFailure{QStringLiteral("Rufzeichen zu kurz!")};
        // The text gate: a call the file cannot hold as it stands is refused, never cut.
        const GatedText op = GateText(TextField::Operator, v);
        if (!op.Ok()) return BulkFailure{op.problem};
        for (int i = first; i <= last; ++i)
            copy[size_t(i)].Operator = op.text;
        return std::nullopt;
    }
    case BulkKind::Band: {
        if (v != QLatin1String("80M") && v != QLatin1String("40M") && v != QLatin1String("30M"))
            return BulkFailure{QStringLiteral("Band ungültig!\n\nEs ist nur 40m, 80m oder 30m möglich!")};
        // The frequency table is keyed by the lower-case names and never matches the
        // capitalised value: every changed record gets frequency 0.
        const int band = ToInt16(LeadingNumber(v));
        for (int i = first; i <= last; ++i) {
            copy[size_t(i)].Band = band;
            copy[size_t(i)].Frequenz = 0;
        }
        return std::nullopt;
    }
    case BulkKind::Mode:
        if (v != QLatin1String("CW") && v != QLatin1String("SSB"))
            return BulkFailure{QStringLiteral("Mode ungültig!\n\nEs ist nur SSB oder CW möglich!")};
        for (int i = first; i <= last; ++i) {
            copy[size_t(i)].Mode = v;
            copy[size_t(i)].ModeRx = v;
        }
        return std::nullopt;
    default:
        return BulkFailure{QStringLiteral("Bitte einen gültigen Wert eingeben!"), Msg::Information};
    }
}

QString ReadBackFailureText(const QString& fileName) {
    return QStringLiteral(
               "Die Datei\n%1\nist fehlerhaft oder keine gültige Kolibrino Logdatei!\n\nKolibrino muss "
               "beendet werden.")
        .arg(fileName);
}

BulkSave SaveBulkChange(Model& m, Dialogs& dialogs, const std::vector<QsoRecord>& copy, int year) {
    std::vector<QsoRecord> old = copy;
    old.swap(m.LogRecords);
    const QString oldText = m.LogText;
    BuildLogText(m, false, year);
    if (!RunTrapped(dialogs, [&m] { return WriteLogFile(m); })) {
        m.LogRecords.swap(old);
        m.LogText = oldText;
        return BulkSave::WriteCancelled;
    }
    ResetTallies(m);
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(CurrentLogPath(m), &ok);
    if (!ok || !ParseLog(m, bytes)) {
        dialogs.MsgBox(ReadBackFailureText(m.CurrentLogName), Msg::Critical);
        return BulkSave::ReadBackFailed;
    }
    return BulkSave::Saved;
}

} // namespace kolibrino::corrections
