// Logging one contact without a window: the checks in their order, the state-station
// rule, the dupe decision, the tallies, the record and the file.
#include "core/call_index.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"
#include "entry/log_grid_model.h"
#include "entry/qso_entry.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

Q_DECLARE_METATYPE(kolibrino::EntryFocus)

namespace {

// A model with the small district table and an empty log written to disk.
struct Bench {
    Bench() {
        WriteBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        LoadBezirkTable(home.model, dialogs);
        home.model.CurrentLogName = QStringLiteral("entry.KOLBO");
        BuildLogText(home.model, true, 2026);
        QCOMPARE(WriteLogFile(home.model), QString());
    }
    EntryFields Fields(const QString& call, int bandIndex = 1,
                       const QString& bezirk = QStringLiteral("WI")) const {
        EntryFields f;
        f.datum = QStringLiteral("01.05.2026");
        f.zeit = QStringLiteral("06:15");
        f.call = call;
        f.rstGesendet = QStringLiteral("59");
        f.rstEmpfangen = QStringLiteral("59");
        f.bandIndex = bandIndex;
        f.band = bandIndex >= 0 && bandIndex < 3 ? QString::fromLatin1(kBandNames[bandIndex]) : QString();
        f.modeIndex = 0;
        f.mode = QStringLiteral("SSB");
        f.bezirk = bezirk;
        f.opCall = QStringLiteral("OE1OPR");
        return f;
    }
    EntryResult Take(const EntryFields& f) { return TakeEntry(home.model, dialogs, grid, f); }
    Model& m() { return home.model; }

    Home home;
    ScriptedDialogs dialogs;
    LogGridModel grid{home.model.Formats};
};

} // namespace

class TestQsoEntry : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void checksFailInTheirOrder_data();
    void checksFailInTheirOrder();
    void failedCheckChangesNothing();
    void checksTrimBlanksButNotOtherSpace();
    void recordHoldsTheStoredForms();
    void textsLongerThanTheFieldStoresAreRefusedNotCut();
    void gridRowHoldsTheTextsAsTyped();
    void firstContactGetsLaufNrZeroAndIndexZero();
    void laufNrFollowsTheLastRecord();
    void frequencyByBand_data();
    void frequencyByBand();
    void frequencyWindowGivesTheFrequencyWhenOpen();
    void stateStationCountsOnItsBandAndKeepsTheCountOnLaterFailure();
    void stateStationRowsPerPrefix();
    void dupeRefusedLeavesTheLogAlone();
    void dupeConfirmedCountsOnlyDupeAndModeCounters();
    void noDupeInTheOtherPeriod();
    void companionCallsFollowTheCallClass();
    void commitKeepsRecordsIndexTextAndFileInStep();
    void writeFailureKeepsTheContactInMemory();
    void encodedBytesFollowEveryChangeOfTheLogText();
};

void TestQsoEntry::checksFailInTheirOrder_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("check");
    QTest::addColumn<QString>("message");
    QTest::addColumn<EntryFocus>("focus");
    QTest::newRow("1 call of 2") << "call"
                                 << "OE" << 1 << kMsgRufzeichen << EntryFocus::Text3;
    QTest::newRow("1 call of 2 with blanks") << "call"
                                             << "  OE  " << 1 << kMsgRufzeichen << EntryFocus::Text3;
    QTest::newRow("2 OEOE") << "call"
                            << "OEOE1ABC" << 2 << kMsgRufzeichen << EntryFocus::Text3;
    QTest::newRow("3 band") << "band"
                            << "4" << 3 << kMsgBand << EntryFocus::Combo1;
    QTest::newRow("4 mode") << "mode"
                            << "S" << 4 << kMsgMode << EntryFocus::Combo2;
    QTest::newRow("5 RSTs") << "rsts"
                            << "5" << 5 << kMsgRsts << EntryFocus::Text4;
    QTest::newRow("6 RSTe") << "rste"
                            << " 5 " << 6 << kMsgRste << EntryFocus::Text5;
    QTest::newRow("7 district W") << "bezirk"
                                  << "W" << 7 << kMsgBezirk << EntryFocus::Combo5;
    QTest::newRow("7 district of 3") << "bezirk"
                                     << "WIX" << 7 << kMsgBezirk << EntryFocus::Combo5;
    QTest::newRow("8 unknown district") << "bezirk"
                                        << "QQ" << 8 << kMsgBezirk << EntryFocus::Combo5;
    QTest::newRow("9 amateur on 30 m") << "band30"
                                       << "OE1ABC" << 9 << kMsgAmateur30 << EntryFocus::Combo1;
    QTest::newRow("9 state station on 40 m") << "band40"
                                             << "OEK1" << 9 << kMsgStaatsfunk40 << EntryFocus::Combo1;
    QTest::newRow("10 time") << "zeit"
                             << "25:00" << 10 << kMsgZeit << EntryFocus::Text2;
    QTest::newRow("10 time empty") << "zeit"
                                   << "" << 10 << kMsgZeit << EntryFocus::Text2;
    QTest::newRow("11 date") << "datum"
                             << "32.05.2026" << 11 << kMsgDatum << EntryFocus::Text1;
    QTest::newRow("11 date pattern") << "datum"
                                     << "00.00.0000" << 11 << kMsgDatum << EntryFocus::Text1;
}

void TestQsoEntry::checksFailInTheirOrder() {
    QFETCH(QString, field);
    QFETCH(QString, value);
    QFETCH(int, check);
    QFETCH(QString, message);
    QFETCH(EntryFocus, focus);
    Bench b;
    EntryFields f = b.Fields(QStringLiteral("OE1ABC"));
    // Every later field is broken too: the first failing check must win.
    if (field == QLatin1String("call")) f.call = value;
    if (field == QLatin1String("band")) f.band = value;
    if (field == QLatin1String("mode")) f.mode = value;
    if (field == QLatin1String("rsts")) f.rstGesendet = value;
    if (field == QLatin1String("rste")) f.rstEmpfangen = value;
    if (field == QLatin1String("bezirk")) f.bezirk = value;
    if (field == QLatin1String("band30")) f = b.Fields(value, 2);
    if (field == QLatin1String("band40")) f = b.Fields(value, 0);
    if (field == QLatin1String("zeit")) f.zeit = value;
    if (field == QLatin1String("datum")) f.datum = value;
    if (check < 10) f.zeit = QStringLiteral("99:99");
    if (check < 11) f.datum = QStringLiteral("xx");
    const EntryResult r = b.Take(f);
    QCOMPARE(r.outcome, EntryResult::CheckFailed);
    QCOMPARE(r.failure.check, check);
    QCOMPARE(r.failure.message, message);
    QCOMPARE(r.failure.focus, focus);
    if (check == 9) {
        QCOMPARE(r.failure.boxFlags, int(Msg::Information));
        QCOMPARE(b.dialogs.boxes.size(), 1);
        QCOMPARE(b.dialogs.LastBox()->text, message);
        QCOMPARE(b.dialogs.LastBox()->flags, 64);
    } else {
        QCOMPARE(r.failure.boxFlags, -1);
        QVERIFY(b.dialogs.boxes.isEmpty());
    }
}

void TestQsoEntry::failedCheckChangesNothing() {
    Bench b;
    const QString text = b.m().LogText;
    const QByteArray file = ReadBytes(CurrentLogPath(b.m()));
    EntryFields f = b.Fields(QStringLiteral("OE1ABC"));
    f.zeit = QStringLiteral("abc");
    QCOMPARE(b.Take(f).failure.check, 10);
    QVERIFY(b.m().LogRecords.empty());
    QCOMPARE(b.grid.DataRows(), 0);
    QCOMPARE(b.m().LogText, text);
    QCOMPARE(b.m().CallIndex, QString(kPilcrow));
    QCOMPARE(b.m().QsoCount, 0.0);
    QCOMPARE(ReadBytes(CurrentLogPath(b.m())), file);
}

void TestQsoEntry::checksTrimBlanksButNotOtherSpace() {
    Bench b;
    EntryFields f = b.Fields(QStringLiteral("  OE1ABC  "), 1, QStringLiteral(" WI "));
    f.zeit = QStringLiteral(" 06:15 ");
    QCOMPARE(b.Take(f).outcome, EntryResult::Logged);
    QCOMPARE(b.m().LogRecords[0].Call, QStringLiteral("OE1ABC"));
}

void TestQsoEntry::recordHoldsTheStoredForms() {
    Bench b;
    EntryFields f = b.Fields(QStringLiteral(" oe1abcdefghij "), 1);
    f.rstGesendet = QStringLiteral("59a9");
    f.rstEmpfangen = QStringLiteral(" 57");
    f.mode = QStringLiteral(" SSB ");
    f.opCall = QStringLiteral("  oe1operatorc ");
    f.notiz = QStringLiteral(" Notiz mit Blank ");
    f.zeit = QStringLiteral("6:05");
    f.qsl = 1;
    QCOMPARE(b.Take(f).outcome, EntryResult::Logged);
    const QsoRecord& r = b.m().LogRecords[0];
    QCOMPARE(r.Call, QStringLiteral("OE1ABCDEFGHIJ"));
    QCOMPARE(r.Band, 80);
    QCOMPARE(r.Bezirk, QStringLiteral("WI"));
    QCOMPARE(r.Datum, QStringLiteral("01.05.2026"));
    QCOMPARE(r.Zeit, QStringLiteral("06:05:00"));
    QCOMPARE(r.RstGesendet, QStringLiteral("59A9"));
    QCOMPARE(r.RstEmpfangen, QStringLiteral("57"));
    QCOMPARE(r.Qsl, 1);
    QCOMPARE(r.Mode, QStringLiteral("SSB"));
    QCOMPARE(r.ModeRx, QStringLiteral("SSB"));
    QCOMPARE(r.Status, 0);
    QCOMPARE(r.Operator, QStringLiteral("OE1OPERATORC"));
    QCOMPARE(r.Bemerkung, QStringLiteral(" Notiz mit Blank "));
    QCOMPARE(r.BandRx, QStringLiteral("0"));
    QCOMPARE(r.Frequenz, 3500.0f);
    QCOMPARE(r.FrequenzRx, 0.0f);
    QVERIFY(r.Reserve1.isEmpty() && r.Reserve2.isEmpty() && r.Reserve3.isEmpty());
    // The grid row shows the same texts.
    QCOMPARE(b.grid.Text(0, 4), r.Call);
    QCOMPARE(b.grid.Text(0, 5), r.RstGesendet);
    QCOMPARE(b.grid.Text(0, 6), r.RstEmpfangen);
    QCOMPARE(b.grid.Text(0, 10), r.Operator);
}

void TestQsoEntry::textsLongerThanTheFieldStoresAreRefusedNotCut() {
    Bench b;
    EntryFields f = b.Fields(QStringLiteral("OE1ABCDEFGHIJKLM"), 1); // 16 characters
    const EntryResult r = b.Take(f);
    QCOMPARE(r.outcome, EntryResult::CheckFailed);
    QCOMPARE(r.failure.check, 0);
    QCOMPARE(r.failure.boxFlags, int(Msg::Exclamation));
    QCOMPARE(b.dialogs.LastBox()->text,
             QStringLiteral("Das Feld \"Rufzeichen\" darf höchstens 13 Zeichen lang sein!"));
    QVERIFY(b.m().LogRecords.empty());
    f = b.Fields(QStringLiteral("OE1ABC"), 1);
    f.rstGesendet = QStringLiteral("59a9x");
    QCOMPARE(b.Take(f).outcome, EntryResult::CheckFailed);
    QCOMPARE(int(b.Take(f).failure.focus), int(EntryFocus::Text4));
    QVERIFY(b.m().LogRecords.empty());
}

void TestQsoEntry::gridRowHoldsTheTextsAsTyped() {
    Bench b;
    EntryFields f = b.Fields(QStringLiteral(" OE1ABC "), 1, QStringLiteral("WI"));
    f.zeit = QStringLiteral("6:05");
    f.notiz = QStringLiteral(" n ");
    QCOMPARE(b.Take(f).outcome, EntryResult::Logged);
    const QStringList expected = {
        QStringLiteral("01.05.2026"), QStringLiteral("6:05"), QStringLiteral("80m"),    QStringLiteral("SSB"),
        QStringLiteral("OE1ABC"),     QStringLiteral("59"),   QStringLiteral("59"),     QStringLiteral("WI"),
        QStringLiteral("0"),          QStringLiteral(" n "),  QStringLiteral("OE1OPR"), QString(),
        QStringLiteral("SSB"),        QStringLiteral("0"),    QStringLiteral("3500"),   QStringLiteral("0"),
        QStringLiteral("0")};
    for (int c = 0; c < kGridColumns; ++c)
        QCOMPARE(b.grid.Text(0, c), expected[c]);
}

void TestQsoEntry::firstContactGetsLaufNrZeroAndIndexZero() {
    Bench b;
    const EntryResult r = b.Take(b.Fields(QStringLiteral("OE1ABC")));
    QCOMPARE(r.recordIndex, size_t(0));
    QCOMPARE(b.m().LogRecords[0].LaufNr, 0.0f);
    QCOMPARE(b.grid.Text(0, kGridColLaufNr), QStringLiteral("0"));
    QCOMPARE(b.m().CallIndex, QStringLiteral("\u00B6OE1ABC\u00D70\u00B6"));
}

void TestQsoEntry::laufNrFollowsTheLastRecord() {
    Bench b;
    b.Take(b.Fields(QStringLiteral("OE1ABC")));
    b.m().LogRecords.back().LaufNr = 41; // as after corrections of the log
    b.Take(b.Fields(QStringLiteral("OE3XYZ")));
    QCOMPARE(b.m().LogRecords.back().LaufNr, 42.0f);
    QCOMPARE(b.grid.Text(1, kGridColLaufNr), QStringLiteral("42"));
}

void TestQsoEntry::frequencyByBand_data() {
    QTest::addColumn<int>("bandIndex");
    QTest::addColumn<QString>("call");
    QTest::addColumn<float>("frequency");
    QTest::newRow("40m") << 0 << "OE1ABC" << 7000.0f;
    QTest::newRow("80m") << 1 << "OE1ABC" << 3500.0f;
    QTest::newRow("30m") << 2 << "OEK1" << 10100.0f;
}

void TestQsoEntry::frequencyByBand() {
    QFETCH(int, bandIndex);
    QFETCH(QString, call);
    QFETCH(float, frequency);
    Bench b;
    QCOMPARE(b.Take(b.Fields(call, bandIndex)).outcome, EntryResult::Logged);
    QCOMPARE(b.m().LogRecords[0].Frequenz, frequency);
}

void TestQsoEntry::frequencyWindowGivesTheFrequencyWhenOpen() {
    Bench b;
    CompanionCalls calls;
    calls.frequency = [](int bandIndex) { return std::optional<float>(bandIndex == 1 ? 3650.5f : 0.0f); };
    TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE1ABC")), calls);
    QCOMPARE(b.m().LogRecords[0].Frequenz, 3650.5f);
    QCOMPARE(b.grid.Text(0, kGridColFrequenz), QStringLiteral("3650.5"));
}

void TestQsoEntry::stateStationCountsOnItsBandAndKeepsTheCountOnLaterFailure() {
    Bench b;
    QCOMPARE(b.Take(b.Fields(QStringLiteral("OEK1"), 1)).outcome, EntryResult::Logged);
    QCOMPARE(b.m().StaatsfunkRecords.size(), size_t(1));
    QCOMPARE(b.m().StaatsfunkRecords[0].Prefix, QStringLiteral("OEK"));
    QCOMPARE(b.m().StaatsfunkRecords[0].Anz80, 1);
    EntryFields f = b.Fields(QStringLiteral("OEK2"), 2);
    f.zeit = QStringLiteral("kaputt");
    QCOMPARE(b.Take(f).failure.check, 10);
    QCOMPARE(b.Take(f).failure.check, 10);
    QCOMPARE(b.m().StaatsfunkRecords[0].Anz30, 2); // each failed try counts again
    QCOMPARE(b.m().LogRecords.size(), size_t(1));
}

void TestQsoEntry::stateStationRowsPerPrefix() {
    Bench b;
    b.Take(b.Fields(QStringLiteral("OEK1"), 1));
    b.Take(b.Fields(QStringLiteral("OEB3"), 2));
    b.Take(b.Fields(QStringLiteral("OEK7"), 2));
    QCOMPARE(b.m().StaatsfunkRecords.size(), size_t(2));
    QCOMPARE(b.m().StaatsfunkRecords[0].Anz80, 1);
    QCOMPARE(b.m().StaatsfunkRecords[0].Anz30, 1);
    QCOMPARE(b.m().StaatsfunkRecords[1].Prefix, QStringLiteral("OEB"));
    QCOMPARE(b.m().StaatsfunkRecords[1].Anz30, 1);
}

void TestQsoEntry::dupeRefusedLeavesTheLogAlone() {
    Bench b;
    b.Take(b.Fields(QStringLiteral("OE1ABC")));
    const QString text = b.m().LogText;
    b.dialogs.AnswerMsgBox(Msg::No);
    const EntryResult r = b.Take(b.Fields(QStringLiteral("OE1ABC")));
    QCOMPARE(r.outcome, EntryResult::DupeRefused);
    QCOMPARE(r.failure.focus, EntryFocus::Text3);
    QCOMPARE(b.dialogs.LastBox()->text, kMsgDupeFrage);
    QCOMPARE(b.dialogs.LastBox()->flags, 292);
    QCOMPARE(b.m().LogRecords.size(), size_t(1));
    QCOMPARE(b.m().LogText, text);
    QCOMPARE(b.m().DupeCount, 0);
    // Enter on the box (its default is the second button, No) refuses as well.
    QCOMPARE(b.Take(b.Fields(QStringLiteral("OE1ABC"))).outcome, EntryResult::DupeRefused);
}

void TestQsoEntry::dupeConfirmedCountsOnlyDupeAndModeCounters() {
    Bench b;
    b.Take(b.Fields(QStringLiteral("OE1ABC")));
    const double qso = b.m().QsoCount;
    const int wien = b.m().BezirkRecords[1].AnzGesamt;
    const auto gruppe = b.m().GruppeBandCount;
    b.dialogs.AnswerMsgBox(Msg::Yes);
    const EntryResult r = b.Take(b.Fields(QStringLiteral("OE1ABC")));
    QVERIFY(r.isDupe);
    QCOMPARE(b.m().LogRecords[1].Status, 1);
    QCOMPARE(b.m().DupeCount, 1);
    QCOMPARE(b.m().QsoCount, qso);
    QCOMPARE(b.m().BezirkRecords[1].AnzGesamt, wien);
    QCOMPARE(b.m().GruppeBandCount, gruppe);
    QCOMPARE(b.m().ModeBandCount[0][1], 2);
    QCOMPARE(b.m().PeriodBandCount[0][1], 2);
    QCOMPARE(b.grid.Text(1, kGridColDupe), QStringLiteral("Dupe"));
    QCOMPARE(b.grid.BackColor(1, kGridColDupe), kDupeBackColor);
}

void TestQsoEntry::noDupeInTheOtherPeriod() {
    Bench b;
    b.Take(b.Fields(QStringLiteral("OE1ABC")));
    EntryFields f = b.Fields(QStringLiteral("OE1ABC"));
    f.zeit = QStringLiteral("14:10");
    QCOMPARE(b.Take(f).outcome, EntryResult::Logged);
    QVERIFY(b.dialogs.boxes.isEmpty());
    QCOMPARE(b.m().QsoCount, 2.0);
}

void TestQsoEntry::companionCallsFollowTheCallClass() {
    Bench b;
    QStringList log;
    CompanionCalls calls;
    calls.fuellen = [&](const QString& bz) { log << QStringLiteral("fuellen ") + bz; };
    calls.gridCellColor = [&](const QString& bz, int gruppe, const QString& prefix) {
        log << QStringLiteral("zelle %1 %2 %3").arg(bz).arg(gruppe).arg(prefix);
    };
    TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD")), calls);
    TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OEK1"), 1, QStringLiteral("GZ")), calls);
    QCOMPARE(log, QStringList({QStringLiteral("fuellen MD"), QStringLiteral("zelle MD 3 "),
                               QStringLiteral("fuellen GZ"), QStringLiteral("zelle GZ 0 OEK")}));
}

void TestQsoEntry::commitKeepsRecordsIndexTextAndFileInStep() {
    Bench b;
    for (const char* call : {"OE1ABC", "OE3DEF", "OE6GHI"})
        b.Take(b.Fields(QString::fromLatin1(call)));
    QCOMPARE(ReadBytes(CurrentLogPath(b.m())), ToCp1252(b.m().LogText));
    Model copy = b.m();
    const QString index = copy.CallIndex;
    QCOMPARE(BuildLogText(copy, true, 2026), b.m().LogText);
    QCOMPARE(copy.CallIndex, index);
    Model counted = b.m();
    RebuildTallies(counted);
    QCOMPARE(counted.ModeBandCount, b.m().ModeBandCount);
    QCOMPARE(counted.PeriodBandCount, b.m().PeriodBandCount);
    QCOMPARE(counted.QsoCount, b.m().QsoCount);
}

void TestQsoEntry::writeFailureKeepsTheContactInMemory() {
    Bench b;
    QVERIFY(QDir(b.m().LogFolder).removeRecursively());
    const EntryResult r = b.Take(b.Fields(QStringLiteral("OE1ABC")));
    QCOMPARE(r.outcome, EntryResult::Logged);
    QVERIFY(!r.fileWritten);
    QCOMPARE(b.dialogs.boxes.size(), 1);
    QVERIFY(b.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER\r\n\r\n\t")));
    QCOMPARE(b.dialogs.LastBox()->flags, 21);
    QCOMPARE(b.m().LogRecords.size(), size_t(1));
    QCOMPARE(b.grid.DataRows(), 1);
    QCOMPARE(b.m().ModeBandCount[0][1], 1);
    // The next entry, with the folder back, writes both.
    QVERIFY(QDir().mkpath(b.m().LogFolder));
    QVERIFY(b.Take(b.Fields(QStringLiteral("OE3DEF"))).fileWritten);
    Model loaded;
    loaded.SetLocale(AustrianLocale());
    QVERIFY(ParseLog(loaded, ReadBytes(CurrentLogPath(b.m()))));
    QCOMPARE(loaded.LogRecords.size(), size_t(2));
}

void TestQsoEntry::encodedBytesFollowEveryChangeOfTheLogText() {
    Bench b;
    LogFileBytes cache;
    auto take = [&](const char* call) {
        TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QString::fromLatin1(call)), {}, &cache);
        QCOMPARE(ReadBytes(CurrentLogPath(b.m())), ToCp1252(b.m().LogText));
        QCOMPARE(cache.bytes, ToCp1252(b.m().LogText));
    };
    take("OE1ABC");
    take("OE3DEF");
    // A change of the header rebuilds the text, as the station settings do.
    b.m().Header.MYCALL = QStringLiteral("OE1\u00C4\u00D6");
    BuildLogText(b.m(), false, 2026);
    take("OE6GHI");
    // A note with characters outside code page 1252.
    EntryFields f = b.Fields(QStringLiteral("OE8JKL"));
    f.notiz = QStringLiteral("\u20AC und \u4E2D");
    TakeEntry(b.m(), b.dialogs, b.grid, f, {}, &cache);
    QCOMPARE(ReadBytes(CurrentLogPath(b.m())), ToCp1252(b.m().LogText));
    take("OE9MNO");
    // An edit in place keeps buffer, length and last line: still the whole text is encoded.
    b.m().LogText[12] = QLatin1Char('Z');
    take("OE2PQR");
    // Two rebuilds of equal length between two entries.
    b.m().Header.MYPWR = 1;
    BuildLogText(b.m(), false, 2026);
    b.m().Header.MYPWR = 2;
    BuildLogText(b.m(), false, 2026);
    take("OE4STU");
}

QTEST_MAIN(TestQsoEntry)
#include "tst_qso_entry.moc"
