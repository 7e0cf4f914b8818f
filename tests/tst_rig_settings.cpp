// The rig settings window: Hamlib's model list with its search, the port, speed and
// network address stored in section Rig1, the Test button against a real rigctld, and
// a live engine that takes new settings at once.
#include "rig/rig_settings.h"
#include "rig_window_support.h"

#include <QListWidget>
#include <QPushButton>
#include <QtTest>

using namespace kolibrino;
using namespace kolibrino::rig;
using namespace kolibrino::test;

class TestRigSettings : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void modelListSortedWithSearch();
    void networkAddressStoredInSectionRig1();
    void serialPortAndSpeedStored();
    void networkAddressWithoutPortIsRefused();
    void testButtonReportsFrequencyAndMode();
    void testButtonReportsErrorInGerman();
    void liveEngineTakesNewSettings();
    void testButtonAsksTheLiveEngineForItsOwnRig();
    void command1OpensSettings();
};

namespace {
QListWidget* List(RigEinstellungen& w) {
    return w.findChild<QListWidget*>(QStringLiteral("ListModelle"));
}
QLineEdit* Edit(RigEinstellungen& w, const char* name) {
    return w.findChild<QLineEdit*>(QString::fromLatin1(name));
}
QPushButton* Button(RigEinstellungen& w, const char* name) {
    return w.findChild<QPushButton*>(QString::fromLatin1(name));
}
int VisibleRows(QListWidget* l) {
    int n = 0;
    for (int i = 0; i < l->count(); ++i)
        n += l->item(i)->isHidden() ? 0 : 1;
    return n;
}
} // namespace

void TestRigSettings::modelListSortedWithSearch() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    QListWidget* list = List(w);
    QVERIFY(list->count() > 100);
    // Without settings the network model is proposed.
    QCOMPARE(w.Current().model, kModelNetRigctl);
    for (int i = 1; i < list->count(); ++i)
        QVERIFY(
            QString::compare(list->item(i - 1)->text(), list->item(i)->text(), Qt::CaseInsensitive) <= 0 ||
            list->item(i - 1)
                    ->text()
                    .section(QLatin1Char(' '), 0, 0)
                    .compare(list->item(i)->text().section(QLatin1Char(' '), 0, 0), Qt::CaseInsensitive) < 0);
    w.show();
    QTest::keyClicks(Edit(w, "TextSuche"), QStringLiteral("dummy"));
    QVERIFY(VisibleRows(list) >= 1);
    QVERIFY(VisibleRows(list) < 10);
    QVERIFY(!list->currentItem()->isHidden());
    QVERIFY(list->currentItem()->text().contains(QStringLiteral("Dummy"), Qt::CaseInsensitive));
    Edit(w, "TextSuche")->clear();
    QCOMPARE(VisibleRows(list), list->count());
}

void TestRigSettings::networkAddressStoredInSectionRig1() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QVERIFY(w.SelectModel(kModelNetRigctl));
    QTest::keyClicks(Edit(w, "TextNetz"), QStringLiteral("127.0.0.1:4532"));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QCOMPARE(w.result(), int(QDialog::Accepted));
    const RigConfig c = ReadRigConfig(home.model.IniPath, 1);
    QCOMPARE(c.model, 2);
    QCOMPARE(c.port, QStringLiteral("127.0.0.1:4532"));
    QVERIFY(ReadBytes(home.model.IniPath).contains("Port=127.0.0.1:4532\r\n"));
    // The next window shows them again.
    RigEinstellungen again(home.model, dialogs);
    QCOMPARE(again.Current(), c);
}

void TestRigSettings::serialPortAndSpeedStored() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QVERIFY(w.SelectModel(kModelDummy));
    auto* port = w.findChild<QComboBox*>(QStringLiteral("ComboPort"));
    port->setEditText(QString());
    QTest::keyClicks(port, QStringLiteral("/dev/ttyUSB0"));
    auto* speed = w.findChild<QComboBox*>(QStringLiteral("ComboSpeed"));
    speed->setCurrentIndex(speed->findText(QStringLiteral("38400")));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    const RigConfig c = ReadRigConfig(home.model.IniPath, 1);
    QCOMPARE(c.model, 1);
    QCOMPARE(c.port, QStringLiteral("/dev/ttyUSB0"));
    QCOMPARE(c.speed, 38400);
}

void TestRigSettings::networkAddressWithoutPortIsRefused() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QVERIFY(w.SelectModel(kModelNetRigctl));
    QTest::keyClicks(Edit(w, "TextNetz"), QStringLiteral("localhost"));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox());
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("host:port")));
    QVERIFY(!ReadRigConfig(home.model.IniPath, 1).Configured());
}

void TestRigSettings::testButtonReportsFrequencyAndMode() {
    Home home;
    ScriptedDialogs dialogs;
    Rigctld daemon;
    QVERIFY(daemon.Start());
    QVERIFY(daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(daemon.Set({QStringLiteral("M"), QStringLiteral("USB"), QStringLiteral("0")}));
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QTest::keyClicks(Edit(w, "TextNetz"), daemon.Address());
    QTest::mouseClick(Button(w, "CommandTest"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox());
    QCOMPARE(dialogs.LastBox()->text, QStringLiteral("Verbindung in Ordnung: 7.050.000 Hz, USB"));
    QCOMPARE(dialogs.LastBox()->flags, 64);
    // Testing stores nothing.
    QVERIFY(!ReadRigConfig(home.model.IniPath, 1).Configured());
}

void TestRigSettings::testButtonReportsErrorInGerman() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QTest::keyClicks(Edit(w, "TextNetz"), QStringLiteral("127.0.0.1:%1").arg(FreeLoopbackPort()));
    QTest::mouseClick(Button(w, "CommandTest"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox());
    QVERIFY(dialogs.LastBox()->text.startsWith(QStringLiteral("Keine Verbindung zum Transceiver:\r\n")));
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("Ein-/Ausgabefehler")));
    QCOMPARE(dialogs.LastBox()->flags, 48);
}

void TestRigSettings::liveEngineTakesNewSettings() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    QVERIFY(f.OpenFrequenz());
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("7.050.000"));
    Rigctld other;
    QVERIFY(other.Start());
    QVERIFY(other.Set({QStringLiteral("F"), QStringLiteral("3700000")}));
    RigEinstellungen w(f.home.model, f.dialogs, f.window.get());
    w.show();
    Edit(w, "TextNetz")->clear();
    QTest::keyClicks(Edit(w, "TextNetz"), other.Address());
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QTRY_COMPARE(f.FLabel(1)->text(), QStringLiteral("3.700.000"));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
}

void TestRigSettings::testButtonAsksTheLiveEngineForItsOwnRig() {
    Home home;
    ScriptedDialogs dialogs;
    WriteRigConfig(home.model.IniPath, 1, {kModelDummy, {}, 0});
    std::shared_ptr<RigEngine> engine = ConnectEngine(home.model.IniPath);
    QVERIFY(engine);
    QTRY_COMPARE_WITH_TIMEOUT(engine->Rig1()->Status(), int(ST_ONLINE), 3000);
    engine->Rig1()->SetFreq(7033000);
    engine->Rig1()->SetMode(PM_CW_U);
    QTRY_COMPARE(engine->Rig1()->Freq(), 7033000);
    QTRY_COMPARE(engine->Rig1()->Mode(), int(PM_CW_U));
    RigEinstellungen w(home.model, dialogs);
    w.show();
    QCOMPARE(w.Current().model, kModelDummy);
    QTest::mouseClick(Button(w, "CommandTest"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox());
    // A second simulator would start at its own default; the engine's rig says 7033 kHz.
    QCOMPARE(dialogs.LastBox()->text, QStringLiteral("Verbindung in Ordnung: 7.033.000 Hz, CW"));
}

void TestRigSettings::command1OpensSettings() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    int opened = 0;
    RigEngine::DialogOpener() = [&opened] { ++opened; };
    auto* command1 = f.Freq()->findChild<QPushButton*>(QStringLiteral("Command1"));
    QCOMPARE(command1->text(), QStringLiteral("Omnirig Konfigurieren"));
    QTest::mouseClick(command1, Qt::LeftButton);
    QCOMPARE(opened, 1);
}

QTEST_MAIN(TestRigSettings)
#include "tst_rig_settings.moc"
