// The log file: load, rebuild, write, counters, district table, time normalising.
#include "core/call_index.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/vb_text.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QString P = QString(QChar(0x00B6));

QString Tag(const QString& name, const QString& value) {
    return QStringLiteral("[%1:%2]%3\r\n").arg(name).arg(value.size()).arg(value);
}

QString MinimalHeader(const QString& extra = {}) {
    return Tag(QStringLiteral("MYCALL"), QStringLiteral("OE1XX")) + extra + QStringLiteral("[ENDHEAD:]\r\n");
}

QString Line(const QStringList& fields) {
    QString s;
    for (const QString& f : fields)
        s += f + P;
    return s + QStringLiteral("\r\n");
}

QStringList Fields(const QString& call, int count) {
    QStringList f = {call,
                     QStringLiteral("40"),
                     QStringLiteral("WI"),
                     QStringLiteral("01.05.2026"),
                     QStringLiteral("05:10:00"),
                     QStringLiteral("59"),
                     QStringLiteral("59"),
                     QStringLiteral("0"),
                     QStringLiteral("SSB"),
                     QStringLiteral("SSB"),
                     QStringLiteral("0"),
                     QStringLiteral("OE1XX"),
                     QString(),
                     QStringLiteral("0"),
                     QStringLiteral("7050"),
                     QStringLiteral("0"),
                     QStringLiteral("r1"),
                     QStringLiteral("r2"),
                     QStringLiteral("r3")};
    return f.mid(0, count);
}

} // namespace

class TestLogFile : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    ScriptedDialogs dialogs;

    bool LoadText(const QString& text) {
        const QString path = home->model.LogFolder + QStringLiteral("t.KOLBO");
        WriteBytes(path, Cp(text));
        return LoadLog(home->model, dialogs, path) == 1;
    }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        home = std::make_unique<Home>();
        dialogs = ScriptedDialogs();
    }

    void headerOnlyFileLoadsAsEmptyLog() {
        QVERIFY(LoadText(MinimalHeader()));
        QVERIFY(home->model.LogRecords.empty());
        QCOMPARE(home->model.CallIndex, P);
        QCOMPARE(home->model.Header.MYCALL, QStringLiteral("OE1XX"));
        QVERIFY(dialogs.boxes.isEmpty());
    }

    void contactBlockUnderFifteenCharactersIsEmpty() {
        // A line that would otherwise split: it is too short to count.
        QVERIFY(LoadText(MinimalHeader() + QStringLiteral("A\u00b6B\u00b6C\u00b6D\u00b6\r\n")));
        QVERIFY(home->model.LogRecords.empty());
    }

    void lineOfFifteenPiecesIsSkippedAndLaterLinesLoad() {
        const QString text = MinimalHeader() + Line(Fields(QStringLiteral("OE1AAA"), 19)) +
                             Line(Fields(QStringLiteral("OE1BBB"), 14)) +
                             Line(Fields(QStringLiteral("OE1CCC"), 19));
        QVERIFY(LoadText(text));
        QCOMPARE(home->model.LogRecords.size(), size_t(2));
        QCOMPARE(home->model.LogRecords[1].Call, QStringLiteral("OE1CCC"));
        QCOMPARE(home->model.LogRecords[1].LaufNr, 1.0f);
    }

    void lineOfFifteenCharactersOrLessEndsTheContacts() {
        const QString text = MinimalHeader() + Line(Fields(QStringLiteral("OE1AAA"), 19)) +
                             QStringLiteral("123456789012345\r\n") +
                             Line(Fields(QStringLiteral("OE1CCC"), 19));
        QVERIFY(LoadText(text));
        QCOMPARE(home->model.LogRecords.size(), size_t(1));
        QVERIFY(home->model.LogText.contains(QStringLiteral("OE1CCC")));
    }

    void linesWithSixteenToNineteenFieldsLoad_data() {
        QTest::addColumn<int>("fields");
        QTest::addColumn<QString>("reserve1");
        QTest::addColumn<QString>("reserve3");
        QTest::newRow("16 fields") << 16 << QString() << QString();
        QTest::newRow("17 fields") << 17 << QStringLiteral("r1") << QString();
        QTest::newRow("18 fields") << 18 << QStringLiteral("r1") << QString();
        QTest::newRow("19 fields") << 19 << QStringLiteral("r1") << QStringLiteral("r3");
    }
    void linesWithSixteenToNineteenFieldsLoad() {
        QFETCH(int, fields);
        QFETCH(QString, reserve1);
        QFETCH(QString, reserve3);
        QVERIFY(LoadText(MinimalHeader() + Line(Fields(QStringLiteral("OE1AAA"), fields))));
        QCOMPARE(home->model.LogRecords.size(), size_t(1));
        const QsoRecord& r = home->model.LogRecords[0];
        QCOMPARE(r.Reserve1, reserve1);
        QCOMPARE(r.Reserve3, reserve3);
        QCOMPARE(r.Frequenz, 7050.0f);
        QCOMPARE(r.Band, 40);
        QCOMPARE(home->model.CallIndex, P + QStringLiteral("OE1AAA\u00d7") + QStringLiteral("0") + P);
    }

    void missingLicenceClassTagLoadsAsZero() {
        QVERIFY(LoadText(MinimalHeader(Tag(QStringLiteral("MYPWR"), QStringLiteral("3")))));
        QCOMPARE(home->model.Header.MYOPKLASS, 0);
        QCOMPARE(home->model.Header.MYPWR, 3);
    }

    void missingEndheadFailsWithTheLoadMessage() {
        const QString path = home->model.LogFolder + QStringLiteral("t.KOLBO");
        WriteBytes(path, Cp(Tag(QStringLiteral("MYCALL"), QStringLiteral("OE1XX")) +
                            Line(Fields(QStringLiteral("OE1AAA"), 19))));
        QCOMPARE(LoadLog(home->model, dialogs, path), 0);
        QCOMPARE(dialogs.boxes.size(), 1);
        QCOMPARE(dialogs.boxes[0].text,
                 QStringLiteral("Die Datei\r\n%1\r\nist fehlerhaft oder keine gültige Kolibrino Logdatei!")
                     .arg(path));
        QCOMPARE(dialogs.boxes[0].flags, int(Msg::Critical));
        QVERIFY(home->model.LogRecords.empty());
        QCOMPARE(home->model.Header.MYCALL, QString());
        QCOMPARE(home->model.CallIndex, P);
    }

    void damagedHeaderFails_data() {
        QTest::addColumn<QString>("header");
        QTest::newRow("length without closing bracket") << QStringLiteral("[MYCALL:5");
        QTest::newRow("length not numeric") << QStringLiteral("[MYCALL:x]OE1XX\r\n");
        QTest::newRow("number tag not numeric") << QStringLiteral("[MYPWR:2]ab\r\n");
    }
    void damagedHeaderFails() {
        QFETCH(QString, header);
        QVERIFY(!LoadText(header + QStringLiteral("[ENDHEAD:]\r\n")));
        QCOMPARE(dialogs.boxes.size(), 1);
        QVERIFY(home->model.LogRecords.empty());
    }

    void emergencyPowerTagIsLenient_data() {
        QTest::addColumn<QString>("tag");
        QTest::newRow("no closing bracket") << QStringLiteral("[MYNPOWER:1");
        QTest::newRow("length not numeric") << QStringLiteral("[MYNPOWER:a]1\r\n");
        QTest::newRow("value not numeric") << QStringLiteral("[MYNPOWER:1]x\r\n");
    }
    void emergencyPowerTagIsLenient() {
        QFETCH(QString, tag);
        QVERIFY(LoadText(MinimalHeader(tag + QStringLiteral("\r\n"))));
        QCOMPARE(home->model.Header.MYNPOWER, 0);
        QVERIFY(dialogs.boxes.isEmpty());
    }

    void commentOfLengthFiveKeepsItsClosingBracket() {
        QVERIFY(LoadText(MinimalHeader(QStringLiteral("[MYKOMMENT:5]ab]cd\r\n"))));
        QCOMPARE(home->model.Header.MYKOMMENT, QStringLiteral("ab]cd"));
    }

    void headerValueOfLengthZeroKeepsTheDefault() {
        QVERIFY(LoadText(MinimalHeader(QStringLiteral("[MYEXAMDAT:0]\r\n[MYBZ:0]\r\n"))));
        QCOMPARE(home->model.Header.MYEXAMDAT, QStringLiteral("00.00.2000"));
        QCOMPARE(home->model.Header.MYBZ, QStringLiteral("  "));
    }

    void deletionAndRebuildDropTheIndexEntryAndTheLine() {
        QVERIFY(LoadText(MinimalHeader() + Line(Fields(QStringLiteral("OE1AAA"), 19)) +
                         Line(Fields(QStringLiteral("OE1BBB"), 19)) +
                         Line(Fields(QStringLiteral("OE1CCC"), 19))));
        Model& m = home->model;
        const qsizetype linesBefore = BuildLogText(m, true, 2026).count(QStringLiteral("\r\n"));
        m.LogRecords[1].Status = Status::Deleted;
        const QString text = BuildLogText(m, true, 2026);
        QCOMPARE(m.LogRecords.size(), size_t(3));
        QVERIFY(!m.CallIndex.contains(QStringLiteral("OE1BBB")));
        QCOMPARE(m.CallIndex, P + QStringLiteral("OE1AAA\u00d7") + QStringLiteral("0") + P +
                                  QStringLiteral("OE1CCC\u00d7") + QStringLiteral("2") + P);
        QCOMPARE(text.count(QStringLiteral("\r\n")), linesBefore - 1);
        QVERIFY(!text.contains(QStringLiteral("OE1BBB")));
        QCOMPARE(m.LogText, text);
    }

    void dupeStatusIsWrittenAndReloaded() {
        QStringList f = Fields(QStringLiteral("OE1AAA"), 19);
        f[10] = QStringLiteral("1");
        QVERIFY(LoadText(MinimalHeader() + Line(f)));
        QCOMPARE(home->model.LogRecords[0].Status, 1);
        const QString text = BuildLogText(home->model, false, 2026);
        QVERIFY(LoadText(text));
        QCOMPARE(home->model.LogRecords[0].Status, 1);
    }

    void deletedStatusInAFileLoadsAsDeletedRecord() {
        QStringList f = Fields(QStringLiteral("OE1AAA"), 19);
        f[10] = QStringLiteral("-1");
        QVERIFY(LoadText(MinimalHeader() + Line(f)));
        QCOMPARE(home->model.LogRecords[0].Status, -1);
    }

    void handWrittenLogRebuildsToTheExpectedBytes() {
        const QString path = FixturePath(QStringLiteral("basic.KOLBO"));
        QCOMPARE(LoadLog(home->model, dialogs, path), 1);
        const Model& m = home->model;
        QCOMPARE(m.LogRecords.size(), size_t(6));
        QCOMPARE(m.Header.MYKOMMENT, QStringLiteral("Zeile eins ] mit Klammer\r\nZeile zwei"));
        QCOMPARE(m.Header.MYOPNAME, QStringLiteral("Jürgen Müller"));
        QCOMPARE(m.Header.MYCITY, QStringLiteral("Mödling"));
        QCOMPARE(m.LogRecords[2].Bemerkung, QStringLiteral("Grüße aus Graz"));
        QCOMPARE(m.LogRecords[2].Frequenz, 3512.5f);
        QCOMPARE(m.LogRecords[1].Status, 1);
        // The text as read stays the text until the next rebuild.
        QCOMPARE(Cp(m.LogText), ReadBytes(path));

        QByteArray expected = ReadBytes(FixturePath(QStringLiteral("basic.rebuilt.KOLBO")));
        expected.replace("{VERSION}", ProgramVersionText().toLatin1()).replace("{YEAR}", "2026");
        QCOMPARE(Cp(BuildLogText(home->model, true, 2026)), expected);
        // And once more: a rebuilt file rebuilds to itself.
        const QString again = home->model.LogFolder + QStringLiteral("again.KOLBO");
        WriteBytes(again, expected);
        QCOMPARE(LoadLog(home->model, dialogs, again), 1);
        QCOMPARE(Cp(BuildLogText(home->model, true, 2026)), expected);
    }

    void identificationLineCarriesTitleVersionAndYear() {
        QCOMPARE(
            IdentificationLine(2026),
            QStringLiteral("CREATED-BY Kolibrino v%1, \u00a92026 by ZZ9QQQ\r\n").arg(ProgramVersionText()));
        QCOMPARE(Cp(IdentificationLine(2026)).at(IdentificationLine(2026).indexOf(QChar(0xA9))), char(0xA9));
    }

    void headerTagsCarryTheLengthOfTheirValue() {
        LogHeader h = DefaultHeader(home->model);
        h.MYCALL = QStringLiteral("OE1ABC");
        h.MYPWR = 12;
        const QString text = HeaderText(h);
        QVERIFY(text.startsWith(
            QStringLiteral("[MYCALL:6]OE1ABC\r\n[MYLOCATOR:0]\r\n[MYBZ:2]  \r\n[MYOMYL:1]0\r\n")));
        QVERIFY(text.contains(QStringLiteral("[MYPWR:2]12\r\n")));
        QVERIFY(text.contains(QStringLiteral("[MYEXAMDAT:10]00.00.2000\r\n")));
        QVERIFY(text.endsWith(QStringLiteral("[MYNPOWER:1]0\r\n[ENDHEAD:]\r\n")));
    }

    void writeLogFileGivesExactlyTheBytesOfTheText() {
        Model& m = home->model;
        m.CurrentLogName = QStringLiteral("w.KOLBO");
        m.Header.MYCALL = QStringLiteral("OE3\u00c4\u20ac\u4e2d"); // Ä, €, and one the code page lacks
        BuildLogText(m, true, 2026);
        QCOMPARE(WriteLogFile(m), QString());
        const QByteArray bytes = ReadBytes(m.LogFolder + m.CurrentLogName);
        QCOMPARE(bytes, Cp(m.LogText));
        QVERIFY(bytes.contains(QByteArray("OE3\xc4\x80?")));
        // No temporary file is left behind (the lock file beside the log stays, by design).
        QCOMPARE(QDir(m.LogFolder).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{QStringLiteral(".w.KOLBO.lock"), QStringLiteral("w.KOLBO")}));
    }

    void writeLogFileReportsAnUnwritableFolder() {
        Model& m = home->model;
        m.LogFolder = home->Path(QStringLiteral("missing/folder/"));
        m.CurrentLogName = QStringLiteral("w.KOLBO");
        QVERIFY(!WriteLogFile(m).isEmpty());
    }

    void frequencyIsWrittenWithAPointAndReadWithEither_data() {
        QTest::addColumn<QString>("inFile");
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("written");
        QTest::newRow("point") << QStringLiteral("3512.7") << 3512.7f << QStringLiteral("3512.7");
        QTest::newRow("comma") << QStringLiteral("3512,7") << 3512.7f << QStringLiteral("3512.7");
        QTest::newRow("whole") << QStringLiteral("10100") << 10100.0f << QStringLiteral("10100");
        QTest::newRow("junk behind") << QStringLiteral("7001.5kHz") << 7001.5f << QStringLiteral("7001.5");
        QTest::newRow("nothing numeric") << QStringLiteral("abc") << 0.0f << QStringLiteral("0");
    }
    void frequencyIsWrittenWithAPointAndReadWithEither() {
        QFETCH(QString, inFile);
        QFETCH(float, value);
        QFETCH(QString, written);
        QStringList f = Fields(QStringLiteral("OE1AAA"), 19);
        f[14] = inFile;
        QVERIFY(LoadText(MinimalHeader() + Line(f)));
        QCOMPARE(home->model.LogRecords[0].Frequenz, value);
        QCOMPARE(ContactLine(home->model.LogRecords[0]).split(P)[14], written);
    }

    void updateCountersAddsAndTakesAway_data() {
        QTest::addColumn<int>("band");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QTime>("time");
        QTest::addColumn<int>("modeRow");
        QTest::addColumn<int>("periodRow");
        QTest::addColumn<int>("column");
        QTest::newRow("SSB morning 40") << 40 << QStringLiteral("SSB") << QTime(5, 0) << 0 << 0 << 0;
        QTest::newRow("SSB noon is afternoon") << 80 << QStringLiteral("SSB") << QTime(12, 0) << 0 << 1 << 1;
        QTest::newRow("CW morning 30") << 30 << QStringLiteral("CW") << QTime(11, 59, 59) << 1 << 2 << 2;
        QTest::newRow("anything else counts as CW")
            << 80 << QStringLiteral("ssb") << QTime(15, 0) << 1 << 3 << 1;
    }
    void updateCountersAddsAndTakesAway() {
        QFETCH(int, band);
        QFETCH(QString, mode);
        QFETCH(QTime, time);
        QFETCH(int, modeRow);
        QFETCH(int, periodRow);
        QFETCH(int, column);
        Model& m = home->model;
        UpdateCounters(m, band, mode, time, QStringLiteral("True"));
        QCOMPARE(m.ModeBandCount[modeRow][column], 1);
        QCOMPARE(m.PeriodBandCount[periodRow][column], 1);
        UpdateCounters(m, band, mode, time, QStringLiteral("False"));
        UpdateCounters(m, band, mode, time, QStringLiteral("False"));
        QCOMPARE(m.ModeBandCount[modeRow][column], -1);    // no floor
        QCOMPARE(m.PeriodBandCount[periodRow][column], 0); // floored
    }

    void updateCountersIgnoresOtherTextsAndBands() {
        Model& m = home->model;
        UpdateCounters(m, 40, QStringLiteral("SSB"), QTime(5, 0), QStringLiteral("true"));
        UpdateCounters(m, 20, QStringLiteral("SSB"), QTime(5, 0), QStringLiteral("True"));
        for (const auto& row : m.ModeBandCount)
            for (int v : row)
                QCOMPARE(v, 0);
    }

    void gruppeBandCountRisesOnlyForKnownGroupsAndBands_data() {
        QTest::addColumn<int>("gruppe");
        QTest::addColumn<int>("band");
        QTest::addColumn<bool>("counts");
        QTest::newRow("Wien 40") << 1 << 40 << true;
        QTest::newRow("Vorarlberg 30") << 9 << 30 << true;
        QTest::newRow("group 0") << 0 << 40 << false;
        QTest::newRow("group 10") << 10 << 80 << false;
        QTest::newRow("band 20") << 3 << 20 << false;
    }
    void gruppeBandCountRisesOnlyForKnownGroupsAndBands() {
        QFETCH(int, gruppe);
        QFETCH(int, band);
        QFETCH(bool, counts);
        Model& m = home->model;
        RaiseGruppeBandCount(m, gruppe, band);
        int total = 0;
        for (const auto& row : m.GruppeBandCount)
            for (int v : row)
                total += v;
        QCOMPARE(total, counts ? 1 : 0);
        if (counts) QCOMPARE(m.GruppeBandCount[gruppe - 1][BandColumn(band)], 1);
    }

    void normalizeTimeInsertsTheSeparator_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("normalized");
        QTest::newRow("930") << QStringLiteral("930") << QStringLiteral("09:30");
        QTest::newRow("1415") << QStringLiteral("1415") << QStringLiteral("14:15");
        QTest::newRow("5") << QStringLiteral("5") << QStringLiteral("00:05");
        QTest::newRow("with separator") << QStringLiteral("9:3") << QStringLiteral("09:3");
        QTest::newRow("long stays long") << QStringLiteral("14:15:00") << QStringLiteral("14:15:00");
        QTest::newRow("five digits") << QStringLiteral("12345") << QStringLiteral("123:45");
    }
    void normalizeTimeInsertsTheSeparator() {
        QFETCH(QString, typed);
        QFETCH(QString, normalized);
        QCOMPARE(NormalizeTime(typed, QLatin1Char(':')), normalized);
    }

    void districtTableFillsRecordsAndIndex() {
        const QString path = home->model.DataFolder + QStringLiteral("bez_koord.txt");
        WriteBytes(path, SmallDistrictTable());
        Model& m = home->model;
        QCOMPARE(LoadBezirkTable(m, dialogs), 4);
        QVERIFY(dialogs.boxes.isEmpty());
        QCOMPARE(m.BezirkRecords.size(), size_t(5));
        QCOMPARE(m.BezirkRecords[0].Code, QString());
        QCOMPARE(m.BezirkRecords[2].Name, QStringLiteral("Mödling"));
        QCOMPARE(m.BezirkRecords[2].X, 480);
        QCOMPARE(m.BezirkRecords[3].Gruppe, 6);
        QCOMPARE(m.BezirkIndex, QStringLiteral("  WI;MD;GZ;ZZ;"));
        QCOMPARE(BezirkNumber(m, QStringLiteral("WI")), 1);
        QCOMPARE(BezirkNumber(m, QStringLiteral("GZ")), 3);
        QCOMPARE(BezirkNumber(m, QStringLiteral("XX")), 0);
        QCOMPARE(BezirkNumber(m, QStringLiteral("wi")), 0); // case counts
    }

    void districtLineWithoutNameEndsTheTable() {
        const QString path = home->model.DataFolder + QStringLiteral("bez_koord.txt");
        WriteBytes(path, QByteArray("WI;500;200;Wien;1;\r\nMD;480;230\r\nGZ;420;420;Graz;6;\r\n"));
        Model& m = home->model;
        // "230" has no closing ";": the Y field has no end, a faulty line.
        QCOMPARE(LoadBezirkTable(m, dialogs), 2);
        QCOMPARE(dialogs.boxes.size(), 1);
        QVERIFY(dialogs.boxes[0].text.startsWith(QStringLiteral("FEHLER\r\n\r\n\t")));
        QCOMPARE(dialogs.boxes[0].flags, 21);
        dialogs.Clear();
        WriteBytes(path, QByteArray("WI;500;200;Wien;1;\r\nMD;480;230;\r\nGZ;420;420;Graz;6;\r\n"));
        QCOMPARE(LoadBezirkTable(m, dialogs), 2);
        QVERIFY(dialogs.boxes.isEmpty());
        QCOMPARE(m.BezirkRecords[2].X, 480);
        QCOMPARE(m.BezirkRecords[2].Name, QString());
    }

    void missingDistrictTableShowsTheErrorTrapAndRetryReadsAgain() {
        Model& m = home->model;
        const QString path = m.DataFolder + QStringLiteral("bez_koord.txt");
        dialogs.onMsgBox = [&](const ShownBox&) { WriteBytes(path, SmallDistrictTable()); };
        dialogs.AnswerMsgBox(Msg::Retry);
        QCOMPARE(LoadBezirkTable(m, dialogs), 4);
        QCOMPARE(dialogs.boxes.size(), 1);
        QCOMPARE(dialogs.boxes[0].flags, 21);
    }

    void missingDistrictTableCancelledLeavesNoDistricts() {
        QCOMPARE(LoadBezirkTable(home->model, dialogs), 0);
        QCOMPARE(dialogs.boxes.size(), 1);
        QCOMPARE(BezirkNumber(home->model, QStringLiteral("WI")), 0);
    }

    void districtIndexHoldsAtMost199Entries() {
        QByteArray table;
        for (int i = 0; i < 210; ++i) {
            const char code[3] = {char('A' + i / 26), char('A' + i % 26), 0};
            table += QByteArray(code) + ";1;1;N;1;\r\n";
        }
        WriteBytes(home->model.DataFolder + QStringLiteral("bez_koord.txt"), table);
        Model& m = home->model;
        QCOMPARE(LoadBezirkTable(m, dialogs), 210);
        QCOMPARE(m.BezirkIndex.size(), 600);
        QCOMPARE(BezirkNumber(m, QStringLiteral("HQ")), 199 - 0); // element 199 = index 198: "HQ"
        QCOMPARE(BezirkNumber(m, QStringLiteral("IB")), 0);       // element 210 never fits
    }
};

QTEST_GUILESS_MAIN(TestLogFile)
#include "tst_log_file.moc"
