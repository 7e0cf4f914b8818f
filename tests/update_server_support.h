// A real update server for the tests: Python's http.server on 127.0.0.1 at a free
// port, serving a scratch folder with the update path below it.
#pragma once

#include "test_support.h"
#include "upkeep/update_flow.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace kolibrino::test {

// A port on loopback that nothing listens on (taken and released).
inline int FreeLoopbackPort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

inline QString Md5Hex(const QByteArray& bytes) {
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

class UpdateServerProcess {
public:
    UpdateServerProcess() {
        QDir().mkpath(Folder());
        port = FreeLoopbackPort();
        process.setStandardErrorFile(QProcess::nullDevice());
        process.setStandardOutputFile(QProcess::nullDevice());
        // http.server's file handler, that also notes each request line and its headers.
        static const char* const script =
            "import functools, http.server, sys\n"
            "root, port, log = sys.argv[1], int(sys.argv[2]), sys.argv[3]\n"
            "class H(http.server.SimpleHTTPRequestHandler):\n"
            "    def do_GET(self):\n"
            "        with open(log, 'a') as f:\n"
            "            f.write(self.requestline + '\\n' + str(self.headers))\n"
            "        super().do_GET()\n"
            "http.server.ThreadingHTTPServer(('127.0.0.1', port),\n"
            "    functools.partial(H, directory=root)).serve_forever()\n";
        process.start(QStringLiteral("python3"), {QStringLiteral("-c"), QString::fromLatin1(script),
                                                  root.path(), QString::number(port), RequestLog()});
        process.waitForStarted();
        for (int i = 0; i < 500; ++i) { // until it listens (about 10 s at most)
            QTcpSocket s;
            s.connectToHost(QHostAddress::LocalHost, quint16(port));
            if (s.waitForConnected(200)) break;
            QThread::msleep(20);
        }
    }
    ~UpdateServerProcess() {
        process.terminate();
        process.waitForFinished(5000);
    }
    // Every request the server got: its request line and headers, one after another.
    QString RequestLog() const { return root.path() + QStringLiteral("/requests.log"); }
    QString Folder() const { return root.path() + QString::fromLatin1(upkeep::kDefaultUpdatePath); }
    // Publishes a file; returns the list line for it (the MD5 of md5Of when given).
    QString Publish(const QString& name, const QByteArray& bytes, int version, const QByteArray& md5Of = {}) {
        WriteBytes(Folder() + name, bytes);
        return ListLine(name, bytes, version, md5Of);
    }
    static QString ListLine(const QString& name, const QByteArray& bytes, int version,
                            const QByteArray& md5Of = {}) {
        return QStringLiteral("%1|%2|01052026|%3|%4|Neu: %1\r\n")
            .arg(name)
            .arg(version)
            .arg(bytes.size())
            .arg(Md5Hex(md5Of.isNull() ? bytes : md5Of));
    }
    void WriteList(const QString& text) { WriteBytes(Folder() + QStringLiteral("KOLBOUpd.txt"), Cp(text)); }
    upkeep::UpdateServer Server() const {
        upkeep::UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = port;
        return s;
    }
    QString HostPort() const { return QStringLiteral("127.0.0.1:%1").arg(port); }

    QTemporaryDir root;
    QProcess process;
    int port = 0;
};

// A loopback port that takes no part in a conversation. Before Fill() the kernel
// completes the connection into the listen queue and nothing ever answers the request
// (a server that hangs); after Fill() the queue is full and connection attempts get no
// answer at all (a host that is down behind a dropping firewall).
class SilentHost {
public:
    SilentHost() {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address_), sizeof address_);
        socklen_t len = sizeof address_;
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address_), &len);
        port = ntohs(address_.sin_port);
        ::listen(listener_, 0);
    }
    ~SilentHost() {
        for (int c : fillers_)
            ::close(c);
        ::close(listener_);
    }
    void Fill() {
        for (int i = 0; i < 4; ++i) { // never accepted
            const int c = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            ::connect(c, reinterpret_cast<sockaddr*>(&address_), sizeof address_);
            fillers_.push_back(c);
        }
    }
    int port = 0;

private:
    int listener_ = -1;
    sockaddr_in address_{};
    std::vector<int> fillers_;
};

// A name that can never resolve and that the resolver refuses before it would ask any
// name server (a label longer than 63 characters), so no packet leaves the machine.
inline QString UnresolvableName() {
    return QString(70, QLatin1Char('x')) + QStringLiteral(".invalid");
}

} // namespace kolibrino::test
