#include "upkeep/http_update_transport.h"

#include "export/http_client.h"

namespace kolibrino::upkeep {

QString HttpUpdateTransport::Ping(const QString& host, int port, int timeoutMs) {
    return net::ServerPingText(host, port, timeoutMs);
}

QString HttpUpdateTransport::Download(const QUrl& url, const QString& file,
                                      const TransportTimeouts& timeouts) {
    if (url.scheme() != QLatin1String("http") || url.host().isEmpty())
        return QStringLiteral("Keine gültige Adresse: %1").arg(url.toString());
    net::DownloadOptions o;
    o.nocache = true;
    o.connectMs = timeouts.connectMs;
    o.idleMs = timeouts.idleMs;
    o.transferMs = timeouts.totalMs;
    return net::HttpDownload(QString::fromLatin1(url.toEncoded()), file, o);
}

} // namespace kolibrino::upkeep
