// Folders and the first start's shipped data.
#include "core/atomic_file.h"
#include "core/paths.h"
#include "core/settings.h"
#include "test_support.h"

using namespace kolibrino;
using namespace kolibrino::test;

class TestPaths : public QObject {
    Q_OBJECT

private slots:
    void homeOverrideHoldsEveryFolder() {
        QTemporaryDir dir;
        qputenv("KOLIBRINO_HOME", (dir.path() + QStringLiteral("/neu")).toLocal8Bit());
        Model m;
        IniStartup(m, QStringLiteral("/opt/kolibrino/bin"));
        QCOMPARE(m.AppFolder, QStringLiteral("/opt/kolibrino/bin/"));
        QVERIFY(SetupFolders(m));
        QCOMPARE(m.DataFolder, dir.path() + QStringLiteral("/neu/"));
        QCOMPARE(m.IniPath, m.DataFolder + QStringLiteral("kolibrino.INI"));
        QCOMPARE(m.LogFolder, m.DataFolder + QStringLiteral("Logs/"));
        QCOMPARE(m.BackupFolder, m.DataFolder + QStringLiteral("Sicherung/"));
        QCOMPARE(m.TmpFolder, m.DataFolder + QStringLiteral("Tmp/"));
        for (const QString& f : {m.LogFolder, m.BackupFolder, m.TmpFolder})
            QVERIFY(FolderExists(f));
    }

    void xdgDataHomeIsUsedWithoutOverride() {
        QTemporaryDir dir;
        qunsetenv("KOLIBRINO_HOME");
        qputenv("XDG_DATA_HOME", dir.path().toLocal8Bit());
        Model m;
        QVERIFY(SetupFolders(m));
        QCOMPARE(m.DataFolder, dir.path() + QStringLiteral("/kolibrino/"));
        qunsetenv("XDG_DATA_HOME");
    }

    void firstStartCopiesTheShippedDataButNeverOverwrites() {
        QTemporaryDir dir;
        qputenv("KOLIBRINO_HOME", dir.path().toLocal8Bit());
        Model m;
        IniStartup(m, QStringLiteral(KOLIBRINO_BINARY_DIR));
        QVERIFY(SetupFolders(m));
        QVERIFY(!ShippedDataFolder(m).isEmpty());
        WriteBytes(m.DataFolder + QStringLiteral("bez_koord.txt"), QByteArray("eigen"));
        const QStringList copied = CopyShippedData(m);
        QVERIFY(!copied.contains(QStringLiteral("bez_koord.txt")));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("bez_koord.txt")), QByteArray("eigen"));
        QFile::remove(m.DataFolder + QStringLiteral("bez_koord.txt"));
        QVERIFY(CopyShippedData(m).contains(QStringLiteral("bez_koord.txt")));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("bez_koord.txt")),
                 ReadBytes(ShippedDataFolder(m) + QStringLiteral("bez_koord.txt")));
        QVERIFY(!QFile::exists(m.DataFolder + QStringLiteral("README.md")));
    }

    // A package upgrade: a shipped file still as it was copied is replaced by the newer
    // shipped one at the next start; one the operator changed, or one an update
    // installed, stays.
    void packageUpgradeRefreshesOnlyUnchangedShippedCopies() {
        QTemporaryDir dir;
        qputenv("KOLIBRINO_HOME", (dir.path() + QStringLiteral("/home")).toLocal8Bit());
        const QString app = dir.path() + QStringLiteral("/app/");
        auto ship = [&](const char* name, const QByteArray& bytes) {
            WriteBytes(app + QStringLiteral("data/") + QLatin1String(name), bytes);
        };
        ship("bez_koord.txt", "WI;1;1;Wien;1;\r\n");
        ship("BZ_Karte.gif", "GIF89a alt");
        ship("KOLBOHilfe.pdf", "%PDF alt");
        ship("OeCallList.txt", "OE1A;Anna\r\n");
        Model m;
        IniStartup(m, app);
        QVERIFY(SetupFolders(m));
        QCOMPARE(ShippedDataFolder(m), app + QStringLiteral("data/"));
        QCOMPARE(CopyShippedData(m).size(), 4);
        QCOMPARE(CopyShippedData(m).size(), 0); // nothing new shipped: nothing copied
        // The operator edits the map; an update installs the manual; the call list was
        // copied by an older version that noted nothing.
        WriteBytes(m.DataFolder + QStringLiteral("BZ_Karte.gif"), "GIF89a eigen");
        WriteBytes(m.DataFolder + QStringLiteral("KOLBOHilfe.pdf"), "%PDF vom Update");
        ForgetShippedCopy(m, QStringLiteral("KOLBOHilfe.pdf"));
        IniWrite(m.IniPath, QString::fromLatin1(kSectionShipped), QStringLiteral("OeCallList.txt"),
                 QString());
        QVERIFY(CopyShippedData(m).isEmpty()); // adopts the unchanged call list
        // The package is upgraded.
        ship("bez_koord.txt", "WI;1;1;Wien;1;\r\nGZ;2;2;Graz;6;\r\n");
        ship("BZ_Karte.gif", "GIF89a neu");
        ship("KOLBOHilfe.pdf", "%PDF neu");
        ship("OeCallList.txt", "OE1A;Anna\r\nOE3B;Berta\r\n");
        QCOMPARE(CopyShippedData(m),
                 (QStringList{QStringLiteral("bez_koord.txt"), QStringLiteral("OeCallList.txt")}));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("bez_koord.txt")),
                 QByteArray("WI;1;1;Wien;1;\r\nGZ;2;2;Graz;6;\r\n"));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("OeCallList.txt")),
                 QByteArray("OE1A;Anna\r\nOE3B;Berta\r\n"));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("BZ_Karte.gif")), QByteArray("GIF89a eigen"));
        QCOMPARE(ReadBytes(m.DataFolder + QStringLiteral("KOLBOHilfe.pdf")), QByteArray("%PDF vom Update"));
        // And the refreshed copy is refreshed again by the next upgrade.
        ship("bez_koord.txt", "WI;1;1;Wien;1;\r\nGZ;2;2;Graz;6;\r\nMD;3;3;Mödling;3;\r\n");
        QCOMPARE(CopyShippedData(m), QStringList{QStringLiteral("bez_koord.txt")});
        QVERIFY(ReadBytes(m.DataFolder + QStringLiteral("bez_koord.txt")).contains("MD;3;3"));
    }

    void unwritableHomeIsReported() {
        QTemporaryDir dir;
        WriteBytes(dir.path() + QStringLiteral("/datei"), "x");
        qputenv("KOLIBRINO_HOME", (dir.path() + QStringLiteral("/datei/unter")).toLocal8Bit());
        Model m;
        QString error;
        QVERIFY(!SetupFolders(m, &error));
        QVERIFY(!error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPaths)
#include "tst_paths.moc"
