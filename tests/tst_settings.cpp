// The settings file with private-profile semantics.
#include "core/settings.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

class TestSettings : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir;
    QString ini;
    int beeps = 0;

private slots:
    void initTestCase() {
        SetIniBeepHandler([this] { ++beeps; });
    }
    void init() {
        dir = std::make_unique<QTemporaryDir>();
        ini = dir->path() + QStringLiteral("/k.INI");
        SetDefaultIniPath(ini);
        beeps = 0;
    }

    void writeCreatesTheSectionInUpperCaseAndReadFindsIt() {
        IniWrite(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band"), 2);
        QCOMPARE(ReadBytes(ini), QByteArray("[EINSTELLUNGEN]\r\nBand=2\r\n"));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band")), 2.0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("einstellungen"), QStringLiteral("BAND")), 2.0);
    }

    void sectionNameWithABracketReadsBackWhole() {
        IniWrite(ini, QStringLiteral("karte]2.gif"), QStringLiteral("Version"), 3);
        QCOMPARE(ReadBytes(ini), QByteArray("[KARTE]2.GIF]\r\nVersion=3\r\n"));
        QCOMPARE(IniReadInt(ini, QStringLiteral("KARTE]2.GIF"), QStringLiteral("Version")), 3.0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("KARTE"), QStringLiteral("Version")), 0.0);
    }

    void sectionNameWithSharpSIsWrittenOnceAndFound() {
        IniWrite(ini, QStringLiteral("Straße.txt"), QStringLiteral("Version"), 55);
        IniWrite(ini, QStringLiteral("Straße.txt"), QStringLiteral("Version"), 56);
        QCOMPARE(ReadBytes(ini), QByteArray("[STRASSE.TXT]\r\nVersion=56\r\n"));
        QCOMPARE(IniReadInt(ini, QStringLiteral("STRASSE.TXT"), QStringLiteral("Version")), 56.0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("straße.txt"), QStringLiteral("Version")), 56.0);
    }

    void sectionNameWithoutCapitalInTheCodePageKeepsItsLetter() {
        IniWrite(ini, QStringLiteral("µ.txt"), QStringLiteral("Version"), 7);
        QCOMPARE(ReadBytes(ini), QByteArray("[\xB5.TXT]\r\nVersion=7\r\n"));
        QCOMPARE(IniReadInt(ini, QStringLiteral("µ.txt").toUpper(), QStringLiteral("Version")), 7.0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("µ.TXT"), QStringLiteral("Version")), 7.0);
    }

    void readIntOfATextThatDoesNotStartWithDigitsIsZero_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("number");
        QTest::newRow("letters") << QStringLiteral("abc") << 0;
        QTest::newRow("digits behind letters") << QStringLiteral("x12") << 0;
        QTest::newRow("leading digits") << QStringLiteral("12abc") << 12;
        QTest::newRow("minus one") << QStringLiteral("-1") << -1;
        QTest::newRow("empty") << QString() << 0;
    }
    void readIntOfATextThatDoesNotStartWithDigitsIsZero() {
        QFETCH(QString, value);
        QFETCH(int, number);
        IniWrite(ini, QStringLiteral("Einstellungen"), QStringLiteral("Key"), value);
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Key")), double(number));
    }

    void writeReplacesTheValueOfAKeyInAnExistingSection() {
        WriteBytes(ini, QByteArray("[Pathe]\r\nlastlogfile = alt.KOLBO \r\nOther=1\r\n\r\n[X]\r\na=b\r\n"));
        IniWrite(QString(), QStringLiteral("PATHE"), QStringLiteral("LastLogFile"),
                 QStringLiteral("neu.KOLBO"));
        IniWrite(QString(), QStringLiteral("pathe"), QStringLiteral("LastNewLogDate"),
                 QStringLiteral("20260501"));
        QCOMPARE(ReadBytes(ini),
                 QByteArray("[Pathe]\r\nLastLogFile=neu.KOLBO\r\nOther=1\r\nLastNewLogDate=20260501\r\n\r\n"
                            "[X]\r\na=b\r\n"));
        QCOMPARE(IniReadString(QString(), QStringLiteral("Pathe"), QStringLiteral("lastlogfile")),
                 QStringLiteral("neu.KOLBO"));
    }

    void firstMatchWins() {
        WriteBytes(ini, QByteArray("[A]\r\nk=1\r\nk=2\r\n[a]\r\nk=3\r\n"));
        QCOMPARE(IniReadString(ini, QStringLiteral("A"), QStringLiteral("k")), QStringLiteral("1"));
    }

    void quotedValuesLoseTheirQuotes() {
        WriteBytes(ini, QByteArray("[A]\r\nk=\" mit Blank \"\r\n"));
        QCOMPARE(IniReadString(ini, QStringLiteral("A"), QStringLiteral("k")), QStringLiteral(" mit Blank "));
    }

    void umlautsAreStoredInCodePage1252() {
        IniWrite(ini, QStringLiteral("Pathe"), QStringLiteral("LastLogFile"),
                 QStringLiteral("Mödling.KOLBO"));
        QVERIFY(ReadBytes(ini).contains(QByteArray("M\xf6"
                                                   "dling")));
        QCOMPARE(IniReadString(ini, QStringLiteral("Pathe"), QStringLiteral("LastLogFile")),
                 QStringLiteral("Mödling.KOLBO"));
    }

    void readsOfAMissingFileGiveZeroAndBeep() {
        QCOMPARE(IniReadInt(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band")), 0.0);
        QCOMPARE(IniReadString(ini, QStringLiteral("Einstellungen"), QStringLiteral("Band")), QString());
        QCOMPARE(beeps, 2);
        QVERIFY(!QFile::exists(ini));
    }

    void emptyNamesBeepAndDoNothing() {
        IniWrite(ini, QString(), QStringLiteral("k"), QStringLiteral("v"));
        IniWrite(ini, QStringLiteral("S"), QString(), QStringLiteral("v"));
        QCOMPARE(beeps, 2);
        QVERIFY(!QFile::exists(ini));
    }

    void sectionIsABlockOfPlainLines() {
        IniWriteSection(ini, QStringLiteral("OPCALLs"), {QStringLiteral("OE1ABC"), QStringLiteral("OE3XYZ")});
        QCOMPARE(ReadBytes(ini), QByteArray("[OPCALLS]\r\nOE1ABC\r\nOE3XYZ\r\n"));
        QStringList list;
        IniReadSection(ini, QStringLiteral("OPCALLs"), list);
        QCOMPARE(list, (QStringList{QStringLiteral("OE1ABC"), QStringLiteral("OE3XYZ")}));
        IniWriteSection(ini, QStringLiteral("OPCALLS"), {QStringLiteral("OE9Z")});
        list.clear();
        IniReadSection(ini, QStringLiteral("opcalls"), list);
        QCOMPARE(list, QStringList{QStringLiteral("OE9Z")});
    }

    void emptySectionLeavesTheListUntouched() {
        WriteBytes(ini, QByteArray("[OPCALLS]\r\n[X]\r\na=1\r\n"));
        QStringList list{QStringLiteral("bleibt")};
        IniReadSection(ini, QStringLiteral("OPCALLs"), list);
        QCOMPARE(list, QStringList{QStringLiteral("bleibt")});
    }

    void deleteSectionRemovesHeaderAndLines() {
        WriteBytes(ini, QByteArray("[A]\r\nk=1\r\n[OPCALLS]\r\nOE1A\r\nOE1B\r\n[B]\r\nk=2\r\n"));
        IniDeleteSection(ini, QStringLiteral("OPCALLs"));
        QCOMPARE(ReadBytes(ini), QByteArray("[A]\r\nk=1\r\n[B]\r\nk=2\r\n"));
    }

    // The operator list is replaced in one write, with the bytes that deleting the
    // section and writing it again would leave.
    void replaceSectionIsDeleteThenWriteInOneStep() {
        const QByteArray start("[A]\r\nk=1\r\n[OPCALLS]\r\nOE1A\r\nOE1B\r\n[B]\r\nk=2\r\n");
        const QStringList rows{QStringLiteral("OE3X"), QStringLiteral(" OE1A ")};
        WriteBytes(ini, start);
        IniDeleteSection(ini, QStringLiteral("OPCALLs"));
        IniWriteSection(ini, QStringLiteral("OPCALLs"), rows);
        const QByteArray twoSteps = ReadBytes(ini);
        WriteBytes(ini, start);
        IniReplaceSection(ini, QStringLiteral("opcalls"), rows);
        QCOMPARE(ReadBytes(ini), twoSteps);
        QCOMPARE(twoSteps, QByteArray("[A]\r\nk=1\r\n[B]\r\nk=2\r\n[OPCALLS]\r\nOE3X\r\nOE1A\r\n"));
        IniReplaceSection(ini, QStringLiteral("OPCALLs"), {});
        QCOMPARE(ReadBytes(ini), QByteArray("[A]\r\nk=1\r\n[B]\r\nk=2\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
