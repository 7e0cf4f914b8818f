#include "core/backup.h"

#include "core/atomic_file.h"
#include "core/paths.h"

#include <QFile>
#include <QFileInfo>
#include <sys/statvfs.h>

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
    if (QFile::exists(alt)) QFile::remove(alt);
    if (QFile::exists(target)) QFile::rename(target, alt);
    if (CopyFileTo(source, target, true)) {
        if (QFile::exists(alt)) QFile::remove(alt);
        return;
    }
    dialogs.MsgBox(QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"), Msg::Critical);
}

} // namespace kolibrino
