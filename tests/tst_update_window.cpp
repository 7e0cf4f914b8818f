// The update window in both ways against a real HTTP server on loopback, and the menu
// entry of the main window that leads to it.
#include "setup/modal.h"
#include "tst_main_window_support.h"
#include "update_server_support.h"
#include "upkeep/http_update_transport.h"
#include "upkeep/replace_script.h"
#include "upkeep/update_window.h"
#include "upkeep/upkeep_install.h"

#include <QAction>
#include <QElapsedTimer>
#include <QPushButton>
#include <QScrollArea>

using namespace kolibrino;
using namespace kolibrino::upkeep;

namespace {

const QByteArray kBez = "WI;500;200;Wien;1;\r\nGZ;420;420;Graz;6;\r\n";

ProgramTarget Program(const QString& exe = QStringLiteral("/opt/kolibrino/kolibrino")) {
    ProgramTarget p;
    p.executablePath = exe;
    p.executableName = QStringLiteral("kolibrino");
    p.runningVersion = 100000;
    return p;
}

QPushButton* Button(QWidget& w, const char* name) {
    return w.findChild<QPushButton*>(QString::fromLatin1(name));
}

// With KOLIBRINO_SCREENSHOTS set, saves a grab of the window there (for the manual).
void Shot(QWidget* w, const QString& name) {
    const QString dir = qEnvironmentVariable("KOLIBRINO_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    w->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

QStringList Texts(const ScriptedDialogs& d) {
    QStringList t;
    for (const ShownBox& b : d.boxes)
        t << b.text;
    return t;
}

} // namespace

class TstUpdateWindow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        test::PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    void withAllEntriesUpToDateTheSplashWayClosesByItselfWithNoQuestion() {
        test::Home home;
        test::UpdateServerProcess server;
        IniWrite({}, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 6);
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, server.Server(), Program(), true);
        bool driven = false;
        setup::PushModalDriver([&](QDialog&) { driven = true; });
        setup::ExecModal(w);
        QVERIFY(!driven); // closed before anyone could answer
        QVERIFY(!w.isVisible());
        QVERIFY(d.boxes.isEmpty());
        QVERIFY(!w.UpdatesInstalled());
    }

    void splashWayWithTheServerDownGoesOnWithNoWord() {
        test::Home home;
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = test::FreeLoopbackPort();
        UpdateWindow w(home.model, d, t, s, Program(), true);
        setup::ExecModal(w);
        QVERIFY(!w.isVisible());
        QVERIFY(d.boxes.isEmpty());
    }

    void menuWayMessagesWhenUnreachableOrNothingNew() {
        test::Home home;
        HttpUpdateTransport t;
        {
            ScriptedDialogs d;
            UpdateServer s;
            s.host = QStringLiteral("127.0.0.1");
            s.port = test::FreeLoopbackPort();
            UpdateWindow w(home.model, d, t, s, Program(), false);
            setup::ExecModal(w);
            QCOMPARE(Texts(d), QStringList{QStringLiteral("Server nicht erreichbar!")});
            QCOMPARE(d.boxes[0].flags, int(Msg::Information));
        }
        {
            test::UpdateServerProcess server;
            server.WriteList(QStringLiteral("; leer\r\n"));
            ScriptedDialogs d;
            UpdateWindow w(home.model, d, t, server.Server(), Program(), false);
            setup::ExecModal(w);
            QCOMPARE(Texts(d), QStringList{QStringLiteral(
                                   "Es sind keine neuen Updates verfügbar. Fenster wird geschlossen.")});
        }
        {
            ScriptedDialogs d;
            UpdateWindow w(home.model, d, t, UpdateServer{}, Program(), false);
            setup::ExecModal(w);
            QVERIFY(Texts(d).first().startsWith(QStringLiteral("Es ist kein Update-Server eingestellt.")));
        }
    }

    // A server that takes the connection and never answers: the splash keeps painting
    // (the window thread's events run all the while) and the check ends at its limit.
    void splashKeepsPaintingWhileAServerNeverAnswersAndTheCheckEndsAtItsLimit() {
        test::Home home;
        test::SilentHost silent;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = silent.port;
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, s, Program(), true);
        w.checkLimitMs = 2000;
        int ticksWhileChecking = 0;
        int paintsWhileChecking = 0;
        QWidget* splash = w.findChild<QWidget*>(QStringLiteral("Picture3"));
        QTimer tick;
        connect(&tick, &QTimer::timeout, [&] {
            if (!w.isVisible() || !d.boxes.isEmpty()) return; // the check has not ended yet
            ++ticksWhileChecking;
            if (splash->isVisible()) {
                splash->repaint(); // paints now, on this thread
                ++paintsWhileChecking;
            }
        });
        tick.start(20);
        QElapsedTimer clock;
        clock.start();
        setup::PushModalDriver([](QDialog&) {});
        setup::ExecModal(w);
        const qint64 took = clock.elapsed();
        tick.stop();
        QVERIFY2(ticksWhileChecking >= 5, qPrintable(QString::number(ticksWhileChecking)));
        QVERIFY(paintsWhileChecking >= 5);
        QVERIFY2(took < 9000, qPrintable(QString::number(took))); // the download's idle limit alone is 10 s
        QCOMPARE(Texts(d),
                 QStringList{QStringLiteral("Fehler beim Download: Entweder existiert die URL nicht, "
                                            "oder Server nicht erreichbar!")});
    }

    void refusedLinesOfTheListAreNamedInTheWindow() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("../Logs/test.KOLBO"), "x", 3) +
                         server.Publish(QStringLiteral("kolibrino.INI"), "x", 3));
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, server.Server(), Program(), false);
        setup::ExecModal(w);
        QCOMPARE(d.boxes.size(), 2);
        QVERIFY(d.boxes[0].text.contains(QStringLiteral("Zeile 1: ../Logs/test.KOLBO|3|")));
        QVERIFY(d.boxes[0].text.contains(QStringLiteral("Der Dateiname enthält einen Ordner")));
        QVERIFY(d.boxes[0].text.contains(QStringLiteral("Zeile 2: kolibrino.INI|3|")));
        QCOMPARE(d.boxes[0].flags, int(Msg::Exclamation));
        QCOMPARE(d.boxes[1].text,
                 QStringLiteral("Es sind keine neuen Updates verfügbar. Fenster wird geschlossen."));
    }

    void missingListShowsTheListWithTheDownloadMessage() {
        test::Home home;
        test::UpdateServerProcess server;
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, server.Server(), Program(), true);
        setup::PushModalDriver([&](QDialog&) {
            QVERIFY(w.findChild<QWidget*>(QStringLiteral("Picture4"))->isVisible());
            QVERIFY(!w.findChild<QWidget*>(QStringLiteral("Picture3"))->isVisible());
            QVERIFY(Button(w, "Command1")->isEnabled());
            QVERIFY(!Button(w, "Command2")->isEnabled());
        });
        setup::ExecModal(w);
        QCOMPARE(Texts(d),
                 QStringList{QStringLiteral("Fehler beim Download: Entweder existiert die URL nicht, "
                                            "oder Server nicht erreichbar!")});
        QCOMPARE(d.boxes[0].flags, int(Msg::Critical));
    }

    void offeredFilesBecomeTickedCyanBoxesAndInstallFromTheWindow() {
        test::Home home;
        test::UpdateServerProcess server;
        IniWrite({}, QStringLiteral("OeCallList.txt"), QStringLiteral("Version"), 3);
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), "OE1ABC;Anna\r\n", 3) +
                         server.Publish(QStringLiteral("BZ_Karte.gif"), QByteArray(5000, 'g'), 2));
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, server.Server(), Program(), true);
        w.splashPauseMs = 50;
        setup::PushModalDriver([&](QDialog&) {
            const QList<QCheckBox*> boxes = w.Boxes();
            QCOMPARE(boxes.size(), 2);
            QCOMPARE(boxes[0]->objectName(), QStringLiteral("CheckBox0"));
            QCOMPARE(boxes[1]->objectName(), QStringLiteral("CheckBox2"));
            QCOMPARE(boxes[1]->property("tag").toInt(), 2);
            QVERIFY(boxes[0]->isChecked());
            QVERIFY(boxes[0]->styleSheet().contains(QStringLiteral("#00ffff")));
            QCOMPARE(boxes[1]->text(),
                     QStringLiteral("Datei:   BZ_Karte.gif\nVersion:   2\nGröße:   5000 Bytes "
                                    "(5,00 KB)\nDatum:   01.05.2026\nInfo:   Neu: BZ_Karte.gif"));
            QVERIFY(boxes[0]->geometry().bottom() < boxes[1]->geometry().top()); // stacked with a gap
            QVERIFY(w.findChild<QWidget*>(QStringLiteral("Picture4"))->isVisible());
            QVERIFY(Button(w, "Command2")->isEnabled());
            QCOMPARE(Texts(d), QStringList{QStringLiteral(
                                   "Es sind Updates verfügbar, klicke auf 'Updates installieren'")});
            Shot(&w, QStringLiteral("update_window"));
            // Keine, then tick only the map by hand.
            QTest::mouseClick(Button(w, "Command5"), Qt::LeftButton);
            QVERIFY(!boxes[0]->isChecked() && !boxes[1]->isChecked());
            QTest::mouseClick(Button(w, "Command2"), Qt::LeftButton);
            QCOMPARE(Texts(d).last(), QStringLiteral("Keine Datei zum Downloaden ausgewählt"));
            QTest::mouseClick(Button(w, "Command4"), Qt::LeftButton);
            QVERIFY(boxes[0]->isChecked() && boxes[1]->isChecked());
            boxes[0]->setChecked(false);
            QTest::mouseClick(Button(w, "Command2"), Qt::LeftButton);
        });
        setup::ExecModal(w);
        QVERIFY(!w.isVisible());
        QVERIFY(w.UpdatesInstalled());
        QCOMPARE(Texts(d).last(), QStringLiteral("Updates wurden durchgeführt. Fenster wird geschlossen."));
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("BZ_Karte.gif")),
                 QByteArray(5000, 'g'));
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("bez_koord.txt")));
    }

    void aNewCheckFromTheListOfTheSplashSpeaksAsTheMenuWay() {
        test::Home home;
        auto server = std::make_unique<test::UpdateServerProcess>();
        server->WriteList(server->Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        const UpdateServer s = server->Server();
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, s, Program(), true);
        w.splashPauseMs = 0;
        setup::PushModalDriver([&](QDialog&) {
            QCOMPARE(w.Boxes().size(), 1);
            server.reset(); // the server goes away
            QTest::mouseClick(Button(w, "Command1"), Qt::LeftButton);
        });
        setup::ExecModal(w);
        QCOMPARE(Texts(d),
                 (QStringList{QStringLiteral("Es sind Updates verfügbar, klicke auf 'Updates installieren'"),
                              QStringLiteral("Server nicht erreichbar!")}));
        QVERIFY(!w.isVisible());
    }

    void aNewerProgramWritesAndStartsTheReplacementAndEndsTheProcess() {
        test::Home home;
        test::UpdateServerProcess server;
        QTemporaryDir bin;
        const QString exe = bin.path() + QStringLiteral("/kolibrino");
        test::WriteBytes(exe, "#!/bin/sh\n");
        server.WriteList(server.Publish(QStringLiteral("kolibrino.bin"), "#!/bin/sh\n# neu\n", 100001));
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateWindow w(home.model, d, t, server.Server(), Program(exe), false);
        bool ended = false;
        w.endProcess = [&] { ended = true; };
        setup::PushModalDriver([&](QDialog&) { QTest::mouseClick(Button(w, "Command2"), Qt::LeftButton); });
        setup::ExecModal(w);
        QVERIFY(ended);
        QCOMPARE(Texts(d).last(), QStringLiteral("Kolibrino muss neu gestartet werden!"));
        const QByteArray script = test::ReadBytes(home.model.DataFolder + QStringLiteral("kolibrino.bin.sh"));
        // The script waits for this process, which is still running: nothing is replaced yet.
        QVERIFY(script.contains("pid=" + QByteArray::number(QCoreApplication::applicationPid()) + "\n"));
        QVERIFY(script.contains("target=" + ShellQuote(QFile::encodeName(exe))));
        QCOMPARE(test::ReadBytes(exe), QByteArray("#!/bin/sh\n"));
        QCOMPARE(InstalledVersion(home.model.IniPath, QStringLiteral("kolibrino.bin")), 100001);
    }

    void menuEntryWarnsFirstAndClosesTheMainWindowAfterAnInstall() {
        test::WindowFixture f;
        test::UpdateServerProcess server;
        f.Ini(QStringLiteral("Update"), QStringLiteral("Server"), server.HostPort());
        f.Ini(QStringLiteral("Update"), QStringLiteral("BeimStart"), QStringLiteral("0"));
        server.WriteList(server.Publish(QStringLiteral("OeCallList.txt"), "OE1ABC;Anna\r\n", 3));
        f.WriteLog(QStringLiteral("test.KOLBO"), {});
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        InstallUpkeep(*f.window, f.home.model, f.dialogs, f.clock);
        QVERIFY(f.window->Load());
        QVERIFY(f.dialogs.boxes.isEmpty()); // no check at start when switched off
        QAction* entry = f.window->Action(QStringLiteral("MnUpdatePruefung"));
        QVERIFY(entry->isEnabled());

        f.dialogs.AnswerMsgBox(Msg::No);
        entry->trigger();
        QCOMPARE(f.dialogs.boxes.size(), 1);
        QCOMPARE(f.dialogs.boxes[0].text,
                 QStringLiteral("ACHTUNG, Wenn neue Updates installiert werden muss Kolibrino "
                                "neu gestartet werden.\r\nSoll trotzdem nach Updates gesucht werden?"));
        QCOMPARE(f.dialogs.boxes[0].flags, int(Msg::YesNo | Msg::Question | Msg::DefaultButton2));
        QVERIFY(f.window->isVisible());

        f.dialogs.AnswerMsgBox(Msg::Yes);
        setup::PushModalDriver([](QDialog& d) { QTest::mouseClick(Button(d, "Command2"), Qt::LeftButton); });
        entry->trigger();
        QCOMPARE(test::ReadBytes(f.home.model.DataFolder + QStringLiteral("OeCallList.txt")),
                 QByteArray("OE1ABC;Anna\r\n"));
        QVERIFY(!f.window->isVisible()); // the program ends
    }

    void splashAtStartBeforeTheMainWindowIsUp() {
        test::WindowFixture f;
        test::UpdateServerProcess server;
        f.Ini(QStringLiteral("Update"), QStringLiteral("Server"), server.HostPort());
        server.WriteList(server.Publish(QStringLiteral("OeCallList.txt"), "OE1ABC;Anna\r\n", 3));
        f.WriteLog(QStringLiteral("test.KOLBO"), {});
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        InstallUpkeep(*f.window, f.home.model, f.dialogs, f.clock);
        bool mainUp = true;
        setup::PushModalDriver([&](QDialog& d) {
            mainUp = f.window->isVisible();
            QCOMPARE(d.objectName(), QStringLiteral("Update"));
            QTest::mouseClick(Button(d, "Command2"), Qt::LeftButton);
        });
        QVERIFY(f.window->Load());
        QVERIFY(!mainUp);
        QCOMPARE(test::ReadBytes(f.home.model.DataFolder + QStringLiteral("OeCallList.txt")),
                 QByteArray("OE1ABC;Anna\r\n"));
        QVERIFY(f.window->isVisible()); // the splash way goes on into the program
    }
};

QTEST_MAIN(TstUpdateWindow)
#include "tst_update_window.moc"
