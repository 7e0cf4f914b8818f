// The partial-call search, its period rule and colours, and the worked matrix of the
// call check window, without windows.
#include "assist/partial_call.h"
#include "core/call_index.h"
#include "core/settings.h"
#include "test_support.h"

#include <QRandomGenerator>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

QsoRecord Rec(const QString& call, int band, const QString& mode, const QString& zeit,
              const QString& bezirk = QStringLiteral("WI"), int status = Status::Normal) {
    QsoRecord r;
    r.Call = call;
    r.Band = band;
    r.Mode = mode;
    r.Zeit = zeit;
    r.Bezirk = Fixed2(bezirk);
    r.Datum = QStringLiteral("01.05.2026");
    r.Status = status;
    return r;
}

struct Log {
    std::vector<QsoRecord> records;
    QString index = QString(kPilcrow);
    void Add(const QsoRecord& r) {
        AppendIndexEntry(index, r.Call, qsizetype(records.size()));
        records.push_back(r);
    }
};

QStringList Cells(const std::vector<PartialEntry>& list) {
    QStringList out;
    for (const PartialEntry& e : list)
        out << e.CellText() + (e.worked ? QStringLiteral(" gearbeitet") : QStringLiteral(" neu"));
    return out;
}

// The same list by walking the records one by one, the period decided by formatting
// each time afresh: the reference the search is held against.
std::vector<PartialEntry> BruteForce(const Log& log, const QString& field, int band, const QString& mode,
                                     Period period, const LocaleFormats& f, const QTime& noon) {
    std::vector<PartialEntry> out;
    QString s = field;
    while (s.startsWith(QLatin1Char(' ')))
        s.remove(0, 1);
    while (s.endsWith(QLatin1Char(' ')))
        s.chop(1);
    s = s.toUpper();
    if (s.startsWith(QLatin1String("OE")) && s.size() > 2) s = s.mid(2);
    if (s == QLatin1String("OE") || s.size() < 2) return out;
    const QString border = f.ShortTime(noon);
    for (size_t i = 0; i < log.records.size(); ++i) {
        const QsoRecord& r = log.records[i];
        if (!r.Call.contains(s)) {
            if (QString::number(i).contains(s)) break; // the scan stops at a hit in a record number
            continue;
        }
        const auto t = f.ParseTime(r.Zeit);
        const QString shown = t ? f.ShortTime(*t) : r.Zeit.trimmed();
        const Period p = shown < border ? Period::Vormittag : Period::Nachmittag;
        const bool fits = r.Band == band && r.Mode == mode && p == period;
        auto it = std::find_if(out.begin(), out.end(), [&](const PartialEntry& e) {
            return e.call == r.Call && e.bezirk == r.Bezirk;
        });
        if (it == out.end())
            out.push_back({r.Call, r.Bezirk, fits});
        else if (fits)
            it->worked = true;
    }
    return out;
}

} // namespace

class TestPartialCall : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    std::unique_ptr<LocaleFormats> formats;
    std::unique_ptr<PeriodRule> rule;

    std::vector<PartialEntry> Search(const Log& log, const QString& text, int band = 40,
                                     const QString& mode = QStringLiteral("SSB"),
                                     Period period = Period::Vormittag) {
        return PartialCallSearch(log.index, log.records, text, band, mode, period, *rule);
    }

private slots:
    void initTestCase() {
        PinLocale();
        formats = std::make_unique<LocaleFormats>(AustrianLocale());
        rule = std::make_unique<PeriodRule>(*formats, QTime(12, 0));
    }
    void init() { home = std::make_unique<Home>(); }

    // ---- The search text --------------------------------------------------------------

    void typingOeAloneShowsNothing() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(PartialSearchText(QStringLiteral("OE")), QString());
        QVERIFY(Search(log, QStringLiteral("OE")).empty());
        QVERIFY(Search(log, QStringLiteral("oe")).empty());
    }

    void typingOe5xSearches5x() {
        QCOMPARE(PartialSearchText(QStringLiteral("OE5X")), QStringLiteral("5X"));
        Log log;
        log.Add(Rec(QStringLiteral("OE5XYZ"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("DL5XA"), 80, QStringLiteral("CW"), QStringLiteral("06:00:00"),
                    QStringLiteral("ZZ")));
        log.Add(Rec(QStringLiteral("OE6ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(Cells(Search(log, QStringLiteral(" oe5x "))),
                 (QStringList{QStringLiteral("OE5XYZ  (WI) gearbeitet"), QStringLiteral("DL5XA  (ZZ) neu")}));
    }

    void oneCharacterShowsNothing() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(PartialSearchText(QStringLiteral("A")), QString());
        QVERIFY(Search(log, QStringLiteral("A")).empty());
        QVERIFY(Search(log, QStringLiteral("OEA")).empty()); // "OE" dropped leaves one character
    }

    void theOeRuleAppliesAfterTrimAndCapitals() {
        QCOMPARE(PartialSearchText(QStringLiteral("  oe1a ")), QStringLiteral("1A"));
        QCOMPARE(PartialSearchText(QStringLiteral("OEOE")), QString());
        QCOMPARE(PartialSearchText(QStringLiteral("DL")), QStringLiteral("DL"));
    }

    // ---- Worked or not ------------------------------------------------------------------

    void stationWorkedInTheOtherPeriodShowsNotWorked() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(Cells(Search(log, QStringLiteral("OE1A"), 40, QStringLiteral("SSB"), Period::Nachmittag)),
                 QStringList{QStringLiteral("OE1ABC  (WI) neu")});
        QCOMPARE(Cells(Search(log, QStringLiteral("OE1A"), 40, QStringLiteral("SSB"), Period::Vormittag)),
                 QStringList{QStringLiteral("OE1ABC  (WI) gearbeitet")});
    }

    void otherBandOrModeShowsNotWorked() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QVERIFY(!Search(log, QStringLiteral("1AB"), 80)[0].worked);
        QVERIFY(!Search(log, QStringLiteral("1AB"), 40, QStringLiteral("CW"))[0].worked);
    }

    void oneEntryPerCallAndDistrictWorkedWhateverTheOrder() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:10:00")));
        log.Add(Rec(QStringLiteral("OE1ABC"), 80, QStringLiteral("CW"), QStringLiteral("06:20:00")));
        QCOMPARE(Cells(Search(log, QStringLiteral("1ABC"))),
                 QStringList{QStringLiteral("OE1ABC  (WI) gearbeitet")});
    }

    void sameCallWithAnotherDistrictIsASeparateEntry() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("OE1ABC"), 80, QStringLiteral("SSB"), QStringLiteral("06:10:00"),
                    QStringLiteral("MD")));
        QCOMPARE(
            Cells(Search(log, QStringLiteral("ABC"))),
            (QStringList{QStringLiteral("OE1ABC  (WI) gearbeitet"), QStringLiteral("OE1ABC  (MD) neu")}));
    }

    void storedDupesAndDeletedRecordsStillCount() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00"),
                    QStringLiteral("WI"), Status::Deleted));
        log.Add(Rec(QStringLiteral("OE2ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00"),
                    QStringLiteral("WI"), Status::Dupe));
        QCOMPARE(Cells(Search(log, QStringLiteral("ABC"))),
                 (QStringList{QStringLiteral("OE1ABC  (WI) gearbeitet"),
                              QStringLiteral("OE2ABC  (WI) gearbeitet")}));
    }

    void aRecordAtTwelveIsAfternoon() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("12:00:00")));
        log.Add(Rec(QStringLiteral("OE2ABC"), 40, QStringLiteral("SSB"), QStringLiteral("11:59:59")));
        QCOMPARE(
            Cells(Search(log, QStringLiteral("ABC"), 40, QStringLiteral("SSB"), Period::Nachmittag)),
            (QStringList{QStringLiteral("OE1ABC  (WI) gearbeitet"), QStringLiteral("OE2ABC  (WI) neu")}));
    }

    void aHitInARecordNumberEndsTheSearch() {
        // Entries 0 to 11; "11" first stands in the record number of entry 11, whose
        // call does not hold it: the calls behind it are never reached.
        Log log;
        for (int i = 0; i < 11; ++i)
            log.Add(Rec(QStringLiteral("DL%1X").arg(i % 2 ? QStringLiteral("11") : QStringLiteral("2")), 40,
                        QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("DL7X"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("DL11Y"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(Cells(Search(log, QStringLiteral("11"))),
                 QStringList{QStringLiteral("DL11X  (WI) gearbeitet")});
    }

    void anEmptyIndexFindsNothing() {
        Log log;
        QVERIFY(Search(log, QStringLiteral("ABC")).empty());
    }

    void anIndexEntryOutsideTheRecordsIsSkipped() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        AppendIndexEntry(log.index, QStringLiteral("OE2ABC"), 7);
        log.Add(Rec(QStringLiteral("OE3ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        QCOMPARE(Search(log, QStringLiteral("ABC")).size(), size_t(2));
    }

    void gridRowsAreFiveEntriesARowRoundedUp() {
        QCOMPARE(PartialGridRows(0), 0);
        QCOMPARE(PartialGridRows(1), 1);
        QCOMPARE(PartialGridRows(5), 1);
        QCOMPARE(PartialGridRows(6), 2);
    }

    // ---- The period rule ----------------------------------------------------------------

    void periodComparesTheShortTimeWithTwelve() {
        QCOMPARE(rule->OfText(QStringLiteral("11:59:59")), Period::Vormittag);
        QCOMPARE(rule->OfText(QStringLiteral("12:00:30")), Period::Nachmittag);
        QCOMPARE(rule->OfText(QStringLiteral("05:00")), Period::Vormittag);
        QCOMPARE(rule->OfText(QStringLiteral("930")), Period::Nachmittag); // "930" > "12:00" as text
        QCOMPARE(rule->OfText(QStringLiteral("00:00")), Period::Vormittag);
    }

    // ---- Colours and caption --------------------------------------------------------------

    void coloursHaveTheirDefaultsWithoutTheOkKeys() {
        IniWrite({}, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearFarbe"), 123);
        const PartialColours c = LoadPartialColours();
        QCOMPARE(c.gearFarbe, 255);
        QCOMPARE(c.gearFarbeName, QStringLiteral("ROT"));
        QCOMPARE(c.nichtGearFarbe, 65280);
        QCOMPARE(c.nichtGearFarbeName, QStringLiteral("GR\u00dcN"));
        QCOMPARE(c.hFarbe, 0xFF0000);
    }

    void storedColoursReadBack() {
        StoreGearFarbe(0x00FFFF, QStringLiteral("GELB"));
        StoreNichtGearFarbe(0xFFFFFF, QStringLiteral("WEISS"));
        StoreHFarbe(0);
        const PartialColours c = LoadPartialColours();
        QCOMPARE(c.gearFarbe, 0x00FFFF);
        QCOMPARE(c.gearFarbeName, QStringLiteral("GELB"));
        QCOMPARE(c.nichtGearFarbe, 0xFFFFFF);
        QCOMPARE(c.nichtGearFarbeName, QStringLiteral("WEISS"));
        QCOMPARE(c.hFarbe, 0);
        QCOMPARE(IniReadInt({}, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearOK")), 1.0);
    }

    void colourNameOf25CharactersIsCutTo20InCapitals() {
        const QString name = QStringLiteral("hellblau mit etwas gruen1");
        QCOMPARE(name.size(), 25);
        QCOMPARE(ColourNameOfAnswer(QStringLiteral("  ") + name + QStringLiteral(" ")),
                 QStringLiteral("HELLBLAU MIT ETWAS G"));
        QCOMPARE(ColourNameOfAnswer(QStringLiteral("   ")), QString());
    }

    void captionHoldsLegendBandAndMode() {
        QCOMPARE(PartialCaption(PartialColours{}, QStringLiteral("40m"), QStringLiteral("CW")),
                 QStringLiteral("Teilrufzeichen                       ROT=gearbeitet     GR\u00dcN=nicht "
                                "gearbeitet     40m CW"));
    }

    // ---- Randomised comparison with a walk of the records -------------------------------

    void searchAgreesWithAWalkOfTheRecords() {
        QRandomGenerator rng(20260501);
        const QString letters = QStringLiteral("AB12");
        const char* const modes[] = {"SSB", "CW", "RTTY"};
        const int bands[] = {40, 80, 30, 20};
        const char* const districts[] = {"WI", "MD", "GZ"};
        int cases = 0, nonEmpty = 0, worked = 0;
        for (int logNo = 0; logNo < 400; ++logNo) {
            Log log;
            const int n = int(rng.bounded(120));
            for (int i = 0; i < n; ++i) {
                QString call = rng.bounded(2) ? QStringLiteral("OE") : QString();
                const int len = 2 + int(rng.bounded(4));
                for (int k = 0; k < len; ++k)
                    call += letters[int(rng.bounded(letters.size()))];
                QString zeit;
                const int pick = int(rng.bounded(20));
                if (pick == 0)
                    zeit = QStringLiteral("12:00:00");
                else if (pick == 1)
                    zeit = QStringLiteral("kaputt");
                else
                    zeit =
                        formats->RecordTime(QTime::fromMSecsSinceStartOfDay(int(rng.bounded(86400)) * 1000));
                log.Add(Rec(call, bands[rng.bounded(4)], QString::fromLatin1(modes[rng.bounded(3)]), zeit,
                            QString::fromLatin1(districts[rng.bounded(3)]), int(rng.bounded(3)) - 1));
            }
            for (int q = 0; q < 20; ++q) {
                QString text;
                if (n > 0 && rng.bounded(3)) {
                    const QString c = log.records[rng.bounded(quint32(n))].Call;
                    const int from = int(rng.bounded(quint32(c.size())));
                    text = c.mid(from, 1 + int(rng.bounded(quint32(c.size() - from))));
                } else {
                    const int len = int(rng.bounded(5));
                    for (int k = 0; k < len; ++k)
                        text += (QStringLiteral("AB12OE ")[int(rng.bounded(7))]);
                }
                if (rng.bounded(4) == 0) text = QStringLiteral("oe") + text.toLower();
                const int band = bands[rng.bounded(3)];
                const QString mode = QString::fromLatin1(modes[rng.bounded(2)]);
                const Period period = rng.bounded(2) ? Period::Vormittag : Period::Nachmittag;
                const auto got = Search(log, text, band, mode, period);
                const auto want = BruteForce(log, text, band, mode, period, *formats, QTime(12, 0));
                if (Cells(got) != Cells(want)) {
                    qWarning() << "log" << logNo << "text" << text << log.index;
                    QCOMPARE(Cells(got), Cells(want));
                }
                ++cases;
                if (!want.empty()) ++nonEmpty;
                for (const PartialEntry& e : want)
                    worked += e.worked;
            }
        }
        QCOMPARE(cases, 8000);
        // Enough of the cases find something, and both colours occur.
        QVERIFY2(nonEmpty > 2000, qPrintable(QString::number(nonEmpty)));
        QVERIFY2(worked > 500, qPrintable(QString::number(worked)));
    }

    // ---- The call check matrix ----------------------------------------------------------------

    void twoEntriesWithTheSameSlotGiveOneTick() {
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("OE1ABC"), 40, QStringLiteral("SSB"), QStringLiteral("07:00:00")));
        const TrackerTicks t = CallCheckTicks(log.index, log.records, QStringLiteral("OE1ABC"), *rule);
        int ticks = 0;
        for (const auto& row : t)
            for (bool b : row)
                ticks += b;
        QCOMPARE(ticks, 1);
        QVERIFY(t[0][0]);
    }

    void aCallInsideALongerCallDoesNotMatch() {
        Log log;
        log.Add(Rec(QStringLiteral("DL1AB"), 40, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        log.Add(Rec(QStringLiteral("XDL1A"), 80, QStringLiteral("SSB"), QStringLiteral("06:00:00")));
        const TrackerTicks t = CallCheckTicks(log.index, log.records, QStringLiteral("DL1A"), *rule);
        QVERIFY(t == TrackerTicks{});
        QVERIFY(CallCheckTicks(log.index, log.records, QStringLiteral("DL1AB"), *rule)[0][0]);
    }

    void matrixCellsFollowBandModeAndPeriod_data() {
        QTest::addColumn<int>("band");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("zeit");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::newRow("40 SSB am") << 40 << "SSB"
                                   << "06:00:00" << 0 << 0;
        QTest::newRow("40 CW am") << 40 << "CW"
                                  << "06:00:00" << 0 << 1;
        QTest::newRow("40 SSB pm") << 40 << "SSB"
                                   << "15:00:00" << 0 << 2;
        QTest::newRow("40 CW pm") << 40 << "CW"
                                  << "15:00:00" << 0 << 3;
        QTest::newRow("80 CW am") << 80 << "CW"
                                  << "06:00:00" << 1 << 1;
        QTest::newRow("80 SSB pm") << 80 << "SSB"
                                   << "12:00:00" << 1 << 2;
        QTest::newRow("30 SSB am") << 30 << "SSB"
                                   << "06:00:00" << 2 << 0;
        QTest::newRow("30 CW am is column 3") << 30 << "CW"
                                              << "06:00:00" << 2 << 2;
        QTest::newRow("30 CW pm is column 3") << 30 << "CW"
                                              << "15:00:00" << 2 << 2;
        QTest::newRow("other mode") << 40 << "RTTY"
                                    << "06:00:00" << -1 << -1;
        QTest::newRow("other band") << 20 << "SSB"
                                    << "06:00:00" << -1 << -1;
    }
    void matrixCellsFollowBandModeAndPeriod() {
        QFETCH(int, band);
        QFETCH(QString, mode);
        QFETCH(QString, zeit);
        QFETCH(int, row);
        QFETCH(int, column);
        Log log;
        log.Add(Rec(QStringLiteral("OE1ABC"), band, mode, zeit));
        const TrackerTicks t = CallCheckTicks(log.index, log.records, QStringLiteral("OE1ABC"), *rule);
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 4; ++c)
                QCOMPARE(t[size_t(r)][size_t(c)], r == row && c == column);
    }

    void trackerCaptionNamesTheCall() {
        QCOMPARE(TrackerCaption(QStringLiteral("OE1ABC")), QStringLiteral("Check   OE1ABC"));
    }
};

QTEST_GUILESS_MAIN(TestPartialCall)
#include "tst_partial_call.moc"
