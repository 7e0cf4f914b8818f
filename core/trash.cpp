#include "core/trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace kolibrino {

// Longest file name the file systems take, in bytes.
namespace {
constexpr qsizetype kNameMax = 255;
} // namespace

QString DeletedFileName(const QString& fileName, const QDateTime& when) {
    const QString stamp = QStringLiteral(".gelöscht-") + when.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    // Room for the stamp and a counter ("-99"): a long name gives up its end.
    QString name = fileName;
    while (!name.isEmpty() && QFile::encodeName(name + stamp).size() + 3 > kNameMax)
        name.chop(1);
    return name + stamp;
}

namespace {

// The desktop's trash below the user's data folder, made ready. Qt would otherwise,
// when it cannot set the trash up, move the file into "files/" below the working
// folder and call that a success.
bool TrashReady() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (data.isEmpty() || !QDir::isAbsolutePath(data)) return false;
    const QString trash = data + QStringLiteral("/Trash");
    return QDir().mkpath(trash + QStringLiteral("/files")) && QDir().mkpath(trash + QStringLiteral("/info"));
}

} // namespace

QString MoveToTrash(const QString& path, const QString& backupFolder, const QDateTime& now,
                    QString* movedTo) {
    QFile file(path);
    if (!QFileInfo(path).exists() && !QFileInfo(path).isSymLink()) return {};
    // The trash keeps "<name>.trashinfo" (and may add "-NNNN"); Qt loops for ever on a
    // name the file system refuses, so a name that long goes the other way.
    const bool fitsTrash = QFile::encodeName(QFileInfo(path).fileName()).size() + 15 <= kNameMax;
    if (fitsTrash && TrashReady() && file.moveToTrash()) {
        const QString where = file.fileName();
        if (QDir::isAbsolutePath(where) && QFileInfo::exists(where)) {
            if (movedTo) *movedTo = where;
            return {};
        }
        file.setFileName(QFileInfo(where).exists() ? where : path); // not where a trash would be
    }
    const QString from = file.fileName();
    // No trash on this desktop: keep the file beside the backups, dated.
    QDir().mkpath(backupFolder);
    const QString base = QDir(backupFolder).filePath(DeletedFileName(QFileInfo(path).fileName(), now));
    QString target = base;
    for (int n = 2; QFileInfo::exists(target); ++n)
        target = base + QStringLiteral("-%1").arg(n);
    if (QFile::rename(from, target)) {
        if (movedTo) *movedTo = target;
        return {};
    }
    return QStringLiteral("Datei kann nicht gelöscht werden: %1 (%2)")
        .arg(QDir::toNativeSeparators(path), file.errorString());
}

} // namespace kolibrino
