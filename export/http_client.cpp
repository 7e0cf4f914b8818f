#include "export/http_client.h"

#include "core/atomic_file.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <algorithm>
#include <curl/curl.h>
#include <memory>
#include <mutex>

namespace kolibrino::net {
namespace {

void GlobalInit() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct EasyDeleter {
    void operator()(CURL* c) const { curl_easy_cleanup(c); }
};
using Easy = std::unique_ptr<CURL, EasyDeleter>;

struct SlistDeleter {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};
using Slist = std::unique_ptr<curl_slist, SlistDeleter>;

int Progress(void* cancel, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(cancel)->load() ? 1 : 0;
}

Easy NewEasy(const HttpTimeouts& t) {
    GlobalInit();
    Easy e(curl_easy_init());
    if (!e) return e;
    curl_easy_setopt(e.get(), CURLOPT_USERAGENT, kAgentName);
    curl_easy_setopt(e.get(), CURLOPT_CONNECTTIMEOUT_MS, t.connectMs);
    curl_easy_setopt(e.get(), CURLOPT_TIMEOUT_MS, t.transferMs);
    curl_easy_setopt(e.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(e.get(), CURLOPT_PROTOCOLS_STR, "http,https");
    if (t.cancel) {
        curl_easy_setopt(e.get(), CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(e.get(), CURLOPT_XFERINFOFUNCTION, &Progress);
        curl_easy_setopt(e.get(), CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(t.cancel));
    }
    return e;
}

size_t Append(char* data, size_t size, size_t n, void* target) {
    static_cast<QByteArray*>(target)->append(data, qsizetype(size * n));
    return size * n;
}

// A look-up that hangs must not hold the caller in the handle's cleanup: the resolver
// thread is left to finish on its own.
void NoWaitForResolver(CURL* e) {
#if LIBCURL_VERSION_NUM >= 0x075700
    curl_easy_setopt(e, CURLOPT_QUICK_EXIT, 1L);
#else
    (void)e;
#endif
}

QString FailureText(CURLcode rc, const QString& what, const char* detail) {
    switch (rc) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("Der Name des Servers lässt sich nicht auflösen: %1").arg(what);
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("Keine Verbindung zu %1 möglich").arg(what);
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("Zeitüberschreitung bei %1").arg(what);
    case CURLE_PARTIAL_FILE:
        return QStringLiteral("Die Übertragung von %1 ist unvollständig").arg(what);
    case CURLE_ABORTED_BY_CALLBACK:
        return QStringLiteral("Abgebrochen: %1").arg(what);
    case CURLE_GOT_NOTHING:
    case CURLE_WEIRD_SERVER_REPLY:
        return QStringLiteral("Keine gültige Antwort des Servers auf %1").arg(what);
    default:
        return QStringLiteral("Fehler bei %1: %2")
            .arg(what, QString::fromLocal8Bit(detail && *detail ? detail : curl_easy_strerror(rc)));
    }
}

QByteArray Url(const QString& host, const QString& path) {
    const HostPort hp = SplitHost(host);
    return (QStringLiteral("http://%1:%2").arg(hp.host).arg(hp.port) + path).toUtf8();
}

} // namespace

HostPort SplitHost(const QString& hostAndPort) {
    HostPort hp;
    const QString t = hostAndPort.trimmed();
    const qsizetype colon = t.lastIndexOf(QLatin1Char(':'));
    if (colon < 0) {
        hp.host = t;
        return hp;
    }
    hp.host = t.left(colon);
    bool ok = false;
    const int port = t.mid(colon + 1).toInt(&ok);
    if (ok && port > 0 && port < 65536) hp.port = port;
    return hp;
}

QByteArray CabrilloCallSign(const QByteArray& content, bool* found) {
    const qsizetype at = content.indexOf("CALLSIGN:");
    *found = at >= 0;
    if (at < 0) return {};
    const qsizetype start = at + 9;
    qsizetype end = content.indexOf("\r\n", start);
    if (end < 0) end = content.size();
    return content.mid(start, end - start).trimmed();
}

QByteArray UploadBody(const QByteArray& content, const QString& bareName, const QByteArray& callSign) {
    const QByteArray b = QByteArray("--") + kUploadBoundary + "\r\n";
    QByteArray body;
    body.reserve(content.size() + 512);
    body += b;
    body +=
        "Content-Disposition: form-data; name=\"logfile\"; filename=\"" + bareName.toLocal8Bit() + "\"\r\n";
    body += "Content-Transfer-Encoding: binary\r\n";
    body += "Content-Type: multipart/form-data\r\n";
    body += "\r\n";
    body += content + "\r\n";
    body += b;
    body += "Content-Disposition: form-data; name=\"call_sign\"\r\n";
    body += "\r\n";
    body += callSign + "\r\n";
    body += QByteArray("--") + kUploadBoundary + "--";
    return body;
}

bool HttpUploadFile(const QString& host, const QString& path, const QString& file, QString& reply,
                    const HttpTimeouts& timeouts, QString* error) {
    reply.clear();
    auto fail = [error](const QString& why) {
        if (error) *error = why;
        return false;
    };
    bool ok = false;
    QString readError;
    const QByteArray content = ReadWholeFile(file, &ok, &readError);
    if (!ok) return fail(readError);
    bool found = false;
    const QByteArray call = CabrilloCallSign(content, &found);
    if (!found) return fail(QStringLiteral("Die Datei enthält keine Zeile \"CALLSIGN:\"."));
    QString bare = file;
    bare = bare.mid(std::max(bare.lastIndexOf(QLatin1Char('/')), bare.lastIndexOf(QLatin1Char('\\'))) + 1)
               .trimmed();
    const QByteArray body = UploadBody(content, bare, call);

    Easy e = NewEasy(timeouts);
    if (!e) return fail(QStringLiteral("libcurl nicht bereit"));
    curl_slist* raw = curl_slist_append(nullptr, kUploadContentType);
    if (raw) raw = curl_slist_append(raw, "Accept:"); // no accept types
    if (raw) raw = curl_slist_append(raw, "Expect:");
    Slist headers(raw);
    if (!headers) return fail(QStringLiteral("kein Speicher"));
    QByteArray answer;
    char detail[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(e.get(), CURLOPT_ERRORBUFFER, detail);
    const QByteArray url = Url(host, path);
    curl_easy_setopt(e.get(), CURLOPT_URL, url.constData());
    curl_easy_setopt(e.get(), CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_0));
    curl_easy_setopt(e.get(), CURLOPT_POST, 1L);
    curl_easy_setopt(e.get(), CURLOPT_POSTFIELDS, body.constData());
    curl_easy_setopt(e.get(), CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(body.size()));
    curl_easy_setopt(e.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(e.get(), CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(e.get(), CURLOPT_WRITEDATA, &answer);
    const CURLcode rc = curl_easy_perform(e.get());
    if (rc != CURLE_OK) return fail(FailureText(rc, QString::fromUtf8(url), detail));
    reply = QString::fromLatin1(answer);
    return true;
}

bool HttpDownloadFile(const QString& url, const QString& file, bool nocache, const HttpTimeouts& timeouts) {
    Easy e = NewEasy(timeouts);
    if (!e) return false;
    Slist headers;
    if (nocache) {
        curl_slist* raw = curl_slist_append(nullptr, "Cache-Control: no-cache");
        if (raw) raw = curl_slist_append(raw, "Pragma: no-cache");
        headers.reset(raw);
        if (!headers) return false;
        curl_easy_setopt(e.get(), CURLOPT_HTTPHEADER, headers.get());
    }
    QByteArray answer;
    const QByteArray u = url.toUtf8();
    curl_easy_setopt(e.get(), CURLOPT_URL, u.constData());
    curl_easy_setopt(e.get(), CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(e.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(e.get(), CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(e.get(), CURLOPT_WRITEDATA, &answer);
    if (curl_easy_perform(e.get()) != CURLE_OK) return false;
    return WriteFileAtomic(file, answer).isEmpty();
}

bool ServerPing(const QString& host, long timeoutMs, const std::atomic<bool>* cancel) {
    const HostPort hp = SplitHost(host);
    return ServerPingText(hp.host, hp.port, timeoutMs, cancel).isEmpty();
}

QString ServerPingText(const QString& host, int port, long timeoutMs, const std::atomic<bool>* cancel) {
    const QString what = QStringLiteral("%1:%2").arg(host).arg(port);
    if (host.isEmpty() || port <= 0 || port > 65535)
        return QStringLiteral("Kein gültiger Server: \"%1\"").arg(what);
    Easy e = NewEasy(HttpTimeouts{timeoutMs, timeoutMs, cancel});
    if (!e) return QStringLiteral("Fehler bei %1: libcurl nicht bereit").arg(what);
    NoWaitForResolver(e.get());
    char detail[CURL_ERROR_SIZE] = {};
    const QByteArray url = QStringLiteral("http://%1:%2/").arg(host).arg(port).toUtf8();
    curl_easy_setopt(e.get(), CURLOPT_URL, url.constData());
    curl_easy_setopt(e.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(e.get(), CURLOPT_CONNECT_ONLY, 1L);
    curl_easy_setopt(e.get(), CURLOPT_ERRORBUFFER, detail);
    const CURLcode rc = curl_easy_perform(e.get());
    return rc == CURLE_OK ? QString() : FailureText(rc, what, detail);
}

QString HttpDownload(const QString& url, const QString& file, const DownloadOptions& o) {
    Easy e = NewEasy(HttpTimeouts{o.connectMs, o.transferMs});
    if (!e) return QStringLiteral("Fehler bei %1: libcurl nicht bereit").arg(url);
    NoWaitForResolver(e.get());
    Slist headers;
    if (o.nocache) {
        curl_slist* raw = curl_slist_append(nullptr, "Cache-Control: no-cache");
        if (raw) raw = curl_slist_append(raw, "Pragma: no-cache");
        headers.reset(raw);
        if (!headers) return QStringLiteral("Fehler bei %1: kein Speicher").arg(url);
        curl_easy_setopt(e.get(), CURLOPT_HTTPHEADER, headers.get());
    }
    if (o.idleMs > 0) {
        curl_easy_setopt(e.get(), CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(e.get(), CURLOPT_LOW_SPEED_TIME, std::max(1L, (o.idleMs + 999) / 1000));
    }
    char detail[CURL_ERROR_SIZE] = {};
    QByteArray answer;
    const QByteArray u = url.toUtf8();
    curl_easy_setopt(e.get(), CURLOPT_URL, u.constData());
    curl_easy_setopt(e.get(), CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(e.get(), CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(e.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(e.get(), CURLOPT_ERRORBUFFER, detail);
    curl_easy_setopt(e.get(), CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(e.get(), CURLOPT_WRITEDATA, &answer);
    const CURLcode rc = curl_easy_perform(e.get());
    long status = 0;
    curl_easy_getinfo(e.get(), CURLINFO_RESPONSE_CODE, &status);
    if (rc == CURLE_HTTP_RETURNED_ERROR || (rc == CURLE_OK && status != 200))
        return QStringLiteral("Der Server antwortet auf %1 mit %2").arg(url).arg(status);
    if (rc != CURLE_OK) return FailureText(rc, url, detail);
    return WriteFileAtomic(file, answer);
}

QString MD5Sum(const QByteArray& bytes) {
    if (bytes.isEmpty()) return QStringLiteral("keine Daten zum MD5Sum berechnen übergeben");
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
    if (digest.size() != 16) return {};
    const QString hex = QString::fromLatin1(digest.toHex()).toUpper();
    return hex.size() == 32 ? hex : QString();
}

} // namespace kolibrino::net
