#include "entry/qso_entry.h"

#include "core/atomic_file.h"
#include "core/call_index.h"
#include "core/cp1252.h"
#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/storable_text.h"
#include "core/tallies.h"
#include "core/vb_text.h"

namespace kolibrino {
namespace {

CheckFailure Fail(int check, const QString& message, EntryFocus focus, int boxFlags = -1) {
    return CheckFailure{check, message, boxFlags, focus};
}

int BandNumber(const QString& bandText) {
    return ToInt16(LeadingNumber(TrimBlanks(bandText)));
}

} // namespace

std::optional<CheckFailure> GateEntry(const EntryFields& f) {
    const auto refused = FirstRefusedContactField<EntryFields, EntryFocus>(f);
    if (!refused) return std::nullopt;
    return Fail(0, refused->second, refused->first, Msg::Exclamation);
}

EntryFields GatedEntryFields(const EntryFields& typed) {
    EntryFields f = typed;
    f.call = FieldText(TextField::Call, typed.call);
    f.rstGesendet = FieldText(TextField::RstGesendet, typed.rstGesendet);
    f.rstEmpfangen = FieldText(TextField::RstEmpfangen, typed.rstEmpfangen);
    f.mode = FieldText(TextField::Mode, typed.mode);
    f.bezirk = FieldText(TextField::Bezirk, typed.bezirk);
    f.notiz = FieldText(TextField::Bemerkung, typed.notiz);
    f.opCall = FieldText(TextField::Operator, typed.opCall);
    return f;
}

std::optional<CheckFailure> CheckEntry(Model& m, Dialogs& dialogs, const EntryFields& typed) {
    if (auto refused = GateEntry(typed)) {
        dialogs.MsgBox(refused->message, refused->boxFlags);
        return refused;
    }
    const EntryFields f = GatedEntryFields(typed);
    const QString call = TrimBlanks(f.call);
    if (call.size() < 3) return Fail(1, kMsgRufzeichen, EntryFocus::Text3);
    if (call.left(4) == QLatin1String("OEOE")) return Fail(2, kMsgRufzeichen, EntryFocus::Text3);
    if (TrimBlanks(f.band).size() < 2) return Fail(3, kMsgBand, EntryFocus::Combo1);
    if (TrimBlanks(f.mode).size() < 2) return Fail(4, kMsgMode, EntryFocus::Combo2);
    if (TrimBlanks(f.rstGesendet).size() < 2) return Fail(5, kMsgRsts, EntryFocus::Text4);
    if (TrimBlanks(f.rstEmpfangen).size() < 2) return Fail(6, kMsgRste, EntryFocus::Text5);
    const QString bezirk = TrimBlanks(f.bezirk);
    if (bezirk.size() != 2) return Fail(7, kMsgBezirk, EntryFocus::Combo5);
    if (!IsBezirkCode(m, bezirk)) return Fail(8, kMsgBezirk, EntryFocus::Combo5);

    // Check 9: the class of the worked station by the third character of the call.
    if (!IsStaatsfunkCall(call)) {
        if (!m.IsStaatsfunkstelle && f.bandIndex == 2) {
            dialogs.MsgBox(kMsgAmateur30, Msg::Information);
            return Fail(9, kMsgAmateur30, EntryFocus::Combo1, Msg::Information);
        }
    } else {
        if (f.bandIndex == 0) {
            dialogs.MsgBox(kMsgStaatsfunk40, Msg::Information);
            return Fail(9, kMsgStaatsfunk40, EntryFocus::Combo1, Msg::Information);
        }
        // Counted now and kept even when a later check or the dupe question says no.
        CountStaatsfunk(m, call, BandOfListIndex(f.bandIndex));
    }

    if (!m.Formats.ParseTime(TrimBlanks(f.zeit))) return Fail(10, kMsgZeit, EntryFocus::Text2);
    if (!m.Formats.ParseDate(TrimBlanks(f.datum))) return Fail(11, kMsgDatum, EntryFocus::Text1);
    return std::nullopt;
}

QsoRecord RecordOfEntry(const Model& m, const EntryFields& f, bool isDupe, float frequency, float laufNr) {
    QsoRecord r;
    r.Call = FieldText(TextField::Call, f.call).left(13);
    r.Band = BandNumber(f.band);
    r.Bezirk = Fixed2(f.bezirk);
    const auto date = m.Formats.ParseDate(TrimBlanks(f.datum));
    r.Datum = date ? m.Formats.RecordDate(*date) : TrimBlanks(f.datum);
    const auto time = m.Formats.ParseTime(TrimBlanks(f.zeit));
    r.Zeit = time ? m.Formats.RecordTime(*time) : TrimBlanks(f.zeit);
    r.RstGesendet = FieldText(TextField::RstGesendet, f.rstGesendet).left(4);
    r.RstEmpfangen = FieldText(TextField::RstEmpfangen, f.rstEmpfangen).left(4);
    r.Qsl = f.qsl;
    r.Mode = TrimBlanks(f.mode).left(5);
    r.ModeRx = r.Mode;
    r.Status = isDupe ? Status::Dupe : Status::Normal;
    r.Operator = FieldText(TextField::Operator, f.opCall).left(13);
    r.Bemerkung = FieldText(TextField::Bemerkung, f.notiz);
    r.BandRx = QStringLiteral("0");
    r.Frequenz = frequency;
    r.FrequenzRx = 0;
    r.LaufNr = laufNr;
    return r;
}

EntryResult TakeEntry(Model& m, Dialogs& dialogs, LogGridModel& grid, const EntryFields& typed,
                      const CompanionCalls& companions, LogFileBytes* fileBytes) {
    EntryResult res;
    if (const auto failure = CheckEntry(m, dialogs, typed)) {
        res.failure = *failure;
        return res;
    }
    // The fields as the chain sees them: the texts as the file will hold them (the grid
    // shows what the file holds); the dupe rule may fill in the district.
    EntryFields f = GatedEntryFields(typed);
    const QString call = TrimBlanks(f.call);
    const QString mode = TrimBlanks(f.mode);
    const int band = BandNumber(f.band);
    const QTime entryTime = m.Formats.ParseTime(TrimBlanks(f.zeit)).value_or(QTime());

    // The dupe decision.
    bool isDupe = false;
    if (CallInIndex(m.CallIndex, call)) {
        DupeVerdict verdict = CallExistTest(m, call, band, mode, entryTime);
        // A damaged index takes the error path: the "FEHLER" box, Retry looks again,
        // Cancel leaves the entry in its fields, logged nowhere.
        while (!verdict.error.isEmpty()) {
            if (dialogs.MsgBox(FehlerText(verdict.error), kFehlerFlags) != Msg::Retry) {
                res.failure = CheckFailure{0, verdict.error, kFehlerFlags, EntryFocus::Text3};
                return res;
            }
            verdict = CallExistTest(m, call, band, mode, entryTime);
        }
        // As when the call field is left: a worked station brings the district of the
        // last record visited, whatever was typed after the look-up.
        if (verdict.found) {
            f.bezirk = verdict.bezirk;
            res.bezirk = verdict.bezirk;
        }
        if (verdict.isDupe) {
            if (dialogs.MsgBox(kMsgDupeFrage, kDupeFrageFlags) != Msg::Yes) {
                res.outcome = EntryResult::DupeRefused;
                res.failure.focus = EntryFocus::Text3;
                return res;
            }
            isDupe = true;
            ++m.DupeCount;
        }
    }

    // Tallies of a new contact; a dupe changes none of them.
    if (!isDupe) {
        const QString bezirk = TrimBlanks(f.bezirk);
        const int n = BezirkNumber(m, bezirk);
        if (n >= 1 && size_t(n) < m.BezirkRecords.size()) {
            BezirkRecord& b = m.BezirkRecords[size_t(n)];
            ++b.AnzGesamt;
            if (f.band == QLatin1String("40m"))
                ++b.Anz40;
            else if (f.band == QLatin1String("80m"))
                ++b.Anz80;
            else if (f.band == QLatin1String("30m"))
                ++b.Anz30;
            RaiseGruppeBandCount(m, b.Gruppe, band);
            if (companions.fuellen) companions.fuellen(f.bezirk);
            if (companions.gridCellColor) {
                const char16_t c = call[2].unicode();
                if (c < 65 || c > 90)
                    companions.gridCellColor(f.bezirk, b.Gruppe, QString());
                else
                    companions.gridCellColor(f.bezirk, 0, call.left(3));
            }
        }
        if (f.band != QLatin1String("30m")) m.QsoCount += 1;
    }

    // Frequency: the frequency window's, else the band's default.
    float frequency = DefaultFrequency(f.bandIndex);
    if (companions.frequency) {
        if (const auto q = companions.frequency(f.bandIndex)) frequency = *q;
    }

    // Running number and the grid row, with the texts as typed.
    const float previous = (grid.Rows() <= 1 || m.LogRecords.empty()) ? -1.0f : m.LogRecords.back().LaufNr;
    const float laufNr = previous + 1;
    GridRow row;
    auto& c = row.cells;
    c[0] = TrimBlanks(f.datum);
    c[1] = TrimBlanks(f.zeit);
    c[2] = TrimBlanks(f.band);
    c[3] = mode;
    c[4] = call;
    c[5] = TrimBlanks(f.rstGesendet);
    c[6] = TrimBlanks(f.rstEmpfangen);
    c[7] = f.bezirk;
    c[8] = QString::number(f.qsl);
    c[9] = f.notiz; // the gated texts: the grid shows what the file holds
    c[10] = f.opCall;
    c[12] = mode;
    c[13] = QStringLiteral("0");
    c[14] = FloatText(frequency);
    c[15] = QStringLiteral("0");
    c[16] = FloatText(laufNr);
    if (isDupe) {
        c[kGridColDupe] = QStringLiteral("Dupe");
        row.backColors.emplace_back(kGridColDupe, kDupeBackColor);
    }
    grid.AppendRow(std::move(row));

    // Record, index, text, file.
    m.LogRecords.push_back(RecordOfEntry(m, f, isDupe, frequency, laufNr));
    const QsoRecord& rec = m.LogRecords.back();
    res.recordIndex = m.LogRecords.size() - 1;
    AppendIndexEntry(m.CallIndex, rec.Call, qsizetype(res.recordIndex));
    const QString line = ContactLine(rec);
    const bool reuse = fileBytes && !fileBytes->text.isNull() && fileBytes->text.isSharedWith(m.LogText);
    if (fileBytes) fileBytes->text = QString(); // let the append below grow the text in place
    m.LogText += line;
    if (fileBytes) {
        if (reuse)
            fileBytes->bytes += ToCp1252(line);
        else
            fileBytes->bytes = ToCp1252(m.LogText);
        fileBytes->text = m.LogText;
        res.fileWritten = RunTrapped(dialogs, [&m, fileBytes] {
            return WriteLogBytes(m, fileBytes->bytes);
        });
    } else {
        res.fileWritten = RunTrapped(dialogs, [&m] { return WriteLogFile(m); });
    }

    UpdateCounters(m, band, mode.left(5), m.Formats.ParseTime(rec.Zeit).value_or(QTime()), true);
    res.outcome = EntryResult::Logged;
    res.isDupe = isDupe;
    return res;
}

} // namespace kolibrino
