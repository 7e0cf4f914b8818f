#include "upkeep/update_flow.h"

#include "core/atomic_file.h"
#include "core/cp1252.h"
#include "core/paths.h"
#include "core/settings.h"
#include "upkeep/replace_script.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>

namespace kolibrino::upkeep {
namespace {

const QString kSection = QString::fromLatin1(kSectionUpdate);

void Show(const BusyPanel& b, const char* text) {
    if (b.show) b.show(QString::fromUtf8(text));
}
void Hide(const BusyPanel& b) {
    if (b.hide) b.hide();
}
QString T(const char* text) {
    return QString::fromUtf8(text);
}

QString LimitText(int limitMs) {
    return QStringLiteral("Zeitüberschreitung: Das Update hat sein Zeitlimit von %1 s erreicht.")
        .arg((limitMs + 999) / 1000);
}

// What is left of the limit for the next network call; 0 when it has passed.
int Left(const QDeadlineTimer& deadline) {
    return int(std::max<qint64>(0, deadline.remainingTime()));
}

TransportTimeouts DownloadTimeouts(const QDeadlineTimer& deadline) {
    TransportTimeouts to;
    to.totalMs = std::max(1, Left(deadline));
    to.connectMs = std::min(to.connectMs, to.totalMs);
    return to;
}

// Copies the checked file into DataFolder; empty on success, else the cause.
QString CopyIntoDataFolder(const QString& tmp, const QString& target) {
    bool ok = false;
    QString error;
    const QByteArray bytes = ReadWholeFile(tmp, &ok, &error);
    if (!ok) return error.isEmpty() ? QStringLiteral("%1 kann nicht gelesen werden.").arg(tmp) : error;
    return WriteFileAtomic(target, bytes);
}

} // namespace

QUrl UpdateServer::FileUrl(const QString& name) const {
    QUrl u;
    u.setScheme(QStringLiteral("http"));
    u.setHost(host);
    if (port != kDefaultUpdatePort) u.setPort(port);
    u.setPath(path + name.trimmed());
    return u;
}

std::optional<UpdateServer> ServerWithArgument(UpdateServer base, const QString& hostPort) {
    QString text = hostPort.trimmed();
    int port = kDefaultUpdatePort;
    const int colon = int(text.lastIndexOf(QLatin1Char(':')));
    if (colon >= 0 && text.indexOf(QLatin1Char(':')) == colon) {
        bool ok = false;
        port = text.mid(colon + 1).toInt(&ok);
        if (!ok || port <= 0 || port > 65535) return std::nullopt;
        text = text.left(colon);
    }
    if (text.isEmpty() || text.contains(QLatin1Char('/')) || text.contains(QLatin1Char(' ')))
        return std::nullopt;
    base.host = text;
    base.port = port;
    return base;
}

UpdateServer ReadUpdateServer(const QString& iniFile) {
    UpdateServer s;
    const QString path = IniReadString(iniFile, kSection, QStringLiteral("Pfad")).trimmed();
    if (!path.isEmpty()) {
        s.path = path;
        if (!s.path.startsWith(QLatin1Char('/'))) s.path.prepend(QLatin1Char('/'));
        if (!s.path.endsWith(QLatin1Char('/'))) s.path += QLatin1Char('/');
    }
    const QString server = IniReadString(iniFile, kSection, QStringLiteral("Server")).trimmed();
    if (server.isEmpty()) return s;
    return ServerWithArgument(s, server).value_or(s);
}

bool CheckAtStart(const QString& iniFile) {
    const QString v = IniReadString(iniFile, kSection, QStringLiteral("BeimStart")).trimmed();
    return v.isEmpty() || ProfileInt(v) != 0;
}

CheckResult CheckForUpdates(const Model& m, UpdateTransport& t, const UpdateServer& s, const BusyPanel& busy,
                            int limitMs) {
    CheckResult r;
    if (s.host.isEmpty()) return r;
    const QDeadlineTimer deadline(limitMs);
    Show(busy, "PINGe Server...");
    r.detail = t.Ping(s.host, s.port, std::min(kPingTimeoutMs, std::max(1, Left(deadline))));
    if (!r.detail.isEmpty()) {
        Hide(busy);
        r.outcome = CheckOutcome::Unreachable;
        return r;
    }
    Show(busy, "Suche nach Updates...");
    const QString listFile = m.TmpFolder + QString::fromLatin1(kUpdateListName);
    QFile::remove(listFile);
    r.detail = deadline.hasExpired() ? LimitText(limitMs)
                                     : t.Download(s.FileUrl(QString::fromLatin1(kUpdateListName)), listFile,
                                                  DownloadTimeouts(deadline));
    Hide(busy);
    if (!r.detail.isEmpty()) {
        r.outcome = CheckOutcome::ListFailed;
        return r;
    }
    if (!FileExists(listFile)) {
        r.outcome = CheckOutcome::NoList;
        return r;
    }
    r.entries = ParseUpdateList(FromCp1252(ReadWholeFile(listFile)), r.refused);
    QFile::remove(listFile);
    r.offered = OfferedEntries(r.entries, m.IniPath);
    r.outcome = r.offered.empty() ? CheckOutcome::NoUpdates : CheckOutcome::Offered;
    return r;
}

ProgramTarget RunningProgram() {
    ProgramTarget p;
    p.executablePath = ExecutablePath();
    p.executableName = QFileInfo(p.executablePath).completeBaseName();
    p.runningVersion = RunningVersionNumber();
    p.folderWritable = FolderWritable(QFileInfo(p.executablePath).absolutePath());
    return p;
}

QString CopyFailedText(const QString& name, const QString& target, const QString& cause) {
    return QStringLiteral("Die Datei %1 kann nicht nach %2 kopiert werden:\r\n%3\r\n\r\n"
                          "Sie ist nicht installiert und wird wieder angeboten.")
        .arg(name, target, cause);
}

QString FileMd5(const QString& path, Dialogs& d) {
    QFile f(path);
    if (!f.exists() || !f.open(QIODevice::ReadOnly)) {
        d.MsgBox(
            path + QStringLiteral("\r\nDatei für die eine Checksumme berechnet werden soll nicht gefunden!"),
            Msg::Critical);
        return QStringLiteral("-1");
    }
    QCryptographicHash h(QCryptographicHash::Md5);
    h.addData(&f);
    const QString sum = QString::fromLatin1(h.result().toHex());
    if (sum.size() >= 33 || sum.size() < 32) {
        const QString reason = sum.size() >= 33 ? QStringLiteral("Hochladen abgebrochen")
                                                : QStringLiteral("Fehler beim erstellen der MD5Sum");
        d.MsgBox(sum + QStringLiteral("\r\n\r\n") + reason +
                     QStringLiteral("\r\nBitte dem Autor diese Fehlermeldung mitteilen."),
                 Msg::OkOnly);
        return {};
    }
    return sum.toUpper();
}

InstallResult InstallUpdates(Model& m, Dialogs& d, UpdateTransport& t, const UpdateServer& s,
                             const std::vector<UpdateEntry>& entries, const std::vector<UpdateBox>& boxes,
                             const ProgramTarget& program, const BusyPanel& busy, int limitMs) {
    InstallResult r;
    const QDeadlineTimer deadline(limitMs);
    if (entries.empty() || boxes.empty()) {
        d.MsgBox(T(kTxtKeineDateien), Msg::Information);
        r.outcome = InstallOutcome::NothingListed;
        return r;
    }
    bool anyTicked = false;
    for (const UpdateBox& b : boxes)
        anyTicked = anyTicked || b.ticked;
    if (!anyTicked) {
        d.MsgBox(T(kTxtKeineAuswahl), Msg::Information);
        r.outcome = InstallOutcome::NothingTicked;
        return r;
    }
    Show(busy, "PINGe Server...");
    if (!t.Ping(s.host, s.port, std::min(kPingTimeoutMs, std::max(1, Left(deadline)))).isEmpty()) {
        Hide(busy);
        d.MsgBox(T(kTxtServerNichtErreichbar), Msg::Critical);
        r.outcome = InstallOutcome::Unreachable;
        return r;
    }
    BusyScope wait(d);
    Show(busy, "Updates werden heruntergeladen...");
    bool toldReadOnly = false;
    for (const UpdateBox& box : boxes) {
        if (box.entry < 0 || size_t(box.entry) >= entries.size()) continue;
        const UpdateEntry& e = entries[size_t(box.entry)];
        const QString name = e.Name.trimmed();
        const QString refusedWhy = RefusedNameReason(name);
        if (!refusedWhy.isEmpty()) { // never a path: the name stays inside Tmp/ and DataFolder
            if (box.ticked) {
                Hide(busy);
                d.MsgBox(QStringLiteral("%1 wird nicht installiert:\r\n%2").arg(name, refusedWhy),
                         Msg::Exclamation);
                r.refused << name;
            }
            continue;
        }
        const QString tmp = m.TmpFolder + name;
        QFile::remove(tmp);
        if (!box.ticked) continue;
        const bool isProgram = IsProgramEntry(e, program.executableName);
        if (isProgram && !program.allowProgram) {
            r.skipped << name;
            continue;
        }
        if (isProgram && !program.folderWritable) {
            if (!toldReadOnly)
                d.MsgBox(
                    QStringLiteral("Kolibrino ist in einem schreibgeschützten Ordner installiert:\r\n") +
                        QFileInfo(program.executablePath).absolutePath() +
                        QStringLiteral("\r\n\r\nDas Programm selbst wird über die Paketverwaltung des "
                                       "Systems aktualisiert; es werden nur die Datendateien installiert."),
                    Msg::Exclamation);
            toldReadOnly = true;
            r.skipped << name;
            continue;
        }
        const QString failure = deadline.hasExpired()
                                    ? LimitText(limitMs)
                                    : t.Download(s.FileUrl(name), tmp, DownloadTimeouts(deadline));
        if (!failure.isEmpty()) {
            Hide(busy);
            d.MsgBox(T(kTxtDownloadFehler), Msg::Critical);
            ++r.failedDownloads;
            r.failures << name + QStringLiteral(": ") + failure;
            continue;
        }
        if (FileMd5(tmp, d) != e.Md5.toUpper()) {
            Hide(busy);
            d.MsgBox(T(kTxtDateiFehlerhaft), Msg::Critical);
            r.outcome = InstallOutcome::Md5Mismatch;
            return r;
        }
        const QString target = m.DataFolder + (isProgram ? name : DataFileName(name));
        const QString copyError = CopyIntoDataFolder(tmp, target);
        if (!copyError.isEmpty()) {
            Hide(busy);
            d.MsgBox(CopyFailedText(name, target, copyError), Msg::Critical);
            ++r.failedCopies;
            r.failures << name + QStringLiteral(": ") + copyError;
            continue;
        }
        QFile::remove(tmp); // the download in Tmp/; the file is in place already, a leftover is harmless
        NoteInstalledVersion(m.IniPath, name, e.Version);
        ForgetShippedCopy(m, QFileInfo(target).fileName());
        r.installedNames << name;
        if (isProgram) {
            if (e.Version > program.runningVersion) {
                r.installed = true;
                Hide(busy);
                d.MsgBox(T(kTxtNeustart), Msg::Information);
                r.outcome = InstallOutcome::Restart;
                // The file as it now lies in DataFolder (names differ in case only on Windows).
                r.restartSource = target;
                r.restartTarget = program.executablePath;
                return r;
            }
            QFile::remove(tmp);
        }
        r.installed = true;
    }
    Hide(busy);
    d.MsgBox(T(kTxtFertig), Msg::Information);
    r.outcome = InstallOutcome::Done;
    return r;
}

} // namespace kolibrino::upkeep
