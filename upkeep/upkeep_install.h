// Plugs the upkeep into the main window: the update window at start (before the main
// window is up) and from "Auf Updates prüfen" after its warning, the info window from
// "Info", and "Anleitung als pdf" (the main window opens the shipped manual).
//
// GUI thread only; call once, before HauptForm::Load(). The references must outlive the
// window. transport: the network behind the update; null takes the libcurl one. Never
// fails; after updates from the menu the main window is closed, which ends the program.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "upkeep/update_transport.h"

#include <memory>

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::upkeep {

inline const char* const kTxtUpdateWarnung =
    "ACHTUNG, Wenn neue Updates installiert werden muss Kolibrino neu gestartet werden.\r\n"
    "Soll trotzdem nach Updates gesucht werden?";

void InstallUpkeep(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock,
                   std::shared_ptr<UpdateTransport> transport = nullptr);

// The update window in one of its ways; true when updates were installed.
bool RunUpdateWindow(QWidget* parent, Model& m, Dialogs& dialogs, UpdateTransport& t, bool splashWay);

} // namespace kolibrino::upkeep
