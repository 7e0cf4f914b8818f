// Plugs the call assistance into the main window: the check-mark menu entries
// "&Teilrufzeichen" (MnDB) and "Rufzeichen &Check" (MnLogTracker), the companion hook
// that opens and closes their windows, and the main window's refresh signals.
//
// Called once by the application (and by tests) before HauptForm::Load(), on the GUI
// thread; the references must outlive the window. Other subsystems' companion windows
// keep working: the hook hands every other window to the opener set before. Never fails.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"

namespace kolibrino {

class DBLog;
class HauptForm;
class LogTracker;

void InstallAssist(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock);

// The open windows of a main window with the call assistance installed; null when closed.
DBLog* DBLogOf(const HauptForm& window);
LogTracker* LogTrackerOf(const HauptForm& window);

} // namespace kolibrino
