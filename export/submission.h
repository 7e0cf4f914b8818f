// Sending a Cabrillo file to the log server and judging the server's echo; the texts
// the submission shows; the canned log of the connection test; the server setting.
//
// Callers: the submission windows (MnLogEinsenden, MnLogHochladen, the connection
// test) and kolibrino-cli upload. SendCabrilloFile() and RunConnectionTest() do the
// network work and never show anything, so the window thread runs them on a worker
// thread and shows the outcome afterwards; they touch no shared state and never throw.
// LogServerSetting() reads the settings file: window thread (or before any worker
// starts).
#pragma once

#include "core/locale_fmt.h"
#include "export/http_client.h"

#include <QString>

namespace kolibrino::exporting {

inline const char* const kUploadPath = "/cgi-bin/upload.cgi";
inline const char* const kShowPath = "/cgi-bin/show.cgi";

// The host (and optional ":port") of the log server from [Server] LogServer. Empty
// when the operator has not set one: no log leaves the machine for a server nobody
// chose.
QString LogServerSetting();

// The judge of the server's reply page. needLogfile: the "logfile" marker must stand
// as well (a real submission; the connection test does not look for it). storedName
// receives the name under which the server stored the file.
bool JudgeReply(const QString& reply, const QString& localMd5, bool needLogfile,
                QString* storedName = nullptr);

struct SendOutcome {
    enum Kind {
        Sent,         // the echo matched
        NoServer,     // no log server set
        PingFailed,   // the server's port cannot be reached
        ReadFailed,   // the file cannot be read (message holds why)
        Md5Message,   // MD5Sum gave a message (message holds it)
        Md5Failed,    // MD5Sum gave less than a digest
        CheckFailed,  // the Cabrillo check failed (message holds it)
        UploadFailed, // no reply, or a reply that does not prove delivery
    };
    Kind kind = UploadFailed;
    QString message; // for UploadFailed: why, in German
    QString md5;
};

struct SendRequest {
    QString server; // host[:port]
    QString file;
    bool check = false; // run CheckCabrillo before the upload (a foreign file)
    LocaleFormats formats;
    net::HttpTimeouts timeouts;
    long pingMs = 3000;
};

// Ping, read the file, MD5, (check), upload, judge the echo.
SendOutcome SendCabrilloFile(const SendRequest& request);

// The German text of an outcome other than Sent for the command line: one plain
// message that asks nothing.
QString OutcomeText(const SendOutcome& outcome, const QString& file);
// The command line's text of a failed upload: why, and where the file lies.
QString UploadFailedPlainText(const QString& file, const QString& mails, const QString& cause);

// The canned log of the connection test.
QString TestCallLog();
// Writes the canned log to tmpFolder/TESTCALL.LOG, pings, MD5 of the text, uploads,
// judges without the "logfile" marker, and deletes the file except after an MD5
// failure. Kinds: Sent, NoServer, PingFailed, Md5Message, Md5Failed, UploadFailed.
SendOutcome RunConnectionTest(const QString& server, const QString& tmpFolder,
                              const net::HttpTimeouts& timeouts = {}, long pingMs = 3000);

// Texts of the boxes.
QString NoServerText();
QString PingFailedText(); // "Einsenden abgebrochen!" ... "Server nicht erreichbar!"
QString Md5ProblemText(const SendOutcome& outcome, bool hochladenAbgebrochen);
QString UploadFailedText(const QString& file, const QString& mails);
QString SentText();
// The operator pressed "Abbrechen" on the busy panel: nothing was sent.
QString CancelledText();
QString TestSucceededText();
QString TestFailedText();
// The contest manager's addresses from [Server] ContestMail (", " between several).
QString ContestMailSetting();

} // namespace kolibrino::exporting
