// The call index and the dupe rule: one contact per call, band, mode and period.
#include "core/call_index.h"
#include "core/log_file.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

QsoRecord Rec(const QString& call, int band, const QString& mode, const QString& zeit, int status = 0,
              const QString& bezirk = QStringLiteral("WI")) {
    QsoRecord r;
    r.Call = call;
    r.Band = band;
    r.Mode = mode;
    r.ModeRx = mode;
    r.Zeit = zeit;
    r.Datum = QStringLiteral("01.05.2026");
    r.Status = status;
    r.Bezirk = Fixed2(bezirk);
    return r;
}

void Add(Model& m, const QsoRecord& r) {
    AppendIndexEntry(m.CallIndex, r.Call, qsizetype(m.LogRecords.size()));
    m.LogRecords.push_back(r);
}

} // namespace

class TestCallIndex : public QObject {
    Q_OBJECT

    Model m;

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        m = Model();
        m.SetLocale(AustrianLocale());
    }

    void indexEntriesStandInArrayOrder() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:00:00")));
        Add(m, Rec(QStringLiteral("OE3CD"), 80, QStringLiteral("CW"), QStringLiteral("06:00:00")));
        QCOMPARE(m.CallIndex, QStringLiteral("\u00b6OE1AB\u00d70\u00b6OE3CD\u00d71\u00b6"));
    }

    void parseIndexEntryReadsTheEntryAtAPosition_data() {
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("record");
        QTest::newRow("position 0") << 0 << QString() << 0;
        QTest::newRow("first pilcrow") << 1 << QStringLiteral("OE1AB") << 0;
        QTest::newRow("inside first entry") << 4 << QStringLiteral("OE1AB") << 0;
        QTest::newRow("second entry") << 9 << QStringLiteral("OE3CD") << 1;
        QTest::newRow("last pilcrow") << 17 << QString() << 0;
    }
    void parseIndexEntryReadsTheEntryAtAPosition() {
        QFETCH(int, position);
        QFETCH(QString, call);
        QFETCH(int, record);
        const QString index = QStringLiteral("\u00b6OE1AB\u00d70\u00b6OE3CD\u00d71\u00b6");
        const CallIndexEntry e = ParseIndexEntry(index, position);
        QCOMPARE(e.Call, call);
        QCOMPARE(e.RecordIndex, record);
    }

    void emptyIndexFindsNothingAndLeavesTheDistrict() {
        const DupeVerdict v =
            CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(5, 0));
        QVERIFY(!v.isDupe);
        QVERIFY(!v.found);
        QVERIFY(v.bezirk.isNull());
    }

    void keyIncludesBothSeparators_data() {
        QTest::addColumn<QString>("logged");
        QTest::newRow("longer call") << QStringLiteral("OE1ABC");
        QTest::newRow("prefixed call") << QStringLiteral("XOE1AB");
    }
    void keyIncludesBothSeparators() {
        QFETCH(QString, logged);
        Add(m, Rec(logged, 40, QStringLiteral("SSB"), QStringLiteral("05:00:00")));
        const DupeVerdict v =
            CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(5, 30));
        QVERIFY(!v.isDupe);
        QVERIFY(!v.found);
        QVERIFY(!CallInIndex(m.CallIndex, QStringLiteral("OE1AB")));
    }

    void oneContactPerBandModeAndPeriod_data() {
        QTest::addColumn<int>("band");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QTime>("entry");
        QTest::addColumn<bool>("dupe");
        QTest::newRow("same slot") << 40 << QStringLiteral("SSB") << QTime(5, 30) << true;
        QTest::newRow("other band") << 80 << QStringLiteral("SSB") << QTime(5, 30) << false;
        QTest::newRow("other mode") << 40 << QStringLiteral("CW") << QTime(5, 30) << false;
        QTest::newRow("afternoon") << 40 << QStringLiteral("SSB") << QTime(14, 30) << false;
        QTest::newRow("mode compared exactly") << 40 << QStringLiteral("ssb") << QTime(5, 30) << false;
    }
    void oneContactPerBandModeAndPeriod() {
        QFETCH(int, band);
        QFETCH(QString, mode);
        QFETCH(QTime, entry);
        QFETCH(bool, dupe);
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00")));
        const DupeVerdict v = CallExistTest(m, QStringLiteral("OE1AB"), band, mode, entry);
        QCOMPARE(v.isDupe, dupe);
        QVERIFY(v.found);
        if (dupe) {
            QCOMPARE(*v.dupeTime, QTime(5, 10));
            QCOMPARE(DupeWarningText(m, *v.dupeTime),
                     QStringLiteral("Station bereits um 05:10 Uhr gearbeitet!"));
        }
    }

    void storedDupeNeverMakesADupe() {
        // first contact, then a stored dupe in the same slot: a third is tested against the first only
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00"), 1));
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:20:00"), 1));
        QVERIFY(!CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(5, 30)).isDupe);
        Model m2;
        m2.SetLocale(AustrianLocale());
        Add(m2, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00"), 0));
        Add(m2, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:20:00"), 1));
        const DupeVerdict v =
            CallExistTest(m2, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(5, 30));
        QVERIFY(v.isDupe);
        QCOMPARE(v.dupeRecord, 0);
    }

    void deletedRecordNeverMakesADupe() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00"), -1));
        QVERIFY(!CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(5, 30)).isDupe);
    }

    void noonEntryIsNoDupeOfAMorningOrNoonRecord_data() {
        QTest::addColumn<QString>("recordTime");
        QTest::newRow("11:59:59") << QStringLiteral("11:59:59");
        QTest::newRow("12:00:00") << QStringLiteral("12:00:00");
    }
    void noonEntryIsNoDupeOfAMorningOrNoonRecord() {
        QFETCH(QString, recordTime);
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), recordTime));
        QVERIFY(!CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(12, 0)).isDupe);
    }

    void aRecordAtNoonIsInNeitherPeriod() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("12:00:00")));
        QVERIFY(!CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(11, 0)).isDupe);
        QVERIFY(!CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(15, 0)).isDupe);
    }

    void aHitFillsTheDistrictOfTheLastRecordVisited() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00"), 0,
                   QStringLiteral("WI")));
        Add(m, Rec(QStringLiteral("OE1AB"), 80, QStringLiteral("SSB"), QStringLiteral("05:20:00"), 0,
                   QStringLiteral("MD")));
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("CW"), QStringLiteral("05:30:00"), 0,
                   QStringLiteral("GZ")));
        // no dupe: every record is visited, the last one names the district
        DupeVerdict v = CallExistTest(m, QStringLiteral("OE1AB"), 80, QStringLiteral("CW"), QTime(6, 0));
        QVERIFY(!v.isDupe);
        QCOMPARE(v.bezirk, QStringLiteral("GZ"));
        // a dupe hit stops at the record that makes it
        v = CallExistTest(m, QStringLiteral("OE1AB"), 80, QStringLiteral("SSB"), QTime(6, 0));
        QVERIFY(v.isDupe);
        QCOMPARE(v.bezirk, QStringLiteral("MD"));
    }

    void withoutAnEntryTimeNothingIsADupeButTheDistrictFills() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:10:00"), 0,
                   QStringLiteral("WI")));
        Add(m, Rec(QStringLiteral("OE1AB"), 80, QStringLiteral("SSB"), QStringLiteral("06:10:00"), 0,
                   QStringLiteral("MD")));
        const DupeVerdict v =
            CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), std::nullopt);
        QVERIFY(!v.isDupe);
        QVERIFY(v.found);
        QCOMPARE(v.bezirk, QStringLiteral("MD"));
    }

    void firstRecordInIndexOrderNamesTheTime() {
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("07:00:00")));
        Add(m, Rec(QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QStringLiteral("05:00:00")));
        const DupeVerdict v =
            CallExistTest(m, QStringLiteral("OE1AB"), 40, QStringLiteral("SSB"), QTime(7, 30));
        QCOMPARE(*v.dupeTime, QTime(7, 0));
    }
};

QTEST_GUILESS_MAIN(TestCallIndex)
#include "tst_call_index.moc"
