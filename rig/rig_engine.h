// The rig engine: Rig1 and Rig2 with the operations and events the frequency window
// and the transceiver panel use (status, frequency, mode, split, transmit, what can be
// read and written), over Hamlib.
//
// Each configured rig has a worker thread that owns its HamlibRig, polls it every
// poll period and carries out the writes in order. What it reads reaches the window
// thread queued; RigControl keeps the last checked values there, so every getter is a
// plain read that never waits for the rig, and every setter only queues a write.
// StatusChange comes when the connection comes or goes, ParamsChange only when a
// value changed. A rig that stops answering is reported ST_NOTRESPONDING and is
// reopened on every poll until it answers again.
//
// Build, use and destroy on the window thread. Nothing throws; a write to a rig that
// is offline is dropped. Destruction stops the workers; a worker caught in a long
// Hamlib call is left to end on its own (its thread and rig are freed when the call
// returns), so the window waits at most 200 ms.
#pragma once

#include "rig/hamlib_rig.h"
#include "rig/rig_params.h"

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

namespace kolibrino::rig {

class RigWorker;

// What a worker sends to the window thread after each poll.
struct RigSnapshot {
    int status = ST_NOTCONFIGURED;
    int freq = 0;
    int mode = 0;
    int split = 0; // PM_SPLITON, PM_SPLITOFF or 0 when unknown
    int tx = 0;    // PM_TX, PM_RX or 0 when unknown
    int readable = 0;
    int writeable = 0;
    bool modeKnown = false;
    QString error;                  // why the rig is not online
    QString pttError;               // why the last PTT write was refused
    QMap<QString, QString> applied; // Hamlib's settings as read back at the last open
    int generation = 0;             // of the settings the worker ran on
    bool pttWritten = false;        // a PTT write came before this reading
};

class RigControl : public QObject {
    Q_OBJECT
public:
    RigControl(int rigNumber, const RigConfig& config, int pollMs, QObject* parent = nullptr);
    ~RigControl() override;

    int RigNumber() const { return number_; }
    const RigConfig& Config() const { return config_; }
    // Stops the worker and starts one on the new settings. The values of the old rig
    // are gone at once (StatusChanged comes, Generation() counts up).
    void Reconfigure(const RigConfig& config);
    int Generation() const { return generation_; }
    // Why the rig is offline ("Verbindung zu 127.0.0.1:4532 abgelehnt", "Schnittstelle
    // /dev/ttyUSB0 fehlt", "Keine Antwort vom Transceiver: ...") and since when (UTC);
    // empty and invalid while online.
    QString OfflineReason() const { return s_.status == ST_ONLINE ? QString() : s_.error; }
    QDateTime OfflineSince() const { return s_.status == ST_ONLINE ? QDateTime() : offlineSince_; }
    // The status line of the windows: the status, and while offline the reason and the
    // time ("Transceiver antwortet nicht: Verbindung ... abgelehnt (seit 14:03:12 UTC)").
    QString StatusLine() const;
    // The settings as Hamlib holds them after the last open (name to value).
    const QMap<QString, QString>& AppliedConf() const { return s_.applied; }
    bool ReadOnly() const { return config_.readOnly; }

    int Status() const { return s_.status; }
    QString StatusStr() const;
    int Freq() const { return s_.freq; }
    int FreqA() const { return s_.freq; }
    int Mode() const { return s_.mode; }
    int Split() const { return s_.split; }
    int Tx() const { return s_.tx; }
    bool IsParamReadable(int param) const;
    bool IsParamWriteable(int param) const;
    // What the windows show as the rig's frequency: Freq when readable, else FreqA when
    // readable, else 0.
    int ShownFreq() const;

    // Queued writes; dropped while the rig is not online or when the value fails the
    // checks (a frequency must be positive, a mode one of ours). Frequency and mode are
    // also dropped for a rig read only.
    void SetFreq(int hz);
    void SetFreqA(int hz);
    void SetMode(int mode);
    void SetSplit(int split); // PM_SPLITON or PM_SPLITOFF
    void SetTx(int tx);       // PM_TX or PM_RX
    // Whether this program keyed the PTT (and has not released it).
    bool KeyedHere() const { return keyedHere_; }
    // Releases a PTT this program keyed, online or not (the worker tries again when the
    // rig answers again).
    void ReleasePtt();

signals:
    void StatusChanged();
    void ParamsChanged(int params);
    // The rig refused a PTT write; the German reason.
    void PttRefused(const QString& reason);

private:
    void Start();
    void Stop();
    void Apply(const RigSnapshot& s);

    int number_;
    RigConfig config_;
    int pollMs_;
    RigSnapshot s_;
    QDateTime offlineSince_;
    int generation_ = 0;
    bool keyedHere_ = false;
    QThread* thread_ = nullptr;
    RigWorker* worker_ = nullptr;
};

class RigEngine : public QObject {
    Q_OBJECT
public:
    RigEngine(const RigConfig& rig1, const RigConfig& rig2, int pollMs = 250, QObject* parent = nullptr);
    ~RigEngine() override;

    int InterfaceVersion() const { return kInterfaceVersion; }
    RigControl* Rig1() const { return rig1_.get(); }
    RigControl* Rig2() const { return rig2_.get(); }
    RigControl* Rig(int number) const { return number == 2 ? Rig2() : Rig1(); }
    // Shows the rig settings window (through the hook set by the program).
    void SetDialogVisible(bool visible);
    static std::function<void()>& DialogOpener();

signals:
    void StatusChange(int rigNumber);
    void ParamsChange(int rigNumber, int params);
    void PttRefused(int rigNumber, const QString& reason);

private:
    std::unique_ptr<RigControl> rig1_;
    std::unique_ptr<RigControl> rig2_;
};

// The engine both rig windows share, as one rig server serves many clients: made from
// settings sections Rig1 and Rig2 on the first request, freed with its last user.
// Empty when rig 1 is not configured (the windows then go on without a rig).
std::shared_ptr<RigEngine> ConnectEngine(const QString& iniFile, int pollMs = 250);
// The live shared engine, if any (the settings window reconfigures it).
std::shared_ptr<RigEngine> LiveEngine();

} // namespace kolibrino::rig
