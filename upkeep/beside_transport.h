// The update's transport for the windows: each network call of another transport runs
// on a worker thread while the window thread's events go on (the splash and the busy
// panel paint, timers fire; user input waits, the update window is modal). So a
// server that accepts and never answers holds no window; the call ends within the
// limits the update flow gives it.
//
// GUI thread only; one call at a time. Failures are those of the inner transport.
#pragma once

#include "upkeep/update_transport.h"

namespace kolibrino::upkeep {

class BesideTransport final : public UpdateTransport {
public:
    explicit BesideTransport(UpdateTransport& inner) : inner_(inner) {}
    QString Ping(const QString& host, int port, int timeoutMs) override;
    QString Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) override;

private:
    UpdateTransport& inner_;
};

} // namespace kolibrino::upkeep
