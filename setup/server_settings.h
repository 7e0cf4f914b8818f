// The servers and addresses an operator sets by hand, read from and written to the
// settings file under the keys the program has always read:
//
//   [Server] LogServer    host (or host:port) of the log server (upload, connection test)
//   [Server] ContestMail  the contest manager's addresses, named when an upload fails
//   [Server] RegelnURL    the contest rules page (Hilfe → Contestregeln)
//   [Info]   MailAdresse  the address behind the info window's mail button
//   [Update] Server       host (or host:port) of the update server
//   [Update] Pfad         folder of KOLBOUpd.txt on it (empty: the usual one)
//   [Update] BeimStart    0 switches the update check at start off
//
// Read, validate and write: window thread (the settings store). TestUpdateServer: any
// thread, blocks within its timeouts. Nothing throws; a write that the settings store
// refuses is told by its own handler.
#pragma once

#include <QString>

namespace kolibrino {

struct ServerSettings {
    QString logServer;
    QString contestMail;
    QString regelnUrl;
    QString infoMail;
    QString updateServer;
    QString updatePath;
    bool checkAtStart = true;
};

ServerSettings ReadServerSettings();
void WriteServerSettings(const ServerSettings& s);
// The German message for the first entry that cannot be used; empty when all can.
// Empty entries are valid: they switch the service off.
QString ValidateServerSettings(const ServerSettings& s);
// Reaches the update server and fetches its list KOLBOUpd.txt into tmpFolder (deleted
// again). Empty text on success, else the German reason.
QString TestUpdateServer(const QString& server, const QString& path, const QString& tmpFolder);

// Where the operator sets them: the messages that miss a setting name this.
inline const char* const kServerWindowHint = "Bitte unter Einstellungen → Server und Adressen… eintragen.";

} // namespace kolibrino
