// Logging contacts through the main window's entry fields: Enter, the checks with
// their messages and focus, the contest's rules, the dupe question, the reset of the
// fields, and a log folder that cannot be written.
#include "core/call_index.h"
#include "core/error_trap.h"
#include "core/tallies.h"
#include "tst_main_window_support.h"

#include <QAction>

using namespace kolibrino;
using namespace kolibrino::test;

class TestMainWindowEntry : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    void enterInEveryEntryFieldLogs_data();
    void enterInEveryEntryFieldLogs();
    void enterInTheOperatorFieldDoesNotLog();
    void callOfTwoCharactersFailsAtCheck1();
    void callBeginningWithOEOEFailsAtCheck2();
    void districtWFailsAtCheck7();
    void districtNotInTheTableFailsAtCheck8();
    void districtWithoutRowNeverReachesTheTallies();
    void stateStationOn40mGetsTheBox();
    void stateStationOn80mIsCountedAndLogged();
    void amateurOn30mIsRefusedInAnAmateurLog();
    void amateurOn30mIsAcceptedInAClass4Log();
    void failedTimeCheckAfterStateStationKeepsItsCounter();
    void failedDateCheckFocusesTheDate();
    void confirmedDupeIsStoredMarkedAndCountedOnlyAsDupe();
    void refusedDupeFocusesTheCallAndLogsNothing();
    void firstContactGetsLaufNrZeroAndArrayIndexZero();
    void contactOn30mDoesNotRaiseQsoCount();
    void contactAtNoonCountsInTheAfternoon();
    void resetEntryClearsTheFieldsForTheNextContact();
    void resetEntryKeepsOEWithCallDefault();
    void messageLineIsClearedByTheNextCall();
    void entryClearsTheReminderFlagsAndStartsTheBackupTimer();
    void backupTimerCopiesTheLog();
    void typedTimeStopsTheClockUntilTheReset();
    void unwritableLogFolderShowsTheTrapAndKeepsModelAndGrid();
    void retryAfterTheFolderIsBackWritesTheFile();
    void contactNotWrittenIsWrittenAtClosing();
};

void TestMainWindowEntry::enterInEveryEntryFieldLogs_data() {
    QTest::addColumn<QString>("field");
    for (const char* n :
         {"Text1", "Text2", "Text3", "Text4", "Text5", "Text8", "Combo1", "Combo2", "Combo5", "Check1"})
        QTest::newRow(n) << QString::fromLatin1(n);
}

void TestMainWindowEntry::enterInEveryEntryFieldLogs() {
    QFETCH(QString, field);
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QTest::keyClicks(f.Text(3), QStringLiteral("OE3ABC"));
    f.Combo(5)->setEditText(QStringLiteral("MD"));
    QWidget* w = f.window->findChild<QWidget*>(field);
    QVERIFY(w);
    QTest::keyClick(w, field == QLatin1String("Check1") ? Qt::Key_Enter : Qt::Key_Return);
    QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
    QCOMPARE(f.Grid().DataRows(), 1);
}

void TestMainWindowEntry::enterInTheOperatorFieldDoesNotLog() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QTest::keyClicks(f.Text(3), QStringLiteral("OE3ABC"));
    f.Combo(5)->setEditText(QStringLiteral("MD"));
    QTest::keyClick(f.Combo(6), Qt::Key_Return);
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::callOfTwoCharactersFailsAtCheck1() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE"), 1, QStringLiteral("MD"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("Ungültiges Rufzeichen"));
    QCOMPARE(f.window->focusWidget(), f.Text(3));
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::callBeginningWithOEOEFailsAtCheck2() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OEOE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("Ungültiges Rufzeichen"));
    QCOMPARE(f.window->focusWidget(), f.Text(3));
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::districtWFailsAtCheck7() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("W"));
    QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("W"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("BEZIRK ungültig"));
    QCOMPARE(f.window->focusWidget(), f.Combo(5));
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::districtNotInTheTableFailsAtCheck8() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("QQ"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("BEZIRK ungültig"));
    QCOMPARE(f.window->focusWidget(), f.Combo(5));
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::districtWithoutRowNeverReachesTheTallies() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const auto tallies = f.home.model.GruppeBandCount;
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("XY"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("BEZIRK ungültig"));
    QCOMPARE(f.home.model.GruppeBandCount, tallies);
    QCOMPARE(f.home.model.QsoCount, 0.0);
    for (const BezirkRecord& b : f.home.model.BezirkRecords)
        QCOMPARE(b.AnzGesamt, 0);
}

void TestMainWindowEntry::stateStationOn40mGetsTheBox() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OEK1"), 0, QStringLiteral("WI"));
    QCOMPARE(f.dialogs.boxes.size(), 1);
    QCOMPARE(f.dialogs.LastBox()->text,
             QStringLiteral("Staatsfunkstellen dürfen nur auf 80/30m gearbeitet werden!"));
    QCOMPARE(f.dialogs.LastBox()->flags, 64);
    QCOMPARE(f.window->focusWidget(), f.Combo(1));
    QVERIFY(f.home.model.StaatsfunkRecords.empty());
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::stateStationOn80mIsCountedAndLogged() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OEK1"), 1, QStringLiteral("WI"));
    QVERIFY(f.dialogs.boxes.isEmpty());
    QCOMPARE(f.home.model.StaatsfunkRecords.size(), size_t(1));
    QCOMPARE(f.home.model.StaatsfunkRecords[0].Prefix, QStringLiteral("OEK"));
    QCOMPARE(f.home.model.StaatsfunkRecords[0].Anz80, 1);
    QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
}

void TestMainWindowEntry::amateurOn30mIsRefusedInAnAmateurLog() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 2, QStringLiteral("MD"));
    QCOMPARE(f.dialogs.LastBox()->text,
             QStringLiteral("Amateurfunk-Stationen dürfen nur auf 80/40m gearbeitet werden!"));
    QCOMPARE(f.dialogs.LastBox()->flags, 64);
    QCOMPARE(f.window->focusWidget(), f.Combo(1));
    QVERIFY(f.home.model.LogRecords.empty());
}

void TestMainWindowEntry::amateurOn30mIsAcceptedInAClass4Log() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), {}, 4);
    QVERIFY(f.Start());
    f.Type(QStringLiteral("OE3ABC"), 2, QStringLiteral("MD"));
    QVERIFY(f.dialogs.boxes.isEmpty());
    QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
    QCOMPARE(f.home.model.LogRecords[0].Band, 30);
}

void TestMainWindowEntry::failedTimeCheckAfterStateStationKeepsItsCounter() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Text(2)->setText(QStringLiteral("25:99"));
    f.Type(QStringLiteral("OEK1"), 1, QStringLiteral("WI"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("Zeit Ungültige"));
    QCOMPARE(f.window->focusWidget(), f.Text(2));
    QVERIFY(f.home.model.LogRecords.empty());
    QCOMPARE(f.home.model.StaatsfunkRecords.size(), size_t(1));
    QCOMPARE(f.home.model.StaatsfunkRecords[0].Anz80, 1);
}

void TestMainWindowEntry::failedDateCheckFocusesTheDate() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Text(1)->setText(QStringLiteral("31.02.2026"));
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.Label13()->text(), QStringLiteral("Datum Ungültige"));
    QCOMPARE(f.window->focusWidget(), f.Text(1));
}

void TestMainWindowEntry::confirmedDupeIsStoredMarkedAndCountedOnlyAsDupe() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    Model& m = f.home.model;
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    const double qso = m.QsoCount;
    const int md = m.BezirkRecords[2].AnzGesamt;
    const auto gruppe = m.GruppeBandCount;
    f.dialogs.AnswerMsgBox(Msg::Yes);
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Soll das QSO als DUPE geloggt werden?"));
    QCOMPARE(f.dialogs.LastBox()->flags, 292);
    QCOMPARE(m.LogRecords.size(), size_t(2));
    QCOMPARE(m.LogRecords[1].Status, 1);
    QCOMPARE(f.Grid().Text(1, 11), QStringLiteral("Dupe"));
    QCOMPARE(f.Grid().BackColor(1, 11), 255);
    QCOMPARE(f.Grid().BackColor(1, 4), -1);
    QCOMPARE(m.QsoCount, qso);
    QCOMPARE(m.BezirkRecords[2].AnzGesamt, md);
    QCOMPARE(m.GruppeBandCount, gruppe);
    QCOMPARE(m.DupeCount, 1);
    QCOMPARE(m.ModeBandCount[0][1], 2); // the counters of band and mode do run
    QCOMPARE(m.PeriodBandCount[0][1], 2);
    QCOMPARE(f.FileBytes(), ToCp1252(m.LogText));
}

void TestMainWindowEntry::refusedDupeFocusesTheCallAndLogsNothing() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    const QByteArray file = f.FileBytes();
    f.dialogs.AnswerMsgBox(Msg::No);
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
    QCOMPARE(f.window->focusWidget(), f.Text(3));
    QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABC")); // the entry stands for a correction
    QCOMPARE(f.FileBytes(), file);
}

void TestMainWindowEntry::firstContactGetsLaufNrZeroAndArrayIndexZero() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords[0].LaufNr, 0.0f);
    QCOMPARE(f.Grid().Text(0, 16), QStringLiteral("0"));
    QCOMPARE(ParseIndexEntry(f.home.model.CallIndex, 2).RecordIndex, 0);
    QCOMPARE(f.home.model.CallIndex, QStringLiteral("\u00B6OE3ABC\u00D70\u00B6"));
}

void TestMainWindowEntry::contactOn30mDoesNotRaiseQsoCount() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OEK1"), 2, QStringLiteral("WI"));
    QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
    QCOMPARE(f.home.model.QsoCount, 0.0);
    QCOMPARE(f.home.model.BezirkRecords[1].Anz30, 1);
    QCOMPARE(f.home.model.ModeBandCount[0][2], 1);
    QCOMPARE(f.home.model.LogRecords[0].Frequenz, 10100.0f);
}

void TestMainWindowEntry::contactAtNoonCountsInTheAfternoon() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.At(QTime(12, 0));
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords[0].Zeit, QStringLiteral("12:00:00"));
    QCOMPARE(f.home.model.PeriodBandCount[0][1], 0);
    QCOMPARE(f.home.model.PeriodBandCount[1][1], 1);
}

void TestMainWindowEntry::resetEntryClearsTheFieldsForTheNextContact() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->MnEingabe();
    f.Text(8)->setText(QStringLiteral("Notiz"));
    f.Text(4)->setText(QStringLiteral("57"));
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"), 1);
    QCOMPARE(f.home.model.LogRecords[0].Bemerkung, QStringLiteral("Notiz"));
    QVERIFY(f.Text(3)->text().isEmpty());
    QVERIFY(f.Text(8)->text().isEmpty());
    QVERIFY(f.Combo(5)->currentText().isEmpty());
    QCOMPARE(f.Text(4)->text(), QStringLiteral("599"));
    QCOMPARE(f.Text(5)->text(), QStringLiteral("599"));
    QCOMPARE(f.window->focusWidget(), f.Text(3));
    QVERIFY(f.window->Timer1().isActive());
    QCOMPARE(f.Combo(1)->currentIndex(), 1); // band and mode stay
    QCOMPARE(f.Combo(2)->currentIndex(), 1);
}

void TestMainWindowEntry::resetEntryKeepsOEWithCallDefault() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->MnCallVorgabe();
    QCOMPARE(f.Text(3)->text(), QStringLiteral("OE"));
    f.Text(3)->clear();
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.Text(3)->text(), QStringLiteral("OE"));
    QCOMPARE(f.Text(3)->cursorPosition(), 2);
    QCOMPARE(f.Text(4)->text(), QStringLiteral("59"));
}

void TestMainWindowEntry::messageLineIsClearedByTheNextCall() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE"), 1, QStringLiteral("MD"));
    QVERIFY(!f.Label13()->text().isEmpty());
    QTest::keyClicks(f.Text(3), QStringLiteral("3"));
    QVERIFY(f.Label13()->text().isEmpty());
}

void TestMainWindowEntry::entryClearsTheReminderFlagsAndStartsTheBackupTimer() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.window->Timer3().stop();
    f.window->Reminders.OfferedPeriod1 = true;
    f.window->Reminders.OfferedPeriod2 = true;
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QVERIFY(!f.window->Reminders.OfferedPeriod1);
    QVERIFY(!f.window->Reminders.OfferedPeriod2);
    QVERIFY(f.window->Timer3().isActive());
    QVERIFY(f.window->Timer3().isSingleShot());
}

void TestMainWindowEntry::backupTimerCopiesTheLog() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    const QString copy = f.home.model.BackupFolder + QStringLiteral("test.KOLBO");
    QTRY_COMPARE_WITH_TIMEOUT(ReadBytes(copy), f.FileBytes(), 10000);
    QVERIFY(!f.window->Timer3().isActive());
    QVERIFY(f.dialogs.boxes.isEmpty());
}

void TestMainWindowEntry::typedTimeStopsTheClockUntilTheReset() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QVERIFY(f.window->Timer1().isActive());
    f.Text(2)->clear();
    QTest::keyClicks(f.Text(2), QStringLiteral("05:31"));
    QVERIFY(!f.window->Timer1().isActive());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.home.model.LogRecords[0].Zeit, QStringLiteral("05:31:00"));
    QVERIFY(f.window->Timer1().isActive());
}

void TestMainWindowEntry::unwritableLogFolderShowsTheTrapAndKeepsModelAndGrid() {
    // Permissions do not stop root; a log folder that is no folder stops everyone.
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    const QByteArray before = f.FileBytes();
    const QString logFolder = f.home.model.LogFolder;
    QVERIFY(QDir(logFolder).removeRecursively());
    WriteBytes(logFolder.chopped(1), "a file where the folder was");
    f.Type(QStringLiteral("OE6XYZ"), 1, QStringLiteral("GZ"));
    QCOMPARE(f.dialogs.boxes.size(), 1);
    QCOMPARE(f.dialogs.LastBox()->flags, kFehlerFlags);
    QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER\r\n\r\n\t")));
    QVERIFY(!f.window->FileUpToDate());
    // The contact is in memory, in the grid and in the text, and the entry moved on.
    Model& m = f.home.model;
    QCOMPARE(m.LogRecords.size(), size_t(2));
    QCOMPARE(f.Grid().DataRows(), 2);
    QCOMPARE(f.Grid().Text(1, 4), QStringLiteral("OE6XYZ"));
    QVERIFY(CallInIndex(m.CallIndex, QStringLiteral("OE6XYZ")));
    Model copy = m;
    QCOMPARE(BuildLogText(copy, true, 2026), m.LogText);
    QCOMPARE(copy.CallIndex, m.CallIndex);
    Model counted = m;
    RebuildTallies(counted);
    QCOMPARE(counted.QsoCount, m.QsoCount);
    QCOMPARE(counted.ModeBandCount, m.ModeBandCount);
    QVERIFY(f.Text(3)->text().isEmpty());
    // With the folder back, the next contact writes all three.
    QVERIFY(QFile::remove(logFolder.chopped(1)));
    QVERIFY(QDir().mkpath(logFolder));
    f.Type(QStringLiteral("OE9ABC"), 0, QStringLiteral("ZZ"));
    QVERIFY(f.window->FileUpToDate());
    QCOMPARE(f.FileBytes(), ToCp1252(m.LogText));
    QVERIFY(f.FileBytes().startsWith(before));
    QCOMPARE(m.LogRecords.size(), size_t(3));
}

void TestMainWindowEntry::retryAfterTheFolderIsBackWritesTheFile() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const QString logFolder = f.home.model.LogFolder;
    QVERIFY(QDir(logFolder).removeRecursively());
    f.dialogs.onMsgBox = [&](const ShownBox&) { QDir().mkpath(logFolder); };
    f.dialogs.AnswerMsgBox(Msg::Retry);
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QCOMPARE(f.dialogs.boxes.size(), 1);
    QVERIFY(f.window->FileUpToDate());
    QCOMPARE(f.FileBytes(), ToCp1252(f.home.model.LogText));
}

void TestMainWindowEntry::contactNotWrittenIsWrittenAtClosing() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const QString logFolder = f.home.model.LogFolder;
    QVERIFY(QDir(logFolder).removeRecursively());
    f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
    QVERIFY(!f.window->FileUpToDate());
    QVERIFY(QDir().mkpath(logFolder));
    f.window->close();
    QCOMPARE(f.FileBytes(), ToCp1252(f.home.model.LogText));
}

QTEST_MAIN(TestMainWindowEntry)
#include "tst_main_window_entry.moc"
