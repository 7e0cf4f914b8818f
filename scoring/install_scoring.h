// Plugs the scoring windows into the main window: the menu entries MnStatistik,
// MnBZGrid, MnBZKarte, MnQsoRate, MnFehlendeMulti (check marks that open and close the
// companion windows) and MnBezirkeListe (modal), and the main window's hooks bzKarteFuellen and
// gridKarteCellColor and its signals statistikRefreshRequested,
// bzKarteRefreshRequested and gridKarteRefreshRequested (each arms the Timer1 of its
// window when that window is open). The rate window and the list of missing
// multipliers follow every change of the main window's grid.
//
// GUI thread only; call once, before HauptForm::Load(). The references must outlive
// the window. Never fails. A companion opener installed earlier keeps serving the
// windows of other subsystems.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"

namespace kolibrino {

class HauptForm;
class Statistik;
class GridKarte;
class BZKarte;
class QsoRate;
class FehlendeMulti;

void InstallScoring(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource& clock);

// The open windows of this subsystem (null when closed), for tests and benchmarks.
Statistik* OpenStatistik(HauptForm& window);
GridKarte* OpenGridKarte(HauptForm& window);
BZKarte* OpenBZKarte(HauptForm& window);
QsoRate* OpenQsoRate(HauptForm& window);
FehlendeMulti* OpenFehlendeMulti(HauptForm& window);

} // namespace kolibrino
