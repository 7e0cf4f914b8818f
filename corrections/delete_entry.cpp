#include "corrections/delete_entry.h"

#include "core/call_index.h"
#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/tallies.h"
#include "core/vb_text.h"
#include "corrections/correction_counters.h"
#include "corrections/log_text_patch.h"

namespace kolibrino::corrections {

QString LogTextBrokenText() {
    return QStringLiteral("Fehler beim erzeugen der Logdatei.\n\nKolibrino muss beendet werden.");
}

int RowOfRecord(const LogGridModel& grid, int recordIndex) {
    const QString key = QString::number(recordIndex);
    for (int r = 0; r < grid.DataRows(); ++r)
        if (grid.Text(r, kGridColLaufNr) == key) return r;
    return -1;
}

int PromoteDupeRow(Model& m, LogGridModel& grid, int dupeRow) {
    grid.SetText(dupeRow, kGridColDupe, QString());
    grid.ClearBackColors(dupeRow);
    const int record = ToInt16(LeadingNumber(grid.Text(dupeRow, kGridColLaufNr)));
    const bool known = record >= 0 && size_t(record) < m.LogRecords.size();
    if (known) m.LogRecords[size_t(record)].Status = Status::Normal;
    m.DupeCount -= 1;
    return known ? record : -1;
}

namespace {

qsizetype LiveRecords(const Model& m) {
    qsizetype n = 0;
    for (const QsoRecord& r : m.LogRecords)
        if (r.Status != Status::Deleted) ++n;
    return n;
}

bool IsDupeRow(const LogGridModel& grid, int row) {
    return grid.Text(row, kGridColDupe) == QLatin1String("Dupe");
}

// The first dupe row in grid order that depends on the contact in row.
int FindDependentDupe(const Model& m, const LogGridModel& grid, int row) {
    const QTime zeit = TimeOfText(m, grid.Text(row, kGridColZeit));
    for (int r = 0; r < grid.DataRows(); ++r) {
        if (r == row || !IsDupeRow(grid, r)) continue;
        if (!SameSideOfNoon(m, zeit, TimeOfText(m, grid.Text(r, kGridColZeit)))) continue;
        bool same = true;
        for (int col : {kGridColCall, kGridColBand, kGridColBezirk, kGridColMode})
            same = same && grid.Text(r, col) == grid.Text(row, col);
        if (same) return r;
    }
    return -1;
}

} // namespace

DeleteResult DeleteEntry(Model& m, Dialogs& dialogs, LogGridModel& grid, int row, int year,
                         const DeleteCalls& calls) {
    DeleteResult res;
    if (row < 0 || row >= grid.DataRows()) return res;
    if (dialogs.MsgBox(kMsgLoeschenFrage, kLoeschenFrageFlags) != Msg::Yes) return res;

    const QString call = grid.Text(row, kGridColCall);
    const QString laufNr = grid.Text(row, kGridColLaufNr);
    const QString key = kPilcrow + call + kTimes + laufNr + kPilcrow;
    if (!m.CallIndex.contains(key)) {
        dialogs.MsgBox(kMsgEintragNichtGefunden, Msg::Information);
        res.outcome = DeleteResult::NotFound;
        return res;
    }
    const int recordIndex = ToInt16(LeadingNumber(laufNr));
    const QString bandText = grid.Text(row, kGridColBand);
    const int band = BandOfText(bandText);
    const QString mode = grid.Text(row, kGridColMode);
    const QTime zeit = TimeOfText(m, grid.Text(row, kGridColZeit));
    res.call = call;
    res.bezirk = grid.Text(row, kGridColBezirk);

    bool promoted = false;
    if (IsDupeRow(grid, row)) {
        res.wasDupe = true;
        m.DupeCount -= 1; // no other counter counted it
    } else {
        if (m.DupeCount >= 1) {
            if (calls.processEvents) calls.processEvents();
            if (grid.SortMode() < GridSort::ZeitAb) {
                // The sort order set here stays after the deletion.
                if (calls.sort)
                    calls.sort(GridSort::ZeitAuf);
                else
                    grid.Sort(GridSort::ZeitAuf);
                row = RowOfRecord(grid, recordIndex);
            }
            const int dupe = FindDependentDupe(m, grid, row);
            if (dupe >= 0) {
                res.promotedRecord = PromoteDupeRow(m, grid, dupe);
                res.promotedRow = dupe;
                promoted = true; // it inherits the deleted contact's counts
            }
        }
        if (!promoted) {
            res.countersLowered = true;
            if (bandText != QLatin1String("30m")) m.QsoCount -= 1;
            LowerBezirk(m, res.bezirk, band);
            if (IsStaatsfunkCall(call)) LowerStaatsfunk(m, call, band);
        }
    }
    UpdateCounters(m, band, mode, zeit, false);

    QString text;
    if (grid.DataRows() <= 1) {
        m.LogRecords.clear();
        grid.Clear();
        text = BuildLogText(m, true, year);
    } else if (recordIndex >= 0 && size_t(recordIndex) < m.LogRecords.size()) {
        QsoRecord& r = m.LogRecords[size_t(recordIndex)];
        const QString oldLine = ContactLine(r);
        const qsizetype live = LiveRecords(m);
        r.Status = Status::Deleted;
        grid.RemoveRow(row);
        // A promotion changes a second line: then the whole text is made anew.
        text = promoted ? BuildLogText(m, true, year)
                        : PatchLogText(m, year, size_t(recordIndex), oldLine, live, true);
    } else {
        grid.RemoveRow(row);
        text = BuildLogText(m, true, year);
    }
    if (text.size() < 11) {
        dialogs.MsgBox(LogTextBrokenText(), Msg::Critical);
        res.outcome = DeleteResult::LogTextBroken;
        return res;
    }
    res.fileWritten = RunTrapped(dialogs, [&m] { return WriteLogFile(m); });
    res.outcome = DeleteResult::Deleted;
    return res;
}

} // namespace kolibrino::corrections
