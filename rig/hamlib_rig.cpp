#include "rig/hamlib_rig.h"

#include "core/settings.h"
#include "rig/rig_params.h"

#include <QFileInfo>
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
    const QString sec = Section(rigNumber);
    auto str = [&](const char* key) {
        return IniReadString(iniFile, sec, QString::fromLatin1(key)).trimmed();
    };
    auto num = [&](const char* key) {
        return std::max(0, int(IniReadInt(iniFile, sec, QString::fromLatin1(key))));
    };
    RigConfig c;
    c.model = num("Model");
    c.port = IniReadString(iniFile, sec, QStringLiteral("Port"));
    c.speed = num("Speed");
    c.dataBits = num("DataBits");
    c.stopBits = num("StopBits");
    c.handshake = str("Handshake");
    c.dtr = str("DTR");
    c.rts = str("RTS");
    c.ptt = str("PTT");
    c.pttPort = str("PTTPort");
    c.civAddr = str("CIV");
    for (const QString& line : str("Conf").split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!line.trimmed().isEmpty()) c.conf << line.trimmed();
    c.readOnly = IniReadInt(iniFile, sec, QStringLiteral("NurLesen")) != 0;
    return c;
}

void WriteRigConfig(const QString& iniFile, int rigNumber, const RigConfig& config) {
    const QString sec = Section(rigNumber);
    IniWrite(iniFile, sec, QStringLiteral("Model"), config.model);
    IniWrite(iniFile, sec, QStringLiteral("Port"), config.port);
    IniWrite(iniFile, sec, QStringLiteral("Speed"), config.speed);
    IniWrite(iniFile, sec, QStringLiteral("DataBits"), config.dataBits);
    IniWrite(iniFile, sec, QStringLiteral("StopBits"), config.stopBits);
    IniWrite(iniFile, sec, QStringLiteral("Handshake"), config.handshake);
    IniWrite(iniFile, sec, QStringLiteral("DTR"), config.dtr);
    IniWrite(iniFile, sec, QStringLiteral("RTS"), config.rts);
    IniWrite(iniFile, sec, QStringLiteral("PTT"), config.ptt);
    IniWrite(iniFile, sec, QStringLiteral("PTTPort"), config.pttPort);
    IniWrite(iniFile, sec, QStringLiteral("CIV"), config.civAddr);
    IniWrite(iniFile, sec, QStringLiteral("Conf"), config.conf.join(QLatin1Char(';')));
    IniWrite(iniFile, sec, QStringLiteral("NurLesen"), config.readOnly ? -1 : 0);
}

QList<QPair<QByteArray, QByteArray>> RigConfig::HamlibConf() const {
    QList<QPair<QByteArray, QByteArray>> out;
    auto add = [&out](const char* name, const QString& value) {
        if (!value.isEmpty()) out.append({QByteArray(name), value.toLocal8Bit()});
    };
    add("rig_pathname", port);
    if (speed > 0) add("serial_speed", QString::number(speed));
    if (dataBits > 0) add("data_bits", QString::number(dataBits));
    if (stopBits > 0) add("stop_bits", QString::number(stopBits));
    add("serial_handshake", handshake);
    add("dtr_state", dtr);
    add("rts_state", rts);
    add("ptt_type", ptt);
    add("ptt_pathname", pttPort);
    add("civaddr", civAddr);
    for (const QString& line : conf) {
        const int eq = line.indexOf(QLatin1Char('='));
        if (eq > 0)
            out.append({line.left(eq).trimmed().toLatin1(), line.mid(eq + 1).trimmed().toLocal8Bit()});
    }
    return out;
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
    // A PTT we keyed is let go before the rig is.
    if (open_ && keyed_) WritePtt(false);
    PttReleased(rig_);
    keyed_ = false;
    std::lock_guard<std::recursive_mutex> hold(HamlibLock());
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
    applied_.clear();
    if (!config.Configured()) return StatusText(ST_NOTCONFIGURED);
    HamlibModels(); // back ends loaded once, under the lock
    std::unique_lock<std::recursive_mutex> hold(HamlibLock());
    rig_ = rig_init(rig_model_t(config.model));
    if (!rig_) return QStringLiteral("Unbekanntes Transceiver-Modell %1").arg(config.model);
    auto conf = [this](const char* name, const QByteArray& value) -> int {
        const token_t t = rig_token_lookup(rig_, name);
        if (t == RIG_CONF_END) return -RIG_EINVAL;
        return rig_set_conf(rig_, t, value.constData());
    };
    conf("timeout", QByteArray::number(timeoutMs));
    conf("retry", "0");
    // The simulator switches its PTT only when told the PTT goes through the rig.
    if (config.model == kModelDummy && config.ptt.isEmpty()) conf("ptt_type", "RIG");
    QString refused;
    for (const auto& [name, value] : config.HamlibConf()) {
        if (rig_token_lookup(rig_, name.constData()) == RIG_CONF_END) {
            refused = QStringLiteral("Unbekannte Hamlib-Einstellung „%1“: das Modell kennt sie nicht.")
                          .arg(QString::fromLatin1(name));
            break;
        }
        if (const int rc = conf(name.constData(), value); rc != RIG_OK) {
            refused = QStringLiteral("Hamlib lehnt die Einstellung %1=%2 ab: %3")
                          .arg(QString::fromLatin1(name), QString::fromLocal8Bit(value), HamlibErrorText(rc));
            break;
        }
        applied_.insert(QString::fromLatin1(name), ConfValue(name));
    }
    if (!refused.isEmpty()) {
        rig_cleanup(rig_);
        rig_ = nullptr;
        return refused;
    }
    const QString port = config.port.trimmed();
    if (config.model != kModelNetRigctl && port.startsWith(QLatin1Char('/')) && !QFileInfo::exists(port)) {
        rig_cleanup(rig_);
        rig_ = nullptr;
        return QStringLiteral("Schnittstelle %1 fehlt").arg(port);
    }
    if (const QString pttPort = config.pttPort.trimmed();
        pttPort.startsWith(QLatin1Char('/')) && !QFileInfo::exists(pttPort)) {
        rig_cleanup(rig_);
        rig_ = nullptr;
        return QStringLiteral("PTT-Schnittstelle %1 fehlt").arg(pttPort);
    }
    const int rc = rig_open(rig_);
    if (rc != RIG_OK) {
        QString text = HamlibErrorText(rc);
        if (config.model == kModelNetRigctl && (rc == -RIG_EIO || rc == RIG_EIO))
            text = QStringLiteral("Verbindung zu %1 abgelehnt").arg(port);
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

bool HamlibRig::WritePtt(bool tx, QString* error) {
    if (!open_) {
        if (error) *error = StatusText(ST_NOTRESPONDING);
        return false;
    }
    if (tx) PttKeyed(rig_); // noted before the rig goes to transmit
    const int rc = rig_set_ptt(rig_, RIG_VFO_CURR, tx ? RIG_PTT_ON : RIG_PTT_OFF);
    if (rc == RIG_OK) {
        keyed_ = tx;
        if (!tx) PttReleased(rig_);
        return true;
    }
    if (tx && !keyed_) PttReleased(rig_);
    if (error) *error = HamlibErrorText(rc);
    return false;
}

QString HamlibRig::ConfValue(const QByteArray& name) const {
    if (!rig_) return QString();
    std::lock_guard<std::recursive_mutex> hold(HamlibLock());
    const token_t t = rig_token_lookup(rig_, name.constData());
    if (t == RIG_CONF_END) return QString();
    char value[256] = {0};
    if (rig_get_conf2(rig_, t, value, int(sizeof value)) != RIG_OK) return QString();
    return QString::fromLocal8Bit(value);
}

} // namespace kolibrino::rig
