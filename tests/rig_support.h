// Helpers of the rig tests: a real rigctld (Hamlib's dummy rig, model 1) started on a
// free loopback port, and rigctl to turn its knobs from outside.
#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kolibrino::test {

// A loopback port nobody listens on right now.
inline int FreeLoopbackPort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = 0;
    socklen_t len = sizeof a;
    ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len);
    ::close(fd);
    return ntohs(a.sin_port);
}

inline bool PortAnswers(int port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(uint16_t(port));
    const bool ok = ::connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
    ::close(fd);
    return ok;
}

// rigctld -m 1 on 127.0.0.1:port, stopped with the object. Extra arguments such as
// {"-P", "RIG"} (a dummy that takes PTT) go to the daemon as given.
class Rigctld {
public:
    explicit Rigctld(int port = FreeLoopbackPort()) : port_(port) {}
    ~Rigctld() { Stop(); }
    bool Start(const QStringList& extra = {}) {
        proc_.setProgram(QStringLiteral("rigctld"));
        proc_.setArguments(QStringList{QStringLiteral("-m"), QStringLiteral("1"), QStringLiteral("-T"),
                                       QStringLiteral("127.0.0.1"), QStringLiteral("-t"),
                                       QString::number(port_)} +
                           extra);
        proc_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        proc_.start();
        if (!proc_.waitForStarted(5000)) return false;
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 5000) {
            if (PortAnswers(port_)) return true;
            QTest::qWait(20);
        }
        return false;
    }
    // Kills the daemon without warning, as a cable pulled or a crash would.
    void Kill() {
        if (proc_.state() == QProcess::NotRunning) return;
        proc_.kill();
        proc_.waitForFinished(5000);
    }
    void Stop() {
        Resume();
        Kill();
    }
    // Stops and continues the daemon (SIGSTOP, SIGCONT): a rig that stops answering.
    bool Pause() {
        return proc_.state() != QProcess::NotRunning && ::kill(pid_t(proc_.processId()), SIGSTOP) == 0;
    }
    bool Resume() {
        return proc_.state() != QProcess::NotRunning && ::kill(pid_t(proc_.processId()), SIGCONT) == 0;
    }
    int Port() const { return port_; }
    QString Address() const { return QStringLiteral("127.0.0.1:%1").arg(port_); }
    // Runs rigctl against the daemon ("F", "7050000" or "M", "USB", "0").
    bool Set(const QStringList& command) const {
        QProcess p;
        p.start(QStringLiteral("rigctl"),
                QStringList{QStringLiteral("-m"), QStringLiteral("2"), QStringLiteral("-r"), Address()} +
                    command);
        return p.waitForFinished(5000) && p.exitCode() == 0;
    }
    QString Get(const QString& command) const {
        QProcess p;
        p.start(QStringLiteral("rigctl"),
                {QStringLiteral("-m"), QStringLiteral("2"), QStringLiteral("-r"), Address(), command});
        p.waitForFinished(5000);
        return QString::fromLocal8Bit(p.readAllStandardOutput()).section(QLatin1Char('\n'), 0, 0).trimmed();
    }

private:
    int port_;
    QProcess proc_;
};

} // namespace kolibrino::test
