// Changing one contact in place: the opening rules of the edit window, its checks in
// their order, its own clash test, and the change of counters, call index, grid row,
// record, log text and file.
//
// Called by the edit window (Bearbeiten) and by kolibrino-cli, on the window thread.
// The window gathers its fields into EditFields and calls CheckEdit(), then
// ApplyEdit(); nothing is changed before the last check has passed. The dupe status
// is never computed anew: a change that would clash with another live contact is
// refused, and dupes of the edited contact stay dupes. Failures: a refused check is
// returned with its text; a failed write is offered again through the "FEHLER" trap
// and, after Cancel, leaves model and grid changed and the old file whole.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <optional>

namespace kolibrino::corrections {

inline const QString kMsgDupeNichtBearbeiten =
    QStringLiteral("Als 'Dupe' geloggte QSO können nicht bearbeitet werden!\n\nEs ist nur Löschen möglich.");
inline const QString kMsgFrequenzUngueltig =
    QStringLiteral("ACHTUNG\nFrequenz ist ungültig!\nFrequenz wir auf default gesetzt!");
inline const QString kMsgFrequenzZahlen = QStringLiteral("Bei FREQUENZ dürfen nur Zahlen eingegeben werden!");
inline const QString kMsgBereitsGeloggt = QStringLiteral("Speichern nicht möglich. Station bereits geloggt!");
inline const QString kMsgStaatsfunkstelle40 =
    QStringLiteral("Staatsfunkstellen dürfen auf 40m nicht arbeiten!");
// The description the error box shows for the seven checks whose own text has no
// place to go in the edit window.
inline const QString kMsgObjektErforderlich = QStringLiteral("Objekt erforderlich");

// The fields of the edit window as the operator left them.
struct EditFields {
    QString datum;        // Text1
    QString zeit;         // Text2
    QString band;         // Combo1 text
    int bandIndex = -1;   // Combo1 list position
    QString mode;         // Combo2 text
    QString call;         // Text3
    QString rstGesendet;  // Text4
    QString rstEmpfangen; // Text5
    QString bezirk;       // Combo5 text
    int qsl = 0;          // Check1
    QString notiz;        // Text8
    QString opCall;       // Combo6 text
    QString mhz;          // Text12
    QString khz;          // Text9, normalised by CheckEdit
};

enum class EditFocus { None, Text1, Text2, Text3, Text4, Text5, Text8, Text9, Combo1, Combo2, Combo5, Combo6 };

struct EditFailure {
    int check = 0;           // 1 to 7, the order of the checks; 0 the text gate (flags 48)
    QString message;         // the check's own text
    int boxFlags = 0;        // the flags of its box
    bool textHidden = false; // one of the seven whose text the operator never sees
    EditFocus focus = EditFocus::None;
};

// Opening: the refusal text for a dupe row, else nullopt.
std::optional<QString> EditRefusal(const LogGridModel& grid, int row);
// The fields as the window shows them on opening. frequencyWarning tells whether the
// frequency column was unusable (the band's default is then shown).
EditFields FieldsOfRow(const LogGridModel& grid, int row, bool* frequencyWarning = nullptr);
// The three kilohertz digits: the trimmed text laid over "000" from the left.
QString NormalizeKhz(const QString& text);

// The window's own clash test: another live contact of call on the band and mode of
// the fields, in the period of the fields' time, other than the record under edit.
bool EditCallExistTest(const Model& m, const QString& call, const EditFields& f, int editedRecord);

// The text fields as the record stores them (and the grid shows them).
EditFields GatedEditFields(const EditFields& f);

// The text gate first, then all checks in their order, on the row under edit. f.khz
// is normalised on the way, and the text fields take the form the file will hold.
// Shows no box: the caller shows failure->message with failure->boxFlags, or, when
// textHidden, the error box.
std::optional<EditFailure> CheckEdit(const Model& m, const LogGridModel& grid, int row, EditFields& f);

struct EditResult {
    bool applied = false;
    bool fileWritten = false;
    QString oldBezirk;
    QString newBezirk;
};

// Applies checked fields to the row and its record, in the order of the window.
EditResult ApplyEdit(Model& m, Dialogs& dialogs, LogGridModel& grid, int row, const EditFields& f, int year);

} // namespace kolibrino::corrections
