// Kolibrino: start-up. Builds the folders, lays out the shipped data, then hands over
// to the main window.
#include "core/log_model.h"
#include "core/paths.h"

#include <QApplication>
#include <QMainWindow>

using namespace kolibrino;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kolibrino"));
    Model model;
    model.SetLocale(QLocale::system());
    IniStartup(model, QCoreApplication::applicationDirPath());
    SetupFolders(model);
    CopyShippedData(model);

    QMainWindow window;
    window.setWindowTitle(ProgramTitle());
    window.resize(900, 600);
    window.show();
    return app.exec();
}
