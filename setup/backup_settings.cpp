#include "setup/backup_settings.h"

#include "core/atomic_file.h"
#include "core/error_trap.h"
#include "core/paths.h"
#include "core/settings.h"

#include <QDir>
#include <QFileInfo>

namespace kolibrino::setup {
namespace {

QString NoSlash(QString path) {
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

} // namespace

BackupSettings ReadBackupSettings(const Model& m) {
    BackupSettings s;
    s.enabled = IniReadInt(m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA")) == 1;
    const QString path = IniReadString(m.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"));
    // A folder edited by hand to Logs/ or Sicherung/ (however spelled) counts as none.
    if (!path.isEmpty() && FolderExists(path) && !IsLogOrBackupFolder(m, path)) s.folder = path;
    return s;
}

bool IsForbiddenBackupFolder(const Model& m, const QString& folder) {
    return IsLogOrBackupFolder(m, folder);
}

QString CheckChosenFolder(const Model& m, Dialogs& dialogs, const QString& folder) {
    if (!IsForbiddenBackupFolder(m, folder)) return folder;
    dialogs.MsgBox(QStringLiteral("Dieser Ordner ist nicht erlaubt!"), Msg::Information);
    return NoSlash(m.DataFolder);
}

bool IsValidFolderName(const QString& name) {
    if (name.size() >= 251) return false;
    for (const QChar c : name) {
        const char16_t u = c.unicode();
        if ((u >= 1 && u <= 31) || u > 255) return false;
        if (QStringLiteral("/\\:<>?|\"*").contains(c)) return false;
    }
    return true;
}

QString CreateNewFolder(Dialogs& dialogs, const QString& parent) {
    const auto answer = dialogs.InputBox(QStringLiteral("Bitte den Namen für den neuen Ordner eingeben"),
                                         QStringLiteral("Ordnername"));
    if (!answer || answer->isEmpty()) return {};
    if (!IsValidFolderName(*answer)) {
        dialogs.MsgBox(QStringLiteral("Ordnername ungültig"), Msg::Information);
        return {};
    }
    QString base = parent;
    if (!base.endsWith(QLatin1Char('/'))) base += QLatin1Char('/');
    const QString path = base + *answer;
    if (QFileInfo::exists(path)) {
        dialogs.MsgBox(QStringLiteral("Ordner existiert bereits!"), Msg::Information);
        return {};
    }
    const bool made = RunTrapped(dialogs, [&]() -> QString {
        if (QDir().mkdir(path)) return {};
        return QStringLiteral("Ordner kann nicht angelegt werden: %1").arg(path);
    });
    return made ? path : QString();
}

bool SaveBackupSettings(Model& m, Dialogs& dialogs, bool enabled, const QString& folder) {
    if (enabled && folder.isEmpty()) {
        dialogs.MsgBox(QStringLiteral("Bitte einen Ordner auswählen!"), Msg::Information);
        return false;
    }
    QString path = folder;
    if (!path.isEmpty() && !path.endsWith(QLatin1Char('/'))) path += QLatin1Char('/');
    m.ExtraBackupPath = path;
    IniWrite(m.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"), path);
    IniWrite(m.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"), enabled ? 1 : 0);
    return true;
}

} // namespace kolibrino::setup
