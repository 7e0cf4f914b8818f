// Making one log the current one: the same-day warning, the tail of "Neues Log" and
// "Log Öffnen", and the switch that empties the model, loads the file and brings the
// main window up to date.
//
// Window thread only. The main window takes part through MainHooks; every hook may be
// left empty, and then that step does nothing. Boxes go through Dialogs. Nothing
// throws; a log that cannot be loaded is told in a Retry/Cancel box and the caller is
// told what the operator chose.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"

#include <QByteArray>
#include <functional>

namespace kolibrino::setup {

// What the main window does for the log set-up.
struct MainHooks {
    std::function<void()> clearGrid; // the grid cut to its heading row
    std::function<void()> fillGrid;  // the grid filled anew from LogRecords
    // Label12, Frame1 and the operator box: district, own call, operator call.
    std::function<void(const QString& bezirk, const QString& call, const QString& opCall)> showStation;
    // The operator box refilled from a list, its text set.
    std::function<void(const QStringList& rows, const QString& text)> setOperators;
    std::function<void()> applyBandDefault;   // the band box's Click, when Frequenz is open
    std::function<void()> refreshSideWindows; // each open side window recomputes
    std::function<void(const QString& title)> setTitle;
    std::function<void()> armBackupTimer;    // Timer3
    std::function<bool()> autoBackupChecked; // MnAutomatischesSichern's check mark
    std::function<void()> startScoreRefresh; // the score window's Timer1, when it is open
};

enum class SameDay { NoWarning, TakeLastLog, NewLog, Cancel };

using FileReader = std::function<QByteArray(const QString& path, bool* ok)>;
QByteArray ReadFileDefault(const QString& path, bool* ok);

// The contest day: 1 May of any year.
bool IsContestDay(const QDate& d);

// The warning before a new log on the contest day when the last log already holds a
// contact of today. Reads the file only on 1 May. TakeLastLog: the operator wants the
// last log (its name is in *lastLog).
SameDay SameDayWarning(const Model& m, Dialogs& dialogs, const TimeSource& clock, QString* lastLog = nullptr,
                       const FileReader& read = ReadFileDefault);

enum class SwitchResult { Switched, Unchanged, Retry, EndProgram };

// The switch: model emptied, file loaded, main window updated. A file that does not
// load asks Retry/Cancel: Retry gives SwitchResult::Retry (the caller runs its menu
// event again), Cancel gives EndProgram; fromOpenLog first says that the program must
// end.
SwitchResult SwitchLog(Model& m, Dialogs& dialogs, const MainHooks& hooks, bool fromOpenLog);

// "Neues Log" after StationLog has closed (or the same-day warning chose the last
// log): the "Ungültiges Log!" end, the cancel, LastLogFile and the switch.
SwitchResult FinishNewLog(Model& m, Dialogs& dialogs, const MainHooks& hooks);
// "Log Öffnen" after the log manager has closed; previous is the name before. A log
// that another program holds is refused with its box, and previous stays the log.
// Both take the new log's write lock and drop the old one.
SwitchResult FinishOpenLog(Model& m, Dialogs& dialogs, const MainHooks& hooks, const QString& previous);

// The main window's title for the current log.
QString MainTitle(const Model& m);

} // namespace kolibrino::setup
