#include "rig/rig_engine.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QTimer>

namespace kolibrino::rig {

// Lives in the worker thread; owns the HamlibRig there.
class RigWorker : public QObject {
    Q_OBJECT
public:
    RigWorker(const RigConfig& config, int pollMs, int generation)
        : config_(config), pollMs_(pollMs), generation_(generation) {}

    void Begin() {
        timer_ = new QTimer(this);
        timer_->setInterval(pollMs_);
        connect(timer_, &QTimer::timeout, this, &RigWorker::Poll);
        timer_->start();
        Poll();
    }
    void Write(const std::function<void(HamlibRig&)>& op) {
        if (!rig_.IsOpen()) return;
        op(rig_);
        // Show the result of a write at once instead of a poll period later.
        if (!pollPending_) {
            pollPending_ = true;
            QMetaObject::invokeMethod(
                this,
                [this] {
                    pollPending_ = false;
                    Poll();
                },
                Qt::QueuedConnection);
        }
    }

    // PTT, written and remembered here: a refusal reaches the next snapshot; a PTT
    // we keyed is released even when the rig went away meanwhile.
    void WritePtt(bool tx) {
        if (!rig_.IsOpen()) {
            // A release still owed waits in mustRelease_ for the rig's return.
            if (tx) pttError_ = StatusText(ST_NOTRESPONDING);
            return;
        }
        QString err;
        pttWritten_ = true;
        if (rig_.WritePtt(tx, &err)) {
            if (!tx) mustRelease_ = false;
        } else {
            pttError_ = err.isEmpty() ? QStringLiteral("Befehl vom Transceiver abgelehnt") : err;
        }
        Write([](HamlibRig&) {});
    }

    void ReleaseIfKeyed() {
        if (rig_.Keyed() || mustRelease_) WritePtt(false);
    }

signals:
    void Polled(const kolibrino::rig::RigSnapshot& s);

private:
    // The rig stopped answering: a PTT we keyed is let go (tried now, and again when
    // it answers), then the rig is closed.
    void GoOffline() {
        if (rig_.Keyed() && !rig_.WritePtt(false)) mustRelease_ = true;
        rig_.Close();
    }

    void Poll() {
        RigSnapshot s;
        s.generation = generation_;
        if (!rig_.IsOpen()) {
            // A rig that is away is asked again once a second, not on every poll: each
            // failed open costs Hamlib a little memory it never gives back.
            if (lastAttempt_.isValid() && lastAttempt_.elapsed() < kReopenMs) return;
            lastAttempt_.start();
            const QString err = rig_.Open(config_);
            s.applied = rig_.Applied();
            if (!err.isEmpty()) {
                s.status = ST_NOTRESPONDING;
                s.error = err;
                emit Polled(s);
                return;
            }
            lastAttempt_.invalidate();
            if (mustRelease_ && rig_.WritePtt(false)) mustRelease_ = false;
        }
        s.applied = rig_.Applied();
        QString err;
        const std::optional<RigReading> r = rig_.Read(&err);
        if (!r) {
            GoOffline();
            s.status = ST_NOTRESPONDING;
            s.error = QStringLiteral("Keine Antwort vom Transceiver: %1").arg(err);
            emit Polled(s);
            return;
        }
        s.status = ST_ONLINE;
        s.readable = rig_.Readable();
        s.writeable = rig_.Writeable();
        s.freq = r->freq.value_or(0);
        s.mode = r->modeKnown ? r->mode : 0;
        s.modeKnown = r->modeKnown;
        if (r->split) s.split = *r->split ? PM_SPLITON : PM_SPLITOFF;
        if (r->tx)
            s.tx = *r->tx ? PM_TX : PM_RX;
        else if (s.writeable & PM_TX) // a rig that cannot tell: what we last set
            s.tx = rig_.Keyed() ? PM_TX : PM_RX;
        s.pttError = pttError_;
        pttError_.clear();
        s.pttWritten = pttWritten_;
        pttWritten_ = false;
        emit Polled(s);
    }

    static constexpr int kReopenMs = 1000;
    RigConfig config_;
    int pollMs_;
    int generation_;
    HamlibRig rig_;
    QElapsedTimer lastAttempt_;
    QTimer* timer_ = nullptr;
    bool pollPending_ = false;
    bool mustRelease_ = false;
    bool pttWritten_ = false;
    QString pttError_;
};

RigControl::RigControl(int rigNumber, const RigConfig& config, int pollMs, QObject* parent)
    : QObject(parent), number_(rigNumber), config_(config), pollMs_(pollMs) {
    qRegisterMetaType<kolibrino::rig::RigSnapshot>();
    if (config_.Configured()) s_.status = ST_NOTRESPONDING; // until the first answer
    offlineSince_ = QDateTime::currentDateTimeUtc();
    Start();
}

RigControl::~RigControl() {
    Stop();
}

void RigControl::Start() {
    if (!config_.Configured()) return;
    thread_ = new QThread;
    worker_ = new RigWorker(config_, pollMs_, generation_);
    worker_->moveToThread(thread_);
    connect(worker_, &RigWorker::Polled, this, &RigControl::Apply, Qt::QueuedConnection);
    // The worker is deleted in its thread when the thread ends; its HamlibRig closes.
    connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_->setObjectName(QStringLiteral("Rig%1").arg(number_));
    thread_->start();
    QMetaObject::invokeMethod(worker_, &RigWorker::Begin, Qt::QueuedConnection);
}

void RigControl::Stop() {
    if (!worker_) return;
    disconnect(worker_, nullptr, this, nullptr);
    worker_ = nullptr;
    QThread* t = thread_;
    thread_ = nullptr;
    t->quit();
    if (t->wait(200)) {
        delete t;
        return;
    }
    // A Hamlib call still under way (a serial rig that hangs): the window does not wait
    // for it. The thread ends when the call returns and is deleted then.
    connect(t, &QThread::finished, t, &QObject::deleteLater);
    if (t->isFinished()) t->deleteLater(); // it ended just now; a second request is harmless
}

void RigControl::Reconfigure(const RigConfig& config) {
    // The old rig's worker releases a PTT we keyed as it closes the rig.
    Stop();
    keyedHere_ = false;
    config_ = config;
    s_ = RigSnapshot{};
    if (config_.Configured()) s_.status = ST_NOTRESPONDING;
    offlineSince_ = QDateTime::currentDateTimeUtc();
    ++generation_;
    emit StatusChanged();
    Start();
}

QString RigControl::StatusStr() const {
    return StatusText(s_.status);
}

QString RigControl::StatusLine() const {
    if (s_.status == ST_ONLINE || s_.status == ST_NOTCONFIGURED) return StatusStr();
    QString line = StatusStr();
    if (!s_.error.isEmpty()) line += QStringLiteral(": ") + s_.error;
    if (offlineSince_.isValid())
        line += QStringLiteral(" (seit %1 UTC)").arg(offlineSince_.toString(QStringLiteral("HH:mm:ss")));
    return line;
}

int RigControl::ShownFreq() const {
    if (IsParamReadable(PM_FREQ)) return Freq();
    if (IsParamReadable(PM_FREQA)) return FreqA();
    return 0;
}

bool RigControl::IsParamReadable(int param) const {
    return param != 0 && (s_.readable & param) == param;
}

bool RigControl::IsParamWriteable(int param) const {
    return param != 0 && (s_.writeable & param) == param;
}

void RigControl::Apply(const RigSnapshot& s) {
    // A reading of the rig before the last reconfiguration, still under way: dropped.
    if (s.generation != generation_) return;
    const bool statusChanged = s.status != s_.status;
    const bool reasonChanged = s.error != s_.error;
    if (s.status != ST_ONLINE) {
        // Values of a rig that does not answer are not shown; the next answer brings
        // new ones.
        if (s_.status == ST_ONLINE) offlineSince_ = QDateTime::currentDateTimeUtc();
        s_ = RigSnapshot{};
        s_.status = s.status;
        s_.error = s.error;
        s_.applied = s.applied;
        if (statusChanged || reasonChanged) emit StatusChanged();
        return;
    }
    RigSnapshot next = s;
    // A mode that could not be read this time keeps the last one read.
    if (!s.modeKnown && s_.status == ST_ONLINE) {
        next.mode = s_.mode;
        next.modeKnown = s_.modeKnown;
    }
    const QString pttError = s.pttError;
    next.pttError.clear();
    const RigSnapshot& s2 = next;
    int params = 0;
    if (s2.freq != s_.freq) params |= PM_FREQ | PM_FREQA;
    if (s2.mode != s_.mode) params |= s2.mode != 0 ? s2.mode : PM_UNKNOWN;
    if (s2.split != s_.split && s2.split != 0) params |= s2.split;
    // After a PTT write the windows hear the rig's word even when nothing changed.
    if ((s2.tx != s_.tx || s2.pttWritten) && s2.tx != 0) params |= s2.tx;
    s_ = next;
    if (statusChanged) emit StatusChanged();
    if (params != 0) emit ParamsChanged(params);
    if (!pttError.isEmpty()) emit PttRefused(pttError);
}

namespace {
bool Queue(RigWorker* w, std::function<void(HamlibRig&)> op) {
    if (!w) return false;
    QMetaObject::invokeMethod(
        w, [w, op = std::move(op)] { w->Write(op); }, Qt::QueuedConnection);
    return true;
}
} // namespace

void RigControl::SetFreq(int hz) {
    if (hz <= 0 || s_.status != ST_ONLINE || config_.readOnly) return;
    Queue(worker_, [hz](HamlibRig& r) { r.WriteFreq(hz, false); });
}

void RigControl::SetFreqA(int hz) {
    if (hz <= 0 || s_.status != ST_ONLINE || config_.readOnly) return;
    Queue(worker_, [hz](HamlibRig& r) { r.WriteFreq(hz, true); });
}

void RigControl::SetMode(int mode) {
    if (CheckedMode(mode) == 0 || s_.status != ST_ONLINE || config_.readOnly) return;
    Queue(worker_, [mode](HamlibRig& r) { r.WriteMode(mode); });
}

void RigControl::SetSplit(int split) {
    if ((split != PM_SPLITON && split != PM_SPLITOFF) || s_.status != ST_ONLINE) return;
    Queue(worker_, [split](HamlibRig& r) { r.WriteSplit(split == PM_SPLITON); });
}

void RigControl::SetTx(int tx) {
    if ((tx != PM_TX && tx != PM_RX) || s_.status != ST_ONLINE || !worker_) return;
    keyedHere_ = tx == PM_TX;
    RigWorker* w = worker_;
    QMetaObject::invokeMethod(
        w, [w, tx] { w->WritePtt(tx == PM_TX); }, Qt::QueuedConnection);
}

void RigControl::ReleasePtt() {
    keyedHere_ = false;
    if (!worker_) return;
    RigWorker* w = worker_;
    QMetaObject::invokeMethod(
        w, [w] { w->ReleaseIfKeyed(); }, Qt::QueuedConnection);
}

RigEngine::RigEngine(const RigConfig& rig1, const RigConfig& rig2, int pollMs, QObject* parent)
    : QObject(parent), rig1_(std::make_unique<RigControl>(1, rig1, pollMs)),
      rig2_(std::make_unique<RigControl>(2, rig2, pollMs)) {
    for (RigControl* r : {rig1_.get(), rig2_.get()}) {
        const int n = r->RigNumber();
        connect(r, &RigControl::StatusChanged, this, [this, n] { emit StatusChange(n); });
        connect(r, &RigControl::ParamsChanged, this, [this, n](int params) { emit ParamsChange(n, params); });
        connect(r, &RigControl::PttRefused, this, [this, n](const QString& why) { emit PttRefused(n, why); });
    }
}

RigEngine::~RigEngine() = default;

std::function<void()>& RigEngine::DialogOpener() {
    static std::function<void()> opener;
    return opener;
}

void RigEngine::SetDialogVisible(bool visible) {
    if (visible && DialogOpener()) DialogOpener()();
}

namespace {
std::weak_ptr<RigEngine>& Shared() {
    static std::weak_ptr<RigEngine> engine;
    return engine;
}
} // namespace

std::shared_ptr<RigEngine> ConnectEngine(const QString& iniFile, int pollMs) {
    if (auto live = Shared().lock()) return live;
    const RigConfig rig1 = ReadRigConfig(iniFile, 1);
    if (!rig1.Configured()) return {};
    auto engine = std::make_shared<RigEngine>(rig1, ReadRigConfig(iniFile, 2), pollMs);
    Shared() = engine;
    return engine;
}

std::shared_ptr<RigEngine> LiveEngine() {
    return Shared().lock();
}

} // namespace kolibrino::rig

#include "rig_engine.moc"
