// Plugs the log set-up into the main window: the log manager at Load, and the menu
// entries "&Neues Log", "Log &Öffnen", "C&ontest-Einstellungen" and "Zusätzliches
// &Sichern". Uses only the main window's public face (its hooks, its menu entries by
// name, its controls by object name).
//
// GUI thread only; call once, before HauptForm::Load(). The references must outlive
// the window. Never fails; a flow that must end the program closes the window.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/log_switch.h"

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::setup {

// What the switch and the options tell the main window, through its public face.
MainHooks HooksOf(HauptForm& window, Model& m);

void InstallLogSetup(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock);

} // namespace kolibrino::setup
