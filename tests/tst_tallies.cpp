// The rebuild of every counter from the records.
#include "core/call_index.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

class TestTallies : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;

    void Add(int band, const QString& call, const QString& mode, const QString& zeit, const QString& bz,
             int status = 0) {
        QsoRecord r;
        r.Call = call;
        r.Band = band;
        r.Mode = mode;
        r.Zeit = zeit;
        r.Bezirk = Fixed2(bz);
        r.Status = status;
        AppendIndexEntry(home->model.CallIndex, call, qsizetype(home->model.LogRecords.size()));
        home->model.LogRecords.push_back(r);
    }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        home = std::make_unique<Home>();
        WriteBytes(home->model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        ScriptedDialogs d;
        QCOMPARE(LoadBezirkTable(home->model, d), 4);
    }

    void emptyLogHasAllCountersAtZero() {
        RebuildTallies(home->model);
        QCOMPARE(home->model.QsoCount, 0.0);
        QCOMPARE(home->model.DupeCount, 0);
        QVERIFY(home->model.StaatsfunkRecords.empty());
    }

    void rebuildCountsEveryTally() {
        Add(40, QStringLiteral("OE1AB"), QStringLiteral("SSB"), QStringLiteral("05:10:00"),
            QStringLiteral("WI"));
        Add(80, QStringLiteral("OE3CD"), QStringLiteral("CW"), QStringLiteral("14:00:00"),
            QStringLiteral("MD"));
        Add(40, QStringLiteral("OE1AB"), QStringLiteral("SSB"), QStringLiteral("05:20:00"),
            QStringLiteral("WI"), 1);
        Add(80, QStringLiteral("OEY21"), QStringLiteral("SSB"), QStringLiteral("06:00:00"),
            QStringLiteral("GZ"));
        Add(30, QStringLiteral("OEY21"), QStringLiteral("CW"), QStringLiteral("15:00:00"),
            QStringLiteral("GZ"));
        Add(30, QStringLiteral("OEX55"), QStringLiteral("CW"), QStringLiteral("11:59:59"),
            QStringLiteral("??"));
        Model& m = home->model;
        m.QsoCount = 99; // stale values are replaced, not added to
        RebuildTallies(m);
        QCOMPARE(m.QsoCount, 3.0); // 30 m and the dupe do not count
        QCOMPARE(m.DupeCount, 1);
        QCOMPARE(m.BezirkRecords[1].AnzGesamt, 1);
        QCOMPARE(m.BezirkRecords[1].Anz40, 1);
        QCOMPARE(m.BezirkRecords[2].Anz80, 1);
        QCOMPARE(m.BezirkRecords[3].AnzGesamt, 2);
        QCOMPARE(m.BezirkRecords[3].Anz80, 1);
        QCOMPARE(m.BezirkRecords[3].Anz30, 1);
        QCOMPARE(m.GruppeBandCount[0][0], 1);
        QCOMPARE(m.GruppeBandCount[2][1], 1);
        QCOMPARE(m.GruppeBandCount[5][1], 1);
        QCOMPARE(m.GruppeBandCount[5][2], 1);
        QCOMPARE(m.ModeBandCount[0][0], 1); // the dupe takes no part
        QCOMPARE(m.ModeBandCount[0][1], 1);
        QCOMPARE(m.ModeBandCount[1][1], 1);
        QCOMPARE(m.ModeBandCount[1][2], 1); // the unknown district "??" takes no part
        QCOMPARE(m.PeriodBandCount[0][0], 1);
        QCOMPARE(m.PeriodBandCount[3][1], 1);
        QCOMPARE(m.PeriodBandCount[2][2], 0);
        QCOMPARE(m.PeriodBandCount[3][2], 1);
        QCOMPARE(m.StaatsfunkRecords.size(), size_t(2));
        QCOMPARE(m.StaatsfunkRecords[0].Prefix, QStringLiteral("OEY"));
        QCOMPARE(m.StaatsfunkRecords[0].Anz80, 1);
        QCOMPARE(m.StaatsfunkRecords[0].Anz30, 1);
        QCOMPARE(m.StaatsfunkRecords[1].Prefix, QStringLiteral("OEX"));
        QCOMPARE(m.StaatsfunkRecords[1].Anz30, 1);
    }

    void stateStationIsATheLetterInThirdPlace_data() {
        QTest::addColumn<QString>("call");
        QTest::addColumn<bool>("state");
        QTest::newRow("OEY21") << QStringLiteral("OEY21") << true;
        QTest::newRow("OEA") << QStringLiteral("OEA") << true;
        QTest::newRow("OE1AB") << QStringLiteral("OE1AB") << false;
        QTest::newRow("lower case") << QStringLiteral("oey21") << false;
        QTest::newRow("two letters") << QStringLiteral("OE") << false;
    }
    void stateStationIsATheLetterInThirdPlace() {
        QFETCH(QString, call);
        QFETCH(bool, state);
        QCOMPARE(IsStaatsfunkCall(call), state);
    }

    void unreadableTimeCountsInNoPeriod() {
        Add(40, QStringLiteral("OE1AB"), QStringLiteral("SSB"), QStringLiteral("xx"), QStringLiteral("WI"));
        RebuildTallies(home->model);
        QCOMPARE(home->model.ModeBandCount[0][0], 1);
        for (const auto& row : home->model.PeriodBandCount)
            for (int v : row)
                QCOMPARE(v, 0);
    }
};

QTEST_GUILESS_MAIN(TestTallies)
#include "tst_tallies.moc"
