#include "upkeep/beside_transport.h"

#include <QEventLoop>
#include <functional>
#include <thread>

namespace kolibrino::upkeep {
namespace {

QString Beside(const std::function<QString()>& call) {
    QString result;
    QEventLoop loop;
    std::thread worker([&] {
        result = call();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    worker.join();
    return result;
}

} // namespace

QString BesideTransport::Ping(const QString& host, int port, int timeoutMs) {
    return Beside([&] { return inner_.Ping(host, port, timeoutMs); });
}

QString BesideTransport::Download(const QUrl& url, const QString& file, const TransportTimeouts& timeouts) {
    return Beside([&] { return inner_.Download(url, file, timeouts); });
}

} // namespace kolibrino::upkeep
