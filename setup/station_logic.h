// The logic of the station and contest settings (window StationLog): the values of
// its controls as one plain structure, the key filters, the validation, the saving in
// both modes, the choice of the file name, the import from the last log and the
// operator list.
//
// Window thread only. The window copies its controls into a StationForm, calls these
// functions and copies the form back. Messages and questions go through Dialogs; file
// writes run through the "FEHLER" trap. Nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/log_switch.h"

#include <QStringList>
#include <optional>

namespace kolibrino::setup {

enum class StationMode { NewLog, Options };

// Width limits of the fields.
inline constexpr int kCallMax = 13;    // Text1, Combo5
inline constexpr int kLocatorMax = 6;  // Text3
inline constexpr int kNameMax = 70;    // Text4, Text5, Text10
inline constexpr int kPlzMax = 10;     // Text9
inline constexpr int kEmailMax = 250;  // Text6
inline constexpr int kMemoMax = 20000; // Text7, Text8
inline constexpr int kMaxOperators = 10;

// The contest manager's address, named in the emergency-power sentence.
QString ContestManagerMail();
// Label14: the emergency-power sentence, three lines.
QString EmergencyPowerText();

// The controls of the window.
struct StationForm {
    QString text1;                              // MYCALL
    QString combo5Text;                         // MYOPCALL
    QStringList combo5Rows;                     // the operator list
    QString text3;                              // MYLOCATOR
    QString combo1Text;                         // "WI - Wien"
    int option1 = 0;                            // OM / YL
    int option4 = 0;                            // Single-OP, Multi-OP, Checklog
    int option2 = 0;                            // scoring class
    int option3 = 0;                            // power class
    int option5 = 0;                            // emergency power: Nein / Ja
    bool frame5Visible = false;                 // exam date shown (Newcomer)
    QString combo2Text;                         // day
    int combo3Index = -1;                       // month, list position (-1 blank)
    QString combo4Text;                         // year
    QString text4, text5, text9, text10, text6; // name, address, postcode, city, mail
    // Text7 and Text8 as the control shows them: one entry per displayed line.
    QStringList text7Lines, text8Lines;
    QString text7, text8; // the controls' text after the save or an import
    QString label10;      // the log's file name
};

// Where the focus goes after a failed check.
enum class Focus { None, Text1, Option2State, Combo5, Combo1, Text6 };

// The key filters. Text1, Combo5 and Text2: nullopt drops the key; a key passes
// folded to upper case, "-" becomes "/". Codes 8, 24 and 3 pass, 22 is dropped.
std::optional<QChar> FilterCallKey(QChar c);
// Text3: every key folded to upper case.
QChar FilterLocatorKey(QChar c);

// Load of the window: the district rows, the years (this one and three back, newest
// first), the month names, the operator list, Option5 from MYNPOWER.
QStringList DistrictRows(const Model& m);
QStringList YearRows(const TimeSource& clock);
QStringList MonthNames(const QLocale& locale);
QStringList DayRows();
QStringList ReadOperators(const Model& m);
StationForm LoadForm(const Model& m);

// The option click handlers: Option2 shows Frame5 for Newcomer; Option5 sets
// MYNPOWER at once (0 or 2), whether or not the window is then saved.
void ClickOption2(StationForm& f, int index);
void ClickOption5(Model& m, StationForm& f, int index);

// Options mode: the form filled from the open log's header.
void FillFromHeader(const Model& m, const TimeSource& clock, StationForm& f);

// The exam date of the form, "day sep month sep year"; nullopt when a part is missing
// or the three are no date.
std::optional<QString> ExamDate(const StationForm& f, QChar sep);

// Choice of the file name (Label10 / Command3). Sets m.CurrentLogName and f.label10,
// or leaves both. Returns the focus wanted.
Focus ChooseFileName(Model& m, Dialogs& dialogs, const TimeSource& clock, StationForm& f);

// Why the form's texts cannot go into a log header (a character outside code page 1252,
// the text of a header tag), in German; the empty text when they can.
QString StationFormProblem(const StationForm& f);

// The checks of both save buttons, in order. True when the save may go on.
bool Validate(Model& m, Dialogs& dialogs, const TimeSource& clock, StationForm& f, Focus* focus);

// Text7 / Text8 as saved: the displayed lines joined, trailing line ends dropped,
// one line end added; cut to 248 characters before it in options mode.
QString NormalizeMemo(const QStringList& displayedLines, StationMode mode);

// The save (Command2 in new-log mode, Command4 in options mode), after Validate().
// newLogWindowOpen: the log manager is up (new-log mode tells it the name instead of
// setting LogChanged). Returns false when the write was given up.
bool Save(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks, StationForm& f,
          StationMode mode, bool newLogWindowOpen);

// Import (Command13): the fields of the last log into the form. m.Header.MYNPOWER
// follows Option5 as a click would set it.
void ImportLastLog(Model& m, Dialogs& dialogs, StationForm& f);

// The operator list editor.
// Command10: false (and the box) when the list is full.
bool OperatorListMayAdd(Dialogs& dialogs, const QStringList& rows);
// Command11: takes Text2 over (editIndex -1 adds). False (and the box) when too short.
bool OperatorListTakeOver(Dialogs& dialogs, QStringList& rows, int editIndex, const QString& text2);
// Command8: asks for each selected row (indices ascending). Returns the rows left.
QStringList OperatorListDelete(Dialogs& dialogs, const QStringList& rows, const QList<int>& selected);

} // namespace kolibrino::setup
