// The rules of the entry fields at the keyboard, without the window.
//
// The main window maps its widgets to EntryField and asks:
//   KeyDown of the window        -> ShiftTracker::KeyDown(), ClearsEntry()
//   KeyUp of the window          -> ShiftTracker::KeyUp()
//   KeyPress in a field          -> FilterKeyPress() (Enter, Space, dropped keys, case)
//   Tab leaving a field          -> TabTarget()
//   GotFocus / LostFocus         -> FocusColour(), SelectsAllOnFocus()
//   Text3 Change                 -> CallChange()   (dupe test and station name)
//   Text3 LostFocus              -> CallLostFocus()
//   Text2 LostFocus              -> TimeLostFocus()
//   Combo1 / Combo2 Click        -> BandOrModeClick(), ReportForMode()
//   combo Change                 -> ComboMaxLength()
//   Check1 Click                 -> Check1Look()
//   Combo6 Enter / Click         -> OperatorEnter() / OperatorPick(), StoreOperators()
//   DUPCommand1 / Label13 Click  -> DupeButton::Dismiss() / Label13Click()
//   MnCallVorgabe / MnEingabe    -> CallVorgabeClick() / EingabeClick()
// The look-ups on each key are substring searches of the call index and of the call
// list text; nothing here walks the records.
//
// Window thread only. The pure functions never fail: an unreadable time skips the dupe
// decision, a missing call list shows no name. The INI functions never report a failure
// (see core/settings.h).
#pragma once

#include "core/log_model.h"
#include "entry/contest_clock.h"
#include "entry/entry_colours.h"

#include <QChar>
#include <QString>
#include <QStringList>
#include <QTime>
#include <QtCore/qnamespace.h>
#include <optional>

namespace kolibrino {

enum class EntryField { Text1, Text2, Text3, Combo1, Combo2, Text4, Text5, Combo5, Check1, Text8, Combo6 };

// Classic key numbers.
namespace KeyAscii {
inline constexpr char16_t CtrlC = 3;
inline constexpr char16_t Backspace = 8;
inline constexpr char16_t Tab = 9;
inline constexpr char16_t Enter = 13;
inline constexpr char16_t CtrlX = 24;
inline constexpr char16_t Space = 32;
inline constexpr char16_t Minus = 45;
inline constexpr char16_t Slash = 47;
inline constexpr char16_t Delete = 127;
} // namespace KeyAscii
inline constexpr int kKeyCodeF10 = 121;
inline constexpr int kKeyCodeW = 87;

// ---- Keys ----------------------------------------------------------------------------

// ShiftDown of the main window: set at KeyDown when the Shift state is exactly Shift,
// cleared at any KeyUp.
struct ShiftTracker {
    bool ShiftDown = false;
    void KeyDown(int shiftState) {
        if (shiftState == 1) ShiftDown = true;
    }
    void KeyUp() { ShiftDown = false; }
};

// Shift state of modifiers: 1 Shift, 2 Ctrl, 4 Alt, added.
int ShiftStateOf(Qt::KeyboardModifiers modifiers);
// Key code of a Qt key: letters and digits their upper-case character, F1..F12 112..123;
// 0 for any other key.
int KeyCodeOf(int qtKey);
// KeyDown of the main window: Ctrl or Alt (Shift state over 1) with F10 or "W" swallows
// the key and clears the entry (ResetEntry).
bool ClearsEntry(int keyCode, int shiftState);

// What a key typed in a field does.
struct KeyAction {
    enum Kind {
        Type,          // the key types ch (which may differ from the key)
        Drop,          // the key is swallowed, nothing happens
        Jump,          // the key is swallowed; focus goes to target
        Take,          // the key is swallowed; the window runs Uebernehmen
        OperatorEnter, // Enter in Combo6: OperatorEnter() on its text
    };
    Kind kind = Type;
    QChar ch;
    EntryField target = EntryField::Text3;
    bool stopsTimer1 = false; // a key in Text1 or Text2 stops the running time
};

// KeyPress: key is the character the key would type (Enter 13, Backspace 8, Ctrl+X 24,
// Ctrl+C 3, ...). shiftDown is ShiftTracker::ShiftDown. The window calls this only for
// keys that type a character; Tab and Delete are always left to the field.
KeyAction FilterKeyPress(EntryField field, QChar key, bool shiftDown, QChar dateSeparator,
                         QChar timeSeparator);

// Where Space (or Shift+Space) moves the focus; nullopt where Space types a blank
// (Text8, Combo6).
std::optional<EntryField> SpaceTarget(EntryField field, bool shiftDown);

// Where Tab leaving a field goes instead of the next field in order; nullopt: the
// usual order. backwards is Shift held with Tab; fieldsLocked is the lock of Text1 and
// Text2; extendedEntry is the panel Picture4 being visible.
std::optional<EntryField> TabTarget(EntryField leaving, bool backwards, bool fieldsLocked,
                                    bool extendedEntry);

// ---- Look ----------------------------------------------------------------------------

// Back colour of a field at GotFocus (focused) and LostFocus (not focused). Text1 and
// Text2 are green with manual time and grey when locked, whatever the focus.
quint32 FocusColour(EntryField field, bool focused, const DateTimeLockState& lock);
// Text4 and Text5 select their whole text at GotFocus.
bool SelectsAllOnFocus(EntryField field);
// Length limit of a combo's text (truncating): Combo1, Combo2 5, Combo5 2, Combo6 13;
// 0 for a field that is no combo.
int ComboMaxLength(EntryField field);

inline const QString kQslJa = QStringLiteral("QSL JA");
inline const QString kQslNein = QStringLiteral("QSL NEIN");
struct CheckLook {
    QString caption;
    quint32 backColour = EntryColour::ButtonFace;
};
// Check1 by its value: 1 "QSL JA" on the highlight colour, else "QSL NEIN" on the
// button face.
CheckLook Check1Look(int value);

// ---- The call field ------------------------------------------------------------------

// The dupe test of the main window on the index: the district of a station worked
// before, and the warning when the entry would be a dupe.
struct CallCheck {
    bool found = false; // the call has an entry: bezirk fills Combo5
    QString bezirk;
    bool isDupe = false; // light the dupe button (DupeButton::Show) and show warning
    QString warning;     // for Label13: "Station bereits um <time> Uhr gearbeitet!"
};
// call is the trimmed call; band the number at the start of Combo1; mode Combo2's text;
// entryTime Text2 read as a time (nullopt when unreadable: the district is still found,
// no dupe is decided).
CallCheck CheckCall(const Model& m, const QString& call, int band, const QString& mode,
                    const std::optional<QTime>& entryTime);

// What a change of Text3 shows. The window first hides Label10 and empties Label13,
// then applies this.
struct CallChangeResult {
    bool refreshDbLog = false;      // enable the timer of the partial-call window
    bool clearDbLogList = false;    // set the partial-call grid's rows to 0
    std::optional<CallCheck> check; // from four characters on
    std::optional<QString> label10; // call and name from the call list; nullopt: hidden
};
// text is Text3 as it stands; oeCallList the whole "OeCallList.txt" (lines of call ";"
// name); dbLogRows the rows of the partial-call window's grid.
CallChangeResult CallChange(const Model& m, const QString& text, int band, const QString& mode,
                            const std::optional<QTime>& entryTime, const QString& oeCallList, bool dbLogOpen,
                            int dbLogRows);
// The call the call list is searched for: the trimmed call up to a "/" from the fourth
// character on ("OE5XYZ/P" gives "OE5XYZ"; "OE/..." keeps its early "/").
QString ListCall(const QString& call);
// Label10's text for a call: the hit of call ";" at the start of a line of the list
// (position 0 or behind a line feed), a blank and the name up to the end of its line;
// nullopt when the call is not in the list.
std::optional<QString> StationName(const QString& oeCallList, const QString& call);

// Text3 LostFocus: from two characters on the test runs once more (fills Combo5); then
// the field is painted white.
std::optional<CallCheck> CallLostFocus(const Model& m, const QString& text, int band, const QString& mode,
                                       const std::optional<QTime>& entryTime);

// Text2 LostFocus: when Timer1 was stopped by a key and the text is not empty, the
// normalised time to write back ("930" gives "09:30"); nullopt: leave the text.
std::optional<QString> TimeLostFocus(const QString& text, bool timer1Running, QChar timeSeparator);

// The number at the start of Combo1's text ("80m" gives 80); 0 when none.
int BandOfText(const QString& combo1Text);

// ---- Band and mode -------------------------------------------------------------------

// Text4 and Text5 for a mode list index: "59" for 0 (SSB), else "599".
QString ReportForMode(int modeIndex);
struct BandOrModeResult {
    bool refreshDbLog = false;
    std::optional<CallCheck> check; // the call has two characters or more
};
// Combo1 or Combo2 Click after the window has handed the frequency window the new
// index; the window focuses Text3 afterwards.
BandOrModeResult BandOrModeClick(const Model& m, const QString& text3, int band, const QString& mode,
                                 const std::optional<QTime>& entryTime, bool dbLogOpen);

// ---- Dupe warning --------------------------------------------------------------------

// Label13 Click: with the dupe button lit, dismisses it like the button's Click; the
// result says whether to empty Combo5 (it was not empty).
bool Label13Click(DupeButton& button, const QString& combo5Text);

// ---- Operators (Combo6) --------------------------------------------------------------

inline constexpr int kMaxStoredOperators = 10;
// Enter in Combo6: the upper-case trimmed text goes to the top, an equal entry leaves
// its old place. An empty text changes nothing.
QStringList OperatorEnter(const QStringList& items, const QString& text);
// Click in Combo6: the chosen entry moves to the top.
QStringList OperatorPick(const QStringList& items, int index);
// The entries section OPCALLs keeps: at most the first ten.
QStringList OperatorsToStore(const QStringList& items);
// The operator list of the settings, each row through the text gate (a row the gate
// refuses is left out).
QStringList LoadOperators(const QString& iniFile = {});
// Deletes section OPCALLs and writes at most the first ten entries.
void StoreOperators(const QStringList& items, const QString& iniFile = {});

// ---- Menu items of the entry ---------------------------------------------------------

// MnCallVorgabe Click.
struct CallVorgabeResult {
    bool checked = false;
    std::optional<QString> text3; // new text of Text3
    int caret = -1;               // caret position to set, -1: leave it
};
CallVorgabeResult CallVorgabeClick(bool wasChecked, const QString& text3, const QString& iniFile = {});
bool ReadCallVorgabe(const QString& iniFile = {});
// Text3 after ResetEntry: "OE" with the call default, else empty.
QString ResetCallText(bool callVorgabe);

// MnEingabe: the entry panel in twips. Normal: Picture3 540 high, Picture5 at 810;
// extended: 1080 high, Picture4 shown, Picture5 at 1400.
struct EntryPanelLayout {
    int picture3Height = 540;
    bool picture4Visible = false;
    int picture5Top = 810;
    bool checked = false;
};
EntryPanelLayout EntryPanel(bool extended);
// MnEingabe Click, decided by Picture3's height: from 540 it extends, otherwise it goes
// back. The window then focuses Text3.
EntryPanelLayout EingabeClick(int picture3HeightTwips);
bool ReadErwEingabe(const QString& iniFile = {});
// Unload writes ErwEeingabe: -1 or 0.
void WriteErwEingabe(bool extended, const QString& iniFile = {});

} // namespace kolibrino
