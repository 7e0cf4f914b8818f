#include "corrections/edit_entry.h"

#include "core/call_index.h"
#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/storable_text.h"
#include "core/tallies.h"
#include "core/vb_text.h"
#include "corrections/correction_counters.h"
#include "corrections/log_text_patch.h"
#include "entry/qso_entry.h"

namespace kolibrino::corrections {
namespace {

EditFailure Fail(int check, const QString& message, int flags, EditFocus focus, bool hidden = false) {
    return EditFailure{check, message, flags, hidden, focus};
}

// A time of the field: a time of day, or a date alone (midnight).
std::optional<QTime> FieldTime(const Model& m, const QString& text) {
    const QString t = TrimBlanks(text);
    if (const auto time = m.Formats.ParseTime(t)) return time;
    if (m.Formats.ParseDate(t)) return QTime(0, 0);
    return std::nullopt;
}

int RecordOfRow(const LogGridModel& grid, int row) {
    return ToInt16(LeadingNumber(grid.Text(row, kGridColLaufNr)));
}

// The text gate on the window's text fields: the first refusal, or nullopt.
std::optional<EditFailure> GateEdit(const EditFields& f) {
    const auto refused = FirstRefusedContactField<EditFields, EditFocus>(f);
    if (!refused) return std::nullopt;
    return Fail(0, refused->second, Msg::Exclamation, refused->first);
}

} // namespace

EditFields GatedEditFields(const EditFields& typed) {
    EditFields f = typed;
    f.call = FieldText(TextField::Call, typed.call);
    f.rstGesendet = FieldText(TextField::RstGesendet, typed.rstGesendet);
    f.rstEmpfangen = FieldText(TextField::RstEmpfangen, typed.rstEmpfangen);
    f.mode = FieldText(TextField::Mode, typed.mode);
    f.bezirk = FieldText(TextField::Bezirk, typed.bezirk);
    f.notiz = FieldText(TextField::Bemerkung, typed.notiz);
    f.opCall = FieldText(TextField::Operator, typed.opCall);
    return f;
}

std::optional<QString> EditRefusal(const LogGridModel& grid, int row) {
    if (grid.Text(row, kGridColDupe) == QLatin1String("Dupe")) return kMsgDupeNichtBearbeiten;
    return std::nullopt;
}

EditFields FieldsOfRow(const LogGridModel& grid, int row, bool* frequencyWarning) {
    EditFields f;
    f.zeit = grid.Text(row, 1);
    f.datum = grid.Text(row, 0);
    f.band = grid.Text(row, 2);
    f.bandIndex = BandListIndex(f.band);
    f.mode = grid.Text(row, 3);
    f.call = grid.Text(row, 4);
    f.rstGesendet = grid.Text(row, 5);
    f.rstEmpfangen = grid.Text(row, 6);
    f.bezirk = grid.Text(row, 7);
    f.qsl = grid.Text(row, 8) == QLatin1String("0") || grid.Text(row, 8).isEmpty() ? 0 : 1;
    f.notiz = grid.Text(row, 9);
    f.opCall = grid.Text(row, 10);
    const QString freq = grid.Text(row, kGridColFrequenz);
    const bool warn = freq.size() < 4;
    if (frequencyWarning) *frequencyWarning = warn;
    if (warn) {
        static const char* const mhz[3] = {"7", "3", "10"};
        static const char* const khz[3] = {"000", "500", "100"};
        if (f.bandIndex >= 0) {
            f.mhz = QString::fromLatin1(mhz[f.bandIndex]);
            f.khz = QString::fromLatin1(khz[f.bandIndex]);
        }
    } else {
        f.mhz = freq.left(freq.size() - 3);
        f.khz = freq.right(3);
    }
    return f;
}

QString NormalizeKhz(const QString& text) {
    QString digits = QStringLiteral("000");
    const QString t = TrimBlanks(text);
    for (int i = 0; i < 3 && i < t.size(); ++i)
        digits[i] = t[i];
    return digits;
}

bool BandHoldsFrequency(int bandIndex, double khz) {
    switch (bandIndex) {
    case 0:
        return khz >= 7000.0 && khz <= 7200.0;
    case 1:
        return khz >= 3500.0 && khz <= 3800.0;
    case 2:
        return khz >= 10100.0 && khz <= 10150.0;
    default:
        return false;
    }
}

FrequencyFields FrequencyForBand(int bandIndex, const QString& mhz, const QString& khz,
                                 const QString& originalMhz, const QString& originalKhz) {
    auto fits = [bandIndex](const QString& a, const QString& b) {
        bool ok = false;
        const double v = (TrimBlanks(a) + NormalizeKhz(b)).toDouble(&ok);
        return ok && BandHoldsFrequency(bandIndex, v);
    };
    FrequencyFields f{mhz, khz, false};
    if (bandIndex < 0 || fits(mhz, khz)) return f;
    if (fits(originalMhz, originalKhz)) {
        f.mhz = originalMhz;
        f.khz = originalKhz;
    } else {
        const QString text = FloatText(DefaultFrequency(bandIndex));
        f.mhz = text.left(text.size() - 3);
        f.khz = text.right(3);
    }
    f.changed = f.mhz != mhz || f.khz != khz;
    return f;
}

bool EditCallExistTest(const Model& m, const QString& call, const EditFields& f, int editedRecord) {
    const QString key = IndexKey(call);
    const int band = BandOfText(f.band);
    const QTime fieldTime = FieldTime(m, f.zeit).value_or(QTime());
    qsizetype hit = m.CallIndex.indexOf(key);
    while (hit >= 0) {
        const CallIndexEntry e = ParseIndexEntry(m.CallIndex, hit + 1);
        if (e.Call != call) break;
        if (e.RecordIndex >= 0 && size_t(e.RecordIndex) < m.LogRecords.size()) {
            const QsoRecord& r = m.LogRecords[size_t(e.RecordIndex)];
            if (r.Band == band && r.Mode == f.mode && r.Call == call && r.Status != Status::Dupe &&
                r.Status >= 0 && e.RecordIndex != editedRecord &&
                SameSideOfNoon(m, TimeOfText(m, r.Zeit), fieldTime))
                return true;
        }
        hit = m.CallIndex.indexOf(key, hit + 1);
    }
    return false;
}

std::optional<EditFailure> CheckEdit(const Model& m, const LogGridModel& grid, int row, EditFields& f) {
    if (auto refused = GateEdit(f)) return refused;
    f = GatedEditFields(f);
    const QString call = TrimBlanks(f.call);
    // The seven checks whose text has nowhere to go: the operator gets the error box.
    if (call.size() < 3) return Fail(1, kMsgRufzeichen, 0, EditFocus::Text3, true);
    if (TrimBlanks(f.band).size() < 2) return Fail(1, kMsgBand, 0, EditFocus::Combo1, true);
    if (TrimBlanks(f.mode).size() < 2) return Fail(1, kMsgMode, 0, EditFocus::Combo2, true);
    if (TrimBlanks(f.rstGesendet).size() < 2) return Fail(1, kMsgRsts, 0, EditFocus::Text4, true);
    if (TrimBlanks(f.rstEmpfangen).size() < 2) return Fail(1, kMsgRste, 0, EditFocus::Text5, true);
    const QString bezirk = TrimBlanks(f.bezirk);
    if (bezirk.size() != 2) return Fail(1, kMsgBezirk, 0, EditFocus::Combo5, true);
    if (!IsBezirkCode(m, bezirk)) return Fail(1, kMsgBezirk, 0, EditFocus::Combo5, true);

    if (!FieldTime(m, f.zeit)) return Fail(2, kMsgZeit, Msg::OkOnly, EditFocus::Text2);
    if (!m.Formats.ParseDate(TrimBlanks(f.datum))) return Fail(2, kMsgDatum, Msg::OkOnly, EditFocus::Text1);
    if (!IsNumericText(TrimBlanks(f.khz)))
        return Fail(3, kMsgFrequenzZahlen, Msg::Information, EditFocus::Text9);
    f.khz = NormalizeKhz(f.khz);

    const QString upper = call; // in capitals already: the gate made it so
    if (EditCallExistTest(m, upper, f, RecordOfRow(grid, row)))
        return Fail(5, kMsgBereitsGeloggt, Msg::Information, EditFocus::Text3);
    if (m.IsStaatsfunkstelle && f.bandIndex == 0)
        return Fail(6, kMsgStaatsfunkstelle40, Msg::Information, EditFocus::Combo1);
    if (IsStaatsfunkCall(upper)) {
        if (f.bandIndex == 0) return Fail(7, kMsgStaatsfunk40, Msg::Information, EditFocus::Combo1);
    } else if (!m.IsStaatsfunkstelle && f.bandIndex == 2) {
        return Fail(7, kMsgAmateur30, Msg::Information, EditFocus::Combo1);
    }
    return std::nullopt;
}

EditResult ApplyEdit(Model& m, Dialogs& dialogs, LogGridModel& grid, int row, const EditFields& typed,
                     int year) {
    EditResult res;
    // The texts as the file will hold them: the grid row shows the same.
    const EditFields f = GatedEditFields(typed);
    if (row < 0 || row >= grid.DataRows()) return res;
    const QString oldCall = grid.Text(row, kGridColCall);
    const int oldBand = BandOfText(grid.Text(row, kGridColBand));
    const QString oldMode = grid.Text(row, kGridColMode);
    const QTime oldZeit = TimeOfText(m, grid.Text(row, kGridColZeit));
    res.oldBezirk = grid.Text(row, kGridColBezirk);
    const QString laufNr = grid.Text(row, kGridColLaufNr);
    const int recordIndex = RecordOfRow(grid, row);

    const QString newCall = f.call.left(13);
    const int newBand = BandOfText(f.band);
    const QString newMode = TrimBlanks(f.mode).left(5);
    const QTime newZeit = FieldTime(m, f.zeit).value_or(QTime());
    res.newBezirk = f.bezirk;

    // State stations, then the band and period counters, then the districts.
    if (IsStaatsfunkCall(oldCall)) LowerStaatsfunk(m, oldCall, oldBand);
    if (IsStaatsfunkCall(newCall)) CountStaatsfunk(m, newCall, newBand);
    UpdateCounters(m, oldBand, oldMode, oldZeit, false);
    UpdateCounters(m, newBand, newMode, newZeit, true);
    LowerBezirk(m, res.oldBezirk, oldBand);
    RaiseBezirk(m, TrimBlanks(f.bezirk), newBand); // QsoCount stays, even across 30 m

    if (newCall != oldCall) {
        const QString oldEntry = kPilcrow + oldCall + kTimes + laufNr + kPilcrow;
        const qsizetype at = m.CallIndex.indexOf(oldEntry);
        if (at >= 0)
            m.CallIndex.replace(at, oldEntry.size(), kPilcrow + newCall + kTimes + laufNr + kPilcrow);
    }

    const QString cells[] = {f.datum,        f.zeit,   f.band,
                             f.mode,         f.call,   f.rstGesendet,
                             f.rstEmpfangen, f.bezirk, QString::number(f.qsl),
                             f.notiz,        f.opCall};
    for (int c = 0; c <= 10; ++c)
        grid.SetText(row, c, cells[c]);
    grid.SetText(row, 12, f.mode);
    grid.SetText(row, kGridColFrequenz, f.mhz + f.khz);

    QString oldLine;
    qsizetype live = 0;
    const bool known = recordIndex >= 0 && size_t(recordIndex) < m.LogRecords.size();
    if (known) {
        QsoRecord& r = m.LogRecords[size_t(recordIndex)];
        oldLine = ContactLine(r);
        for (const QsoRecord& other : m.LogRecords)
            if (other.Status != Status::Deleted) ++live;
        r.Call = newCall;
        r.Band = newBand;
        r.Bezirk = Fixed2(f.bezirk);
        const auto date = m.Formats.ParseDate(TrimBlanks(f.datum));
        r.Datum = date ? m.Formats.RecordDate(*date) : TrimBlanks(f.datum);
        r.Zeit = m.Formats.RecordTime(newZeit);
        r.RstGesendet = f.rstGesendet.left(4);
        r.RstEmpfangen = f.rstEmpfangen.left(4);
        r.Qsl = f.qsl;
        r.Mode = f.mode.left(5);
        r.ModeRx = r.Mode;
        r.Operator = f.opCall.left(13);
        r.Bemerkung = f.notiz;
        r.Frequenz = float(LeadingNumber(f.mhz + f.khz));
    }
    res.applied = true;

    const QString text = known ? PatchLogText(m, year, size_t(recordIndex), oldLine, live, false)
                               : BuildLogText(m, false, year);
    if (text.size() > 10) res.fileWritten = RunTrapped(dialogs, [&m] { return WriteLogFile(m); });
    return res;
}

} // namespace kolibrino::corrections
