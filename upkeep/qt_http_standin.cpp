// STAND-IN: see qt_http_standin.h.
#include "upkeep/qt_http_standin.h"

#include "core/atomic_file.h"

#include <QElapsedTimer>
#include <QTcpSocket>

namespace kolibrino::upkeep {
namespace {

QString Unreachable(const QString& host, int port, const QTcpSocket& s) {
    return QStringLiteral("Server %1:%2 nicht erreichbar (%3)").arg(host).arg(port).arg(s.errorString());
}

bool Connect(QTcpSocket& s, const QString& host, int port, int timeoutMs) {
    s.connectToHost(host, quint16(port));
    if (s.waitForConnected(timeoutMs)) return true;
    s.abort();
    return false;
}

} // namespace

QString QtHttpStandIn::Ping(const QString& host, int port, int timeoutMs) {
    if (host.isEmpty() || port <= 0 || port > 65535)
        return QStringLiteral("Kein gültiger Server: \"%1:%2\"").arg(host).arg(port);
    QTcpSocket s;
    if (!Connect(s, host, port, timeoutMs)) return Unreachable(host, port, s);
    s.disconnectFromHost();
    return {};
}

QString QtHttpStandIn::Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) {
    const QString host = url.host();
    const int port = url.port(80);
    if (url.scheme() != QLatin1String("http") || host.isEmpty())
        return QStringLiteral("Keine gültige Adresse: %1").arg(url.toString());
    QTcpSocket s;
    if (!Connect(s, host, port, timeouts.connectMs)) return Unreachable(host, port, s);
    const QByteArray path = url.path(QUrl::FullyEncoded).toLatin1();
    s.write("GET " + (path.isEmpty() ? QByteArray("/") : path) + " HTTP/1.0\r\nHost: " + host.toLatin1() +
            ':' + QByteArray::number(port) +
            "\r\nCache-Control: no-cache\r\nPragma: no-cache\r\nConnection: close\r\nUser-Agent: "
            "Kolibrino\r\n\r\n");
    QByteArray answer;
    while (s.state() == QAbstractSocket::ConnectedState || s.bytesAvailable() > 0) {
        if (s.bytesAvailable() == 0 && !s.waitForReadyRead(timeouts.idleMs)) {
            if (s.error() == QAbstractSocket::RemoteHostClosedError) break;
            if (s.error() == QAbstractSocket::SocketTimeoutError)
                return QStringLiteral("Zeitüberschreitung beim Herunterladen von %1").arg(url.toString());
            break;
        }
        answer += s.readAll();
    }
    answer += s.readAll();
    const int headEnd = int(answer.indexOf("\r\n\r\n"));
    if (headEnd < 0) return QStringLiteral("Keine gültige Antwort des Servers auf %1").arg(url.toString());
    const QList<QByteArray> head = answer.left(headEnd).split('\n');
    const QList<QByteArray> status = head.first().trimmed().split(' ');
    if (status.size() < 2 || !status[0].startsWith("HTTP/"))
        return QStringLiteral("Keine gültige Antwort des Servers auf %1").arg(url.toString());
    if (status[1] != "200")
        return QStringLiteral("Der Server antwortet auf %1 mit %2")
            .arg(url.toString(), QString::fromLatin1(status[1]));
    const QByteArray body = answer.mid(headEnd + 4);
    for (const QByteArray& line : head) {
        const int colon = int(line.indexOf(':'));
        if (colon < 0 || line.left(colon).trimmed().toLower() != "content-length") continue;
        bool ok = false;
        const qint64 length = line.mid(colon + 1).trimmed().toLongLong(&ok);
        if (ok && length != body.size())
            return QStringLiteral("Die Übertragung von %1 ist unvollständig").arg(url.toString());
    }
    return WriteFileAtomic(file, body);
}

} // namespace kolibrino::upkeep
