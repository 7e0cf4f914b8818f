// Kolibrino: start-up. Builds the folders, lays out the shipped data, then hands over
// to the main window, whose Load decides whether the program runs at all.
#include "core/clock.h"
#include "core/log_model.h"
#include "core/paths.h"
#include "entry/main_window.h"
#include "setup/main_window_setup.h"
#include "ui/qt_dialogs.h"

#include <QApplication>

using namespace kolibrino;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kolibrino"));
    Model model;
    model.SetLocale(QLocale::system());
    IniStartup(model, QCoreApplication::applicationDirPath());
    SetupFolders(model);
    CopyShippedData(model);

    QtDialogs dialogs;
    SystemTimeSource clock;
    HauptForm window(model, dialogs, clock);
    dialogs.SetParent(&window);
    setup::InstallLogSetup(window, model, dialogs, clock);
    if (!window.Load()) return 0;
    return app.exec();
}
