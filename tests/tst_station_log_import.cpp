// The station settings' file-name choice, the import from the last log and the
// operator list editor.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "setup/modal.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

struct Env : SetupEnv {
    void Touch(const QString& name) { WriteBytes(m.LogFolder + name, "x"); }
    bool Exists(const QString& name) const { return QFile::exists(m.LogFolder + name); }
};

template <typename T> T* Get(QWidget& w, const char* name) {
    return w.findChild<T*>(QString::fromLatin1(name));
}

StationForm WithCall(const QString& call) {
    StationForm f;
    f.text1 = call;
    return f;
}

QList<QListWidgetItem*> Items(QListWidget* l) {
    QList<QListWidgetItem*> items;
    for (int i = 0; i < l->count(); ++i)
        items << l->item(i);
    return items;
}

QStringList Rows(QListWidget* l) {
    QStringList rows;
    for (int i = 0; i < l->count(); ++i)
        rows << l->item(i)->text();
    return rows;
}

} // namespace

class TestStationLogImport : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
    }

    void fileNameNeedsTheCallFirst() {
        Env e;
        StationForm f = WithCall(QStringLiteral(" OE "));
        QCOMPARE(int(ChooseFileName(e.m, e.d, e.clock, f)), int(Focus::Text1));
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Bitte zuerst das Stationsrufzeichen eingeben!"));
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Information));
        QVERIFY(e.d.prompts.isEmpty());
    }

    void fileNameAnswers_data() {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("fileName"); // empty: refused
        QTest::newRow("as offered") << "ZEFT_OE1ABC_P_20260310"
                                    << "ZEFT_OE1ABC_P_20260310.KOLBO";
        QTest::newRow("slash replaced") << "mein/log"
                                        << "mein_log.KOLBO";
        QTest::newRow("blanks kept") << " a b "
                                     << " a b .KOLBO";
        QTest::newRow("empty passes") << ""
                                      << ".KOLBO";
        QTest::newRow("colon") << "a:b"
                               << "";
        QTest::newRow("question mark") << "a?"
                                       << "";
        QTest::newRow("control code") << "a\x01"
                                      << "";
        QTest::newRow("above 255") << QStringLiteral("a\u0100") << "";
    }
    void fileNameAnswers() {
        QFETCH(QString, answer);
        QFETCH(QString, fileName);
        Env e;
        e.m.CurrentLogName = QStringLiteral("OLD.KOLBO");
        StationForm f = WithCall(QStringLiteral(" oe1abc/p "));
        f.label10 = QStringLiteral("before");
        e.d.AnswerInput(answer);
        ChooseFileName(e.m, e.d, e.clock, f);
        QCOMPARE(e.d.prompts, QStringList{QStringLiteral("Namen für neues Log eingeben")});
        if (fileName.isEmpty()) {
            QCOMPARE(e.d.boxes.size(), 1);
            QCOMPARE(e.d.boxes[0].text, QStringLiteral("Dateiname ungültig"));
            QCOMPARE(e.d.boxes[0].flags, 0);
            QCOMPARE(f.label10, QStringLiteral("before"));
            QCOMPARE(e.m.CurrentLogName, QStringLiteral("OLD.KOLBO"));
        } else {
            QVERIFY(e.d.boxes.isEmpty());
            QCOMPARE(f.label10, fileName);
            QCOMPARE(e.m.CurrentLogName, fileName);
        }
    }

    void fileNameCancelChangesNothing() {
        Env e;
        StationForm f = WithCall(QStringLiteral("OE1ABC"));
        e.d.AnswerInput(std::nullopt);
        ChooseFileName(e.m, e.d, e.clock, f);
        QVERIFY(f.label10.isEmpty());
        QVERIFY(e.m.CurrentLogName.isEmpty());
    }

    void existingFileYesDeletesItAtOnce() {
        Env e;
        e.Touch(QStringLiteral("A.KOLBO"));
        StationForm f = WithCall(QStringLiteral("OE1ABC"));
        e.d.AnswerInput(QStringLiteral("A"));
        e.d.AnswerMsgBox(Msg::Yes);
        ChooseFileName(e.m, e.d, e.clock, f);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Datei existiert bereits! Überschreiben?"));
        QCOMPARE(e.d.boxes[0].flags, 292);
        QVERIFY(!e.Exists(QStringLiteral("A.KOLBO")));
        QCOMPARE(f.label10, QStringLiteral("A.KOLBO"));
    }

    // No asks again; the file of the first name goes all the same, and the first name
    // wins over the one chosen in the second pass.
    void existingFileNoAsksAgainAndTheFirstNameWins() {
        Env e;
        e.Touch(QStringLiteral("A.KOLBO"));
        StationForm f = WithCall(QStringLiteral("OE1ABC"));
        e.d.AnswerInput(QStringLiteral("A"));
        e.d.AnswerMsgBox(Msg::No);
        e.d.AnswerInput(QStringLiteral("B"));
        ChooseFileName(e.m, e.d, e.clock, f);
        QCOMPARE(e.d.prompts.size(), 2);
        QVERIFY(!e.Exists(QStringLiteral("A.KOLBO")));
        QCOMPARE(f.label10, QStringLiteral("A.KOLBO"));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
    }

    // A log that does not reach the trash is never overwritten by the new one: the flow
    // stops with a German box and the name is not taken.
    void aFailedMoveToTheTrashStopsTheNewLog() {
        Env e;
        e.Touch(QStringLiteral("A.KOLBO"));
        // Neither the desktop's trash nor the backup folder can take the file.
        const QString notAFolder = e.home.Path(QStringLiteral("keinOrdner"));
        WriteBytes(notAFolder, "x");
        qputenv("XDG_DATA_HOME", notAFolder.toLocal8Bit());
        e.m.BackupFolder = notAFolder + QLatin1Char('/');
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        Get<QLineEdit>(s, "Text1")->setText(QStringLiteral("OE1ABC"));
        e.d.AnswerInput(QStringLiteral("A"));
        e.d.AnswerMsgBox(Msg::Yes);    // "Datei existiert bereits! Überschreiben?"
        e.d.AnswerMsgBox(Msg::Cancel); // FEHLER
        QTest::mouseClick(Get<QLabel>(s, "Label10"), Qt::LeftButton);
        qputenv("XDG_DATA_HOME", e.home.Path(QStringLiteral("xdg")).toLocal8Bit());
        QCOMPARE(e.d.boxes.size(), 3);
        QVERIFY(e.d.boxes[1].text.startsWith(QStringLiteral("FEHLER")));
        QVERIFY(e.d.boxes[2].text.contains(QStringLiteral("nicht in den Papierkorb verschoben")));
        QCOMPARE(e.d.boxes[2].flags, 48);
        QVERIFY(e.Exists(QStringLiteral("A.KOLBO")));
        QCOMPARE(ReadBytes(e.m.LogFolder + QStringLiteral("A.KOLBO")), QByteArray("x"));
        QVERIFY(Get<QLabel>(s, "Label10")->text() != QStringLiteral("A.KOLBO"));
        QVERIFY(e.m.CurrentLogName != QStringLiteral("A.KOLBO"));
    }

    void theLabelAndTheSmallButtonChooseTheName() {
        Env e;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        Get<QLineEdit>(s, "Text1")->setText(QStringLiteral("OE1ABC"));
        e.d.AnswerInput(QStringLiteral("EINS"));
        QTest::mouseClick(Get<QLabel>(s, "Label10"), Qt::LeftButton);
        QCOMPARE(Get<QLabel>(s, "Label10")->text(), QStringLiteral("EINS.KOLBO"));
        e.d.AnswerInput(QStringLiteral("ZWEI"));
        QTest::mouseClick(Get<QPushButton>(s, "Command3"), Qt::LeftButton);
        QCOMPARE(Get<QLabel>(s, "Label10")->text(), QStringLiteral("ZWEI.KOLBO"));
    }

    void importFillsTheFormWithItsQuirks() {
        Env e;
        Model last = e.m;
        LogHeader& h = last.Header;
        h.MYCALL = QStringLiteral("OE3XYZ");
        h.MYLOCATOR = QStringLiteral("JN88DF");
        h.MYBZ = QStringLiteral("GZ");
        h.MYOMYL = 1;
        h.MYOPCALL = QStringLiteral("OE3OP");
        h.MYOPNAME = QStringLiteral("Anna Grün");
        h.MYADRESS = QStringLiteral("Hauptstraße 1");
        h.MYPLZ = QStringLiteral("8010");
        h.MYCITY = QStringLiteral("Graz");
        h.MYEMAIL = QStringLiteral("anna@example.at");
        h.MYWERTUNGSST = 3;
        h.MYPWR = 1;
        h.MYSTATION = QStringLiteral("FT-991\r\nDipol\r\n");
        h.MYKOMMENT = QStringLiteral("Danke\r\n");
        h.MYEXAMDAT = QStringLiteral("4.2.2025");
        h.MYOPKLASS = 2;
        h.MYNPOWER = 0; // stored "0": one character, so "Ja" comes back
        WriteBytes(e.m.LogFolder + QStringLiteral("LAST.KOLBO"), Cp(BuildLogText(last, false, 2026)));
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("LAST.KOLBO"));

        e.m.Header.MYNPOWER = 0;
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.SetImportVisible(true);
        s.show();
        QTest::mouseClick(Get<QPushButton>(s, "Command13"), Qt::LeftButton);
        QVERIFY(e.d.boxes.isEmpty());
        const StationForm f = s.ReadForm();
        QCOMPARE(f.text1, QStringLiteral("OE3XYZ"));
        QCOMPARE(f.text3, QStringLiteral("JN88DF"));
        QCOMPARE(f.combo5Text, QStringLiteral("OE3OP"));
        QCOMPARE(f.text4, QStringLiteral("Anna Grün"));
        QCOMPARE(f.text5, QStringLiteral("Hauptstraße 1"));
        QCOMPARE(f.text9, QStringLiteral("8010"));
        QCOMPARE(f.text10, QStringLiteral("Graz"));
        QCOMPARE(f.text6, QStringLiteral("anna@example.at"));
        QCOMPARE(f.text7, QStringLiteral("FT-991\nDipol\n"));
        QCOMPARE(f.text8, QStringLiteral("Danke\n"));
        QCOMPARE(f.option1, 1);
        QCOMPARE(f.option2, 3);
        QVERIFY(Get<QGroupBox>(s, "Frame5")->isVisible());
        QCOMPARE(f.option3, 1);
        QCOMPARE(f.option4, 2);
        // Dropped: the district and the exam date are chosen anew.
        QVERIFY(f.combo1Text.isEmpty());
        QCOMPARE(f.combo3Index, -1);
        QVERIFY(f.combo2Text.isEmpty());
        // The length of the MYNPOWER tag picks the button.
        QCOMPARE(f.option5, 1);
        QCOMPARE(e.m.Header.MYNPOWER, 2);
        Shot(&s, QStringLiteral("StationLog_imported"));
    }

    void importOfADamagedTagKeepsWhatWasFilled() {
        Env e;
        WriteBytes(
            e.m.LogFolder + QStringLiteral("LAST.KOLBO"),
            "[MYCALL:6]OE3XYZ\r\n[MYLOCATOR:6]JN88DF\r\n[MYBZ:x]GZ\r\n[MYOPCALL:5]OE3OP\r\n[ENDHEAD:]\r\n");
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("LAST.KOLBO"));
        StationForm f;
        ImportLastLog(e.m, e.d, f);
        QCOMPARE(f.text1, QStringLiteral("OE3XYZ"));
        QCOMPARE(f.text3, QStringLiteral("JN88DF"));
        QVERIFY(f.combo5Text.isEmpty());
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text,
                 QStringLiteral("Die Datei\r\n\r\nist fehlerhaft oder keine gültige Kolibrino Logdatei!"));
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Critical));
    }

    void importOfPowerTagWithoutBracketClearsItQuietly() {
        Env e;
        WriteBytes(e.m.LogFolder + QStringLiteral("LAST.KOLBO"), "[MYCALL:6]OE3XYZ\r\n[MYNPOWER:1");
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("LAST.KOLBO"));
        e.m.Header.MYNPOWER = 2;
        StationForm f;
        ImportLastLog(e.m, e.d, f);
        QCOMPARE(e.m.Header.MYNPOWER, 0);
        QCOMPARE(f.text1, QStringLiteral("OE3XYZ"));
        QVERIFY(e.d.boxes.isEmpty());
    }

    void importWithoutLastLogDoesNothing() {
        Env e;
        StationForm f;
        f.text1 = QStringLiteral("KEEP");
        ImportLastLog(e.m, e.d, f);
        IniWrite(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("gone.KOLBO"));
        ImportLastLog(e.m, e.d, f);
        QCOMPARE(f.text1, QStringLiteral("KEEP"));
        QVERIFY(e.d.boxes.isEmpty());
    }

    void listEditorAddsEditsAndTakesOver() {
        Env e;
        IniWriteSection(e.m.IniPath, QStringLiteral("OPCALLs"),
                        {QStringLiteral("OE1AAA"), QStringLiteral("OE1BBB")});
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.SetLogManager([](const QString&) {});
        s.show();
        auto* combo5 = Get<QComboBox>(s, "Combo5");
        QCOMPARE(combo5->count(), 2);
        QTest::mouseClick(Get<QPushButton>(s, "Command5"), Qt::LeftButton);
        auto* frame7 = Get<QGroupBox>(s, "Frame7");
        auto* list1 = Get<QListWidget>(s, "List1");
        QVERIFY(frame7->isVisible());
        QVERIFY(!Get<QGroupBox>(s, "Frame1")->isEnabled());
        QVERIFY(!Get<QGroupBox>(s, "Frame2")->isEnabled());
        QVERIFY(!Get<QPushButton>(s, "Command2")->isEnabled());
        QCOMPARE(Rows(list1), (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE1BBB")}));

        // New: too short, then good.
        QTest::mouseClick(Get<QPushButton>(s, "Command10"), Qt::LeftButton);
        QVERIFY(Get<QWidget>(s, "Picture7")->isVisible());
        QVERIFY(!frame7->isEnabled());
        Shot(&s, QStringLiteral("StationLog_listentry"));
        Get<QLineEdit>(s, "Text2")->setText(QStringLiteral(" oe "));
        QTest::mouseClick(Get<QPushButton>(s, "Command11"), Qt::LeftButton);
        QCOMPARE(e.d.LastBox()->text, QStringLiteral("Rufzeichen muss mindestens 3 Zeichen lang sein!"));
        QCOMPARE(e.d.LastBox()->flags, int(Msg::Critical));
        Get<QLineEdit>(s, "Text2")->setText(QStringLiteral(" oe3ccc "));
        QTest::mouseClick(Get<QPushButton>(s, "Command11"), Qt::LeftButton);
        QVERIFY(!Get<QWidget>(s, "Picture7")->isVisible());
        QVERIFY(frame7->isEnabled());
        QCOMPARE(Rows(list1).last(), QStringLiteral("OE3CCC"));

        // Edit: without a selection, then the first row by double click.
        list1->clearSelection();
        list1->setCurrentRow(-1);
        QTest::mouseClick(Get<QPushButton>(s, "Command9"), Qt::LeftButton);
        QCOMPARE(e.d.LastBox()->text, QStringLiteral("Kein Rufzeichen ausgewählt!"));
        QCOMPARE(e.d.LastBox()->flags, int(Msg::Information));
        const QRect r = list1->visualItemRect(list1->item(0));
        QTest::mouseClick(list1->viewport(), Qt::LeftButton, {}, r.center());
        QTest::mouseDClick(list1->viewport(), Qt::LeftButton, {}, r.center());
        QCOMPARE(Get<QLineEdit>(s, "Text2")->text(), QStringLiteral("OE1AAA"));
        QCOMPARE(Get<QLineEdit>(s, "Text2")->selectedText(), QStringLiteral("OE1AAA"));
        Get<QLineEdit>(s, "Text2")->setText(QStringLiteral("OE1ZZZ"));
        QTest::mouseClick(Get<QPushButton>(s, "Command11"), Qt::LeftButton);
        QCOMPARE(Rows(list1),
                 (QStringList{QStringLiteral("OE1ZZZ"), QStringLiteral("OE1BBB"), QStringLiteral("OE3CCC")}));
        Shot(&s, QStringLiteral("StationLog_list"));

        // OK: the list goes to Combo5, the typed text with it.
        combo5->setEditText(QStringLiteral("OE1AAA"));
        QTest::mouseClick(Get<QPushButton>(s, "Command7"), Qt::LeftButton);
        QVERIFY(!frame7->isVisible());
        QVERIFY(Get<QGroupBox>(s, "Frame1")->isEnabled());
        QVERIFY(Get<QPushButton>(s, "Command3")->isEnabled());
        QCOMPARE(combo5->count(), 3);
        QCOMPARE(combo5->itemText(0), QStringLiteral("OE1ZZZ"));
        QVERIFY(combo5->currentText().isEmpty());
        // Nothing in the settings yet.
        QStringList ops;
        IniReadSection(e.m.IniPath, QStringLiteral("OPCALLs"), ops);
        QCOMPARE(ops, (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE1BBB")}));
    }

    void listEditorHoldsTenAtMost() {
        Env e;
        QStringList ten;
        for (int i = 0; i < 10; ++i)
            ten << QStringLiteral("OE1OP%1").arg(i);
        IniWriteSection(e.m.IniPath, QStringLiteral("OPCALLs"), ten);
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        s.OpenListEditor();
        QTest::mouseClick(Get<QPushButton>(s, "Command10"), Qt::LeftButton);
        QCOMPARE(e.d.LastBox()->text,
                 QStringLiteral("Du must zuerst ein Rufzeichen löschen um ein neues eingeben zu können!\r\n"
                                "Es sind maximal 10 Rufzeichen möglich."));
        QCOMPARE(e.d.LastBox()->flags, int(Msg::Information));
        QVERIFY(!Get<QWidget>(s, "Picture7")->isVisible());
        // Cancel leaves Combo5 as it was; without the log manager the name stays locked.
        QTest::mouseClick(Get<QPushButton>(s, "Command6"), Qt::LeftButton);
        QCOMPARE(Get<QComboBox>(s, "Combo5")->count(), 10);
        QVERIFY(!Get<QPushButton>(s, "Command3")->isEnabled());
    }

    void listEditorDeletesWithAQuestionEach() {
        Env e;
        IniWriteSection(
            e.m.IniPath, QStringLiteral("OPCALLs"),
            {QStringLiteral("OE1A"), QStringLiteral("OE1B"), QStringLiteral("OE1C"), QStringLiteral("OE1D")});
        StationLog s(e.m, e.d, e.clock, {}, StationMode::NewLog);
        s.show();
        s.OpenListEditor();
        auto* list1 = Get<QListWidget>(s, "List1");
        list1->clearSelection();
        QTest::mouseClick(Get<QPushButton>(s, "Command8"), Qt::LeftButton);
        QCOMPARE(e.d.LastBox()->text, QStringLiteral("Kein Rufzeichen ausgewählt!"));
        for (QListWidgetItem* i : Items(list1))
            i->setSelected(true);
        e.d.Clear();
        e.d.AnswerMsgBox(Msg::Yes);
        e.d.AnswerMsgBox(Msg::No);
        e.d.AnswerMsgBox(Msg::Yes);
        e.d.AnswerMsgBox(Msg::Cancel);
        QTest::mouseClick(Get<QPushButton>(s, "Command8"), Qt::LeftButton);
        QCOMPARE(e.d.boxes.size(), 4);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Möchtest du 'OE1A' wirklich aus der Liste löschen?"));
        QCOMPARE(e.d.boxes[0].flags, 35);
        QCOMPARE(e.d.beeps, 1);
        QCOMPARE(Rows(list1), (QStringList{QStringLiteral("OE1B"), QStringLiteral("OE1D")}));
    }
};

QTEST_MAIN(TestStationLogImport)
#include "tst_station_log_import.moc"
