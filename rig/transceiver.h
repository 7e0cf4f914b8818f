// Transceiver ("Transceiver Steuerung"): a remote control for rig 1 over all amateur
// bands from 160 m to 70 cm: band keys with one memory per band, mode and step choices,
// up and down, direct frequency entry, split and PTT. It never touches the log or the
// main window's boxes; what it changes at the rig reaches the frequency window through
// that window's own events.
//
// Made by InstallRig's companion opener, GUI thread only, a child window of the main
// window that deletes itself when closed. Without a configured rig it asks whether to
// open the rig settings and closes itself whatever the answer. Rig errors are never
// shown as boxes: the status line says why the rig is offline and since when, and a
// refused PTT is told below the PTT box. The PTT box shows what the rig says it does;
// a PTT this window keyed is released when the window closes.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "rig/rig_engine.h"

#include <QPointer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>

class QAction;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::rig {

struct BandMemory {
    int freq = 0;    // Hz
    int modeRow = 0; // row of the mode choices
};

class Transceiver : public QWidget {
    Q_OBJECT
public:
    Transceiver(HauptForm& main, Model& m, Dialogs& dialogs, int pollMs = 250);
    ~Transceiver() override;

    // Restores position, step and band memory, marks it open, connects to the rig.
    // False when there is no rig (the window has then closed itself).
    bool Load();

    std::array<BandMemory, kPanelBandCount> BandMem{};
    // Opens the rig settings after the question at a failed connection.
    std::function<void()> openSettings;

    // Controls' events, public for the tests.
    void Command5Click(int band);
    void Option1Click(int row);
    void Option2Click(int row);
    void StepClick(bool up);
    void Check1Click();
    void Check2Click();
    void LabelTXClick();
    void Text1Enter();
    void Text1Escape();

    void StatusChange(int rigNumber);
    void ParamsChange(int rigNumber, int params);

    int ModeRow() const { return modeRow_; }
    int StepRow() const { return stepRow_; }
    bool RigInUse() const { return engine_ != nullptr; }

protected:
    void closeEvent(QCloseEvent* e) override;
    bool event(QEvent* e) override;
    bool eventFilter(QObject* o, QEvent* e) override;

private:
    bool Connect();
    void DisableUnwritable();
    void StatusUpdate();
    void ParamsUpdate();
    void PaintModes();
    void PaintSteps();
    void PaintCheck(QCheckBox* c, bool on, const char* onBackground);
    void ShowPtt();
    void PttRefused(int rigNumber, const QString& reason);
    void ClearRigValues();
    void Unload();

    HauptForm& main_;
    Model& m_;
    Dialogs& dialogs_;
    int pollMs_;
    std::shared_ptr<RigEngine> engine_;
    RigControl* rig_ = nullptr;
    int rigNumber_ = 0;
    int modeRow_ = -1;
    int stepRow_ = -1;
    bool connecting_ = false;
    bool unloaded_ = false;
    bool closing_ = false;
    int shownGeneration_ = -1;
    QPointer<QAction> menuEntry_;

    std::array<QPushButton*, kPanelBandCount> command5_{};
    std::array<QPushButton*, kPanelModeCount> option1_{};
    std::array<QPushButton*, 9> option2_{};
    QLabel* labelTX_ = nullptr;
    QLabel* label8_ = nullptr;
    QLabel* label1_ = nullptr;
    QLabel* labelPTT_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QCheckBox* check2_ = nullptr;
    QWidget* picture4_ = nullptr;
    QPushButton* command2_ = nullptr;
    QPushButton* command3_ = nullptr;
    QPushButton* command1_ = nullptr;
    QGroupBox* frame1_ = nullptr;
    QLineEdit* text1_ = nullptr;
    QPushButton* command4_ = nullptr;
};

} // namespace kolibrino::rig
