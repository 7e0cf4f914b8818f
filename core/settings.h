// The settings file: Windows private-profile semantics in our own small module.
//
// Section and key names are compared without case; IniWrite and IniWriteSection write
// a new section's name in upper case. Values are trimmed; numbers are decimal. Every
// write replaces the file atomically (code page 1252, CR LF). An empty file argument
// means the default file set by SetDefaultIniPath().
//
// Window thread only. Reads and writes never report a failure (but see
// SetIniWriteRefusedHandler): an empty section, key
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
// A write into a settings file that exists but cannot be read (no permission, an I/O
// error) is refused and the file left as it is: told once through this handler (its
// text is IniWriteRefusedText()). Setting the handler arms it again.
void SetIniWriteRefusedHandler(std::function<void(const QString&)> tell);
QString IniWriteRefusedText(const QString& path);

double IniReadInt(const QString& file, const QString& section, const QString& key);
QString IniReadString(const QString& file, const QString& section, const QString& key);
void IniWrite(const QString& file, const QString& section, const QString& key, const QString& value);
void IniWrite(const QString& file, const QString& section, const QString& key, int value);
// Appends the section's lines to list; an empty section leaves list untouched.
void IniReadSection(const QString& file, const QString& section, QStringList& list);
// Replaces the section's lines with lines (each "key=value" or a plain line).
void IniWriteSection(const QString& file, const QString& section, const QStringList& lines);
void IniDeleteSection(const QString& file, const QString& section);
// IniDeleteSection followed by IniWriteSection (when lines is not empty) as one file
// replacement: a crash between the two can no longer leave the section missing.
void IniReplaceSection(const QString& file, const QString& section, const QStringList& lines);

// The same rules on a file's bytes, without the file: what a read finds, and the bytes
// a write would leave. Pure; any thread.
QString ProfileReadString(const QByteArray& bytes, const QString& section, const QString& key);
QStringList ProfileReadSection(const QByteArray& bytes, const QString& section);
QByteArray ProfileWrite(const QByteArray& bytes, const QString& section, const QString& key,
                        const QString& value);

// Leading integer of a profile value, as GetPrivateProfileInt reads it (0 when none).
int ProfileInt(const QString& value);

} // namespace kolibrino
