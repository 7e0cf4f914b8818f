// The rig engine over Hamlib: the mode mapping, the band tables at every limit, the
// strict value checks, the dummy rig in-process and a real rigctld reached over the
// network model, including a rigctld that vanishes and comes back.
#include "rig/hamlib_rig.h"
#include "rig/rig_engine.h"
#include "rig/rig_params.h"
#include "rig_support.h"
#include "test_support.h"

#include <QSignalSpy>
#include <QtTest>
#include <atomic>
#include <cmath>
#include <hamlib/rig.h>
#include <limits>
#include <pty.h>
#include <thread>

using namespace kolibrino;
using namespace kolibrino::rig;
using namespace kolibrino::test;

class TestRigEngine : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    void modeMappingFromHamlib_data();
    void modeMappingFromHamlib();
    void modeMappingToHamlib();
    void otherModesAreOther();
    void contestBandLimits_data();
    void contestBandLimits();
    void panelBandLimits_data();
    void panelBandLimits();
    void strictFrequencyCheck();
    void frequencyFormat();
    void interfaceVersionRange();
    void modeLabelsAndBoxRows();
    void kilohertzFieldText();
    void loggedKilohertzFromFields();
    void modelListSortedByMakerAndModel();
    void configSectionRig1RoundTrip();
    void dummyRigInProcessGoesOnline();
    void dummyRigWritesAreQueued();
    void writesToAnOfflineRigAreDropped();
    void unconfiguredRigIsNotConfigured();
    void rig2EventsCarryRigNumber2();
    void rigctldFollowsOutsideChanges();
    void rigctldVanishesAndReturns();
    void sharedEngineOnlyWhenConfigured();
    void engineGoesAtOnceWhileRigHangs();
    void cliPrintsOneLineFromRigctld();
    void cliReadsSectionRig1();
    void cliExitsOneWhenNoRigAnswers();
    void cliListsModelsMatchingText();
    void cliConfReachesHamlibAndUnknownNameIsRefused();
    void naturalOrder();
    void hamlibGlobalCallsWaitForTheOneLock();
    void hamlibFromManyThreadsAtOnce();
    void engineReadsBackTheSettingsItGaveHamlib();
    void offlineReasonNoAnswer();
};

namespace {
struct CliRun {
    int code = -1;
    QString out;
    QString err;
};
CliRun RunCli(const QStringList& args, const QString& home) {
    const test::CliResult r = test::RunCli(home, QStringList{QStringLiteral("rig")} + args, 15000);
    return {r.code, QString::fromLocal8Bit(r.out), QString::fromLocal8Bit(r.err)};
}
} // namespace

void TestRigEngine::modeMappingFromHamlib_data() {
    QTest::addColumn<qulonglong>("hamlib");
    QTest::addColumn<int>("mode");
    QTest::newRow("CW") << qulonglong(RIG_MODE_CW) << int(PM_CW_U);
    QTest::newRow("CWR") << qulonglong(RIG_MODE_CWR) << int(PM_CW_L);
    QTest::newRow("USB") << qulonglong(RIG_MODE_USB) << int(PM_SSB_U);
    QTest::newRow("LSB") << qulonglong(RIG_MODE_LSB) << int(PM_SSB_L);
    QTest::newRow("PKTUSB") << qulonglong(RIG_MODE_PKTUSB) << int(PM_DIG_U);
    QTest::newRow("PKTLSB") << qulonglong(RIG_MODE_PKTLSB) << int(PM_DIG_L);
    QTest::newRow("AM") << qulonglong(RIG_MODE_AM) << int(PM_AM);
    QTest::newRow("FM") << qulonglong(RIG_MODE_FM) << int(PM_FM);
}

void TestRigEngine::modeMappingFromHamlib() {
    QFETCH(qulonglong, hamlib);
    QFETCH(int, mode);
    QCOMPARE(ModeFromHamlib(hamlib), mode);
}

void TestRigEngine::modeMappingToHamlib() {
    for (const int mode : {PM_CW_U, PM_CW_L, PM_SSB_U, PM_SSB_L, PM_DIG_U, PM_DIG_L, PM_AM, PM_FM}) {
        const auto h = HamlibFromMode(mode);
        QVERIFY(h.has_value());
        QCOMPARE(ModeFromHamlib(*h), mode);
    }
    QVERIFY(!HamlibFromMode(0).has_value());
    QVERIFY(!HamlibFromMode(PM_FREQ).has_value());
}

void TestRigEngine::otherModesAreOther() {
    for (const uint64_t m : {uint64_t(RIG_MODE_RTTY), uint64_t(RIG_MODE_RTTYR), uint64_t(RIG_MODE_WFM),
                             uint64_t(RIG_MODE_PKTFM), uint64_t(RIG_MODE_NONE)})
        QCOMPARE(ModeFromHamlib(uint64_t(m)), 0);
    QCOMPARE(ModeLabel(0), QStringLiteral("Other"));
    QCOMPARE(PanelRowOfMode(0), 8);
}

void TestRigEngine::contestBandLimits_data() {
    QTest::addColumn<int>("hz");
    QTest::addColumn<int>("band");
    QTest::newRow("3499999") << 3499999 << -1;
    QTest::newRow("3500000") << 3500000 << 1;
    QTest::newRow("3800000") << 3800000 << 1;
    QTest::newRow("3800001") << 3800001 << -1;
    QTest::newRow("6999999") << 6999999 << -1;
    QTest::newRow("7000000") << 7000000 << 0;
    QTest::newRow("7200000") << 7200000 << 0;
    QTest::newRow("7200001") << 7200001 << -1;
    QTest::newRow("10099999") << 10099999 << -1;
    QTest::newRow("10100000") << 10100000 << 2;
    QTest::newRow("10150000") << 10150000 << 2;
    QTest::newRow("10150001") << 10150001 << -1;
    QTest::newRow("14074000") << 14074000 << -1;
    QTest::newRow("0") << 0 << -1;
}

void TestRigEngine::contestBandLimits() {
    QFETCH(int, hz);
    QFETCH(int, band);
    QCOMPARE(ContestBandOf(hz), band);
}

void TestRigEngine::panelBandLimits_data() {
    QTest::addColumn<int>("hz");
    QTest::addColumn<int>("band");
    const auto& bands = PanelBands();
    for (int i = 0; i < kPanelBandCount; ++i) {
        const PanelBand& b = bands[size_t(i)];
        QTest::addRow("%s low-1", b.caption) << b.low - 1 << -1;
        QTest::addRow("%s low", b.caption) << b.low << i;
        QTest::addRow("%s high", b.caption) << b.high << i;
        QTest::addRow("%s high+1", b.caption) << b.high + 1 << -1;
    }
}

void TestRigEngine::panelBandLimits() {
    QFETCH(int, hz);
    QFETCH(int, band);
    QCOMPARE(PanelBandOf(hz), band);
}

void TestRigEngine::strictFrequencyCheck() {
    QCOMPARE(CheckedFrequency(7050000.0), std::optional<int>(7050000));
    QVERIFY(!CheckedFrequency(0.0));
    QVERIFY(!CheckedFrequency(-7050000.0));
    QVERIFY(!CheckedFrequency(7050000.5));
    QVERIFY(!CheckedFrequency(std::nan("")));
    QVERIFY(!CheckedFrequency(std::numeric_limits<double>::infinity()));
    QVERIFY(!CheckedFrequency(3e9));
    QCOMPARE(CheckedMode(PM_SSB_U), int(PM_SSB_U));
    QCOMPARE(CheckedMode(PM_SSB_U | PM_SSB_L), 0);
    QCOMPARE(CheckedMode(12345), 0);
}

void TestRigEngine::interfaceVersionRange() {
    QVERIFY(!InterfaceVersionAccepted(256));
    QVERIFY(InterfaceVersionAccepted(257));
    QVERIFY(InterfaceVersionAccepted(665));
    QVERIFY(!InterfaceVersionAccepted(666));
    QVERIFY(InterfaceVersionAccepted(kInterfaceVersion));
}

void TestRigEngine::frequencyFormat() {
    QCOMPARE(FormatFrequency(7050000), QStringLiteral("7.050.000"));
    QCOMPARE(FormatFrequency(14074123), QStringLiteral("14.074.123"));
    QCOMPARE(FormatFrequency(0), QStringLiteral("0.000.000"));
    QCOMPARE(FormatFrequency(435000000), QStringLiteral("435.000.000"));
}

void TestRigEngine::modeLabelsAndBoxRows() {
    QCOMPARE(ModeLabel(PM_CW_L), QStringLiteral("CW"));
    QCOMPARE(ModeLabel(PM_CW_U), QStringLiteral("CW"));
    QCOMPARE(ModeLabel(PM_SSB_L), QStringLiteral("LSB"));
    QCOMPARE(ModeLabel(PM_SSB_U), QStringLiteral("USB"));
    QCOMPARE(ModeLabel(PM_AM), QStringLiteral("AM"));
    QCOMPARE(ModeLabel(PM_FM), QStringLiteral("FM"));
    QCOMPARE(ModeLabel(PM_DIG_L), QStringLiteral("Digital_L"));
    QCOMPARE(ModeLabel(PM_DIG_U), QStringLiteral("Digital_U"));
    QCOMPARE(ModeBoxRow(PM_CW_U), 1);
    QCOMPARE(ModeBoxRow(PM_CW_L), 1);
    QCOMPARE(ModeBoxRow(PM_SSB_U), 0);
    QCOMPARE(ModeBoxRow(PM_SSB_L), 0);
    for (const int m : {int(PM_AM), int(PM_FM), int(PM_DIG_U), int(PM_DIG_L), 0})
        QCOMPARE(ModeBoxRow(m), -1);
}

void TestRigEngine::kilohertzFieldText() {
    QCOMPARE(KilohertzText(0, 7050000), QStringLiteral("050"));
    QCOMPARE(KilohertzText(0, 7050900), QStringLiteral("050"));
    QCOMPARE(KilohertzText(1, 3650000), QStringLiteral("650"));
    QCOMPARE(KilohertzText(2, 10120000), QStringLiteral("120"));
}

void TestRigEngine::loggedKilohertzFromFields() {
    QCOMPARE(LoggedKilohertz(QStringLiteral("7"), QStringLiteral("050")), 7050.0f);
    QCOMPARE(LoggedKilohertz(QStringLiteral("10"), QStringLiteral("120")), 10120.0f);
    QCOMPARE(LoggedKilohertz(QStringLiteral("7"), QString()), 7.0f);
}

void TestRigEngine::modelListSortedByMakerAndModel() {
    const std::vector<RigModelInfo> models = HamlibModels();
    QVERIFY(models.size() > 100);
    bool dummy = false, net = false;
    for (size_t i = 0; i < models.size(); ++i) {
        if (models[i].model == kModelDummy) dummy = true;
        if (models[i].model == kModelNetRigctl) net = true;
        if (i == 0) continue;
        const int c = QString::compare(models[i - 1].maker, models[i].maker, Qt::CaseInsensitive);
        QVERIFY(c <= 0);
        if (c == 0) QVERIFY(!NaturalLess(models[i].name, models[i - 1].name));
    }
    QVERIFY(dummy);
    QVERIFY(net);
}

void TestRigEngine::configSectionRig1RoundTrip() {
    Home home;
    WriteRigConfig(home.model.IniPath, 1, {2, QStringLiteral("127.0.0.1:4532"), 0});
    const RigConfig c = ReadRigConfig(home.model.IniPath, 1);
    QCOMPARE(c.model, 2);
    QCOMPARE(c.port, QStringLiteral("127.0.0.1:4532"));
    QCOMPARE(c.speed, 0);
    QVERIFY(ReadBytes(home.model.IniPath).contains("[RIG1]\r\nModel=2\r\n"));
    QVERIFY(!ReadRigConfig(home.model.IniPath, 2).Configured());
}

void TestRigEngine::dummyRigInProcessGoesOnline() {
    RigEngine engine({kModelDummy, {}, 0}, {});
    QSignalSpy status(&engine, &RigEngine::StatusChange);
    QSignalSpy params(&engine, &RigEngine::ParamsChange);
    QTRY_COMPARE_WITH_TIMEOUT(engine.Rig1()->Status(), int(ST_ONLINE), 2000);
    QCOMPARE(status.first().at(0).toInt(), 1);
    QTRY_VERIFY(!params.isEmpty());
    QCOMPARE(params.first().at(0).toInt(), 1);
    QVERIFY(engine.Rig1()->Freq() > 0);
    QVERIFY(engine.Rig1()->IsParamReadable(PM_FREQ));
    QVERIFY(engine.Rig1()->IsParamWriteable(PM_FREQ));
    QVERIFY(engine.Rig1()->IsParamWriteable(PM_SSB_L));
    QVERIFY(engine.Rig1()->IsParamWriteable(PM_TX));
    QVERIFY(engine.Rig1()->IsParamWriteable(PM_SPLITON | PM_SPLITOFF));
    QCOMPARE(engine.Rig1()->StatusStr(), QStringLiteral("Online"));
    QVERIFY(InterfaceVersionAccepted(engine.InterfaceVersion()));
}

void TestRigEngine::dummyRigWritesAreQueued() {
    RigEngine engine({kModelDummy, {}, 0}, {});
    RigControl* r = engine.Rig1();
    QTRY_COMPARE_WITH_TIMEOUT(r->Status(), int(ST_ONLINE), 2000);
    QSignalSpy params(&engine, &RigEngine::ParamsChange);
    r->SetFreq(7050000);
    r->SetMode(PM_SSB_L);
    QTRY_COMPARE(r->Freq(), 7050000);
    QTRY_COMPARE(r->Mode(), int(PM_SSB_L));
    QVERIFY(!params.isEmpty());
    const int before = int(params.size());
    QTest::qWait(600); // a few polls with nothing changed
    QCOMPARE(int(params.size()), before);
    r->SetSplit(PM_SPLITON);
    QTRY_COMPARE(r->Split(), int(PM_SPLITON));
    r->SetTx(PM_TX);
    QTRY_COMPARE(r->Tx(), int(PM_TX));
    r->SetTx(PM_RX);
    QTRY_COMPARE(r->Tx(), int(PM_RX));
    r->SetFreqA(3600000);
    QTRY_COMPARE(r->FreqA(), 3600000);
}

void TestRigEngine::writesToAnOfflineRigAreDropped() {
    RigEngine engine({kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()), 0}, {});
    QTest::qWait(300);
    QVERIFY(engine.Rig1()->Status() != ST_ONLINE);
    engine.Rig1()->SetFreq(7050000);
    engine.Rig1()->SetMode(PM_CW_U);
    QCOMPARE(engine.Rig1()->Freq(), 0);
    QCOMPARE(engine.Rig1()->Mode(), 0);
}

void TestRigEngine::unconfiguredRigIsNotConfigured() {
    RigEngine engine({kModelDummy, {}, 0}, {});
    QCOMPARE(engine.Rig2()->Status(), int(ST_NOTCONFIGURED));
    QCOMPARE(engine.Rig2()->StatusStr(), QStringLiteral("Transceiver nicht konfiguriert"));
    QVERIFY(!engine.Rig2()->IsParamReadable(PM_FREQ));
}

void TestRigEngine::rig2EventsCarryRigNumber2() {
    RigEngine engine({}, {kModelDummy, {}, 0});
    QSignalSpy params(&engine, &RigEngine::ParamsChange);
    QTRY_COMPARE_WITH_TIMEOUT(engine.Rig2()->Status(), int(ST_ONLINE), 2000);
    engine.Rig2()->SetFreq(3700000);
    QTRY_COMPARE(engine.Rig2()->Freq(), 3700000);
    for (const QList<QVariant>& p : params)
        QCOMPARE(p.at(0).toInt(), 2);
    QCOMPARE(engine.Rig1()->Freq(), 0);
}

void TestRigEngine::rigctldFollowsOutsideChanges() {
    Rigctld daemon;
    QVERIFY(daemon.Start());
    RigEngine engine({kModelNetRigctl, daemon.Address(), 0}, {});
    QTRY_COMPARE_WITH_TIMEOUT(engine.Rig1()->Status(), int(ST_ONLINE), 3000);
    QVERIFY(daemon.Set({QStringLiteral("F"), QStringLiteral("3650000")}));
    QTRY_COMPARE(engine.Rig1()->Freq(), 3650000);
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    QTRY_COMPARE(engine.Rig1()->Mode(), int(PM_CW_U));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("PKTUSB"), QStringLiteral("0")}));
    QTRY_COMPARE(engine.Rig1()->Mode(), int(PM_DIG_U));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("RTTY"), QStringLiteral("0")}));
    QTRY_COMPARE(engine.Rig1()->Mode(), 0);
    // And the other way: our writes reach the daemon.
    engine.Rig1()->SetFreq(7123000);
    QTRY_COMPARE(daemon.Get(QStringLiteral("f")), QStringLiteral("7123000"));
}

void TestRigEngine::rigctldVanishesAndReturns() {
    Rigctld daemon;
    QVERIFY(daemon.Start());
    RigEngine engine({kModelNetRigctl, daemon.Address(), 0}, {});
    QTRY_COMPARE_WITH_TIMEOUT(engine.Rig1()->Status(), int(ST_ONLINE), 3000);
    QSignalSpy status(&engine, &RigEngine::StatusChange);
    daemon.Kill();
    QTRY_VERIFY_WITH_TIMEOUT(engine.Rig1()->Status() != ST_ONLINE, 2000);
    QCOMPARE(status.size(), 1);
    QCOMPARE(engine.Rig1()->Freq(), 0);
    Rigctld again(daemon.Port());
    QVERIFY(again.Start());
    QVERIFY(again.Set({QStringLiteral("F"), QStringLiteral("7010000")}));
    QTRY_COMPARE_WITH_TIMEOUT(engine.Rig1()->Status(), int(ST_ONLINE), 3000);
    QTRY_COMPARE(engine.Rig1()->Freq(), 7010000);
}

void TestRigEngine::sharedEngineOnlyWhenConfigured() {
    Home home;
    QVERIFY(!ConnectEngine(home.model.IniPath));
    WriteRigConfig(home.model.IniPath, 1, {kModelDummy, {}, 0});
    auto a = ConnectEngine(home.model.IniPath);
    auto b = ConnectEngine(home.model.IniPath);
    QVERIFY(a);
    QCOMPARE(a.get(), b.get());
    QCOMPARE(LiveEngine().get(), a.get());
    a.reset();
    b.reset();
    QVERIFY(!LiveEngine());
}

void TestRigEngine::engineGoesAtOnceWhileRigHangs() {
    // A listener that takes the connection and never answers: Hamlib's open waits for
    // its timeouts (about a second) in the worker.
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof a;
    QVERIFY(::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0);
    QVERIFY(::listen(fd, 4) == 0);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len);
    auto engine = std::make_unique<RigEngine>(
        RigConfig{kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(ntohs(a.sin_port)), 0}, RigConfig{});
    QTest::qWait(150);
    QElapsedTimer t;
    t.start();
    engine.reset();
    const qint64 ms = t.elapsed();
    qInfo("engine gone after %lld ms", ms);
    // Not a speed figure: a window that waited for the rig would wait its whole timeout.
    QVERIFY2(ms < 600, qPrintable(QString::number(ms)));
    QTest::qWait(1500); // the worker's call ends and frees its thread
    ::close(fd);
}

void TestRigEngine::cliPrintsOneLineFromRigctld() {
    Home home;
    Rigctld daemon;
    QVERIFY(daemon.Start());
    QVERIFY(daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    const CliRun r =
        RunCli({QStringLiteral("--model"), QStringLiteral("2"), QStringLiteral("--port"), daemon.Address()},
               home.dir.path());
    QCOMPARE(r.out, QStringLiteral("ONLINE 7050000 USB\n"));
    QCOMPARE(r.code, 0);
}

void TestRigEngine::cliReadsSectionRig1() {
    Home home;
    Rigctld daemon;
    QVERIFY(daemon.Start());
    QVERIFY(daemon.Set({QStringLiteral("F"), QStringLiteral("3520000")}));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("PKTLSB"), QStringLiteral("0")}));
    WriteRigConfig(home.model.IniPath, 1, {kModelNetRigctl, daemon.Address(), 0});
    const CliRun r = RunCli({}, home.dir.path());
    QCOMPARE(r.out, QStringLiteral("ONLINE 3520000 Digital_L\n"));
    QCOMPARE(r.code, 0);
}

void TestRigEngine::cliExitsOneWhenNoRigAnswers() {
    Home home;
    const CliRun r = RunCli({QStringLiteral("--model"), QStringLiteral("2"), QStringLiteral("--port"),
                             QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort())},
                            home.dir.path());
    QCOMPARE(r.code, 1);
    QCOMPARE(r.out, QStringLiteral("OFFLINE 0 Other\n"));
    QVERIFY(r.err.startsWith(QStringLiteral("Der Transceiver antwortet nicht")));
    QCOMPARE(RunCli({QStringLiteral("--model")}, home.dir.path()).code, 2);
}

void TestRigEngine::cliListsModelsMatchingText() {
    Home home;
    const CliRun r = RunCli({QStringLiteral("--models"), QStringLiteral("ft991")}, home.dir.path());
    QCOMPARE(r.code, 0);
    const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY(!lines.isEmpty());
    bool found = false;
    for (const QString& line : lines) {
        const QStringList cols = line.split(QLatin1Char('\t'));
        QCOMPARE(cols.size(), 3);
        bool number = false;
        cols[0].toInt(&number);
        QVERIFY(number);
        QVERIFY(ModelMatches(cols[1], cols[2], QStringLiteral("ft991")));
        found = found || (cols[1] == QLatin1String("Yaesu") && cols[2] == QLatin1String("FT-991"));
    }
    QVERIFY(found);
    const CliRun ic = RunCli({QStringLiteral("--models"), QStringLiteral("IC 7300")}, home.dir.path());
    QVERIFY(ic.out.contains(QStringLiteral("\tIcom\tIC-7300\n")));
    const CliRun none = RunCli({QStringLiteral("--models"), QStringLiteral("xyzzy")}, home.dir.path());
    QCOMPARE(none.code, 1);
    QVERIFY(none.err.contains(QStringLiteral("„xyzzy“")));
}

void TestRigEngine::cliConfReachesHamlibAndUnknownNameIsRefused() {
    Home home;
    Rigctld daemon;
    QVERIFY(daemon.Start());
    QVERIFY(daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    const QStringList rig{QStringLiteral("--model"), QStringLiteral("2"), QStringLiteral("--port"),
                          daemon.Address()};
    const CliRun ok = RunCli(rig + QStringList{QStringLiteral("--conf"), QStringLiteral("timeout=800"),
                                               QStringLiteral("--conf"), QStringLiteral("ptt_type=RIG")},
                             home.dir.path());
    QCOMPARE(ok.out, QStringLiteral("ONLINE 7050000 CW\n"));
    QCOMPARE(ok.code, 0);
    const CliRun bad =
        RunCli(rig + QStringList{QStringLiteral("--conf"), QStringLiteral("zeitlimit=800")}, home.dir.path());
    QCOMPARE(bad.code, 1);
    QVERIFY(bad.err.contains(QStringLiteral("Unbekannte Hamlib-Einstellung „zeitlimit“")));
    const CliRun noValue =
        RunCli(rig + QStringList{QStringLiteral("--conf"), QStringLiteral("timeout")}, home.dir.path());
    QCOMPARE(noValue.code, 1);
    QVERIFY(noValue.err.contains(QStringLiteral("„timeout“")));
}

void TestRigEngine::naturalOrder() {
    QVERIFY(NaturalLess(QStringLiteral("IC-703"), QStringLiteral("IC-7000")));
    QVERIFY(NaturalLess(QStringLiteral("IC-78"), QStringLiteral("IC-703")));
    QVERIFY(!NaturalLess(QStringLiteral("IC-7000"), QStringLiteral("IC-703")));
    QVERIFY(NaturalLess(QStringLiteral("ft-817"), QStringLiteral("FT-818")));
    QVERIFY(!NaturalLess(QStringLiteral("FT-817"), QStringLiteral("FT-817")));
    QVERIFY(ModelMatches(QStringLiteral("Yaesu"), QStringLiteral("FT-991"), QStringLiteral("ft991")));
    QVERIFY(ModelMatches(QStringLiteral("Yaesu"), QStringLiteral("FT-991"), QStringLiteral("yaesu FT 991")));
    QVERIFY(!ModelMatches(QStringLiteral("Yaesu"), QStringLiteral("FT-991"), QStringLiteral("ft 817")));
}

void TestRigEngine::hamlibGlobalCallsWaitForTheOneLock() {
    HamlibModels();
    std::atomic<int> done{0};
    std::unique_lock<std::recursive_mutex> hold(HamlibLock());
    std::thread opener([&done] {
        HamlibRig r;
        r.Open({kModelDummy, {}, 0});
        done = 1;
    });
    QTest::qWait(300);
    // rig_init and rig_open wait while another thread holds Hamlib's lock.
    QCOMPARE(done.load(), 0);
    hold.unlock();
    opener.join();
    QCOMPARE(done.load(), 1);
}

void TestRigEngine::hamlibFromManyThreadsAtOnce() {
    std::atomic<int> online{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t)
        threads.emplace_back([&online, t] {
            for (int i = 0; i < 15; ++i) {
                HamlibRig r;
                if (r.Open({kModelDummy, {}, 0}, 50).isEmpty()) ++online;
                if (t % 3 == 0) SearchModels(QStringLiteral("ic"));
                if (t % 3 == 1) CheckConfNames(3073, {QStringLiteral("civaddr=0x5e")});
            }
        });
    for (std::thread& t : threads)
        t.join();
    QCOMPARE(online.load(), 6 * 15); // every dummy opened
}

void TestRigEngine::engineReadsBackTheSettingsItGaveHamlib() {
    Home home;
    int master = -1, slave = -1;
    char name[128] = {0};
    QCOMPARE(::openpty(&master, &slave, name, nullptr, nullptr), 0);
    RigConfig c{3073, QString::fromLocal8Bit(name), 9600};
    c.civAddr = QStringLiteral("0x5E");
    c.ptt = QStringLiteral("RTS");
    c.stopBits = 2;
    c.conf = QStringList{QStringLiteral("post_write_delay=7")};
    WriteRigConfig(home.model.IniPath, 1, c);
    QCOMPARE(ReadRigConfig(home.model.IniPath, 1), c);
    std::shared_ptr<RigEngine> engine = ConnectEngine(home.model.IniPath);
    QVERIFY(engine);
    QTRY_VERIFY_WITH_TIMEOUT(!engine->Rig1()->AppliedConf().isEmpty(), 5000);
    const QMap<QString, QString> applied = engine->Rig1()->AppliedConf();
    QCOMPARE(applied.value(QStringLiteral("civaddr")), QStringLiteral("94"));
    QCOMPARE(applied.value(QStringLiteral("ptt_type")), QStringLiteral("RTS"));
    QCOMPARE(applied.value(QStringLiteral("stop_bits")), QStringLiteral("2"));
    QCOMPARE(applied.value(QStringLiteral("serial_speed")), QStringLiteral("9600"));
    QCOMPARE(applied.value(QStringLiteral("post_write_delay")), QStringLiteral("7"));
    QCOMPARE(applied.value(QStringLiteral("rig_pathname")), QString::fromLocal8Bit(name));
    engine.reset();
    ::close(master);
    ::close(slave);
}

void TestRigEngine::offlineReasonNoAnswer() {
    Home home;
    int master = -1, slave = -1;
    char name[128] = {0};
    QCOMPARE(::openpty(&master, &slave, name, nullptr, nullptr), 0);
    // An Icom on a port where nobody answers.
    WriteRigConfig(home.model.IniPath, 1, {3073, QString::fromLocal8Bit(name), 19200});
    std::shared_ptr<RigEngine> engine = ConnectEngine(home.model.IniPath);
    QVERIFY(engine);
    QTRY_VERIFY_WITH_TIMEOUT(!engine->Rig1()->OfflineReason().isEmpty(), 5000);
    const QString reason = engine->Rig1()->OfflineReason();
    QVERIFY2(reason.contains(QStringLiteral("antwortet nicht")) ||
                 reason.contains(QStringLiteral("Keine Antwort")),
             qPrintable(reason));
    QVERIFY(engine->Rig1()->OfflineSince().isValid());
    QVERIFY(engine->Rig1()->StatusLine().contains(QStringLiteral(" UTC)")));
    engine.reset();
    ::close(master);
    ::close(slave);
}

QTEST_GUILESS_MAIN(TestRigEngine)
#include "tst_rig_engine.moc"
