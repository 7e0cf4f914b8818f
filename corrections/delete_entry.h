// Deleting one contact from the log: the question, the look-up in the call index, the
// promotion of one dupe that depended on it, the counters, the record, the grid row,
// the rebuilt log text and the file.
//
// Called by the main window's pop-up entry (through InstallCorrections) and by
// kolibrino-cli, on the window thread. The dupe status of the log is never computed
// anew: a deleted normal contact hands its place to exactly one of its dupes, the
// first one in the grid's order. Failures: a row not in the call index is reported
// and changes nothing; a failed write is offered again through the "FEHLER" trap and,
// after Cancel, leaves model and grid changed and the old file whole (the next write
// carries the change).
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <functional>

namespace kolibrino::corrections {

inline const QString kMsgLoeschenFrage = QStringLiteral("Soll dieser Eintrag wirklich gelöscht werden?");
inline constexpr int kLoeschenFrageFlags = Msg::YesNo | Msg::Question | Msg::DefaultButton2; // 292
inline const QString kMsgEintragNichtGefunden = QStringLiteral("Eintrag im Log nicht gefundne!");
// "Fehler beim erzeugen der Logdatei.", an empty line, "Kolibrino muss beendet werden."
QString LogTextBrokenText();

struct DeleteResult {
    enum Outcome { Declined, NotFound, Deleted, LogTextBroken };
    Outcome outcome = Declined;
    bool wasDupe = false;
    int promotedRecord = -1;      // record made normal again, -1 when none
    int promotedRow = -1;         // its grid row before the deleted row went
    bool countersLowered = false; // district and state-station tallies changed
    QString bezirk;               // district text of the deleted row
    QString call;                 // call of the deleted row
    bool fileWritten = false;
};

// The window's side of a deletion: letting pending events run before the dupe search,
// and sorting the grid (with its redraw switch). Unset calls do the plain thing.
struct DeleteCalls {
    std::function<void()> processEvents;
    std::function<void(int sortMode)> sort;
};

// Deletes the contact in grid row (0-based). year stamps the identification line.
DeleteResult DeleteEntry(Model& m, Dialogs& dialogs, LogGridModel& grid, int row, int year,
                         const DeleteCalls& calls = {});

// The grid row of a record's running number, -1 when no row shows it.
int RowOfRecord(const LogGridModel& grid, int recordIndex);

// The promotion of a dupe in grid row dupeRow to a normal contact: its "Dupe" cell
// emptied and its colours taken off, its record's Status 0, DupeCount lowered by one.
// No other counter changes (a deletion hands the deleted contact's counts on). Returns
// the record index, -1 when the row names no record.
int PromoteDupeRow(Model& m, LogGridModel& grid, int dupeRow);

} // namespace kolibrino::corrections
