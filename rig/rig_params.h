// The rig's vocabulary as the frequency window and the transceiver panel use it: the
// parameter bits and status numbers of the rig interface, the mapping between Hamlib's
// modes and ours, the band tables with their inclusive limits, and the strict checks
// that decide what a rig value may become on screen or in the log.
//
// Pure functions, any thread. Nothing here fails: an unknown value maps to "no band",
// to mode 0 ("Other") or to nullopt.
#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <optional>

namespace kolibrino::rig {

// Parameter bits (one bit per readable or writable property of a rig).
enum Param : int {
    PM_UNKNOWN = 0x1,
    PM_FREQ = 0x2,
    PM_FREQA = 0x4,
    PM_FREQB = 0x8,
    PM_SPLITON = 0x8000,
    PM_SPLITOFF = 0x10000,
    PM_RX = 0x200000,
    PM_TX = 0x400000,
    PM_CW_U = 0x800000,
    PM_CW_L = 0x1000000,
    PM_SSB_U = 0x2000000,
    PM_SSB_L = 0x4000000,
    PM_DIG_U = 0x8000000,
    PM_DIG_L = 0x10000000,
    PM_AM = 0x20000000,
    PM_FM = 0x40000000,
};
inline constexpr int kModeBits =
    PM_CW_U | PM_CW_L | PM_SSB_U | PM_SSB_L | PM_DIG_U | PM_DIG_L | PM_AM | PM_FM;

// Rig status; only ST_ONLINE means the rig answers.
enum RigStatus : int {
    ST_NOTCONFIGURED = 0,
    ST_DISABLED = 1,
    ST_PORTBUSY = 2,
    ST_NOTRESPONDING = 3,
    ST_ONLINE = 4
};
QString StatusText(int status);

// The version our engine reports, and the range a client accepts (inclusive).
inline constexpr int kInterfaceVersion = 0x210;
inline bool InterfaceVersionAccepted(int v) {
    return v >= 257 && v <= 665;
}

// Hamlib's mode (rmode_t bits) to ours and back. Everything outside CW, CWR, USB, LSB,
// PKTUSB, PKTLSB, AM and FM is 0 ("Other"); our 0 or an unknown value maps to nullopt.
int ModeFromHamlib(uint64_t hamlibMode);
std::optional<uint64_t> HamlibFromMode(int mode);

// A frequency from a rig: a positive whole number of Hz that fits 32 bits, else nullopt.
std::optional<int> CheckedFrequency(double hz);
// Our mode bit from a value: exactly one of the mode bits, else 0.
int CheckedMode(int mode);

// "0.000.000": MHz, then kHz and Hz as three digits each (7050000 -> "7.050.000").
QString FormatFrequency(int hz);

// The frequency window's label of a mode and the main window's mode row it sets
// (0 phone, 1 CW, -1 unchanged).
QString ModeLabel(int mode);
int ModeBoxRow(int mode);

// The contest bands of the frequency window: the index of its choices (0 40 m, 1 80 m,
// 2 30 m), tested 80, 40, 30 with inclusive limits; -1 outside all.
int ContestBandOf(int hz);
// The kilohertz field text of a detected frequency (characters 2 to 4 of the decimal
// number, 3 to 5 on 30 m).
QString KilohertzText(int bandIndex, int hz);
// The logged frequency in kHz: the megahertz field joined with the kilohertz field.
float LoggedKilohertz(const QString& megahertz, const QString& kilohertz);

// The panel's twelve bands from 160 m to 70 cm.
struct PanelBand {
    const char* caption;
    int low; // the default too
    int high;
};
inline constexpr int kPanelBandCount = 12;
const std::array<PanelBand, kPanelBandCount>& PanelBands();
int PanelBandOf(int hz); // -1 outside all
QString PanelToolTip(int index);

// The panel's mode rows 0 to 8 ("Other" is 8 and is never written).
inline constexpr int kPanelModeCount = 9;
int PanelModeOfRow(int row); // 0 for row 8 or out of range
int PanelRowOfMode(int mode);
QString PanelModeCaption(int row);
QString PanelStepCaption(int row);

} // namespace kolibrino::rig
