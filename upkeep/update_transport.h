// The two network calls the update needs, behind a small interface: a TCP-connect
// "ping" of a host and port, and the download of one URL into a file, bypassing every
// cache. The program's shared HTTP layer (libcurl) stands behind it as
// HttpUpdateTransport (upkeep/http_update_transport.h).
//
// Called by the update flow; both calls block the calling thread for at most their
// timeouts (the name look-up included). The windows run them on a worker thread
// (upkeep/beside_transport.h), the command line on its main thread. Both return the
// empty text on success, else a German description of what failed. Nothing throws.
#pragma once

#include <QString>
#include <QUrl>

namespace kolibrino::upkeep {

struct TransportTimeouts {
    int connectMs = 1500; // name look-up and TCP connect together
    int idleMs = 10000;   // longest silence while a download runs
    int totalMs = 0;      // > 0: the whole download, from the look-up to the last byte
};

class UpdateTransport {
public:
    virtual ~UpdateTransport() = default;
    // Opens and closes a TCP connection to host:port.
    virtual QString Ping(const QString& host, int port, int timeoutMs) = 0;
    // Fetches an http URL (answer 200 only) into the file, replacing it whole; on a
    // failure the file is not created.
    virtual QString Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) = 0;
};

} // namespace kolibrino::upkeep
