// Kolibrino: start-up. Builds the folders, lays out the shipped data, then hands over
// to the main window, whose Load decides whether the program runs at all.
#include "app/test_drive.h"
#include "assist/install_assist.h"
#include "core/clock.h"
#include "core/log_model.h"
#include "core/paths.h"
#include "core/settings.h"
#include "corrections/install_corrections.h"
#include "entry/main_window.h"
#include "export/export_menus.h"
#include "rig/main_window_rig.h"
#include "scoring/install_scoring.h"
#include "scoring/score.h"
#include "setup/main_window_setup.h"
#include "ui/modal_focus.h"
#include "ui/qt_dialogs.h"
#include "ui/translation.h"
#include "upkeep/upkeep_install.h"

#include <QApplication>
#include <cstdio>
#include <cstring>

using namespace kolibrino;

namespace {

const char* HelpText() {
    return "Aufruf:\n"
           "  kolibrino            startet das Logbuch für den ZEFT-80/40m-Contest\n"
           "  kolibrino --version  zeigt Namen und Version\n"
           "  kolibrino --help     zeigt diese Hilfe (auch -h)\n"
           "\n"
           "Beim Start erscheint die Log-Verwaltung; dort wird ein Log geöffnet oder neu angelegt.\n"
           "Einstellungen (kolibrino.INI) und Logs liegen im Datenordner $KOLIBRINO_HOME,\n"
           "sonst $XDG_DATA_HOME/kolibrino/ oder ~/.local/share/kolibrino/.\n"
           "Die Anleitung öffnet sich mit Hilfe -> Anleitung als pdf.\n"
           "Werkzeuge ohne Fenster: kolibrino-cli --help\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) { // answered without a display
        std::printf("%s %s\n", qPrintable(ProgramTitle()), qPrintable(ProgramVersionText()));
        return 0;
    }
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::fputs(HelpText(), stdout); // answered without a display
        return 0;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kolibrino"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kolibrino")); // icon and name on Wayland
    InstallGermanTranslation(app);
    ReturnFocusAfterModalWindows(app); // keys back to the window below a closed box
    Model model;
    model.SetLocale(QLocale::system());
    IniStartup(model, QCoreApplication::applicationDirPath());
    SetupFolders(model);
    CopyShippedData(model);

    QtDialogs qtDialogs;
    DriveDialogs driveDialogs(qtDialogs); // boxes told on standard output (test drive only)
    Dialogs& dialogs = TestDriveWanted() ? static_cast<Dialogs&>(driveDialogs) : qtDialogs;
    SystemTimeSource clock;
    SetIniWriteRefusedHandler([&dialogs](const QString& text) {
        dialogs.MsgBox(text, Msg::Exclamation, QStringLiteral("Kolibrino"));
    });
    HauptForm window(model, dialogs, clock);
    qtDialogs.SetParent(&window);
    setup::InstallLogSetup(window, model, dialogs, clock);
    InstallScoring(window, model, dialogs, clock);
    exporting::ExportOptions exportOptions;
    exportOptions.score = ClaimedScoreValue; // CLAIMED-SCORE from the result window's figures
    exporting::InstallExport(window, model, dialogs, clock, exportOptions);
    corrections::InstallCorrections(window, model, dialogs, clock);
    rig::InstallRig(window, model, dialogs, clock);
    InstallAssist(window, model, dialogs, clock);
    upkeep::InstallUpkeep(window, model, dialogs, clock);
    if (!window.Load()) return 0;
    InstallTestDrive(window, model, dialogs); // only with KOLIBRINO_TEST_DRIVE=1 (crash injection)
    return app.exec();
}
