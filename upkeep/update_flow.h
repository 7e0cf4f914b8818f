// The update's check and install, for the update window and the command line.
//
// Check: ping the server, fetch KOLBOUpd.txt into Tmp/ (bypassing caches), parse it,
// delete it, and compare with the versions in the settings. Lines that count but are
// refused (malformed, or a file name that is not a plain name of UpdatableFiles()) come
// back with their reasons; the caller names them. Install: for each ticked box, fetch
// the file into Tmp/, check its MD5 against the list (a mismatch stops everything; that
// file never reaches DataFolder), copy it to DataFolder, note its version; a newer
// program ends in a restart request the caller carries out. A copy that fails is told
// with its cause and not noted, so the file is offered again. Both run within an
// overall time limit (kCheckLimitMs, kInstallLimitMs): a server that accepts and never
// answers ends the step at the limit as a failed download.
//
// Settings, section [Update]: Server (host or host:port; empty: no update server, so no
// check at start and a German note in the menu way), Pfad (the folder of the list on
// the server, default kDefaultUpdatePath), BeimStart (0 switches the check at start off).
//
// Window (or main) thread; blocking within the time limits. The windows hand in a
// transport that runs each network call on a worker thread while the window's events
// go on (upkeep/beside_transport.h). All failures are
// shown through the Dialogs given with the program's messages and the flow goes on as
// the update does; nothing throws.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "upkeep/update_list.h"
#include "upkeep/update_transport.h"

#include <QUrl>
#include <functional>
#include <optional>
#include <vector>

namespace kolibrino::upkeep {

inline const char* const kSectionUpdate = "Update";
inline const char* const kDefaultUpdatePath = "/export/radkl/download/ZEFT/kolibrino/";
inline constexpr int kDefaultUpdatePort = 80;
// The check at start must not hold a start without network up for long.
inline constexpr int kPingTimeoutMs = 1000;
// The whole check (ping and list) and the whole install (ping and every download).
inline constexpr int kCheckLimitMs = 15000;
inline constexpr int kInstallLimitMs = 600000;

// The program's messages.
inline const char* const kTxtServerNichtErreichbar = "Server nicht erreichbar!";
inline const char* const kTxtDownloadFehler =
    "Fehler beim Download: Entweder existiert die URL nicht, oder Server nicht erreichbar!";
inline const char* const kTxtKeineUpdates =
    "Es sind keine neuen Updates verfügbar. Fenster wird geschlossen.";
inline const char* const kTxtUpdatesDa = "Es sind Updates verfügbar, klicke auf 'Updates installieren'";
inline const char* const kTxtKeineDateien = "Keine Dateien zum Downloaden vorhanden!";
inline const char* const kTxtKeineAuswahl = "Keine Datei zum Downloaden ausgewählt";
inline const char* const kTxtDateiFehlerhaft =
    "Heruntergeladene Datei ist fehlerhaft. Download muss neu gestartet werden!";
inline const char* const kTxtNeustart = "Kolibrino muss neu gestartet werden!";
inline const char* const kTxtFertig = "Updates wurden durchgeführt. Fenster wird geschlossen.";
inline const char* const kTxtKeinServer =
    "Es ist kein Update-Server eingestellt.\r\nBitte unter Einstellungen → Server und Adressen… den "
    "Update-Server eintragen (Name oder Adresse, auf Wunsch mit :Port).";

struct UpdateServer {
    QString host; // empty: none set
    int port = kDefaultUpdatePort;
    QString path = QString::fromLatin1(kDefaultUpdatePath); // begins and ends with "/"
    QUrl FileUrl(const QString& name) const;
};

// The server from the settings file.
UpdateServer ReadUpdateServer(const QString& iniFile);
// "HOST[:PORT]" over the server of the settings; nullopt when it is no valid host.
std::optional<UpdateServer> ServerWithArgument(UpdateServer base, const QString& hostPort);
// Whether the check runs at start ([Update] BeimStart, on unless 0).
bool CheckAtStart(const QString& iniFile);

enum class CheckOutcome { NoServer, Unreachable, ListFailed, NoList, NoUpdates, Offered };
struct CheckResult {
    CheckOutcome outcome = CheckOutcome::NoServer;
    std::vector<UpdateEntry> entries;
    std::vector<int> offered; // indices into entries, list order
    QString detail;           // the transport's text on a failure
    std::vector<RefusedLine> refused; // lines of the list that are not used
};

// The busy panel of the window (Picture10 with Label22); the command line leaves it empty.
struct BusyPanel {
    std::function<void(const QString&)> show;
    std::function<void()> hide;
};

// Steps of the check without the window's messages: the caller tells them by its way.
CheckResult CheckForUpdates(const Model& m, UpdateTransport& t, const UpdateServer& s,
                            const BusyPanel& busy = {}, int limitMs = kCheckLimitMs);

// The program as the install sees it.
struct ProgramTarget {
    QString executablePath; // real path of the running executable
    QString executableName; // its name without folder ("kolibrino")
    int runningVersion = 0;
    bool folderWritable = true;
    bool allowProgram = true; // false: the program entry is never installed (command line)
};
ProgramTarget RunningProgram();

// One check box: the entry it stands for and whether it is ticked.
struct UpdateBox {
    int entry = 0;
    bool ticked = true;
};

enum class InstallOutcome { NothingListed, NothingTicked, Unreachable, Md5Mismatch, Restart, Done };
struct InstallResult {
    InstallOutcome outcome = InstallOutcome::Done;
    bool installed = false; // the flag for installed updates
    int failedDownloads = 0;
    int failedCopies = 0; // downloaded and checked, but not copied into DataFolder
    QStringList refused;  // names that are no plain name of UpdatableFiles()
    QStringList failures; // "name: cause" of each failed download or copy
    QStringList installedNames;
    QStringList skipped; // entries left out (the program in a system folder or on the command line)
    QString restartSource;
    QString restartTarget;
};

InstallResult InstallUpdates(Model& m, Dialogs& d, UpdateTransport& t, const UpdateServer& s,
                             const std::vector<UpdateEntry>& entries, const std::vector<UpdateBox>& boxes,
                             const ProgramTarget& program, const BusyPanel& busy = {},
                             int limitMs = kInstallLimitMs);

// The message of a copy into DataFolder that failed, with its cause.
QString CopyFailedText(const QString& name, const QString& target, const QString& cause);

// MD5 of a file in upper-case hex, with the update's messages: "-1" when the file is
// missing.
QString FileMd5(const QString& path, Dialogs& d);

} // namespace kolibrino::upkeep
