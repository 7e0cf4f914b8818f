// The contest clock on the real main window: the time offset menu, the date and time
// fields, their locks, the countdown in the menu bar over the whole day, and the two
// submission reminders.
#include "entry/contest_clock.h"
#include "entry/entry_colours.h"
#include "tst_main_window_support.h"
#include "ui/back_colour.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QString kBlanks(20, QLatin1Char(' '));
const QString kZero = kBlanks + QStringLiteral("00:00:00");

QString MenuBarText(WindowFixture& f) {
    return f.window->Action(QStringLiteral("MnZeitTimer"))->text();
}

// Sets the clock on the contest day and lets Timer4 tick once.
QString CountdownAt(WindowFixture& f, const QTime& t) {
    f.clock.Set(QDateTime(kContestMorning.date(), t));
    f.window->Timer4Tick();
    return MenuBarText(f);
}

QsoRecord OneContact() {
    return MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("06:01:00"));
}

} // namespace

class TestMainWindowClock : public QObject {
    Q_OBJECT

private slots:
    void timersRunAtTheirIntervals() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        QVERIFY(f.window->Timer1().isActive());
        QVERIFY(f.window->Timer4().isActive());
        QVERIFY(!f.window->Timer2().isActive());
        QCOMPARE(f.window->Timer1().interval(), kTimer1IntervalMs);
        QCOMPARE(f.window->Timer2().interval(), kTimer2IntervalMs);
        QCOMPARE(f.window->Timer3().interval(), kTimer3DelayMs);
        QVERIFY(f.window->Timer3().isSingleShot());
        QCOMPARE(f.window->Timer4().interval(), kTimer4IntervalMs);
        // Timer1 follows the clock by itself.
        QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
        f.clock.Set(QDateTime(QDate(2026, 5, 2), QTime(6, 7, 30)));
        QTRY_COMPARE_WITH_TIMEOUT(f.Text(2)->text(), QStringLiteral("06:07"), 2000);
        QTRY_COMPARE_WITH_TIMEOUT(f.Text(1)->text(), QStringLiteral("02.05.2026"), 2000);
    }

    void firstRunStartsTwelveHoursEarly() {
        WindowFixture f;
        QFile::remove(f.home.model.IniPath); // a first run: no settings file
        f.clock.Set(QDateTime(QDate(2026, 5, 1), QTime(18, 0)));
        QVERIFY(f.StartEmpty());
        QVERIFY(f.window->Action(QStringLiteral("zpm0"))->isChecked());
        QCOMPARE(f.home.model.ZeitOffset, -12);
        QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
        QCOMPARE(f.Text(1)->text(), QStringLiteral("01.05.2026"));
        // "-00:00h" leaves local time.
        QAction* zero = f.window->Action(QStringLiteral("zpm12"));
        QCOMPARE(zero->text(), QStringLiteral("-00:00h"));
        zero->trigger();
        QCOMPARE(f.home.model.ZeitOffset, 0);
        QCOMPARE(f.Text(2)->text(), QStringLiteral("18:00"));
        QVERIFY(zero->isChecked());
        QVERIFY(!f.window->Action(QStringLiteral("zpm0"))->isChecked());
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM")),
                 12.0);
    }

    void offsetMenuHasTwentyFiveItems() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        for (int i = 0; i < kZpmCount; ++i) {
            QAction* a = f.window->Action(QStringLiteral("zpm%1").arg(i));
            QVERIFY(a);
            QCOMPARE(a->text(), ZpmCaption(i));
        }
        QVERIFY(!f.window->Action(QStringLiteral("zpm25")));
        QCOMPARE(f.window->Action(QStringLiteral("zpm0"))->text(), QStringLiteral("-12:00h"));
        QCOMPARE(f.window->Action(QStringLiteral("zpm13"))->text(), QStringLiteral("+01:00h"));
        QCOMPARE(f.window->Action(QStringLiteral("zpm24"))->text(), QStringLiteral("+12:00h"));
        f.window->Action(QStringLiteral("zpm14"))->trigger();
        QCOMPARE(f.home.model.ZeitOffset, 2);
        QCOMPARE(f.Text(2)->text(), QStringLiteral("08:00"));
        int checked = 0;
        for (int i = 0; i < kZpmCount; ++i)
            checked += f.window->Action(QStringLiteral("zpm%1").arg(i))->isChecked() ? 1 : 0;
        QCOMPARE(checked, 1);
        // The next start takes the stored item.
        f.window->close();
        WindowFixture g;
        g.Ini(QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), QStringLiteral("5"));
        QVERIFY(g.StartEmpty());
        QVERIFY(g.window->Action(QStringLiteral("zpm5"))->isChecked());
        QCOMPARE(g.home.model.ZeitOffset, -7);
    }

    void countdownOverTheDay_data() {
        QTest::addColumn<QTime>("now");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char* name, QTime t, const QString& s) { QTest::newRow(name) << t << s; };
        row("midnight", QTime(0, 0, 0), kZero);
        row("00:00:10", QTime(0, 0, 10), kBlanks + QStringLiteral("04:59:50 bis Contest-Beginn"));
        row("04:59:59", QTime(4, 59, 59), kBlanks + QStringLiteral("00:00:01 bis Contest-Beginn"));
        row("05:00:00 exact", QTime(5, 0, 0), kZero);
        row("05:00:01", QTime(5, 0, 1), kBlanks + QStringLiteral("02:59:59 bis Ende Periode 1"));
        row("06:30:00 full minute", QTime(6, 30, 0), kZero);
        row("06:30:30", QTime(6, 30, 30), kBlanks + QStringLiteral("01:29:30 bis Ende Periode 1"));
        row("07:59:59", QTime(7, 59, 59), kBlanks + QStringLiteral("00:00:01 bis Ende Periode 1"));
        row("08:00:00 exact", QTime(8, 0, 0), kZero);
        row("08:00:01", QTime(8, 0, 1), kBlanks + QStringLiteral("05:59:59 bis Beginn Periode 2"));
        row("09:30:10", QTime(9, 30, 10), kBlanks + QStringLiteral("04:29:50 bis Beginn Periode 2"));
        row("12:00:05", QTime(12, 0, 5), kBlanks + QStringLiteral("01:59:55 bis Beginn Periode 2"));
        row("13:59:59", QTime(13, 59, 59), kBlanks + QStringLiteral("00:00:01 bis Beginn Periode 2"));
        row("14:00:00 exact", QTime(14, 0, 0), kZero);
        row("14:00:01", QTime(14, 0, 1), kBlanks + QStringLiteral("02:59:59 bis Contest-Ende"));
        row("16:59:59", QTime(16, 59, 59), kBlanks + QStringLiteral("00:00:01 bis Contest-Ende"));
        row("17:00:00 exact", QTime(17, 0, 0), kZero);
        row("17:00:01", QTime(17, 0, 1), kZero);
        row("18:00", QTime(18, 0, 0), kZero);
        row("18:00:07", QTime(18, 0, 7), kZero);
        row("23:59:59", QTime(23, 59, 59), kZero);
    }
    void countdownOverTheDay() {
        QFETCH(QTime, now);
        QFETCH(QString, shown);
        WindowFixture f;
        f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("Countdown"), QStringLiteral("-1"));
        QVERIFY(f.StartEmpty());
        QVERIFY(f.window->Action(QStringLiteral("MnZeitTimer"))->isVisible());
        QCOMPARE(CountdownAt(f, now), shown);
    }

    void countdownRunsByItselfAndFollowsTheOffset() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        QAction* timer = f.window->Action(QStringLiteral("MnZeitTimer"));
        QVERIFY(!timer->isVisible());
        QCOMPARE(timer->text(), QStringLiteral("00:00"));
        f.window->Action(QStringLiteral("MnCountdown"))->trigger();
        QVERIFY(f.window->Action(QStringLiteral("MnCountdown"))->isChecked());
        QVERIFY(timer->isVisible());
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("Countdown")),
            -1.0);
        f.clock.Set(QDateTime(kContestMorning.date(), QTime(9, 30, 10)));
        QTRY_COMPARE_WITH_TIMEOUT(MenuBarText(f), kBlanks + QStringLiteral("04:29:50 bis Beginn Periode 2"),
                                  2000);
        // The countdown runs on contest time: an hour less is an hour more to go.
        f.window->Action(QStringLiteral("zpm11"))->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(MenuBarText(f), kBlanks + QStringLiteral("05:29:50 bis Beginn Periode 2"),
                                  2000);
        f.window->Action(QStringLiteral("MnCountdown"))->trigger();
        QVERIFY(!timer->isVisible());
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("Countdown")),
            0.0);
    }

    void reminderComesOnceAndAgainAfterAContact_data() {
        QTest::addColumn<QTime>("minute");
        QTest::newRow("after Periode 1") << QTime(8, 1, 0);
        QTest::newRow("after Periode 2") << QTime(17, 1, 0);
    }
    void reminderComesOnceAndAgainAfterAContact() {
        QFETCH(QTime, minute);
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), {OneContact()});
        QVERIFY(f.Start());
        int offers = 0;
        f.window->logEinsenden = [&] { ++offers; };
        QVERIFY(!f.window->Action(QStringLiteral("MnLogEinsenden"))->isEnabled());
        // Exactly on the minute: not yet.
        QCOMPARE(CountdownAt(f, minute), kZero);
        QCOMPARE(offers, 0);
        CountdownAt(f, minute.addSecs(1));
        QCOMPARE(offers, 1);
        QVERIFY(minute.hour() == 8 ? f.window->Reminders.OfferedPeriod1 : f.window->Reminders.OfferedPeriod2);
        CountdownAt(f, minute.addSecs(20));
        CountdownAt(f, minute.addSecs(40));
        QCOMPARE(offers, 1);
        // A further contact in the same minute earns a new reminder.
        f.At(minute.addSecs(45));
        f.Type(QStringLiteral("OE5XYZ"), 1, QStringLiteral("GZ"));
        QCOMPARE(f.home.model.LogRecords.size(), size_t(2));
        QVERIFY(!f.window->Reminders.OfferedPeriod1 && !f.window->Reminders.OfferedPeriod2);
        CountdownAt(f, minute.addSecs(50));
        QCOMPARE(offers, 2);
        CountdownAt(f, minute.addSecs(59));
        QCOMPARE(offers, 2);
        // From the next minute on, nothing more.
        f.window->Reminders.ContactLogged();
        CountdownAt(f, minute.addSecs(60));
        CountdownAt(f, minute.addSecs(61));
        QCOMPARE(offers, 2);
    }

    void reminderComesByItselfWhileTheWindowRuns() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), {OneContact()});
        QVERIFY(f.Start());
        int offers = 0;
        f.window->logEinsenden = [&] { ++offers; };
        f.clock.Set(QDateTime(QDate(2026, 5, 3), QTime(17, 1, 30))); // any day
        QTRY_COMPARE_WITH_TIMEOUT(offers, 1, 2000);
        QTest::qWait(3 * kTimer4IntervalMs);
        QCOMPARE(offers, 1);
    }

    void noReminderWithoutContacts() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        int offers = 0;
        f.window->logEinsenden = [&] { ++offers; };
        CountdownAt(f, QTime(8, 1, 30));
        CountdownAt(f, QTime(17, 1, 30));
        QCOMPARE(offers, 0);
        // Without the hook the reminder is a no-op and the disabled entry stays so.
        f.window->logEinsenden = nullptr;
        f.window->Action(QStringLiteral("MnLogEinsenden"))->trigger();
        QVERIFY(!f.window->Action(QStringLiteral("MnLogEinsenden"))->isEnabled());
    }

    void dateTimeLockMenu() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        QAction* lock = f.window->Action(QStringLiteral("MnDateTimeLock"));
        QAction* manual = f.window->Action(QStringLiteral("MnZeitDatumLock"));
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit editierbar"));
        QVERIFY(!lock->isChecked());
        QVERIFY(!f.Text(1)->isReadOnly());
        lock->trigger();
        QVERIFY(lock->isChecked());
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit gesperrt"));
        QVERIFY(f.Text(1)->isReadOnly());
        QVERIFY(f.Text(2)->isReadOnly());
        QCOMPARE(BackColourOf(f.Text(1)), EntryColour::Grey);
        QCOMPARE(f.Text(2)->palette().color(QPalette::Base), ColourOf(EntryColour::Grey));
        // Locked fields take no typing.
        QTest::keyClicks(f.Text(2), QStringLiteral("1"));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
        lock->trigger();
        QVERIFY(!lock->isChecked());
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit editierbar"));
        QVERIFY(!f.Text(2)->isReadOnly());
        QCOMPARE(BackColourOf(f.Text(2)), EntryColour::White);
        // Manual time unlocks and paints green; ending it locks again.
        lock->trigger();
        manual->trigger();
        QVERIFY(manual->isChecked());
        QVERIFY(!lock->isChecked());
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit editierbar"));
        QVERIFY(!f.Text(1)->isReadOnly());
        QCOMPARE(BackColourOf(f.Text(1)), EntryColour::Green);
        QCOMPARE(f.Text(2)->palette().color(QPalette::Base), ColourOf(EntryColour::Green));
        manual->trigger();
        QVERIFY(!manual->isChecked());
        QVERIFY(lock->isChecked());
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit gesperrt"));
        QVERIFY(f.Text(1)->isReadOnly());
        QCOMPARE(BackColourOf(f.Text(2)), EntryColour::Grey);
        // The date lock clears manual time.
        lock->trigger();
        manual->trigger();
        lock->trigger();
        QVERIFY(lock->isChecked());
        QVERIFY(!manual->isChecked());
        QCOMPARE(BackColourOf(f.Text(1)), EntryColour::Grey);
    }

    void manualTimeKeepsTheFieldsWhileTheCountdownRuns() {
        WindowFixture f;
        QVERIFY(f.StartEmpty());
        f.window->Action(QStringLiteral("MnCountdown"))->trigger();
        f.window->Action(QStringLiteral("MnZeitDatumLock"))->trigger();
        f.Text(2)->setText(QStringLiteral("05:10"));
        f.Text(1)->setText(QStringLiteral("01.05.2026"));
        // ResetEntry starts Timer1 again; with manual time its ticks leave the fields.
        QTest::keyClick(f.Text(3), Qt::Key_W, Qt::ControlModifier);
        QVERIFY(f.window->Timer1().isActive());
        f.clock.Set(QDateTime(QDate(2026, 5, 2), QTime(9, 30, 10)));
        QTRY_COMPARE_WITH_TIMEOUT(MenuBarText(f), kBlanks + QStringLiteral("04:29:50 bis Beginn Periode 2"),
                                  2000);
        f.window->Timer1Tick();
        QCOMPARE(f.Text(2)->text(), QStringLiteral("05:10"));
        QCOMPARE(f.Text(1)->text(), QStringLiteral("01.05.2026"));
        f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
        QCOMPARE(f.home.model.LogRecords.back().Zeit, QStringLiteral("05:10:00"));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("05:10"));
        // Ending manual time lets the clock take over.
        f.window->Action(QStringLiteral("MnZeitDatumLock"))->trigger();
        QCOMPARE(f.Text(2)->text(), QStringLiteral("09:30"));
        QCOMPARE(f.Text(1)->text(), QStringLiteral("02.05.2026"));
    }

    void dateTimeLockIsRestoredAndWrittenAtClosing() {
        WindowFixture f;
        f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock"), QStringLiteral("-1"));
        QVERIFY(f.StartEmpty());
        QAction* lock = f.window->Action(QStringLiteral("MnDateTimeLock"));
        QVERIFY(lock->isChecked());
        QCOMPARE(lock->text(), QStringLiteral("&Datum/Zeit gesperrt"));
        QVERIFY(f.Text(2)->isReadOnly());
        QCOMPARE(BackColourOf(f.Text(1)), EntryColour::Grey);
        lock->trigger();
        // Only closing writes the key.
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")),
            -1.0);
        f.window->close();
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")),
            0.0);

        WindowFixture g;
        QVERIFY(g.StartEmpty());
        QVERIFY(!g.window->Action(QStringLiteral("MnDateTimeLock"))->isChecked());
        g.window->Action(QStringLiteral("MnZeitDatumLock"))->trigger(); // manual time: not locked
        g.window->close();
        QCOMPARE(
            IniReadInt(g.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")),
            0.0);
        WindowFixture h;
        QVERIFY(h.StartEmpty());
        h.window->Action(QStringLiteral("MnDateTimeLock"))->trigger();
        h.window->close();
        QCOMPARE(
            IniReadInt(h.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")),
            -1.0);
    }
};

QTEST_MAIN(TestMainWindowClock)
#include "tst_main_window_clock.moc"
