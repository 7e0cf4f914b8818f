// The frequency window with a real rigctld behind it: band detection, the mode box,
// the guard flag between the main window's band box and the rig, the logged
// frequency, the blinking, the kHz fields, closing and reopening.
#include "rig/rig_settings.h"
#include "rig_window_support.h"

#include <QComboBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

using namespace kolibrino;
using namespace kolibrino::rig;
using namespace kolibrino::test;

class TestFrequenz : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    void closedWindowLogsFortyAt7000WhateverTheRadio();
    void bandLimitsInclusive_data();
    void bandLimitsInclusive();
    void frequencyOutsideAllBandsChangesOnlyTheLabel();
    void rig2EventIgnoredWhileRigNumberIs1();
    void usbOnFortyStaysUntilSetModeOrFreqAlt();
    void blinkingStopsAfter40TicksInItsColour();
    void emptyKilohertzFieldLogsTheMegahertzDigit();
    void loggedFrequencyFollowsTheRig();
    void typedFieldIsLogged();
    void modeFromRigSetsModeBoxAndReports();
    void mainBandBoxMovesRigOnceWithoutEcho();
    void rigBandChangeMovesMainBandBox();
    void modeBoxWritesRigMode();
    void freqAltSetsLowerSidebandOnFortyAndUpperOnThirty();
    void kilohertzFieldKeyFilter();
    void kilohertzFieldFocusSelectsItsBand();
    void closingAsksAndNoKeepsItOpen();
    void closingYesSavesFrequencies();
    void programEndTagsOneAndReopensAtNextStart();
    void storedFrequenciesFillFieldsAtLoad();
    void withoutRigItIsAPlainForm();
    void offlineRigShowsOfflineAndBeeps();
    void modeBoxMovesRigOnlyWhileRigPanelShown();
    void plainFormGoesOnlineWhenRigIsSetUpLater();
    void openingTunesTheRigToTheOperatorsBand();
    void openingBeforeTheRigAnswersTunesItWhenItDoes();
    void modeLabelNeverOtherWhileOffline();
    void rigModeTakenForTheLogWithoutWritingBack();
    void readOnlyNeverWritesFrequencyOrMode();
    void offlineSaysWhyAndSinceWhenAndFrequencyIsStale();
    void offlineReasonPortMissing();
    void switchingToDeadRigLeavesNoOldValue();
};

void TestFrequenz::closedWindowLogsFortyAt7000WhateverTheRadio() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7123000")}));
    QVERIFY(f.Menu("MnFrequenz")->isEnabled());
    QVERIFY(!f.home.model.Open.Frequenz);
    f.Type(QStringLiteral("OE1ABC"), 0, QStringLiteral("WI"));
    QCOMPARE(int(f.home.model.LogRecords.size()), 1);
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 7000.0f);
}

void TestFrequenz::bandLimitsInclusive_data() {
    QTest::addColumn<int>("hz");
    QTest::addColumn<int>("band");
    QTest::addColumn<QString>("khz");
    QTest::newRow("3500000") << 3500000 << 1 << QStringLiteral("500");
    QTest::newRow("3800000") << 3800000 << 1 << QStringLiteral("800");
    QTest::newRow("3800001") << 3800001 << -1 << QString();
    QTest::newRow("7000000") << 7000000 << 0 << QStringLiteral("000");
    QTest::newRow("7200000") << 7200000 << 0 << QStringLiteral("200");
    QTest::newRow("7200001") << 7200001 << -1 << QString();
    QTest::newRow("10100000") << 10100000 << 2 << QStringLiteral("100");
    QTest::newRow("10150000") << 10150000 << 2 << QStringLiteral("150");
    QTest::newRow("10150001") << 10150001 << -1 << QString();
}

void TestFrequenz::bandLimitsInclusive() {
    QFETCH(int, hz);
    QFETCH(int, band);
    QFETCH(QString, khz);
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    // Start from 14 MHz, outside every contest band.
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("14074000")));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("14.074.000"));
    const QString before10 = f.FText(10)->text(), before11 = f.FText(11)->text(),
                  before9 = f.FText(9)->text();
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QString::number(hz)}));
    QTRY_COMPARE(f.FLabel(1)->text(), FormatFrequency(hz));
    if (band < 0) {
        QCOMPARE(f.FText(10)->text(), before10);
        QCOMPARE(f.FText(11)->text(), before11);
        QCOMPARE(f.FText(9)->text(), before9);
        return;
    }
    QLineEdit* field = f.FText(band == 0 ? 10 : band == 1 ? 11 : 9);
    QCOMPARE(field->text(), khz);
    QVERIFY(f.FOption(band)->isChecked());
    QCOMPARE(f.Combo(1)->currentIndex(), band);
    const int stored = band == 0 ? f.Freq()->BQRG40 : band == 1 ? f.Freq()->BQRG80 : f.Freq()->BQRG30;
    QCOMPARE(stored, hz);
}

void TestFrequenz::frequencyOutsideAllBandsChangesOnlyTheLabel() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    QTRY_COMPARE(f.FText(10)->text(), QStringLiteral("050"));
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("21074000")}));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("21.074.000"));
    QCOMPARE(f.FText(10)->text(), QStringLiteral("050"));
    QCOMPARE(f.Freq()->BQRG40, 7050000);
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
    f.Type(QStringLiteral("OE1ABC"), 0, QStringLiteral("WI"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 7050.0f);
}

void TestFrequenz::rig2EventIgnoredWhileRigNumberIs1() {
    RigFixture f;
    rig::WriteRigConfig(f.home.model.IniPath, 2, {kModelDummy, {}, 0});
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("7.050.000"));
    std::shared_ptr<RigEngine> engine = LiveEngine();
    QVERIFY(engine);
    QTRY_COMPARE_WITH_TIMEOUT(engine->Rig2()->Status(), int(ST_ONLINE), 3000);
    QSignalSpy rig2(engine.get(), &RigEngine::ParamsChange);
    engine->Rig2()->SetFreq(3700000);
    QTRY_COMPARE(engine->Rig2()->Freq(), 3700000);
    auto fromRig2 = [&rig2] {
        int n = 0;
        for (const QList<QVariant>& p : rig2)
            n += p.at(0).toInt() == 2 ? 1 : 0;
        return n;
    };
    QTRY_VERIFY(fromRig2() > 0);
    QCOMPARE(f.Freq()->RigNumber(), 1);
    QCOMPARE(f.FLabel(1)->text(), QStringLiteral("7.050.000"));
    QCOMPARE(f.FText(11)->text(), QStringLiteral("500"));
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
}

void TestFrequenz::usbOnFortyStaysUntilSetModeOrFreqAlt() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("LSB"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    QCOMPARE(f.Combo(2)->currentIndex(), 0);
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
    QTest::qWait(700); // some polls: nothing rewrites the sideband
    QCOMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
    QCOMPARE(f.Combo(2)->currentIndex(), 0);
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
    // SetMode does rewrite it.
    f.Freq()->SetMode(0);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("LSB"));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("LSB"));
}

void TestFrequenz::blinkingStopsAfter40TicksInItsColour() {
    RigFixture f;
    rig::WriteRigConfig(f.home.model.IniPath, 1,
                        {kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()), 0});
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    QTRY_COMPARE(f.FLabel(3)->text(), QStringLiteral("OFFLINE"));
    Frequenz* w = f.Freq();
    QVERIFY(w->Timer1().isActive());
    w->Timer1().stop(); // ticks by hand
    w->Timer1().start();
    for (int i = 0; i < 39; ++i)
        w->Timer1Tick();
    const QColor at39 = f.FLabel(3)->palette().color(QPalette::WindowText);
    w->Timer1Tick();
    QCOMPARE(w->BlinkCount(), 40);
    const QColor at40 = f.FLabel(3)->palette().color(QPalette::WindowText);
    QVERIFY(at39 != at40);
    w->Timer1Tick();
    QVERIFY(!w->Timer1().isActive());
    QCOMPARE(w->BlinkCount(), 40);
    QCOMPARE(f.FLabel(3)->palette().color(QPalette::WindowText), at40);
    // 40 toggles from red end in red.
    QCOMPARE(at40, QColor(255, 0, 0));
}

void TestFrequenz::emptyKilohertzFieldLogsTheMegahertzDigit() {
    RigFixture f;
    QVERIFY(f.StartRig()); // no rig configured
    QVERIFY(f.OpenFrequenz(false));
    f.FText(10)->clear();
    f.Type(QStringLiteral("OE1ABC"), 0, QStringLiteral("WI"));
    QCOMPARE(int(f.home.model.LogRecords.size()), 1);
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 7.0f);
}

void TestFrequenz::loggedFrequencyFollowsTheRig() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3612345")}));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
    QTRY_COMPARE(f.FText(11)->text(), QStringLiteral("612"));
    f.Type(QStringLiteral("OE3XYZ"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3612.0f);
    QVERIFY(f.FileBytes().contains("3612"));
}

void TestFrequenz::typedFieldIsLogged() {
    RigFixture f;
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    f.FText(11)->clear();
    QTest::keyClicks(f.FText(11), QStringLiteral("625"));
    f.Type(QStringLiteral("OE6ABC"), 1, QStringLiteral("GZ"));
    QCOMPARE(int(f.home.model.LogRecords.size()), 1);
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3625.0f);
    QCOMPARE(f.Freq()->LoggedFrequency(2), std::optional<float>(10100.0f));
}

void TestFrequenz::modeFromRigSetsModeBoxAndReports() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7020000")));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    QTRY_COMPARE(f.Combo(2)->currentIndex(), 1);
    QCOMPARE(f.FLabel(2)->text(), QStringLiteral("CW"));
    QCOMPARE(f.Text(4)->text(), QStringLiteral("599"));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("AM"), QStringLiteral("0")}));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("AM"));
    QCOMPARE(f.Combo(2)->currentIndex(), 1); // unchanged
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("PKTLSB"), QStringLiteral("0")}));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("Digital_L"));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("RTTY"), QStringLiteral("0")}));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("Other"));
}

void TestFrequenz::mainBandBoxMovesRigOnceWithoutEcho() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    QTRY_COMPARE(f.Freq()->BQRG40, 7050000);
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 0);
    std::shared_ptr<RigEngine> engine = LiveEngine();
    QSignalSpy params(engine.get(), &RigEngine::ParamsChange);
    // The operator picks 80 m in the main window's band box.
    f.Combo(1)->setFocus();
    QTest::keyClick(f.Combo(1), Qt::Key_Down);
    QCOMPARE(f.Combo(1)->currentIndex(), 1);
    QVERIFY(f.FOption(1)->isChecked());
    QVERIFY(!f.Freq()->GuardOn());
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3500000"));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("3.500.000"));
    QTest::qWait(800);
    // One move: a single frequency change reached the window, and the boxes stay.
    int freqChanges = 0;
    for (const QList<QVariant>& p : params)
        if (p.at(1).toInt() & PM_FREQ) ++freqChanges;
    QCOMPARE(freqChanges, 1);
    QCOMPARE(f.Combo(1)->currentIndex(), 1);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3500000"));
}

void TestFrequenz::rigBandChangeMovesMainBandBox() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 0);
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("10120000")}));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 2);
    QVERIFY(f.FOption(2)->isChecked());
    QCOMPARE(f.FText(9)->text(), QStringLiteral("120"));
    QTest::qWait(600);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("10120000"));
}

void TestFrequenz::modeBoxWritesRigMode() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("LSB"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    f.Combo(2)->setFocus();
    QTest::keyClick(f.Combo(2), Qt::Key_Down); // CW
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("CW"));
    QTest::keyClick(f.Combo(2), Qt::Key_Up); // phone on 40 m: lower sideband
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("LSB"));
}

void TestFrequenz::freqAltSetsLowerSidebandOnFortyAndUpperOnThirty() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("14200000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
    f.Freq()->FreqALT(0, 0);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("LSB"));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7000000"));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("LSB"));
    f.Freq()->FreqALT(2, 0);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("10100000"));
    // CW row leaves the mode alone.
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
    f.Freq()->FreqALT(1, 1);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3500000"));
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
}

void TestFrequenz::kilohertzFieldKeyFilter() {
    RigFixture f;
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    f.FText(10)->clear();
    QTest::keyClicks(f.FText(10), QStringLiteral("a1.b2-3"));
    QCOMPARE(f.FText(10)->text(), QStringLiteral("123"));
    QTest::keyClick(f.FText(10), Qt::Key_Backspace);
    QCOMPARE(f.FText(10)->text(), QStringLiteral("12"));
    QCOMPARE(f.Freq()->BQRG40, 7000000); // typing changes the field only
    QVERIFY(FrequencyKeyPasses(QString(QChar(24))));
    QVERIFY(FrequencyKeyPasses(QString(QChar(3))));
    QVERIFY(!FrequencyKeyPasses(QString(QChar(22))));
    QVERIFY(!FrequencyKeyPasses(QStringLiteral("\r")));
}

void TestFrequenz::kilohertzFieldFocusSelectsItsBand() {
    RigFixture f;
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
    f.Freq()->activateWindow();
    f.FText(11)->setFocus(Qt::MouseFocusReason);
    QTRY_VERIFY(f.FOption(1)->isChecked());
    QCOMPARE(f.Combo(1)->currentIndex(), 1);
}

void TestFrequenz::closingAsksAndNoKeepsItOpen() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    f.dialogs.AnswerMsgBox(Msg::No);
    f.Menu("MnFrequenz")->trigger();
    QVERIFY(f.dialogs.LastBox());
    QCOMPARE(f.dialogs.LastBox()->text,
             QStringLiteral("Wenn dieses Fenster geschlossen wird, kann die aktuelle QRG nicht mehr aus dem "
                            "Transceiver ausgelesen werden.Es wird somit nur die Default-QRG ins Log "
                            "geschrieben!\r\n\r\nSoll das Fenster trotzdem geschlossen werden?"));
    QCOMPARE(f.dialogs.LastBox()->flags, 64 + 3);
    QVERIFY(f.home.model.Open.Frequenz);
    QVERIFY(f.Menu("MnFrequenz")->isChecked());
    f.dialogs.AnswerMsgBox(Msg::Cancel);
    f.Freq()->close();
    QVERIFY(f.home.model.Open.Frequenz);
}

void TestFrequenz::closingYesSavesFrequencies() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("3650000")));
    QTRY_COMPARE(f.Freq()->BQRG80, 3650000);
    f.dialogs.AnswerMsgBox(Msg::Yes);
    f.Menu("MnFrequenz")->trigger();
    QVERIFY(!f.home.model.Open.Frequenz);
    QVERIFY(!f.Menu("MnFrequenz")->isChecked());
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Frequenz"), QStringLiteral("BQRG80")),
             QStringLiteral("3650000"));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Frequenz"), QStringLiteral("BQRG40")),
             QStringLiteral("7000000"));
    // Closed: the band default again.
    f.Type(QStringLiteral("OE3XYZ"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3500.0f);
}

void TestFrequenz::programEndTagsOneAndReopensAtNextStart() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7090000")));
    QTRY_COMPARE(f.Freq()->BQRG40, 7090000);
    f.dialogs.Clear();
    f.window->close();
    QCOMPARE(f.dialogs.boxes.size(), 0);
    QCOMPARE(
        IniReadString(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("FrequenzForm")),
        QStringLiteral("-1"));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Frequenz"), QStringLiteral("BQRG40")),
             QStringLiteral("7090000"));
    f.window.reset();
    QVERIFY(!f.home.model.Open.Frequenz);
    f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
    rig::InstallRig(*f.window, f.home.model, f.dialogs, f.clock);
    QVERIFY(f.window->Load());
    QVERIFY(f.Freq());
    QVERIFY(f.home.model.Open.Frequenz);
    QVERIFY(f.Menu("MnFrequenz")->isChecked());
    QCOMPARE(f.FText(10)->text(), QStringLiteral("090"));
}

void TestFrequenz::storedFrequenciesFillFieldsAtLoad() {
    RigFixture f;
    f.Ini(QStringLiteral("Frequenz"), QStringLiteral("BQRG40"), QStringLiteral("7123456"));
    f.Ini(QStringLiteral("Frequenz"), QStringLiteral("BQRG80"), QStringLiteral("0"));
    f.Ini(QStringLiteral("Frequenz"), QStringLiteral("BQRG30"), QStringLiteral("10140000"));
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    QCOMPARE(f.Freq()->BQRG40, 7123456);
    QCOMPARE(f.Freq()->BQRG80, 3500000);
    QCOMPARE(f.FText(10)->text(), QStringLiteral("123"));
    QCOMPARE(f.FText(11)->text(), QStringLiteral("500"));
    QCOMPARE(f.FText(9)->text(), QStringLiteral("140"));
    QCOMPARE(f.Freq()->windowTitle(), QStringLiteral("Frequenzen/Bänder"));
}

void TestFrequenz::withoutRigItIsAPlainForm() {
    RigFixture f;
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    QVERIFY(!f.Freq()->RigInUse());
    QVERIFY(!f.Freq()->findChild<QWidget*>(QStringLiteral("Picture2"))->isVisible());
    f.Freq()->FreqALT(0, 0); // nothing to do
    f.Freq()->SetMode(1);
    f.dialogs.Clear();
    f.Menu("MnFrequenz")->trigger();
    QCOMPARE(f.dialogs.boxes.size(), 0);
    QVERIFY(!f.home.model.Open.Frequenz);
}

void TestFrequenz::offlineRigShowsOfflineAndBeeps() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QCOMPARE(f.FLabel(3)->toolTip(), QStringLiteral("Verbindung zu Transceiver hergestellt!"));
    const int beeps = f.dialogs.beeps;
    f.daemon.Kill();
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("OFFLINE"), 2000);
    QCOMPARE(f.FLabel(3)->toolTip(), QStringLiteral("Verbindung zu Transceiver unterbrochen!"));
    QVERIFY(f.dialogs.beeps > beeps);
    QVERIFY(f.Freq()->Timer1().isActive());
}

void TestFrequenz::modeBoxMovesRigOnlyWhileRigPanelShown() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("LSB"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("LSB"));
    QVERIFY(f.Freq()->Picture2Visible());
    f.Freq()->findChild<QWidget*>(QStringLiteral("Picture2"))->hide();
    f.Combo(2)->setFocus();
    QTest::keyClick(f.Combo(2), Qt::Key_Down); // CW in the main window
    QCOMPARE(f.Combo(2)->currentIndex(), 1);
    // A write queued after the mode box's turn: once the rig has it, a mode write
    // queued before would have arrived too.
    f.Freq()->FreqALT(1, 1);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3500000"));
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("LSB"));
    // Shown again, the panel lets the mode box move the rig.
    f.Freq()->findChild<QWidget*>(QStringLiteral("Picture2"))->show();
    QTRY_COMPARE(f.Combo(2)->currentIndex(), 0); // the rig's LSB came back as phone
    f.Combo(2)->setFocus();
    QTest::keyClick(f.Combo(2), Qt::Key_Down);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("CW"));
}

void TestFrequenz::plainFormGoesOnlineWhenRigIsSetUpLater() {
    RigFixture f;
    QVERIFY(f.StartRig()); // no rig set up yet
    QVERIFY(f.OpenFrequenz(false));
    QVERIFY(!f.Freq()->RigInUse());
    QVERIFY(!f.Freq()->Picture2Visible());
    auto* command1 = f.Freq()->findChild<QPushButton*>(QStringLiteral("Command1"));
    QVERIFY(command1);
    QVERIFY(command1->isVisible());
    QCOMPARE(command1->text(), QStringLiteral("Omnirig Konfigurieren"));
    QVERIFY(f.daemon.Start());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3612000")}));
    // The operator sets the rig up in the settings window behind the button.
    int opened = 0;
    RigEngine::DialogOpener() = [&] {
        ++opened;
        RigEinstellungen w(f.home.model, f.dialogs, f.Freq());
        w.show();
        QTest::keyClicks(w.findChild<QLineEdit*>(QStringLiteral("TextNetz")), f.daemon.Address());
        QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("CommandOK")), Qt::LeftButton);
    };
    QTest::mouseClick(command1, Qt::LeftButton);
    RigEngine::DialogOpener() = nullptr;
    QCOMPARE(opened, 1);
    // The same window, now with its rig.
    QVERIFY(f.Freq()->RigInUse());
    QVERIFY(f.Freq()->Picture2Visible());
    QCOMPARE(command1->parentWidget()->objectName(), QStringLiteral("Picture2"));
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("ONLINE"), 5000);
    QTRY_COMPARE(f.FText(11)->text(), QStringLiteral("612"));
    QCOMPARE(f.Combo(1)->currentIndex(), 1); // the main window's band followed the rig
    f.Combo(1)->setFocus();
    QTest::keyClick(f.Combo(1), Qt::Key_Up); // 40 m: the rig follows
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7000000"));
    // Closing now asks, as for any window with a rig.
    f.dialogs.AnswerMsgBox(Msg::No);
    f.Menu("MnFrequenz")->trigger();
    QVERIFY(f.home.model.Open.Frequenz);
    QCOMPARE(f.dialogs.boxes.size(), 1);
}

void TestFrequenz::openingTunesTheRigToTheOperatorsBand() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    // The rig is on 80 m; the operator works 40 m.
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3700000")}));
    IniWrite(f.home.model.IniPath, QStringLiteral("Frequenz"), QStringLiteral("BQRG40"), 7012000);
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
    QSignalSpy bandMoves(f.Combo(1), &QComboBox::currentIndexChanged);
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7012000"));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("7.012.000"));
    QTest::qWait(500);
    // The rig's old band never reached the main window.
    QCOMPARE(bandMoves.count(), 0);
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
    QCOMPARE(f.FText(11)->text(), QStringLiteral("500"));
    QCOMPARE(f.Freq()->BQRG80, 3500000);
}

void TestFrequenz::openingBeforeTheRigAnswersTunesItWhenItDoes() {
    RigFixture f;
    // The daemon comes up only after the window opened.
    WriteRigConfig(f.home.model.IniPath, 1, {kModelNetRigctl, f.daemon.Address(), 0});
    QVERIFY(f.StartRig());
    QSignalSpy bandMoves(f.Combo(1), &QComboBox::currentIndexChanged);
    QVERIFY(f.OpenFrequenz(false));
    QCOMPARE(f.FLabel(3)->text(), QStringLiteral("OFFLINE"));
    QVERIFY(f.daemon.Start());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3700000")}));
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("ONLINE"), 5000);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7000000"));
    QTest::qWait(500);
    QCOMPARE(bandMoves.count(), 0);
    QCOMPARE(f.Combo(1)->currentIndex(), 0);
}

void TestFrequenz::modeLabelNeverOtherWhileOffline() {
    {
        RigFixture f;
        WriteRigConfig(f.home.model.IniPath, 1,
                       {kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()), 0});
        QVERIFY(f.StartRig());
        QVERIFY(f.OpenFrequenz(false));
        QTest::qWait(600);
        QCOMPARE(f.FLabel(3)->text(), QStringLiteral("OFFLINE"));
        QVERIFY(f.FLabel(2)->text() != QLatin1String("Other"));
    }
    // Online in USB, then the rig goes away: the label keeps what was read.
    RigFixture g;
    QVERIFY(g.StartWithDaemon());
    QVERIFY(g.OpenFrequenz());
    QVERIFY(g.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    QTRY_COMPARE(g.FLabel(2)->text(), QStringLiteral("USB"));
    g.daemon.Kill();
    QTRY_COMPARE_WITH_TIMEOUT(g.FLabel(3)->text(), QStringLiteral("OFFLINE"), 3000);
    QTest::qWait(600);
    QCOMPARE(g.FLabel(2)->text(), QStringLiteral("USB"));
}

void TestFrequenz::rigModeTakenForTheLogWithoutWritingBack() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7000000"));
    // CW reversed at the rig: the log takes CW, the rig stays in CWR.
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("CWR"), QStringLiteral("0")}));
    QTRY_COMPARE(f.Combo(2)->currentIndex(), 1);
    QTest::qWait(600);
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("CWR"));
    // USB on 40 m: the log takes phone, the rig stays in USB.
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    QTRY_COMPARE(f.Combo(2)->currentIndex(), 0);
    QCOMPARE(f.Text(4)->text(), QStringLiteral("59"));
    QTest::qWait(600);
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
    QCOMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
}

void TestFrequenz::readOnlyNeverWritesFrequencyOrMode() {
    RigFixture f;
    QVERIFY(f.daemon.Start());
    RigConfig c{kModelNetRigctl, f.daemon.Address(), 0};
    c.readOnly = true;
    WriteRigConfig(f.home.model.IniPath, 1, c);
    QVERIFY(f.StartRig());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3700000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    QVERIFY(f.OpenFrequenz());
    // The log follows the rig, the rig is never told anything.
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
    QTRY_COMPARE(f.Combo(2)->currentIndex(), 1);
    f.Combo(1)->setFocus();
    QTest::keyClick(f.Combo(1), Qt::Key_Up); // 40 m
    f.Combo(2)->setFocus();
    QTest::keyClick(f.Combo(2), Qt::Key_Up); // phone
    QTest::qWait(600);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3700000"));
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("CW"));
}

void TestFrequenz::offlineSaysWhyAndSinceWhenAndFrequencyIsStale() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("7.000.000"));
    QCOMPARE(f.FLabel(1)->property("veraltet").toBool(), false);
    auto* grund = f.Freq()->findChild<QLabel*>(QStringLiteral("LabelGrund"));
    QVERIFY(!grund->isVisible());
    f.daemon.Kill();
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("OFFLINE"), 3000);
    QTRY_VERIFY(grund->text().contains(QStringLiteral("abgelehnt")) ||
                grund->text().contains(QStringLiteral("Keine Antwort")));
    QVERIFY(grund->isVisible());
    QVERIFY(QRegularExpression(QStringLiteral("\\(seit \\d\\d:\\d\\d:\\d\\d UTC\\)$"))
                .match(grund->text())
                .hasMatch());
    QCOMPARE(f.FLabel(1)->property("veraltet").toBool(), true);
    QVERIFY(f.FLabel(1)->toolTip().contains(QStringLiteral("veraltet")));
    QVERIFY(f.FLabel(1)->palette().color(QPalette::WindowText) == QColor(128, 128, 128));
    // Back online: live again.
    Rigctld again(f.daemon.Port());
    QVERIFY(again.Start());
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("ONLINE"), 5000);
    QCOMPARE(f.FLabel(1)->property("veraltet").toBool(), false);
    QVERIFY(!grund->isVisible());
}

void TestFrequenz::offlineReasonPortMissing() {
    RigFixture f;
    WriteRigConfig(f.home.model.IniPath, 1, {3073, QStringLiteral("/dev/ttyKOLIBRINO_FEHLT"), 0});
    QVERIFY(f.StartRig());
    QVERIFY(f.OpenFrequenz(false));
    auto* grund = f.Freq()->findChild<QLabel*>(QStringLiteral("LabelGrund"));
    QTRY_VERIFY(grund->text().contains(QStringLiteral("Schnittstelle /dev/ttyKOLIBRINO_FEHLT fehlt")));
}

void TestFrequenz::switchingToDeadRigLeavesNoOldValue() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("7.050.000"));
    QTRY_COMPARE(f.FLabel(2)->text(), QStringLiteral("USB"));
    // The operator switches to a rig that does not answer, in the settings window.
    RigEinstellungen w(f.home.model, f.dialogs, f.window.get());
    w.show();
    w.findChild<QLineEdit*>(QStringLiteral("TextNetz"))->clear();
    QTest::keyClicks(w.findChild<QLineEdit*>(QStringLiteral("TextNetz")),
                     QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()));
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("CommandOK")), Qt::LeftButton);
    QCOMPARE(f.FLabel(1)->text(), QStringLiteral("0.000.000"));
    QCOMPARE(f.FLabel(2)->text(), QString());
    QTRY_COMPARE_WITH_TIMEOUT(f.FLabel(3)->text(), QStringLiteral("OFFLINE"), 3000);
    QTest::qWait(300);
    QCOMPARE(f.FLabel(1)->text(), QStringLiteral("0.000.000"));
    QCOMPARE(f.FLabel(2)->text(), QString());
}

QTEST_MAIN(TestFrequenz)
#include "tst_frequenz.moc"
