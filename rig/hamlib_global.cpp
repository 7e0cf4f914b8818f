#include "rig/hamlib_global.h"

#include <QHash>
#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <hamlib/rig.h>
#include <unistd.h>

namespace kolibrino::rig {

std::recursive_mutex& HamlibLock() {
    static std::recursive_mutex lock;
    return lock;
}

void HamlibQuiet() {
    static std::once_flag once;
    std::call_once(once, [] {
        std::lock_guard<std::recursive_mutex> hold(HamlibLock());
        rig_set_debug(RIG_DEBUG_NONE);
    });
}

namespace {
int CollectModel(const struct rig_caps* caps, rig_ptr_t data) {
    auto* list = static_cast<std::vector<RigModelInfo>*>(data);
    list->push_back({int(caps->rig_model), QString::fromLatin1(caps->mfg_name),
                     QString::fromLatin1(caps->model_name), caps->serial_rate_min, caps->serial_rate_max});
    return 1;
}

// Text without hyphens and blanks, lower case.
QString Squeezed(const QString& s) {
    QString out;
    out.reserve(s.size());
    for (const QChar c : s)
        if (c != QLatin1Char('-') && !c.isSpace()) out += c.toLower();
    return out;
}
} // namespace

bool NaturalLess(const QString& a, const QString& b) {
    int i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            int ei = i, ej = j;
            while (ei < a.size() && a[ei].isDigit())
                ++ei;
            while (ej < b.size() && b[ej].isDigit())
                ++ej;
            const QString na = a.mid(i, ei - i), nb = b.mid(j, ej - j);
            const qulonglong va = na.toULongLong(), vb = nb.toULongLong();
            if (va != vb) return va < vb;
            i = ei;
            j = ej;
            continue;
        }
        const QChar ca = a[i].toLower(), cb = b[j].toLower();
        if (ca != cb) return ca < cb;
        ++i;
        ++j;
    }
    return a.size() - i < b.size() - j;
}

const std::vector<RigModelInfo>& HamlibModels() {
    static const std::vector<RigModelInfo> list = [] {
        HamlibQuiet();
        std::vector<RigModelInfo> l;
        {
            std::lock_guard<std::recursive_mutex> hold(HamlibLock());
            rig_load_all_backends();
            rig_list_foreach(CollectModel, &l);
        }
        std::sort(l.begin(), l.end(), [](const RigModelInfo& a, const RigModelInfo& b) {
            const int c = QString::compare(a.maker, b.maker, Qt::CaseInsensitive);
            if (c != 0) return c < 0;
            if (NaturalLess(a.name, b.name)) return true;
            if (NaturalLess(b.name, a.name)) return false;
            return a.model < b.model;
        });
        return l;
    }();
    return list;
}

const RigModelInfo* FindModel(int model) {
    for (const RigModelInfo& i : HamlibModels())
        if (i.model == model) return &i;
    return nullptr;
}

bool ModelMatches(const QString& maker, const QString& name, const QString& text) {
    const QString hay = Squeezed(maker + name);
    const QString whole = Squeezed(text);
    if (whole.isEmpty() || hay.contains(whole)) return true;
    const QStringList words = text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& w : words)
        if (!hay.contains(Squeezed(w))) return false;
    return true;
}

std::vector<RigModelInfo> SearchModels(const QString& text) {
    std::vector<RigModelInfo> out;
    for (const RigModelInfo& i : HamlibModels())
        if (ModelMatches(i.maker, i.name, text)) out.push_back(i);
    return out;
}

QList<int> ModelSpeeds(int model) {
    static const int kSpeeds[] = {300, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
    QList<int> out;
    const RigModelInfo* info = FindModel(model);
    for (const int s : kSpeeds) {
        if (info && info->rateMax > 0 && (s < info->rateMin || s > info->rateMax)) continue;
        out << s;
    }
    return out;
}

namespace {
// A rig handle of a model, only to ask it about its settings; freed at scope end.
class ModelProbe {
public:
    explicit ModelProbe(int model) {
        HamlibModels(); // back ends loaded
        std::lock_guard<std::recursive_mutex> hold(HamlibLock());
        rig_ = rig_init(rig_model_t(model));
    }
    ~ModelProbe() {
        if (!rig_) return;
        std::lock_guard<std::recursive_mutex> hold(HamlibLock());
        rig_cleanup(rig_);
    }
    ModelProbe(const ModelProbe&) = delete;
    ModelProbe& operator=(const ModelProbe&) = delete;
    bool Knows(const QByteArray& name) const {
        std::lock_guard<std::recursive_mutex> hold(HamlibLock());
        return rig_ && rig_token_lookup(rig_, name.constData()) != RIG_CONF_END;
    }
    bool Valid() const { return rig_ != nullptr; }

private:
    RIG* rig_ = nullptr;
};
} // namespace

bool ModelHasSetting(int model, const char* name) {
    static QHash<QString, bool> cache;
    static std::mutex cacheLock;
    const QString key = QStringLiteral("%1/%2").arg(model).arg(QLatin1String(name));
    {
        std::lock_guard<std::mutex> hold(cacheLock);
        if (const auto it = cache.constFind(key); it != cache.constEnd()) return *it;
    }
    const bool has = ModelProbe(model).Knows(QByteArray(name));
    std::lock_guard<std::mutex> hold(cacheLock);
    cache.insert(key, has);
    return has;
}

QString CheckConfNames(int model, const QStringList& conf) {
    if (conf.isEmpty()) return QString();
    ModelProbe probe(model);
    if (!probe.Valid()) return QStringLiteral("Unbekanntes Transceiver-Modell %1").arg(model);
    for (const QString& line : conf) {
        const int eq = line.indexOf(QLatin1Char('='));
        const QString name = line.left(eq).trimmed();
        if (eq <= 0 || name.isEmpty())
            return QStringLiteral("Hamlib-Einstellung „%1“ ist nicht in der Form NAME=WERT.").arg(line);
        if (!probe.Knows(name.toLatin1()))
            return QStringLiteral("Unbekannte Hamlib-Einstellung „%1“: das Modell kennt sie nicht.")
                .arg(name);
    }
    return QString();
}

namespace {
constexpr int kGuardSlots = 8;
std::array<std::atomic<RIG*>, kGuardSlots>& GuardSlots() {
    static std::array<std::atomic<RIG*>, kGuardSlots> guarded{};
    return guarded;
}

constexpr int kGuardedSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTERM, SIGINT, SIGHUP};
constexpr int kMaxSignal = 65;
// What each signal did before our guard: it does that after the release.
struct sigaction g_before[kMaxSignal];

extern "C" void ReleasePttOnSignal(int sig) {
    // Never hang on the way out: the default alarm ends the process.
    alarm(2);
    for (std::atomic<RIG*>& slot : GuardSlots())
        if (RIG* r = slot.exchange(nullptr)) rig_set_ptt(r, RIG_VFO_CURR, RIG_PTT_OFF);
    if (sig > 0 && sig < kMaxSignal) sigaction(sig, &g_before[sig], nullptr);
    raise(sig);
}
} // namespace

void PttKeyed(RIG* rig) {
    InstallPttGuard();
    for (std::atomic<RIG*>& slot : GuardSlots())
        if (slot.load() == rig) return;
    for (std::atomic<RIG*>& slot : GuardSlots()) {
        RIG* empty = nullptr;
        if (slot.compare_exchange_strong(empty, rig)) return;
    }
}

void PttReleased(RIG* rig) {
    for (std::atomic<RIG*>& slot : GuardSlots()) {
        RIG* mine = rig;
        slot.compare_exchange_strong(mine, nullptr);
    }
}

void InstallPttGuard() {
    static std::mutex lock;
    std::lock_guard<std::mutex> hold(lock);
    for (const int sig : kGuardedSignals) {
        struct sigaction now {};
        sigaction(sig, nullptr, &now);
        if (now.sa_handler == ReleasePttOnSignal) continue;
        // Whatever handled the signal before (the default, or another handler) comes
        // after our release.
        g_before[sig] = now;
        struct sigaction sa {};
        sa.sa_handler = ReleasePttOnSignal;
        sigemptyset(&sa.sa_mask);
        sa.sa_flags = SA_NODEFER;
        sigaction(sig, &sa, nullptr);
    }
}

} // namespace kolibrino::rig
