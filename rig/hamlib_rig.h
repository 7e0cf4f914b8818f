// One rig reached through Hamlib, owned whole: the RIG* lives in a HamlibRig and is
// closed and freed by its destructor. Also Hamlib's model list and its errors in
// German.
//
// A HamlibRig belongs to one thread at a time (the engine's worker, the command line or
// the settings window's test); it is not shared. Every call reports failure by its
// return value (a German text or nullopt); nothing throws. Calls block for as long as
// Hamlib waits for the rig (a few hundred milliseconds at most with our timeouts).
#pragma once

#include "rig/hamlib_global.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct s_rig;

namespace kolibrino::rig {

// Where rig 1 (or 2) is: Hamlib's model number (0: "Kein Transceiver"), the port
// (serial device or, for the network model 2, "host:port"), the serial speed, the
// serial line (data bits, stop bits, handshake, DTR and RTS), how PTT is keyed and on
// which port, the CI-V address of an Icom, and further Hamlib settings as "name=value".
// Empty texts and 0 leave Hamlib's default of the model. A rig read only is never
// told a frequency or a mode.
struct RigConfig {
    RigConfig() = default;
    RigConfig(int model_, QString port_, int speed_) : model(model_), port(std::move(port_)), speed(speed_) {}
    int model = 0;
    QString port;
    int speed = 0;
    int dataBits = 0;  // 0, 7 or 8
    int stopBits = 0;  // 0, 1 or 2
    QString handshake; // "", "None", "XONXOFF", "Hardware"
    QString dtr;       // "", "ON", "OFF"
    QString rts;       // "", "ON", "OFF"
    QString ptt;       // "", "RIG" (CAT), "DTR", "RTS", "None"
    QString pttPort;   // "" or a serial device
    QString civAddr;   // "" or the address, decimal or hex ("94", "0x5E")
    QStringList conf;  // further "name=value"
    bool readOnly = false;
    bool Configured() const { return model > 0; }
    bool operator==(const RigConfig&) const = default;
    // Every Hamlib setting this config makes, as name and value, in the order given.
    QList<QPair<QByteArray, QByteArray>> HamlibConf() const;
};

inline constexpr int kModelDummy = 1;
inline constexpr int kModelNetRigctl = 2;

// Settings section "Rig1" (or "Rig2"): keys "Model", "Port", "Speed", "DataBits",
// "StopBits", "Handshake", "DTR", "RTS", "PTT", "PTTPort", "CIV", "Conf" (the further
// settings joined by ";") and "NurLesen" (-1 or 0).
RigConfig ReadRigConfig(const QString& iniFile, int rigNumber);
void WriteRigConfig(const QString& iniFile, int rigNumber, const RigConfig& config);

// What one poll read. Only values that passed the strict checks are set.
struct RigReading {
    std::optional<int> freq; // Hz
    int mode = 0;            // our mode bit, 0 for any other mode
    bool modeKnown = false;
    std::optional<bool> split;
    std::optional<bool> tx;
};

class HamlibRig {
public:
    HamlibRig();
    ~HamlibRig();
    HamlibRig(const HamlibRig&) = delete;
    HamlibRig& operator=(const HamlibRig&) = delete;

    // Opens the rig; the German error text on failure (the rig stays closed).
    QString Open(const RigConfig& config, int timeoutMs = 500);
    void Close();
    bool IsOpen() const { return open_; }

    // Reads frequency, mode, split and PTT. nullopt plus the error text when the
    // frequency cannot be read: the rig no longer answers.
    std::optional<RigReading> Read(QString* error = nullptr);
    // Writes; false when the rig refused or did not answer.
    bool WriteFreq(int hz, bool vfoA);
    bool WriteMode(int mode);
    bool WriteSplit(bool on);
    bool WritePtt(bool tx, QString* error = nullptr);
    // Whether this program keyed the rig and has not released it yet.
    bool Keyed() const { return keyed_; }
    // Hamlib's own value of a setting (rig_get_conf), read back; empty when unknown.
    QString ConfValue(const QByteArray& name) const;
    // The settings of the last Open as Hamlib holds them (read back after setting).
    const QMap<QString, QString>& Applied() const { return applied_; }

    // Parameter bits the open rig can read and write.
    int Readable() const { return readable_; }
    int Writeable() const { return writeable_; }

private:
    void Release();
    struct s_rig* rig_ = nullptr;
    bool open_ = false;
    bool keyed_ = false;
    QMap<QString, QString> applied_;
    int readable_ = 0;
    int writeable_ = 0;
};

// German text of a Hamlib error code (negative or positive).
QString HamlibErrorText(int code);

} // namespace kolibrino::rig
