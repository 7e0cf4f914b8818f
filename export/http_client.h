// The program's HTTP client and its MD5: the upload of a log, the download of a file,
// the reachability test of a server, and the digest that proves delivery.
//
// Callers: the submission (log upload, connection test, foreign Cabrillo file), the
// command line, and the self-update (downloads). Window-free: no function here shows
// anything or touches the model, so the window thread runs them on a worker thread
// while its busy panel holds the window.
//
// Threads: any thread; each call owns its own libcurl handle (RAII) and nothing is
// shared between calls, so calls may run side by side. libcurl's global set-up runs
// once, on first use, behind a once-flag.
//
// Failures: nothing throws. HttpUploadFile and HttpDownloadFile return false when the
// request could not be made or the reply not read whole (no such host, refused
// connection, connect timeout, transfer timeout, read fault of the local file); the
// HTTP status is not judged here. ServerPing returns false when no TCP connection to
// the server's port can be made within its timeout. A host may carry a port
// ("host:port"); without one port 80 is used. Proxies come from the environment
// (http_proxy, no_proxy), as libcurl reads them; the ping never goes through a proxy.
#pragma once

#include <QByteArray>
#include <QString>
#include <atomic>

namespace kolibrino::net {

struct HttpTimeouts {
    long connectMs = 10'000;   // connect to the server or proxy
    long transferMs = 120'000; // the whole request from start to the last byte of the reply
    // Set from another thread, it ends the request at once (within a few tenths of a
    // second): the call then fails as if the server had not answered.
    const std::atomic<bool>* cancel = nullptr;
};

// The boundary of the upload's multipart body and the one header the upload adds.
inline const char* const kUploadBoundary = "===<<AaB03x9tujGKXdZFeYMYyxbR8K72>>===";
inline const char* const kUploadContentType =
    "Content-Type: multipart/form-data, boundary====<<AaB03x9tujGKXdZFeYMYyxbR8K72>>===";
inline const char* const kAgentName = "kolibrino";

// "host" or "host:port" split; port 80 when none is given or it is no number.
struct HostPort {
    QString host;
    int port = 80;
};
HostPort SplitHost(const QString& hostAndPort);

// The multipart body of an upload: the file's bytes under "logfile" with its bare
// name, and the call sign under "call_sign".
QByteArray UploadBody(const QByteArray& content, const QString& bareName, const QByteArray& callSign);
// The call sign of a Cabrillo text: behind "CALLSIGN:" up to the next CR LF (or the
// end), trimmed; empty and found=false when the text has no "CALLSIGN:".
QByteArray CabrilloCallSign(const QByteArray& content, bool* found);

// POSTs the file to http://host[:port]path as HTTP/1.0. The reply's body (whatever
// the status) lands in reply. False with no request when the file cannot be read or
// holds no "CALLSIGN:". error (when given) receives the German cause of a false.
bool HttpUploadFile(const QString& host, const QString& path, const QString& file, QString& reply,
                    const HttpTimeouts& timeouts = {}, QString* error = nullptr);
// Fetches url into file (replaced atomically); with nocache the request asks every
// cache on the way for a fresh copy. False leaves file as it was.
bool HttpDownloadFile(const QString& url, const QString& file, bool nocache,
                      const HttpTimeouts& timeouts = {});
// A TCP connect to the server's port; cancel as in HttpTimeouts.
bool ServerPing(const QString& host, long timeoutMs = 3000, const std::atomic<bool>* cancel = nullptr);

// A download as the self-update needs it: the file is replaced atomically only on an
// answer 200 (after redirects), and a failure comes back as a German text that names
// the cause (no such name, refused, timeout, the server's status); empty on success.
struct DownloadOptions {
    bool nocache = false;    // Cache-Control: no-cache and Pragma: no-cache
    long connectMs = 10'000; // name look-up and connect together
    long transferMs = 0;     // the whole request; 0: no limit
    long idleMs = 0;         // > 0: give up when no byte has come for this long (whole seconds)
};
QString HttpDownload(const QString& url, const QString& file, const DownloadOptions& options);
// A TCP connect to host:port, never through a proxy, name look-up and connect within
// timeoutMs together. Empty on success, else a German text that names the cause. A
// name look-up still running at the timeout is left to end on its own thread.
QString ServerPingText(const QString& host, int port, long timeoutMs,
                       const std::atomic<bool>* cancel = nullptr);

// The MD5 of the bytes as 32 upper-case hexadecimal digits. For no bytes it returns
// the message "keine Daten zum MD5Sum berechnen übergeben". Callers tell the cases
// apart by length alone: 32 is a digest, 33 and more a message to show, fewer than
// 32 a failure.
QString MD5Sum(const QByteArray& bytes);

} // namespace kolibrino::net
