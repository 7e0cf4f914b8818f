// The settings file: Windows private-profile semantics in our own small module.
//
// Section and key names are compared without case; IniWrite and IniWriteSection write
// a new section's name in upper case. Values are trimmed; numbers are decimal. Every
// write replaces the file atomically (code page 1252, CR LF). An empty file argument
// means the default file set by SetDefaultIniPath().
//
// Window thread only. Reads and writes never report a failure: an empty section, key
// or file name, and for reads a missing file, beep (if a beep handler is set) and
// give 0 or the empty text.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace kolibrino {

void SetDefaultIniPath(const QString& path);
QString DefaultIniPath();
void SetIniBeepHandler(std::function<void()> beep);

double IniReadInt(const QString& file, const QString& section, const QString& key);
QString IniReadString(const QString& file, const QString& section, const QString& key);
void IniWrite(const QString& file, const QString& section, const QString& key, const QString& value);
void IniWrite(const QString& file, const QString& section, const QString& key, int value);
// Appends the section's lines to list; an empty section leaves list untouched.
void IniReadSection(const QString& file, const QString& section, QStringList& list);
// Replaces the section's lines with lines (each "key=value" or a plain line).
void IniWriteSection(const QString& file, const QString& section, const QStringList& lines);
void IniDeleteSection(const QString& file, const QString& section);

// Leading integer of a profile value, as GetPrivateProfileInt reads it (0 when none).
int ProfileInt(const QString& value);

} // namespace kolibrino
