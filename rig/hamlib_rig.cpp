#include "rig/hamlib_rig.h"

#include "core/settings.h"
#include "rig/rig_params.h"

#include <algorithm>
#include <hamlib/rig.h>
#include <mutex>

namespace kolibrino::rig {

namespace {
QString Section(int rigNumber) {
    return QStringLiteral("Rig%1").arg(rigNumber);
}
} // namespace

RigConfig ReadRigConfig(const QString& iniFile, int rigNumber) {
    RigConfig c;
    c.model = int(IniReadInt(iniFile, Section(rigNumber), QStringLiteral("Model")));
    c.port = IniReadString(iniFile, Section(rigNumber), QStringLiteral("Port"));
    c.speed = int(IniReadInt(iniFile, Section(rigNumber), QStringLiteral("Speed")));
    if (c.model < 0) c.model = 0;
    if (c.speed < 0) c.speed = 0;
    return c;
}

void WriteRigConfig(const QString& iniFile, int rigNumber, const RigConfig& config) {
    IniWrite(iniFile, Section(rigNumber), QStringLiteral("Model"), config.model);
    IniWrite(iniFile, Section(rigNumber), QStringLiteral("Port"), config.port);
    IniWrite(iniFile, Section(rigNumber), QStringLiteral("Speed"), config.speed);
}

void HamlibQuiet() {
    static std::once_flag once;
    std::call_once(once, [] { rig_set_debug(RIG_DEBUG_NONE); });
}

QString HamlibErrorText(int code) {
    switch (code < 0 ? -code : code) {
    case RIG_OK:
        return QString();
    case RIG_EINVAL:
        return QStringLiteral("Ungültiger Parameter");
    case RIG_ECONF:
        return QStringLiteral("Ungültige Einstellung (Schnittstelle, Geschwindigkeit oder Adresse)");
    case RIG_ENOMEM:
        return QStringLiteral("Zu wenig Speicher");
    case RIG_ENIMPL:
        return QStringLiteral("Funktion nicht eingebaut");
    case RIG_ETIMEOUT:
        return QStringLiteral("Zeitüberschreitung: der Transceiver antwortet nicht");
    case RIG_EIO:
        return QStringLiteral(
            "Ein-/Ausgabefehler: die Schnittstelle lässt sich nicht öffnen oder ist getrennt");
    case RIG_EINTERNAL:
        return QStringLiteral("Interner Fehler von Hamlib");
    case RIG_EPROTO:
        return QStringLiteral("Protokollfehler");
    case RIG_ERJCTED:
        return QStringLiteral("Befehl vom Transceiver abgelehnt");
    case RIG_ETRUNC:
        return QStringLiteral("Wert abgeschnitten");
    case RIG_ENAVAIL:
        return QStringLiteral("Funktion nicht verfügbar");
    case RIG_ENTARGET:
        return QStringLiteral("VFO nicht ansprechbar");
    case RIG_BUSERROR:
        return QStringLiteral("Fehler auf dem Bus");
    case RIG_BUSBUSY:
        return QStringLiteral("Bus belegt");
    case RIG_EARG:
        return QStringLiteral("Ungültiges Argument");
    case RIG_EVFO:
        return QStringLiteral("Ungültiger VFO");
    case RIG_EDOM:
        return QStringLiteral("Wert außerhalb des Bereichs");
    case RIG_EPOWER:
        return QStringLiteral("Transceiver ist ausgeschaltet");
    default:
        return QStringLiteral("Unbekannter Fehler %1").arg(code);
    }
}

HamlibRig::HamlibRig() {
    HamlibQuiet();
}

HamlibRig::~HamlibRig() {
    Release();
}

void HamlibRig::Release() {
    if (!rig_) return;
    if (open_) rig_close(rig_);
    rig_cleanup(rig_);
    rig_ = nullptr;
    open_ = false;
    readable_ = writeable_ = 0;
}

void HamlibRig::Close() {
    Release();
}

QString HamlibRig::Open(const RigConfig& config, int timeoutMs) {
    Release();
    if (!config.Configured()) return StatusText(ST_NOTCONFIGURED);
    rig_ = rig_init(rig_model_t(config.model));
    if (!rig_) return QStringLiteral("Unbekanntes Transceiver-Modell %1").arg(config.model);
    auto conf = [this](const char* name, const QByteArray& value) {
        const token_t t = rig_token_lookup(rig_, name);
        if (t != RIG_CONF_END) rig_set_conf(rig_, t, value.constData());
    };
    if (!config.port.isEmpty()) conf("rig_pathname", config.port.toLocal8Bit());
    if (config.speed > 0) conf("serial_speed", QByteArray::number(config.speed));
    conf("timeout", QByteArray::number(timeoutMs));
    conf("retry", "0");
    // The simulator switches its PTT only when told the PTT goes through the rig.
    if (config.model == kModelDummy) conf("ptt_type", "RIG");
    const int rc = rig_open(rig_);
    if (rc != RIG_OK) {
        const QString text = HamlibErrorText(rc);
        rig_cleanup(rig_);
        rig_ = nullptr;
        return text;
    }
    open_ = true;
    // Hamlib answers from its cache for half a second by default; we poll ourselves and
    // want what the rig says now.
    rig_set_cache_timeout_ms(rig_, HAMLIB_CACHE_ALL, 0);
    const struct rig_caps* caps = rig_->caps;
    const rmode_t modes = rig_->state.mode_list;
    if (caps->get_freq) readable_ |= PM_FREQ | PM_FREQA;
    if (caps->set_freq) writeable_ |= PM_FREQ | PM_FREQA;
    if (caps->get_mode) readable_ |= kModeBits;
    if (caps->set_mode) {
        for (int row = 0; row < kPanelModeCount - 1; ++row) {
            const int mode = PanelModeOfRow(row);
            const auto h = HamlibFromMode(mode);
            if (h && (modes == 0 || (modes & *h))) writeable_ |= mode;
        }
    }
    if (caps->get_split_vfo) readable_ |= PM_SPLITON | PM_SPLITOFF;
    if (caps->set_split_vfo) writeable_ |= PM_SPLITON | PM_SPLITOFF;
    if (rig_->state.pttport.type.ptt != RIG_PTT_NONE) {
        if (caps->get_ptt) readable_ |= PM_RX | PM_TX;
        writeable_ |= PM_RX | PM_TX;
    }
    return QString();
}

std::optional<RigReading> HamlibRig::Read(QString* error) {
    if (!open_) {
        if (error) *error = StatusText(ST_NOTRESPONDING);
        return std::nullopt;
    }
    RigReading r;
    freq_t f = 0;
    const int rc = rig_get_freq(rig_, RIG_VFO_CURR, &f);
    if (rc != RIG_OK) {
        if (error) *error = HamlibErrorText(rc);
        return std::nullopt;
    }
    r.freq = CheckedFrequency(double(f));
    if (readable_ & kModeBits) {
        rmode_t mode = RIG_MODE_NONE;
        pbwidth_t width = 0;
        if (rig_get_mode(rig_, RIG_VFO_CURR, &mode, &width) == RIG_OK) {
            r.mode = ModeFromHamlib(uint64_t(mode));
            r.modeKnown = true;
        }
    }
    if (readable_ & PM_SPLITON) {
        split_t split = RIG_SPLIT_OFF;
        vfo_t txVfo = RIG_VFO_NONE;
        if (rig_get_split_vfo(rig_, RIG_VFO_CURR, &split, &txVfo) == RIG_OK) r.split = split == RIG_SPLIT_ON;
    }
    if (readable_ & PM_TX) {
        ptt_t ptt = RIG_PTT_OFF;
        if (rig_get_ptt(rig_, RIG_VFO_CURR, &ptt) == RIG_OK) r.tx = ptt != RIG_PTT_OFF;
    }
    return r;
}

bool HamlibRig::WriteFreq(int hz, bool vfoA) {
    if (!open_ || hz <= 0) return false;
    return rig_set_freq(rig_, vfoA ? RIG_VFO_A : RIG_VFO_CURR, freq_t(hz)) == RIG_OK;
}

bool HamlibRig::WriteMode(int mode) {
    const auto h = HamlibFromMode(mode);
    if (!open_ || !h) return false;
    return rig_set_mode(rig_, RIG_VFO_CURR, rmode_t(*h), RIG_PASSBAND_NOCHANGE) == RIG_OK;
}

bool HamlibRig::WriteSplit(bool on) {
    if (!open_) return false;
    return rig_set_split_vfo(rig_, RIG_VFO_CURR, on ? RIG_SPLIT_ON : RIG_SPLIT_OFF,
                             on ? RIG_VFO_B : RIG_VFO_A) == RIG_OK;
}

bool HamlibRig::WritePtt(bool tx) {
    if (!open_) return false;
    return rig_set_ptt(rig_, RIG_VFO_CURR, tx ? RIG_PTT_ON : RIG_PTT_OFF) == RIG_OK;
}

namespace {
int CollectModel(const struct rig_caps* caps, rig_ptr_t data) {
    auto* list = static_cast<std::vector<RigModelInfo>*>(data);
    list->push_back({int(caps->rig_model), QString::fromLatin1(caps->mfg_name),
                     QString::fromLatin1(caps->model_name), caps->serial_rate_min, caps->serial_rate_max});
    return 1;
}
} // namespace

std::vector<RigModelInfo> HamlibModels() {
    HamlibQuiet();
    static std::once_flag once;
    std::call_once(once, [] { rig_load_all_backends(); });
    std::vector<RigModelInfo> list;
    rig_list_foreach(CollectModel, &list);
    std::sort(list.begin(), list.end(), [](const RigModelInfo& a, const RigModelInfo& b) {
        const int c = QString::compare(a.maker, b.maker, Qt::CaseInsensitive);
        if (c != 0) return c < 0;
        const int d = QString::compare(a.name, b.name, Qt::CaseInsensitive);
        return d != 0 ? d < 0 : a.model < b.model;
    });
    return list;
}

} // namespace kolibrino::rig
