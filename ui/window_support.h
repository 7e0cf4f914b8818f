// The small layer every window of Kolibrino stands on: twips, stored window
// positions, companion windows with their open flags and check-mark menu entries, and
// the "FEHLER" trap with the hourglass given back.
//
// GUI thread only. Reads of the settings never fail (a missing key reads 0); a
// position outside the screen is simply not applied.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QRect>
#include <QString>
#include <array>
#include <functional>
#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace kolibrino {

// Stored positions and sizes are in twips, 15 to a pixel.
inline constexpr int kTwipsPerPixel = 15;
inline int TwipsToPixels(int twips) {
    return twips / kTwipsPerPixel;
}
inline int PixelsToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}

inline const char* const kSectionEinstellungen = "Einstellungen";
inline const char* const kSectionFensterPos = "FensterPos";

// The companion windows, in the order the main window reopens them.
enum class Companion {
    BZKarte,
    GridKarte,
    Frequenz,
    Statistik,
    Transceiver,
    LogTracker,
    DBLog,
    QsoRate,
    FehlendeMulti
};
inline constexpr int kCompanionCount = 9;

struct CompanionDef {
    Companion id;
    const char* name;      // object name of the window
    const char* openKey;   // Einstellungen key: open at the last exit
    const char* posName;   // FensterPos prefix of <posName>Top / <posName>Left
    const char* menuEntry; // object name of the check-mark menu entry
    int defaultTop;        // twips, the design place
    int defaultLeft;
};

// In reopening order: BZKarte, GridKarte, Frequenz, Statistik, Transceiver, LogTracker, DBLog,
// QsoRate, FehlendeMulti.
const std::array<CompanionDef, kCompanionCount>& Companions();
const CompanionDef& CompanionOf(Companion id);
bool& OpenFlag(Model& m, Companion id);
bool OpenFlag(const Model& m, Companion id);

// Marks a companion window open or closed: the model's flag and the check mark of its
// menu entry (which may be null). Windows call it at the end of Load and in Unload.
void SetCompanionOpen(Model& m, Companion id, QAction* menuEntry, bool open);

// A check-mark menu entry for a companion window.
QAction* AddCompanionEntry(QMenu* menu, const QString& caption, const QString& objectName);

// The screen's size in twips (the primary screen; 800 x 600 pixels when there is none).
int ScreenWidthTwips();
int ScreenHeightTwips();

// Moves w to the stored <name>Top / <name>Left (twips), each value applied only when
// it is at least 0 and below the screen's height or width.
void RestoreWindowPos(QWidget* w, const QString& name);
void SaveWindowPos(const QWidget* w, const QString& name);
void WriteWindowPos(const QString& name, int topTwips, int leftTwips);

// Whether <name>Top or <name>Left is stored in FensterPos.
bool HasStoredWindowPos(const QString& name);

// Where a companion window opens when no position is stored for it: beside the main
// window (right, then left), else below it, each on the screen and clear of the other
// windows if possible; on a screen too small for that, over the main window below
// keep. The window never covers keep (the entry line). All rectangles in global
// pixels, frames included; the result is the frame's top left corner.
QPoint CompanionPlace(const QRect& mainFrame, const QRect& keep, const QSize& frame, const QRect& screen,
                      const std::vector<QRect>& others);

// RunTrapped() for windows: on Cancel every hourglass is taken back, as the trap's
// Cancel leaves the event with the normal pointer.
[[nodiscard]] bool RunTrappedUi(Dialogs& dialogs, const std::function<QString()>& op);

// Settings flags are 0 or -1.
inline int FlagValue(bool on) {
    return on ? -1 : 0;
}

} // namespace kolibrino
