// kolibrino-cli delete and edit: the same logic as the windows, by script.
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "test_support.h"
#include "tst_main_window_support.h"

#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::test;

class TestCorrectionsCli : public QObject {
    Q_OBJECT

    using Result = CliResult;

    Result Run(const WindowFixture& f, const QStringList& args) { return RunCli(f.home.dir.path(), args); }

    // Records stored out of time order, so that the rows of the time sort differ.
    std::vector<QsoRecord> Log() {
        return {MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("07:00:00")),
                MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
                MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:30:00"),
                           QStringLiteral("SSB"), Status::Dupe)};
    }

    Model Load(const WindowFixture& f) {
        Model m;
        m.SetLocale(AustrianLocale());
        ScriptedDialogs d;
        if (LoadLog(m, d, f.home.model.LogFolder + QStringLiteral("test.KOLBO")) != 1)
            QTest::qFail("the log does not load", __FILE__, __LINE__);
        return m;
    }

private slots:
    void initTestCase() { PinLocale(); }

    void deleteTakesTheRowOfTheTimeSortAndPromotesItsDupe() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Log());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const Result r = Run(f, {QStringLiteral("delete"), file, QStringLiteral("1")});
        QCOMPARE(r.code, 0);
        const Model m = Load(f);
        QCOMPARE(m.LogRecords.size(), size_t(2));
        QCOMPARE(m.LogRecords[0].Call, QStringLiteral("OE6BBB"));
        QCOMPARE(m.LogRecords[1].Zeit, QStringLiteral("06:30:00"));
        QCOMPARE(m.LogRecords[1].Status, int(Status::Normal));
    }

    void deleteOfARowOutsideTheLogIsWrongUse() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Log());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(file);
        QCOMPARE(Run(f, {QStringLiteral("delete"), file, QStringLiteral("4")}).code, 2);
        QCOMPARE(ReadBytes(file), before);
    }

    void editChangesTheNamedFields() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Log());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const Result r =
            Run(f, {QStringLiteral("edit"), file, QStringLiteral("3"), QStringLiteral("bz=WI"),
                    QStringLiteral("notiz=neu"), QStringLiteral("qrg=7012"), QStringLiteral("zeit=07:05")});
        QCOMPARE(r.code, 0);
        const Model m = Load(f);
        QCOMPARE(m.LogRecords[0].Bezirk, QStringLiteral("WI"));
        QCOMPARE(m.LogRecords[0].Bemerkung, QStringLiteral("neu"));
        QCOMPARE(m.LogRecords[0].Frequenz, 7012.0f);
        QCOMPARE(m.LogRecords[0].Zeit, QStringLiteral("07:05:00"));
    }

    void editRefusalPrintsTheTextAndLeavesTheFile() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), Log());
        const QString file = f.home.model.LogFolder + QStringLiteral("test.KOLBO");
        const QByteArray before = ReadBytes(file);
        Result r = Run(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("band=30m")});
        QCOMPARE(r.code, 1);
        QVERIFY(
            QString::fromUtf8(r.err).contains(QStringLiteral("Amateurfunk-Stationen dürfen nur auf 80/40m")));
        r = Run(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("rufzeichen=OE")});
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.contains("Ungültiges Rufzeichen"));
        r = Run(f, {QStringLiteral("edit"), file, QStringLiteral("2"), QStringLiteral("notiz=x")});
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.contains("Dupe"));
        QCOMPARE(
            Run(f, {QStringLiteral("edit"), file, QStringLiteral("1"), QStringLiteral("farbe=rot")}).code, 2);
        QCOMPARE(ReadBytes(file), before);
    }
};

QTEST_MAIN(TestCorrectionsCli)
#include "tst_corrections_cli.moc"
