// The backup copy under the ".ALT" scheme.
#include "core/atomic_file.h"
#include "core/backup.h"
#include "core/scripted_dialogs.h"
#include "test_support.h"

#include <cerrno>
#include <cstring>

using namespace kolibrino;
using namespace kolibrino::test;

class TestBackup : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir;
    ScriptedDialogs dialogs;
    QString source;
    QString target;

    QString P(const QString& rel) const { return dir->path() + QLatin1Char('/') + rel; }

private slots:
    void init() {
        dir = std::make_unique<QTemporaryDir>();
        dialogs = ScriptedDialogs();
        source = P(QStringLiteral("Logs/a.KOLBO"));
        target = P(QStringLiteral("stick/a.KOLBO"));
        WriteBytes(source, QByteArray(1000, 'x'));
        QDir().mkpath(P(QStringLiteral("stick")));
    }

    void copyReplacesTheTargetAndRemovesTheOldCopy() {
        WriteBytes(target, "alt");
        BackupFile(dialogs, source, target, P(QStringLiteral("stick/")));
        QVERIFY(dialogs.boxes.isEmpty());
        QCOMPARE(ReadBytes(target), QByteArray(1000, 'x'));
        QVERIFY(!QFile::exists(target + QStringLiteral(".ALT")));
    }

    void freeSpaceMustExceedTwiceTheSize_data() {
        QTest::addColumn<double>("free");
        QTest::addColumn<bool>("copied");
        QTest::newRow("2000 free is too little") << 2000.0 << false;
        QTest::newRow("2001 free is enough") << 2001.0 << true;
    }
    void freeSpaceMustExceedTwiceTheSize() {
        QFETCH(double, free);
        QFETCH(bool, copied);
        BackupFile(dialogs, source, target, QString(), [free](const QString&) { return free; });
        QCOMPARE(QFile::exists(target), copied);
        if (!copied) {
            QCOMPARE(dialogs.boxes.size(), 1);
            QCOMPARE(dialogs.boxes[0].text,
                     QStringLiteral("Zu wenig freier Speicher auf dem Sicherungsmedium!\r\n"
                                    "Bitte Speicherplatz freigeben.\r\n\r\nSichern abgebrochen!"));
            QCOMPARE(dialogs.boxes[0].flags, 64);
        }
    }

    void removedStickIsNotReady() {
        // The stick's mount point went with it: more than the backup folder is missing.
        const QString gone = P(QStringLiteral("stick-weg/Sicherung/a.KOLBO"));
        QCOMPARE(DriveFreeBytes(gone), -1.0);
        BackupFile(dialogs, source, gone, P(QStringLiteral("stick-weg/Sicherung/")));
        QCOMPARE(dialogs.boxes.size(), 1);
        QCOMPARE(dialogs.boxes[0].text, QStringLiteral("Fehler... Sicherungs-Laufwerk nicht bereit!"));
    }

    void missingOwnBackupFolderStopsEveryBackup() {
        BackupFile(dialogs, source, target, P(QStringLiteral("nicht-da/")));
        QCOMPARE(dialogs.boxes.size(), 1);
        QCOMPARE(dialogs.boxes[0].text,
                 QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"));
        QCOMPARE(dialogs.boxes[0].flags, 64);
        QVERIFY(!QFile::exists(target));
    }

    void failedCopyLeavesTheOldCopyAndNoTarget() {
        WriteBytes(target, "letzte gute Kopie");
        QFile::remove(source); // the copy cannot read its source
        BackupFile(dialogs, source, target, QString());
        QVERIFY(!QFile::exists(target));
        QCOMPARE(ReadBytes(target + QStringLiteral(".ALT")), QByteArray("letzte gute Kopie"));
        QCOMPARE(dialogs.boxes.size(), 1);
        // The real cause, not a path that is fine.
        QVERIFY(dialogs.boxes[0].text.startsWith(QStringLiteral("Fehler beim Sichern!\r\n\r\n")));
        QVERIFY(dialogs.boxes[0].text.contains(QStringLiteral("Datei kann nicht gelesen werden")));
        QVERIFY(dialogs.boxes[0].text.endsWith(QStringLiteral("\r\n\r\nSichern abgebrochen!")));
        QCOMPARE(dialogs.boxes[0].flags, 16);
    }

    void anOldCopyThatCannotBeRemovedStopsTheBackupWithItsCause() {
        WriteBytes(target, "gute Kopie");
        QVERIFY(QDir().mkpath(target + QStringLiteral(".ALT/x"))); // not a file: unlink fails
        BackupFile(dialogs, source, target, QString());
        QCOMPARE(dialogs.boxes.size(), 1);
        QVERIFY(dialogs.boxes[0].text.startsWith(QStringLiteral("Fehler beim Sichern!")));
        QVERIFY(dialogs.boxes[0].text.contains(QStringLiteral("Alte Sicherung kann nicht gelöscht werden")));
        QVERIFY(dialogs.boxes[0].text.contains(QString::fromLocal8Bit(std::strerror(EISDIR))));
        QCOMPARE(ReadBytes(target), QByteArray("gute Kopie")); // the good copy is left alone
    }

    void aMissingTargetKeepsItsLastGoodCopyUntilANewOneIsMade() {
        WriteBytes(target + QStringLiteral(".ALT"), "letzte gute Kopie");
        QFile::rename(source, source + QStringLiteral(".weg"));
        BackupFile(dialogs, source, target, QString());
        QCOMPARE(ReadBytes(target + QStringLiteral(".ALT")), QByteArray("letzte gute Kopie"));
        QFile::rename(source + QStringLiteral(".weg"), source);
        dialogs.Clear();
        BackupFile(dialogs, source, target, QString());
        QVERIFY(dialogs.boxes.isEmpty());
        QCOMPARE(ReadBytes(target).size(), 1000);
        QVERIFY(!QFile::exists(target + QStringLiteral(".ALT")));
    }

    void staleOldCopyIsReplaced() {
        WriteBytes(target + QStringLiteral(".ALT"), "uralt");
        WriteBytes(target, "alt");
        BackupFile(dialogs, source, target, QString());
        QVERIFY(!QFile::exists(target + QStringLiteral(".ALT")));
        QCOMPARE(ReadBytes(target).size(), 1000);
    }

    void copyFileToRefusesAnExistingTargetUnlessOverwriting() {
        WriteBytes(target, "alt");
        QVERIFY(!CopyFileTo(source, target, false));
        QCOMPARE(ReadBytes(target), QByteArray("alt"));
        QVERIFY(CopyFileTo(source, target, true));
        QCOMPARE(ReadBytes(target).size(), 1000);
        QVERIFY(!CopyFileTo(P(QStringLiteral("fehlt")), P(QStringLiteral("stick/neu")), true));
    }

    void driveFreeBytesMeasuresTheTargetsFileSystem() {
        QVERIFY(DriveFreeBytes(target) > 0);
        QVERIFY(DriveFreeBytes(P(QStringLiteral("stick/"))) > 0);
    }
};

QTEST_GUILESS_MAIN(TestBackup)
#include "tst_backup.moc"
