// The station and contest settings: fields, captions, limits, filters, option groups,
// the checks, the save in both modes and the options mode on a log with contacts.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "setup/modal.h"
#include "setup/setup_flows.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

using Env = SetupEnv;

template <typename T> T* Get(QWidget& w, const QString& name) {
    T* c = w.findChild<T*>(name);
    if (!c) qWarning("no control %s", qPrintable(name));
    return c;
}
QLineEdit* Edit(QWidget& w, const char* n) {
    return Get<QLineEdit>(w, QString::fromLatin1(n));
}
QComboBox* Combo(QWidget& w, const char* n) {
    return Get<QComboBox>(w, QString::fromLatin1(n));
}
QPushButton* Btn(QWidget& w, const char* n) {
    return Get<QPushButton>(w, QString::fromLatin1(n));
}
QRadioButton* Opt(QWidget& w, const char* group, int i) {
    return Get<QRadioButton>(w, QStringLiteral("%1_%2").arg(QString::fromLatin1(group)).arg(i));
}

// Clicks an option button on its round mark, where a person clicks.
void ClickOpt(QWidget& w, const char* group, int i) {
    QRadioButton* b = Opt(w, group, i);
    QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(6, b->height() / 2));
}

// Types text key by key, as a keyboard with umlauts would.
void Type(QWidget* w, const QString& text) {
    for (const QChar c : text) {
        const int key = c.unicode() < 128 ? int(c.toUpper().unicode()) : int(Qt::Key_unknown);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &release);
    }
}

// A new-log window filled so that every check passes.
void FillValid(StationLog& s, const QString& call = QStringLiteral("OE1ABC")) {
    Edit(s, "Text1")->setText(call);
    Combo(s, "Combo5")->setEditText(call);
    Combo(s, "Combo1")->setCurrentIndex(0);
    Edit(s, "Text6")->setText(QStringLiteral("op@example.at"));
    Get<QLabel>(s, QStringLiteral("Label10"))->setText(QStringLiteral("NEU.KOLBO"));
}

// The form the checks see when every field would pass; tests break one field at a time.
StationForm ValidForm(const QString& call = QStringLiteral("OE1ABC")) {
    StationForm f;
    f.text1 = call;
    f.combo5Text = QStringLiteral("OE1ABC");
    f.combo1Text = QStringLiteral("WI - Wien");
    f.text6 = QStringLiteral("a@b.at");
    f.label10 = QStringLiteral("X.KOLBO");
    return f;
}

QsoRecord Contact(int i) {
    static const char* const calls[] = {"OE3ABC", "OE6XYZ", "OEY21", "OE1W", "OE8KLM"};
    static const char* const bz[] = {"WI", "MD", "GZ", "ZZ", "WI"};
    QsoRecord r;
    r.Call = QString::fromLatin1(calls[i % 5]) + QString::number(i);
    r.Band = i % 3 == 0 ? 40 : 80;
    r.Bezirk = QString::fromLatin1(bz[i % 5]);
    r.Datum = QStringLiteral("01.05.2026");
    r.Zeit = QStringLiteral("%1:%2:%3")
                 .arg(5 + i / 20, 2, 10, QLatin1Char('0'))
                 .arg(i % 60, 2, 10, QLatin1Char('0'))
                 .arg(i % 7, 2, 10, QLatin1Char('0'));
    r.RstGesendet = QStringLiteral("59");
    r.RstEmpfangen = i % 4 ? QStringLiteral("59") : QStringLiteral("57");
    r.Qsl = i % 2;
    r.Mode = i % 3 ? QStringLiteral("SSB") : QStringLiteral("CW");
    r.ModeRx = r.Mode;
    r.Status = i % 11 == 0 ? 1 : 0;
    r.Operator = QStringLiteral("OE1ABC");
    r.Bemerkung = i % 6 ? QString() : QStringLiteral("Grüße Nr. %1").arg(i);
    r.BandRx = QString::number(r.Band);
    r.Frequenz = r.Band == 40 ? 7050.5f + float(i) / 4 : 3650.25f + float(i);
    r.Reserve1 = i % 9 ? QString() : QStringLiteral("R1");
    return r;
}

QByteArray AfterEndHead(const QByteArray& file) {
    const qsizetype p = file.indexOf("[ENDHEAD:]\r\n");
    return p < 0 ? QByteArray() : file.mid(p + 12);
}

} // namespace

class TestStationLog : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
    }
    void cleanup() { ClearModalDrivers(); }

    void captionsAndWidthLimits_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<int>("limit");
        QTest::newRow("Text1") << "Text1" << 13;
        QTest::newRow("Text3") << "Text3" << 6;
        QTest::newRow("Text4") << "Text4" << 70;
        QTest::newRow("Text5") << "Text5" << 70;
        QTest::newRow("Text9") << "Text9" << 10;
        QTest::newRow("Text10") << "Text10" << 70;
        QTest::newRow("Text6") << "Text6" << 250;
        QTest::newRow("Text2") << "Text2" << 13;
    }
    void captionsAndWidthLimits() {
        QFETCH(QString, control);
        QFETCH(int, limit);
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        QCOMPARE(s.windowTitle(), QStringLiteral("Contest-Einstellungen"));
        QCOMPARE(Get<QLineEdit>(s, control)->maxLength(), limit);
        QCOMPARE(Combo(s, "Combo5")->lineEdit()->maxLength(), 13);
        Combo(s, "Combo5")->setEditText(QStringLiteral("OE1ABCDEFGHIJKLMN"));
        QCOMPARE(Combo(s, "Combo5")->currentText(), QStringLiteral("OE1ABCDEFGHIJ"));
        QCOMPARE(Get<QGroupBox>(s, QStringLiteral("Frame1"))->title(), QStringLiteral("Pflichtfelder"));
        QCOMPARE(Get<QGroupBox>(s, QStringLiteral("Frame2"))->title(), QStringLiteral("Optionale Angaben"));
        QCOMPARE(Get<QGroupBox>(s, QStringLiteral("Frame5"))->title(),
                 QStringLiteral("Datum der Lizenzprüfung (max. vor 3 Jahren)"));
        QCOMPARE(Get<QGroupBox>(s, QStringLiteral("Frame7"))->title(),
                 QStringLiteral("Operatorrufzeichenliste bearbeiten..."));
        QCOMPARE(Get<QLabel>(s, QStringLiteral("Label14"))->text(),
                 QStringLiteral(
                     "Die Station wurde in beiden Contestperioden unabhängig vom öffentlichen Stromnetz "
                     "betrieben.\n"
                     "Dies zählt +2 Multiplikatorpunkte.\nBei Notstrombetrieb sind Fotos der Anlage an  ") +
                     ContestManagerMail() + QStringLiteral("  zu senden!"));
        QCOMPARE(Opt(s, "Option2", 4)->text(), QStringLiteral("Staatsfunkstelle"));
        QCOMPARE(Opt(s, "Option3", 1)->text(), QStringLiteral("High-Power (über 100 Watt)"));
        QCOMPARE(Opt(s, "Option4", 2)->text(), QStringLiteral("Checklog"));
        QCOMPARE(Btn(s, "Command13")->text(), QStringLiteral("Daten aus letztem Log importieren"));
        QCOMPARE(Btn(s, "Command5")->toolTip(), QStringLiteral("Operatorrufzeichenliste bearbeiten"));
        // The lists of the window.
        QCOMPARE(Combo(s, "Combo1")->itemText(0), QStringLiteral("WI - Wien"));
        QCOMPARE(Combo(s, "Combo1")->count(), 4);
        QCOMPARE(Combo(s, "Combo2")->count(), 31);
        QCOMPARE(Combo(s, "Combo3")->itemText(0), QStringLiteral("Jänner"));
        QCOMPARE(Combo(s, "Combo4")->count(), 4);
        QCOMPARE(Combo(s, "Combo4")->itemText(0), QStringLiteral("2026"));
        QCOMPARE(Combo(s, "Combo4")->itemText(3), QStringLiteral("2023"));
    }

    void keyFilters_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("call folds and maps") << "Text1"
                                             << "oe-1ab c!?"
                                             << "OE/1ABC";
        QTest::newRow("call keeps digits and slash") << "Text1"
                                                     << "oe3xyz/p"
                                                     << "OE3XYZ/P";
        QTest::newRow("call drops umlauts") << "Text1" << QStringLiteral("öe1ä") << "E1";
        QTest::newRow("operator call") << "Combo5"
                                       << "oe1-ab.c"
                                       << "OE1/ABC";
        QTest::newRow("list entry") << "Text2"
                                    << "oe5xy+"
                                    << "OE5XY";
        QTest::newRow("locator folds only") << "Text3"
                                            << "jn88-x"
                                            << "JN88-X";
        QTest::newRow("name as typed") << "Text4"
                                       << "Hans Müller"
                                       << "Hans Müller";
    }
    void keyFilters() {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        QLineEdit* edit =
            control == QLatin1String("Combo5") ? Combo(s, "Combo5")->lineEdit() : Get<QLineEdit>(s, control);
        if (control == QLatin1String("Text2")) {
            s.OpenListEditor();
            s.ListNew();
        }
        Type(edit, typed);
        QCOMPARE(edit->text(), shown);
    }

    void pasteByKeyIsDroppedInCallFields() {
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        QLineEdit* t1 = Edit(s, "Text1");
        QLineEdit* t4 = Edit(s, "Text4");
        t4->setText(QStringLiteral("oe9zz"));
        t4->selectAll();
        QTest::keyClick(t4, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClicks(t1, QStringLiteral("oe1"));
        QTest::keyClick(t1, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(t1->text(), QStringLiteral("OE1"));
        QTest::keyClick(t1, Qt::Key_Backspace);
        QCOMPARE(t1->text(), QStringLiteral("OE"));
    }

    void enterInTheListEntryTakesItOver() {
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        s.OpenListEditor();
        s.ListNew();
        QTest::keyClicks(Edit(s, "Text2"), QStringLiteral("oe2abc"));
        QTest::keyClick(Edit(s, "Text2"), Qt::Key_Return);
        auto* list = s.findChild<QWidget*>(QStringLiteral("Picture7"));
        QVERIFY(!list->isVisible());
        QVERIFY(s.findChild<QGroupBox*>(QStringLiteral("Frame7"))->isEnabled());
    }

    void scoringClassShowsTheExamDateForNewcomersOnly() {
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        auto* frame5 = Get<QGroupBox>(s, QStringLiteral("Frame5"));
        QVERIFY(!frame5->isVisible());
        ClickOpt(s, "Option2", 3);
        QVERIFY(frame5->isVisible());
        ClickOpt(s, "Option2", 1);
        QVERIFY(!frame5->isVisible());
    }

    // The window cancelled after a click on Option5 leaves MYNPOWER changed.
    void emergencyPowerClickStaysAfterCancel() {
        Env e;
        e.m.Header.MYNPOWER = 0;
        {
            StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
            s.show();
            QVERIFY(Opt(s, "Option5", 0)->isChecked());
            ClickOpt(s, "Option5", 1);
            QCOMPARE(e.m.Header.MYNPOWER, 2);
            QTest::mouseClick(Btn(s, "Command1"), Qt::LeftButton);
            QVERIFY(!s.isVisible());
        }
        QCOMPARE(e.m.Header.MYNPOWER, 2);
        StationLog s2(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s2.show();
        QVERIFY(Opt(s2, "Option5", 1)->isChecked()); // Load selects "Ja" for a non-zero value
        ClickOpt(s2, "Option5", 0);
        s2.reject();
        QCOMPARE(e.m.Header.MYNPOWER, 0);
    }

    // A call of exactly 3 characters passes; a digit in third place is an amateur
    // station, a letter there a state station.
    void callChecks_data() {
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("klasse");
        QTest::addColumn<QString>("box");
        QTest::newRow("two characters") << "OE" << 0 << "Bitte ein gültiges Stationsrufzeichen eingeben!";
        QTest::newRow("blanks do not count")
            << " OE " << 0 << "Bitte ein gültiges Stationsrufzeichen eingeben!";
        QTest::newRow("three, digit, amateur") << "OE1" << 0 << "";
        QTest::newRow("three, letter, state") << "OEY" << 4 << "";
        QTest::newRow("letter needs state class")
            << "OEY" << 0
            << "Für eine Staatsfunkstelle muss die Wertungsklasse 'Staatsfunkstelle' ausgewählt werden!";
        QTest::newRow("digit refuses state class")
            << "OE1" << 4 << "Wertungsklasse 'Staatsfunkstelle' mit diesem Rufzeichen nicht möglich!";
    }
    void callChecks() {
        QFETCH(QString, call);
        QFETCH(int, klasse);
        QFETCH(QString, box);
        Env e;
        StationForm f = ValidForm(call);
        f.option2 = klasse;
        Focus focus = Focus::None;
        const bool ok = Validate(e.m, e.d, e.clock, f, &focus);
        QCOMPARE(ok, box.isEmpty());
        if (!box.isEmpty()) {
            QCOMPARE(e.d.boxes.size(), 1);
            QCOMPARE(e.d.boxes[0].text, box);
            QCOMPARE(e.d.boxes[0].flags, int(Msg::Critical));
            QCOMPARE(int(focus),
                     int(klasse == 0 && call.trimmed().size() == 3 ? Focus::Option2State : Focus::Text1));
        }
    }

    void checksInTheirOrder_data() {
        QTest::addColumn<QString>("broken");
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("focus");
        QTest::newRow("operator") << "operator"
                                  << "Bitte ein gültiges Operatorrufzeichen eingeben!" << int(Focus::Combo5);
        QTest::newRow("district") << "district"
                                  << "Bitte den eigenen Bezirk auswählen!" << int(Focus::Combo1);
        QTest::newRow("exam date missing")
            << "examMissing"
            << "Du hast kein gültiges Datum für deine Lizenzprüfung angegeben!" << int(Focus::None);
        QTest::newRow("exam date impossible")
            << "examImpossible"
            << "Du hast kein gültiges Datum für deine Lizenzprüfung angegeben!" << int(Focus::None);
        QTest::newRow("mail, Yes")
            << "mail"
            << "Du hast deine eMail-Adresse nicht angegeben!\r\nBitte gib sie zwecks Rückfragen ein!"
            << int(Focus::Text6);
    }
    void checksInTheirOrder() {
        QFETCH(QString, broken);
        QFETCH(QString, box);
        QFETCH(int, focus);
        Env e;
        StationForm f = ValidForm();
        if (broken == QLatin1String("operator")) f.combo5Text = QStringLiteral(" OE ");
        if (broken == QLatin1String("district")) f.combo1Text.clear();
        if (broken == QLatin1String("mail")) f.text6 = QStringLiteral("keine");
        if (broken.startsWith(QLatin1String("exam"))) {
            ClickOption2(f, 3);
            f.combo2Text = QStringLiteral("31");
            f.combo3Index = broken == QLatin1String("examMissing") ? -1 : 1; // 31 February
            f.combo4Text = QStringLiteral("2025");
        }
        Focus got = Focus::None;
        QVERIFY(!Validate(e.m, e.d, e.clock, f, &got));
        QCOMPARE(e.d.LastBox()->text, box);
        QCOMPARE(e.d.LastBox()->flags,
                 broken == QLatin1String("mail") ? int(Msg::YesNo) : int(Msg::Critical));
        QCOMPARE(int(got), focus);
    }

    void noMailAnsweredNoGoesOn() {
        Env e;
        StationForm f = ValidForm();
        f.text6.clear(); // no mail address
        e.d.AnswerMsgBox(Msg::No);
        Focus got = Focus::None;
        QVERIFY(Validate(e.m, e.d, e.clock, f, &got));
    }

    void noFileNameAsksForOne() {
        Env e;
        StationForm f = ValidForm(QStringLiteral("oe1abc/p"));
        f.label10.clear(); // no file name yet
        e.d.AnswerInput(QStringLiteral("MEIN/LOG"));
        Focus got = Focus::None;
        QVERIFY(!Validate(e.m, e.d, e.clock, f, &got));
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Kein Name für die Logdatei angegeben!"));
        QCOMPARE(e.d.prompts, QStringList{QStringLiteral("Namen für neues Log eingeben")});
        QCOMPARE(f.label10, QStringLiteral("MEIN_LOG.KOLBO"));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("MEIN_LOG.KOLBO"));
    }

    // A new log with Command2 writes a header-only file: the text is longer than 10
    // characters, so the file always exists afterwards.
    void newLogWritesAHeaderOnlyFile() {
        Env e;
        e.m.LogRecords = {Contact(1), Contact(2)}; // of the log open before
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        FillValid(s);
        e.m.CurrentLogName = QStringLiteral("NEU.KOLBO");
        Combo(s, "Combo5")->addItems({QStringLiteral("OE1ABC"), QStringLiteral("OE3XYZ")});
        Combo(s, "Combo5")->setEditText(QStringLiteral("oe1abc"));
        QTest::mouseClick(Btn(s, "Command2"), Qt::LeftButton);
        QVERIFY(!s.isVisible());
        QVERIFY(e.m.LogRecords.empty());
        const QByteArray file = ReadBytes(e.m.LogFolder + QStringLiteral("NEU.KOLBO"));
        QCOMPARE(file, Cp(IdentificationLine(2026) + HeaderText(e.m.Header)));
        QVERIFY(AfterEndHead(file).isEmpty());
        QCOMPARE(e.m.Header.MYCALL, QStringLiteral("OE1ABC"));
        QCOMPARE(e.m.Header.MYOPCALL, QStringLiteral("OE1ABC"));
        QCOMPARE(e.m.Header.MYBZ, QStringLiteral("WI"));
        QCOMPARE(e.m.Header.MYSTATION, QStringLiteral("\r\n"));
        QVERIFY(e.m.LogChanged); // no log manager open
        QStringList ops;
        IniReadSection(e.m.IniPath, QStringLiteral("OPCALLs"), ops);
        QCOMPARE(ops, (QStringList{QStringLiteral("OE1ABC"), QStringLiteral("OE3XYZ")}));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastNewLogDate")),
                 QStringLiteral("20260310"));
    }

    // In new-log mode the old MYEXAMDAT stays in memory when the class is not Newcomer
    // and is written to the new file.
    void oldExamDateTravelsIntoANewLog() {
        Env e;
        e.m.Header.MYEXAMDAT = QStringLiteral("3.4.2024");
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        FillValid(s);
        e.m.CurrentLogName = QStringLiteral("NEU.KOLBO");
        ClickOpt(s, "Option2", 1);
        s.SaveClicked();
        QCOMPARE(e.m.Header.MYEXAMDAT, QStringLiteral("3.4.2024"));
        QVERIFY(ReadBytes(e.m.LogFolder + QStringLiteral("NEU.KOLBO")).contains("[MYEXAMDAT:8]3.4.2024\r\n"));
    }

    void newcomerExamDateIsStoredWithTheMonthNumber() {
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        FillValid(s);
        e.m.CurrentLogName = QStringLiteral("NEU.KOLBO");
        ClickOpt(s, "Option2", 3);
        Combo(s, "Combo2")->setCurrentIndex(4);  // 5
        Combo(s, "Combo3")->setCurrentIndex(10); // November
        Combo(s, "Combo4")->setCurrentIndex(1);  // 2025
        Shot(&s, QStringLiteral("StationLog_new"));
        s.SaveClicked();
        QVERIFY(e.d.boxes.isEmpty());
        QCOMPARE(e.m.Header.MYEXAMDAT, QStringLiteral("5.11.2025"));
        QCOMPARE(e.m.Header.MYWERTUNGSST, 3);
    }

    // Options mode with a Newcomer date in October shows no month and blocks saving
    // until one is chosen.
    void octoberExamDateMustBeChosenAgain() {
        Env e;
        e.m.CurrentLogName = QStringLiteral("A.KOLBO");
        e.m.Header.MYCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYOPCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYBZ = QStringLiteral("MD");
        e.m.Header.MYEMAIL = QStringLiteral("a@b.at");
        e.m.Header.MYWERTUNGSST = 3;
        e.m.Header.MYEXAMDAT = QStringLiteral("15.10.2025");
        StationLog s(e.m, e.d, e.clock, {}, StationMode::Options);
        s.FillFromLog();
        s.show();
        QVERIFY(Get<QGroupBox>(s, QStringLiteral("Frame5"))->isVisible());
        QCOMPARE(Combo(s, "Combo2")->currentText(), QStringLiteral("15"));
        QCOMPARE(Combo(s, "Combo3")->currentIndex(), -1);
        QCOMPARE(Combo(s, "Combo4")->currentText(), QStringLiteral("2025"));
        QCOMPARE(Combo(s, "Combo1")->currentText(), QStringLiteral("MD - Mödling"));
        QTest::mouseClick(Btn(s, "Command4"), Qt::LeftButton);
        QVERIFY(s.isVisible());
        QCOMPARE(e.d.LastBox()->text,
                 QStringLiteral("Du hast kein gültiges Datum für deine Lizenzprüfung angegeben!"));
        QVERIFY(!QFile::exists(e.m.LogFolder + QStringLiteral("A.KOLBO")));
        Combo(s, "Combo3")->setCurrentIndex(9);
        QTest::mouseClick(Btn(s, "Command4"), Qt::LeftButton);
        QVERIFY(!s.isVisible());
        QCOMPARE(e.m.Header.MYEXAMDAT, QStringLiteral("15.10.2025"));
    }

    void examDateOfJulyComesBackAndOldYearsDoNot() {
        Env e;
        e.m.Header.MYWERTUNGSST = 3;
        e.m.Header.MYEXAMDAT = QStringLiteral("2.7.2026");
        StationForm f;
        FillFromHeader(e.m, e.clock, f);
        QCOMPARE(f.combo3Index, 6);
        QCOMPARE(f.combo4Text, QStringLiteral("2026"));
        e.m.Header.MYEXAMDAT = QStringLiteral("2.7.2019");
        StationForm g;
        FillFromHeader(e.m, e.clock, g);
        QVERIFY(g.combo4Text.isEmpty());
    }

    void memoLinesFollowTheControlsWrap() {
        QCOMPARE(NormalizeMemo({QStringLiteral("IC-7300, "), QStringLiteral("Dipol"), QString(), QString()},
                               StationMode::NewLog),
                 QStringLiteral("IC-7300, \r\nDipol\r\n"));
        const QString longLine(300, QLatin1Char('x'));
        QCOMPARE(NormalizeMemo({longLine}, StationMode::NewLog),
                 QString(256, QLatin1Char('x')) + QStringLiteral("\r\n"));
        QCOMPARE(NormalizeMemo({longLine.left(200), longLine.left(100)}, StationMode::Options).size(), 250);
        QCOMPARE(NormalizeMemo({QString()}, StationMode::Options), QStringLiteral("\r\n"));

        // The window's own wrap turns soft breaks into line ends.
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        auto* t7 = Get<QPlainTextEdit>(s, QStringLiteral("Text7"));
        QString words;
        for (int i = 0; i < 40; ++i)
            words += QStringLiteral("Antenne%1 ").arg(i);
        t7->setPlainText(words + QStringLiteral("\n\n"));
        const QStringList lines = DisplayedLines(t7);
        QVERIFY(lines.size() > 3);
        QCOMPARE(lines.join(QString()), words);
    }

    // Options mode changes the header of an open log with 50 contacts and rewrites the
    // file; every contact line stays byte for byte.
    void optionsModeRewritesTheHeaderOnly() {
        Env e;
        Model tmp = e.m;
        tmp.Header.MYCALL = QStringLiteral("OE1ABC");
        tmp.Header.MYOPCALL = QStringLiteral("OE1ABC");
        tmp.Header.MYBZ = QStringLiteral("WI");
        tmp.Header.MYEMAIL = QStringLiteral("op@example.at");
        tmp.Header.MYSTATION = QStringLiteral("Alte Station\r\n");
        for (int i = 0; i < 50; ++i)
            tmp.LogRecords.push_back(Contact(i));
        const QByteArray before = Cp(BuildLogText(tmp, false, 2025));
        WriteBytes(e.m.LogFolder + QStringLiteral("A.KOLBO"), before);
        e.m.CurrentLogName = QStringLiteral("A.KOLBO");
        QCOMPARE(LoadLog(e.m, e.d, e.m.LogFolder + QStringLiteral("A.KOLBO")), 1);
        QCOMPARE(e.m.LogRecords.size(), size_t(50));
        IniWriteSection(e.m.IniPath, QStringLiteral("OPCALLs"), {QStringLiteral("OE1ABC")});

        QStringList told;
        MainHooks hooks;
        hooks.showStation = [&](const QString& bz, const QString& call, const QString& op) {
            told << QStringLiteral("station %1 %2 %3").arg(bz, call, op);
        };
        hooks.setOperators = [&](const QStringList& rows, const QString& text) {
            told << QStringLiteral("operators %1 / %2").arg(rows.join(QLatin1Char(',')), text);
        };
        hooks.armBackupTimer = [&] { told << QStringLiteral("timer3"); };
        PushModalDriver([&](QDialog& d) {
            QCOMPARE(Btn(d, "Command2")->isVisible(), false);
            QCOMPARE(Btn(d, "Command4")->isVisible(), true);
            QCOMPARE(Btn(d, "Command13")->isVisible(), false);
            QCOMPARE(Btn(d, "Command3")->isEnabled(), false);
            QCOMPARE(Get<QLabel>(d, QStringLiteral("Label10"))->text(), QStringLiteral("A.KOLBO"));
            QCOMPARE(Edit(d, "Text1")->text(), QStringLiteral("OE1ABC"));
            QCOMPARE(Get<QPlainTextEdit>(d, QStringLiteral("Text7"))->toPlainText(),
                     QStringLiteral("Alte Station\n"));
            Edit(d, "Text4")->setText(QStringLiteral("  Hans Müller  "));
            Combo(d, "Combo1")->setCurrentIndex(2);
            Combo(d, "Combo5")->setEditText(QString());
            Type(Combo(d, "Combo5")->lineEdit(), QStringLiteral("oe3new "));
            ClickOpt(d, "Option3", 1);
            Shot(&d, QStringLiteral("StationLog_options"));
            QTest::mouseClick(Btn(d, "Command4"), Qt::LeftButton);
        });
        MnLogoptionen(nullptr, e.m, e.d, e.clock, hooks);
        QVERIFY(e.d.boxes.isEmpty());
        const QByteArray after = ReadBytes(e.m.LogFolder + QStringLiteral("A.KOLBO"));
        QVERIFY(after != before);
        QCOMPARE(AfterEndHead(after), AfterEndHead(before));
        QCOMPARE(AfterEndHead(after).count("\r\n"), 50);
        QVERIFY(after.contains(Cp(QStringLiteral("[MYOPNAME:11]Hans Müller\r\n"))));
        QVERIFY(after.contains("[MYBZ:2]GZ\r\n"));
        QVERIFY(after.contains("[MYPWR:1]1\r\n"));
        QVERIFY(after.contains("[MYOPCALL:6]OE3NEW\r\n"));
        QVERIFY(after.startsWith("CREATED-BY Kolibrino"));
        QVERIFY(!e.m.LogChanged);
        QStringList ops;
        IniReadSection(e.m.IniPath, QStringLiteral("OPCALLs"), ops);
        QCOMPARE(ops, (QStringList{QStringLiteral("OE1ABC"), QStringLiteral("OE3NEW")}));
        QCOMPARE(told,
                 (QStringList{QStringLiteral("operators OE1ABC / "), QStringLiteral("operators OE3NEW / "),
                              QStringLiteral("station GZ OE1ABC OE3NEW"),
                              QStringLiteral("operators OE1ABC,OE3NEW / OE3NEW"), QStringLiteral("timer3")}));
    }

    void optionsModeSetsTheStateStationFlagAndCutsMemos() {
        Env e;
        e.m.CurrentLogName = QStringLiteral("S.KOLBO");
        e.m.Header.MYCALL = QStringLiteral("OEY21");
        e.m.Header.MYOPCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYBZ = QStringLiteral("WI");
        e.m.Header.MYEMAIL = QStringLiteral("a@b.at");
        StationLog s(e.m, e.d, e.clock, {}, StationMode::Options);
        s.FillFromLog();
        s.show();
        ClickOpt(s, "Option2", 4);
        Get<QPlainTextEdit>(s, QStringLiteral("Text8"))->setPlainText(QString(400, QLatin1Char('k')));
        QTest::mouseClick(Btn(s, "Command4"), Qt::LeftButton);
        QVERIFY(!s.isVisible());
        QVERIFY(e.m.IsStaatsfunkstelle);
        QVERIFY(e.m.LogChanged);
        // Wrapped lines of the control, cut to 248 characters before the line end.
        QCOMPARE(e.m.Header.MYKOMMENT.size(), 250);
        QVERIFY(e.m.Header.MYKOMMENT.endsWith(QStringLiteral("k\r\n")));
        QVERIFY(e.m.Header.MYKOMMENT.left(248).contains(QStringLiteral("\r\n")));
        // Options mode with no operator rows writes no section and adds nothing.
        QStringList ops;
        IniReadSection(e.m.IniPath, QStringLiteral("OPCALLs"), ops);
        QVERIFY(ops.isEmpty());
    }

    void optionsSaveKeepsAtMostTenOperators() {
        Env e;
        e.m.CurrentLogName = QStringLiteral("A.KOLBO");
        e.m.Header.MYCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYOPCALL = QStringLiteral("OE1ABC");
        e.m.Header.MYBZ = QStringLiteral("WI");
        e.m.Header.MYEMAIL = QStringLiteral("a@b.at");
        QStringList ten;
        for (int i = 0; i < 10; ++i)
            ten << QStringLiteral("OE1OP%1").arg(i);
        IniWriteSection(e.m.IniPath, QStringLiteral("OPCALLs"), ten);
        StationLog s(e.m, e.d, e.clock, {}, StationMode::Options);
        s.FillFromLog();
        s.show();
        Combo(s, "Combo5")->setEditText(QStringLiteral("OE9NEW"));
        s.SaveClicked();
        QStringList ops;
        IniReadSection(e.m.IniPath, QStringLiteral("OPCALLs"), ops);
        QCOMPARE(ops, ten); // the added eleventh row is the one that goes
        QCOMPARE(e.m.Header.MYOPCALL, QStringLiteral("OE9NEW"));
    }

    void writeFailureOffersRetry() {
        Env e;
        e.m.CurrentLogName = QStringLiteral("X.KOLBO");
        QDir().mkpath(e.m.LogFolder + QStringLiteral("X.KOLBO/sub")); // a folder in the way
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        FillValid(s);
        Get<QLabel>(s, QStringLiteral("Label10"))->setText(QStringLiteral("X.KOLBO"));
        e.d.AnswerMsgBox(Msg::Retry);
        e.d.AnswerMsgBox(Msg::Cancel);
        s.SaveClicked();
        QVERIFY(s.isVisible());
        QCOMPARE(e.d.boxes.size(), 2);
        QVERIFY(e.d.boxes[0].text.startsWith(QStringLiteral("FEHLER\r\n\r\n\t")));
        QCOMPARE(e.d.boxes[0].flags, 21);
        QCOMPARE(e.d.busyDepth, 0);
    }
};

QTEST_MAIN(TestStationLog)
#include "tst_station_log.moc"
