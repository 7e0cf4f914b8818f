// The transceiver panel with a real rigctld behind it: band keys and their memory,
// mode and step choices, up and down, direct entry, split and PTT, what the rig cannot
// write, the status text, and the question when there is no rig.
#include "rig/transceiver.h"
#include "rig_window_support.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QPushButton>
#include <QtTest>
#include <csignal>
#include <sys/wait.h>

using namespace kolibrino;
using namespace kolibrino::rig;
using namespace kolibrino::test;

class TestTransceiver : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void digitalUpperSelectsRow4AndUnknownModeRow8();
    void tenMetreLimitAndBelow160();
    void stored160OutsideBandReplacedAtLoadModeRowKept();
    void steppingUp100MHzFrom7050000();
    void enterWithEmptyText1ShowsMessageAndClosesFrame();
    void withoutRigClosesAfterQuestionWhateverAnswered_data();
    void withoutRigClosesAfterQuestionWhateverAnswered();
    void bandKeyWritesMemoryFrequencyAndMode();
    void bandMemoryFollowsRigAndIsSaved();
    void modeChoiceWritesModeAndColours();
    void stepChoiceStoredAndStepsDown();
    void directEntrySendsFrequency();
    void directEntryKeyFilterAndEscape();
    void splitAndPttWriteTheRig();
    void unwritableModesDisabled();
    void statusTextAndCaptions();
    void panelBandKeyReachesFrequencyWindow();
    void pttBoxShowsTheRigsTransmitState();
    void refusedPttLeavesBoxOffWithGermanReason();
    void closingPanelReleasesPtt();
    void programEndReleasesPtt();
    void switchingRigReleasesPtt();
    void pttReleasedWhenRigAnswersAgainAfterOffline();
    void crashSignalReleasesPtt();
    void disabledKeysLookDisabled();
    void splitAndPttToggleOnTheWholeBar();
    void offlineSaysWhyAndSinceWhen();
    void switchingToDeadRigLeavesNoOldValue();
    void readOnlyRigDisablesFrequencyAndModeKeys();

private:
    static Transceiver* Open(RigFixture& f, bool waitOnline = true);
};

Transceiver* TestTransceiver::Open(RigFixture& f, bool waitOnline) {
    f.Menu("MnTransceiver")->trigger();
    auto* t = f.window->findChild<Transceiver*>(QStringLiteral("Transceiver"));
    if (t && waitOnline) {
        QLabel* l8 = t->findChild<QLabel*>(QStringLiteral("Label8"));
        QElapsedTimer c;
        c.start();
        while (c.elapsed() < 5000 && l8->text() != QLatin1String("Online"))
            QTest::qWait(20);
        QTest::qWait(50);
    }
    return t;
}

namespace {
template <class W> W* Get(QWidget* w, const QString& name) {
    return w->findChild<W*>(name);
}
QPushButton* Btn(QWidget* w, const QString& name) {
    return Get<QPushButton>(w, name);
}
} // namespace

void TestTransceiver::digitalUpperSelectsRow4AndUnknownModeRow8() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QVERIFY(t);
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("PKTUSB"), QStringLiteral("0")}));
    QTRY_COMPARE(t->ModeRow(), 4);
    QVERIFY(Btn(t, QStringLiteral("Option1_4"))
                ->styleSheet()
                .contains(QStringLiteral("color: #000000; background-color: #FFFF00;")));
    QVERIFY(Btn(t, QStringLiteral("Option1_0"))
                ->styleSheet()
                .contains(QStringLiteral("color: #FFFF00; background-color: #000000;")));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("RTTY"), QStringLiteral("0")}));
    QTRY_COMPARE(t->ModeRow(), 8);
}

void TestTransceiver::tenMetreLimitAndBelow160() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("29700000")}));
    QTRY_COMPARE(t->BandMem[8].freq, 29700000);
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("29700001")}));
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("29.700.001"));
    QCOMPARE(t->BandMem[8].freq, 29700000);
    QCOMPARE(PanelBandOf(29700001), -1);
    const auto before = t->BandMem;
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("1809999")}));
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("1.809.999"));
    for (int i = 0; i < kPanelBandCount; ++i)
        QCOMPARE(t->BandMem[size_t(i)].freq, before[size_t(i)].freq);
}

void TestTransceiver::stored160OutsideBandReplacedAtLoadModeRowKept() {
    RigFixture f;
    f.Ini(QStringLiteral("Transceiver"), QStringLiteral("160BQRG"), QStringLiteral("7000000"));
    f.Ini(QStringLiteral("Transceiver"), QStringLiteral("160BMode"), QStringLiteral("3"));
    f.Ini(QStringLiteral("Transceiver"), QStringLiteral("20BQRG"), QStringLiteral("14250000"));
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    QCOMPARE(t->BandMem[0].freq, 1810000);
    QCOMPARE(t->BandMem[0].modeRow, 3);
    QCOMPARE(t->BandMem[4].freq, 14250000);
    QCOMPARE(t->BandMem[11].freq, 430000000); // missing: the lowest
}

void TestTransceiver::steppingUp100MHzFrom7050000() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("7.050.000"));
    QTest::mouseClick(Btn(t, QStringLiteral("Option2_8")), Qt::LeftButton);
    QTest::mouseClick(Btn(t, QStringLiteral("Command2")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("107050000"));
}

void TestTransceiver::enterWithEmptyText1ShowsMessageAndClosesFrame() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    t->LabelTXClick();
    auto* frame = Get<QGroupBox>(t, QStringLiteral("Frame1"));
    QVERIFY(frame->isVisible());
    QLineEdit* text1 = Get<QLineEdit>(t, QStringLiteral("Text1"));
    text1->clear();
    QTest::keyClick(text1, Qt::Key_Return);
    QVERIFY(f.dialogs.LastBox());
    QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Ungültige Ferquenz eingegeben!"));
    QCOMPARE(f.dialogs.LastBox()->flags, 16);
    QVERIFY(!frame->isVisible());
    QVERIFY(Get<QWidget>(t, QStringLiteral("Picture4"))->isEnabled());
    QTest::qWait(400);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7050000"));
}

void TestTransceiver::withoutRigClosesAfterQuestionWhateverAnswered_data() {
    QTest::addColumn<int>("answer");
    QTest::newRow("Ja") << int(Msg::Yes);
    QTest::newRow("Nein") << int(Msg::No);
    QTest::newRow("Abbrechen") << int(Msg::Cancel);
}

void TestTransceiver::withoutRigClosesAfterQuestionWhateverAnswered() {
    QFETCH(int, answer);
    RigFixture f;
    QVERIFY(f.StartRig());
    int settings = 0;
    RigEngine::DialogOpener() = nullptr;
    f.dialogs.AnswerMsgBox(answer);
    // The settings window would be modal; count its opening instead.
    f.dialogs.onMsgBox = [&](const ShownBox&) {
        if (auto* t = f.window->findChild<Transceiver*>(QStringLiteral("Transceiver")))
            t->openSettings = [&settings] { ++settings; };
    };
    f.Menu("MnTransceiver")->trigger();
    QVERIFY(f.dialogs.LastBox());
    QVERIFY(f.dialogs.LastBox()->text.endsWith(
        QStringLiteral("Möchtest du jetzt die Transceiver-Einstellungen öffnen?")));
    QCOMPARE(f.dialogs.LastBox()->flags, 64 + 3);
    QCOMPARE(settings, answer == Msg::Yes ? 1 : 0);
    QVERIFY(!f.home.model.Open.Transceiver);
    QVERIFY(!f.Menu("MnTransceiver")->isChecked());
    QTRY_VERIFY(!f.window->findChild<Transceiver*>(QStringLiteral("Transceiver")));
}

void TestTransceiver::bandKeyWritesMemoryFrequencyAndMode() {
    RigFixture f;
    f.Ini(QStringLiteral("Transceiver"), QStringLiteral("20BQRG"), QStringLiteral("14250000"));
    f.Ini(QStringLiteral("Transceiver"), QStringLiteral("20BMode"), QStringLiteral("2"));
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QCOMPARE(Btn(t, QStringLiteral("Command5_4"))->toolTip(), QStringLiteral("20 m"));
    QCOMPARE(Btn(t, QStringLiteral("Command5_11"))->toolTip(), QStringLiteral("70 cm"));
    QTest::mouseClick(Btn(t, QStringLiteral("Command5_4")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("14250000"));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
    // Row 8 writes no mode.
    t->BandMem[6] = {21100000, 8};
    QTest::mouseClick(Btn(t, QStringLiteral("Command5_6")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("21100000"));
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("USB"));
}

void TestTransceiver::bandMemoryFollowsRigAndIsSaved() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("18100000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("CW"), QStringLiteral("0")}));
    QTRY_COMPARE(t->BandMem[5].freq, 18100000);
    QTRY_COMPARE(t->BandMem[5].modeRow, 0);
    f.Menu("MnTransceiver")->trigger();
    QVERIFY(!f.home.model.Open.Transceiver);
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Transceiver"), QStringLiteral("17BQRG")),
             QStringLiteral("18100000"));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Transceiver"), QStringLiteral("17BMode")),
             QStringLiteral("0"));
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Transceiver"), QStringLiteral("70BQRG")),
             QStringLiteral("430000000"));
}

void TestTransceiver::modeChoiceWritesModeAndColours() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QTest::mouseClick(Btn(t, QStringLiteral("Option1_1")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("CWR"));
    QVERIFY(Btn(t, QStringLiteral("Option1_1"))
                ->styleSheet()
                .contains(QStringLiteral("color: #000000; background-color: #FFFF00;")));
    QTest::mouseClick(Btn(t, QStringLiteral("Option1_7")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("FM"));
    QTest::mouseClick(Btn(t, QStringLiteral("Option1_8")), Qt::LeftButton); // never written
    QTest::qWait(400);
    QCOMPARE(f.daemon.Get(QStringLiteral("m")), QStringLiteral("FM"));
}

void TestTransceiver::stepChoiceStoredAndStepsDown() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("7.050.000"));
    QTest::mouseClick(Btn(t, QStringLiteral("Option2_3")), Qt::LeftButton);
    QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Transceiver"), QStringLiteral("Step")),
             QStringLiteral("3"));
    QTest::mouseClick(Btn(t, QStringLiteral("Command3")), Qt::LeftButton);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7049000"));
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("7.049.000"));
    f.Menu("MnTransceiver")->trigger();
    QTRY_VERIFY(!f.window->findChild<Transceiver*>(QStringLiteral("Transceiver")));
    Transceiver* again = Open(f);
    QCOMPARE(again->StepRow(), 3);
}

void TestTransceiver::directEntrySendsFrequency() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("7.050.000"));
    QTest::mouseClick(Get<QLabel>(t, QStringLiteral("LabelTX")), Qt::LeftButton);
    QLineEdit* text1 = Get<QLineEdit>(t, QStringLiteral("Text1"));
    QCOMPARE(text1->text(), QStringLiteral("7050000"));
    QCOMPARE(text1->selectedText(), QStringLiteral("7050000"));
    QVERIFY(!Get<QWidget>(t, QStringLiteral("Picture4"))->isEnabled());
    QTest::keyClicks(text1, QStringLiteral("3555000"));
    QTest::keyClick(text1, Qt::Key_Return);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("3555000"));
    // The frequency window, if open, would follow; the panel's label does.
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("3.555.000"));
}

void TestTransceiver::directEntryKeyFilterAndEscape() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    t->LabelTXClick();
    QLineEdit* text1 = Get<QLineEdit>(t, QStringLiteral("Text1"));
    text1->clear();
    QTest::keyClicks(text1, QStringLiteral("7a0.5,0k"));
    QCOMPARE(text1->text(), QStringLiteral("7050"));
    QTest::keyClick(text1, Qt::Key_Escape);
    QVERIFY(!Get<QGroupBox>(t, QStringLiteral("Frame1"))->isVisible());
    t->LabelTXClick();
    QTest::mouseClick(Btn(t, QStringLiteral("Command4")), Qt::LeftButton);
    QVERIFY(!Get<QGroupBox>(t, QStringLiteral("Frame1"))->isVisible());
    QTest::qWait(400);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7050000"));
}

void TestTransceiver::splitAndPttWriteTheRig() {
    RigFixture f;
    WriteRigConfig(f.home.model.IniPath, 1, {kModelDummy, {}, 0});
    QVERIFY(f.StartRig());
    Transceiver* t = Open(f);
    auto* check1 = Get<QCheckBox>(t, QStringLiteral("Check1"));
    auto* check2 = Get<QCheckBox>(t, QStringLiteral("Check2"));
    QTRY_VERIFY(check1->isEnabled());
    QVERIFY(check2->isEnabled());
    std::shared_ptr<RigEngine> engine = LiveEngine();
    QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(6, check1->height() / 2));
    QVERIFY(check1->isChecked());
    QTRY_COMPARE(engine->Rig1()->Split(), int(PM_SPLITON));
    QVERIFY(check1->styleSheet().contains(QStringLiteral("color: #000000; background-color: #FFFF00;")));
    QTest::mouseClick(check2, Qt::LeftButton, {}, QPoint(6, check2->height() / 2));
    QTRY_COMPARE(engine->Rig1()->Tx(), int(PM_TX));
    QVERIFY(check2->styleSheet().contains(QStringLiteral("color: #000000; background-color: #FF0000;")));
    QTest::mouseClick(check2, Qt::LeftButton, {}, QPoint(6, check2->height() / 2));
    QTRY_COMPARE(engine->Rig1()->Tx(), int(PM_RX));
    QVERIFY(check2->styleSheet().contains(QStringLiteral("color: #FFFF00; background-color: #000000;")));
    QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(6, check1->height() / 2));
    QTRY_COMPARE(engine->Rig1()->Split(), int(PM_SPLITOFF));
    QVERIFY(!check1->isChecked());
}

void TestTransceiver::unwritableModesDisabled() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QTRY_VERIFY(Btn(t, QStringLiteral("Option1_0"))->isEnabled());
    std::shared_ptr<RigEngine> engine = LiveEngine();
    for (int row = 0; row < 8; ++row)
        QCOMPARE(Btn(t, QStringLiteral("Option1_%1").arg(row))->isEnabled(),
                 engine->Rig1()->IsParamWriteable(PanelModeOfRow(row)));
    QCOMPARE(Get<QCheckBox>(t, QStringLiteral("Check2"))->isEnabled(),
             engine->Rig1()->IsParamWriteable(PM_TX));
}

void TestTransceiver::statusTextAndCaptions() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QCOMPARE(t->windowTitle(), QStringLiteral("Transceiver Steuerung"));
    QCOMPARE(Get<QLabel>(t, QStringLiteral("Label8"))->text(), QStringLiteral("Online"));
    QCOMPARE(Get<QLabel>(t, QStringLiteral("Label8"))->toolTip(), QStringLiteral("OmniRig Status"));
    QCOMPARE(Btn(t, QStringLiteral("Option2_4"))->text(), QStringLiteral("10 kHz"));
    QCOMPARE(Btn(t, QStringLiteral("Option1_5"))->text(), QStringLiteral("DIG-L"));
    f.daemon.Kill();
    QTRY_VERIFY_WITH_TIMEOUT(Get<QLabel>(t, QStringLiteral("Label8"))
                                 ->text()
                                 .startsWith(QStringLiteral("Transceiver antwortet nicht")),
                             2000);
}

void TestTransceiver::panelBandKeyReachesFrequencyWindow() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
    Transceiver* t = Open(f);
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 0);
    t->BandMem[1] = {3720000, 3};
    QTest::mouseClick(Btn(t, QStringLiteral("Command5_1")), Qt::LeftButton);
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
    QTRY_COMPARE(f.FText(11)->text(), QStringLiteral("720"));
    f.Type(QStringLiteral("OE3XYZ"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.back().Frequenz, 3720.0f);
}

namespace {
QCheckBox* Ptt(Transceiver* t) {
    return Get<QCheckBox>(t, QStringLiteral("Check2"));
}
void ClickBar(QCheckBox* c) {
    QTest::mouseClick(c, Qt::LeftButton, {}, QPoint(6, c->height() / 2));
}
// Rig 1 at a rigctld whose dummy takes PTT (-P RIG), panel open and online.
Transceiver* OpenWithPttDaemon(RigFixture& f) {
    if (!f.daemon.Start({QStringLiteral("-P"), QStringLiteral("RIG")})) return nullptr;
    WriteRigConfig(f.home.model.IniPath, 1, {kModelNetRigctl, f.daemon.Address(), 0});
    if (!f.StartRig()) return nullptr;
    f.Menu("MnTransceiver")->trigger();
    auto* t = f.window->findChild<Transceiver*>(QStringLiteral("Transceiver"));
    QElapsedTimer c;
    c.start();
    while (t && c.elapsed() < 5000 && !Ptt(t)->isEnabled())
        QTest::qWait(20);
    return t;
}
} // namespace

void TestTransceiver::pttBoxShowsTheRigsTransmitState() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    QTRY_VERIFY(Ptt(t)->isChecked());
    // The rig goes back to receive by itself: the box follows on the next poll.
    QVERIFY(f.daemon.Set({QStringLiteral("T"), QStringLiteral("0")}));
    QTRY_VERIFY(!Ptt(t)->isChecked());
    QVERIFY(Ptt(t)->styleSheet().contains(QStringLiteral("color: #FFFF00; background-color: #000000;")));
    // ... and to transmit by itself, too.
    QVERIFY(f.daemon.Set({QStringLiteral("T"), QStringLiteral("1")}));
    QTRY_VERIFY(Ptt(t)->isChecked());
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
}

void TestTransceiver::refusedPttLeavesBoxOffWithGermanReason() {
    RigFixture f;
    // Without -P the daemon's dummy refuses PTT.
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QTRY_VERIFY(Ptt(t)->isEnabled());
    ClickBar(Ptt(t));
    auto* reason = Get<QLabel>(t, QStringLiteral("LabelPTT"));
    QTRY_VERIFY(reason->isVisible());
    QVERIFY(reason->text().startsWith(QStringLiteral("PTT abgelehnt: ")));
    QVERIFY(reason->text().contains(QStringLiteral("Ungültiger Parameter")));
    QVERIFY(!Ptt(t)->isChecked());
    QVERIFY(Ptt(t)->styleSheet().contains(QStringLiteral("color: #FFFF00; background-color: #000000;")));
}

void TestTransceiver::closingPanelReleasesPtt() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    QVERIFY(f.OpenFrequenz()); // the engine outlives the panel
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    t->close();
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
    QVERIFY(LiveEngine());
}

void TestTransceiver::programEndReleasesPtt() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    QVERIFY(f.OpenFrequenz());
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    f.window->setProperty("Tag", QStringLiteral("1"));
    f.window->close();
    f.window.reset();
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
}

void TestTransceiver::switchingRigReleasesPtt() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    LiveEngine()->Rig1()->Reconfigure(
        {kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()), 0});
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
    QVERIFY(!Ptt(t)->isChecked());
}

void TestTransceiver::pttReleasedWhenRigAnswersAgainAfterOffline() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    ClickBar(Ptt(t));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    // The daemon stops answering: offline, and the box no longer says transmit.
    QVERIFY(f.daemon.Pause());
    QTRY_VERIFY_WITH_TIMEOUT(LiveEngine()->Rig1()->Status() != ST_ONLINE, 5000);
    QVERIFY(!Ptt(t)->isChecked());
    QVERIFY(f.daemon.Resume());
    QTRY_COMPARE_WITH_TIMEOUT(LiveEngine()->Rig1()->Status(), int(ST_ONLINE), 8000);
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
    QVERIFY(!Ptt(t)->isChecked());
}

void TestTransceiver::crashSignalReleasesPtt() {
    Rigctld daemon;
    QVERIFY(daemon.Start({QStringLiteral("-P"), QStringLiteral("RIG")}));
    const RigConfig config{kModelNetRigctl, daemon.Address(), 0};
    for (const int sig : {SIGSEGV, SIGTERM}) {
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            // The child keys the rig as the program does (whose signals do their
            // default), then dies of the signal.
            for (const int s : {SIGSEGV, SIGTERM})
                ::signal(s, SIG_DFL);
            auto* rig = new HamlibRig; // never freed: only the guard may release
            if (!rig->Open(config).isEmpty() || !rig->WritePtt(true)) ::_exit(3);
            ::raise(sig);
            ::_exit(4);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), sig);
        QCOMPARE(daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
    }
}

void TestTransceiver::disabledKeysLookDisabled() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    Transceiver* t = Open(f);
    QPushButton* usb = Btn(t, QStringLiteral("Option1_2"));
    QPushButton* step = Btn(t, QStringLiteral("Option2_3"));
    QTRY_VERIFY(usb->isEnabled());
    const QImage usbOn = usb->grab().toImage();
    const QImage stepOn = step->grab().toImage();
    // Direct entry: the step keys are off and look it.
    QTest::mouseClick(Get<QLabel>(t, QStringLiteral("LabelTX")), Qt::LeftButton);
    QVERIFY(!step->isEnabled());
    QVERIFY(step->grab().toImage() != stepOn);
    QTest::keyClick(Get<QLineEdit>(t, QStringLiteral("Text1")), Qt::Key_Escape);
    QVERIFY(step->isEnabled());
    QCOMPARE(step->grab().toImage(), stepOn);
    // Offline: every mode key is off and looks it.
    f.daemon.Kill();
    QTRY_VERIFY_WITH_TIMEOUT(!usb->isEnabled(), 3000);
    for (int row = 0; row < 8; ++row)
        QVERIFY(!Btn(t, QStringLiteral("Option1_%1").arg(row))->isEnabled());
    QVERIFY(usb->grab().toImage() != usbOn);
    QVERIFY(usb->styleSheet().contains(QStringLiteral(":disabled")));
}

void TestTransceiver::splitAndPttToggleOnTheWholeBar() {
    RigFixture f;
    Transceiver* t = OpenWithPttDaemon(f);
    QVERIFY(t);
    auto* check1 = Get<QCheckBox>(t, QStringLiteral("Check1"));
    QTRY_VERIFY(check1->isEnabled());
    std::shared_ptr<RigEngine> engine = LiveEngine();
    // Far right of each bar, well beyond the box and its text.
    QVERIFY(check1->width() > 100);
    QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(check1->width() - 4, check1->height() / 2));
    QVERIFY(check1->isChecked());
    QTRY_COMPARE(engine->Rig1()->Split(), int(PM_SPLITON));
    QCheckBox* check2 = Ptt(t);
    QTest::mouseClick(check2, Qt::LeftButton, {}, QPoint(check2->width() - 4, check2->height() / 2));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("1"));
    QTest::mouseClick(check2, Qt::LeftButton, {}, QPoint(check2->width() - 4, check2->height() / 2));
    QTRY_COMPARE(f.daemon.Get(QStringLiteral("t")), QStringLiteral("0"));
}

void TestTransceiver::offlineSaysWhyAndSinceWhen() {
    RigFixture f;
    const int port = FreeLoopbackPort();
    WriteRigConfig(f.home.model.IniPath, 1, {kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(port), 0});
    QVERIFY(f.StartRig());
    Transceiver* t = Open(f, false);
    QVERIFY(t);
    auto* label8 = Get<QLabel>(t, QStringLiteral("Label8"));
    QTRY_VERIFY(label8->text().contains(QStringLiteral("abgelehnt")));
    QVERIFY(
        label8->text().startsWith(QStringLiteral("Transceiver antwortet nicht: Verbindung zu 127.0.0.1:")));
    QVERIFY(QRegularExpression(QStringLiteral("\\(seit \\d\\d:\\d\\d:\\d\\d UTC\\)$"))
                .match(label8->text())
                .hasMatch());
}

void TestTransceiver::switchingToDeadRigLeavesNoOldValue() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("14070000")}));
    QVERIFY(f.daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    Transceiver* t = Open(f);
    auto* labelTX = Get<QLabel>(t, QStringLiteral("LabelTX"));
    QTRY_COMPARE(labelTX->text(), QStringLiteral("14.070.000"));
    QTRY_COMPARE(t->ModeRow(), 2);
    LiveEngine()->Rig1()->Reconfigure(
        {kModelNetRigctl, QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()), 0});
    QCOMPARE(labelTX->text(), QStringLiteral("0.000.000"));
    QCOMPARE(t->ModeRow(), -1);
    QTest::qWait(300);
    QCOMPARE(labelTX->text(), QStringLiteral("0.000.000"));
}

void TestTransceiver::readOnlyRigDisablesFrequencyAndModeKeys() {
    RigFixture f;
    QVERIFY(f.daemon.Start());
    RigConfig c{kModelNetRigctl, f.daemon.Address(), 0};
    c.readOnly = true;
    WriteRigConfig(f.home.model.IniPath, 1, c);
    QVERIFY(f.StartRig());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    Transceiver* t = Open(f);
    QTRY_COMPARE(Get<QLabel>(t, QStringLiteral("LabelTX"))->text(), QStringLiteral("7.050.000"));
    QVERIFY(!Btn(t, QStringLiteral("Option1_2"))->isEnabled());
    QVERIFY(!Btn(t, QStringLiteral("Command5_1"))->isEnabled());
    QVERIFY(!Btn(t, QStringLiteral("Command2"))->isEnabled());
    t->Command5Click(1);
    t->Option1Click(0);
    QTest::qWait(400);
    QCOMPARE(f.daemon.Get(QStringLiteral("f")), QStringLiteral("7050000"));
}

QTEST_MAIN(TestTransceiver)
#include "tst_transceiver.moc"
