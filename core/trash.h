// A log file the program deletes is never gone for good: it goes to the desktop's
// trash (freedesktop.org, as QFile::moveToTrash knows it), and where there is no trash
// into the backup folder under a name that says when it was deleted
// ("<name>.gelöscht-<yyyyMMdd-HHmmss>").
//
// Window thread. Returns the empty text on success (a missing file is a success: there
// is nothing to keep), else a German description; the file then stays where it was.
#pragma once

#include <QDateTime>
#include <QString>

namespace kolibrino {

[[nodiscard]] QString MoveToTrash(const QString& path, const QString& backupFolder,
                    const QDateTime& now = QDateTime::currentDateTime(), QString* movedTo = nullptr);

// The name a deleted file gets in the backup folder when there is no trash.
QString DeletedFileName(const QString& fileName, const QDateTime& when);

} // namespace kolibrino
