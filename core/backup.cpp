#include "core/backup.h"

#include "core/atomic_file.h"
#include "core/paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <sys/statvfs.h>
#include <unistd.h>

namespace kolibrino {

double DriveFreeBytes(const QString& path) {
    const QFileInfo fi(path);
    QString folder = fi.isDir() ? fi.absoluteFilePath() : fi.absolutePath();
    // A folder that is missing while its parent is there lies on a drive that is ready:
    // the folder is the problem, which the backup tells apart. Deeper gaps (a stick's
    // mount point gone with it) are a drive that is not there.
    if (!FolderExists(folder)) folder = QFileInfo(folder).absolutePath();
    if (!FolderExists(folder)) return -1;
    struct statvfs st {};
    if (::statvfs(QFile::encodeName(folder).constData(), &st) != 0) return -1;
    return double(st.f_bavail) * double(st.f_frsize);
}

namespace {

QString FileError(const QString& what, const QString& path, int err) {
    return QStringLiteral("%1 %2: %3")
        .arg(what, QDir::toNativeSeparators(path), QString::fromLocal8Bit(std::strerror(err)));
}

QString RemoveFile(const QString& path) {
    if (::unlink(QFile::encodeName(path).constData()) == 0) return {};
    const int err = errno;
    if (err == ENOENT) return {};
    return FileError(QStringLiteral("Alte Sicherung kann nicht gelöscht werden:"), path, err);
}

QString RenameFile(const QString& from, const QString& to) {
    if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0) return {};
    const int err = errno;
    return FileError(QStringLiteral("Sicherung kann nicht umbenannt werden:"), from, err);
}

// The real cause of a failed backup, with the box of a failed copy (stop icon).
void BackupFailed(Dialogs& dialogs, const QString& cause) {
    dialogs.MsgBox(QStringLiteral("Fehler beim Sichern!\r\n\r\n%1\r\n\r\nSichern abgebrochen!").arg(cause),
                   Msg::Critical);
}

} // namespace

void BackupFile(Dialogs& dialogs, const QString& source, const QString& target,
                const QString& extraBackupPath, const FreeSpaceProbe& freeSpace) {
    const double free = freeSpace(target);
    if (free < 0) {
        dialogs.MsgBox(QStringLiteral("Fehler... Sicherungs-Laufwerk nicht bereit!"));
        return;
    }
    const double size = double(QFileInfo(source).size());
    if (!(2 * size < free)) {
        dialogs.MsgBox(QStringLiteral("Zu wenig freier Speicher auf dem Sicherungsmedium!\r\n"
                                      "Bitte Speicherplatz freigeben.\r\n\r\nSichern abgebrochen!"),
                       Msg::Information);
        return;
    }
    // The operator's folder must still be there; with none set, the regular backup goes on.
    if (!extraBackupPath.isEmpty() && !FolderExists(extraBackupPath)) {
        dialogs.MsgBox(QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"),
                       Msg::Information);
        return;
    }
    // Never into the folder of the log itself, however spelled: the ".ALT" rename would
    // take the live log away.
    if (SameFolder(QFileInfo(source).absolutePath(), QFileInfo(target).absolutePath())) {
        dialogs.MsgBox(QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"),
                       Msg::Information);
        return;
    }
    const QString alt = target + QStringLiteral(".ALT");
    const bool targetThere = QFileInfo::exists(target);
    // The old ".ALT" goes only when a newer copy takes its place: with the target missing
    // (a copy that failed last time) it is the last good copy and stays.
    if (targetThere && QFileInfo::exists(alt)) {
        if (const QString e = RemoveFile(alt); !e.isEmpty()) return BackupFailed(dialogs, e);
    }
    if (targetThere) {
        if (const QString e = RenameFile(target, alt); !e.isEmpty()) return BackupFailed(dialogs, e);
    }
    QString error;
    if (CopyFileTo(source, target, true, &error)) {
        if (QFileInfo::exists(alt)) {
            if (const QString e = RemoveFile(alt); !e.isEmpty()) BackupFailed(dialogs, e);
        }
        return;
    }
    // The ".ALT" file stays as the last good copy.
    BackupFailed(dialogs, error);
}

} // namespace kolibrino
