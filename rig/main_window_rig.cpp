#include "rig/main_window_rig.h"

#include "entry/main_window.h"
#include "rig/frequenz.h"
#include "rig/rig_settings.h"
#include "rig/transceiver.h"
#include "ui/window_support.h"

#include <QAction>
#include <QComboBox>
#include <QPointer>
#include <memory>

namespace kolibrino::rig {

namespace {

// The rig windows of one main window.
struct RigWindows {
    QPointer<Frequenz> frequenz;
    QPointer<Transceiver> transceiver;
};

// The check-mark pattern of the companion windows: close an open window, else open it,
// show it, and give the main window the front again.
void ToggleFrequenz(RigWindows& windows, HauptForm& window, Model& m, Dialogs& dialogs, int pollMs) {
    QAction* entry = window.Action(QStringLiteral("MnFrequenz"));
    if (m.Open.Frequenz) {
        if (windows.frequenz) windows.frequenz->close();
        return;
    }
    auto* w = new Frequenz(window, m, dialogs, pollMs);
    windows.frequenz = w;
    window.RegisterCompanion(Companion::Frequenz, w);
    w->Load();
    if (entry) entry->setChecked(true);
    w->show();
    window.raise();
    window.activateWindow();
    // Band and rig agree at once: the band box's own click.
    if (auto* combo1 = window.findChild<QComboBox*>(QStringLiteral("Combo1")))
        emit combo1->activated(combo1->currentIndex());
}

void ToggleTransceiver(RigWindows& windows, HauptForm& window, Model& m, Dialogs& dialogs, int pollMs) {
    QAction* entry = window.Action(QStringLiteral("MnTransceiver"));
    if (m.Open.Transceiver) {
        if (windows.transceiver) windows.transceiver->close();
        return;
    }
    auto* w = new Transceiver(window, m, dialogs, pollMs);
    windows.transceiver = w;
    w->openSettings = [&window, &m, &dialogs] { ShowRigSettings(m, dialogs, &window); };
    window.RegisterCompanion(Companion::Transceiver, w);
    if (entry) entry->setChecked(true);
    if (!w->Load()) return; // no rig: closed itself after the question
    w->show();
    window.raise();
    window.activateWindow();
}

} // namespace

void InstallRig(HauptForm& window, Model& m, Dialogs& dialogs, const TimeSource&, RigInstallOptions options) {
    const int pollMs = options.pollMs;
    for (const char* name : {"MnFrequenz", "MnTransceiver"})
        if (QAction* a = window.Action(QString::fromLatin1(name))) a->setEnabled(true);

    auto windows = std::make_shared<RigWindows>();
    auto previous = window.companionOpener;
    window.companionOpener = [windows, &window, &m, &dialogs, pollMs, previous](Companion id) {
        if (id == Companion::Frequenz)
            ToggleFrequenz(*windows, window, m, dialogs, pollMs);
        else if (id == Companion::Transceiver)
            ToggleTransceiver(*windows, window, m, dialogs, pollMs);
        else if (previous)
            previous(id);
    };
    RigEngine::DialogOpener() = [&window, &m, &dialogs] { ShowRigSettings(m, dialogs, &window); };
    auto frequenz = [windows, &m]() -> Frequenz* {
        return m.Open.Frequenz ? windows->frequenz.data() : nullptr;
    };
    window.frequenzOf = [frequenz](int band) -> std::optional<float> {
        if (Frequenz* f = frequenz()) return f->LoggedFrequency(band);
        return std::nullopt;
    };
    window.frequenzFreqAlt = [frequenz](int band) {
        if (Frequenz* f = frequenz()) f->MainBandClick(band);
    };
    // The mode box moves the rig only while the window shows its rig panel.
    window.frequenzSetMode = [frequenz](int row) {
        if (Frequenz* f = frequenz(); f && f->Picture2Visible()) f->SetMode(row);
    };
}

} // namespace kolibrino::rig
