// kolibrino-cli score, results and map: the figures of a reopened log.
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/tallies.h"
#include "scoring/score.h"
#include "test_support.h"

#include <QImage>
#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::test;

class TestCliScoring : public QObject {
    Q_OBJECT

    std::unique_ptr<Home> home;
    QString logPath;

    using Result = CliResult;

    Result Run(const QStringList& args) { return RunCli(home->dir.path(), args); }

    static QsoRecord Rec(const QString& call, int band, const QString& bz, const QString& zeit,
                         const QString& mode) {
        QsoRecord r;
        r.Call = call;
        r.Band = band;
        r.Bezirk = Fixed2(bz);
        r.Datum = QStringLiteral("01.05.2026");
        r.Zeit = zeit;
        r.RstGesendet = r.RstEmpfangen = QStringLiteral("59");
        r.Mode = r.ModeRx = mode;
        r.Operator = QStringLiteral("OE1OPR");
        r.BandRx = QStringLiteral("0");
        return r;
    }

    // A log of six contacts: SSB and CW, 40 m and 80 m, one state station.
    void WriteLog() {
        Model m;
        m.SetLocale(AustrianLocale());
        m.Header = DefaultHeader(m);
        m.Header.MYCALL = QStringLiteral("OE1XYZ");
        m.Header.MYCITY = QStringLiteral("Wien");
        m.Header.MYWERTUNGSST = 1;
        m.LogFolder = home->model.LogFolder;
        m.CurrentLogName = QStringLiteral("cli.KOLBO");
        m.LogRecords = {
            Rec("OE1AAA", 40, "WI", "05:01:00", "SSB"), Rec("OE3BBB", 40, "MD", "05:02:00", "SSB"),
            Rec("OE6CCC", 80, "GZ", "05:03:00", "SSB"), Rec("OE1AAA", 80, "WI", "14:00:00", "SSB"),
            Rec("OEY21", 80, "BR", "14:10:00", "SSB"),  Rec("OE2DDD", 80, "SA", "14:20:00", "CW")};
        BuildLogText(m, true, 2026);
        QVERIFY(WriteLogFile(m).isEmpty());
        logPath = m.LogFolder + m.CurrentLogName;
    }

    // The same log, reopened in this process.
    Model Reopened() {
        Model m;
        m.SetLocale(AustrianLocale());
        m.DataFolder = home->model.DataFolder;
        ScriptedDialogs d;
        LoadBezirkTable(m, d);
        if (LoadLog(m, d, logPath) != 1) QTest::qFail("the log does not load", __FILE__, __LINE__);
        RebuildTallies(m);
        return m;
    }

private slots:
    void initTestCase() { PinLocale(); }
    void init() {
        home = std::make_unique<Home>();
        home->InstallDistricts();
        WriteLog();
    }

    void scorePrintsEveryFigureAsItsCaptionAndValue() {
        const Result r = Run({QStringLiteral("score"), logPath});
        QCOMPARE(r.code, 0);
        const QStringList lines = QString::fromUtf8(r.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 19);
        QVERIFY(lines.contains(QStringLiteral("Gültige QSOs: 6")));
        QVERIFY(lines.contains(QStringLiteral("Verhältnis SSB/CW in %: 83/17")));
        // districts 40: WI MD; 80: GZ WI BR SA; states 40: 1 3; 80: 6 1 5 2; prefix OEY on 80
        QVERIFY(lines.contains(QStringLiteral("Bezirke + Bundesländer mal 2: 20")));
        QVERIFY(lines.contains(QStringLiteral("Punkte gesamt: 120")));
        QCOMPARE(lines.first(), QStringLiteral("Gültige QSOs: 6"));
        QCOMPARE(lines.last(), QStringLiteral("Punkte gesamt: 120"));
    }

    void resultsWritesTheBytesOfTheResultsFile() {
        const Result r = Run({QStringLiteral("results"), logPath});
        QCOMPARE(r.code, 0);
        const Model m = Reopened();
        QCOMPARE(r.out, ToCp1252(ResultsText(m, ComputeScore(m), QDate::currentDate().year())));
        QVERIFY(r.out.contains("   80:    1      3      4       4/1\r\n"));
    }

    void mapWritesTheFilledMapAsPng() {
        const QString out = home->Path(QStringLiteral("karte.png"));
        const Result r = Run({QStringLiteral("map"), logPath, out});
        QCOMPARE(r.code, 0);
        const QImage image(out);
        QCOMPARE(image.size(), QSize(1100, 600));
        const Model m = Reopened();
        const BezirkRecord& wi = m.BezirkRecords[1];
        const BezirkRecord& ha = m.BezirkRecords[2]; // Hallein: not worked
        QVERIFY(image.pixel(wi.X, wi.Y) != qRgb(255, 255, 255));
        QCOMPARE(image.pixel(ha.X, ha.Y), qRgb(255, 255, 255));
    }

    void mapWithAFilterRowPaintsOnlyWhatItSelects() {
        const QString out = home->Path(QStringLiteral("karte40.png"));
        QCOMPARE(Run({QStringLiteral("map"), logPath, out, QStringLiteral("6")}).code,
                 0); // "nur 40m Bezirke"
        const QImage image(out);
        const Model m = Reopened();
        QVERIFY(image.pixel(m.BezirkRecords[21].X, m.BezirkRecords[21].Y) != qRgb(255, 255, 255)); // MD
        QCOMPARE(image.pixel(m.BezirkRecords[1].X, m.BezirkRecords[1].Y), qRgb(255, 255, 255));    // WI: both
        QCOMPARE(Run({QStringLiteral("map"), logPath, out, QStringLiteral("9")}).code, 2);
    }

    void damagedLogGivesTheLoadFailureAndStatusOne() {
        const QString bad = home->model.LogFolder + QStringLiteral("kaputt.KOLBO");
        WriteBytes(bad, "kein Log\r\n");
        for (const char* command : {"score", "results"}) {
            const Result r = Run({QString::fromLatin1(command), bad});
            QCOMPARE(r.code, 1);
            QVERIFY(r.out.isEmpty());
            QVERIFY2(QString::fromLocal8Bit(r.err).contains(
                         QStringLiteral("ist fehlerhaft oder keine gültige Kolibrino Logdatei!")),
                     r.err.constData());
        }
    }
};

QTEST_GUILESS_MAIN(TestCliScoring)
#include "tst_cli_scoring.moc"
