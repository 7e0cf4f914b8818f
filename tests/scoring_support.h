// Fixtures of the scoring windows' tests: the main window with the scoring windows
// plugged in, over the shipped district table and map.
#pragma once

#include "scoring/install_scoring.h"
#include "tst_main_window_support.h"

#include <QAction>

namespace kolibrino::test {

class ScoringFixture : public WindowFixture {
public:
    // Shipped district table and map instead of the small table.
    explicit ScoringFixture(bool shippedDistricts = true) {
        if (shippedDistricts) {
            QFile::remove(home.model.DataFolder + QStringLiteral("bez_koord.txt"));
            home.InstallDistricts();
        }
        QFile::copy(QStringLiteral(KOLIBRINO_SOURCE_DIR "/data/BZ_Karte.gif"),
                    home.model.DataFolder + QStringLiteral("BZ_Karte.gif"));
    }
    // Starts the main window over an empty log with the scoring windows installed.
    bool StartScoring(const std::vector<QsoRecord>& records = {}) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        return Restart();
    }
    // Closes the main window (if open) and starts it again over the same log.
    bool Restart() {
        if (window) window->close();
        window.reset();
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        window->openUrl = [this](const QUrl& u) {
            opened << u;
            return true;
        };
        InstallScoring(*window, home.model, dialogs, clock);
        return window->Load();
    }
    QAction* Menu(const char* name) const { return window->Action(QString::fromLatin1(name)); }
    // Lets the zero-interval timers run.
    static void Settle() {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }
    int Element(const QString& code) const { return BezirkNumber(home.model, code); }
};

} // namespace kolibrino::test
