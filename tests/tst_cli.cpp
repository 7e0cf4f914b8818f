// kolibrino-cli over the same library: rebuild, dupe and tallies.
#include "test_support.h"

#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::test;

class TestCli : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> home;

    using Result = CliResult;

    Result Run(const QStringList& args) { return RunCli(home->path(), args); }

private slots:
    void init() {
        home = std::make_unique<QTemporaryDir>();
        WriteBytes(home->path() + QStringLiteral("/bez_koord.txt"), SmallDistrictTable());
    }

    void rebuildWritesTheFileTextAsRawBytes() {
        const Result r = Run({QStringLiteral("rebuild"), FixturePath(QStringLiteral("basic.KOLBO"))});
        QCOMPARE(r.code, 0);
        QByteArray expected = ReadBytes(FixturePath(QStringLiteral("basic.rebuilt.KOLBO")));
        expected.replace("{VERSION}", ProgramVersionText().toLatin1())
            .replace("{YEAR}", QByteArray::number(QDate::currentDate().year()));
        QCOMPARE(r.out, expected);
    }

    void dupeAnswersWithTheDistrict_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("firstLine");
        QTest::newRow("same slot") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("40"),
                                                  QStringLiteral("SSB"), QStringLiteral("06:00")}
                                   << QByteArray("DUPE WI");
        QTest::newRow("other band") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("80m"),
                                                   QStringLiteral("SSB"), QStringLiteral("06:00")}
                                    << QByteArray("OK WI");
        QTest::newRow("afternoon") << QStringList{QStringLiteral("OE1ABC"), QStringLiteral("40"),
                                                  QStringLiteral("SSB"), QStringLiteral("14:00")}
                                   << QByteArray("OK WI");
        QTest::newRow("new call") << QStringList{QStringLiteral("OE5NEW"), QStringLiteral("40"),
                                                 QStringLiteral("SSB"), QStringLiteral("06:00")}
                                  << QByteArray("OK");
    }
    void dupeAnswersWithTheDistrict() {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, firstLine);
        const Result r =
            Run(QStringList{QStringLiteral("dupe"), FixturePath(QStringLiteral("basic.KOLBO"))} + args);
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out.split('\n').first(), firstLine);
        if (firstLine.startsWith("DUPE")) QVERIFY(r.out.contains("Station bereits um 05:01 Uhr gearbeitet!"));
    }

    void talliesPrintTheRebuiltCounters() {
        const Result r = Run({QStringLiteral("tallies"), FixturePath(QStringLiteral("basic.KOLBO"))});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains("QsoCount 5\n"));
        QVERIFY(r.out.contains("DupeCount 1\n"));
        QVERIFY(r.out.contains("Bezirk WI 2 1 1 0\n"));
        QVERIFY(r.out.contains("Staatsfunk OEY 1 0\n"));
    }

    void damagedLogGivesTheLoadMessageAndStatusOne() {
        const QString bad = home->path() + QStringLiteral("/kaputt.KOLBO");
        WriteBytes(bad, "[MYCALL:3]OE1\r\nkein Ende");
        const Result r = Run({QStringLiteral("rebuild"), bad});
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.isEmpty());
        QVERIFY(QString::fromLocal8Bit(r.err).contains(
            QStringLiteral("ist fehlerhaft oder keine gültige Kolibrino Logdatei!")));
    }

    void wrongUseGivesStatusTwo() {
        QCOMPARE(Run({QStringLiteral("rebuild")}).code, 2);
        QCOMPARE(Run({QStringLiteral("unbekannt"), QStringLiteral("x")}).code, 2);
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
