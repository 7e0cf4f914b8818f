// Stranded dupes: contacts stored as "Dupe" of which no normal contact is left in the
// log (after an edit moved that contact, or a bulk change). They earn nothing and
// nothing shows it. "Extras → Dupes prüfen…" lists them and, on the operator's word,
// makes each a normal contact with the promotion step of a deletion
// (PromoteDupeRow), its counts raised as for a contact logged normal, and the file
// rewritten.
//
// Called by the menu entry (through InstallCorrections) and by kolibrino-cli, on the
// window thread. A dupe duplicates a normal contact of the same call, band and mode
// in the same period (both before MittagsGrenze, or both at or after it); the district
// does not count. Of several stranded dupes of one such slot only the earliest is
// taken: the others are dupes of it once it is normal. Failures: a failed write is
// offered again through the "FEHLER" trap and, after Cancel, leaves model and grid
// changed and the old file whole (fileWritten false; the next write carries the
// change).
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <vector>

namespace kolibrino::corrections {

inline const QString kMsgKeineStrandedDupes =
    QStringLiteral("Alle als 'Dupe' geloggten QSO haben ein gültiges QSO, dessen Dupe sie sind.");
inline const QString kMsgStrandedFrage = QStringLiteral("Sollen diese QSO als gültige QSO gewertet werden?");
inline constexpr int kStrandedFrageFlags = Msg::YesNo | Msg::Question | Msg::DefaultButton2; // 292

// Record indices of the stranded dupes, earliest time of day first (record order
// among equal times).
std::vector<int> FindStrandedDupes(const Model& m);

// One line of the list: date, time, band, mode, call, district.
QString StrandedDupeLine(const QsoRecord& r);
// The question's text: what was found, the list (at most 30 lines, then the count of
// the rest), and kMsgStrandedFrage.
QString StrandedQuestion(const Model& m, const std::vector<int>& records);
// What the operator is told after the change.
QString StrandedDoneText(int promoted);

struct StrandedResult {
    enum Outcome { NoneFound, Declined, Promoted, LogTextBroken };
    Outcome outcome = NoneFound;
    std::vector<int> records; // the records found (and made normal when Promoted)
    bool fileWritten = false;
};

// Makes the records normal (grid row through PromoteDupeRow when the grid shows it),
// raises their counts and rewrites the file. year stamps the identification line.
StrandedResult PromoteStrandedDupes(Model& m, Dialogs& dialogs, LogGridModel& grid,
                                    const std::vector<int>& records, int year);

// The menu entry's work: the search, the "none" box or the list with its question
// (flags 292), the change on Yes and the box that tells how many were changed.
StrandedResult DupesPruefen(Model& m, Dialogs& dialogs, LogGridModel& grid, int year);

} // namespace kolibrino::corrections
