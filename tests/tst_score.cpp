// The score of the result window and the results text file, from the counters of a
// reopened log: three logs computed by hand, label by label and byte by byte, and the
// edge cases of the scoring rule.
#include "core/call_index.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"
#include "scoring/score.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

struct Expected {
    QString label6, label7, label8, label9, label12, label13, label14, label2, label10, label4, label3,
        label11, label21, label20, label1, label15, label23, label16, label18;
};

QStringList Values(const ScoreResult& s) {
    QStringList out;
    for (const auto& [caption, value] : ScoreLabels(s))
        out << value;
    return out;
}

QStringList Values(const Expected& e) {
    return {e.label6, e.label7,  e.label8,  e.label9,  e.label12, e.label13, e.label14,
            e.label2, e.label10, e.label4,  e.label3,  e.label11, e.label21, e.label20,
            e.label1, e.label15, e.label23, e.label16, e.label18};
}

QStringList Row(const ScoreGridRow& r) {
    QStringList out{r.title};
    for (long long v : r.cells)
        out << QString::number(v);
    return out;
}

} // namespace

class TestScore : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;

    void Add(int band, const QString& call, const QString& mode, const QString& zeit, const QString& bz,
             const QString& op = {}, int status = 0) {
        QsoRecord r;
        r.Call = call;
        r.Band = band;
        r.Mode = mode;
        r.Zeit = zeit;
        r.Bezirk = Fixed2(bz);
        r.Operator = op;
        r.Status = status;
        AppendIndexEntry(home->model.CallIndex, call, qsizetype(home->model.LogRecords.size()));
        home->model.LogRecords.push_back(r);
    }
    ScoreResult Score() {
        RebuildTallies(home->model);
        return ComputeScore(home->model);
    }
    QByteArray ResultsBytes(const ScoreResult& s) { return ToCp1252(ResultsText(home->model, s, 2026)); }
    static QByteArray Lines(const QStringList& lines) { return Cp(lines.join(QStringLiteral("\r\n"))); }
    static QStringList HeadLines(const QString& call, const QString& ops, const QString& category,
                                 const QString& qth) {
        QStringList l = {QString(),
                         QStringLiteral("            ZEFT 80/40m"),
                         QString(),
                         QStringLiteral("Call: ") + call,
                         QStringLiteral("Operator (S): ") + ops,
                         QStringLiteral("Station: ") + call,
                         QString()};
        if (!category.isEmpty()) l << category;
        l << QStringLiteral("QTH: ") + qth << QString() << QStringLiteral("Ergebnis:")
          << QStringLiteral(" Band  CW-Qs  Ph-Qs  Bezirke  BLD/STF") << QString(37, QLatin1Char('-'));
        return l;
    }
    static QStringList TailLines(const QString& q, const QString& points) {
        return {QString(),
                QString(),
                QStringLiteral("QSOs gesamt = ") + q,
                QStringLiteral("Punkte      = ") + points,
                QString(),
                QStringLiteral("Comments:"),
                QString(),
                QStringLiteral("CREATED-BY: Kolibrino v%1.%2.%3, 2026 by ZZ9QQQ")
                    .arg(KOLIBRINO_VERSION_MAJOR)
                    .arg(KOLIBRINO_VERSION_MINOR)
                    .arg(KOLIBRINO_VERSION_PATCH),
                QString(),
                QString()};
    }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        home = std::make_unique<Home>();
        home->InstallDistricts();
        ScriptedDialogs d;
        QCOMPARE(LoadBezirkTable(home->model, d), 94);
    }

    // State stations on 80 m and 30 m, a dupe, both periods, a mixed station.
    void stateStationLogScoresLabelByLabel() {
        Model& m = home->model;
        m.Header.MYCALL = QStringLiteral("OE1KBN");
        m.Header.MYCITY = QStringLiteral("Wien");
        m.Header.MYWERTUNGSST = 1;
        m.Header.MYPWR = 0;
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:10:00"),
            QStringLiteral("WI"), QStringLiteral("OE1XYZ"));
        Add(80, QStringLiteral("OE3BBB"), QStringLiteral("CW"), QStringLiteral("05:20:00"),
            QStringLiteral("MD"), QStringLiteral("OE1XY"));
        Add(80, QStringLiteral("OEY21"), QStringLiteral("SSB"), QStringLiteral("06:00:00"),
            QStringLiteral("GZ"), QStringLiteral("OE3ABC"));
        Add(30, QStringLiteral("OEY21"), QStringLiteral("CW"), QStringLiteral("15:00:00"),
            QStringLiteral("GZ"));
        Add(30, QStringLiteral("OEX55"), QStringLiteral("SSB"), QStringLiteral("15:10:00"),
            QStringLiteral("SA"));
        Add(80, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("14:10:00"),
            QStringLiteral("WI"));
        Add(40, QStringLiteral("OE5CCC"), QStringLiteral("CW"), QStringLiteral("14:30:00"),
            QStringLiteral("BR"));
        Add(80, QStringLiteral("OE3BBB"), QStringLiteral("CW"), QStringLiteral("05:25:00"),
            QStringLiteral("MD"), {}, Status::Dupe);
        const ScoreResult s = Score();
        QVERIFY(s.valid);
        const Expected e{"5", "2", "3", "2", "2", "3",     "2", "5",  "2", "3",
                         "2", "5", "1", "2", "1", "60/40", "0", "17", "85"};
        QCOMPARE(Values(s), Values(e));
        QCOMPARE(s.prefixes.size(), size_t(2));
        QCOMPARE(Row(s.prefixes[0]), QStringList({"OEY", "1", "1"}));
        QCOMPARE(Row(s.prefixes[1]), QStringList({"OEX", "0", "1"}));
        QCOMPARE(s.districts.size(), size_t(94));
        QCOMPARE(Row(s.districts[0]), QStringList({"WI", "1", "1", "0"}));
        QCOMPARE(Row(s.districts[60]), QStringList({"GZ", "0", "1", "1"}));
        QCOMPARE(Row(s.states[5]), QStringList({"OE6", "0", "1", "1"}));
        QCOMPARE(Row(s.modes[0]), QStringList({"SSB", "1", "2", "1", "4"}));
        QCOMPARE(Row(s.modes[1]), QStringList({"CW", "1", "1", "1", "3"}));
        QCOMPARE(Row(s.periods[0]), QStringList({"SSB-Vm", "1", "1", "0", "2"}));
        QCOMPARE(Row(s.periods[1]), QStringList({"SSB-Nm", "0", "1", "1", "2"}));
        QCOMPARE(Row(s.periods[2]), QStringList({"CW-Vm", "0", "1", "0", "1"}));
        QCOMPARE(Row(s.periods[3]), QStringList({"CW-Nm", "1", "0", "1", "2"}));

        QStringList lines = HeadLines(QStringLiteral("OE1KBN"), QStringLiteral("OE1XYZ, OE3ABC"),
                                      QStringLiteral("Category: LOW-POWER MIX"), QStringLiteral("Wien"));
        lines << QStringLiteral("   80:    1      2      3       3/1")
              << QStringLiteral("   40:    1      1      2       2/0")
              << QStringLiteral("   30:    1      1      -       -/-") << QString(37, QLatin1Char('-'))
              << QStringLiteral("          3      4      5         6");
        lines << TailLines(QStringLiteral("5"), QStringLiteral("85"));
        QCOMPARE(ResultsBytes(s), Lines(lines));
    }

    // A state station of its own (scoring class 4): 80 m and 30 m only.
    void staatsfunkstelleLogScoresLabelByLabel() {
        Model& m = home->model;
        m.Header.MYCALL = QStringLiteral("OEY12");
        m.Header.MYCITY = QStringLiteral("Mödling");
        m.Header.MYWERTUNGSST = 4;
        m.Header.MYPWR = 1;
        Add(80, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:10:00"),
            QStringLiteral("WI"));
        Add(30, QStringLiteral("OE2BBB"), QStringLiteral("CW"), QStringLiteral("05:20:00"),
            QStringLiteral("SA"));
        Add(80, QStringLiteral("OE3CCC"), QStringLiteral("CW"), QStringLiteral("14:05:00"),
            QStringLiteral("MD"));
        Add(30, QStringLiteral("OE3CCC"), QStringLiteral("CW"), QStringLiteral("14:10:00"),
            QStringLiteral("MD"));
        Add(80, QStringLiteral("OE1DDD"), QStringLiteral("CW"), QStringLiteral("15:00:00"),
            QStringLiteral("WI"));
        const ScoreResult s = Score();
        const Expected e{"3", "0", "3", "2", "0", "2",     "2", "2", "0", "2",
                         "2", "2", "0", "0", "0", "33/67", "0", "6", "18"};
        QCOMPARE(Values(s), Values(e));
        QVERIFY(s.prefixes.empty());
        QCOMPARE(Row(s.periods[2]), QStringList({"CW-Vm", "0", "0", "1", "1"}));
        QCOMPARE(Row(s.periods[3]), QStringList({"CW-Nm", "0", "2", "1", "3"}));

        QStringList lines =
            HeadLines(QStringLiteral("OEY12"), QString(), QStringLiteral("Category: STAATSFUNKSTELLEN"),
                      QStringLiteral("Mödling"));
        lines << QStringLiteral("   80:    2      1      2       2/0")
              << QStringLiteral("   40:    0      0      0       0/0")
              << QStringLiteral("   30:    2      0      -       -/-") << QString(37, QLatin1Char('-'))
              << QStringLiteral("          4      1      2         2");
        lines << TailLines(QStringLiteral("3"), QStringLiteral("18"));
        QCOMPARE(ResultsBytes(s), Lines(lines));
    }

    // Mains-independent operation (MYNPOWER 2), CW only, one unknown district.
    void mainsIndependentLogScoresLabelByLabel() {
        Model& m = home->model;
        m.Header.MYCALL = QStringLiteral("OE9KBN");
        m.Header.MYCITY = QStringLiteral("Bregenz");
        m.Header.MYWERTUNGSST = 2;
        m.Header.MYPWR = 1;
        m.Header.MYNPOWER = 2;
        const QString op = QStringLiteral("OE1ABC");
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("CW"), QStringLiteral("05:00:00"),
            QStringLiteral("WI"), op);
        Add(80, QStringLiteral("OE1AAA"), QStringLiteral("CW"), QStringLiteral("05:30:00"),
            QStringLiteral("WI"), op);
        Add(40, QStringLiteral("OE9BBB"), QStringLiteral("CW"), QStringLiteral("14:00:00"),
            QStringLiteral("BG"), op);
        Add(80, QStringLiteral("OE7CCC"), QStringLiteral("CW"), QStringLiteral("14:30:00"),
            QStringLiteral("XX"), op);
        const ScoreResult s = Score();
        const Expected e{"4", "2", "1", "0", "2", "1",     "0", "3", "2", "1",
                         "0", "3", "0", "0", "0", "0/100", "2", "9", "44"};
        QCOMPARE(Values(s), Values(e));

        QStringList lines = HeadLines(QStringLiteral("OE9KBN"), op, QStringLiteral("Category: HIGH-POWER CW"),
                                      QStringLiteral("Bregenz"));
        lines << QStringLiteral("   80:    1      0      1       1/0")
              << QStringLiteral("   40:    2      0      2       2/0")
              << QStringLiteral("   30:    0      0      -       -/-") << QString(37, QLatin1Char('-'))
              << QStringLiteral("          3      0      3         3");
        lines << TailLines(QStringLiteral("4"), QStringLiteral("44"));
        QCOMPARE(ResultsBytes(s), Lines(lines));
    }

    void emptyLogShowsZeroRatioAndScoreZero() {
        const ScoreResult s = Score();
        QCOMPARE(s.Label15, QStringLiteral("0/0"));
        for (const auto& [caption, value] : ScoreLabels(s))
            if (caption != QStringLiteral("Verhältnis SSB/CW in %")) QCOMPARE(value, QStringLiteral("0"));
        QVERIFY(s.prefixes.empty());
    }

    void onlyThirtyMetreContactsFillThe30mColumnAndScoreZero() {
        Add(30, QStringLiteral("OE1AAA"), QStringLiteral("CW"), QStringLiteral("05:00:00"),
            QStringLiteral("WI"));
        Add(30, QStringLiteral("OE3BBB"), QStringLiteral("SSB"), QStringLiteral("05:10:00"),
            QStringLiteral("MD"));
        const ScoreResult s = Score();
        QCOMPARE(s.Label9, 2LL);
        QCOMPARE(s.Label14, 2);
        QCOMPARE(s.Label3, 2);
        QCOMPARE(s.Label6, 0.0);
        QCOMPARE(ScoreNumberText(s.Label18), QStringLiteral("0"));
    }

    void unknownDistrictIsAValidQsoInNoTable() {
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:00:00"),
            QStringLiteral("??"));
        Add(80, QStringLiteral("OE3BBB"), QStringLiteral("SSB"), QStringLiteral("05:10:00"), QString());
        const ScoreResult s = Score();
        QCOMPARE(s.Label6, 2.0);
        QCOMPARE(s.Label7 + s.Label8 + s.Label9, 0LL);
        QCOMPARE(s.Label2 + s.Label11, 0);
        for (const auto& row : s.periods)
            QCOMPARE(row.cells[3], 0LL);
        QCOMPARE(s.Label18, 0.0);
    }

    void stateStationOn40mCreatesAPrefixRowWithBothCountsZero() {
        Add(40, QStringLiteral("OEY21"), QStringLiteral("SSB"), QStringLiteral("05:00:00"),
            QStringLiteral("WI"));
        const ScoreResult s = Score();
        QCOMPARE(s.prefixes.size(), size_t(1));
        QCOMPARE(Row(s.prefixes[0]), QStringList({"OEY", "0", "0"}));
        QCOMPARE(s.Label21, 0);
        QCOMPARE(s.Label20, 0);
    }

    void mainsIndependentPowerWithoutMultiplierGivesTwiceQ() {
        home->model.Header.MYNPOWER = 2;
        for (int i = 0; i < 7; ++i)
            Add(40, QStringLiteral("OE1A%1").arg(QChar(u'A' + i)), QStringLiteral("SSB"),
                QStringLiteral("05:00:00"), QStringLiteral("??"));
        const ScoreResult s = Score();
        QCOMPARE(s.Label16, 0LL);
        QCOMPARE(s.Label18, 14.0);
    }

    void ratioOfFiftyPointFivePercentShowsFiftyFifty() {
        home->model.ModeBandCount[0][0] = 101; // SSB
        home->model.ModeBandCount[1][1] = 99;  // CW
        QCOMPARE(ComputeScore(home->model).Label15, QStringLiteral("50/50"));
        home->model.ModeBandCount[0][0] = 103; // 51.5 rounds to the even 52
        home->model.ModeBandCount[1][1] = 97;
        QCOMPARE(ComputeScore(home->model).Label15, QStringLiteral("52/48"));
    }

    void thirtyMetresStayOutOfTheRatio() {
        home->model.ModeBandCount[0][2] = 50;
        home->model.ModeBandCount[1][0] = 1;
        QCOMPARE(ComputeScore(home->model).Label15, QStringLiteral("0/100"));
    }

    void operatorInsideALongerCallIsLeftOut() {
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:00:00"),
            QStringLiteral("WI"), QStringLiteral("OE3ABCD"));
        Add(40, QStringLiteral("OE1AAB"), QStringLiteral("SSB"), QStringLiteral("05:01:00"),
            QStringLiteral("WI"), QStringLiteral("OE3ABC"));
        Add(40, QStringLiteral("OE1AAC"), QStringLiteral("SSB"), QStringLiteral("05:02:00"),
            QStringLiteral("WI"), QStringLiteral("OE5X"), Status::Dupe);
        QCOMPARE(OperatorList(home->model), QStringLiteral("OE3ABCD, OE5X"));
    }

    void operatorListOfOneLetterIsKeptAndNoOperatorGivesNothing() {
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:00:00"), QStringLiteral("WI"));
        QCOMPARE(OperatorList(home->model), QString()); // "" is in every text: nothing added
        Add(40, QStringLiteral("OE1AAB"), QStringLiteral("SSB"), QStringLiteral("05:01:00"), QStringLiteral("WI"),
            QStringLiteral("X"));
        QCOMPARE(OperatorList(home->model), QStringLiteral("X")); // "X, " is three characters long
    }

    void categoryLineFollowsClassAndPower_data() {
        QTest::addColumn<int>("klasse");
        QTest::addColumn<int>("pwr");
        QTest::addColumn<QString>("line");
        QTest::newRow("0 low") << 0 << 0 << "Category: LOW-POWER SSB";
        QTest::newRow("0 high") << 0 << 1 << "Category: HIGH-POWER SSB";
        QTest::newRow("1 low") << 1 << 0 << "Category: LOW-POWER MIX";
        QTest::newRow("1 high") << 1 << 1 << "Category: HIGH-POWER MIX";
        QTest::newRow("2 low") << 2 << 0 << "Category: LOW-POWER CW";
        QTest::newRow("2 high") << 2 << 1 << "Category: HIGH-POWER CW";
        QTest::newRow("3 low") << 3 << 0 << "Category: LOW-POWER NEWCOMER";
        QTest::newRow("3 high") << 3 << 1 << "Category: HIGH-POWER NEWCOMER";
        QTest::newRow("4 low") << 4 << 0 << "Category: STAATSFUNKSTELLEN";
        QTest::newRow("4 high") << 4 << 1 << "Category: STAATSFUNKSTELLEN";
        QTest::newRow("5") << 5 << 0 << "";
        QTest::newRow("-1") << -1 << 1 << "";
    }
    void categoryLineFollowsClassAndPower() {
        QFETCH(int, klasse);
        QFETCH(int, pwr);
        QFETCH(QString, line);
        QCOMPARE(CategoryLine(klasse, pwr), line);
    }

    void unknownCategoryLeavesTheLineOut() {
        home->model.Header.MYWERTUNGSST = 7;
        const QStringList lines = ResultsText(home->model, Score(), 2026).split(QStringLiteral("\r\n"));
        QCOMPARE(lines[7], QStringLiteral("QTH: "));
        QCOMPARE(lines.size(), 27); // 26 lines and the end after the last CR LF
    }

    void rightAlignedFieldsCutLongValues() {
        home->model.PeriodBandCount[2][1] = 123456; // CW on 80 m: six digits in a field of five
        const QStringList lines =
            ResultsText(home->model, ComputeScore(home->model), 2026).split(QStringLiteral("\r\n"));
        QCOMPARE(lines[13], QStringLiteral("   80:12345      0      0       0/0"));
        QCOMPARE(lines[17], QStringLiteral("     123456      0      0         0"));
    }

    void txtNameKeepsItsCaseAndGetsNoSecondExtension() {
        QCOMPARE(ResultsFileName(QStringLiteral("/tmp/x.TXT")), QStringLiteral("/tmp/x.TXT"));
        QCOMPARE(ResultsFileName(QStringLiteral("/tmp/x.txt")), QStringLiteral("/tmp/x.txt"));
        QCOMPARE(ResultsFileName(QStringLiteral("/tmp/x")), QStringLiteral("/tmp/x.txt"));
        QCOMPARE(ResultsFileName(QStringLiteral("/tmp/x.tx")), QStringLiteral("/tmp/x.tx.txt"));
    }

    void withoutDistrictTableTheClaimedScoreFails() {
        Model bare;
        QVERIFY(!ComputeScore(bare).valid);
        QVERIFY(!ClaimedScore(bare).has_value());
        QCOMPARE(QString::fromUtf8(kScoreFailureText),
                 QStringLiteral("Fehler im LOG, Cabrillo kann nicht erzeugt werden!"));
        Add(40, QStringLiteral("OE1AAA"), QStringLiteral("SSB"), QStringLiteral("05:00:00"),
            QStringLiteral("WI"));
        RebuildTallies(home->model);
        QCOMPARE(ClaimedScore(home->model), std::optional<QString>(QStringLiteral("3")));
    }
};

QTEST_GUILESS_MAIN(TestScore)
#include "tst_score.moc"
