// The contest clock and the main window's timers, without the window: time offset,
// date and time fields, dupe blinking, delayed backup, countdown, reminders, locks.
#include "core/clock.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/contest_clock.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QDate kContestDay(2026, 5, 1);

QDateTime At(int h, int m, int s = 0, QDate d = kContestDay) {
    return QDateTime(d, QTime(h, m, s));
}

LocaleFormats Formats() {
    return LocaleFormats(AustrianLocale());
}

QString Blanks() {
    return QString(20, QLatin1Char(' '));
}

} // namespace

class TestContestClock : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    // ---- time offset ----

    void zpmCaptionsRunFromMinusTwelveToPlusTwelve_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<int>("hours");
        QTest::newRow("0") << 0 << QStringLiteral("-12:00h") << -12;
        QTest::newRow("1") << 1 << QStringLiteral("-11:00h") << -11;
        QTest::newRow("11") << 11 << QStringLiteral("-01:00h") << -1;
        QTest::newRow("12") << 12 << QStringLiteral("-00:00h") << 0;
        QTest::newRow("13") << 13 << QStringLiteral("+01:00h") << 1;
        QTest::newRow("14") << 14 << QStringLiteral("+02:00h") << 2;
        QTest::newRow("24") << 24 << QStringLiteral("+12:00h") << 12;
    }
    void zpmCaptionsRunFromMinusTwelveToPlusTwelve() {
        QFETCH(int, index);
        QFETCH(QString, caption);
        QFETCH(int, hours);
        QCOMPARE(ZpmCaption(index), caption);
        QCOMPARE(LeadingHours(caption), hours);
        QCOMPARE(ZeitOffsetOfIndex(index), hours);
        QCOMPARE(ZpmIndexOfOffset(hours), index);
    }

    void everyZpmItemMapsToItsOffsetAndBack() {
        for (int i = 0; i < kZpmCount; ++i) {
            QCOMPARE(ZeitOffsetOfIndex(i), i - 12);
            QCOMPARE(ZpmIndexOfOffset(ZeitOffsetOfIndex(i)), i);
        }
    }

    void zpmOutsideTheMenuHasNoCaptionAndNoIndex() {
        QVERIFY(ZpmCaption(-1).isEmpty());
        QVERIFY(ZpmCaption(25).isEmpty());
        QCOMPARE(ZeitOffsetOfIndex(25), 0);
        QCOMPARE(ZpmIndexOfOffset(13), -1);
        QCOMPARE(ZpmIndexOfOffset(-13), -1);
        QCOMPARE(LeadingHours(QStringLiteral("h")), 0);
    }

    void firstRunWithZeitPmZeroShowsTheTimeTwelveHoursEarly() {
        Home h;
        const QString ini = h.model.IniPath;
        QCOMPARE(ReadZpmIndex(ini), 0);
        const int offset = ZeitOffsetOfIndex(ReadZpmIndex(ini));
        QCOMPARE(offset, -12);
        const FixedTimeSource clock(At(15, 30));
        const DateTimeTexts shown = DateTimeFieldTexts(Formats(), ContestNow(clock, offset), false, {}, {});
        QCOMPARE(*shown.text2, QStringLiteral("03:30"));
        QCOMPARE(*shown.text1, QStringLiteral("01.05.2026"));
    }

    void selectingMinusZeroKeepsLocalTimeAndStoresTheIndex() {
        Home h;
        const QString ini = h.model.IniPath;
        const std::optional<int> offset = StoreZpmChoice(12, ini);
        QVERIFY(offset);
        QCOMPARE(*offset, 0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM")), 12.0);
        QCOMPARE(ReadZpmIndex(ini), 12);
        const FixedTimeSource clock(At(15, 30));
        QCOMPARE(*DateTimeFieldTexts(Formats(), ContestNow(clock, *offset), false, {}, {}).text2,
                 QStringLiteral("15:30"));
    }

    void zpmClickStoresTheIndexNotTheHours() {
        Home h;
        QCOMPARE(*StoreZpmChoice(10, h.model.IniPath), -2);
        QCOMPARE(IniReadInt(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM")),
                 10.0);
        QVERIFY(!StoreZpmChoice(25, h.model.IniPath));
        QCOMPARE(ReadZpmIndex(h.model.IniPath), 10);
    }

    void storedZeitPmOutsideTheMenuStartsAtTheFirstItem() {
        Home h;
        IniWrite(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), 31);
        QCOMPARE(ReadZpmIndex(h.model.IniPath), 0);
        IniWrite(h.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ZeitPM"), -3);
        QCOMPARE(ReadZpmIndex(h.model.IniPath), 0);
    }

    void offsetMovesTheDateAcrossMidnight() {
        const FixedTimeSource clock(At(23, 30));
        const DateTimeTexts shown = DateTimeFieldTexts(Formats(), ContestNow(clock, 2), false, {}, {});
        QCOMPARE(*shown.text1, QStringLiteral("02.05.2026"));
        QCOMPARE(*shown.text2, QStringLiteral("01:30"));
    }

    // ---- Timer1 ----

    void timer1WritesOnlyAFieldThatDiffers() {
        const DateTimeTexts same = DateTimeFieldTexts(Formats(), At(9, 30, 45), false,
                                                      QStringLiteral("01.05.2026"), QStringLiteral("09:30"));
        QVERIFY(!same.text1);
        QVERIFY(!same.text2);
        const DateTimeTexts minute = DateTimeFieldTexts(
            Formats(), At(9, 31), false, QStringLiteral("01.05.2026"), QStringLiteral("09:30"));
        QVERIFY(!minute.text1);
        QCOMPARE(*minute.text2, QStringLiteral("09:31"));
    }

    void withManualTimeTheFieldsStayAsTypedWhileTheCountdownRuns() {
        DateTimeLockState lock;
        lock.ClickZeitDatumLock();
        QVERIFY(lock.Timer1Paused());
        const QDateTime now = At(9, 30, 10);
        const DateTimeTexts shown = DateTimeFieldTexts(Formats(), now, lock.Timer1Paused(),
                                                       QStringLiteral("30.04.2026"), QStringLiteral("23:59"));
        QVERIFY(!shown.text1);
        QVERIFY(!shown.text2);
        SubmissionReminders reminders;
        QCOMPARE(CountdownTick(Formats(), now, reminders, 3).caption,
                 Blanks() + QStringLiteral("04:29:50 bis Beginn Periode 2"));
    }

    // ---- Timer2 ----

    void dupeButtonBlinksBetweenRedAndButtonFace() {
        QCOMPARE(BlinkColour(EntryColour::Red), EntryColour::ButtonFace);
        QCOMPARE(BlinkColour(EntryColour::ButtonFace), EntryColour::Red);
        QCOMPARE(BlinkColour(0x00123456), EntryColour::Red);
        DupeButton b;
        QVERIFY(!b.enabled);
        b.Show();
        QVERIFY(b.enabled);
        QVERIFY(b.blinking);
        QCOMPARE(b.backColour, EntryColour::Red);
        b.Tick();
        QCOMPARE(b.backColour, EntryColour::ButtonFace);
        b.Tick();
        QCOMPARE(b.backColour, EntryColour::Red);
    }

    void dupeButtonClickStopsTheBlinking() {
        DupeButton b;
        b.Show();
        b.Tick();
        b.Dismiss();
        QVERIFY(!b.enabled);
        QVERIFY(!b.blinking);
        const quint32 colour = b.backColour;
        b.Tick();
        QCOMPARE(b.backColour, colour);
    }

    // ---- Timer3 ----

    void delayedBackupFiresOnceAfterTheDelay() {
        DelayedBackup d;
        const QDateTime t0 = At(9, 0);
        QVERIFY(!d.Fire(t0));
        d.Arm(t0);
        QVERIFY(d.Armed());
        QVERIFY(!d.Fire(t0.addMSecs(kTimer3DelayMs - 1)));
        QVERIFY(d.Fire(t0.addMSecs(kTimer3DelayMs)));
        QVERIFY(!d.Armed());
        QVERIFY(!d.Fire(t0.addMSecs(kTimer3DelayMs + 5000)));
    }

    void aNewEntryPutsTheBackupOff() {
        DelayedBackup d;
        const QDateTime t0 = At(9, 0);
        d.Arm(t0);
        d.Arm(t0.addMSecs(1000));
        QVERIFY(!d.Fire(t0.addMSecs(kTimer3DelayMs)));
        QVERIFY(d.Fire(t0.addMSecs(kTimer3DelayMs + 1000)));
    }

    void delayedBackupCopiesTheLogToTheBackupFolder() {
        Home h;
        h.model.CurrentLogName = QStringLiteral("OE1XYZ.KOLBO");
        const QByteArray bytes = Cp(QStringLiteral("[MYCALL:]OE1XYZ\r\n"));
        WriteBytes(h.model.LogFolder + h.model.CurrentLogName, bytes);
        ScriptedDialogs dialogs;
        RunDelayedBackup(h.model, dialogs);
        QCOMPARE(ReadBytes(h.model.BackupFolder + h.model.CurrentLogName), bytes);
        QVERIFY(dialogs.boxes.isEmpty());
    }

    void delayedBackupWithoutALogDoesNothing() {
        Home h;
        ScriptedDialogs dialogs;
        RunDelayedBackup(h.model, dialogs);
        QVERIFY(QDir(h.model.BackupFolder).entryList(QDir::Files).isEmpty());
        QVERIFY(dialogs.boxes.isEmpty());
    }

    // ---- Timer4: countdown ----

    void countdownAcrossTheDay_data() {
        QTest::addColumn<QTime>("now");
        QTest::addColumn<QString>("caption");
        const QString zeros = QStringLiteral("00:00:00");
        QTest::newRow("00:00:00 full minute") << QTime(0, 0, 0) << zeros;
        QTest::newRow("00:00:01") << QTime(0, 0, 1) << QStringLiteral("04:59:59 bis Contest-Beginn");
        QTest::newRow("03:15:20") << QTime(3, 15, 20) << QStringLiteral("01:44:40 bis Contest-Beginn");
        QTest::newRow("04:59:00 full minute") << QTime(4, 59, 0) << zeros;
        QTest::newRow("04:59:59") << QTime(4, 59, 59) << QStringLiteral("00:00:01 bis Contest-Beginn");
        QTest::newRow("05:00:00 bound") << QTime(5, 0, 0) << zeros;
        QTest::newRow("05:00:01") << QTime(5, 0, 1) << QStringLiteral("02:59:59 bis Ende Periode 1");
        QTest::newRow("06:30:30") << QTime(6, 30, 30) << QStringLiteral("01:29:30 bis Ende Periode 1");
        QTest::newRow("07:59:59") << QTime(7, 59, 59) << QStringLiteral("00:00:01 bis Ende Periode 1");
        QTest::newRow("08:00:00 bound") << QTime(8, 0, 0) << zeros;
        QTest::newRow("08:00:01") << QTime(8, 0, 1) << QStringLiteral("05:59:59 bis Beginn Periode 2");
        QTest::newRow("09:30:10") << QTime(9, 30, 10) << QStringLiteral("04:29:50 bis Beginn Periode 2");
        QTest::newRow("12:00:00 full minute") << QTime(12, 0, 0) << zeros;
        QTest::newRow("12:00:30") << QTime(12, 0, 30) << QStringLiteral("01:59:30 bis Beginn Periode 2");
        QTest::newRow("13:59:59") << QTime(13, 59, 59) << QStringLiteral("00:00:01 bis Beginn Periode 2");
        QTest::newRow("14:00:00 bound") << QTime(14, 0, 0) << zeros;
        QTest::newRow("14:00:01") << QTime(14, 0, 1) << QStringLiteral("02:59:59 bis Contest-Ende");
        QTest::newRow("15:45:15") << QTime(15, 45, 15) << QStringLiteral("01:14:45 bis Contest-Ende");
        QTest::newRow("16:59:59") << QTime(16, 59, 59) << QStringLiteral("00:00:01 bis Contest-Ende");
        QTest::newRow("17:00:00 end") << QTime(17, 0, 0) << zeros;
        QTest::newRow("17:00:01 after") << QTime(17, 0, 1) << zeros;
        QTest::newRow("18:00:00 after") << QTime(18, 0, 0) << zeros;
        QTest::newRow("21:12:34 after") << QTime(21, 12, 34) << zeros;
        QTest::newRow("23:59:59 after") << QTime(23, 59, 59) << zeros;
    }
    void countdownAcrossTheDay() {
        QFETCH(QTime, now);
        QFETCH(QString, caption);
        QCOMPARE(CountdownCaption(Formats(), QDateTime(kContestDay, now)), Blanks() + caption);
    }

    void countdownOnAnyDayAsOnTheContestDay() {
        QCOMPARE(CountdownCaption(Formats(), At(9, 30, 10, QDate(2026, 11, 22))),
                 Blanks() + QStringLiteral("04:29:50 bis Beginn Periode 2"));
    }

    void countdownTargets_data() {
        QTest::addColumn<QTime>("now");
        QTest::addColumn<QTime>("target"); // invalid: none
        QTest::addColumn<QString>("text");
        QTest::newRow("before start") << QTime(4, 0) << QTime(5, 0) << kBisContestBeginn;
        QTest::newRow("on 05:00") << QTime(5, 0) << QTime() << QString();
        QTest::newRow("period 1") << QTime(5, 0, 1) << QTime(8, 0) << kBisEndePeriode1;
        QTest::newRow("on 08:00") << QTime(8, 0) << QTime() << QString();
        QTest::newRow("break") << QTime(8, 0, 1) << QTime(14, 0) << kBisBeginnPeriode2;
        QTest::newRow("on 14:00") << QTime(14, 0) << QTime() << QString();
        QTest::newRow("period 2") << QTime(14, 0, 1) << QTime(17, 0) << kBisContestEnde;
        QTest::newRow("on 17:00") << QTime(17, 0) << QTime() << QString();
        QTest::newRow("evening") << QTime(20, 0) << QTime() << QString();
    }
    void countdownTargets() {
        QFETCH(QTime, now);
        QFETCH(QTime, target);
        QFETCH(QString, text);
        const CountdownTarget t = CountdownTargetAt(Formats(), now);
        QCOMPARE(t.target.has_value(), target.isValid());
        if (target.isValid()) QCOMPARE(*t.target, target);
        QCOMPARE(t.text, text);
    }

    void zeroCaptionUsesTheTimeSeparator() {
        const LocaleFormats finnish(QLocale(QLocale::Finnish, QLocale::Finland));
        const QChar sep = finnish.TimeSeparator();
        QCOMPARE(CountdownCaption(finnish, At(18, 0)),
                 Blanks() + QStringLiteral("00") + sep + QStringLiteral("00") + sep + QStringLiteral("00"));
    }

    // ---- Timer4: reminders ----

    void periodTwoReminderComesOnceAndAgainAfterANewContact() {
        SubmissionReminders r;
        const LocaleFormats f = Formats();
        QCOMPARE(r.OfferNow(f, QTime(17, 0, 59), 5), SubmissionReminders::None);
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 0), 5), SubmissionReminders::None); // not after 17:01:00
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 1), 5), SubmissionReminders::Period2);
        QVERIFY(r.OfferedPeriod2);
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 2), 5), SubmissionReminders::None);
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 30), 5), SubmissionReminders::None);
        r.ContactLogged();
        QVERIFY(!r.OfferedPeriod2);
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 40), 6), SubmissionReminders::Period2);
        QCOMPARE(r.OfferNow(f, QTime(17, 1, 50), 6), SubmissionReminders::None);
        r.ContactLogged();
        QCOMPARE(r.OfferNow(f, QTime(17, 2, 0), 7), SubmissionReminders::None); // not before 17:02:00
    }

    void periodOneReminderComesOnceAndAgainAfterANewContact() {
        SubmissionReminders r;
        const LocaleFormats f = Formats();
        QCOMPARE(r.OfferNow(f, QTime(8, 1, 0), 2), SubmissionReminders::None);
        QCOMPARE(r.OfferNow(f, QTime(8, 1, 1), 2), SubmissionReminders::Period1);
        QVERIFY(r.OfferedPeriod1);
        QVERIFY(!r.OfferedPeriod2);
        QCOMPARE(r.OfferNow(f, QTime(8, 1, 59), 2), SubmissionReminders::None);
        r.ContactLogged();
        QCOMPARE(r.OfferNow(f, QTime(8, 1, 59), 3), SubmissionReminders::Period1);
        QCOMPARE(r.OfferNow(f, QTime(8, 2, 0), 3), SubmissionReminders::None);
    }

    void timer4TickOffersOnceInTheMinuteAfterSeventeenOhOne() {
        SubmissionReminders r;
        FixedTimeSource clock(At(17, 0, 58));
        int offers = 0;
        for (int tick = 0; tick < 70; ++tick) {
            const Timer4Result res = CountdownTick(Formats(), ContestNow(clock, 0), r, 12);
            if (res.offer == SubmissionReminders::Period2) ++offers;
            if (tick == 20) { // a contact logged in the same minute
                QCOMPARE(offers, 1);
                r.ContactLogged();
            }
            clock.AdvanceSeconds(1);
        }
        QCOMPARE(offers, 2);
    }

    void noReminderWithoutContacts() {
        SubmissionReminders r;
        QCOMPARE(r.OfferNow(Formats(), QTime(17, 1, 30), 0), SubmissionReminders::None);
        QCOMPARE(r.OfferNow(Formats(), QTime(8, 1, 30), 0), SubmissionReminders::None);
        QVERIFY(!r.OfferedPeriod1);
        QVERIFY(!r.OfferedPeriod2);
    }

    void reminderOutsideItsMinuteNeverComes_data() {
        QTest::addColumn<QTime>("now");
        for (const QTime t : {QTime(0, 0), QTime(5, 1, 30), QTime(8, 0, 30), QTime(8, 2, 30), QTime(12, 0),
                              QTime(14, 1, 30), QTime(16, 1, 30), QTime(17, 3), QTime(20, 1, 30)})
            QTest::newRow(qPrintable(t.toString(QStringLiteral("HH:mm:ss")))) << t;
    }
    void reminderOutsideItsMinuteNeverComes() {
        QFETCH(QTime, now);
        SubmissionReminders r;
        QCOMPARE(r.OfferNow(Formats(), now, 50), SubmissionReminders::None);
    }

    void closingOnTheContestDayOffersTheSubmissionOnce() {
        SubmissionReminders r;
        QVERIFY(r.OfferAtClosing(At(18, 0), 1));
        QVERIFY(!r.OfferAtClosing(At(18, 0), 0));
        QVERIFY(!r.OfferAtClosing(At(18, 0, 0, QDate(2026, 5, 2)), 10));
        QVERIFY(!r.OfferAtClosing(At(18, 0, 0, QDate(2026, 4, 30)), 10));
        r.OfferedPeriod1 = true;
        QVERIFY(!r.OfferAtClosing(At(18, 0), 10));
        r.ContactLogged();
        r.OfferedPeriod2 = true;
        QVERIFY(!r.OfferAtClosing(At(18, 0), 10));
    }

    // ---- locks ----

    void storedLockLocksTheFieldsGrey() {
        const DateTimeLockState s = DateTimeLockState::FromSetting(-1);
        QVERIFY(s.FieldsLocked());
        QVERIFY(!s.Timer1Paused());
        QCOMPARE(s.DateTimeLockCaption(), QStringLiteral("&Datum/Zeit gesperrt"));
        QCOMPARE(s.FieldColour(), EntryColour::Grey);
    }

    void storedZeroLeavesTheFieldsFreeAndWhite() {
        const DateTimeLockState s = DateTimeLockState::FromSetting(0);
        QVERIFY(!s.FieldsLocked());
        QCOMPARE(s.DateTimeLockCaption(), QStringLiteral("&Datum/Zeit editierbar"));
        QCOMPARE(s.FieldColour(), EntryColour::White);
    }

    void dateTimeLockClickToggles() {
        DateTimeLockState s;
        s.ClickDateTimeLock();
        QVERIFY(s.FieldsLocked());
        QCOMPARE(s.DateTimeLockCaption(), kCaptionGesperrt);
        s.ClickDateTimeLock();
        QVERIFY(!s.FieldsLocked());
        QCOMPARE(s.DateTimeLockCaption(), kCaptionEditierbar);
        QCOMPARE(s.FieldColour(), EntryColour::White);
    }

    void manualTimeUnlocksAndPaintsGreen() {
        DateTimeLockState s = DateTimeLockState::FromSetting(-1);
        s.ClickZeitDatumLock();
        QVERIFY(s.manualTime);
        QVERIFY(!s.dateTimeLock);
        QVERIFY(!s.FieldsLocked());
        QVERIFY(s.Timer1Paused());
        QCOMPARE(s.DateTimeLockCaption(), kCaptionEditierbar);
        QCOMPARE(s.FieldColour(), EntryColour::Green);
    }

    void manualTimeOffLocksAgainAndTimer1TakesOver() {
        DateTimeLockState s;
        s.ClickZeitDatumLock();
        s.ClickZeitDatumLock();
        QVERIFY(!s.manualTime);
        QVERIFY(s.dateTimeLock);
        QVERIFY(!s.Timer1Paused());
        QCOMPARE(s.DateTimeLockCaption(), kCaptionGesperrt);
        QCOMPARE(s.FieldColour(), EntryColour::Grey);
    }

    void lockingEndsManualTime() {
        DateTimeLockState s;
        s.ClickZeitDatumLock();
        s.ClickDateTimeLock();
        QVERIFY(!s.manualTime);
        QVERIFY(s.dateTimeLock);
        QCOMPARE(s.FieldColour(), EntryColour::Grey);
    }

    void dateTimeLockIsStoredAsMinusOneOrZero() {
        Home h;
        const QString ini = h.model.IniPath;
        QVERIFY(!ReadDateTimeLock(ini).dateTimeLock); // a first run
        DateTimeLockState s;
        s.ClickDateTimeLock();
        WriteDateTimeLock(s, ini);
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")), -1.0);
        QVERIFY(ReadDateTimeLock(ini).dateTimeLock);
        s.ClickDateTimeLock();
        WriteDateTimeLock(s, ini);
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("DateTimeLock")), 0.0);
        QVERIFY(!ReadDateTimeLock(ini).dateTimeLock);
    }

    void manualTimeIsNeverStored() {
        Home h;
        DateTimeLockState s = DateTimeLockState::FromSetting(-1);
        s.ClickZeitDatumLock();
        WriteDateTimeLock(s, h.model.IniPath);
        const DateTimeLockState back = ReadDateTimeLock(h.model.IniPath);
        QVERIFY(!back.manualTime);
        QVERIFY(!back.dateTimeLock);
    }

    // ---- countdown on/off ----

    void countdownClickTogglesAndStores() {
        Home h;
        const QString ini = h.model.IniPath;
        QVERIFY(!ReadCountdown(ini));
        QVERIFY(CountdownClick(false, ini));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Countdown")), -1.0);
        QVERIFY(ReadCountdown(ini));
        QVERIFY(!CountdownClick(true, ini));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Countdown")), 0.0);
        QVERIFY(!ReadCountdown(ini));
    }
};

QTEST_GUILESS_MAIN(TestContestClock)
#include "tst_contest_clock.moc"
