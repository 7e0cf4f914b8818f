// The Cabrillo and ADIF writers: hand-worked golden files byte for byte, every edge
// of the two formats, the menu flows through scripted dialogs, and the command line.
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "entry/log_grid_model.h"
#include "export/adif.h"
#include "export/cabrillo.h"
#include "export/export_common.h"
#include "export_reference.h"
#include "test_support.h"

#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::exporting;
using namespace kolibrino::test;

namespace {

ScoreFunction Score(long value) {
    return [value](const Model&) { return std::optional<long>(value); };
}

ScoreFunction NoScore() {
    return [](const Model&) { return std::optional<long>(); };
}

// One grid row with the texts a typed contact leaves.
GridRow Row(const QString& zeit, const QString& band, const QString& mode, const QString& call,
            const QString& bezirk, const QString& op, const QString& freq, bool dupe = false) {
    GridRow r;
    auto& c = r.cells;
    c[0] = QStringLiteral("01.05.2026");
    c[1] = zeit;
    c[2] = band;
    c[3] = mode;
    c[4] = call;
    c[5] = QStringLiteral("59");
    c[6] = QStringLiteral("59");
    c[7] = bezirk;
    c[8] = QStringLiteral("0");
    c[10] = op;
    if (dupe) c[11] = QStringLiteral("Dupe");
    c[14] = freq;
    return r;
}

QStringList Lines(const QString& text) {
    return text.split(QStringLiteral("\r\n"));
}

template <class T> const T& Pick(QRandomGenerator& rng, const QList<T>& list) {
    return list[qsizetype(rng.bounded(quint32(list.size())))];
}

// A log with a bit of everything: all bands and modes, dupes, districts of none to three
// characters, both periods and the border between them, odd dates, times and reports,
// long notes and names in code page 1252, and operators of whom one is part of another.
void FillVariedLog(Model& m, int count, bool staatsfunk, quint32 seed) {
    QRandomGenerator rng(seed);
    m.Header.MYCALL = QStringLiteral("OE3XYZ");
    m.Header.MYBZ = QStringLiteral("MD");
    m.Header.MYWERTUNGSST = staatsfunk ? 4 : 3;
    m.Header.MYEXAMDAT = QStringLiteral("02.04.2024");
    m.Header.MYOPNAME = QStringLiteral("J\u00fcrgen Gr\u00f6\u00df");
    m.Header.MYCITY = QStringLiteral("M\u00f6dling");
    m.Header.MYSTATION = QStringLiteral("FT-991 mit 100 W\r\n  Dipol \u201eInverted V\u201c  \r\nohne Ende");
    m.Header.MYKOMMENT = QStringLiteral("Danke f\u00fcr\u2019s QSO \u20ac\r\n");
    const QList<int> bands = staatsfunk ? QList<int>{80, 30} : QList<int>{40, 80, 80, 40, 30};
    const QList<QString> calls = {QStringLiteral("OE1ABC"), QStringLiteral("OE3\u00c4\u00d6\u00dc"),
                                  QStringLiteral("OE1VERYLONGCALL12"), QStringLiteral("OE9X"),
                                  QStringLiteral("OEM3ZZZ")};
    const QList<QString> districts = {QStringLiteral("WI"),     QStringLiteral("MD"),  QString(),
                                      QStringLiteral("G"),      QStringLiteral("GZX"), QStringLiteral("  "),
                                      QStringLiteral("\u00d61")};
    const QList<QString> dates = {QStringLiteral("01.05.2026"), QStringLiteral("01.05.2026"),
                                  QStringLiteral("30.04.2026"), QStringLiteral("kein Datum")};
    const QList<QString> reports = {QStringLiteral("59"), QStringLiteral("599"), QStringLiteral("5999"),
                                    QString(), QStringLiteral("5\u00e4")};
    const QList<QString> operators = {QStringLiteral("OE3XYZ"), QStringLiteral("OE1ABCD"),
                                      QStringLiteral("OE1ABC"), QString(), QStringLiteral("OE9\u00d6")};
    const QList<float> frequencies = {3650.0f, 7050.5f, 10120.0f, 0.0f, 3512.25f, 999.0f, 14000000.0f};
    const QString words = QStringLiteral("\u00c4\u00f6\u00fc\u00df \u20ac\u201e\u201c\u2013\u2026 Notiz ");
    m.LogRecords.clear();
    for (int i = 0; i < count; ++i) {
        QsoRecord r;
        r.Call = Pick(rng, calls) + QString::number(i % 7);
        r.Band = Pick(rng, bands);
        r.Bezirk = Pick(rng, districts);
        r.Datum = Pick(rng, dates);
        const int minute = i % 9 == 0 ? 11 * 60 + 59 + int(rng.bounded(2)) : int(rng.bounded(24 * 60));
        r.Zeit = i % 31 == 0 ? QStringLiteral("5:1") : m.Formats.RecordTime(QTime(minute / 60, minute % 60));
        r.RstGesendet = Pick(rng, reports);
        r.RstEmpfangen = Pick(rng, reports);
        r.Qsl = int(rng.bounded(3));
        r.Mode = r.ModeRx = rng.bounded(3) ? QStringLiteral("SSB") : QStringLiteral("CW");
        r.Status = rng.bounded(6) == 0 ? Status::Dupe : Status::Normal;
        r.Operator = Pick(rng, operators);
        r.Bemerkung = rng.bounded(4) == 0 ? words.repeated(1 + int(rng.bounded(40))) : QString();
        r.BandRx = QStringLiteral("0");
        r.Frequenz = Pick(rng, frequencies);
        r.LaufNr = float(i);
        m.LogRecords.push_back(r);
    }
}

} // namespace

class TstExportFiles : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    std::unique_ptr<LogGridModel> grid;

    void Load(const QString& fixture) {
        ScriptedDialogs d;
        QVERIFY(LoadLog(home->model, d, FixturePath(fixture)));
        DatenInGrid1Neu(home->model, *grid);
    }
    CabrilloSource Src() { return CabrilloSource{home->model, *grid, home->model.Header.MYBZ, 2026}; }
    void Header() {
        home->model.Header.MYCALL = QStringLiteral("OE1ABC");
        home->model.Header.MYBZ = QStringLiteral("WI");
    }

private slots:
    void init() {
        PinLocale();
        home = std::make_unique<Home>();
        grid = std::make_unique<LogGridModel>(home->model.Formats);
    }
    void cleanup() {
        grid.reset();
        home.reset();
    }

    void goldenCabrillo_data() {
        QTest::addColumn<QString>("log");
        QTest::addColumn<int>("score");
        QTest::newRow("newcomer with licence date, dupe, empty district") << "export_a" << 1234;
        QTest::newRow("state station with 30 m rows and nested operators") << "export_b" << 56;
        QTest::newRow("only 30 m rows") << "export_c" << 0;
    }
    void goldenCabrillo() {
        QFETCH(QString, log);
        QFETCH(int, score);
        Load(log + QStringLiteral(".KOLBO"));
        const auto bytes = BuildCabrilloBytes(Src(), Score(score));
        QVERIFY(bytes);
        QCOMPARE(*bytes, ReadBytes(FixturePath(log + QStringLiteral(".expected.log"))));
    }
    void goldenAdif_data() {
        QTest::addColumn<QString>("log");
        QTest::newRow("newcomer") << "export_a";
        QTest::newRow("state station") << "export_b";
        QTest::newRow("only 30 m") << "export_c";
    }
    void goldenAdif() {
        QFETCH(QString, log);
        Load(log + QStringLiteral(".KOLBO"));
        QCOMPARE(BuildAdifBytes(home->model, *grid, home->model.Header.MYBZ),
                 ReadBytes(FixturePath(log + QStringLiteral(".expected.adi"))));
    }

    // Cabrillo edges.
    void shortDistrictLeavesItsBlanksBeforeTheNextLine() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "", "OE1ABC", "3700"));
        grid->AppendRow(Row("05:01", "80m", "SSB", "OE3BBB", "MD", "OE1ABC", "3700"));
        const QString text = *BuildCabrillo(Src(), Score(1));
        QVERIFY(text.contains(QStringLiteral("OE3AAA        59  \r\n  QSO:  3700")));
        QVERIFY(text.contains(QStringLiteral("OE3BBB        59  MD\r\nEND-OF-LOG:")));
    }
    void onlyThirtyMetreRowsGiveAnEmptyLineAndNoOperators() {
        Header();
        grid->AppendRow(Row("05:00", "30m", "CW", "OE3AAA", "MD", "OE1ABC", "10120"));
        const QStringList l = Lines(*BuildCabrillo(Src(), Score(1)));
        const qsizetype i = l.indexOf(QStringLiteral("OPERATORS: "));
        QVERIFY(i > 0);
        QCOMPARE(l[i + 1], QString());
        QCOMPARE(l[i + 2], QStringLiteral("END-OF-LOG:"));
    }
    void rowAtTwelveIsPeriodTwo() {
        Header();
        grid->AppendRow(Row("11:59", "40m", "SSB", "OE3AAA", "MD", "OE1ABC", "7050"));
        grid->AppendRow(Row("12:00", "40m", "SSB", "OE3BBB", "MD", "OE1ABC", "7050"));
        QCOMPARE(CabrilloQsoLine(Src(), 0).mid(29, 3), QStringLiteral(" 1 "));
        QCOMPARE(CabrilloQsoLine(Src(), 1).mid(29, 3), QStringLiteral(" 2 "));
    }
    void licenceDateOnlyForClassThreeStraightAfterCategory() {
        Header();
        home->model.Header.MYEXAMDAT = QStringLiteral("02.04.2024");
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        for (int klasse = 0; klasse <= 5; ++klasse) {
            for (int pwr = 0; pwr <= 2; ++pwr) {
                home->model.Header.MYWERTUNGSST = klasse;
                home->model.Header.MYPWR = pwr;
                const QStringList l = Lines(*BuildCabrillo(Src(), Score(1)));
                const qsizetype i = l.indexOf(QStringLiteral("LICENSE-DATE: 2024-04-02"));
                if (klasse == 3 && pwr <= 1) {
                    QVERIFY(i > 0);
                    QVERIFY(l[i - 1].startsWith(QStringLiteral("CATEGORY: ")));
                    QVERIFY(l[i + 1].startsWith(QStringLiteral("CLAIMED-SCORE: ")));
                } else {
                    QCOMPARE(i, -1);
                }
            }
        }
    }
    void commentLineWithoutLineEndIsLost() {
        Header();
        home->model.Header.MYSTATION = QStringLiteral("ohne Zeilenende");
        home->model.Header.MYKOMMENT = QStringLiteral("  eins  \r\nzwei\r\ndrei");
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        const QString text = *BuildCabrillo(Src(), Score(1));
        QVERIFY(text.contains(QStringLiteral("\r\nSOAPBOX: eins\r\nSOAPBOX: zwei\r\nQSO:")));
        QVERIFY(!text.contains(QStringLiteral("drei")));
        QVERIFY(!text.contains(QStringLiteral("ohne Zeilenende")));
    }
    void scoreIsTakenAsGivenWithoutWaiting() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        int calls = 0;
        const auto text = BuildCabrillo(Src(), [&](const Model&) {
            ++calls;
            return std::optional<long>(4711);
        });
        QCOMPARE(calls, 1);
        QVERIFY(text->contains(QStringLiteral("\r\nCLAIMED-SCORE: 4711\r\n")));
    }
    void longerOperatorMetFirstHidesTheShorterOne() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABCD", "3700"));
        grid->AppendRow(Row("05:01", "80m", "SSB", "OE3BBB", "MD", "OE1ABC", "3700"));
        grid->AppendRow(Row("05:02", "80m", "SSB", "OE3CCC", "MD", "OE9X", "3700"));
        QVERIFY(BuildCabrillo(Src(), Score(1))->contains(QStringLiteral("\r\nOPERATORS: OE1ABCD OE9X\r\n")));
        grid->Clear();
        grid->AppendRow(Row("05:01", "80m", "SSB", "OE3BBB", "MD", "OE1ABC", "3700"));
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABCD", "3700"));
        QVERIFY(
            BuildCabrillo(Src(), Score(1))->contains(QStringLiteral("\r\nOPERATORS: OE1ABC OE1ABCD\r\n")));
    }
    void qsoLineHasItsFixedColumnsAndCutsLongValues() {
        Header();
        grid->AppendRow(Row("15:00", "80m", "SSB", "TESTCALL", "BR", "OE1ABC", "3700"));
        grid->AppendRow(Row("15:00", "80m", "CW", "OE1VERYLONGCALL12", "BRX", "OE1ABC", "3512.5"));
        home->model.Header.MYCALL = QStringLiteral("TESTCALL");
        home->model.Header.MYBZ = QStringLiteral("BR");
        QCOMPARE(CabrilloQsoLine(Src(), 0),
                 QStringLiteral("QSO:  3700 PH 2026-05-01 1500 2 TESTCALL      59  BR TESTCALL      59  BR"));
        QCOMPARE(CabrilloQsoLine(Src(), 0).size() + 2, 75);
        QCOMPARE(CabrilloQsoLine(Src(), 1),
                 QStringLiteral("QSO: 3512. CW 2026-05-01 1500 2 TESTCALL      59  BR OE1VERYLONGCA 59  BR"));
    }
    void dupesStandInTheCabrilloFile() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        grid->AppendRow(Row("05:01", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700", true));
        QCOMPARE(BuildCabrillo(Src(), Score(1))->count(QStringLiteral("OE3AAA")), 2);
    }
    void scoreFailureLeavesNoFileAndSaysSo() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        const QString path = home->Path(QStringLiteral("alt.log"));
        WriteBytes(path, "alter Inhalt");
        QCOMPARE(WriteCabrillo(Src(), NoScore(), path), CabrilloResult::ScoreFailed);
        QVERIFY(!QFile::exists(path));
        QCOMPARE(QDir(home->dir.path()).entryList(QDir::Files), QStringList());

        ScriptedDialogs d;
        d.AnswerPath(path);
        ExportCabrilloMenu(d, Src(), NoScore(), home->model.LogFolder, {});
        QCOMPARE(d.boxes.size(), 1);
        QCOMPARE(d.boxes[0].text, QStringLiteral("Fehler im LOG, Cabrillo kann nicht erzeugt werden!"));
        QCOMPARE(d.boxes[0].flags, int(Msg::Critical));
        QVERIFY(!QFile::exists(path));
    }
    void menuAddsTheExtensionAndAsksToOpenTheFile() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        ScriptedDialogs d;
        d.AnswerPath(QStringLiteral("  ") + home->Path(QStringLiteral("mein")) + QStringLiteral("  "));
        d.AnswerMsgBox(Msg::Yes);
        QString opened;
        ExportCabrilloMenu(d, Src(), Score(9), home->model.LogFolder, [&](const QString& p) { opened = p; });
        const QString path = home->Path(QStringLiteral("mein.LOG"));
        QCOMPARE(opened, path);
        QCOMPARE(d.boxes.size(), 1);
        QCOMPARE(d.boxes[0].text, QStringLiteral("Datei gespeichert unter\n") + path +
                                      QStringLiteral("\n\nSoll die Datei im Editor geöffnet werden?"));
        QCOMPARE(ReadBytes(path), *BuildCabrilloBytes(Src(), Score(9)));
        QCOMPARE(SaveNameWithExtension(QStringLiteral("x.log"), QStringLiteral(".LOG")),
                 QStringLiteral("x.log"));
    }
    void emptyLogDeletesTheChosenFileAndSaysSo() {
        Header();
        const QString path = home->Path(QStringLiteral("leer.log"));
        WriteBytes(path, "alt");
        ScriptedDialogs d;
        d.AnswerPath(path);
        ExportCabrilloMenu(d, Src(), Score(1), home->model.LogFolder, {});
        QVERIFY(!QFile::exists(path));
        QCOMPARE(d.LastBox()->text, QStringLiteral("Keine Logeinträge vorhanden zu exportieren!"));
        QCOMPARE(d.LastBox()->flags, int(Msg::Information));
    }
    void cancelledSaveDialogDoesNothing() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        ScriptedDialogs d;
        ExportCabrilloMenu(d, Src(), Score(1), home->model.LogFolder, {});
        ExportAdifMenu(d, home->model, *grid, QStringLiteral("WI"), {});
        QVERIFY(d.boxes.isEmpty());
    }

    // ADIF edges.
    void adifOfOnlyDupesIsTheHeaderAlone() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700", true));
        grid->AppendRow(Row("05:01", "30m", "SSB", "OE3BBB", "MD", "OE1ABC", "10120", true));
        const QStringList l = Lines(BuildAdif(home->model, *grid, QStringLiteral("WI")));
        QCOMPARE(l.size(), 6);
        QCOMPARE(l[4], QStringLiteral("<EOH>"));
        QCOMPARE(l[5], QString());
    }
    void adifContactWithoutFrequencyHasNoFreqTag() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", ""));
        QVERIFY(!AdifQsoLine(home->model, *grid, 0, QStringLiteral("WI")).contains(QStringLiteral("<FREQ")));
    }
    void adifFrequency3700Is3point700WithLength5() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        QVERIFY(AdifQsoLine(home->model, *grid, 0, QStringLiteral("WI"))
                    .contains(QStringLiteral("<FREQ:5>3.700<")));
        QCOMPARE(AdifFrequency(QStringLiteral("370")), QStringLiteral("370"));
        QCOMPARE(AdifFrequency(QStringLiteral("10120")), QStringLiteral("10.120"));
    }
    void adifOperatorEqualToOwnCallWritesOperatorAlone() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        grid->AppendRow(Row("05:01", "80m", "SSB", "OE3BBB", "MD", "OE1XYZ", "3700"));
        const QString own = AdifQsoLine(home->model, *grid, 0, QStringLiteral("WI"));
        QVERIFY(!own.contains(QStringLiteral("STATION_CALLSIGN")));
        QVERIFY(own.contains(QStringLiteral("<OPERATOR:6>OE1ABC<EOR>")));
        QVERIFY(AdifQsoLine(home->model, *grid, 1, QStringLiteral("WI"))
                    .contains(QStringLiteral("<STATION_CALLSIGN:6>OE1ABC<OPERATOR:6>OE1XYZ<EOR>")));
    }
    void adifMenuWritesTheFileWithItsExtension() {
        Header();
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3AAA", "MD", "OE1ABC", "3700"));
        ScriptedDialogs d;
        d.AnswerPath(home->Path(QStringLiteral("mein")));
        d.AnswerMsgBox(Msg::No);
        ExportAdifMenu(d, home->model, *grid, QStringLiteral("WI"), {});
        QCOMPARE(ReadBytes(home->Path(QStringLiteral("mein.ADI"))),
                 BuildAdifBytes(home->model, *grid, QStringLiteral("WI")));
    }

    // Generated logs against the plain writers in export_reference.h, byte for byte.
    void writersMatchTheReference_data() {
        QTest::addColumn<bool>("staatsfunk");
        QTest::addColumn<int>("sort");
        QTest::addColumn<QString>("ownBezirk");
        QTest::addColumn<int>("operators");
        QTest::newRow("newcomer in record order") << false << int(GridSort::None) << "MD" << 0;
        QTest::newRow("newcomer sorted by call") << false << int(GridSort::RufzeichenAuf) << "MD" << 0;
        QTest::newRow("state station, one-letter own district") << true << int(GridSort::ZeitAb) << "M" << 0;
        QTest::newRow("a long operators line") << false << int(GridSort::None) << "WI" << 400;
    }
    void writersMatchTheReference() {
        QFETCH(bool, staatsfunk);
        QFETCH(int, sort);
        QFETCH(QString, ownBezirk);
        QFETCH(int, operators);
        Model& m = home->model;
        FillVariedLog(m, 3000, staatsfunk, staatsfunk ? 11 : 7);
        for (int i = 0; i < operators; ++i)
            m.LogRecords[size_t(i)].Operator = QStringLiteral("OE%1OP").arg(i);
        DatenInGrid1Neu(m, *grid);
        // Rows as typed, with texts the code page cannot hold: a surrogate pair counts
        // as two characters and becomes one "?", also where a field cuts it in half.
        const QString smile = QString::fromUtf8("\xf0\x9f\x98\x80");
        grid->AppendRow(Row("05:00", "80m", "SSB", "OE3\u03a9" + smile, smile, "OE1ABC", ""));
        grid->AppendRow(Row("05:01", "40m", "CW", "OE3ABCDEFGHI" + smile, "A" + smile, smile, "7"));
        grid->AppendRow(Row("14:00", "30m", "CW", smile + smile, "", "OE1\u03a9", "10120"));
        grid->Sort(sort);
        const CabrilloSource src{m, *grid, ownBezirk, 2026};
        const auto bytes = BuildCabrilloBytes(src, Score(98765));
        QVERIFY(bytes);
        QCOMPARE(*bytes, reference::Cabrillo(src, 98765));
        QCOMPARE(BuildAdifBytes(m, *grid, ownBezirk), reference::Adif(m, *grid, ownBezirk));
        for (int row = 0; row < grid->DataRows(); ++row) {
            QCOMPARE(CabrilloQsoLine(src, row), Cp1252Clean(reference::QsoLine(src, row)));
            QCOMPARE(AdifQsoLine(m, *grid, row, ownBezirk),
                     Cp1252Clean(reference::AdifLine(m, *grid, row, ownBezirk)));
        }
    }

    // The command line writes what the menus write for the log as loaded.
    void commandLineWritesTheSameBytes_data() {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("expected");
        QTest::newRow("cabrillo") << "cabrillo"
                                  << "export_a.expected.log";
        QTest::newRow("adif") << "adif"
                              << "export_a.expected.adi";
    }
    void commandLineWritesTheSameBytes() {
        QFETCH(QString, command);
        QFETCH(QString, expected);
        const QString log = FixturePath(QStringLiteral("export_a.KOLBO"));
        const test::CliResult file = test::RunCli(home->dir.path(), {command, log});
        QCOMPARE(file.code, 0);
        QByteArray want = ReadBytes(FixturePath(expected));
        // The command line claims the result window's total, as "kolibrino-cli score"
        // gives it for the same log, and its year is the clock's.
        const test::CliResult score = test::RunCli(home->dir.path(), {QStringLiteral("score"), log});
        QCOMPARE(score.code, 0);
        QByteArray total;
        for (const QByteArray& line : score.out.split('\n'))
            if (line.startsWith("Punkte gesamt: ")) total = line.mid(15).trimmed();
        QVERIFY(!total.isEmpty());
        want.replace("CLAIMED-SCORE: 1234", "CLAIMED-SCORE: " + total);
        want.replace(", 2026 by", ", " + QByteArray::number(QDate::currentDate().year()) + " by");
        QCOMPARE(file.out, want);
    }
};

QTEST_GUILESS_MAIN(TstExportFiles)
#include "tst_export_files.moc"
