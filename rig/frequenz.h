// Frequenz ("Frequenzen/Bänder"): mirrors frequency, band and mode of rig 1 into the
// main window, holds one operating frequency per contest band and supplies the
// frequency each new contact stores.
//
// Made by InstallRig's companion opener, GUI thread only, a child window of the main
// window that deletes itself when closed. Without a configured rig it is a plain form
// of three frequency fields and the button "Omnirig Konfigurieren"; a rig saved in the
// settings window later connects the open window in place. Rig trouble never reaches
// the operator as a message: the status label turns to OFFLINE and blinks, and the
// fields keep their values.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "rig/rig_engine.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <array>
#include <memory>
#include <optional>

class QAction;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::rig {

class Frequenz : public QWidget {
    Q_OBJECT
public:
    Frequenz(HauptForm& main, Model& m, Dialogs& dialogs, int pollMs = 250);
    ~Frequenz() override;

    // Restores the position, connects to the rig, fills the fields, marks it open.
    // Until the main window's band box click that follows (MainBandClick) the rig's
    // band does not move the main window's band.
    void Load();

    // Last frequency per band in Hz.
    int BQRG40 = 7000000;
    int BQRG80 = 3500000;
    int BQRG30 = 10100000;

    // The rig follows the band row of the main window (and its sideband rules).
    void FreqALT(int band, int modeRow);
    // The rig follows the mode row of the main window.
    void SetMode(int modeRow);
    // The main window's band box was clicked: guard on, choice, FreqALT, guard off.
    void MainBandClick(int band);
    // The frequency in kHz that a new contact on this band row stores.
    std::optional<float> LoggedFrequency(int band) const;

    // Events of the engine, public for the transceiver panel's tests alike.
    void StatusChange(int rigNumber);
    void ParamsChange(int rigNumber, int params);

    bool RigInUse() const { return engine_ != nullptr; }
    // The panel with the rig's frequency, mode and state (Picture2): shown while a rig
    // is in use, hidden in the plain form. The main window's mode box moves the rig
    // only while it is shown.
    bool Picture2Visible() const;
    int RigNumber() const { return rigNumber_; }
    int BlinkCount() const { return blink_; }
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();
    bool GuardOn() const { return bandSetByMain_; }

protected:
    void closeEvent(QCloseEvent* e) override;
    bool eventFilter(QObject* o, QEvent* e) override;

private:
    void Connect();
    // The plain form: settings saved later with a rig 1 make it connect in place.
    void RigConfiguredLater();
    void PlaceCommand1(bool inPicture2);
    void StatusUpdate();
    void ParamsUpdate();
    void SelectOption1(int index);
    void Option1Click(int index);
    void Unload();
    QLineEdit* KhzField(int band) const;
    void SetLabel3Colour(const QColor& c);
    void ShowStale(bool stale);
    void ClearRigValues();
    bool AwaitingWrite();

    HauptForm& main_;
    Model& m_;
    Dialogs& dialogs_;
    int pollMs_;
    std::shared_ptr<RigEngine> engine_;
    RigControl* rig_ = nullptr;
    int rigNumber_ = 0;
    int blink_ = 0;
    bool blinkRed_ = true;
    bool bandSetByMain_ = false;
    bool unloaded_ = false;
    // Opening: the rig's old band must not move the main window's band before the
    // main window's band box has told the rig its band.
    bool opening_ = false;
    // A band the main window gave while the rig was not online yet: written when it is.
    int pendingBand_ = -1;
    int pendingModeRow_ = 0;
    // A frequency written to the rig: its band detection waits until the rig reports
    // it (or two seconds passed), so an answer from before the write cannot undo it.
    int awaitFreq_ = 0;
    QElapsedTimer awaitClock_;
    // The mode box set from the rig's mode: the rig is not written back.
    bool modeFromRig_ = false;
    int shownGeneration_ = -1;
    QTimer timer1_;
    QPointer<QAction> menuEntry_;

    QWidget* picture2_ = nullptr;
    QGridLayout* picture2Layout_ = nullptr;
    QLabel* label1_ = nullptr;
    QLabel* label2_ = nullptr;
    QLabel* label3_ = nullptr;
    QLabel* labelGrund_ = nullptr;
    QPushButton* command1_ = nullptr;
    QGroupBox* frame2_ = nullptr;
    std::array<QRadioButton*, 3> option1_{};
    QLineEdit* text6_ = nullptr;
    QLineEdit* text10_ = nullptr;
    QLineEdit* text7_ = nullptr;
    QLineEdit* text11_ = nullptr;
    QLineEdit* text12_ = nullptr;
    QLineEdit* text9_ = nullptr;
};

// Only digits, Backspace, Ctrl+X and Ctrl+C reach a frequency field.
bool FrequencyKeyPasses(const QString& keyText);

} // namespace kolibrino::rig
