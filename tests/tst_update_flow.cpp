// The update's check and install against a real HTTP server on loopback (Python's
// http.server), and the command line's update subcommand.
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "update_server_support.h"
#include "upkeep/http_update_transport.h"
#include "upkeep/update_flow.h"

#include <QElapsedTimer>

using namespace kolibrino;
using namespace kolibrino::upkeep;

namespace {

const QByteArray kBez = "WI;500;200;Wien;1;\r\nGZ;420;420;Graz;6;\r\n";
const QByteArray kCalls = "OE1ABC;Anna\r\nOE3XYZ;Xaver\r\n";
const QByteArray kMap = QByteArray("GIF89a") + QByteArray(3000, '\x01');

ProgramTarget Program(bool writable = true) {
    ProgramTarget p;
    p.executablePath = QStringLiteral("/opt/kolibrino/kolibrino");
    p.executableName = QStringLiteral("kolibrino");
    p.runningVersion = 100000; // 1.0.0
    p.folderWritable = writable;
    return p;
}

std::vector<UpdateBox> AllOffered(const CheckResult& c) {
    std::vector<UpdateBox> boxes;
    for (int i : c.offered)
        boxes.push_back({i, true});
    return boxes;
}

QStringList Names(const CheckResult& c) {
    QStringList n;
    for (int i : c.offered)
        n << c.entries[size_t(i)].Name;
    return n;
}

int Version(const test::Home& h, const QString& name) {
    return InstalledVersion(h.model.IniPath, name);
}

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun RunCli(const test::Home& home, const QStringList& args) {
    const test::CliResult r = test::RunCli(home.dir.path(), QStringList{QStringLiteral("update")} + args);
    return {r.code, r.out, r.err};
}

} // namespace

class TstUpdateFlow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { test::PinLocale(); }

    void newerEqualOlderAndMissingFilesAreOfferedByVersion() {
        test::Home home;
        test::UpdateServerProcess server;
        IniWrite({}, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 5);
        IniWrite({}, QStringLiteral("OeCallList.txt"), QStringLiteral("Version"), 5);
        IniWrite({}, QStringLiteral("BZ_Karte.gif"), QStringLiteral("Version"), 5);
        server.WriteList(QStringLiteral("; Kolibrino\r\n") +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), kCalls, 5) +
                         server.Publish(QStringLiteral("BZ_Karte.gif"), kMap, 4) +
                         server.Publish(QStringLiteral("KOLBOHilfe.pdf"), "Hallo", 1));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        QCOMPARE(int(c.outcome), int(CheckOutcome::Offered));
        QCOMPARE(c.entries.size(), size_t(4));
        QCOMPARE(Names(c), (QStringList{QStringLiteral("bez_koord.txt"), QStringLiteral("KOLBOHilfe.pdf")}));
        QVERIFY(
            !QFile::exists(home.model.TmpFolder + QStringLiteral("KOLBOUpd.txt"))); // deleted after reading
    }

    void allUpToDateGivesNoUpdates() {
        test::Home home;
        test::UpdateServerProcess server;
        IniWrite({}, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 6);
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        HttpUpdateTransport t;
        QCOMPARE(int(CheckForUpdates(home.model, t, server.Server()).outcome), int(CheckOutcome::NoUpdates));
    }

    void installDownloadsChecksCopiesAndNotesVersions() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("BZ_Karte.gif"), kMap, 2));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        QStringList busy;
        BusyPanel panel{[&](const QString& s) { busy << s; }, [&] { busy << QStringLiteral("-"); }};
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program(), panel);
        QCOMPARE(int(r.outcome), int(InstallOutcome::Done));
        QVERIFY(r.installed);
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("BZ_Karte.gif")), kMap);
        QVERIFY(!QFile::exists(home.model.TmpFolder + QStringLiteral("bez_koord.txt")));
        QCOMPARE(Version(home, QStringLiteral("BEZ_KOORD.TXT")), 6);
        QCOMPARE(Version(home, QStringLiteral("bz_karte.gif")), 2);
        QCOMPARE(d.boxes.last().text,
                 QStringLiteral("Updates wurden durchgeführt. Fenster wird geschlossen."));
        QCOMPARE(d.boxes.last().flags, int(Msg::Information));
        QCOMPARE(busy.first(), QStringLiteral("PINGe Server..."));
        QVERIFY(busy.contains(QStringLiteral("Updates werden heruntergeladen...")));
        // A second check offers nothing.
        QCOMPARE(int(CheckForUpdates(home.model, t, server.Server()).outcome), int(CheckOutcome::NoUpdates));
    }

    void untickedBoxIsNotInstalled() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), kCalls, 2));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        std::vector<UpdateBox> boxes = AllOffered(c);
        boxes[0].ticked = false;
        InstallUpdates(home.model, d, t, server.Server(), c.entries, boxes, Program());
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("bez_koord.txt")));
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("OeCallList.txt")), kCalls);
        QCOMPARE(Version(home, QStringLiteral("bez_koord.txt")), 0);
    }

    void wrongMd5StopsAndNeverReachesDataFolder() {
        test::Home home;
        test::UpdateServerProcess server;
        test::WriteBytes(home.model.DataFolder + QStringLiteral("OeCallList.txt"), "alt\r\n");
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), kCalls, 2, "etwas anderes") +
                         server.Publish(QStringLiteral("BZ_Karte.gif"), kMap, 2));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(int(r.outcome), int(InstallOutcome::Md5Mismatch));
        QCOMPARE(
            d.boxes.last().text,
            QStringLiteral("Heruntergeladene Datei ist fehlerhaft. Download muss neu gestartet werden!"));
        QCOMPARE(d.boxes.last().flags, int(Msg::Critical));
        // The file before it stays installed; the damaged one stays in Tmp/ only; the one
        // after it is not fetched.
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        QCOMPARE(Version(home, QStringLiteral("bez_koord.txt")), 6);
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("OeCallList.txt")),
                 QByteArray("alt\r\n"));
        QCOMPARE(Version(home, QStringLiteral("OeCallList.txt")), 0);
        QCOMPARE(test::ReadBytes(home.model.TmpFolder + QStringLiteral("OeCallList.txt")), kCalls);
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("BZ_Karte.gif")));
    }

    void serverThatAnswersPingButLacksAFileGivesTheDownloadMessagePerFileAndGoesOn() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(test::UpdateServerProcess::ListLine(QStringLiteral("KOLBOHilfe.pdf"), "x", 3) +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         test::UpdateServerProcess::ListLine(QStringLiteral("OeCallList.txt"), "y", 3));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(int(r.outcome), int(InstallOutcome::Done));
        QCOMPARE(r.failedDownloads, 2);
        QCOMPARE(d.boxes.size(), 3);
        for (int i : {0, 1}) {
            QCOMPARE(d.boxes[i].text,
                     QStringLiteral("Fehler beim Download: Entweder existiert die URL nicht, "
                                    "oder Server nicht erreichbar!"));
            QCOMPARE(d.boxes[i].flags, int(Msg::Critical));
        }
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("KOLBOHilfe.pdf")));
        QVERIFY(!QFile::exists(home.model.TmpFolder + QStringLiteral("KOLBOHilfe.pdf")));
        QCOMPARE(Version(home, QStringLiteral("KOLBOHilfe.pdf")), 0);
    }

    void missingListIsADownloadFailure() {
        test::Home home;
        test::UpdateServerProcess server;
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        QCOMPARE(int(c.outcome), int(CheckOutcome::ListFailed));
        QVERIFY(c.detail.contains(QStringLiteral("404")));
    }

    void closedPortIsUnreachable() {
        test::Home home;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = test::FreeLoopbackPort();
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, s);
        QCOMPARE(int(c.outcome), int(CheckOutcome::Unreachable));
        QVERIFY(!c.detail.isEmpty());
    }

    void nameThatDoesNotResolveIsUnreachable() {
        test::Home home;
        UpdateServer s;
        s.host = test::UnresolvableName();
        HttpUpdateTransport t;
        QCOMPARE(int(CheckForUpdates(home.model, t, s).outcome), int(CheckOutcome::Unreachable));
    }

    void hostThatNeverAnswersTheConnectIsUnreachable() {
        test::Home home;
        test::SilentHost silent;
        silent.Fill();
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = silent.port;
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, s);
        QCOMPARE(int(c.outcome), int(CheckOutcome::Unreachable));
        QVERIFY(c.detail.contains(QStringLiteral("Zeitüberschreitung")));
    }

    void serverThatTakesTheRequestButNeverAnswersIsGivenUp() {
        test::Home home;
        test::SilentHost silent;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = silent.port;
        HttpUpdateTransport t;
        QVERIFY(t.Ping(s.host, s.port, kPingTimeoutMs).isEmpty()); // the connect itself works
        const QString file = home.model.TmpFolder + QStringLiteral("KOLBOUpd.txt");
        const QString failure =
            t.Download(s.FileUrl(QStringLiteral("KOLBOUpd.txt")), file, TransportTimeouts{1500, 1000});
        QVERIFY(failure.contains(QStringLiteral("Zeitüberschreitung")));
        QVERIFY(!QFile::exists(file));
    }

    void downloadsAskEveryCacheForAFreshCopy() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        const QString log = QString::fromLatin1(test::ReadBytes(server.RequestLog()));
        const QStringList requests = log.split(QStringLiteral("GET "), Qt::SkipEmptyParts);
        QCOMPARE(requests.size(), 2);
        QVERIFY(
            requests[0].startsWith(QStringLiteral("/export/radkl/download/ZEFT/kolibrino/KOLBOUpd.txt ")));
        QVERIFY(
            requests[1].startsWith(QStringLiteral("/export/radkl/download/ZEFT/kolibrino/bez_koord.txt ")));
        for (const QString& r : requests) {
            QVERIFY(r.contains(QStringLiteral("Cache-Control: no-cache")));
            QVERIFY(r.contains(QStringLiteral("Pragma: no-cache")));
        }
    }

    void noServerSetMeansNoCheck() {
        test::Home home;
        const UpdateServer s = ReadUpdateServer(home.model.IniPath);
        QVERIFY(s.host.isEmpty());
        QCOMPARE(s.path, QStringLiteral("/export/radkl/download/ZEFT/kolibrino/"));
        HttpUpdateTransport t;
        QCOMPARE(int(CheckForUpdates(home.model, t, s).outcome), int(CheckOutcome::NoServer));
        QVERIFY(CheckAtStart(home.model.IniPath));
        IniWrite({}, QStringLiteral("Update"), QStringLiteral("BeimStart"), 0);
        QVERIFY(!CheckAtStart(home.model.IniPath));
    }

    void serverSettingAndArgument() {
        test::Home home;
        IniWrite({}, QStringLiteral("Update"), QStringLiteral("Server"),
                 QStringLiteral("update.example:8080"));
        IniWrite({}, QStringLiteral("Update"), QStringLiteral("Pfad"), QStringLiteral("daten/zeft"));
        const UpdateServer s = ReadUpdateServer(home.model.IniPath);
        QCOMPARE(s.host, QStringLiteral("update.example"));
        QCOMPARE(s.port, 8080);
        QCOMPARE(s.FileUrl(QStringLiteral(" a b.txt ")).toString(),
                 QStringLiteral("http://update.example:8080/daten/zeft/a b.txt"));
        QCOMPARE(ServerWithArgument(s, QStringLiteral("127.0.0.1"))->port, 80);
        QCOMPARE(ServerWithArgument(s, QStringLiteral("127.0.0.1:81"))->port, 81);
        QVERIFY(!ServerWithArgument(s, QStringLiteral("127.0.0.1:0")));
        QVERIFY(!ServerWithArgument(s, QStringLiteral("127.0.0.1:x")));
        QVERIFY(!ServerWithArgument(s, QStringLiteral("")));
    }

    void nothingListedOrNothingTicked() {
        test::Home home;
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateServer s;
        QCOMPARE(int(InstallUpdates(home.model, d, t, s, {}, {}, Program()).outcome),
                 int(InstallOutcome::NothingListed));
        QCOMPARE(d.boxes.last().text, QStringLiteral("Keine Dateien zum Downloaden vorhanden!"));
        const auto entries =
            ParseUpdateList(test::UpdateServerProcess::ListLine(QStringLiteral("bez_koord.txt"), "a", 1));
        QCOMPARE(int(InstallUpdates(home.model, d, t, s, entries, {{0, false}}, Program()).outcome),
                 int(InstallOutcome::NothingTicked));
        QCOMPARE(d.boxes.last().text, QStringLiteral("Keine Datei zum Downloaden ausgewählt"));
        QCOMPARE(d.boxes.last().flags, int(Msg::Information));
    }

    void installWithServerGoneSaysUnreachable() {
        test::Home home;
        ScriptedDialogs d;
        HttpUpdateTransport t;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = test::FreeLoopbackPort();
        const auto entries =
            ParseUpdateList(test::UpdateServerProcess::ListLine(QStringLiteral("bez_koord.txt"), "a", 1));
        QCOMPARE(int(InstallUpdates(home.model, d, t, s, entries, {{0, true}}, Program()).outcome),
                 int(InstallOutcome::Unreachable));
        QCOMPARE(d.boxes.last().text, QStringLiteral("Server nicht erreichbar!"));
        QCOMPARE(d.boxes.last().flags, int(Msg::Critical));
    }

    void binNotAboveTheRunningVersionInstallsWithoutRestart() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("kolibrino.bin"), "#!/bin/sh\n", 100000) +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        QCOMPARE(c.offered.size(), size_t(2));
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(int(r.outcome), int(InstallOutcome::Done));
        QVERIFY(QFile::exists(home.model.DataFolder + QStringLiteral("kolibrino.bin")));
        QCOMPARE(Version(home, QStringLiteral("kolibrino.bin")), 100000);
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        for (const ShownBox& b : d.boxes)
            QVERIFY(b.text != QStringLiteral("Kolibrino muss neu gestartet werden!"));
    }

    void newerBinAsksForTheRestartAndStopsThere() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("Kolibrino.bin"), "#!/bin/sh\n", 100001) +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(int(r.outcome), int(InstallOutcome::Restart));
        QCOMPARE(d.boxes.last().text, QStringLiteral("Kolibrino muss neu gestartet werden!"));
        QCOMPARE(r.restartSource, home.model.DataFolder + QStringLiteral("Kolibrino.bin"));
        QCOMPARE(r.restartTarget, QStringLiteral("/opt/kolibrino/kolibrino"));
        QVERIFY(
            !QFile::exists(home.model.DataFolder + QStringLiteral("bez_koord.txt"))); // nothing after it ran
    }

    void programInAFolderThatIsNotWritableInstallsTheDataFilesOnly() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("kolibrino.bin"), "#!/bin/sh\n", 100001) +
                         server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program(false));
        QCOMPARE(int(r.outcome), int(InstallOutcome::Done));
        QCOMPARE(r.skipped, QStringList{QStringLiteral("kolibrino.bin")});
        QVERIFY(d.boxes.first().text.startsWith(
            QStringLiteral("Kolibrino ist in einem schreibgeschützten Ordner")));
        QCOMPARE(d.boxes.first().flags, int(Msg::Exclamation));
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("kolibrino.bin")));
        QCOMPARE(Version(home, QStringLiteral("kolibrino.bin")), 0);
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
    }

    void md5OfAMissingFileIsMinusOneWithItsMessage() {
        ScriptedDialogs d;
        QCOMPARE(FileMd5(QStringLiteral("/nicht/da.txt"), d), QStringLiteral("-1"));
        QCOMPARE(d.boxes.last().text,
                 QStringLiteral(
                     "/nicht/da.txt\r\nDatei für die eine Checksumme berechnet werden soll nicht gefunden!"));
        QTemporaryDir dir;
        test::WriteBytes(dir.path() + QStringLiteral("/a"), "abc");
        QCOMPARE(FileMd5(dir.path() + QStringLiteral("/a"), d),
                 QStringLiteral("900150983CD24FB0D6963F7D28E17F72"));
    }

    // A hostile list: names that climb out of the folder, hide, nest, carry control
    // characters or name a log or the settings. Each is refused with its line; nothing
    // is written outside, the log and the settings keep their bytes.
    void hostileUpdateServerWritesNothingOutsideAndNamesEachRefusedLine() {
        test::Home home;
        test::UpdateServerProcess server;
        const QString log = home.model.LogFolder + QStringLiteral("test.KOLBO");
        test::WriteBytes(log, "[MYCALL:6]OE1XYZ\r\n");
        IniWrite({}, QStringLiteral("Station"), QStringLiteral("Call"), QStringLiteral("OE1XYZ"));
        const QByteArray evil = "vom Server\r\n";
        const QStringList hostile = {QStringLiteral("../Logs/test.KOLBO"),
                                     QStringLiteral("../../x"),
                                     QStringLiteral(".hidden"),
                                     QStringLiteral("a/b"),
                                     QStringLiteral("bez\x01koord.txt"),
                                     QStringLiteral("test.KOLBO"),
                                     QStringLiteral("kolibrino.INI")};
        // "../../x" from Tmp/ is the data folder's parent (shared with others: noted before).
        const QString outside = QDir(home.dir.path()).absoluteFilePath(QStringLiteral("../x"));
        const bool outsideBefore = QFileInfo::exists(outside);
        QString list = server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6);
        for (const QString& name : hostile)
            list += server.Publish(name, evil, 9);
        server.WriteList(list);
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        QCOMPARE(Names(c), QStringList{QStringLiteral("bez_koord.txt")});
        QCOMPARE(c.refused.size(), size_t(hostile.size()));
        for (int i = 0; i < hostile.size(); ++i) {
            QCOMPARE(c.refused[size_t(i)].number, i + 2);
            QVERIFY(!c.refused[size_t(i)].reason.isEmpty());
            QVERIFY(RefusedLinesText(c.refused).contains(QStringLiteral("Zeile %1: ").arg(i + 2)));
        }
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(r.installedNames, QStringList{QStringLiteral("bez_koord.txt")});
        QCOMPARE(test::ReadBytes(log), QByteArray("[MYCALL:6]OE1XYZ\r\n"));
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("test.KOLBO")));
        QCOMPARE(QFileInfo::exists(outside), outsideBefore);
        QVERIFY(test::ReadBytes(outside) != evil);
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("x")));
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral(".hidden")));
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("a")));
        QVERIFY(!test::ReadBytes(home.model.IniPath).contains(evil));
        QVERIFY(test::ReadBytes(home.model.IniPath).contains("OE1XYZ"));
        // The same names handed to the install directly never reach a path either.
        std::vector<UpdateEntry> direct;
        std::vector<UpdateBox> boxes;
        for (const QString& name : hostile) {
            UpdateEntry e;
            e.Name = name;
            e.Version = 9;
            e.Md5 = test::Md5Hex(evil);
            boxes.push_back({int(direct.size()), true});
            direct.push_back(e);
        }
        ScriptedDialogs d2;
        const InstallResult r2 = InstallUpdates(home.model, d2, t, server.Server(), direct, boxes, Program());
        QCOMPARE(r2.refused.size(), hostile.size());
        QVERIFY(r2.installedNames.isEmpty());
        QCOMPARE(test::ReadBytes(log), QByteArray("[MYCALL:6]OE1XYZ\r\n"));
        QCOMPARE(QFileInfo::exists(outside), outsideBefore);
        QVERIFY(!test::ReadBytes(home.model.IniPath).contains(evil));
        QVERIFY(d2.boxes.first().text.contains(QStringLiteral("../Logs/test.KOLBO")));
        QCOMPARE(d2.boxes.first().flags, int(Msg::Exclamation));
    }

    void failedCopyIsToldWithItsCauseAndNotNotedSoItIsOfferedAgain() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("BZ_Karte.gif"), kMap, 2));
        // A folder where the district table belongs: the copy cannot replace it.
        QVERIFY(QDir().mkpath(home.model.DataFolder + QStringLiteral("bez_koord.txt/inhalt")));
        HttpUpdateTransport t;
        const CheckResult c = CheckForUpdates(home.model, t, server.Server());
        ScriptedDialogs d;
        const InstallResult r =
            InstallUpdates(home.model, d, t, server.Server(), c.entries, AllOffered(c), Program());
        QCOMPARE(r.failedCopies, 1);
        QCOMPARE(r.installedNames, QStringList{QStringLiteral("BZ_Karte.gif")});
        QCOMPARE(Version(home, QStringLiteral("bez_koord.txt")), 0);
        QCOMPARE(Version(home, QStringLiteral("BZ_Karte.gif")), 2);
        const QString told = d.boxes.first().text;
        QVERIFY(told.startsWith(QStringLiteral("Die Datei bez_koord.txt kann nicht nach ")));
        const QString cause = told.section(QStringLiteral("\r\n"), 1, 1);
        QVERIFY2(!cause.trimmed().isEmpty(), qPrintable(told));
        QCOMPARE(d.boxes.first().flags, int(Msg::Critical));
        QCOMPARE(Names(CheckForUpdates(home.model, t, server.Server())),
                 QStringList{QStringLiteral("bez_koord.txt")});
        // An installed file is no shipped copy any more: a package upgrade leaves it.
        QCOMPARE(
            IniReadString(home.model.IniPath, QStringLiteral("Ausgeliefert"), QStringLiteral("BZ_Karte.gif")),
            QStringLiteral("0"));
    }

    void serverThatAcceptsAndNeverAnswersEndsTheCheckAtItsLimit() {
        test::Home home;
        test::SilentHost silent;
        UpdateServer s;
        s.host = QStringLiteral("127.0.0.1");
        s.port = silent.port;
        HttpUpdateTransport t;
        QElapsedTimer clock;
        clock.start();
        const CheckResult c = CheckForUpdates(home.model, t, s, {}, 1500);
        QCOMPARE(int(c.outcome), int(CheckOutcome::ListFailed));
        QVERIFY2(c.detail.contains(QStringLiteral("Zeitüberschreitung")), qPrintable(c.detail));
        QVERIFY2(clock.elapsed() < 9000, qPrintable(QString::number(clock.elapsed()))); // idle limit is 10 s
    }

    void commandLineCheckPrintsTheOfferedEntries() {
        test::Home home;
        test::UpdateServerProcess server;
        IniWrite({}, QStringLiteral("OeCallList.txt"), QStringLiteral("Version"), 5);
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), kCalls, 5) +
                         server.Publish(QStringLiteral("kolibrino.bin"), "#!/bin/sh\n", 100001));
        const CliRun r =
            RunCli(home, {QStringLiteral("--check"), QStringLiteral("--server"), server.HostPort()});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.out, QByteArray("bez_koord.txt 6 40\nkolibrino.bin 100001 10\n"));
    }

    void commandLineInstallsDataFilesButNeverTheProgram() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("kolibrino.bin"), "#!/bin/sh\n", 100001));
        IniWrite({}, QStringLiteral("Update"), QStringLiteral("Server"), server.HostPort());
        const CliRun r = RunCli(home, {QStringLiteral("--install")});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.out, QByteArray("bez_koord.txt\n"));
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        QCOMPARE(Version(home, QStringLiteral("bez_koord.txt")), 6);
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("kolibrino.bin")));
        QVERIFY(r.err.contains("kolibrino.bin"));
    }

    void commandLineInstallExitsOneOnAWrongMd5() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(server.Publish(QStringLiteral("bez_koord.txt"), kBez, 6) +
                         server.Publish(QStringLiteral("OeCallList.txt"), kCalls, 2, "falsch"));
        const CliRun r =
            RunCli(home, {QStringLiteral("--install"), QStringLiteral("--server"), server.HostPort()});
        QCOMPARE(r.exitCode, 1);
        QVERIFY(QString::fromLocal8Bit(r.err).contains(
            QStringLiteral("Heruntergeladene Datei ist fehlerhaft. Download muss neu gestartet werden!")));
        QCOMPARE(test::ReadBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt")), kBez);
        QVERIFY(!QFile::exists(home.model.DataFolder + QStringLiteral("OeCallList.txt")));
    }

    void commandLineInstallExitsOneOnAMissingFileOrServer() {
        test::Home home;
        test::UpdateServerProcess server;
        server.WriteList(test::UpdateServerProcess::ListLine(QStringLiteral("OeCallList.txt"), "x", 3));
        QCOMPARE(RunCli(home, {QStringLiteral("--install"), QStringLiteral("--server"), server.HostPort()})
                     .exitCode,
                 1);
        const QString closed = QStringLiteral("127.0.0.1:%1").arg(test::FreeLoopbackPort());
        const CliRun r = RunCli(home, {QStringLiteral("--check"), QStringLiteral("--server"), closed});
        QCOMPARE(r.exitCode, 1);
        QVERIFY(QString::fromLocal8Bit(r.err).contains(QStringLiteral("Server nicht erreichbar!")));
        QCOMPARE(RunCli(home, {QStringLiteral("--bogus")}).exitCode, 2);
        QCOMPARE(RunCli(home, {QStringLiteral("--check")}).exitCode, 1); // no server set
    }
};

QTEST_GUILESS_MAIN(TstUpdateFlow)
#include "tst_update_flow.moc"
