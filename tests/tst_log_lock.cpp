// One writer per log: the write lock, its holders (window, command line, log switch),
// two real programs on one data folder, a holder killed with SIGKILL, and the unique
// temporary name of every write.
#include "core/atomic_file.h"
#include "core/log_file.h"
#include "core/log_lock.h"
#include "setup/log_manager.h"
#include "setup/log_switch.h"
#include "setup/main_window_setup.h"
#include "tst_main_window_support.h"

#include <QElapsedTimer>
#include <QProcess>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <mutex>
#include <thread>
#include <unistd.h>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

std::vector<QsoRecord> TwoContacts() {
    return {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3BBB"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00"))};
}

// The real program, offscreen, driven through its standard input (app/test_drive.h).
class Program {
public:
    explicit Program(const QString& home) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KOLIBRINO_HOME"), home);
        env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/xdg"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("KOLIBRINO_TEST_DRIVE"), QStringLiteral("1"));
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_AT.UTF-8"));
        env.remove(QStringLiteral("KOLIBRINO_LOG"));
        p.setProcessEnvironment(env);
        p.setStandardErrorFile(QProcess::nullDevice());
        p.start(QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino"), {});
        p.waitForStarted(30000);
    }
    ~Program() {
        if (p.state() != QProcess::NotRunning) {
            p.kill();
            p.waitForFinished(10000);
        }
    }
    // The next line of the program, or the empty text when it ended or said nothing
    // in a minute (a safety net, not a timing).
    QByteArray Line() {
        QElapsedTimer t;
        t.start();
        while (!p.canReadLine() && p.state() != QProcess::NotRunning && t.elapsed() < 60000)
            p.waitForReadyRead(1000);
        if (!p.canReadLine()) {
            if (p.state() == QProcess::NotRunning) p.waitForFinished(1000);
            return {};
        }
        return p.readLine().trimmed();
    }
    // Sends a command and gives the first answer that is not a box ("M ..."); the boxes
    // shown meanwhile are gathered in boxes.
    QByteArray Send(const QByteArray& command) {
        p.write(command + '\n');
        for (;;) {
            const QByteArray l = Line();
            if (!l.startsWith("M ")) return l;
            boxes << QString::fromUtf8(l.mid(2));
        }
    }
    // Waits for "R" (the main window is up); false when the program ended before, its
    // boxes then in boxes.
    bool Ready() {
        for (;;) {
            const QByteArray l = Line();
            if (l == "R") return true;
            if (l.isEmpty()) return false;
            if (l.startsWith("M ")) boxes << QString::fromUtf8(l.mid(2));
        }
    }
    void Kill() {
        ::kill(pid_t(p.processId()), SIGKILL);
        p.waitForFinished(10000);
    }
    QProcess p;
    QStringList boxes;
};

// A data folder for the real program: districts, settings that open the log at start.
void PrepareForProgram(WindowFixture& f, const QString& log) {
    QDir().mkpath(f.home.Path(QStringLiteral("xdg")));
    f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("LastLogOpen"), QStringLiteral("-1"));
    f.Ini(QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), log);
}

QStringList CallsInFile(const QString& path) {
    Model m;
    m.SetLocale(AustrianLocale());
    ScriptedDialogs d;
    QStringList calls;
    if (LoadLog(m, d, path) != 1) return {QStringLiteral("<lädt nicht>")};
    for (const QsoRecord& r : m.LogRecords)
        calls << r.Call;
    return calls;
}

} // namespace

class TestLogLock : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    void aSecondLockOfOneLogIsRefusedAndNamesItsHolder() {
        Home home;
        const QString log = home.model.LogFolder + QStringLiteral("a.KOLBO");
        QString error;
        const std::shared_ptr<LogLock> first = LogLock::Take(log, &error);
        QVERIFY(first);
        QVERIFY(!LogLock::Take(log, &error));
        QVERIFY(error.startsWith(QStringLiteral("Das Log ")));
        QVERIFY(error.contains(QStringLiteral("ist gesperrt: ein anderes Kolibrino-Programm (Prozess %1)")
                                   .arg(::getpid())));
        QVERIFY(LockedByOther(log));
        QVERIFY(!LockedByOther(home.model.LogFolder + QStringLiteral("b.KOLBO")));
    }

    void theLogManagerNeitherDeletesNorRenamesALogAnotherProgramHolds() {
        Home home;
        const QString log = home.model.LogFolder + QStringLiteral("held.KOLBO");
        WriteBytes(log, "inhalt");
        QString error;
        const std::shared_ptr<LogLock> holder = LogLock::Take(log, &error); // the other program
        QVERIFY(holder);
        ScriptedDialogs d;
        d.AnswerMsgBox(Msg::Yes);
        QCOMPARE(setup::DeleteLogs(d, home.model.LogFolder, 1, {QStringLiteral("held.KOLBO")}), 0);
        QVERIFY(d.LastBox());
        QVERIFY2(d.LastBox()->text.contains(QStringLiteral("ist gesperrt")), qPrintable(d.LastBox()->text));
        QCOMPARE(ReadBytes(log), QByteArray("inhalt"));
        d.AnswerInput(QStringLiteral("neu"));
        QCOMPARE(setup::RenameLogs(d, home.model.LogFolder, 1, {QStringLiteral("held.KOLBO")}), 0);
        QVERIFY(d.LastBox()->text.contains(QStringLiteral("ist gesperrt")));
        QCOMPARE(ReadBytes(log), QByteArray("inhalt"));
        QVERIFY(!QFile::exists(home.model.LogFolder + QStringLiteral("neu.KOLBO")));
        // The log this program holds itself may still be deleted, as before.
        ScriptedDialogs own;
        own.AnswerMsgBox(Msg::Yes);
        QCOMPARE(setup::DeleteLogs(own, home.model.LogFolder, 1, {QStringLiteral("held.KOLBO")}, holder.get()), 1);
        QVERIFY(!QFile::exists(log));
    }

    void theLockGoesWithItsHolder() {
        Home home;
        const QString log = home.model.LogFolder + QStringLiteral("a.KOLBO");
        QString error;
        std::shared_ptr<LogLock> first = LogLock::Take(log, &error);
        QVERIFY(first);
        first.reset();
        QVERIFY(LogLock::Take(log, &error));
    }

    void aLockedLogIsNeverWrittenByAModelWithoutTheLock() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        const QString log = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(log);
        QString error;
        const auto holder = LogLock::Take(log, &error);
        QVERIFY(holder);
        Model other = f.home.model;
        other.CurrentLogName = QStringLiteral("test.KOLBO");
        other.LogText = QStringLiteral("nichts");
        QVERIFY(WriteLogFile(other).contains(QStringLiteral("gesperrt")));
        QCOMPARE(ReadBytes(log), before);
    }

    void aKilledHolderLeavesNoStaleLock() {
        Home home;
        const QString log = home.model.LogFolder + QStringLiteral("a.KOLBO");
        int ready[2];
        QCOMPARE(::pipe(ready), 0);
        // The child takes the lock as LogLock does, with nothing but system calls.
        const QByteArray lockFile = QFile::encodeName(LockFileOf(log));
        const pid_t child = ::fork();
        if (child == 0) {
            const int fd = ::open(lockFile.constData(), O_RDWR | O_CREAT, 0644);
            struct flock fl {};
            fl.l_type = F_WRLCK;
            fl.l_whence = SEEK_SET;
            const char c = fd >= 0 && ::fcntl(fd, F_OFD_SETLK, &fl) == 0 ? 'j' : 'n';
            [[maybe_unused]] const ssize_t n = ::write(ready[1], &c, 1);
            for (;;)
                ::pause();
        }
        char c = 0;
        QCOMPARE(::read(ready[0], &c, 1), ssize_t(1));
        QCOMPARE(c, 'j');
        QVERIFY(LockedByOther(log));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ready[0]);
        ::close(ready[1]);
        QVERIFY(!LockedByOther(log));
        QVERIFY(QFileInfo::exists(LockFileOf(log))); // the file stays; it means nothing now
    }

    void theMainWindowHoldsItsLogAndTheCommandLineRefusesIt() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        QVERIFY(f.Start());
        const QByteArray before = f.FileBytes();
        const QString home = f.home.dir.path();
        const CliResult edit = RunCli(home, {QStringLiteral("edit"), f.LogPath(), QStringLiteral("1"),
                                             QStringLiteral("notiz=weg")});
        QCOMPARE(edit.code, 1);
        QVERIFY(QString::fromLocal8Bit(edit.err).contains(QStringLiteral("ist gesperrt")));
        const CliResult del = RunCli(home, {QStringLiteral("delete"), f.LogPath(), QStringLiteral("1")});
        QCOMPARE(del.code, 1);
        QVERIFY(QString::fromLocal8Bit(del.err).contains(QStringLiteral("ist gesperrt")));
        QCOMPARE(f.FileBytes(), before);
        // Once the window has closed, the command may write.
        f.window->close();
        f.window.reset();
        const CliResult after = RunCli(home, {QStringLiteral("delete"), f.LogPath(), QStringLiteral("1")});
        QCOMPARE(after.code, 0);
        QCOMPARE(CallsInFile(f.LogPath()), QStringList{QStringLiteral("OE3BBB")});
    }

    void aWindowDoesNotOpenALogThatAnotherProgramHolds() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        const QString log = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        QString error;
        const auto holder = LogLock::Take(log, &error);
        QVERIFY(holder);
        const QByteArray before = ReadBytes(log);
        QVERIFY(!f.Start());
        QVERIFY(f.dialogs.LastBox());
        QVERIFY(f.dialogs.LastBox()->text.contains(QStringLiteral("ist gesperrt")));
        QCOMPARE(f.dialogs.LastBox()->flags, 48);
        QCOMPARE(ReadBytes(log), before);
    }

    void switchingLogsTakesTheNewLockAndDropsTheOld() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        f.WriteLog(QStringLiteral("zweit.KOLBO"), {});
        QVERIFY(f.Start());
        const QString first = f.LogPath();
        const QString second = f.home.model.LogFolder + QStringLiteral("zweit.KOLBO");
        QVERIFY(LockedByOther(first));
        QVERIFY(!LockedByOther(second));
        f.home.model.CurrentLogName = QStringLiteral("zweit.KOLBO");
        QCOMPARE(setup::FinishOpenLog(f.home.model, f.dialogs, setup::HooksOf(*f.window, f.home.model),
                                      QStringLiteral("test.KOLBO")),
                 setup::SwitchResult::Switched);
        QVERIFY(!LockedByOther(first));
        QVERIFY(LockedByOther(second));
    }

    void switchingToALogThatAnotherProgramHoldsKeepsTheOldOne() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        f.WriteLog(QStringLiteral("zweit.KOLBO"), {});
        QVERIFY(f.Start());
        const QString second = f.home.model.LogFolder + QStringLiteral("zweit.KOLBO");
        QString error;
        const auto holder = LogLock::Take(second, &error);
        QVERIFY(holder);
        f.home.model.CurrentLogName = QStringLiteral("zweit.KOLBO");
        QCOMPARE(setup::FinishOpenLog(f.home.model, f.dialogs, setup::HooksOf(*f.window, f.home.model),
                                      QStringLiteral("test.KOLBO")),
                 setup::SwitchResult::Unchanged);
        QCOMPARE(f.home.model.CurrentLogName, QStringLiteral("test.KOLBO"));
        QVERIFY(f.dialogs.LastBox()->text.contains(QStringLiteral("ist gesperrt")));
        QCOMPARE(f.home.model.LogRecords.size(), size_t(2));
        // The window still writes its own log.
        f.Type(QStringLiteral("OE6CCC"), 0, QStringLiteral("GZ"));
        QCOMPARE(CallsInFile(f.LogPath()),
                 (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE3BBB"), QStringLiteral("OE6CCC")}));
    }

    // Two real programs on one data folder: the second start is told why and does not
    // open the log; a contact of the first is never lost.
    void aSecondProgramOnOneDataFolderNeverWritesTheLog() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), TwoContacts());
        f.WriteLog(QStringLiteral("zweit.KOLBO"), {});
        PrepareForProgram(f, QStringLiteral("test.KOLBO"));
        const QString log = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QString home = f.home.dir.path();
        Program first(home);
        QVERIFY2(first.Ready(), qPrintable(first.boxes.join(QLatin1Char('\n'))));
        QCOMPARE(first.Send("Q OE6CCC 0 0 GZ"), QByteArray("A OE6CCC"));

        Program second(home); // the double click on the icon
        QVERIFY(!second.Ready());
        QCOMPARE(second.boxes.size(), 1);
        QVERIFY(second.boxes[0].contains(QStringLiteral("ist gesperrt")));
        second.p.waitForFinished(30000); // ended by itself, without the main window
        QCOMPARE(second.p.state(), QProcess::NotRunning);

        // A second program on the other log cannot switch into the first one's.
        f.Ini(QStringLiteral("Pathe"), QStringLiteral("LastLogFile"), QStringLiteral("zweit.KOLBO"));
        Program third(home);
        QVERIFY(third.Ready());
        QCOMPARE(third.Send("L test.KOLBO"), QByteArray("N test.KOLBO"));
        QVERIFY(third.boxes.join(QLatin1Char('\n')).contains(QStringLiteral("ist gesperrt")));
        QCOMPARE(third.Send("Q OE5DDD 0 0 WI"), QByteArray("A OE5DDD"));

        QCOMPARE(first.Send("Q OE8EEE 1 0 MD"), QByteArray("A OE8EEE"));
        QCOMPARE(CallsInFile(log), (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE3BBB"),
                                                       QStringLiteral("OE6CCC"), QStringLiteral("OE8EEE")}));
        QCOMPARE(CallsInFile(f.home.model.LogFolder + QStringLiteral("zweit.KOLBO")),
                 QStringList{QStringLiteral("OE5DDD")});
        // The first program killed: its lock is gone with it, the command line may write.
        first.Kill();
        const CliResult del = RunCli(home, {QStringLiteral("delete"), log, QStringLiteral("1")});
        QCOMPARE(del.code, 0);
        QCOMPARE(CallsInFile(log).size(), 3);
    }

    // The fixed name ".<name>.tmp" of old: a folder of that name stopped every write.
    void everyWriteHasATemporaryNameOfItsOwn() {
        Home home;
        const QString path = home.model.LogFolder + QStringLiteral("a.KOLBO");
        QVERIFY(QDir().mkpath(home.model.LogFolder + QStringLiteral(".a.KOLBO.tmp/x")));
        QCOMPARE(WriteFileAtomic(path, "eins"), QString());
        QCOMPARE(ReadBytes(path), QByteArray("eins"));
        const QStringList left = QDir(home.model.LogFolder)
                                     .entryList({QStringLiteral(".a.KOLBO.*")}, QDir::Files | QDir::Hidden);
        QVERIFY2(left.isEmpty(), qPrintable(left.join(QLatin1Char(' '))));
    }

    // Two writers at once on one file: each result is one whole text, never a mix.
    void twoWritersAtOnceNeverMixTheirBytes() {
        Home home;
        const QString path = home.model.LogFolder + QStringLiteral("a.KOLBO");
        const QByteArray a(200000, 'a');
        const QByteArray b(100000, 'b');
        QStringList errors;
        std::mutex guard;
        auto writer = [&](const QByteArray& bytes) {
            for (int i = 0; i < 40; ++i)
                if (const QString e = WriteFileAtomic(path, bytes); !e.isEmpty()) {
                    std::lock_guard<std::mutex> l(guard);
                    errors << e;
                }
        };
        std::thread t1(writer, a);
        std::thread t2(writer, b);
        t1.join();
        t2.join();
        QVERIFY2(errors.isEmpty(), qPrintable(errors.join(QLatin1Char('\n'))));
        const QByteArray end = ReadBytes(path);
        QVERIFY(end == a || end == b);
    }
};

QTEST_MAIN(TestLogLock)
#include "tst_log_lock.moc"
