#include "corrections/stranded_dupes.h"

#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/tallies.h"
#include "corrections/correction_counters.h"
#include "corrections/delete_entry.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace kolibrino::corrections {
namespace {

constexpr int kListLines = 30;

// Call, band, mode and period: one normal contact counts in each.
using Slot = std::tuple<QString, int, QString, bool>;

Slot SlotOf(const Model& m, const QsoRecord& r) {
    const bool vormittag = TimeOfText(m, r.Zeit) < m.MittagsGrenze;
    return {r.Call, r.Band, r.Mode.trimmed(), vormittag};
}

void RaiseCounts(Model& m, const QsoRecord& r) {
    if (r.Band != kBand30) m.QsoCount += 1;
    if (IsStaatsfunkCall(r.Call)) CountStaatsfunk(m, r.Call, r.Band);
    // As the rebuild after a load counts it: mode and period tables only with a known district.
    if (RaiseBezirk(m, r.Bezirk, r.Band) > 0) UpdateCounters(m, r.Band, r.Mode, TimeOfText(m, r.Zeit), true);
}

} // namespace

std::vector<int> FindStrandedDupes(const Model& m) {
    std::set<Slot> covered;
    std::vector<int> dupes;
    for (size_t i = 0; i < m.LogRecords.size(); ++i) {
        const QsoRecord& r = m.LogRecords[i];
        if (r.Status == Status::Normal)
            covered.insert(SlotOf(m, r));
        else if (r.Status == Status::Dupe)
            dupes.push_back(int(i));
    }
    std::stable_sort(dupes.begin(), dupes.end(), [&m](int a, int b) {
        return TimeOfText(m, m.LogRecords[size_t(a)].Zeit) < TimeOfText(m, m.LogRecords[size_t(b)].Zeit);
    });
    std::vector<int> stranded;
    for (int i : dupes) {
        // The first one of a slot becomes its normal contact; the rest stay its dupes.
        if (covered.insert(SlotOf(m, m.LogRecords[size_t(i)])).second) stranded.push_back(i);
    }
    return stranded;
}

QString StrandedDupeLine(const QsoRecord& r) {
    return QStringLiteral("%1  %2  %3m  %4  %5  %6")
        .arg(r.Datum, r.Zeit)
        .arg(r.Band)
        .arg(r.Mode.trimmed(), r.Call, r.Bezirk.trimmed());
}

QString StrandedQuestion(const Model& m, const std::vector<int>& records) {
    QStringList lines;
    lines << (records.size() == 1
                  ? QStringLiteral("Dieses als 'Dupe' geloggte QSO hat kein gültiges QSO mehr, "
                                   "dessen Dupe es ist:")
                  : QStringLiteral("Diese %1 als 'Dupe' geloggten QSO haben kein gültiges QSO "
                                   "mehr, dessen Dupe sie sind:")
                        .arg(records.size()));
    lines << QString();
    for (size_t i = 0; i < records.size() && i < size_t(kListLines); ++i)
        lines << StrandedDupeLine(m.LogRecords[size_t(records[i])]);
    if (records.size() > size_t(kListLines))
        lines << QStringLiteral("... und %1 weitere").arg(records.size() - size_t(kListLines));
    lines << QString() << kMsgStrandedFrage;
    return lines.join(QLatin1Char('\n'));
}

QString StrandedDoneText(int promoted) {
    return promoted == 1 ? QStringLiteral("1 QSO wird jetzt als gültiges QSO gewertet.")
                         : QStringLiteral("%1 QSO werden jetzt als gültige QSO gewertet.").arg(promoted);
}

StrandedResult PromoteStrandedDupes(Model& m, Dialogs& dialogs, LogGridModel& grid,
                                    const std::vector<int>& records, int year) {
    StrandedResult res;
    res.records = records;
    for (int record : records) {
        if (record < 0 || size_t(record) >= m.LogRecords.size()) continue;
        QsoRecord& r = m.LogRecords[size_t(record)];
        if (r.Status != Status::Dupe) continue;
        if (const int row = RowOfRecord(grid, record); row >= 0) {
            PromoteDupeRow(m, grid, row);
        } else {
            r.Status = Status::Normal;
            m.DupeCount -= 1;
        }
        // No deleted contact hands its counts on here: the contact counts anew.
        RaiseCounts(m, r);
    }
    const QString text = BuildLogText(m, true, year);
    if (text.size() < 11) {
        dialogs.MsgBox(LogTextBrokenText(), Msg::Critical);
        res.outcome = StrandedResult::LogTextBroken;
        return res;
    }
    res.fileWritten = RunTrapped(dialogs, [&m] { return WriteLogFile(m); });
    res.outcome = StrandedResult::Promoted;
    return res;
}

StrandedResult DupesPruefen(Model& m, Dialogs& dialogs, LogGridModel& grid, int year) {
    const std::vector<int> found = FindStrandedDupes(m);
    if (found.empty()) {
        dialogs.MsgBox(kMsgKeineStrandedDupes, Msg::Information);
        return {};
    }
    if (dialogs.MsgBox(StrandedQuestion(m, found), kStrandedFrageFlags) != Msg::Yes) {
        StrandedResult declined;
        declined.outcome = StrandedResult::Declined;
        declined.records = found;
        return declined;
    }
    StrandedResult res = PromoteStrandedDupes(m, dialogs, grid, found, year);
    if (res.outcome == StrandedResult::Promoted && res.fileWritten)
        dialogs.MsgBox(StrandedDoneText(int(found.size())), Msg::Information);
    return res;
}

} // namespace kolibrino::corrections
