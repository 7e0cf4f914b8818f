// RigEinstellungen: our rig settings window behind "Omnirig Konfigurieren". The
// operator picks Hamlib's rig model or "Kein Transceiver" (sorted by maker, then
// naturally by model, with a search that ignores hyphens, blanks and case), the serial
// port and one of the model's speeds, data bits, stop bits, handshake, the DTR and RTS
// lines, how PTT is keyed and on which port, an Icom's CI-V address, further Hamlib
// settings as NAME=WERT (checked by name against the model's own list), "Transceiver
// nur lesen", or the network address host:port of a rigctld; tests the rig, and stores
// the choice in settings section Rig1. A live engine takes the new settings at once.
//
// GUI thread only, shown modal. The test runs in a thread of its own and never blocks
// the window; it reports the frequency and mode or Hamlib's error in German.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "rig/hamlib_rig.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kolibrino::rig {

// Serial ports of this system (/dev/ttyS*, ttyUSB*, ttyACM*, /dev/serial/by-id/*).
QStringList SerialPorts();

// The test's result line: "ONLINE 7.050.000 USB" or the German error.
struct RigTestResult {
    bool online = false;
    int freq = 0;
    int mode = 0;
    QString error;
};
// Opens and reads the rig once in a worker thread while the window goes on; at most
// timeoutMs.
RigTestResult TestRig(const RigConfig& config, int timeoutMs = 5000);

class RigEinstellungen : public QDialog {
    Q_OBJECT
public:
    RigEinstellungen(Model& m, Dialogs& dialogs, QWidget* parent = nullptr);

    // The settings as the controls show them.
    RigConfig Current() const;
    // Selects a model in the list (false when Hamlib does not know it).
    bool SelectModel(int model);
    void Filter(const QString& text);
    void CommandTestClick();
    void CommandOkClick();

private:
    void Fill(const RigConfig& c);
    void ModelChanged();
    void FillSpeeds(int model, int speed);
    // The further settings and the CI-V address checked against the model: the German
    // refusal naming the setting, or empty.
    QString CheckSettings(const RigConfig& c) const;

    Model& m_;
    Dialogs& dialogs_;
    QLineEdit* textSuche_ = nullptr;
    QListWidget* listModelle_ = nullptr;
    QComboBox* comboPort_ = nullptr;
    QComboBox* comboSpeed_ = nullptr;
    QLineEdit* textNetz_ = nullptr;
    QComboBox* comboDatenbits_ = nullptr;
    QComboBox* comboStopbits_ = nullptr;
    QComboBox* comboHandshake_ = nullptr;
    QComboBox* comboDTR_ = nullptr;
    QComboBox* comboRTS_ = nullptr;
    QComboBox* comboPTT_ = nullptr;
    QComboBox* comboPTTPort_ = nullptr;
    QLineEdit* textCIV_ = nullptr;
    QPlainTextEdit* textWeitere_ = nullptr;
    QCheckBox* checkNurLesen_ = nullptr;
    QLabel* labelTest_ = nullptr;
    QPushButton* commandTest_ = nullptr;
};

// Shows the window modal (the engine's DialogVisible).
void ShowRigSettings(Model& m, Dialogs& dialogs, QWidget* parent);

// Tells the windows that wait for a rig that settings section Rig1 was saved by OK
// (the frequency window in its plain form then connects). GUI thread only.
class RigSettingsSaved : public QObject {
    Q_OBJECT
public:
    static RigSettingsSaved& Instance();
signals:
    void Saved();
};

} // namespace kolibrino::rig
