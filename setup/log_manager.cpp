#include "setup/log_manager.h"

#include "core/atomic_file.h"
#include "core/error_trap.h"
#include "core/log_lock.h"
#include "core/paths.h"
#include "core/settings.h"
#include "core/trash.h"
#include "core/vb_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <unistd.h>

namespace kolibrino::setup {
namespace {

QString g_browseStart;

const QString kNotPossible = QStringLiteral("\r\n\u00c4ndern nicht m\u00f6glich.");

QString WithSlash(const QString& folder) {
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

// A deleted log goes to the trash, or dated into Sicherung/ beside Logs/ where there
// is none.
QString RemoveError(const QString& path) {
    const QString backupFolder =
        QFileInfo(path).absoluteDir().absoluteFilePath(QStringLiteral("../Sicherung"));
    return MoveToTrash(path, QDir::cleanPath(backupFolder));
}

// Whether another program holds the log at path for writing; the box names it.
bool HeldElsewhere(Dialogs& dialogs, const QString& path, const LogLock* own) {
    if (own && own->Covers(path)) return false;
    QString why;
    if (!LockedByOther(path, &why)) return false;
    dialogs.MsgBox(why + kNotPossible, Msg::Exclamation);
    return true;
}

} // namespace

QStringList ListLogs(const QString& logFolder) {
    QDir dir(logFolder);
    dir.setNameFilters({QStringLiteral("*.kolbo")});
    dir.setFilter(QDir::Files | QDir::Hidden);
    dir.setSorting(QDir::Name | QDir::IgnoreCase);
    return dir.entryList();
}

bool IsForbiddenNameChar(QChar c) {
    const char16_t u = c.unicode();
    if ((u >= 1 && u <= 31) || u > 255) return true;
    return QStringLiteral("/\\:<>?|\"*").contains(c);
}

bool HasForbiddenNameChar(const QString& name) {
    for (const QChar c : name)
        if (IsForbiddenNameChar(c)) return true;
    return false;
}

QString CheckRenameName(const QString& trimmedName) {
    if (HasForbiddenNameChar(trimmedName)) return QStringLiteral("Dateiname ungültig!") + kNotPossible;
    if (trimmedName.size() > kMaxLogNameLength) return QStringLiteral("Dateiname zu lang!") + kNotPossible;
    return {};
}

bool FileNameFits(const QString& folder, const QString& fileName) {
    long limit = ::pathconf(QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder).constData(),
                            _PC_NAME_MAX);
    if (limit <= 0) limit = 255;
    return QFile::encodeName(fileName).size() <= limit;
}

QString TooLongText() {
    return QStringLiteral("Dateiname zu lang!") + kNotPossible;
}

QString RenamedFileName(const QString& trimmedName) {
    // Four characters are held against the six of the extension: never equal, so the
    // extension is always appended, twice on a name that already bears it.
    if (trimmedName.right(4).toUpper() != QLatin1String(kLogExtension))
        return trimmedName + QLatin1String(kLogExtension);
    return trimmedName;
}

int RenameLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected,
               const LogLock* own) {
    if (listCount <= 0) return 0;
    const QString folder = WithSlash(logFolder);
    int renamed = 0;
    for (const QString& old : selected) {
        if (HeldElsewhere(dialogs, folder + old, own)) return renamed;
        const auto answer = dialogs.InputBox(QStringLiteral("Namen für das Log eingeben/ändern"),
                                             QStringLiteral("Dateiname"), old);
        if (!answer) return renamed;
        const QString name = TrimBlanks(*answer);
        const QString problem = CheckRenameName(name);
        if (!problem.isEmpty()) {
            dialogs.MsgBox(problem, Msg::Critical);
            return renamed;
        }
        const QString fileName = RenamedFileName(name);
        if (!FileNameFits(folder, fileName)) {
            dialogs.MsgBox(TooLongText(), Msg::Critical);
            return renamed;
        }
        if (QFileInfo::exists(folder + fileName)) {
            dialogs.MsgBox(QStringLiteral("Datei existiert bereits!") + kNotPossible, Msg::Critical);
            return renamed;
        }
        const bool done = RunTrapped(dialogs, [&]() -> QString {
            QFile f(folder + old);
            if (f.rename(folder + fileName)) return {};
            return f.errorString();
        });
        if (!done) return renamed;
        ++renamed;
    }
    return renamed;
}

int DeleteLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected,
               const LogLock* own) {
    if (listCount <= 0) return 0;
    const QString folder = WithSlash(logFolder);
    int deleted = 0;
    for (const QString& name : selected) {
        const int answer =
            dialogs.MsgBox(QStringLiteral("Möchtest du das Log\r\n%1\r\nwirklich löschen?").arg(name),
                           Msg::YesNoCancel | Msg::Question);
        if (answer == Msg::Cancel) break;
        if (answer != Msg::Yes) {
            dialogs.Beep();
            continue;
        }
        if (HeldElsewhere(dialogs, folder + name, own)) break;
        if (!RunTrapped(dialogs, [&] { return RemoveError(folder + name); })) break;
        ++deleted;
    }
    return deleted;
}

int CopyLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected) {
    if (listCount <= 0) return -1;
    QString target = dialogs.BrowseFolder(QStringLiteral("Ordner wählen"), g_browseStart);
    g_browseStart = target;
    if (target.isEmpty()) return -1;
    target = WithSlash(target);
    const QString folder = WithSlash(logFolder);
    int copied = 0;
    {
        BusyScope busy(dialogs);
        for (const QString& name : selected) {
            const QString dest = target + name;
            if (QFileInfo::exists(dest)) {
                const int answer = dialogs.MsgBox(QStringLiteral("Datei existiert bereits. Überschreiben?"),
                                                  Msg::YesNoCancel | Msg::Information);
                if (answer == Msg::Cancel) break;
                if (answer != Msg::Yes) continue;
                // The atomic write below replaces the old file; until it has, the old
                // one stays whole.
            }
            bool ok = false;
            const QByteArray bytes = ReadWholeFile(folder + name, &ok);
            if (ok) ok = WriteFileAtomic(dest, bytes).isEmpty();
            if (!ok) {
                dialogs.MsgBox(QStringLiteral("Fehler beim Kopieren! Kopieren abgebrochen"), Msg::Critical);
                continue; // the words say otherwise, but the walk goes on
            }
            ++copied;
        }
    }
    dialogs.MsgBox(QStringLiteral("Es wurde(n) '%1' Datei(en) Kopiert").arg(copied), Msg::Information);
    return copied;
}

QString BrowseStartFolder() {
    return g_browseStart;
}
void SetBrowseStartFolder(const QString& folder) {
    g_browseStart = folder;
}

QString ExistingLastLog(const Model& m) {
    const QString last = IniReadString(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"));
    if (last.isEmpty() || !QFileInfo(m.LogFolder + last).isFile()) return {};
    return last;
}

void WriteLastLogFile(const Model& m, const QString& name) {
    IniWrite(m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), name);
}

} // namespace kolibrino::setup
