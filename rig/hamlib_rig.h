// One rig reached through Hamlib, owned whole: the RIG* lives in a HamlibRig and is
// closed and freed by its destructor. Also Hamlib's model list and its errors in
// German.
//
// A HamlibRig belongs to one thread at a time (the engine's worker, the command line or
// the settings window's test); it is not shared. Every call reports failure by its
// return value (a German text or nullopt); nothing throws. Calls block for as long as
// Hamlib waits for the rig (a few hundred milliseconds at most with our timeouts).
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct s_rig;

namespace kolibrino::rig {

// Where rig 1 (or 2) is: Hamlib's model number, the port (serial device or, for the
// network model 2, "host:port") and the serial speed (0: the model's default).
struct RigConfig {
    int model = 0;
    QString port;
    int speed = 0;
    bool Configured() const { return model > 0; }
    bool operator==(const RigConfig&) const = default;
};

inline constexpr int kModelDummy = 1;
inline constexpr int kModelNetRigctl = 2;

// Settings section "Rig1" (or "Rig2"): keys "Model", "Port", "Speed".
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
    bool WritePtt(bool tx);

    // Parameter bits the open rig can read and write.
    int Readable() const { return readable_; }
    int Writeable() const { return writeable_; }

private:
    void Release();
    struct s_rig* rig_ = nullptr;
    bool open_ = false;
    int readable_ = 0;
    int writeable_ = 0;
};

// German text of a Hamlib error code (negative or positive).
QString HamlibErrorText(int code);

// Hamlib's rigs, sorted by maker, then model.
struct RigModelInfo {
    int model;
    QString maker;
    QString name;
    int rateMin;
    int rateMax;
};
std::vector<RigModelInfo> HamlibModels();
// Quietens Hamlib's own messages on standard error (idempotent).
void HamlibQuiet();

} // namespace kolibrino::rig
