// The check of a Cabrillo file before it is sent: every message in its order, the
// edges of the check, thousands of mutated and random files, and kolibrino-cli check.
#include "export/check_cabrillo.h"
#include "test_support.h"

#include <QProcess>
#include <QRandomGenerator>

using namespace kolibrino;
using namespace kolibrino::exporting;
using namespace kolibrino::test;

namespace {

const char* const kGood = "START-OF-LOG:  3.0\r\n"
                          "CALLSIGN: OE1ABC\r\n"
                          "CATEGORY-OPERATOR: SINGLE-OP\r\n"
                          "CATEGORY-OVERLAY: OM\r\n"
                          "CATEGORY-POWER: LOW\r\n"
                          "CATEGORY: LOW-POWER MIX\r\n"
                          "LOCATION: WI\r\n"
                          "QSO:  3700 PH 2026-05-01 0500 1 OE1ABC        59  WI OE3XYZ        59  MD\r\n"
                          "QSO:  3510 CW 2026-05-01 1400 2 OE1ABC        599 WI OE6XYZ        599 GZ\r\n"
                          "END-OF-LOG:\r\n";

QString Good() {
    return QString::fromLatin1(kGood);
}

QString Msg(const QString& detail) {
    return QStringLiteral("Die Datei ist kein gültiges Cabrillo-Log!\n") + detail +
           QStringLiteral("\nHochladen abgebrochen!");
}

QString Replace(QString text, const char* from, const char* to) {
    return text.replace(QLatin1String(from), QLatin1String(to));
}

QString QsoLine(const QString& rest) {
    return QStringLiteral("QSO: ") + rest + QStringLiteral("\r\n");
}

// The good file with its contact lines replaced by these.
QString WithQsos(const QStringList& lines) {
    QString text = Good();
    const qsizetype a = text.indexOf(QStringLiteral("QSO:"));
    const qsizetype b = text.indexOf(QStringLiteral("END-OF-LOG:"));
    QString q;
    for (const QString& l : lines)
        q += QsoLine(l);
    return text.replace(a, b - a, q);
}

} // namespace

class TstCheckCabrillo : public QObject {
    Q_OBJECT

    LocaleFormats formats{AustrianLocale()};
    QString Check(const QString& text) { return CheckCabrillo(text, formats); }

private slots:
    void initTestCase() { PinLocale(); }

    void goodFilePasses() { QCOMPARE(Check(Good()), QString()); }

    void everyTestInItsOrder_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        const QString g = Good();
        QTest::newRow("too short")
            << "QSO:" << QStringLiteral("Die Datei ist kein gültiges Cabrillo-Log!\nHochladen abgebrochen!");
        QTest::newRow("no start") << Replace(g, "START-OF-LOG:", "START-OF-LOG")
                                  << Msg(QStringLiteral("Kopfzeile 'START-OF-LOG:' fehlt."));
        QTest::newRow("no end") << Replace(g, "END-OF-LOG:", "ENDE")
                                << Msg(QStringLiteral("Logende 'END-OF-LOG:' fehlt."));
        QTest::newRow("no call") << Replace(g, "CALLSIGN:", "RUF:")
                                 << Msg(QStringLiteral("Eintrag 'CALLSIGN:' fehlt."));
        QTest::newRow("short call") << Replace(g, "CALLSIGN: OE1ABC", "CALLSIGN:  OE ")
                                    << Msg(QStringLiteral("Rufzeichen ungültig!"));
        QTest::newRow("no overlay") << Replace(g, "CATEGORY-OVERLAY: OM\r\n", "")
                                    << Msg(QStringLiteral("Eintrag 'CATEGORY-OVERLAY:' fehlt."));
        QTest::newRow("bad overlay") << Replace(g, "OVERLAY: OM", "OVERLAY: XX")
                                     << Msg(QStringLiteral(
                                            "Eintrag 'CATEGORY-OVERLAY:' ungültig!\n\nErlaubte Werte,\n"
                                            "CATEGORY-OVERLAY: OM\nCATEGORY-OVERLAY: YL"));
        QTest::newRow("no category") << Replace(g, "CATEGORY: LOW-POWER MIX\r\n", "")
                                     << Msg(QStringLiteral("Eintrag 'CATEGORY:' fehlt."));
        QTest::newRow("bad category")
            << Replace(g, "CATEGORY: LOW-POWER MIX", "CATEGORY: QRP")
            << Msg(QStringLiteral(
                   "Eintrag 'CATEGORY:' ungültig!\n\nErlaubte Werte,\nCATEGORY: HIGH-POWER SSB\n"
                   "CATEGORY: LOW-POWER SSB\nCATEGORY: HIGH-POWER MIX\nCATEGORY: LOW-POWER MIX\n"
                   "CATEGORY: HIGH-POWER CW\nCATEGORY: LOW-POWER CW\nCATEGORY: HIGH-POWER NEWCOMER\n"
                   "CATEGORY: LOW-POWER NEWCOMER\nCATEGORY: STAATSFUNKSTELLEN"));
        QTest::newRow("no location") << Replace(g, "LOCATION: WI\r\n", "")
                                     << Msg(QStringLiteral("Eintrag 'LOCATION:' fehlt."));
        QTest::newRow("bad location")
            << Replace(g, "LOCATION: WI", "LOCATION: WIE") << Msg(QStringLiteral("Bezirk ungültig!"));
        QTest::newRow("no qso") << WithQsos({}) << Msg(QStringLiteral("Eintrag 'QSO:' fehlt."));
        QTest::newRow("frequency") << WithQsos({"37x0 PH 2026-05-01 0500 1 A"})
                                   << Msg(QStringLiteral("Eintrag Frequenz bei den QSOs ist ungültig."));
        QTest::newRow("mode") << WithQsos({"3700 SSB 2026-05-01 0500 1 A"})
                              << Msg(QStringLiteral("Eintrag Mode bei den QSOs ist ungültig."));
        QTest::newRow("date") << WithQsos({"3700 PH 2026-02-30 0500 1 A"})
                              << Msg(QStringLiteral("Eintrag Datum bei den QSOs ist ungültig."));
        QTest::newRow("time") << WithQsos({"3700 PH 2026-05-01 500 1 A"})
                              << Msg(QStringLiteral("Eintrag Zeit bei den QSOs ist ungültig."));
        QTest::newRow("time 2460") << WithQsos({"3700 PH 2026-05-01 2460 1 A"})
                                   << Msg(QStringLiteral("Eintrag Zeit bei den QSOs ist ungültig."));
        QTest::newRow("period") << WithQsos({"3700 PH 2026-05-01 0500 3 A"})
                                << Msg(QStringLiteral(
                                       "Eintrag Vormittag/Nachmittag bei den QSOs ist ungültig."));
        QTest::newRow("second line")
            << WithQsos({"3700 PH 2026-05-01 0500 1 A", "3700 PH 2026-05-01 0500 x A"})
            << Msg(QStringLiteral("Eintrag Vormittag/Nachmittag bei den QSOs ist ungültig."));
    }
    void everyTestInItsOrder() {
        QFETCH(QString, text);
        QFETCH(QString, message);
        QCOMPARE(Check(text), message);
        QVERIFY(CheckCabrilloMessages().contains(message));
    }

    void fileWithoutCrLfFailsOnAnEmptyValue() {
        QString text = Good();
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        QCOMPARE(Check(text), Msg(QStringLiteral("Rufzeichen ungültig!")));
    }
    void lowerCaseKeywordsPass() { QCOMPARE(Check(Good().toLower()), QString()); }
    void categoryIsNotFoundInCategoryPower() {
        const QString text = Replace(Good(), "CATEGORY: LOW-POWER MIX\r\n", "");
        QVERIFY(text.contains(QStringLiteral("CATEGORY-POWER:")));
        QCOMPARE(Check(text), Msg(QStringLiteral("Eintrag 'CATEGORY:' fehlt.")));
    }
    void twentyFirstContactLineMayHoldAnything() {
        QStringList lines;
        for (int i = 0; i < 20; ++i)
            lines << QStringLiteral("3700 PH 2026-05-01 0500 1 OE1ABC 59 WI OE3XYZ 59 MD");
        QCOMPARE(Check(WithQsos(lines + QStringList{QStringLiteral("Unsinn")})), QString());
        lines[19] = QStringLiteral("Unsinn");
        QCOMPARE(Check(WithQsos(lines)), Msg(QStringLiteral("Eintrag Frequenz bei den QSOs ist ungültig.")));
    }
    void periodOnePointZeroPasses() {
        QCOMPARE(Check(WithQsos({"3700 PH 2026-05-01 0500 1.0 X"})), QString());
        QCOMPARE(Check(WithQsos({"3700 PH 2026-05-01 0500 2,0 X"})), QString());
    }
    void dateIsJudgedByTheLocaleAndIsoAlwaysPasses() {
        QCOMPARE(Check(WithQsos({"3700 PH 2026-05-01 0500 1 X"})), QString());
        QCOMPARE(Check(WithQsos({"3700 PH 01.05.2026 0500 1 X"})), QString());
        QCOMPARE(CheckCabrillo(WithQsos({"3700 PH 2026-05-01 0500 1 X"}), LocaleFormats(QLocale::c())),
                 QString());
    }
    void manyBlanksBetweenFieldsPass() {
        QCOMPARE(Check(WithQsos({"   3700     CW    2026-05-01   1659    2"})), QString());
    }
    void otherFieldsAreNeverChecked() { QCOMPARE(Check(WithQsos({"3700 PH 2026-05-01 0500 1"})), QString()); }

    // Thousands of mutated and random files: no crash, no hang, only known messages.
    void mutatedAndRandomFilesGiveOnlyKnownMessages() {
        const QStringList known = CheckCabrilloMessages();
        QRandomGenerator rng(20260501);
        const QString alphabet =
            QStringLiteral("QSO: 0123456789-.,:\r\nCALLSIGN:CATEGORY-OVERLAY:LOCATION:PHCWOMYL ");
        const QStringList pieces = {
            QStringLiteral("QSO:"),        QStringLiteral("\r\n"), QStringLiteral("CATEGORY:"),
            QStringLiteral("END-OF-LOG:"), QStringLiteral(" "),    QStringLiteral("2026-05-01"),
            QStringLiteral("\u00e4"),      QStringLiteral("\0"),   QStringLiteral("CALLSIGN:")};
        int passed = 0;
        for (int round = 0; round < 5000; ++round) {
            QString text;
            if (round % 5 == 4) {
                const int n = int(rng.bounded(400));
                for (int i = 0; i < n; ++i)
                    text += alphabet[int(rng.bounded(int(alphabet.size())))];
            } else {
                text = Good();
                if (round % 3 == 0)
                    text = WithQsos(
                        QStringList(int(rng.bounded(30)), QStringLiteral("3700 PH 2026-05-01 0500 1 X")));
                const int edits = 1 + int(rng.bounded(6));
                for (int e = 0; e < edits && !text.isEmpty(); ++e) {
                    const int at = int(rng.bounded(int(text.size())));
                    switch (rng.bounded(4)) {
                    case 0:
                        text.remove(at, int(rng.bounded(12)));
                        break;
                    case 1:
                        text.insert(at, pieces[int(rng.bounded(int(pieces.size())))]);
                        break;
                    case 2:
                        text[at] = alphabet[int(rng.bounded(int(alphabet.size())))];
                        break;
                    default:
                        text.truncate(at);
                        break;
                    }
                }
            }
            const QString result = Check(text);
            if (result.isEmpty()) {
                ++passed;
                continue;
            }
            QVERIFY2(known.contains(result), qPrintable(result));
        }
        QVERIFY(passed > 0);
    }

    void commandLineCheck() {
        QTemporaryDir dir;
        const QString good = dir.filePath(QStringLiteral("gut.log"));
        const QString bad = dir.filePath(QStringLiteral("schlecht.log"));
        WriteBytes(good, Cp(Good()));
        WriteBytes(bad, Cp(Replace(Good(), "LOCATION: WI", "LOCATION: W")));
        auto run = [&](const QString& file, QByteArray* out) {
            const test::CliResult r = test::RunCli(dir.path(), {QStringLiteral("check"), file});
            *out = r.out;
            return r.code;
        };
        QByteArray out;
        QCOMPARE(run(good, &out), 0);
        QCOMPARE(out, QByteArray());
        QCOMPARE(run(bad, &out), 1);
        QCOMPARE(QString::fromUtf8(out), Msg(QStringLiteral("Bezirk ungültig!")) + QLatin1Char('\n'));
    }
};

QTEST_GUILESS_MAIN(TstCheckCabrillo)
#include "tst_check_cabrillo.moc"
