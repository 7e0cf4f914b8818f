// What a text must be before it reaches a file: every character storable in code page
// 1252, and none of the separators the log file and the call index are cut at.
//
// StorableContactText() cleans a contact's text field (note, operator) the way the
// entry fields do: the separators "¶" and "×" and line ends are dropped, characters
// the code page cannot hold become a visible "?". HeaderValueProblem() is the test of
// the station settings, which refuse rather than change what the operator typed.
//
// GateText() is the one gate every text passes before it enters a record or the log
// header, whoever brings it: the entry, the edit window, the bulk change, the station
// settings, kolibrino-cli, the operator list read from the settings. It says what the
// field will hold (trimmed and in capitals where the field's rule says) or, in German,
// why the text cannot be stored: a character code page 1252 cannot hold, a separator
// "¶" or "×", a line end or control character, the text of a header tag, more
// characters than the field stores. FieldCharAllowed() is the same rule for one key.
//
// Pure functions; any thread may call them. They never fail.
#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

namespace kolibrino {

// True for a character code page 1252 can hold (a surrogate half never).
bool IsCp1252Char(QChar c);
// True for "¶" and "×", which cut contact lines and the call index.
bool IsSeparatorChar(QChar c);
// True when a key typed in a free text field of the entry (note, operator, district)
// is to be dropped: a separator, a line end or a character the file cannot hold.
bool DropsFromContactField(QChar c);

// A contact's text as it will be stored: separators and line ends removed, characters
// outside code page 1252 replaced by "?" (a surrogate pair by one "?").
QString StorableContactText(const QString& text);

// The opening tags of the log header ("[MYCALL:" ... "[ENDHEAD:]"), in file order.
const QStringList& HeaderTagTexts();

// The value with every header tag text it holds made harmless: the tag's "[" becomes
// "(". A value read from a damaged file can hold one; written back as it is, the tag
// inside would be found before the real one and the log would not load again.
QString WithoutTagText(const QString& value);

// Why a station setting cannot be stored, in German for a box, or the empty text when
// it can: a character outside code page 1252, or the text of a header tag, which would
// let the value override another field or end the header.
QString HeaderValueProblem(const QString& fieldName, const QString& value);

// ---- The gate ------------------------------------------------------------------------

// Every text field of a contact and of the log header.
enum class TextField {
    // Contact fields.
    Call,         // Rufzeichen: 13, capitals, trimmed, no blanks
    RstGesendet,  // 4, capitals, trimmed, no blanks
    RstEmpfangen, // 4, capitals, trimmed, no blanks
    Mode,         // 5, trimmed
    Bezirk,       // trimmed; its length and the table are the district checks' business
    Operator,     // 13, capitals, trimmed
    Bemerkung,    // stored as typed
    // Header fields.
    MyCall,    // 13, capitals, trimmed, no blanks
    MyOpCall,  // 13, capitals, trimmed
    MyLocator, // 6, capitals, trimmed
    MyOpName,  // 70, trimmed
    MyAdress,  // 70, trimmed
    MyPlz,     // 10, capitals, trimmed
    MyCity,    // 70, trimmed
    MyEmail,   // 250, trimmed
    MyStation, // 20000, several lines
    MyKomment, // 20000, several lines
};

struct TextFieldRule {
    const char* name;       // the field's name in messages
    int maxLength = 0;      // characters the field stores; 0: no limit
    bool upper = false;     // stored in capitals
    bool trimmed = false;   // stored without blanks at both ends
    bool noBlanks = false;  // a blank never belongs inside (calls, reports)
    bool multiLine = false; // line ends (CR, LF) and tabs may stand in it
};
const TextFieldRule& RuleOf(TextField field);

// Capitals as code page 1252 has them: a letter whose capital the code page cannot hold
// ("µ") or that has no single capital ("ß") stays as it is. Keeps the length.
QString UpperCp1252(const QString& text);

// The text as the field stores it: trimmed and in capitals where the rule says. Nothing
// is dropped or cut here; GateText() refuses what does not fit.
QString FieldText(TextField field, const QString& text);

// Whether the character may stand in the field at all (a key, a pasted character): a
// character of code page 1252, no separator, no control character (line ends and tabs
// in a field of several lines). A blank passes; the rule's noBlanks is the field's
// business.
bool FieldCharAllowed(TextField field, QChar c);

// Why the text cannot be stored in the field, in German for a box; the empty text when
// it can. The text is judged as FieldText() makes it.
QString FieldTextProblem(TextField field, const QString& text);

struct GatedText {
    QString text;    // FieldText(): what the file will hold
    QString problem; // empty when the text may be stored
    bool Ok() const { return problem.isEmpty(); }
};
// The gate: FieldText() and FieldTextProblem() in one.
GatedText GateText(TextField field, const QString& text);

// An operator list as the settings hold it, each row as the gate stores it; rows the
// gate refuses (a hand-edited file) and empty rows are left out.
QStringList GatedOperatorList(const QStringList& rows);

} // namespace kolibrino
