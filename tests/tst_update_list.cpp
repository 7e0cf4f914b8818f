// The update list: which lines count, how entries are split, what is offered against
// the versions in the settings file, the size and date texts, and a long run of mutated
// and random lists.
#include "core/settings.h"
#include "test_support.h"
#include "upkeep/update_list.h"

#include <QRandomGenerator>

using namespace kolibrino;
using namespace kolibrino::upkeep;

namespace {
const QString kMd5 = QStringLiteral("0123456789abcdef0123456789ABCDEF");

QString Line(const QString& name, int version, int size = 1234) {
    return QStringLiteral("%1|%2|01052026|%3|%4|Neue Daten").arg(name).arg(version).arg(size).arg(kMd5);
}
} // namespace

class TstUpdateList : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { test::PinLocale(); }

    void listLineOfTenCharactersOrFewerIsIgnored() {
        // Ten characters after trimming, even when they would split into five fields.
        QVERIFY(!IsListLine(QStringLiteral("a|1|2|3|4|")));
        QVERIFY(!IsListLine(QStringLiteral("   a|1|2|3|4|   ")));
        QVERIFY(!IsListLine(QString()));
        QVERIFY(IsListLine(QStringLiteral("a|1|2|3|4|5")));
        const auto entries =
            ParseUpdateList(QStringLiteral("x|1|2|3|4|\r\n") + Line(QStringLiteral("bez_koord.txt"), 2));
        QCOMPARE(entries.size(), size_t(1));
        QCOMPARE(entries[0].Name, QStringLiteral("bez_koord.txt"));
    }

    void commentLinesAreIgnored() {
        for (const char* lead : {";", ":", "'", "  ;"}) {
            const QString line = QString::fromLatin1(lead) + Line(QStringLiteral("bez_koord.txt"), 2);
            QVERIFY2(ParseUpdateList(line).empty(), lead);
        }
    }

    void fieldsAreSplitWithoutTrimming() {
        const auto e = ParseUpdateList(
            QStringLiteral(" bez_koord.txt |20260501|01052026|4711|%1| Bezirke neu | mit Strich\n")
                .arg(kMd5));
        QCOMPARE(e.size(), size_t(1));
        QCOMPARE(e[0].Name, QStringLiteral(" bez_koord.txt "));
        QCOMPARE(e[0].Version, 20260501);
        QCOMPARE(e[0].Datum, QStringLiteral("01052026"));
        QCOMPARE(e[0].Size, 4711);
        QCOMPARE(e[0].Md5, kMd5);
        QCOMPARE(e[0].Info, QStringLiteral(" Bezirke neu | mit Strich"));
    }

    void invalidNumbersOrChecksumMakeNoEntry() {
        const QStringList bad = {
            QStringLiteral("bez_koord.txt|-1|01052026|10|%1|x").arg(kMd5),
            QStringLiteral("bez_koord.txt|1|01052026|-10|%1|x").arg(kMd5),
            QStringLiteral("bez_koord.txt|2147483648|01052026|10|%1|x").arg(kMd5),
            QStringLiteral("bez_koord.txt|1x|01052026|10|%1|x").arg(kMd5),
            QStringLiteral("bez_koord.txt|1|01052026|10|0123|x"),
            QStringLiteral("   |1|01052026|10|%1|x").arg(kMd5),
            QStringLiteral("bez_koord.txt|1|01052026|10"),
        };
        for (const QString& l : bad)
            QVERIFY2(ParseUpdateList(l).empty(), qPrintable(l));
        QCOMPARE(ParseUpdateList(QStringLiteral("bez_koord.txt|2147483647|0105|0|%1").arg(kMd5)).size(),
                 size_t(1));
    }

    void entryWithSameVersionAsInstalledIsNotOffered() {
        test::Home home;
        IniWrite(home.model.IniPath, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 5);
        const auto entries = ParseUpdateList(Line(QStringLiteral("bez_koord.txt"), 5));
        QVERIFY(OfferedEntries(entries, home.model.IniPath).empty());
    }

    void entryWithLowerVersionIsNotOffered() {
        test::Home home;
        IniWrite(home.model.IniPath, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 5);
        const auto entries = ParseUpdateList(Line(QStringLiteral("bez_koord.txt"), 4));
        QVERIFY(OfferedEntries(entries, home.model.IniPath).empty());
    }

    void newerOrUnknownEntriesAreOfferedInListOrder() {
        test::Home home;
        IniWrite(home.model.IniPath, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 5);
        const QString text = Line(QStringLiteral("bez_koord.txt"), 6) + QStringLiteral("\r\n") +
                             Line(QStringLiteral("OeCallList.txt"), 1) + QStringLiteral("\r\n") +
                             Line(QStringLiteral("BZ_Karte.gif"), 0);
        const auto entries = ParseUpdateList(text);
        QCOMPARE(entries.size(), size_t(3));
        // An entry without a stored version counts against version 0: 0 is not offered.
        QCOMPARE(OfferedEntries(entries, home.model.IniPath), (std::vector<int>{0, 1}));
    }

    void versionIsReadInUpperCaseAndWrittenAsListed() {
        test::Home home;
        NoteInstalledVersion(home.model.IniPath, QStringLiteral(" OeCallList.txt "), 42);
        QCOMPARE(InstalledVersion(home.model.IniPath, QStringLiteral("OECALLLIST.TXT")), 42);
        QCOMPARE(InstalledVersion(home.model.IniPath, QStringLiteral("oecalllist.txt")), 42);
        QVERIFY(test::ReadBytes(home.model.IniPath).toUpper().contains("[OECALLLIST.TXT]\r\nVERSION=42"));
    }

    void installedEntryWithBracketInItsNameIsNotOfferedAgain() {
        test::Home home;
        // Such a name never comes from the list (it is refused there); the settings hold it all the same.
        QVERIFY(ParseUpdateList(Line(QStringLiteral("karte]2.gif"), 3)).empty());
        UpdateEntry e;
        e.Name = QStringLiteral("karte]2.gif");
        e.Version = 3;
        const std::vector<UpdateEntry> entries{e};
        QCOMPARE(OfferedEntries(entries, home.model.IniPath), (std::vector<int>{0}));
        NoteInstalledVersion(home.model.IniPath, entries[0].Name, entries[0].Version);
        QCOMPARE(InstalledVersion(home.model.IniPath, entries[0].Name), 3);
        QVERIFY(OfferedEntries(entries, home.model.IniPath).empty());
    }

    void entryWithSharpSOrMicroInItsNameIsNotOfferedOnceInstalled() {
        test::Home home;
        for (const QString& name : {QStringLiteral("Straße.txt"), QStringLiteral("µ.txt")}) {
            for (int version : {55, 56}) {
                UpdateEntry e;
                e.Name = name;
                e.Version = version;
                const std::vector<UpdateEntry> entries{e};
                QCOMPARE(OfferedEntries(entries, home.model.IniPath), (std::vector<int>{0}));
                NoteInstalledVersion(home.model.IniPath, entries[0].Name, version);
                QCOMPARE(InstalledVersion(home.model.IniPath, name), version);
                QVERIFY(OfferedEntries(entries, home.model.IniPath).empty());
            }
        }
    }

    void namesThatLeaveTheFolderOrAreNoShippedFileAreRefusedWithTheirReason_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        const QString folder = QStringLiteral("Der Dateiname enthält einen Ordner (\"/\" oder \"\\\").");
        QTest::newRow("log of the operator") << QStringLiteral("../Logs/test.KOLBO") << folder;
        QTest::newRow("outside the data folder") << QStringLiteral("../../x") << folder;
        QTest::newRow("sub folder") << QStringLiteral("a/b") << folder;
        QTest::newRow("backslash") << QStringLiteral("..\\kolibrino.INI") << folder;
        QTest::newRow("absolute") << QStringLiteral("/etc/passwd") << folder;
        QTest::newRow("dots") << QStringLiteral("bez_koord..txt")
                              << QStringLiteral("Der Dateiname enthält \"..\".");
        QTest::newRow("hidden") << QStringLiteral(".hidden")
                                << QStringLiteral("Der Dateiname beginnt mit einem Punkt.");
        QTest::newRow("control") << QStringLiteral("bez\x01koord.txt")
                                 << QStringLiteral("Der Dateiname enthält ein Steuerzeichen.");
        QTest::newRow("tab inside") << QStringLiteral("bez\tkoord.txt")
                                    << QStringLiteral("Der Dateiname enthält ein Steuerzeichen.");
        QTest::newRow("a log")
            << QStringLiteral("test.KOLBO")
            << QStringLiteral("test.KOLBO gehört nicht zu den Dateien, die ein Update ersetzen darf.");
        QTest::newRow("the settings")
            << QStringLiteral("kolibrino.INI")
            << QStringLiteral("kolibrino.INI gehört nicht zu den Dateien, die ein Update ersetzen darf.");
    }
    void namesThatLeaveTheFolderOrAreNoShippedFileAreRefusedWithTheirReason() {
        QFETCH(QString, name);
        QFETCH(QString, reason);
        QCOMPARE(RefusedNameReason(name), reason);
        std::vector<RefusedLine> refused;
        const QString text = QStringLiteral("; Liste\r\n") + Line(QStringLiteral("bez_koord.txt"), 2) +
                             QStringLiteral("\r\n") + Line(name, 3) + QStringLiteral("\r\n");
        const auto entries = ParseUpdateList(text, refused);
        QCOMPARE(entries.size(), size_t(1));
        QCOMPARE(entries[0].Name, QStringLiteral("bez_koord.txt"));
        QCOMPARE(refused.size(), size_t(1));
        QCOMPARE(refused[0].number, 3);
        QCOMPARE(refused[0].reason, reason);
        QVERIFY(!refused[0].text.contains(QChar(1)));
        QVERIFY(RefusedLinesText(refused).contains(QStringLiteral("Zeile 3: ")));
    }

    void shippedFilesAndTheProgramPassInAnyCase() {
        for (const char* name : {"bez_koord.txt", "BZ_Karte.gif", "KOLBOHilfe.pdf", "OeCallList.txt",
                                 "kolibrino.bin", " BEZ_KOORD.TXT ", "Kolibrino.BIN"})
            QVERIFY2(RefusedNameReason(QString::fromLatin1(name)).isEmpty(), name);
        QCOMPARE(DataFileName(QStringLiteral(" BEZ_KOORD.TXT")), QStringLiteral("bez_koord.txt"));
    }

    void malformedLinesAreNamedWithTheirReason() {
        std::vector<RefusedLine> refused;
        const QString text = QStringLiteral("bez_koord.txt|1x|01052026|10|%1|x\r\n"
                                            "bez_koord.txt|1|01052026|10|0123|x\r\n"
                                            "bez_koord.txt|1|01052026|x|%1|x\r\n"
                                            "kurz\r\n"
                                            "bez_koord.txt|1|01052026\r\n")
                                 .arg(kMd5);
        QVERIFY(ParseUpdateList(text, refused).empty());
        QCOMPARE(refused.size(), size_t(4)); // the short line does not count
        QCOMPARE(refused[0].reason, QStringLiteral("Die Version ist keine ganze Zahl."));
        QCOMPARE(refused[1].reason, QStringLiteral("Die Prüfsumme (MD5) hat nicht 32 Hexadezimalziffern."));
        QCOMPARE(refused[2].reason, QStringLiteral("Die Größe ist keine ganze Zahl."));
        QCOMPARE(refused[3].number, 5);
        QCOMPARE(refused[3].reason, QStringLiteral("Die Zeile hat weniger als fünf Felder."));
    }

    void sizeTextsByMagnitude() {
        const QLocale de = test::AustrianLocale();
        QCOMPARE(SizeText(0, de), QStringLiteral("0 Bytes"));
        QCOMPARE(SizeText(999, de), QStringLiteral("999 Bytes"));
        QCOMPARE(SizeText(1000, de), QStringLiteral("1,00 KB"));
        QCOMPARE(SizeText(12345, de), QStringLiteral("12,35 KB"));
        QCOMPARE(SizeText(999999, de), QStringLiteral("1000,00 KB"));
        QCOMPARE(SizeText(1000000, de), QStringLiteral("1,00 MB"));
        QCOMPARE(SizeText(2147483647, de), QStringLiteral("2147,48 MB"));
    }

    void dateTextAndCaption() {
        QCOMPARE(DateText(QStringLiteral("01052026"), QLatin1Char('.')), QStringLiteral("01.05.2026"));
        QCOMPARE(DateText(QStringLiteral("1"), QLatin1Char('.')), QStringLiteral("1.."));
        const auto e = ParseUpdateList(Line(QStringLiteral("bez_koord.txt"), 7, 2048));
        QCOMPARE(EntryCaption(e[0], test::AustrianLocale(), QLatin1Char('.')),
                 QStringLiteral("Datei:   bez_koord.txt\nVersion:   7\nGröße:   2048 Bytes (2,05 KB)\n"
                                "Datum:   01.05.2026\nInfo:   Neue Daten"));
        QCOMPARE(EntryLine(e[0]), QStringLiteral("bez_koord.txt 7 2048"));
    }

    void programEntryIsTheExecutableNameWithBin() {
        UpdateEntry e;
        e.Name = QStringLiteral(" Kolibrino.BIN");
        QVERIFY(IsProgramEntry(e, QStringLiteral("kolibrino")));
        e.Name = QStringLiteral("kolibrino.exe");
        QVERIFY(!IsProgramEntry(e, QStringLiteral("kolibrino")));
        QCOMPARE(RunningVersionNumber(), ProgramVersionNumber());
    }

    // Thousands of lists, mutated from a valid one and made of random bytes, with a
    // fixed seed: the parser never crashes or hangs, and never offers an entry with a
    // negative size or version.
    void mutatedAndRandomListsNeverOfferNegativeEntries() {
        test::Home home;
        IniWrite(home.model.IniPath, QStringLiteral("bez_koord.txt"), QStringLiteral("Version"), 3);
        QRandomGenerator rng(20260501);
        const QString base = QStringLiteral("; Kolibrino Updates\r\n") +
                             Line(QStringLiteral("bez_koord.txt"), 4) + QStringLiteral("\r\n") +
                             Line(QStringLiteral("kolibrino.bin"), 1000001, 800000) + QStringLiteral("\r\n") +
                             Line(QStringLiteral("OeCallList.txt"), 9, 12);
        const QString alphabet = QStringLiteral("|0123456789-+ .;:'\r\nabcdefABCDEFxyzäöü\t");
        int offeredTotal = 0;
        for (int round = 0; round < 5000; ++round) {
            QString text;
            if (round % 5 == 4) {
                const int len = int(rng.bounded(400));
                for (int i = 0; i < len; ++i)
                    text += round % 10 == 9 ? QChar(ushort(rng.bounded(1, 0x2000)))
                                            : alphabet.at(int(rng.bounded(alphabet.size())));
            } else {
                text = base;
                const int edits = 1 + int(rng.bounded(8));
                for (int k = 0; k < edits && !text.isEmpty(); ++k) {
                    const int at = int(rng.bounded(text.size()));
                    const QChar c = alphabet.at(int(rng.bounded(alphabet.size())));
                    switch (rng.bounded(4)) {
                    case 0:
                        text[at] = c;
                        break;
                    case 1:
                        text.insert(at, c);
                        break;
                    case 2:
                        text.remove(at, 1 + int(rng.bounded(6)));
                        break;
                    default:
                        text.insert(at, text.mid(int(rng.bounded(text.size())), int(rng.bounded(30))));
                    }
                }
            }
            const auto entries = ParseUpdateList(text);
            for (int i : OfferedEntries(entries, home.model.IniPath)) {
                const UpdateEntry& e = entries[size_t(i)];
                QVERIFY(e.Version > 0);
                QVERIFY(e.Size >= 0);
                QVERIFY(!e.Name.trimmed().isEmpty());
                QCOMPARE(e.Md5.size(), 32);
                (void)EntryCaption(e, test::AustrianLocale(), QLatin1Char('.'));
                ++offeredTotal;
            }
        }
        QVERIFY(offeredTotal > 1000); // the mutations kept many entries alive
    }
};

QTEST_GUILESS_MAIN(TstUpdateList)
#include "tst_update_list.moc"
