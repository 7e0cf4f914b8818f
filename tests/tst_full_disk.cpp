// No swallowed error where files are written: a full disk during a contact, a
// correction and a backup tells the operator its real cause and leaves the file whole;
// the folder's sync reports its failure; closing with contacts that never reached the
// file asks, in plain words, until the operator decides.
//
// The full disk is a small tmpfs mounted on the log folder (the tests run as root on
// the build machine); where mounting is not allowed, those tests say so and skip.
#include "core/atomic_file.h"
#include "core/backup.h"
#include "corrections_support.h"
#include "disk_support.h"

#include <cerrno>
#include <cstring>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

std::vector<QsoRecord> TwoContacts() {
    return {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3BBB"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00"))};
}

QString Cause(int err) {
    return QString::fromLocal8Bit(std::strerror(err));
}

QStringList CallsInFile(const QString& path) {
    Model m;
    m.SetLocale(AustrianLocale());
    ScriptedDialogs d;
    QStringList calls;
    if (LoadLog(m, d, path) != 1) return {QStringLiteral("<lädt nicht>")};
    for (const QsoRecord& r : m.LogRecords)
        calls << r.Call;
    return calls;
}

const ShownBox* BoxStarting(const ScriptedDialogs& d, const QString& start) {
    for (const ShownBox& b : d.boxes)
        if (b.text.startsWith(start)) return &b;
    return nullptr;
}

#define NEED_MOUNT(disk)                                                                            \
    if (!(disk).Mounted()) QSKIP("no right to mount a tmpfs here: the full disk cannot be made")

} // namespace

class TestFullDisk : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    void aFullDiskDuringAContactTellsTheCauseAndLeavesTheFileWhole() {
        CorrectionsFixture f;
        SmallDisk disk(f.home.model.LogFolder, QStringLiteral("size=64k"));
        NEED_MOUNT(disk);
        QVERIFY(f.StartWith(TwoContacts()));
        const QByteArray before = f.FileBytes();
        disk.Fill();
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        f.Type(QStringLiteral("OE6CCC"), 0, QStringLiteral("GZ"));
        const ShownBox* fehler = BoxStarting(f.dialogs, QStringLiteral("FEHLER"));
        QVERIFY(fehler);
        QVERIFY2(fehler->text.contains(Cause(ENOSPC)), qPrintable(fehler->text));
        QCOMPARE(fehler->flags, 21);
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(CallsInFile(f.LogPath()), (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE3BBB")}));
        QVERIFY(!f.window->FileUpToDate());
        QFile::remove(f.home.model.LogFolder + QStringLiteral("fuell.bin"));
        f.window->close(); // the closing writes it
        QCOMPARE(CallsInFile(f.LogPath()).size(), 3);
    }

    void aFullDiskDuringACorrectionTellsTheCauseAndLeavesTheFileWhole() {
        CorrectionsFixture f;
        SmallDisk disk(f.home.model.LogFolder, QStringLiteral("size=64k"));
        NEED_MOUNT(disk);
        QVERIFY(f.StartWith(TwoContacts()));
        const QByteArray before = f.FileBytes();
        disk.Fill();
        f.dialogs.AnswerMsgBox(Msg::Yes);    // "Soll dieser Eintrag wirklich gelöscht werden?"
        f.dialogs.AnswerMsgBox(Msg::Cancel); // the FEHLER box
        f.Popup(f.RowOf(1), "MnVerstecktLoeschen");
        const ShownBox* fehler = BoxStarting(f.dialogs, QStringLiteral("FEHLER"));
        QVERIFY(fehler);
        QVERIFY2(fehler->text.contains(Cause(ENOSPC)), qPrintable(fehler->text));
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(CallsInFile(f.LogPath()).size(), 2);
        QFile::remove(f.home.model.LogFolder + QStringLiteral("fuell.bin"));
        f.window->close();
    }

    // Closing after a failed write: the program asks, says that the contacts are not on
    // disk, and asks again until they are written or the operator decides to end.
    void closingWithUnwrittenContactsAsksUntilTheyAreWritten() {
        CorrectionsFixture f;
        SmallDisk disk(f.home.model.LogFolder, QStringLiteral("size=64k"));
        NEED_MOUNT(disk);
        QVERIFY(f.StartWith(TwoContacts()));
        disk.Fill();
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        f.Type(QStringLiteral("OE6CCC"), 0, QStringLiteral("GZ"));
        QVERIFY(!f.window->FileUpToDate());
        f.dialogs.Clear();
        int fehler = 0;
        f.dialogs.onMsgBox = [&](const ShownBox& b) {
            // The operator frees the disk while the second FEHLER box of the closing shows.
            if (b.text.startsWith(QStringLiteral("FEHLER")) && ++fehler == 2)
                QFile::remove(f.home.model.LogFolder + QStringLiteral("fuell.bin"));
        };
        f.dialogs.AnswerMsgBox(Msg::Cancel); // FEHLER
        f.dialogs.AnswerMsgBox(Msg::No);     // end all the same? No
        f.dialogs.AnswerMsgBox(Msg::Retry);  // FEHLER, the disk freed
        f.window->close();
        QVERIFY(f.dialogs.boxes.size() >= 3);
        QVERIFY(f.dialogs.boxes[0].text.startsWith(QStringLiteral("FEHLER")));
        QVERIFY(f.dialogs.boxes[1].text.contains(QStringLiteral("NICHT in der Logdatei gespeichert")));
        QVERIFY(f.dialogs.boxes[1].text.contains(QStringLiteral("Trotzdem beenden?")));
        QCOMPARE(f.dialogs.boxes[1].flags, 4 + 48 + 256);
        QVERIFY(f.dialogs.boxes[2].text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(CallsInFile(f.LogPath()), (QStringList{QStringLiteral("OE1AAA"), QStringLiteral("OE3BBB"),
                                                       QStringLiteral("OE6CCC")}));
    }

    void closingWithUnwrittenContactsEndsOnlyWhenTheOperatorSaysSo() {
        CorrectionsFixture f;
        SmallDisk disk(f.home.model.LogFolder, QStringLiteral("size=64k"));
        NEED_MOUNT(disk);
        QVERIFY(f.StartWith(TwoContacts()));
        disk.Fill();
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        f.Type(QStringLiteral("OE6CCC"), 0, QStringLiteral("GZ"));
        f.dialogs.Clear();
        f.dialogs.AnswerMsgBox(Msg::Cancel); // FEHLER
        f.dialogs.AnswerMsgBox(Msg::Yes);    // end all the same
        f.window->close();
        const ShownBox* question = BoxStarting(f.dialogs, QStringLiteral("Die letzten Kontakte"));
        QVERIFY(question);
        QVERIFY(question->text.contains(QStringLiteral("verloren")));
        QCOMPARE(CallsInFile(f.LogPath()).size(), 2);
    }

    // The regular backup onto a full stick: the real cause, and the last good copy kept.
    void aFullDiskDuringABackupTellsTheCauseAndKeepsTheLastCopy() {
        Home home;
        const QString stick = home.Path(QStringLiteral("stick"));
        SmallDisk disk(stick, QStringLiteral("size=1m,nr_inodes=3"));
        NEED_MOUNT(disk);
        const QString source = home.model.LogFolder + QStringLiteral("a.KOLBO");
        WriteBytes(source, QByteArray(1000, 'n'));
        const QString target = stick + QStringLiteral("/a.KOLBO");
        WriteBytes(target, "letzte gute Kopie");
        for (int i = 0; i < 10; ++i) { // every inode taken
            QFile filler(stick + QStringLiteral("/f%1").arg(i));
            if (!filler.open(QIODevice::WriteOnly)) break;
        }
        ScriptedDialogs d;
        BackupFile(d, source, target, QString());
        QCOMPARE(d.boxes.size(), 1);
        QVERIFY(d.boxes[0].text.startsWith(QStringLiteral("Fehler beim Sichern!")));
        QVERIFY2(d.boxes[0].text.contains(Cause(ENOSPC)), qPrintable(d.boxes[0].text));
        QVERIFY(!d.boxes[0].text.contains(QStringLiteral("Kein gültiger Pfad")));
        QCOMPARE(d.boxes[0].flags, 16);
        QCOMPARE(ReadBytes(target + QStringLiteral(".ALT")), QByteArray("letzte gute Kopie"));
        // The next backup, the disk still full, keeps that last good copy.
        d.Clear();
        BackupFile(d, source, target, QString());
        QCOMPARE(ReadBytes(target + QStringLiteral(".ALT")), QByteArray("letzte gute Kopie"));
    }

    // The folder's sync after the rename: a failure is told, not dropped.
    void aFailedSyncOfTheFolderIsTold() {
        Home home;
        const QString gone = home.Path(QStringLiteral("weg"));
        const QString e = SyncFolder(gone, gone + QStringLiteral("/a.KOLBO"));
        QVERIFY(e.startsWith(QStringLiteral("Ordner kann nicht auf die Festplatte geschrieben werden")));
        QVERIFY(e.contains(Cause(ENOENT)));
        QCOMPARE(SyncFolder(home.model.LogFolder, home.model.LogFolder + QStringLiteral("a.KOLBO")), QString());
    }
};

QTEST_MAIN(TestFullDisk)
#include "tst_full_disk.moc"
