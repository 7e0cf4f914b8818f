// STAND-IN transport for the update over Qt's QTcpSocket with a minimal HTTP/1.0 GET.
// It serves until the program's shared HTTP layer (libcurl) is plugged in behind
// UpdateTransport; keep it this small and replace it then.
//
// Window thread; blocking with the timeouts given (name look-up included). Failures
// come back as German texts, as UpdateTransport says.
#pragma once

#include "upkeep/update_transport.h"

namespace kolibrino::upkeep {

class QtHttpStandIn final : public UpdateTransport {
public:
    QString Ping(const QString& host, int port, int timeoutMs) override;
    QString Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) override;
};

} // namespace kolibrino::upkeep
