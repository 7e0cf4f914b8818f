// Whole-file replacement that a crash can never leave half written.
//
// WriteFileAtomic() writes the bytes to a temporary file of its own in the same folder
// (a unique name for every write), flushes and fsyncs it, renames it over the target and
// fsyncs the folder. Readers see either the old file or the new one, never a mix.
//
// Any thread; a log's writers are kept to one by its lock (core/log_lock.h). Returns the
// empty text on success, else a German description of what failed; the old file is then
// untouched, except after a failed sync of the folder, whose text says that the new file
// is in place but may not survive a power cut.
#pragma once

#include <QByteArray>
#include <QString>

namespace kolibrino {

// A symbolic link is written through to its target, which keeps its file mode; a file
// without any write permission is refused (the error text says so).
[[nodiscard]] QString WriteFileAtomic(const QString& path, const QByteArray& bytes);
// fsync of the folder dir after a rename in it; path names the file in the text.
[[nodiscard]] QString SyncFolder(const QString& dir, const QString& path);
// The file a write of path replaces: path itself, or the target its links lead to.
QString WriteTarget(const QString& path);
// Reads a whole file; nullopt-like: ok=false and the error text when it cannot.
QByteArray ReadWholeFile(const QString& path, bool* ok = nullptr, QString* error = nullptr);
bool FileExists(const QString& path);
// Copies a file (atomically at the target); refuses an existing target unless overwrite.
// *error (when given) gets the German cause of a failure.
[[nodiscard]] bool CopyFileTo(const QString& source, const QString& target, bool overwrite,
                              QString* error = nullptr);
bool FolderExists(const QString& path);

} // namespace kolibrino
