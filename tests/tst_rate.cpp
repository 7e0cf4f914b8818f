// The rate and the missing multipliers: the figures of hand-computed logs, in this
// process and through kolibrino-cli rate and needed.
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"
#include "scoring/needed.h"
#include "scoring/rate.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// Eight districts of six federal states; Burgenland (4) has none.
QByteArray EightDistricts() {
    return Cp(QStringLiteral("WI;992;185;Wien;1;\r\nSA;511;285;Salzburg (Stadt);2;\r\n"
                             "MD;950;240;M\u00f6dling;3;\r\nBR;503;212;Braunau am Inn;5;\r\n"
                             "GZ;854;435;Graz (Stadt);6;\r\nIL;284;420;Innsbruck-Land;7;\r\n"
                             "KL;704;544;Klagenfurt-Land;8;\r\nBZ;74;431;Bludenz;9;\r\n"));
}

QsoRecord Rec(const char* call, int band, const char* bz, const char* zeit, int status = Status::Normal,
              const char* mode = "SSB") {
    QsoRecord r;
    r.Call = QString::fromLatin1(call);
    r.Band = band;
    r.Bezirk = Fixed2(QString::fromLatin1(bz));
    r.Datum = QStringLiteral("01.05.2026");
    r.Zeit = QString::fromLatin1(zeit);
    r.RstGesendet = r.RstEmpfangen = QStringLiteral("59");
    r.Mode = r.ModeRx = QString::fromLatin1(mode);
    r.Status = status;
    r.Operator = QStringLiteral("OE1OPR");
    r.BandRx = QStringLiteral("0");
    return r;
}

// Both periods, a dupe in each, a contact at 12:00 and one at 08:00 sharp, a 30 m
// contact and an unknown district.
std::vector<QsoRecord> HandLog() {
    return {
        Rec("OE1AAA", 40, "WI", "05:01:00"),               // 05:00
        Rec("OE1AAA", 40, "WI", "05:09:59", Status::Dupe), // dupe: nowhere
        Rec("OE3BBB", 80, "MD", "05:10:00", Status::Normal, "CW"), // 05:10
        Rec("OE6CCC", 40, "GZ", "07:59:59"),               // 07:50
        Rec("OEY21", 30, "BR", "06:30:00", Status::Normal, "CW"),  // 06:30; no 40/80 multiplier
        Rec("OE5DDD", 80, "XX", "14:00:00"),               // 14:00; unknown district
        Rec("OE2EEE", 40, "SA", "12:00:00"),               // between the periods
        Rec("OE8FFF", 80, "KL", "16:50:00", Status::Normal, "CW"), // 16:50
        Rec("OE7GGG", 80, "IL", "08:00:00"),               // 08:00 is behind period 1
        Rec("OE9HHH", 40, "BZ", "14:25:00", Status::Dupe), // dupe: BZ stays missing on 40 m
    };
}

QString ExpectedRate() {
    QString s;
    for (int slot = 0; slot < kRateSlots; ++slot) {
        const int minutes = (slot < 18 ? 5 * 60 : 14 * 60) + (slot % 18) * 10;
        const QString hhmm = QStringLiteral("%1:%2")
                                 .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                                 .arg(minutes % 60, 2, 10, QLatin1Char('0'));
        const bool one = QStringList{"05:00", "05:10", "06:30", "07:50", "14:00", "16:50"}.contains(hhmm);
        s += hhmm + (one ? QStringLiteral(" 1\n") : QStringLiteral(" 0\n"));
    }
    return s + QStringLiteral("außerhalb der Perioden: 2\n");
}

const char* const kExpectedNeeded = "Bezirke 40m: MD BR IL KL BZ\n"
                                    "Bezirke 80m: WI SA BR GZ BZ\n"
                                    "Bundesländer 40m: 3 4 5 7 8 9\n"
                                    "Bundesländer 80m: 1 2 4 5 6 9\n";

} // namespace

class TestRate : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    QString logPath;

    void WriteLog(const std::vector<QsoRecord>& records) {
        Model m;
        m.SetLocale(AustrianLocale());
        m.Header = DefaultHeader(m);
        m.Header.MYCALL = QStringLiteral("OE1XYZ");
        m.LogFolder = home->model.LogFolder;
        m.CurrentLogName = QStringLiteral("rate.KOLBO");
        m.LogRecords = records;
        BuildLogText(m, true, 2026);
        QVERIFY(WriteLogFile(m).isEmpty());
        logPath = m.LogFolder + m.CurrentLogName;
    }
    Model Reopened() {
        Model m;
        m.SetLocale(AustrianLocale());
        m.DataFolder = home->model.DataFolder;
        ScriptedDialogs d;
        LoadBezirkTable(m, d);
        if (LoadLog(m, d, logPath) != 1) qWarning("tst_rate: the log did not load again");
        RebuildTallies(m);
        return m;
    }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        home = std::make_unique<Home>();
        WriteBytes(home->model.DataFolder + QStringLiteral("bez_koord.txt"), EightDistricts());
        WriteLog(HandLog());
    }

    void slotsRunInTenMinutesThroughBothPeriods() {
        QCOMPARE(RateSlot(5 * 3600), 0);
        QCOMPARE(RateSlot(5 * 3600 - 1), -1);
        QCOMPARE(RateSlot(8 * 3600 - 1), 17);
        QCOMPARE(RateSlot(8 * 3600), -1);
        QCOMPARE(RateSlot(12 * 3600), -1);
        QCOMPARE(RateSlot(14 * 3600), 18);
        QCOMPARE(RateSlot(17 * 3600 - 1), 35);
        QCOMPARE(RateSlot(17 * 3600), -1);
        QCOMPARE(SlotStart(0), QStringLiteral("05:00"));
        QCOMPARE(SlotStart(17), QStringLiteral("07:50"));
        QCOMPARE(SlotStart(18), QStringLiteral("14:00"));
        QCOMPARE(SlotStart(35), QStringLiteral("16:50"));
    }

    void rateCountsEveryContactThatIsNoDupeOnAnyBand() {
        const Model m = Reopened();
        const RateTable t = CountRate(m, QDateTime(QDate(2026, 5, 1), QTime(5, 12)));
        QCOMPARE(RateText(t), ExpectedRate());
        QCOMPARE(t.period1, 4);
        QCOMPARE(t.period2, 2);
        QCOMPARE(t.outside, 2);
        QCOMPARE(t.perBand[2][9], 1); // the 30 m contact at 06:30
        QCOMPARE(t.perBand[1][18], 1); // the unknown district's 80 m contact at 14:00
        QCOMPARE(t.perBand[3][18], 0);
        QCOMPARE(t.present, 1);
    }

    void rateOfTheLastTenAndSixtyMinutesInContactsPerHour() {
        const Model m = Reopened();
        // 05:12: in the last 10 minutes 05:10:00 (the dupe at 05:09:59 does not count),
        // in the last 60 also 05:01:00.
        RateTable t = CountRate(m, QDateTime(QDate(2026, 5, 1), QTime(5, 12)));
        QCOMPARE(t.last10, 1);
        QCOMPARE(t.PerHour10(), 6);
        QCOMPARE(t.PerHour60(), 2);
        // 05:20:00: 05:10:00 lies exactly 10 minutes back and no longer counts.
        t = CountRate(m, QDateTime(QDate(2026, 5, 1), QTime(5, 20)));
        QCOMPARE(t.last10, 0);
        QCOMPARE(t.last60, 2);
        // 08:05: 07:59:59 and 08:00:00 in the last ten minutes and in the hour (06:30
        // lies more than an hour back).
        t = CountRate(m, QDateTime(QDate(2026, 5, 1), QTime(8, 5)));
        QCOMPARE(t.PerHour10(), 12);
        QCOMPARE(t.PerHour60(), 2);
        QCOMPARE(t.present, -1);
        t = CountRate(m, QDateTime(QDate(2026, 5, 1), QTime(7, 29, 59)));
        QCOMPARE(t.PerHour60(), 1); // 06:30:00 is 59:59 back
        QCOMPARE(t.present, 14);
        // The next day nothing is recent.
        t = CountRate(m, QDateTime(QDate(2026, 5, 2), QTime(5, 5)));
        QCOMPARE(t.last60, 0);
    }

    void appendingReadsOnlyTheNewContacts() {
        Model m = Reopened();
        RateBook book;
        book.Rebuild(m);
        QCOMPARE(book.RecordsRead(), size_t(10));
        m.LogRecords.push_back(Rec("OE3ZZZ", 40, "MD", "05:02:00"));
        book.Append(m);
        QCOMPARE(book.RecordsRead(), size_t(11));
        QCOMPARE(book.Count(QDateTime()).perSlot[0], 2);
        m.LogRecords.resize(3); // another log
        book.Append(m);
        QCOMPARE(book.Count(QDateTime()).perSlot[0], 1);
    }

    void neededListsDistrictsAndStatesWithoutAContactThatIsNoDupe() {
        const Model m = Reopened();
        const NeededMultipliers n = ComputeNeeded(m);
        QCOMPARE(NeededText(m, n), QString::fromUtf8(kExpectedNeeded));
        QCOMPARE(n.bands[0].band, 40);
        QCOMPARE(n.bands[1].bezirke.front(), 1); // element number of WI
        QCOMPARE(BundeslandName(3), QStringLiteral("Niederösterreich"));
        QCOMPARE(BundeslandName(8), QStringLiteral("Kärnten"));
        QCOMPARE(BundeslandName(0), QString());
    }

    void cliRatePrintsThirtySixSlotsAndTheContactsOutside() {
        const CliResult r = RunCli(home->dir.path(), {QStringLiteral("rate"), logPath});
        QCOMPARE(r.code, 0);
        QCOMPARE(QString::fromUtf8(r.out), ExpectedRate());
        QVERIFY(r.err.isEmpty());
    }

    void cliNeededPrintsFourLines() {
        const CliResult r = RunCli(home->dir.path(), {QStringLiteral("needed"), logPath});
        QCOMPARE(r.code, 0);
        QCOMPARE(QString::fromUtf8(r.out), QString::fromUtf8(kExpectedNeeded));
    }

    void cliNeededOfAnEmptyLogListsTheWholeTable() {
        WriteLog({});
        const CliResult r = RunCli(home->dir.path(), {QStringLiteral("needed"), logPath});
        QCOMPARE(r.code, 0);
        QCOMPARE(QString::fromUtf8(r.out),
                 QStringLiteral("Bezirke 40m: WI SA MD BR GZ IL KL BZ\nBezirke 80m: WI SA MD BR GZ IL KL BZ\n"
                                "Bundesländer 40m: 1 2 3 4 5 6 7 8 9\nBundesländer 80m: 1 2 3 4 5 6 7 8 9\n"));
    }

    void cliOfADamagedLogGivesTheLoadFailureAndStatusOne() {
        const QString bad = home->model.LogFolder + QStringLiteral("kaputt.KOLBO");
        WriteBytes(bad, "kein Log\r\n");
        for (const char* command : {"rate", "needed"}) {
            const CliResult r = RunCli(home->dir.path(), {QString::fromLatin1(command), bad});
            QCOMPARE(r.code, 1);
            QVERIFY(r.out.isEmpty());
            QVERIFY2(QString::fromLocal8Bit(r.err).contains(
                         QStringLiteral("ist fehlerhaft oder keine gültige Kolibrino Logdatei!")),
                     r.err.constData());
        }
    }
};

QTEST_GUILESS_MAIN(TestRate)
#include "tst_rate.moc"
