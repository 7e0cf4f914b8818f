// Locale formats and the contest clock.
#include "core/clock.h"
#include "core/locale_fmt.h"
#include "core/log_model.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

class TestLocaleClock : public QObject {
    Q_OBJECT

private slots:
    void austrianSeparatorsAreDotAndColon() {
        const LocaleFormats f(AustrianLocale());
        QCOMPARE(f.DateSeparator(), QLatin1Char('.'));
        QCOMPARE(f.TimeSeparator(), QLatin1Char(':'));
        QCOMPARE(f.ShortDate(QDate(2026, 5, 1)), QStringLiteral("01.05.2026"));
        QCOMPARE(f.ShortTime(QTime(5, 7, 9)), QStringLiteral("05:07"));
        QCOMPARE(f.LongTime(QTime(5, 7, 9)), QStringLiteral("05:07:09"));
        QCOMPARE(f.RecordDate(QDate(2026, 5, 1)), QStringLiteral("01.05.2026"));
        QCOMPARE(f.RecordTime(QTime(5, 7, 9)), QStringLiteral("05:07:09"));
    }

    void shortDateAlwaysHasFourYearDigits() {
        for (const QLocale& l :
             {QLocale(QLocale::English, QLocale::UnitedStates), QLocale(QLocale::German, QLocale::Germany),
              QLocale(QLocale::English, QLocale::UnitedKingdom)}) {
            const LocaleFormats f(l);
            QVERIFY2(f.ShortDate(QDate(2026, 5, 1)).contains(QStringLiteral("2026")), qPrintable(l.name()));
            QVERIFY(f.ParseDate(f.ShortDate(QDate(2026, 5, 1))).has_value());
            QCOMPARE(*f.ParseDate(f.ShortDate(QDate(2026, 5, 1))), QDate(2026, 5, 1));
        }
    }

    void validTimesAndDates_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("time");
        QTest::addColumn<bool>("date");
        QTest::newRow("hh:mm") << QStringLiteral("14:05") << true << false;
        QTest::newRow("hh:mm:ss") << QStringLiteral("14:05:30") << true << false;
        QTest::newRow("date and time") << QStringLiteral("01.05.2026 14:05") << true << false;
        QTest::newRow("hour 24") << QStringLiteral("24:00") << false << false;
        QTest::newRow("minute 60") << QStringLiteral("12:60") << false << false;
        QTest::newRow("digits only") << QStringLiteral("1405") << false << false;
        QTest::newRow("date") << QStringLiteral("01.05.2026") << false << true;
        QTest::newRow("two digit year") << QStringLiteral("1.5.26") << false << true;
        QTest::newRow("31 April") << QStringLiteral("31.04.2026") << false << false;
        QTest::newRow("letters") << QStringLiteral("ab.cd.efgh") << false << false;
    }
    void validTimesAndDates() {
        QFETCH(QString, text);
        QFETCH(bool, time);
        QFETCH(bool, date);
        const LocaleFormats f(AustrianLocale());
        QCOMPARE(f.ParseTime(text).has_value(), time);
        QCOMPARE(f.ParseDate(text).has_value(), date);
    }

    void modelTakesTheSeparatorsAndNoonFromTheLocale() {
        Model m;
        m.SetLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(m.DateSeparator, QLatin1Char('/'));
        m.SetLocale(AustrianLocale());
        QCOMPARE(m.DateSeparator, QLatin1Char('.'));
        QCOMPARE(m.TimeSeparator, QLatin1Char(':'));
        QCOMPARE(m.MittagsGrenze, QTime(12, 0));
        QCOMPARE(DefaultHeader(m).MYEXAMDAT, QStringLiteral("00.00.2000"));
    }

    void contestNowMovesTheClockByWholeHours() {
        FixedTimeSource clock(QDateTime(QDate(2026, 5, 1), QTime(7, 0)));
        QCOMPARE(ContestNow(clock, -2), QDateTime(QDate(2026, 5, 1), QTime(5, 0)));
        QCOMPARE(ContestNow(clock, 0), QDateTime(QDate(2026, 5, 1), QTime(7, 0)));
        QCOMPARE(ContestNow(clock, 12), QDateTime(QDate(2026, 5, 1), QTime(19, 0)));
        clock.AdvanceSeconds(3600 * 20);
        QCOMPARE(ContestNow(clock, -12).date(), QDate(2026, 5, 1));
    }
};

QTEST_GUILESS_MAIN(TestLocaleClock)
#include "tst_locale_clock.moc"
