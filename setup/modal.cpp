#include "setup/modal.h"

#include <QCoreApplication>
#include <QQueue>

namespace kolibrino::setup {
namespace {

bool g_driverMode = false;
QQueue<ModalDriver> g_drivers;

} // namespace

int ExecModal(QDialog& dialog) {
    if (!g_driverMode) return dialog.exec();
    dialog.setResult(QDialog::Rejected);
    dialog.show();
    QCoreApplication::processEvents();
    if (dialog.isVisible()) {
        if (!g_drivers.isEmpty()) {
            const ModalDriver driver = g_drivers.dequeue();
            driver(dialog);
        }
        if (dialog.isVisible()) dialog.reject();
    }
    return dialog.result();
}

void SetDriverMode(bool on) {
    g_driverMode = on;
}
bool DriverMode() {
    return g_driverMode;
}
void PushModalDriver(ModalDriver driver) {
    g_drivers.enqueue(std::move(driver));
}
int PendingModalDrivers() {
    return int(g_drivers.size());
}
void ClearModalDrivers() {
    g_drivers.clear();
}

} // namespace kolibrino::setup
