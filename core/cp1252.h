// Code page 1252 text, the encoding of every file Kolibrino reads and writes.
//
// One byte is one character: "¶" is 0xB6, "×" is 0xD7. Characters the code page
// cannot hold become "?" (a surrogate pair becomes a single "?"), so a text that has
// passed through Cp1252Clean() has exactly as many characters as its file bytes.
//
// Pure functions; any thread may call them. They never fail.
#pragma once

#include <QByteArray>
#include <QString>

namespace kolibrino {

QString FromCp1252(const QByteArray& bytes);
QByteArray ToCp1252(const QString& text);
// The text as it will stand in a file: unencodable characters replaced by "?".
QString Cp1252Clean(const QString& text);

} // namespace kolibrino
