// Modal windows of the log set-up, and a way for tests to take the operator's place.
//
// ExecModal() shows a dialog and returns its result. When a driver is queued (tests),
// the dialog is shown, pending events run, and the next driver is handed the dialog
// instead of a nested event loop; a dialog the driver leaves open is rejected. In
// driver mode a dialog with no driver queued is rejected at once, so no test blocks.
//
// GUI thread only. Never throws.
#pragma once

#include <QDialog>
#include <functional>

namespace kolibrino::setup {

using ModalDriver = std::function<void(QDialog&)>;

int ExecModal(QDialog& dialog);

// Tests: every later modal window is driven instead of waited for.
void SetDriverMode(bool on);
bool DriverMode();
void PushModalDriver(ModalDriver driver);
int PendingModalDrivers();
void ClearModalDrivers();

} // namespace kolibrino::setup
