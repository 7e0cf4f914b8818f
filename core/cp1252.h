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
#include <QStringView>

namespace kolibrino {

QString FromCp1252(const QByteArray& bytes);
QByteArray ToCp1252(const QString& text);
// The text as it will stand in a file: unencodable characters replaced by "?".
QString Cp1252Clean(const QString& text);

// The part of WriteCp1252() past plain ASCII.
char* WriteCp1252Rest(char* dst, QStringView text);

// Writes text as ToCp1252() would into dst, which has room for text.size() bytes, and
// returns the end of what it wrote (before the end of the room when a surrogate pair
// became one "?"). For writers that fill one buffer field by field.
inline char* WriteCp1252(char* dst, QStringView text) {
    const char16_t* s = text.utf16();
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (s[i] >= 0x80) return WriteCp1252Rest(dst + i, text.sliced(i));
        dst[i] = char(s[i]);
    }
    return dst + n;
}

} // namespace kolibrino
