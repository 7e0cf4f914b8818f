#include "core/paths.h"

#include "core/atomic_file.h"
#include "core/settings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtGlobal>
#include <sys/stat.h>

namespace kolibrino {
namespace {

QString WithSlash(const QString& path) {
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

bool EnsureFolder(const QString& path, QString* error) {
    if (FolderExists(path)) return true;
    if (QDir().mkpath(path)) return true;
    if (error && error->isEmpty()) *error = QStringLiteral("Ordner kann nicht angelegt werden: %1").arg(path);
    return false;
}

QString Cleaned(const QString& path) {
    return QDir::cleanPath(QDir(path).absolutePath());
}

} // namespace

bool SameFolder(const QString& a, const QString& b) {
    if (a.isEmpty() || b.isEmpty()) return false;
    if (Cleaned(a).compare(Cleaned(b), Qt::CaseInsensitive) == 0) return true;
    const QString ca = QFileInfo(a).canonicalFilePath();
    const QString cb = QFileInfo(b).canonicalFilePath();
    if (!ca.isEmpty() && ca.compare(cb, Qt::CaseInsensitive) == 0) return true;
    struct stat sa {
    }, sb{};
    return ::stat(QFile::encodeName(a).constData(), &sa) == 0 &&
           ::stat(QFile::encodeName(b).constData(), &sb) == 0 && sa.st_dev == sb.st_dev &&
           sa.st_ino == sb.st_ino;
}

bool IsLogOrBackupFolder(const Model& m, const QString& folder) {
    return SameFolder(folder, m.LogFolder) || SameFolder(folder, m.BackupFolder);
}

void IniStartup(Model& m, const QString& appFolder) {
    m.AppFolder = WithSlash(appFolder);
    m.IniPath = m.AppFolder + QLatin1String(kIniFileName);
}

bool SetupFolders(Model& m, QString* error) {
    QString base = qEnvironmentVariable("KOLIBRINO_HOME");
    if (base.isEmpty()) {
        QString xdg = qEnvironmentVariable("XDG_DATA_HOME");
        if (xdg.isEmpty()) xdg = QDir::homePath() + QStringLiteral("/.local/share");
        base = WithSlash(xdg) + QStringLiteral("kolibrino");
    }
    m.DataFolder = WithSlash(QDir::cleanPath(QDir(base).absolutePath()));
    bool ok = EnsureFolder(m.DataFolder, error);
    m.IniPath = m.DataFolder + QLatin1String(kIniFileName);
    SetDefaultIniPath(m.IniPath);
    m.LogFolder = m.DataFolder + QStringLiteral("Logs/");
    m.BackupFolder = m.DataFolder + QStringLiteral("Sicherung/");
    m.TmpFolder = m.DataFolder + QStringLiteral("Tmp/");
    ok = EnsureFolder(m.LogFolder, error) && ok;
    ok = EnsureFolder(m.BackupFolder, error) && ok;
    ok = EnsureFolder(m.TmpFolder, error) && ok;
    return ok;
}

QString ShippedDataFolder(const Model& m) {
    QStringList candidates = {m.AppFolder + QStringLiteral("data/"),
                              m.AppFolder + QStringLiteral("../share/kolibrino/")};
#ifdef KOLIBRINO_SOURCE_DATA_DIR
    candidates << WithSlash(QStringLiteral(KOLIBRINO_SOURCE_DATA_DIR));
#endif
    for (const QString& c : candidates)
        if (FileExists(c + QStringLiteral("bez_koord.txt"))) return WithSlash(QDir::cleanPath(c));
    return {};
}

namespace {

QString Md5Of(const QString& path) {
    bool ok = false;
    const QByteArray bytes = ReadWholeFile(path, &ok);
    return ok ? QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex())
                    .toUpper()
              : QString();
}

} // namespace

QStringList CopyShippedData(const Model& m) {
    QStringList copied;
    const QString from = ShippedDataFolder(m);
    if (from.isEmpty() || m.DataFolder.isEmpty()) return copied;
    const QString section = QString::fromLatin1(kSectionShipped);
    const QStringList names = QDir(from).entryList(QDir::Files);
    for (const QString& name : names) {
        if (name.compare(QStringLiteral("README.md"), Qt::CaseInsensitive) == 0) continue;
        const QString shipped = Md5Of(from + name);
        if (shipped.isEmpty()) continue;
        const QString target = m.DataFolder + name;
        const QString noted = IniReadString(m.IniPath, section, name).trimmed();
        bool copy = !QFileInfo::exists(target);
        if (!copy) {
            const QString here = Md5Of(target);
            if (noted.isEmpty() && here == shipped) { // copied before the MD5 was noted
                IniWrite(m.IniPath, section, name, shipped);
                continue;
            }
            copy = !here.isEmpty() && here == noted && here != shipped; // unchanged, and newer shipped
        }
        if (copy && CopyFileTo(from + name, target, true)) {
            IniWrite(m.IniPath, section, name, shipped);
            copied << name;
        }
    }
    return copied;
}

void ForgetShippedCopy(const Model& m, const QString& name) {
    IniWrite(m.IniPath, QString::fromLatin1(kSectionShipped), name, QString::fromLatin1(kNotShippedCopy));
}

} // namespace kolibrino
