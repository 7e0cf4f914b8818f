// Code page 1252 and the number readers of the file formats.
#include "core/cp1252.h"
#include "core/vb_text.h"

#include <QtTest>

using namespace kolibrino;

class TestCp1252 : public QObject {
    Q_OBJECT

private slots:
    void everyByteSurvivesARoundTrip() {
        QByteArray all;
        for (int i = 0; i < 256; ++i)
            all.append(char(i));
        const QString text = FromCp1252(all);
        QCOMPARE(text.size(), 256);
        QCOMPARE(ToCp1252(text), all);
    }

    void markersAndUmlautsAreSingleBytes_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("pilcrow") << QStringLiteral("\u00b6") << QByteArray("\xb6");
        QTest::newRow("times") << QStringLiteral("\u00d7") << QByteArray("\xd7");
        QTest::newRow("umlauts") << QStringLiteral("ÄÖÜäöüß") << QByteArray("\xc4\xd6\xdc\xe4\xf6\xfc\xdf");
        QTest::newRow("euro") << QStringLiteral("\u20ac") << QByteArray("\x80");
        QTest::newRow("outside the code page") << QStringLiteral("\u4e2d") << QByteArray("?");
        QTest::newRow("surrogate pair") << QString::fromUtf8("\xf0\x9f\x93\xbb") << QByteArray("?");
    }
    void markersAndUmlautsAreSingleBytes() {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(ToCp1252(text), bytes);
    }

    void cleanTextHasOneCharacterPerByte() {
        const QString clean = Cp1252Clean(QString::fromUtf8("OE\xf0\x9f\x93\xbb"
                                                            "1"));
        QCOMPARE(clean, QStringLiteral("OE?1"));
    }

    void leadingNumberReadsWhatItCan_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("integer") << QStringLiteral("40") << 40.0;
        QTest::newRow("band text") << QStringLiteral("80m") << 80.0;
        QTest::newRow("point") << QStringLiteral("3512.5") << 3512.5;
        QTest::newRow("comma") << QStringLiteral("3512,5") << 3512.5;
        QTest::newRow("negative") << QStringLiteral("-1") << -1.0;
        QTest::newRow("leading blanks") << QStringLiteral("  7") << 7.0;
        QTest::newRow("nothing") << QStringLiteral("abc") << 0.0;
        QTest::newRow("empty") << QString() << 0.0;
        QTest::newRow("exponent") << QStringLiteral("1E3") << 1000.0;
    }
    void leadingNumberReadsWhatItCan() {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(LeadingNumber(text), value);
    }

    void numericTextIsStrict_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("numeric");
        QTest::newRow("digits") << QStringLiteral("12") << true;
        QTest::newRow("blanks around") << QStringLiteral(" 12 ") << true;
        QTest::newRow("comma") << QStringLiteral("1,5") << true;
        QTest::newRow("letters behind") << QStringLiteral("12a") << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("sign alone") << QStringLiteral("-") << false;
    }
    void numericTextIsStrict() {
        QFETCH(QString, text);
        QFETCH(bool, numeric);
        QCOMPARE(IsNumericText(text), numeric);
    }

    void floatTextIsShortestWithAPoint_data() {
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("whole") << 7000.0f << QStringLiteral("7000");
        QTest::newRow("tenth") << 3512.7f << QStringLiteral("3512.7");
        QTest::newRow("30m") << 10100.0f << QStringLiteral("10100");
        QTest::newRow("zero") << 0.0f << QStringLiteral("0");
        QTest::newRow("hundredth") << 7012.25f << QStringLiteral("7012.25");
    }
    void floatTextIsShortestWithAPoint() {
        QFETCH(float, value);
        QFETCH(QString, text);
        QCOMPARE(FloatText(value), text);
    }

    void sixteenBitFieldsRoundHalfToEvenAndClamp() {
        QCOMPARE(ToInt16(40.5), 40);
        QCOMPARE(ToInt16(41.5), 42);
        QCOMPARE(ToInt16(1e9), 32767);
        QCOMPARE(ToInt16(-1e9), -32768);
    }
};

QTEST_GUILESS_MAIN(TestCp1252)
#include "tst_cp1252.moc"
