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
        process.start(QStringLiteral("python3"),
                      {QStringLiteral("-m"), QStringLiteral("http.server"), QStringLiteral("--bind"),
                       QStringLiteral("127.0.0.1"), QStringLiteral("--directory"), root.path(),
                       QString::number(port)});
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

// A name that can never resolve and that the resolver refuses before it would ask any
// name server (a label longer than 63 characters), so no packet leaves the machine.
inline QString UnresolvableName() {
    return QString(70, QLatin1Char('x')) + QStringLiteral(".invalid");
}

} // namespace kolibrino::test
