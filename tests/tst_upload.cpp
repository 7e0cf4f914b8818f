// The upload to the log server against a real lighttpd on loopback: the request as the
// server sees it, the echo judge, every failure (wrong MD5, no marker, silence, closed
// port), the proxy from the environment, the connection test and kolibrino-cli upload.
#include "core/settings.h"
#include "export/http_client.h"
#include "export/submission.h"
#include "test_support.h"
#include "upload_server.h"

#include <QProcess>
#include <cstdlib>

using namespace kolibrino;
using namespace kolibrino::exporting;
using namespace kolibrino::net;
using namespace kolibrino::test;

namespace {

const QByteArray kLog = "START-OF-LOG:  3.0\r\n"
                        "CALLSIGN: OE1ABC\r\n"
                        "CATEGORY-OVERLAY: OM\r\n"
                        "CATEGORY: LOW-POWER MIX\r\n"
                        "LOCATION: WI\r\n"
                        "SOAPBOX: Gr\xFC\xDF"
                        "e\r\n"
                        "QSO:  3700 PH 2026-05-01 0500 1 OE1ABC        59  WI OE3XYZ        59  MD\r\n"
                        "END-OF-LOG:\r\n";

HttpTimeouts Short() {
    return HttpTimeouts{2000, 3000};
}

} // namespace

class TstUpload : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    std::unique_ptr<UploadServer> server;
    QString logPath;

    SendRequest Request(const QString& host) {
        SendRequest r;
        r.server = host;
        r.file = logPath;
        r.check = true;
        r.formats = LocaleFormats(AustrianLocale());
        r.timeouts = Short();
        r.pingMs = 1000;
        return r;
    }

private slots:
    void initTestCase() {
        PinLocale();
        QVERIFY2(QFile::exists(QStringLiteral("/usr/sbin/lighttpd")),
                 "lighttpd fehlt: tools/dev.sh installiert es");
        qunsetenv("http_proxy");
        qunsetenv("HTTP_PROXY");
        qunsetenv("all_proxy");
        qunsetenv("ALL_PROXY");
    }
    void init() {
        home = std::make_unique<Home>();
        server = std::make_unique<UploadServer>();
        QVERIFY(server->WaitReady());
        logPath = home->model.LogFolder + QStringLiteral("mein.log");
        WriteBytes(logPath, kLog);
    }
    void cleanup() {
        server.reset();
        home.reset();
    }

    void serverReceivesTheExactRequest() {
        QString reply;
        QVERIFY(
            HttpUploadFile(server->Host(), QStringLiteral("/cgi-bin/upload.cgi"), logPath, reply, Short()));
        QCOMPARE(server->Stored("logfile"), kLog);
        QCOMPARE(server->Stored("call_sign"), QByteArray("OE1ABC"));
        QCOMPARE(server->Stored("filename"), QByteArray("mein.log"));
        QCOMPARE(server->Stored("protocol"), QByteArray("HTTP/1.0"));
        QCOMPARE(server->Stored("content_type"),
                 QByteArray("multipart/form-data, boundary====<<AaB03x9tujGKXdZFeYMYyxbR8K72>>==="));
        QCOMPARE(server->Stored("agent"), QByteArray("kolibrino"));
        QVERIFY(reply.contains(QStringLiteral("\"md5\"> ") + MD5Sum(kLog) + QStringLiteral(" </span></p>")));
    }
    void bodyIsTheExactText() {
        const QByteArray want = "--===<<AaB03x9tujGKXdZFeYMYyxbR8K72>>===\r\n"
                                "Content-Disposition: form-data; name=\"logfile\"; filename=\"a.log\"\r\n"
                                "Content-Transfer-Encoding: binary\r\n"
                                "Content-Type: multipart/form-data\r\n"
                                "\r\n"
                                "DATA\r\n"
                                "--===<<AaB03x9tujGKXdZFeYMYyxbR8K72>>===\r\n"
                                "Content-Disposition: form-data; name=\"call_sign\"\r\n"
                                "\r\n"
                                "OE1ABC\r\n"
                                "--===<<AaB03x9tujGKXdZFeYMYyxbR8K72>>===--";
        QCOMPARE(UploadBody("DATA", QStringLiteral("a.log"), "OE1ABC"), want);
    }
    void md5IsTakenOverTheFileBytesAndTheSameBytesAreSent() {
        const SendOutcome o = SendCabrilloFile(Request(server->Host()));
        QCOMPARE(int(o.kind), int(SendOutcome::Sent));
        QCOMPARE(o.md5, QString::fromLatin1(
                            QCryptographicHash::hash(kLog, QCryptographicHash::Md5).toHex().toUpper()));
        QCOMPARE(server->Stored("logfile"), ReadBytes(logPath));
    }
    void replyWithWrongMd5Fails() {
        server->SetMode("wrongmd5");
        QCOMPARE(int(SendCabrilloFile(Request(server->Host())).kind), int(SendOutcome::UploadFailed));
        QCOMPARE(server->Requests(), 1);
    }
    void replyWithoutMarkerFailsEvenWithStatus200() {
        server->SetMode("nomarker");
        QCOMPARE(int(SendCabrilloFile(Request(server->Host())).kind), int(SendOutcome::UploadFailed));
        QCOMPARE(server->Requests(), 1);
    }
    void md5DifferingInLetterCaseOnlyMatches() {
        server->SetMode("lowercase");
        QCOMPARE(int(SendCabrilloFile(Request(server->Host())).kind), int(SendOutcome::Sent));
    }
    void serverThatNeverAnswersTimesOut() {
        SilentServer silent;
        QString reply;
        QVERIFY(
            !HttpUploadFile(silent.Host(), QStringLiteral("/cgi-bin/upload.cgi"), logPath, reply, Short()));
        QCOMPARE(int(SendCabrilloFile(Request(silent.Host())).kind), int(SendOutcome::UploadFailed));
    }
    void closedPortFailsThePing() {
        const QString closed = QStringLiteral("127.0.0.1:%1").arg(FreePort());
        QVERIFY(!ServerPing(closed, 1000));
        QString reply;
        QVERIFY(!HttpUploadFile(closed, QStringLiteral("/cgi-bin/upload.cgi"), logPath, reply, Short()));
        const SendOutcome o = SendCabrilloFile(Request(closed));
        QCOMPARE(int(o.kind), int(SendOutcome::PingFailed));
        QCOMPARE(OutcomeText(o, logPath), QStringLiteral("Einsenden abgebrochen!\nServer nicht erreichbar!"));
        QVERIFY(ServerPing(server->Host(), 1000));
    }
    void proxyIsTakenFromTheEnvironment() {
        // The target port is closed; only the proxy (our server) can answer.
        const QString closed = QStringLiteral("127.0.0.1:%1").arg(FreePort());
        qputenv("http_proxy", QStringLiteral("http://%1").arg(server->Host()).toLatin1());
        qputenv("no_proxy", "");
        QString reply;
        const bool ok =
            HttpUploadFile(closed, QStringLiteral("/cgi-bin/upload.cgi"), logPath, reply, Short());
        qunsetenv("http_proxy");
        qunsetenv("no_proxy");
        QVERIFY(ok);
        QVERIFY(JudgeReply(reply, MD5Sum(kLog), true));
        QCOMPARE(server->Stored("logfile"), kLog);
    }
    void fileOfZeroBytesEndsAtTheMd5WithNoRequest() {
        WriteBytes(logPath, QByteArray());
        const SendOutcome o = SendCabrilloFile(Request(server->Host()));
        QCOMPARE(int(o.kind), int(SendOutcome::Md5Message));
        QCOMPARE(o.message, QStringLiteral("keine Daten zum MD5Sum berechnen übergeben"));
        QCOMPARE(OutcomeText(o, logPath),
                 QStringLiteral("keine Daten zum MD5Sum berechnen übergeben\n\n"
                                "Hochladen abgebrochen\nBitte dem Autor diese Fehlermeldung mitteilen."));
        QCOMPARE(server->Requests(), 0);
    }
    void fileWithoutCallsignReturnsFalseWithNoRequest() {
        QByteArray text = kLog;
        text.replace("CALLSIGN:", "RUFZEICHEN:");
        WriteBytes(logPath, text);
        QString reply;
        QVERIFY(
            !HttpUploadFile(server->Host(), QStringLiteral("/cgi-bin/upload.cgi"), logPath, reply, Short()));
        QCOMPARE(server->Requests(), 0);
    }
    void foreignFileFailingTheCheckIsNotSent() {
        QByteArray text = kLog;
        text.replace("LOCATION: WI", "LOCATION: W");
        WriteBytes(logPath, text);
        const SendOutcome o = SendCabrilloFile(Request(server->Host()));
        QCOMPARE(int(o.kind), int(SendOutcome::CheckFailed));
        QVERIFY(o.message.contains(QStringLiteral("Bezirk ungültig!")));
        QCOMPARE(server->Requests(), 0);
    }
    void noServerSetSendsNothing() {
        QCOMPARE(LogServerSetting(), QString());
        QCOMPARE(int(SendCabrilloFile(Request(QString())).kind), int(SendOutcome::NoServer));
        QCOMPARE(int(RunConnectionTest(QString(), home->model.TmpFolder).kind), int(SendOutcome::NoServer));
    }
    void testLogIsAnsweredLikeAnyOther() {
        const SendOutcome o = RunConnectionTest(server->Host(), home->model.TmpFolder, Short(), 1000);
        QCOMPARE(int(o.kind), int(SendOutcome::Sent));
        QCOMPARE(server->Stored("call_sign"), QByteArray("TESTCALL"));
        QCOMPARE(server->Stored("logfile"), Cp(TestCallLog()));
        QVERIFY(Cp(TestCallLog()).contains("CATEGORY -OVERLAY: OM\r\n"));
        QVERIFY(!QFile::exists(home->model.TmpFolder + QStringLiteral("TESTCALL.LOG")));
        server->SetMode("nomarker");
        QCOMPARE(int(RunConnectionTest(server->Host(), home->model.TmpFolder, Short(), 1000).kind),
                 int(SendOutcome::UploadFailed));
        QVERIFY(!QFile::exists(home->model.TmpFolder + QStringLiteral("TESTCALL.LOG")));
    }
    void judgeOfTheReply_data() {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<bool>("needLogfile");
        QTest::addColumn<bool>("passes");
        const QString md5 = QStringLiteral("900150983CD24FB0D6963F7D28E17F72");
        const QString good =
            QStringLiteral("<p><span id=\"md5\"> %1 </span></p><span id=\"logfile\"> x.log </span>");
        QTest::newRow("match") << good.arg(md5) << true << true;
        QTest::newRow("lower case") << good.arg(md5.toLower()) << true << true;
        QTest::newRow("other md5") << good.arg(QString(32, QLatin1Char('0'))) << true << false;
        QTest::newRow("no marker") << QStringLiteral("<p>%1</p>").arg(md5) << true << false;
        QTest::newRow("no end") << QStringLiteral("\"md5\">%1</span>").arg(md5) << false << false;
        QTest::newRow("no logfile") << QStringLiteral("\"md5\">%1</span></p>").arg(md5) << true << false;
        QTest::newRow("test needs no logfile")
            << QStringLiteral("\"md5\">%1</span></p>").arg(md5) << false << true;
    }
    void judgeOfTheReply() {
        QFETCH(QString, reply);
        QFETCH(bool, needLogfile);
        QFETCH(bool, passes);
        QCOMPARE(JudgeReply(reply, QStringLiteral("900150983CD24FB0D6963F7D28E17F72"), needLogfile), passes);
    }
    void md5SumLengthContract() {
        QCOMPARE(MD5Sum("abc"), QStringLiteral("900150983CD24FB0D6963F7D28E17F72"));
        QVERIFY(MD5Sum(QByteArray()).size() >= 33);
        QCOMPARE(SplitHost(QStringLiteral("logs.example:8080")).port, 8080);
        QCOMPARE(SplitHost(QStringLiteral("logs.example")).port, 80);
    }
    void downloadFetchesAFile() {
        const QString target = home->Path(QStringLiteral("show.html"));
        QVERIFY(HttpDownloadFile(QStringLiteral("http://%1/cgi-bin/show.cgi").arg(server->Host()), target,
                                 true, Short()));
        QCOMPARE(ReadBytes(target), QByteArray("<p>Logs</p>"));
        QVERIFY(!HttpDownloadFile(QStringLiteral("http://%1/fehlt.txt").arg(server->Host()), target, true,
                                  Short()));
        QCOMPARE(ReadBytes(target), QByteArray("<p>Logs</p>"));
    }
    void commandLineUpload() {
        auto run = [&](const QStringList& extra, QByteArray* err) {
            const test::CliResult r =
                test::RunCli(home->dir.path(), QStringList{QStringLiteral("upload"), logPath} + extra);
            *err = r.err;
            return r.code;
        };
        QByteArray err;
        QCOMPARE(run({QStringLiteral("--server"), server->Host()}, &err), 0);
        QCOMPARE(err, QByteArray());
        server->SetMode("wrongmd5");
        QCOMPARE(run({QStringLiteral("--server"), server->Host()}, &err), 1);
        QVERIFY(
            QString::fromUtf8(err).startsWith(QStringLiteral("Das Hochladen des Logs ist fehlgeschlagen.")));
        QCOMPARE(run({}, &err), 1);
        QVERIFY(QString::fromUtf8(err).contains(QStringLiteral("kein Log-Server eingestellt")));
        server->SetMode("ok");
        IniWrite(home->model.IniPath, QStringLiteral("Server"), QStringLiteral("LogServer"), server->Host());
        QCOMPARE(run({}, &err), 0);
    }
};

QTEST_GUILESS_MAIN(TstUpload)
#include "tst_upload.moc"
