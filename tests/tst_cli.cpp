// kolibrino-cli over the same library: rebuild, dupe and tallies; the plain messages
// of upload and update against loopback servers.
#include "core/settings.h"
#include "export/submission.h"
#include "test_support.h"
#include "update_server_support.h"
#include "upload_server.h"

#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::test;

class TestCli : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> home;

    using Result = CliResult;

    Result Run(const QStringList& args) { return RunCli(home->path(), args); }

private slots:
    void init() {
        home = std::make_unique<QTemporaryDir>();
        WriteBytes(home->path() + QStringLiteral("/bez_koord.txt"), SmallDistrictTable());
    }

    void rebuildWritesTheFileTextAsRawBytes() {
        const Result r = Run({QStringLiteral("rebuild"), FixturePath(QStringLiteral("basic.KOLBO"))});
        QCOMPARE(r.code, 0);
        QByteArray expected = ReadBytes(FixturePath(QStringLiteral("basic.rebuilt.KOLBO")));
        expected.replace("{VERSION}", ProgramVersionText().toLatin1())
            .replace("{YEAR}", QByteArray::number(QDate::currentDate().year()));
        QCOMPARE(r.out, expected);
    }

    void dupeAnswersWithTheDistrict_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("firstLine");
        QTest::newRow("same slot") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("40"),
                                                  QStringLiteral("SSB"), QStringLiteral("06:00")}
                                   << QByteArray("DUPE WI");
        QTest::newRow("other band") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("80m"),
                                                   QStringLiteral("SSB"), QStringLiteral("06:00")}
                                    << QByteArray("OK WI");
        QTest::newRow("afternoon") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("40"),
                                                  QStringLiteral("SSB"), QStringLiteral("14:00")}
                                   << QByteArray("OK WI");
        QTest::newRow("new call") << QStringList{QStringLiteral("OE5NEW"), QStringLiteral("40"),
                                                 QStringLiteral("SSB"), QStringLiteral("06:00")}
                                  << QByteArray("OK");
    }
    void dupeAnswersWithTheDistrict() {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, firstLine);
        const Result r =
            Run(QStringList{QStringLiteral("dupe"), FixturePath(QStringLiteral("basic.KOLBO"))} + args);
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out.split('\n').first(), firstLine);
        if (firstLine.startsWith("DUPE")) QVERIFY(r.out.contains("Station bereits um 05:01 Uhr gearbeitet!"));
    }

    void talliesPrintTheRebuiltCounters() {
        const Result r = Run({QStringLiteral("tallies"), FixturePath(QStringLiteral("basic.KOLBO"))});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains("QsoCount 5\n"));
        QVERIFY(r.out.contains("DupeCount 1\n"));
        QVERIFY(r.out.contains("Bezirk WI 2 1 1 0\n"));
        QVERIFY(r.out.contains("Staatsfunk OEY 1 0\n"));
    }

    void damagedLogGivesTheLoadMessageAndStatusOne() {
        const QString bad = home->path() + QStringLiteral("/kaputt.KOLBO");
        WriteBytes(bad, "[MYCALL:3]OE1\r\nkein Ende");
        const Result r = Run({QStringLiteral("rebuild"), bad});
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.isEmpty());
        QVERIFY(QString::fromLocal8Bit(r.err).contains(
            QStringLiteral("ist fehlerhaft oder keine gültige Kolibrino Logdatei!")));
    }

    void failedUploadPrintsAPlainFailureWithoutTheWindowsQuestion() {
        UploadServer server;
        QVERIFY(server.WaitReady());
        server.SetMode("wrongmd5");
        const QString log = home->path() + QStringLiteral("/Logs/test.log");
        WriteBytes(log, "START-OF-LOG: 3.0\r\nCALLSIGN: OE5FRM\r\nCATEGORY-OVERLAY: YL\r\n"
                        "CATEGORY: HIGH-POWER CW\r\nLOCATION: LI\r\n"
                        "QSO: 3520 CW 2026-05-01 0600 1 OE5FRM 599 LI OE3XYZ 599 MD\r\nEND-OF-LOG:\r\n");
        const Result r = Run({QStringLiteral("upload"), log, QStringLiteral("--server"), server.Host()});
        QCOMPARE(r.code, 1);
        const QString err = QString::fromUtf8(r.err);
        QVERIFY2(err.startsWith(QStringLiteral("Das Hochladen des Logs ist fehlgeschlagen.\n")),
                 qPrintable(err));
        QVERIFY2(!err.contains(QStringLiteral("Möchtest du")), qPrintable(err));
        QVERIFY(!err.contains(QLatin1Char('?')));
        QVERIFY(err.contains(log));
        QVERIFY(err.contains(QStringLiteral("bestätigt den Empfang nicht")));
    }

    void refusedUpdateListLinesAreNamedWithTheirReasonAndNeverSucceed() {
        UpdateServerProcess server;
        const QByteArray kBez = "WI;500;200;Wien;1;\r\nGZ;420;420;Graz;6;\r\n";
        server.WriteList(QStringLiteral("; Kolibrino\r\n") +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("../Logs/test.KOLBO"), "x", 2) +
                         QStringLiteral("OeCallList.txt|zwei|01052026|3|%1|kaputt\r\n").arg(Md5Hex("abc")) +
                         server.Publish(QStringLiteral(".hidden"), "x", 2));
        const QString log = home->path() + QStringLiteral("/Logs/test.KOLBO");
        WriteBytes(log, "mein Log");
        for (const char* mode : {"--check", "--install"}) {
            const Result r = Run({QStringLiteral("update"), QString::fromLatin1(mode),
                                  QStringLiteral("--server"), server.HostPort()});
            QCOMPARE(r.code, 1);
            const QString err = QString::fromUtf8(r.err);
            QVERIFY2(err.contains(QStringLiteral("Zeile 3: ../Logs/test.KOLBO|")), qPrintable(err));
            QVERIFY(err.contains(QStringLiteral("Der Dateiname enthält einen Ordner")));
            QVERIFY(err.contains(QStringLiteral("Zeile 4: OeCallList.txt|zwei|")));
            QVERIFY(err.contains(QStringLiteral("Die Version ist keine ganze Zahl.")));
            QVERIFY(err.contains(QStringLiteral("Zeile 5: .hidden|")));
            QVERIFY(err.contains(QStringLiteral("Der Dateiname beginnt mit einem Punkt.")));
        }
        QCOMPARE(ReadBytes(home->path() + QStringLiteral("/bez_koord.txt")),
                 kBez); // the good line is installed
        QCOMPARE(ReadBytes(log), QByteArray("mein Log"));
    }

    void wrongUseGivesStatusTwo() {
        QCOMPARE(Run({QStringLiteral("rebuild")}).code, 2);
        QCOMPARE(Run({QStringLiteral("unbekannt"), QStringLiteral("x")}).code, 2);
    }

    // --help and -h print the usage in German on standard output and end with 0; no
    // arguments or wrong ones keep status 2 with the usage on standard error.
    void helpPrintsTheUsageAndEndsWithZero_data() {
        QTest::addColumn<QString>("option");
        QTest::newRow("--help") << QStringLiteral("--help");
        QTest::newRow("-h") << QStringLiteral("-h");
    }
    void helpPrintsTheUsageAndEndsWithZero() {
        QFETCH(QString, option);
        const Result r = Run({option});
        QCOMPARE(r.code, 0);
        const QString out = QString::fromUtf8(r.out);
        QVERIFY(out.startsWith(QStringLiteral("kolibrino-cli: die Werkzeuge von Kolibrino ohne Fenster")));
        QVERIFY(out.contains(QStringLiteral("Aufruf:\n  kolibrino-cli rebuild DATEI\n")));
        QVERIFY(out.contains(QStringLiteral("kolibrino-cli --help\n")));
        QVERIFY(r.err.isEmpty());
        const Result none = Run({});
        QCOMPARE(none.code, 2);
        QVERIFY(none.out.isEmpty());
        QVERIFY(QString::fromUtf8(none.err).startsWith(QStringLiteral("Aufruf:\n")));
        QCOMPARE(Run({QStringLiteral("--hilfe")}).code, 2);
    }

    // The window program answers --help and -h without a display: no window system is
    // reachable (no DISPLAY, no Wayland, the xcb platform forced), and it still ends with 0.
    void windowProgramAnswersHelpWithoutADisplay_data() { helpPrintsTheUsageAndEndsWithZero_data(); }
    void windowProgramAnswersHelpWithoutADisplay() {
        QFETCH(QString, option);
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        env.insert(QStringLiteral("KOLIBRINO_HOME"), home->path());
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_AT.UTF-8"));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(KOLIBRINO_BINARY_DIR "/kolibrino"), {option});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QCOMPARE(p.exitCode(), 0);
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        QVERIFY(out.startsWith(QStringLiteral("Aufruf:\n  kolibrino            startet das Logbuch")));
        QVERIFY(out.contains(QStringLiteral("kolibrino --version")));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
