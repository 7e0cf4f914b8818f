// kolibrino-cli partial: the partial-call list of a log file.
#include "test_support.h"

#include <QProcess>

using namespace kolibrino;
using namespace kolibrino::test;

class TestCliAssist : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> home;

    using Result = CliResult;

    Result Run(const QStringList& args) { return RunCli(home->path(), args); }

    Result Partial(const QString& text, const QString& band, const QString& mode, const QString& time) {
        return Run(
            {QStringLiteral("partial"), FixturePath(QStringLiteral("basic.KOLBO")), text, band, mode, time});
    }

private slots:
    void init() {
        home = std::make_unique<QTemporaryDir>();
        WriteBytes(home->path() + QStringLiteral("/bez_koord.txt"), SmallDistrictTable());
    }

    void partialPrintsCellAndStateInGridOrder() {
        const Result r = Partial(QStringLiteral("abc"), QStringLiteral("40m"), QStringLiteral("SSB"),
                                 QStringLiteral("06:00"));
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QByteArray("OE1ABC  (WI) gearbeitet\nOE3ABC  (MD) neu\n"));
    }

    void partialFollowsBandModeAndPeriod() {
        QCOMPARE(Partial(QStringLiteral("OE3A"), QStringLiteral("80m"), QStringLiteral("SSB"),
                         QStringLiteral("14:30"))
                     .out,
                 QByteArray("OE3ABC  (MD) gearbeitet\n"));
        QCOMPARE(Partial(QStringLiteral("OE3A"), QStringLiteral("80m"), QStringLiteral("CW"),
                         QStringLiteral("14:30"))
                     .out,
                 QByteArray("OE3ABC  (MD) neu\n"));
    }

    void partialOfOeAloneOrOneCharacterPrintsNothing() {
        for (const char* text : {"OE", "A", "OE1"}) {
            const Result r = Partial(QString::fromLatin1(text), QStringLiteral("40m"), QStringLiteral("SSB"),
                                     QStringLiteral("06:00"));
            QCOMPARE(r.code, 0);
            QCOMPARE(r.out, QByteArray());
        }
    }

    void partialWithABadTimeOrTooFewArgumentsIsWrongUse() {
        QCOMPARE(
            Partial(QStringLiteral("ABC"), QStringLiteral("40m"), QStringLiteral("SSB"), QStringLiteral("xx"))
                .code,
            2);
        QCOMPARE(Run({QStringLiteral("partial"), FixturePath(QStringLiteral("basic.KOLBO"))}).code, 2);
    }

    void partialOfAMissingLogFails() {
        const Result r = Run({QStringLiteral("partial"), home->path() + QStringLiteral("/fehlt.KOLBO"),
                              QStringLiteral("ABC"), QStringLiteral("40m"), QStringLiteral("SSB"),
                              QStringLiteral("06:00")});
        QCOMPARE(r.code, 1);
    }
};

QTEST_GUILESS_MAIN(TestCliAssist)
#include "tst_cli_assist.moc"
