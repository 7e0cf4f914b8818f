// Plugs the corrections into the main window: the grid's pop-up entries "Löschen" and
// "Bearbeiten", the double click on a row and the grid's keys (Enter, F2, Entf), and
// "Log nachträglich ändern" and "Dupes prüfen…" in Extras.
//
// Called once by the application (and by tests) on the GUI thread, after the main
// window is built and before it loads. The flows it connects tell every failure to
// the operator through the Dialogs given; nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::corrections {

void InstallCorrections(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock);

// The flows behind the entries, for the entries and for tests.
void LoeschenFlow(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock, int row);
void BearbeitenFlow(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock, int row);
void MnDupesPruefen(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock);

} // namespace kolibrino::corrections
