// Plugs transceiver control into the main window: the check-mark menu entries
// "&Frequenz Einstellung" (MnFrequenz) and "T&ransceiver Steuerung" (MnTransceiver),
// the main window's frequency hooks (frequenzOf, frequenzFreqAlt, frequenzSetMode),
// and the rig settings window behind "Omnirig Konfigurieren". Uses only the main
// window's public face.
//
// GUI thread only; call once, before HauptForm::Load(), after any other installer that
// sets companionOpener (ours hands the other companions on). The references must
// outlive the window. Never fails.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::rig {

struct RigInstallOptions {
    int pollMs = 250; // the engine's poll period
};

void InstallRig(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock,
                RigInstallOptions options = {});

} // namespace kolibrino::rig
