// Figures for transceiver control: the time from a frequency change at rigctld to the
// new value in the frequency window, and the longest stall of the window thread while
// rigctld vanishes and comes back. A real rigctld (Hamlib's dummy rig) on a free
// loopback port; rigctl runs asynchronously so the window thread only ever waits for
// itself. Prints figures; judges nothing. Run with QT_QPA_PLATFORM=offscreen where
// there is no display.
#include "bench_support.h"
#include "core/clock.h"
#include "core/log_file.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "entry/main_window.h"
#include "rig/frequenz.h"
#include "rig/hamlib_rig.h"
#include "rig/main_window_rig.h"
#include "rig/rig_engine.h"

#include <QAction>
#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <arpa/inet.h>
#include <cstdio>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

int FreePort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof a;
    ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len);
    ::close(fd);
    return ntohs(a.sin_port);
}

// Runs the event loop until done() or ms have passed.
bool Spin(const std::function<bool()>& done, int ms) {
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > ms) return false;
        QEventLoop loop;
        loop.processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

void StartDaemon(QProcess& p, int port) {
    p.start(QStringLiteral("rigctld"),
            {QStringLiteral("-m"), QStringLiteral("1"), QStringLiteral("-T"), QStringLiteral("127.0.0.1"),
             QStringLiteral("-t"), QString::number(port)});
}

// rigctl without waiting: the finished slot notes when the daemon has taken the value.
void RigctlAsync(int port, const QStringList& command, const std::function<void()>& finished) {
    auto* p = new QProcess;
    QObject::connect(p, &QProcess::finished, p, [p, finished] {
        finished();
        p->deleteLater();
    });
    p->start(QStringLiteral("rigctl"),
             QStringList{QStringLiteral("-m"), QStringLiteral("2"), QStringLiteral("-r"),
                         QStringLiteral("127.0.0.1:%1").arg(port)} +
                 command);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    qputenv("KOLIBRINO_HOME", home.path().toLocal8Bit());
    Model model;
    model.SetLocale(QLocale(QLocale::German, QLocale::Austria));
    IniStartup(model, QCoreApplication::applicationDirPath());
    SetupFolders(model);
    {
        QFile d(model.DataFolder + QStringLiteral("bez_koord.txt"));
        if (d.open(QIODevice::WriteOnly)) d.write(BenchDistrictTable());
        Model m;
        m.SetLocale(model.Formats.Locale());
        m.LogFolder = model.LogFolder;
        m.CurrentLogName = QStringLiteral("bench.KOLBO");
        FillGeneratedLog(m, 100);
        if (!WriteLogFile(m).isEmpty()) std::abort();
    }
    qputenv("KOLIBRINO_LOG", "bench.KOLBO");
    const int port = FreePort();
    QProcess daemon;
    StartDaemon(daemon, port);
    if (!daemon.waitForStarted(5000)) {
        std::fputs("rigctld fehlt (libhamlib-utils)\n", stderr);
        return 1;
    }
    QThread::msleep(300);
    rig::WriteRigConfig(model.IniPath, 1,
                        {rig::kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(port), 0});

    ScriptedDialogs dialogs;
    FixedTimeSource clock{QDateTime(QDate(2026, 5, 1), QTime(6, 30))};
    HauptForm window(model, dialogs, clock);
    rig::InstallRig(window, model, dialogs, clock);
    if (!window.Load()) return 1;
    window.Action(QStringLiteral("MnFrequenz"))->trigger();
    auto* freq = window.findChild<rig::Frequenz*>(QStringLiteral("Frequenz"));
    auto* label1 = freq->findChild<QLabel*>(QStringLiteral("Label1"));
    auto* label3 = freq->findChild<QLabel*>(QStringLiteral("Label3"));
    if (!Spin([&] { return label3->text() == QLatin1String("ONLINE"); }, 5000)) {
        std::fputs("rigctld antwortet nicht\n", stderr);
        return 1;
    }

    // 1. A change at rigctld to the window's label.
    std::vector<double> latencies;
    for (int i = 0; i < 25; ++i) {
        const int hz = (i % 2 ? 3501000 : 7001000) + i * 1000; // 40 m and 80 m in turn
        const QString want = rig::FormatFrequency(hz);
        QElapsedTimer since;
        bool taken = false;
        RigctlAsync(port, {QStringLiteral("F"), QString::number(hz)}, [&] {
            since.start();
            taken = true;
        });
        if (!Spin([&] { return taken && label1->text() == want; }, 5000)) {
            std::fprintf(stderr, "Änderung %d nicht angekommen\n", hz);
            continue;
        }
        latencies.push_back(double(since.nsecsElapsed()) / 1e6);
        // A random phase against the poll.
        Spin([] { return false; }, 37 * (i % 7));
    }
    std::sort(latencies.begin(), latencies.end());
    if (!latencies.empty())
        std::printf("Frequenzänderung an rigctld bis Frequenzfenster: Median %.1f ms, Maximum %.1f ms (%zu "
                    "Änderungen, Abfrage alle 250 ms; Ziel <= 300 ms)\n",
                    Median(latencies), latencies.back(), latencies.size());

    // 2. The window thread while rigctld vanishes and returns.
    qint64 longest = 0, last = -1;
    QElapsedTimer beat;
    beat.start();
    QTimer heartbeat;
    heartbeat.setInterval(5);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = beat.nsecsElapsed();
        if (last >= 0) longest = std::max(longest, now - last);
        last = now;
    });
    heartbeat.start();
    QElapsedTimer gone;
    daemon.kill();
    gone.start();
    Spin([&] { return label3->text() == QLatin1String("OFFLINE"); }, 5000);
    const double offlineMs = double(gone.nsecsElapsed()) / 1e6;
    Spin([] { return false; }, 2000);
    Spin([&] { return daemon.state() == QProcess::NotRunning; }, 2000);
    QProcess again;
    StartDaemon(again, port);
    QElapsedTimer back;
    back.start();
    Spin([&] { return label3->text() == QLatin1String("ONLINE"); }, 10000);
    const double onlineMs = double(back.nsecsElapsed()) / 1e6;
    bool taken = false;
    RigctlAsync(port, {QStringLiteral("F"), QStringLiteral("3650000")}, [&] { taken = true; });
    Spin([&] { return taken && label1->text() == QLatin1String("3.650.000"); }, 5000);
    Spin([] { return false; }, 1000);
    heartbeat.stop();
    std::printf(
        "rigctld beendet: OFFLINE nach %.0f ms (Ziel < 2000 ms); neu gestartet: ONLINE nach %.0f ms\n",
        offlineMs, onlineMs);
    std::printf("Längster Stillstand des Fenster-Threads dabei: %.1f ms (Ziel < 100 ms)\n",
                double(longest) / 1e6);
    freq->setProperty("Tag", QStringLiteral("1"));
    window.close();
    again.kill();
    again.waitForFinished(2000);
    return 0;
}
