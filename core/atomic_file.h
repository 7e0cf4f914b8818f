// Whole-file replacement that a crash can never leave half written.
//
// WriteFileAtomic() writes the bytes to a temporary file in the same folder, flushes
// and fsyncs it, renames it over the target and fsyncs the folder. Readers see either
// the old file or the new one, never a mix.
//
// Any thread, one writer per target at a time. Returns the empty text on success,
// else a German description of what failed; the old file is then untouched.
#pragma once

#include <QByteArray>
#include <QString>

namespace kolibrino {

// A symbolic link is written through to its target, which keeps its file mode; a file
// without any write permission is refused (the error text says so).
QString WriteFileAtomic(const QString& path, const QByteArray& bytes);
// The file a write of path replaces: path itself, or the target its links lead to.
QString WriteTarget(const QString& path);
// Reads a whole file; nullopt-like: ok=false and the error text when it cannot.
QByteArray ReadWholeFile(const QString& path, bool* ok = nullptr, QString* error = nullptr);
bool FileExists(const QString& path);
// Copies a file (atomically at the target); refuses an existing target unless overwrite.
bool CopyFileTo(const QString& source, const QString& target, bool overwrite);
bool FolderExists(const QString& path);

} // namespace kolibrino
