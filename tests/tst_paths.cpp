// Folders and the first start's shipped data.
#include "core/atomic_file.h"
#include "core/paths.h"
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
