#include "rig/rig_params.h"

#include <cmath>
#include <hamlib/rig.h>
#include <limits>

namespace kolibrino::rig {

QString StatusText(int status) {
    switch (status) {
    case ST_NOTCONFIGURED:
        return QStringLiteral("Transceiver nicht konfiguriert");
    case ST_DISABLED:
        return QStringLiteral("Transceiver abgeschaltet");
    case ST_PORTBUSY:
        return QStringLiteral("Schnittstelle nicht verfügbar");
    case ST_NOTRESPONDING:
        return QStringLiteral("Transceiver antwortet nicht");
    case ST_ONLINE:
        return QStringLiteral("Online");
    default:
        return QString();
    }
}

namespace {
struct ModePair {
    int mode;
    uint64_t hamlib;
};
constexpr ModePair kModes[] = {
    {PM_CW_U, RIG_MODE_CW},   {PM_CW_L, RIG_MODE_CWR},     {PM_SSB_U, RIG_MODE_USB},
    {PM_SSB_L, RIG_MODE_LSB}, {PM_DIG_U, RIG_MODE_PKTUSB}, {PM_DIG_L, RIG_MODE_PKTLSB},
    {PM_AM, RIG_MODE_AM},     {PM_FM, RIG_MODE_FM},
};
} // namespace

int ModeFromHamlib(uint64_t hamlibMode) {
    for (const ModePair& p : kModes)
        if (p.hamlib == hamlibMode) return p.mode;
    return 0;
}

std::optional<uint64_t> HamlibFromMode(int mode) {
    for (const ModePair& p : kModes)
        if (p.mode == mode) return p.hamlib;
    return std::nullopt;
}

std::optional<int> CheckedFrequency(double hz) {
    if (!std::isfinite(hz) || hz < 1 || hz > double(std::numeric_limits<int32_t>::max())) return std::nullopt;
    if (hz != std::floor(hz)) return std::nullopt;
    return int(hz);
}

int CheckedMode(int mode) {
    for (const ModePair& p : kModes)
        if (p.mode == mode) return mode;
    return 0;
}

QString FormatFrequency(int hz) {
    if (hz < 0) hz = 0;
    return QStringLiteral("%1.%2.%3")
        .arg(hz / 1000000)
        .arg((hz / 1000) % 1000, 3, 10, QLatin1Char('0'))
        .arg(hz % 1000, 3, 10, QLatin1Char('0'));
}

QString ModeLabel(int mode) {
    switch (mode) {
    case PM_CW_L:
    case PM_CW_U:
        return QStringLiteral("CW");
    case PM_SSB_L:
        return QStringLiteral("LSB");
    case PM_SSB_U:
        return QStringLiteral("USB");
    case PM_AM:
        return QStringLiteral("AM");
    case PM_FM:
        return QStringLiteral("FM");
    case PM_DIG_L:
        return QStringLiteral("Digital_L");
    case PM_DIG_U:
        return QStringLiteral("Digital_U");
    default:
        return QStringLiteral("Other");
    }
}

int ModeBoxRow(int mode) {
    switch (mode) {
    case PM_CW_L:
    case PM_CW_U:
        return 1;
    case PM_SSB_L:
    case PM_SSB_U:
        return 0;
    default:
        return -1;
    }
}

int ContestBandOf(int hz) {
    if (hz >= 3500000 && hz <= 3800000) return 1;
    if (hz >= 7000000 && hz <= 7200000) return 0;
    if (hz >= 10100000 && hz <= 10150000) return 2;
    return -1;
}

QString KilohertzText(int bandIndex, int hz) {
    const QString s = QString::number(hz);
    return bandIndex == 2 ? s.mid(2, 3) : s.mid(1, 3);
}

float LoggedKilohertz(const QString& megahertz, const QString& kilohertz) {
    bool ok = false;
    const double v = (megahertz.trimmed() + kilohertz.trimmed()).toDouble(&ok);
    return ok ? float(v) : 0.0f;
}

const std::array<PanelBand, kPanelBandCount>& PanelBands() {
    static const std::array<PanelBand, kPanelBandCount> bands = {{
        {"160", 1810000, 1950000},
        {"80", 3500000, 3800000},
        {"40", 7000000, 7200000},
        {"30", 10100000, 10150000},
        {"20", 14000000, 14350000},
        {"17", 18068000, 18168000},
        {"15", 21000000, 21450000},
        {"12", 24890000, 24990000},
        {"10", 28000000, 29700000},
        {"6", 50000000, 52000000},
        {"2", 144000000, 146000000},
        {"70", 430000000, 440000000},
    }};
    return bands;
}

int PanelBandOf(int hz) {
    const auto& bands = PanelBands();
    for (int i = 0; i < kPanelBandCount; ++i)
        if (hz >= bands[size_t(i)].low && hz <= bands[size_t(i)].high) return i;
    return -1;
}

QString PanelToolTip(int index) {
    if (index == kPanelBandCount - 1) return QStringLiteral("70 cm");
    return QString::fromLatin1(PanelBands()[size_t(index)].caption) + QStringLiteral(" m");
}

namespace {
constexpr int kPanelModes[kPanelModeCount - 1] = {PM_CW_U,  PM_CW_L,  PM_SSB_U, PM_SSB_L,
                                                  PM_DIG_U, PM_DIG_L, PM_AM,    PM_FM};
}

int PanelModeOfRow(int row) {
    return row >= 0 && row < kPanelModeCount - 1 ? kPanelModes[row] : 0;
}

int PanelRowOfMode(int mode) {
    for (int i = 0; i < kPanelModeCount - 1; ++i)
        if (kPanelModes[i] == mode) return i;
    return kPanelModeCount - 1;
}

QString PanelModeCaption(int row) {
    static const char* const captions[kPanelModeCount] = {"CW-U",  "CW-L", "USB", "LSB",  "DIG-U",
                                                          "DIG-L", "AM",   "FM",  "Other"};
    return row >= 0 && row < kPanelModeCount ? QString::fromLatin1(captions[row]) : QString();
}

QString PanelStepCaption(int row) {
    static const char* const captions[9] = {"1 Hz",    "10 Hz", "100 Hz", "1 kHz",  "10 kHz",
                                            "100 kHz", "1 MHz", "10 MHz", "100 MHz"};
    return row >= 0 && row < 9 ? QString::fromLatin1(captions[row]) : QString();
}

} // namespace kolibrino::rig
