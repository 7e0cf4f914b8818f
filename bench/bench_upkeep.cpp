// Upkeep benchmark: program start to a usable main window with the update check at
// start off, against the same start with the check on and no update server to be had:
// a closed port on loopback, a name that does not resolve, and a host that takes the
// connection attempt and never answers it (a loopback listener whose queue is full).
// The update goes through the program's own transport (libcurl). Everything stays on
// 127.0.0.1. Figures are medians of several starts.
#include "bench_support.h"
#include "core/clock.h"
#include "core/paths.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/main_window.h"
#include "upkeep/upkeep_install.h"

#include <QApplication>
#include <QTcpServer>
#include <QTemporaryDir>
#include <arpa/inet.h>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>

using namespace kolibrino;
using namespace kolibrino::bench;

namespace {

// A loopback port whose listen queue is full: further connection attempts get no answer.
struct SilentHost {
    SilentHost() {
        listener = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(listener, reinterpret_cast<sockaddr*>(&a), sizeof a);
        socklen_t len = sizeof a;
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&a), &len);
        port = ntohs(a.sin_port);
        ::listen(listener, 0);
        for (int i = 0; i < 4; ++i) { // fill the queue, never accept
            const int c = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            ::connect(c, reinterpret_cast<sockaddr*>(&a), sizeof a);
            fillers.push_back(c);
        }
    }
    ~SilentHost() {
        for (int c : fillers)
            ::close(c);
        ::close(listener);
    }
    int listener = -1;
    int port = 0;
    std::vector<int> fillers;
};

double StartMs(const QString& logName, const QString& server, bool checkAtStart) {
    std::vector<double> t;
    for (int i = 0; i < 5; ++i) {
        Model m;
        ScriptedDialogs dialogs;
        FixedTimeSource clock(QDateTime(QDate(2026, 5, 1), QTime(6, 30)));
        qputenv("KOLIBRINO_LOG", logName.toLocal8Bit());
        std::unique_ptr<HauptForm> w;
        t.push_back(ElapsedMs([&] {
            m.SetLocale(QLocale(QLocale::German, QLocale::Austria));
            IniStartup(m, QCoreApplication::applicationDirPath());
            SetupFolders(m);
            IniWrite(m.IniPath, QStringLiteral("Update"), QStringLiteral("Server"), server);
            IniWrite(m.IniPath, QStringLiteral("Update"), QStringLiteral("BeimStart"), checkAtStart ? 1 : 0);
            w = std::make_unique<HauptForm>(m, dialogs, clock);
            upkeep::InstallUpkeep(*w, m, dialogs, clock);
            w->Load();
            QCoreApplication::processEvents();
            w->grab(); // painted once: the window is usable
        }));
        w->Timer3().stop();
        w->close();
        if (!dialogs.boxes.isEmpty())
            std::printf("  (unexpected box: %s)\n", qPrintable(dialogs.boxes[0].text));
    }
    return Median(t);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir home;
    Model base;
    PrepareBenchHome(base, home);
    Model log;
    log.SetLocale(base.Formats.Locale());
    log.LogFolder = base.LogFolder;
    log.CurrentLogName = QStringLiteral("start.KOLBO");
    FillGeneratedLog(log, 1000);
    if (!WriteLogFile(log).isEmpty()) std::abort();

    int closedPort = 0;
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        closedPort = probe.serverPort();
    }
    SilentHost silent;
    const QString unresolvable = QString(70, QLatin1Char('x')) + QStringLiteral(".invalid");

    std::printf("Start to a usable main window, log of 1000 contacts (medians of 5)\n");
    const double off = StartMs(log.CurrentLogName, QStringLiteral("127.0.0.1:%1").arg(closedPort), false);
    std::printf("  update check off:                       %8.2f ms\n", off);
    const struct {
        const char* what;
        QString server;
    } cases[] = {
        {"check on, closed port on loopback:     ", QStringLiteral("127.0.0.1:%1").arg(closedPort)},
        {"check on, name that does not resolve:  ", unresolvable},
        {"check on, host that never answers:     ", QStringLiteral("127.0.0.1:%1").arg(silent.port)},
    };
    for (const auto& c : cases) {
        const double on = StartMs(log.CurrentLogName, c.server, true);
        std::printf("  %s %8.2f ms  (added %8.2f ms)\n", c.what, on, on - off);
    }
    return 0;
}
