// "Neues Log", "Log Öffnen" and the switch: the same-day warning, the end of an invalid
// log, a corrupt file with Retry and Cancel, and what the main window is told.
#include "core/clock.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "core/tallies.h"
#include "setup/log_new_open.h"
#include "setup/log_switch.h"
#include "setup/modal.h"
#include "setup/setup_flows.h"
#include "setup/station_log.h"
#include "setup_support.h"
#include "test_support.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::setup;
using namespace kolibrino::test;

namespace {

QsoRecord Contact(const QString& call, const QString& datum, const QString& bezirk = QStringLiteral("WI")) {
    QsoRecord r;
    r.Call = call;
    r.Band = 80;
    r.Bezirk = bezirk;
    r.Datum = datum;
    r.Zeit = QStringLiteral("05:10:00");
    r.RstGesendet = QStringLiteral("59");
    r.RstEmpfangen = QStringLiteral("59");
    r.Mode = QStringLiteral("SSB");
    r.ModeRx = QStringLiteral("SSB");
    r.Operator = QStringLiteral("OE1XYZ");
    r.BandRx = QStringLiteral("80");
    r.Frequenz = 3700.5f;
    return r;
}

// A file reader that counts how often it was asked.
struct CountingReader {
    int reads = 0;
    FileReader Reader() {
        return [this](const QString& path, bool* ok) {
            ++reads;
            return ReadFileDefault(path, ok);
        };
    }
};

// What the main window was told, in order.
struct Recorder {
    QStringList calls;
    QString title;
    MainHooks Hooks() {
        MainHooks h;
        h.clearGrid = [this] { calls << QStringLiteral("clearGrid"); };
        h.fillGrid = [this] { calls << QStringLiteral("fillGrid"); };
        h.showStation = [this](const QString& bz, const QString& call, const QString& op) {
            calls << QStringLiteral("showStation %1 %2 %3").arg(bz, call, op);
        };
        h.applyBandDefault = [this] { calls << QStringLiteral("applyBandDefault"); };
        h.refreshSideWindows = [this] { calls << QStringLiteral("refreshSideWindows"); };
        h.setTitle = [this](const QString& t) {
            calls << QStringLiteral("setTitle");
            title = t;
        };
        return h;
    }
};

struct Env : SetupEnv {
    Recorder rec;

    Env() : SetupEnv(QDateTime(QDate(2026, 5, 1), QTime(14, 30))) {}
    // The log as the main window holds it after its Load.
    void Open(const QString& name) {
        m.CurrentLogName = name;
        QVERIFY(LoadLog(m, d, m.LogFolder + name) == 1);
        RebuildTallies(m);
        d.Clear();
    }
};

void PickRow(const QString& name) {
    PushModalDriver([name](QDialog& d) {
        QCOMPARE(d.objectName(), QStringLiteral("LogNewOpen"));
        auto* list = d.findChild<QListWidget*>(QStringLiteral("File1"));
        const auto items = list->findItems(name, Qt::MatchExactly);
        QCOMPARE(items.size(), 1);
        static_cast<LogNewOpen&>(d).OpenRow(items[0]->text());
    });
}

} // namespace

class TestLogSwitch : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        PinLocale();
        SetDriverMode(true);
    }
    void cleanup() { ClearModalDrivers(); }

    // On any other day than 1 May no file is read and no warning comes, however many
    // contacts were logged today.
    void noWarningAndNoReadOnOtherDays_data() {
        QTest::addColumn<QDate>("today");
        QTest::newRow("30 April") << QDate(2026, 4, 30);
        QTest::newRow("2 May") << QDate(2026, 5, 2);
        QTest::newRow("1 June") << QDate(2026, 6, 1);
        QTest::newRow("5 January") << QDate(2026, 1, 5);
    }
    void noWarningAndNoReadOnOtherDays() {
        QFETCH(QDate, today);
        Env e;
        e.clock.Set(QDateTime(today, QTime(15, 0)));
        const QString datum = e.m.Formats.RecordDate(today);
        std::vector<QsoRecord> many;
        for (int i = 0; i < 40; ++i)
            many.push_back(Contact(QStringLiteral("OE3A%1").arg(i), datum));
        e.MakeLog(QStringLiteral("A.KOLBO"), many);
        e.SetLast(QStringLiteral("A.KOLBO"));
        CountingReader counting;
        QCOMPARE(int(SameDayWarning(e.m, e.d, e.clock, nullptr, counting.Reader())), int(SameDay::NoWarning));
        QCOMPARE(counting.reads, 0);
        QVERIFY(e.d.boxes.isEmpty());
    }

    // On 1 May a last log that holds only old dates gives no warning.
    void oldDatesOnTheContestDayGiveNoWarning() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"),
                  {Contact(QStringLiteral("OE3ABC"), QStringLiteral("01.05.2025")),
                   Contact(QStringLiteral("OE3ABD"), QStringLiteral("30.04.2026"))});
        e.SetLast(QStringLiteral("A.KOLBO"));
        CountingReader counting;
        QCOMPARE(int(SameDayWarning(e.m, e.d, e.clock, nullptr, counting.Reader())), int(SameDay::NoWarning));
        QCOMPARE(counting.reads, 1);
        QVERIFY(e.d.boxes.isEmpty());
    }

    void todaysContactOnTheContestDayWarns_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("expected");
        QTest::newRow("Ja") << int(Msg::Yes) << int(SameDay::TakeLastLog);
        QTest::newRow("Nein") << int(Msg::No) << int(SameDay::NewLog);
        QTest::newRow("Abbrechen") << int(Msg::Cancel) << int(SameDay::Cancel);
    }
    void todaysContactOnTheContestDayWarns() {
        QFETCH(int, answer);
        QFETCH(int, expected);
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"),
                  {Contact(QStringLiteral("OE3ABC"), QStringLiteral("01.05.2026"))});
        e.SetLast(QStringLiteral("A.KOLBO"));
        e.d.AnswerMsgBox(answer);
        QString last;
        QCOMPARE(int(SameDayWarning(e.m, e.d, e.clock, &last)), expected);
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].flags, 67);
        QCOMPARE(e.d.boxes[0].text,
                 QStringLiteral(
                     "Du hast heute bereits Stationen geloggt.\r\n\r\nDu musst Contestperiode 1 und 2 \r\n"
                     "(VORMITTAG und NACHMITTAG)\r\nin das selbe Log eintragen.\r\n"
                     "Du erleichterst damit die Auswertung!\r\n\r\nJA = Zuletzt verwendetes Log laden\r\n"
                     "NEIN = Neues Log anlegen\r\nAbbrechen = Zurück zum vorherigen Fenster"));
        if (expected == int(SameDay::TakeLastLog)) QCOMPARE(last, QStringLiteral("A.KOLBO"));
    }

    void headerOnlyOrMissingLastLogGivesNoWarning() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"), {});
        e.SetLast(QStringLiteral("A.KOLBO"));
        QCOMPARE(int(SameDayWarning(e.m, e.d, e.clock)), int(SameDay::NoWarning));
        e.SetLast(QStringLiteral("missing.KOLBO"));
        QCOMPARE(int(SameDayWarning(e.m, e.d, e.clock)), int(SameDay::NoWarning));
        QVERIFY(e.d.boxes.isEmpty());
    }

    // MnOpenLog with the same name chosen again leaves grid, counters and order untouched.
    void openingTheOpenLogAgainChangesNothing() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"),
                  {Contact(QStringLiteral("OE3B"), QStringLiteral("01.05.2026"), QStringLiteral("GZ")),
                   Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        e.MakeLog(QStringLiteral("B.KOLBO"), {});
        e.Open(QStringLiteral("A.KOLBO"));
        std::swap(e.m.LogRecords[0], e.m.LogRecords[1]); // as a sort of the grid leaves them
        const double qsos = e.m.QsoCount;
        PickRow(QStringLiteral("A.KOLBO"));
        QCOMPARE(int(MnOpenLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Unchanged));
        QVERIFY(e.rec.calls.isEmpty());
        QCOMPARE(e.m.QsoCount, qsos);
        QCOMPARE(e.m.LogRecords[0].Call, QStringLiteral("OE3A"));
        QCOMPARE(e.m.LogRecords[1].Call, QStringLiteral("OE3B"));
        // Closing the dialog does nothing either.
        QCOMPARE(int(MnOpenLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Unchanged));
        QVERIFY(e.rec.calls.isEmpty());
    }

    void openingAnotherLogSwitches() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"), {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        e.MakeLog(QStringLiteral("STATE.KOLBO"),
                  {Contact(QStringLiteral("OEY21"), QStringLiteral("01.05.2026")),
                   Contact(QStringLiteral("OE6X"), QStringLiteral("01.05.2026"), QStringLiteral("GZ"))},
                  4, QStringLiteral("OEY99"));
        e.Open(QStringLiteral("A.KOLBO"));
        e.m.Open.Frequenz = true;
        PushModalDriver([](QDialog& d) {
            QVERIFY(!d.findChild<QPushButton*>(QStringLiteral("Command4"))->isEnabled());
            QVERIFY(!d.findChild<QPushButton*>(QStringLiteral("Command5"))->isVisible());
            static_cast<LogNewOpen&>(d).OpenRow(QStringLiteral("STATE.KOLBO"));
        });
        QCOMPARE(int(MnOpenLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Switched));
        QCOMPARE(
            e.rec.calls,
            (QStringList{QStringLiteral("clearGrid"), QStringLiteral("fillGrid"),
                         QStringLiteral("showStation WI OEY99 OEY99"), QStringLiteral("applyBandDefault"),
                         QStringLiteral("refreshSideWindows"), QStringLiteral("setTitle")}));
        QCOMPARE(e.rec.title, QStringLiteral("Kolibrino (") + e.m.LogFolder + QStringLiteral("STATE.KOLBO)"));
        QVERIFY(e.m.IsStaatsfunkstelle);
        QCOMPARE(e.m.QsoCount, 2.0);
        QCOMPARE(e.m.LogRecords.size(), size_t(2));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")),
                 QStringLiteral("STATE.KOLBO"));
    }

    // Cancelling StationLog from MnNeuesLog leaves the current log in place.
    void cancelledNewLogKeepsTheCurrentLog() {
        Env e;
        e.clock.Set(QDateTime(QDate(2026, 3, 3), QTime(10, 0)));
        e.MakeLog(QStringLiteral("A.KOLBO"), {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        e.Open(QStringLiteral("A.KOLBO"));
        e.SetLast(QStringLiteral("A.KOLBO"));
        PushModalDriver([&](QDialog& d) {
            QCOMPARE(d.objectName(), QStringLiteral("StationLog"));
            QVERIFY(d.findChild<QPushButton*>(QStringLiteral("Command13"))->isVisible());
            QVERIFY(d.findChild<QPushButton*>(QStringLiteral("Command2"))->isVisible());
            QVERIFY(!d.findChild<QPushButton*>(QStringLiteral("Command4"))->isVisible());
            QTest::keyClicks(d.findChild<QLineEdit*>(QStringLiteral("Text1")), QStringLiteral("OE1NEU"));
            e.d.AnswerInput(QStringLiteral("NEU"));
            static_cast<StationLog&>(d).ChooseName();
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command1")), Qt::LeftButton);
        });
        QCOMPARE(int(MnNeuesLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Unchanged));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
        QCOMPARE(e.m.LogRecords.size(), size_t(1));
        QCOMPARE(e.m.Header.MYCALL, QStringLiteral("OE1XYZ"));
        QVERIFY(e.rec.calls.isEmpty());
        QVERIFY(!QFile::exists(e.m.LogFolder + QStringLiteral("NEU.KOLBO")));
        QVERIFY(e.d.boxes.isEmpty());
    }

    void newLogIsSavedAndSwitchedTo() {
        Env e;
        e.clock.Set(QDateTime(QDate(2026, 3, 3), QTime(10, 0)));
        e.MakeLog(QStringLiteral("A.KOLBO"), {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        e.Open(QStringLiteral("A.KOLBO"));
        PushModalDriver([&](QDialog& d) {
            QTest::keyClicks(d.findChild<QLineEdit*>(QStringLiteral("Text1")), QStringLiteral("oe3neu"));
            QTest::keyClicks(d.findChild<QComboBox*>(QStringLiteral("Combo5")), QStringLiteral("oe3neu"));
            d.findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(1);
            d.findChild<QLineEdit*>(QStringLiteral("Text6"))->setText(QStringLiteral("neu@example.at"));
            e.d.AnswerInput(QStringLiteral("NEU"));
            static_cast<StationLog&>(d).ChooseName();
            QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("Command2")), Qt::LeftButton);
        });
        QCOMPARE(int(MnNeuesLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Switched));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("NEU.KOLBO"));
        QVERIFY(e.m.LogRecords.empty());
        QCOMPARE(e.m.Header.MYCALL, QStringLiteral("OE3NEU"));
        QCOMPARE(e.m.Header.MYBZ, QStringLiteral("MD"));
        QVERIFY(!e.m.LogChanged);
        QCOMPARE(e.m.QsoCount, 0.0);
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")),
                 QStringLiteral("NEU.KOLBO"));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastNewLogFile")),
                 QStringLiteral("NEU.KOLBO"));
        QCOMPARE(IniReadString(e.m.IniPath, QStringLiteral("Pathe"), QStringLiteral("LastNewLogDate")),
                 QStringLiteral("20260303"));
        QVERIFY(e.rec.calls.contains(QStringLiteral("showStation MD OE3NEU OE3NEU")));
    }

    void sameDayYesOnNewLogTakesTheLastLog() {
        Env e;
        e.MakeLog(QStringLiteral("A.KOLBO"), {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        e.MakeLog(QStringLiteral("B.KOLBO"), {});
        e.Open(QStringLiteral("B.KOLBO"));
        e.SetLast(QStringLiteral("A.KOLBO"));
        e.d.AnswerMsgBox(Msg::Yes);
        QCOMPARE(int(MnNeuesLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Switched));
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("A.KOLBO"));
        QCOMPARE(e.m.LogRecords.size(), size_t(1));
        QCOMPARE(PendingModalDrivers(), 0);
        // Cancel: nothing happens at all.
        e.rec.calls.clear();
        e.d.AnswerMsgBox(Msg::Cancel);
        QCOMPARE(int(MnNeuesLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Unchanged));
        QVERIFY(e.rec.calls.isEmpty());
    }

    void emptyHeaderAndCancelEndsTheProgram() {
        Env e;
        e.clock.Set(QDateTime(QDate(2026, 3, 3), QTime(10, 0)));
        e.m.Header = DefaultHeader(e.m); // no log at all
        QCOMPARE(int(MnNeuesLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::EndProgram));
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text, QStringLiteral("Ungültiges Log!\r\nKolibrino muss beendet werden."));
        QCOMPARE(e.d.boxes[0].flags, int(Msg::Critical));
    }

    // A corrupt file answered with Retry in MnOpenLog shows the dialog again;
    // CurrentLogName holds the bad name, so picking that same name stops at step 3 with
    // an empty grid.
    void corruptFileRetryThenSameNameStopsWithEmptyGrid() {
        Env e;
        e.MakeLog(QStringLiteral("GOOD.KOLBO"),
                  {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        WriteBytes(e.m.LogFolder + QStringLiteral("BAD.KOLBO"), "no log at all\r\n");
        e.Open(QStringLiteral("GOOD.KOLBO"));
        PickRow(QStringLiteral("BAD.KOLBO"));
        PickRow(QStringLiteral("BAD.KOLBO"));
        e.d.AnswerMsgBox(Msg::Retry);
        QCOMPARE(int(MnOpenLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks())), int(SwitchResult::Unchanged));
        QCOMPARE(PendingModalDrivers(), 0); // the dialog came twice
        QCOMPARE(e.d.boxes.size(), 1);
        QCOMPARE(e.d.boxes[0].text,
                 QStringLiteral("Die Datei\r\n") +
                     QDir::toNativeSeparators(e.m.LogFolder + QStringLiteral("BAD.KOLBO")) +
                     QStringLiteral("\r\nist fehlerhaft oder keine gültige Kolibrino Logdatei!"));
        QCOMPARE(e.d.boxes[0].flags, 21);
        QCOMPARE(e.m.CurrentLogName, QStringLiteral("BAD.KOLBO"));
        QVERIFY(e.m.LogRecords.empty());
        QCOMPARE(e.m.QsoCount, 0.0);
        QCOMPARE(e.rec.calls, QStringList{QStringLiteral("clearGrid")});
    }

    void corruptFileCancelEndsTheProgram_data() {
        QTest::addColumn<bool>("fromOpenLog");
        QTest::newRow("Log Öffnen") << true;
        QTest::newRow("Neues Log") << false;
    }
    void corruptFileCancelEndsTheProgram() {
        QFETCH(bool, fromOpenLog);
        Env e;
        e.clock.Set(QDateTime(QDate(2026, 3, 3), QTime(10, 0)));
        e.MakeLog(QStringLiteral("GOOD.KOLBO"),
                  {Contact(QStringLiteral("OE3A"), QStringLiteral("01.05.2026"))});
        WriteBytes(e.m.LogFolder + QStringLiteral("BAD.KOLBO"), "no log at all\r\n");
        e.Open(QStringLiteral("GOOD.KOLBO"));
        e.d.AnswerMsgBox(Msg::Cancel);
        SwitchResult r;
        if (fromOpenLog) {
            PickRow(QStringLiteral("BAD.KOLBO"));
            r = MnOpenLog(nullptr, e.m, e.d, e.clock, e.rec.Hooks());
        } else {
            e.m.CurrentLogName = QStringLiteral("BAD.KOLBO");
            e.m.LogChanged = true;
            r = FinishNewLog(e.m, e.d, e.rec.Hooks());
        }
        QCOMPARE(int(r), int(SwitchResult::EndProgram));
        QCOMPARE(e.d.boxes.size(), fromOpenLog ? 2 : 1);
        if (fromOpenLog) {
            QCOMPARE(e.d.boxes[1].text, QStringLiteral("Kolibrino muss beendet werden."));
            QCOMPARE(e.d.boxes[1].flags, int(Msg::Critical));
        }
        QVERIFY(e.m.LogRecords.empty());
    }
};

QTEST_MAIN(TestLogSwitch)
#include "tst_log_switch.moc"
