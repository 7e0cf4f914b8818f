// Helpers of the rig window tests: a main window with transceiver control installed,
// a real rigctld behind section Rig1, and the controls of the rig windows by name.
#pragma once

#include "rig/frequenz.h"
#include "rig/hamlib_rig.h"
#include "rig/main_window_rig.h"
#include "rig_support.h"
#include "tst_main_window_support.h"

#include <QAction>
#include <QRadioButton>

namespace kolibrino::test {

class RigFixture : public WindowFixture {
public:
    // Rig 1 at the daemon (started here) unless told otherwise.
    bool StartWithDaemon() {
        if (!daemon.Start()) return false;
        rig::WriteRigConfig(home.model.IniPath, 1, {rig::kModelNetRigctl, daemon.Address(), 0});
        return StartRig();
    }
    bool StartRig() {
        WriteLog(QStringLiteral("test.KOLBO"), {});
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        rig::InstallRig(*window, home.model, dialogs, clock);
        return window->Load();
    }
    QAction* Menu(const char* name) const { return window->Action(QString::fromLatin1(name)); }
    rig::Frequenz* Freq() const { return window->findChild<rig::Frequenz*>(QStringLiteral("Frequenz")); }
    // Opens the frequency window through its menu entry and waits for the rig.
    rig::Frequenz* OpenFrequenz(bool waitOnline = true) {
        Menu("MnFrequenz")->trigger();
        rig::Frequenz* w = Freq();
        if (w && waitOnline) {
            QElapsedTimer t;
            t.start();
            while (t.elapsed() < 5000 && FLabel(3)->text() != QLatin1String("ONLINE"))
                QTest::qWait(20);
        }
        return w;
    }
    // After opening, the window tunes the rig to the main window's band; once the rig
    // is there, the rig is set to hz from outside.
    bool TuneAfterOpening(const QString& hz) {
        const int band = Combo(1)->currentIndex();
        const int f = band == 0 ? Freq()->BQRG40 : band == 1 ? Freq()->BQRG80 : Freq()->BQRG30;
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 5000 && daemon.Get(QStringLiteral("f")) != QString::number(f))
            QTest::qWait(20);
        return daemon.Set({QStringLiteral("F"), hz});
    }
    QLabel* FLabel(int n) const { return Freq()->findChild<QLabel*>(QStringLiteral("Label%1").arg(n)); }
    QLineEdit* FText(int n) const { return Freq()->findChild<QLineEdit*>(QStringLiteral("Text%1").arg(n)); }
    QRadioButton* FOption(int i) const {
        return Freq()->findChild<QRadioButton*>(QStringLiteral("Option1_%1").arg(i));
    }
    Rigctld daemon;
};

} // namespace kolibrino::test
