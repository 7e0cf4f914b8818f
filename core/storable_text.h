// What a text must be before it reaches a file: every character storable in code page
// 1252, and none of the separators the log file and the call index are cut at.
//
// StorableContactText() cleans a contact's text field (note, operator) the way the
// entry fields do: the separators "¶" and "×" and line ends are dropped, characters
// the code page cannot hold become a visible "?". HeaderValueProblem() is the test of
// the station settings, which refuse rather than change what the operator typed.
//
// Pure functions; any thread may call them. They never fail.
#pragma once

#include <QChar>
#include <QString>

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

} // namespace kolibrino
