// The log set-up as the main window calls it: the log manager at start, the menu
// entries "&Neues Log", "Log &Öffnen", "C&ontest-Einstellungen" and "Zusätzliches
// &Sichern".
//
// GUI thread only. Each call shows its window modally (ExecModal) and returns when the
// operator is done. The main window takes part through MainHooks. A result of
// SwitchResult::EndProgram means the program must end now (the boxes have been shown).
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/log_switch.h"

#include <optional>

class QWidget;

namespace kolibrino::setup {

// Load, step 8: the log manager with all its functions. True when CurrentLogName names
// a file in LogFolder afterwards; false means the program ends quietly.
bool ChooseLogAtStart(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                      const MainHooks& hooks = {});

// MnNeuesLog: the same-day warning, StationLog for a new log, and the switch.
SwitchResult MnNeuesLog(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                        const MainHooks& hooks);
// MnOpenLog: the log manager (open only) and the switch.
SwitchResult MnOpenLog(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                       const MainHooks& hooks);
// MnLogoptionen: StationLog on the open log's header; afterwards the main window's
// station fields, the operator box, Timer3 and the additional backup.
void MnLogoptionen(QWidget* parent, Model& m, Dialogs& dialogs, const TimeSource& clock,
                   const MainHooks& hooks);
// MnAutomatischesSichern: the backup settings. The new state of the check mark, or
// nullopt when the window was cancelled.
std::optional<bool> MnAutomatischesSichern(QWidget* parent, Model& m, Dialogs& dialogs);

} // namespace kolibrino::setup
