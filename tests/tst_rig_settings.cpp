// The rig settings window: Hamlib's model list with its search, the port, speed and
// network address stored in section Rig1, the Test button against a real rigctld, and
// a live engine that takes new settings at once.
#include "rig/rig_settings.h"
#include "rig_window_support.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>
#include <pty.h>

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
    void everySettingStoredAndReachesHamlib();
    void unknownFurtherSettingRefusedWithItsName();
    void civAddressOnlyForIcomAndChecked();
    void keinTransceiverIsAChoice();
    void searchIgnoresHyphensBlanksAndCase();
    void modelListSortsNaturally();
    void speedListOffersTheModelsSpeeds();
    void readOnlyStored();
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
QComboBox* Combo(RigEinstellungen& w, const char* name) {
    return w.findChild<QComboBox*>(QString::fromLatin1(name));
}
// Picks an entry of a choice box as the operator does: open it, click the entry.
void Pick(QComboBox* c, const QString& text) {
    const int i = c->findText(text);
    QVERIFY2(i >= 0, qPrintable(text));
    c->setFocus();
    while (c->currentIndex() != i)
        QTest::keyClick(c, c->currentIndex() < i ? Qt::Key_Down : Qt::Key_Up);
}
// Finds a model by typing into the search and clicking the first row shown.
void SearchAndClick(RigEinstellungen& w, const QString& text, const QString& rowStartsWith) {
    QLineEdit* search = w.findChild<QLineEdit*>(QStringLiteral("TextSuche"));
    search->clear();
    QTest::keyClicks(search, text);
    QListWidget* list = w.findChild<QListWidget*>(QStringLiteral("ListModelle"));
    for (int i = 0; i < list->count(); ++i) {
        QListWidgetItem* item = list->item(i);
        if (item->isHidden() || !item->text().startsWith(rowStartsWith)) continue;
        list->scrollToItem(item);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
        return;
    }
    QFAIL(qPrintable(QStringLiteral("kein Modell %1").arg(rowStartsWith)));
}
// A pseudo terminal pair: the slave's name stands for a serial port.
struct Pty {
    Pty() { ok = ::openpty(&master, &slave, name, nullptr, nullptr) == 0; }
    ~Pty() {
        if (ok) {
            ::close(master);
            ::close(slave);
        }
    }
    QString Name() const { return QString::fromLocal8Bit(name); }
    bool ok = false;
    int master = -1;
    int slave = -1;
    char name[128] = {0};
};
int RowOf(QListWidget* l, const QString& start) {
    for (int i = 0; i < l->count(); ++i)
        if (l->item(i)->text().startsWith(start)) return i;
    return -1;
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
    // "Kein Transceiver" first, then by maker, and within a maker naturally.
    QCOMPARE(list->item(0)->text(), QStringLiteral("Kein Transceiver"));
    for (int i = 2; i < list->count(); ++i)
        QVERIFY(!NaturalLess(list->item(i)->text(), list->item(i - 1)->text()) ||
                list->item(i - 1)
                        ->text()
                        .section(QLatin1Char(' '), 0, 0)
                        .compare(list->item(i)->text().section(QLatin1Char(' '), 0, 0), Qt::CaseInsensitive) <
                    0);
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
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("Verbindung zu 127.0.0.1:")));
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("abgelehnt")));
    QCOMPARE(dialogs.LastBox()->flags, 48);
}

void TestRigSettings::liveEngineTakesNewSettings() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    QVERIFY(f.TuneAfterOpening(QStringLiteral("7050000")));
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

void TestRigSettings::everySettingStoredAndReachesHamlib() {
    Home home;
    ScriptedDialogs dialogs;
    Pty cat, ptt;
    QVERIFY(cat.ok && ptt.ok);
    RigEinstellungen w(home.model, dialogs);
    w.show();
    SearchAndClick(w, QStringLiteral("ic7300"), QStringLiteral("Icom IC-7300 "));
    QVERIFY(Combo(w, "ComboPort")->isEnabled());
    Combo(w, "ComboPort")->setEditText(QString());
    QTest::keyClicks(Combo(w, "ComboPort"), cat.Name());
    Pick(Combo(w, "ComboSpeed"), QStringLiteral("19200"));
    Pick(Combo(w, "ComboDatenbits"), QStringLiteral("8"));
    Pick(Combo(w, "ComboStopbits"), QStringLiteral("2"));
    Pick(Combo(w, "ComboHandshake"), QStringLiteral("Kein"));
    Pick(Combo(w, "ComboDTR"), QStringLiteral("Ein"));
    Pick(Combo(w, "ComboRTS"), QStringLiteral("Aus"));
    Pick(Combo(w, "ComboPTT"), QStringLiteral("DTR"));
    Combo(w, "ComboPTTPort")->setEditText(QString());
    QTest::keyClicks(Combo(w, "ComboPTTPort"), ptt.Name());
    QTest::keyClicks(Edit(w, "TextCIV"), QStringLiteral("0x5E"));
    QTest::keyClicks(w.findChild<QPlainTextEdit*>(QStringLiteral("TextWeitere")),
                     QStringLiteral("write_delay=5"));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QCOMPARE(w.result(), int(QDialog::Accepted));
    const QByteArray ini = ReadBytes(home.model.IniPath);
    for (const char* line :
         {"Model=3073\r\n", "Speed=19200\r\n", "DataBits=8\r\n", "StopBits=2\r\n", "Handshake=None\r\n",
          "DTR=ON\r\n", "RTS=OFF\r\n", "PTT=DTR\r\n", "CIV=0x5E\r\n", "Conf=write_delay=5\r\n"})
        QVERIFY2(ini.contains(line), line);
    QVERIFY(ini.contains("PTTPort=" + ptt.Name().toLocal8Bit() + "\r\n"));
    // The next window shows them again.
    RigEinstellungen again(home.model, dialogs);
    QCOMPARE(again.Current(), ReadRigConfig(home.model.IniPath, 1));
    // Hamlib holds them before the rig opens: read back with rig_get_conf right after
    // each was set (the open itself fails here: a pty has no DTR line).
    HamlibRig rig;
    rig.Open(ReadRigConfig(home.model.IniPath, 1), 200);
    QCOMPARE(rig.Applied().value(QStringLiteral("rig_pathname")), cat.Name());
    QCOMPARE(rig.Applied().value(QStringLiteral("serial_speed")), QStringLiteral("19200"));
    QCOMPARE(rig.Applied().value(QStringLiteral("data_bits")), QStringLiteral("8"));
    QCOMPARE(rig.Applied().value(QStringLiteral("stop_bits")), QStringLiteral("2"));
    QCOMPARE(rig.Applied().value(QStringLiteral("serial_handshake")), QStringLiteral("None"));
    QCOMPARE(rig.Applied().value(QStringLiteral("dtr_state")), QStringLiteral("ON"));
    QCOMPARE(rig.Applied().value(QStringLiteral("rts_state")), QStringLiteral("OFF"));
    QCOMPARE(rig.Applied().value(QStringLiteral("ptt_type")), QStringLiteral("DTR"));
    QCOMPARE(rig.Applied().value(QStringLiteral("ptt_pathname")), ptt.Name());
    QCOMPARE(rig.Applied().value(QStringLiteral("civaddr")), QStringLiteral("94"));
    QCOMPARE(rig.Applied().value(QStringLiteral("write_delay")), QStringLiteral("5"));
}

void TestRigSettings::unknownFurtherSettingRefusedWithItsName() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    SearchAndClick(w, QStringLiteral("dummy"), QStringLiteral("Hamlib Dummy "));
    auto* weitere = w.findChild<QPlainTextEdit*>(QStringLiteral("TextWeitere"));
    QTest::keyClicks(weitere, QStringLiteral("timeout=300"));
    QTest::keyClick(weitere, Qt::Key_Return);
    QTest::keyClicks(weitere, QStringLiteral("nicht_da=1"));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox());
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("„nicht_da“")));
    QCOMPARE(dialogs.LastBox()->flags, 48);
    QVERIFY(w.isVisible());
    QVERIFY(!ReadRigConfig(home.model.IniPath, 1).Configured());
    // The test button refuses it as well, before asking the rig.
    QTest::mouseClick(Button(w, "CommandTest"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("„nicht_da“")));
}

void TestRigSettings::civAddressOnlyForIcomAndChecked() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    SearchAndClick(w, QStringLiteral("dummy"), QStringLiteral("Hamlib Dummy "));
    QVERIFY(!Edit(w, "TextCIV")->isEnabled());
    SearchAndClick(w, QStringLiteral("IC-703"), QStringLiteral("Icom IC-703 "));
    QVERIFY(Edit(w, "TextCIV")->isEnabled());
    QTest::keyClicks(Edit(w, "TextCIV"), QStringLiteral("xyz"));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QVERIFY(dialogs.LastBox()->text.contains(QStringLiteral("„xyz“")));
    QVERIFY(!ReadRigConfig(home.model.IniPath, 1).Configured());
}

void TestRigSettings::keinTransceiverIsAChoice() {
    RigFixture f;
    QVERIFY(f.StartWithDaemon());
    QVERIFY(f.OpenFrequenz());
    RigEinstellungen w(f.home.model, f.dialogs, f.window.get());
    w.show();
    SearchAndClick(w, QStringLiteral("kein"), QStringLiteral("Kein Transceiver"));
    QCOMPARE(w.Current().model, 0);
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QCOMPARE(w.result(), int(QDialog::Accepted));
    QVERIFY(ReadBytes(f.home.model.IniPath).contains("Model=0\r\n"));
    QTRY_COMPARE(LiveEngine()->Rig1()->Status(), int(ST_NOTCONFIGURED));
    RigEinstellungen again(f.home.model, f.dialogs);
    QCOMPARE(List(again)->currentItem()->text(), QStringLiteral("Kein Transceiver"));
}

void TestRigSettings::searchIgnoresHyphensBlanksAndCase() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    for (const char* text : {"ft991", "FT 991", "ft-991", "yaesu ft991"}) {
        Edit(w, "TextSuche")->clear();
        QTest::keyClicks(Edit(w, "TextSuche"), QString::fromLatin1(text));
        QVERIFY2(!List(w)->item(RowOf(List(w), QStringLiteral("Yaesu FT-991 ")))->isHidden(), text);
        QVERIFY(VisibleRows(List(w)) < 10);
    }
    Edit(w, "TextSuche")->clear();
    QTest::keyClicks(Edit(w, "TextSuche"), QStringLiteral("ic7300"));
    QVERIFY(List(w)->currentItem()->text().startsWith(QStringLiteral("Icom IC-7300")));
}

void TestRigSettings::modelListSortsNaturally() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    const int ic703 = RowOf(List(w), QStringLiteral("Icom IC-703 "));
    const int ic7000 = RowOf(List(w), QStringLiteral("Icom IC-7000 "));
    const int ic78 = RowOf(List(w), QStringLiteral("Icom IC-78 "));
    QVERIFY(ic703 > 0 && ic7000 > 0 && ic78 > 0);
    QVERIFY(ic78 < ic703);
    QVERIFY(ic703 < ic7000);
}

void TestRigSettings::speedListOffersTheModelsSpeeds() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    SearchAndClick(w, QStringLiteral("ft817"), QStringLiteral("Yaesu FT-817 "));
    const RigModelInfo* info = FindModel(w.Current().model);
    QVERIFY(info);
    QComboBox* speed = Combo(w, "ComboSpeed");
    QCOMPARE(speed->itemText(0), QStringLiteral("Standard des Modells"));
    for (int i = 1; i < speed->count(); ++i) {
        const int s = speed->itemData(i).toInt();
        QVERIFY(s >= info->rateMin && s <= info->rateMax);
    }
    QVERIFY(speed->findData(info->rateMax) > 0);
    QCOMPARE(speed->findData(115200), -1);
    SearchAndClick(w, QStringLiteral("ic7300"), QStringLiteral("Icom IC-7300 "));
    QVERIFY(Combo(w, "ComboSpeed")->findData(115200) > 0);
}

void TestRigSettings::readOnlyStored() {
    Home home;
    ScriptedDialogs dialogs;
    RigEinstellungen w(home.model, dialogs);
    w.show();
    SearchAndClick(w, QStringLiteral("dummy"), QStringLiteral("Hamlib Dummy "));
    auto* check = w.findChild<QCheckBox*>(QStringLiteral("CheckNurLesen"));
    QCOMPARE(check->text(), QStringLiteral("Transceiver nur lesen"));
    QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(6, check->height() / 2));
    QTest::mouseClick(Button(w, "CommandOK"), Qt::LeftButton);
    QVERIFY(ReadBytes(home.model.IniPath).contains("NurLesen=-1\r\n"));
    QVERIFY(ReadRigConfig(home.model.IniPath, 1).readOnly);
}

QTEST_MAIN(TestRigSettings)
#include "tst_rig_settings.moc"
