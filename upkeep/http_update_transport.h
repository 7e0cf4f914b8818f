// The update's transport over the program's shared HTTP layer (export/http_client.h,
// libcurl): the ping is a name look-up and a TCP connect to the server's port, never
// through a proxy; a download asks every cache on the way for a fresh copy, connects
// within TransportTimeouts::connectMs, gives up after TransportTimeouts::idleMs
// without a byte or when TransportTimeouts::totalMs has passed, and counts only an
// answer 200.
//
// Any thread (the windows call it from a worker, the command line from its main
// thread); each call owns its own libcurl handle and blocks within the timeouts
// given. Failures come back as German texts, as UpdateTransport says; nothing throws.
#pragma once

#include "upkeep/update_transport.h"

namespace kolibrino::upkeep {

class HttpUpdateTransport final : public UpdateTransport {
public:
    QString Ping(const QString& host, int port, int timeoutMs) override;
    QString Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) override;
};

} // namespace kolibrino::upkeep
