// Paths that could lose or damage data: an unreadable settings file, characters the
// file cannot hold, separators in fields, a backup folder that is the log folder, the
// atomic replace and what the operator set on the file, a missing backup folder,
// damaged call-index entries, and deleted logs that must come back from the trash.
#include "core/atomic_file.h"
#include "core/backup.h"
#include "core/call_index.h"
#include "core/error_trap.h"
#include "core/log_file.h"
#include "core/scripted_dialogs.h"
#include "core/settings.h"
#include "entry/contest_clock.h"
#include "entry/entry_keys.h"
#include "entry/log_grid_model.h"
#include "entry/qso_entry.h"
#include "setup/backup_settings.h"
#include "setup/log_manager.h"
#include "setup/station_logic.h"
#include "test_support.h"

#include <QDirIterator>
#include <sys/stat.h>
#include <unistd.h>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QChar kEmojiHigh(0xD83D);
const QString kEmoji = QString::fromUtf16(u"\U0001F600"); // a grinning face: not in code page 1252

// The files below a folder, relative, sorted.
QStringList FilesBelow(const QString& folder) {
    QStringList out;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        out << QDir(folder).relativeFilePath(it.next());
    out.sort();
    return out;
}

// Runs op with the effective user "nobody" when the test runs as root (root reads
// every file whatever its mode), so that a mode 000 file really cannot be read.
template <typename Op> void AsUnprivileged(Op op) {
    const bool root = ::geteuid() == 0;
    if (root) QVERIFY(::seteuid(65534) == 0);
    op();
    if (root) QVERIFY(::seteuid(0) == 0);
}

struct EntryBench {
    EntryBench() {
        WriteBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        LoadBezirkTable(home.model, dialogs);
        home.model.CurrentLogName = QStringLiteral("entry.KOLBO");
        BuildLogText(home.model, true, 2026);
        QCOMPARE(WriteLogFile(home.model), QString());
    }
    EntryFields Fields(const QString& call) const {
        EntryFields f;
        f.datum = QStringLiteral("01.05.2026");
        f.zeit = QStringLiteral("06:15");
        f.call = call;
        f.rstGesendet = QStringLiteral("59");
        f.rstEmpfangen = QStringLiteral("59");
        f.bandIndex = 1;
        f.band = QStringLiteral("80m");
        f.modeIndex = 0;
        f.mode = QStringLiteral("SSB");
        f.bezirk = QStringLiteral("WI");
        f.opCall = QStringLiteral("OE1OPR");
        return f;
    }
    Model& m() { return home.model; }
    Home home;
    ScriptedDialogs dialogs;
    LogGridModel grid{home.model.Formats};
};

setup::StationForm ValidStationForm() {
    setup::StationForm f;
    f.text1 = QStringLiteral("OE1ABC");
    f.combo5Text = QStringLiteral("OE1ABC");
    f.combo1Text = QStringLiteral("WI - Wien");
    f.text6 = QStringLiteral("a@b.at");
    f.label10 = QStringLiteral("X.KOLBO");
    return f;
}

} // namespace

class TestDataSafety : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    // ---- Settings never wiped ------------------------------------------------------

    void unreadableSettingsFileIsNeverReplaced() {
        Home home;
        const QByteArray before("[EINSTELLUNGEN]\r\nBand=1\r\nMode=1\r\n[PATHE]\r\nLastLogFile=a.KOLBO\r\n");
        WriteBytes(home.model.IniPath, before);
        QVERIFY(::chmod(QFile::encodeName(home.dir.path()).constData(), 0777) == 0);
        QVERIFY(::chmod(QFile::encodeName(home.model.IniPath).constData(), 0) == 0);
        QStringList told;
        SetIniWriteRefusedHandler([&told](const QString& text) { told << text; });
        AsUnprivileged([&] {
            IniWrite(home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("Band"), 2);
            IniWriteSection(home.model.IniPath, QStringLiteral("OPCALLs"), {QStringLiteral("OE1ABC")});
            IniDeleteSection(home.model.IniPath, QStringLiteral("Pathe"));
        });
        QVERIFY(::chmod(QFile::encodeName(home.model.IniPath).constData(), 0644) == 0);
        SetIniWriteRefusedHandler({});
        QCOMPARE(ReadBytes(home.model.IniPath), before);
        QCOMPARE(told.size(), 1); // once, however many writes were refused
        QVERIFY(told[0].startsWith(QStringLiteral("Die Einstellungen können nicht gespeichert werden!")));
    }

    void missingSettingsFileIsStillCreatedByAWrite() {
        Home home;
        QFile::remove(home.model.IniPath);
        int told = 0;
        SetIniWriteRefusedHandler([&told](const QString&) { ++told; });
        IniWrite(home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("Band"), 2);
        SetIniWriteRefusedHandler({});
        QCOMPARE(ReadBytes(home.model.IniPath), QByteArray("[EINSTELLUNGEN]\r\nBand=2\r\n"));
        QCOMPARE(told, 0);
    }

    // ---- Only storable characters reach a file -------------------------------------

    void headerLengthCountsTheBytesWrittenSoTheHeaderComesBackWhole() {
        Home home;
        Model& m = home.model;
        m.Header.MYCALL = QStringLiteral("OE1ABC");
        m.Header.MYKOMMENT = QStringLiteral("Gruß ") + kEmoji + QStringLiteral(" aus Wien\r\n");
        m.Header.MYEXAMDAT = QStringLiteral("01.02.2020");
        const QByteArray bytes = ToCp1252(BuildLogText(m, true, 2026));
        Model again;
        again.SetLocale(AustrianLocale());
        QVERIFY(ParseLog(again, bytes));
        QCOMPARE(again.Header.MYKOMMENT, QStringLiteral("Gruß ? aus Wien\r\n"));
        QCOMPARE(again.Header.MYEXAMDAT, QStringLiteral("01.02.2020"));
    }

    void stationSettingsRefuseACharacterTheFileCannotHold() {
        Home home;
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
        setup::StationForm f = ValidStationForm();
        f.text10 = QStringLiteral("Wien ") + kEmoji;
        setup::Focus focus = setup::Focus::None;
        QVERIFY(!setup::Validate(home.model, d, clock, f, &focus));
        QVERIFY(d.LastBox());
        QVERIFY2(d.LastBox()->text.contains(QStringLiteral("kann nicht gespeichert werden")),
                 qPrintable(d.LastBox()->text));
    }

    void noteWithACharacterOutsideTheCodePageIsRefusedWithABox() {
        EntryBench b;
        EntryFields f = b.Fields(QStringLiteral("OE3ABC"));
        f.notiz = QStringLiteral("nett ") + kEmoji + QStringLiteral(" QSO");
        const EntryResult r = TakeEntry(b.m(), b.dialogs, b.grid, f);
        QCOMPARE(r.outcome, EntryResult::CheckFailed);
        QCOMPARE(int(r.failure.focus), int(EntryFocus::Text8));
        QVERIFY(b.dialogs.LastBox());
        QCOMPARE(b.dialogs.LastBox()->flags, int(Msg::Exclamation));
        QVERIFY2(b.dialogs.LastBox()->text.contains(QStringLiteral("kann nicht gespeichert werden")),
                 qPrintable(b.dialogs.LastBox()->text));
        QVERIFY(b.m().LogRecords.empty());
    }

    // ---- The separators never reach a field ----------------------------------------

    void pilcrowInTheNoteOrOperatorIsRefusedAndNothingIsStored() {
        EntryBench b;
        EntryFields f = b.Fields(QStringLiteral("OE3ABC"));
        f.notiz = QStringLiteral("a\u00b6b\u00d7c");
        QCOMPARE(TakeEntry(b.m(), b.dialogs, b.grid, f).outcome, EntryResult::CheckFailed);
        QVERIFY(b.dialogs.LastBox()->text.contains(QStringLiteral("nicht erlaubt")));
        f.notiz = QStringLiteral("abc");
        f.opCall = QStringLiteral("OE1\u00b6OP");
        QCOMPARE(TakeEntry(b.m(), b.dialogs, b.grid, f).outcome, EntryResult::CheckFailed);
        QVERIFY(b.m().LogRecords.empty());
        f.opCall = QStringLiteral("oe1op ");
        QCOMPARE(TakeEntry(b.m(), b.dialogs, b.grid, f).outcome, EntryResult::Logged);
        Model again;
        again.SetLocale(AustrianLocale());
        QVERIFY(ParseLog(again, ReadBytes(CurrentLogPath(b.m()))));
        QCOMPARE(again.LogRecords.size(), size_t(1));
        QCOMPARE(again.LogRecords[0].Bemerkung, QStringLiteral("abc"));
        QCOMPARE(again.LogRecords[0].Operator, QStringLiteral("OE1OP"));
        QCOMPARE(b.grid.Text(0, 10), QStringLiteral("OE1OP"));
        QCOMPARE(again.LogRecords[0].BandRx, QStringLiteral("0"));
    }

    void entryFieldsDropTheSeparatorKeys_data() {
        QTest::addColumn<int>("field");
        QTest::addColumn<QChar>("key");
        QTest::newRow("pilcrow in the note") << int(EntryField::Text8) << QChar(0x00B6);
        QTest::newRow("times in the note") << int(EntryField::Text8) << QChar(0x00D7);
        QTest::newRow("pilcrow in the operator") << int(EntryField::Combo6) << QChar(0x00B6);
        QTest::newRow("times in the district") << int(EntryField::Combo5) << QChar(0x00D7);
        QTest::newRow("pilcrow in a report") << int(EntryField::Text4) << QChar(0x00B6);
        QTest::newRow("half an emoji in the note") << int(EntryField::Text8) << kEmojiHigh;
    }
    void entryFieldsDropTheSeparatorKeys() {
        QFETCH(int, field);
        QFETCH(QChar, key);
        const KeyAction a = FilterKeyPress(EntryField(field), key, false, QLatin1Char('.'), QLatin1Char(':'));
        QCOMPARE(int(a.kind), int(KeyAction::Drop));
    }

    void headerValueHoldingTagTextFromADamagedFileRebuildsIntoALoadableLog() {
        // Found by the fuzzer: a damaged length lets MYEMAIL swallow the next tag line.
        Home home;
        const QByteArray damaged = Cp(QStringLiteral("[MYCALL:6]OE3XYZ\r\n[MYEMAIL:34]oe3xyz@example.at\r\n"
                                                     "[MYWERTUNGSST:1]1\r\n[ENDHEAD:]\r\n"));
        Model m = home.model;
        QVERIFY(ParseLog(m, damaged));
        QVERIFY(m.Header.MYEMAIL.contains(QStringLiteral("[MYWERTUNGSST:")));
        const QByteArray rebuilt = ToCp1252(BuildLogText(m, true, 2026));
        Model again = home.model;
        QVERIFY(ParseLog(again, rebuilt));
        QCOMPARE(again.Header.MYWERTUNGSST, 1);
        QCOMPARE(again.Header.MYEMAIL, QStringLiteral("oe3xyz@example.at\r\n(MYWERTUNGSST:1"));
    }

    void stationSettingsRefuseTagText_data() {
        QTest::addColumn<QString>("value");
        QTest::newRow("postcode tag") << QStringLiteral("[MYPLZ:4]1234");
        QTest::newRow("end of header") << QStringLiteral("Hallo [ENDHEAD:] Welt");
    }
    void stationSettingsRefuseTagText() {
        QFETCH(QString, value);
        Home home;
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
        setup::StationForm f = ValidStationForm();
        f.text5 = value;
        setup::Focus focus = setup::Focus::None;
        QVERIFY(!setup::Validate(home.model, d, clock, f, &focus));
        QVERIFY(d.LastBox());
        QVERIFY2(d.LastBox()->text.contains(QStringLiteral("nicht erlaubt")), qPrintable(d.LastBox()->text));
    }

    void ordinaryBracketsInStationSettingsStayAllowed() {
        Home home;
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
        setup::StationForm f = ValidStationForm();
        f.text5 = QStringLiteral("Hauptstraße 1 [Hof]");
        setup::Focus focus = setup::Focus::None;
        QVERIFY(setup::Validate(home.model, d, clock, f, &focus));
    }

    // ---- The backup can never hit the live log -------------------------------------

    void logFolderSpelledDifferentlyIsRefusedAsBackupFolder_data() {
        QTest::addColumn<QString>("spelling");
        QTest::newRow("trailing slashes") << QStringLiteral("Logs//");
        QTest::newRow("dot segment") << QStringLiteral("./Logs/.");
        QTest::newRow("dot dot") << QStringLiteral("Tmp/../Logs");
        QTest::newRow("symbolic link") << QStringLiteral("link-to-logs");
        QTest::newRow("case") << QStringLiteral("LOGS");
        QTest::newRow("backup folder") << QStringLiteral("Sicherung/./");
    }
    void logFolderSpelledDifferentlyIsRefusedAsBackupFolder() {
        QFETCH(QString, spelling);
        Home home;
        QVERIFY(QFile::link(home.model.LogFolder, home.model.DataFolder + QStringLiteral("link-to-logs")));
        QVERIFY(setup::IsForbiddenBackupFolder(home.model, home.model.DataFolder + spelling));
        QVERIFY(!setup::IsForbiddenBackupFolder(home.model, home.model.DataFolder + QStringLiteral("Tmp")));
    }

    void handEditedBackupPathAtTheLogFolderIsDroppedAtStart() {
        Home home;
        IniWrite(home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("SichernEA"), 1);
        IniWrite(home.model.IniPath, QStringLiteral("PATHE"), QStringLiteral("SicherungsPath"),
                 home.model.DataFolder + QStringLiteral("./Logs/"));
        const setup::BackupSettings s = setup::ReadBackupSettings(home.model);
        QCOMPARE(s.folder, QString());
    }

    void backupIntoTheLogFolderNeverRenamesTheLiveLog() {
        Home home;
        ScriptedDialogs d;
        const QString live = home.model.LogFolder + QStringLiteral("a.KOLBO");
        WriteBytes(live, QByteArray(100, 'x'));
        const QString other = home.model.DataFolder + QStringLiteral("./Logs/");
        BackupFile(d, live, other + QStringLiteral("a.KOLBO"), other);
        QVERIFY(QFile::exists(live));
        QCOMPARE(ReadBytes(live), QByteArray(100, 'x'));
        QVERIFY(!QFile::exists(live + QStringLiteral(".ALT")));
        QVERIFY(d.LastBox());
        QCOMPARE(d.LastBox()->text, QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"));
    }

    // ---- The atomic replace keeps what the user set --------------------------------

    void atomicReplaceKeepsTheFileMode() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("a.KOLBO"));
        WriteBytes(path, "alt");
        QVERIFY(::chmod(QFile::encodeName(path).constData(), 0640) == 0);
        QCOMPARE(WriteFileAtomic(path, "neu"), QString());
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(path).constData(), &st) == 0);
        QCOMPARE(int(st.st_mode & 07777), 0640);
        QCOMPARE(ReadBytes(path), QByteArray("neu"));
    }

    void atomicReplaceWritesThroughASymbolicLink() {
        QTemporaryDir dir;
        QDir().mkpath(dir.filePath(QStringLiteral("real")));
        const QString target = dir.filePath(QStringLiteral("real/a.KOLBO"));
        const QString link = dir.filePath(QStringLiteral("a.KOLBO"));
        WriteBytes(target, "alt");
        QVERIFY(QFile::link(target, link));
        QCOMPARE(WriteFileAtomic(link, "neu"), QString());
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(ReadBytes(target), QByteArray("neu"));
    }

    void readOnlyLogIsRefusedWithTheErrorBox() {
        EntryBench b;
        const QString path = CurrentLogPath(b.m());
        const QByteArray before = ReadBytes(path);
        QVERIFY(::chmod(QFile::encodeName(path).constData(), 0444) == 0);
        const EntryResult r = TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE3ABC")));
        QCOMPARE(r.outcome, EntryResult::Logged);
        QVERIFY(!r.fileWritten);
        QCOMPARE(ReadBytes(path), before);
        QVERIFY(b.dialogs.LastBox());
        QVERIFY(b.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(b.dialogs.LastBox()->flags, kFehlerFlags);
    }

    // ---- A missing backup folder on an existing drive ------------------------------

    void missingBackupFolderOnAnExistingDriveIsNoValidPath() {
        Home home;
        ScriptedDialogs d;
        const QString live = home.model.LogFolder + QStringLiteral("a.KOLBO");
        WriteBytes(live, QByteArray(100, 'x'));
        const QString folder = home.model.DataFolder + QStringLiteral("gelöscht/");
        BackupFile(d, live, folder + QStringLiteral("a.KOLBO"), folder);
        QCOMPARE(d.boxes.size(), 1);
        QCOMPARE(d.boxes[0].text, QStringLiteral("Kein gültiger Pfad zum Sichern! Sichern abgebrochen!"));
    }

    void ownBackupFolderIsCreatedAgainWhenMissing() {
        Home home;
        ScriptedDialogs d;
        Model& m = home.model;
        m.CurrentLogName = QStringLiteral("a.KOLBO");
        WriteBytes(m.LogFolder + m.CurrentLogName, QByteArray(100, 'x'));
        QVERIFY(QDir(m.BackupFolder).removeRecursively());
        RunDelayedBackup(m, d);
        QVERIFY2(d.boxes.isEmpty(), d.boxes.isEmpty() ? "" : qPrintable(d.boxes[0].text));
        QCOMPARE(ReadBytes(m.BackupFolder + m.CurrentLogName), QByteArray(100, 'x'));
    }

    // ---- Index entries out of range ------------------------------------------------

    void indexEntryOutOfRangeTakesTheErrorPath() {
        EntryBench b;
        QCOMPARE(TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE3ABC"))).outcome,
                 EntryResult::Logged);
        b.m().CallIndex += QStringLiteral("OE1ABC\u00d799\u00b6"); // a damaged entry
        const size_t before = b.m().LogRecords.size();
        b.dialogs.Clear();
        const EntryResult r = TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE1ABC")));
        QVERIFY(r.outcome != EntryResult::Logged);
        QCOMPARE(b.m().LogRecords.size(), before);
        QVERIFY(b.dialogs.LastBox());
        QVERIFY(b.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
    }

    void callHoldingTheTimesSignFromAFileTakesTheErrorPath() {
        EntryBench b;
        // A file whose first contact's call holds "×": its index entry reads as call
        // "OE1AB" with record 7, which does not exist.
        QsoRecord r;
        r.Call = QStringLiteral("OE1AB\u00d77");
        r.Band = 80;
        r.Mode = r.ModeRx = QStringLiteral("SSB");
        r.Datum = QStringLiteral("01.05.2026");
        r.Zeit = QStringLiteral("06:00:00");
        b.m().LogRecords = {r};
        const QByteArray bytes = ToCp1252(BuildLogText(b.m(), true, 2026));
        QVERIFY(ParseLog(b.m(), bytes));
        b.dialogs.Clear();
        const EntryResult res = TakeEntry(b.m(), b.dialogs, b.grid, b.Fields(QStringLiteral("OE1AB")));
        QVERIFY(res.outcome != EntryResult::Logged);
        QVERIFY(b.dialogs.LastBox());
        QVERIFY(b.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
    }

    // ---- A deleted log can be brought back -----------------------------------------

    void logManagerDeleteMovesTheLogToTheTrash() {
        Home home;
        ScriptedDialogs d;
        WriteBytes(home.model.LogFolder + QStringLiteral("weg.KOLBO"), "inhalt");
        d.AnswerMsgBox(Msg::Yes);
        QCOMPARE(setup::DeleteLogs(d, home.model.LogFolder, 1, {QStringLiteral("weg.KOLBO")}), 1);
        QVERIFY(!QFile::exists(home.model.LogFolder + QStringLiteral("weg.KOLBO")));
        QCOMPARE(setup::ListLogs(home.model.LogFolder), QStringList());
        QCOMPARE(ReadBytes(home.Path(QStringLiteral("xdg/Trash/files/weg.KOLBO"))), QByteArray("inhalt"));
    }

    void newLogFlowDeletesTheOldFileIntoTheTrashEvenOnNo() {
        Home home;
        ScriptedDialogs d;
        FixedTimeSource clock(QDateTime(QDate(2026, 3, 10), QTime(9, 30)));
        WriteBytes(home.model.LogFolder + QStringLiteral("ALT.KOLBO"), "altes log");
        setup::StationForm f = ValidStationForm();
        d.AnswerInput(QStringLiteral("ALT"));    // the name of an existing log
        d.AnswerMsgBox(Msg::No);                 // "Überschreiben?" No
        d.AnswerInput(std::optional<QString>()); // the second pass is cancelled
        setup::ChooseFileName(home.model, d, clock, f);
        QVERIFY(!QFile::exists(home.model.LogFolder + QStringLiteral("ALT.KOLBO")));
        QCOMPARE(ReadBytes(home.Path(QStringLiteral("xdg/Trash/files/ALT.KOLBO"))), QByteArray("altes log"));
    }

    void withoutATrashTheDeletedLogGoesToTheBackupFolderDated() {
        Home home;
        WriteBytes(home.Path(QStringLiteral("keine-xdg")), "a file, no folder: no trash below it");
        qputenv("XDG_DATA_HOME", home.Path(QStringLiteral("keine-xdg")).toLocal8Bit());
        ScriptedDialogs d;
        WriteBytes(home.model.LogFolder + QStringLiteral("weg.KOLBO"), "inhalt");
        d.AnswerMsgBox(Msg::Yes);
        QCOMPARE(setup::DeleteLogs(d, home.model.LogFolder, 1, {QStringLiteral("weg.KOLBO")}), 1);
        qputenv("XDG_DATA_HOME", home.Path(QStringLiteral("xdg")).toLocal8Bit());
        QVERIFY(!QFile::exists(home.model.LogFolder + QStringLiteral("weg.KOLBO")));
        const QStringList kept = FilesBelow(home.model.BackupFolder);
        QCOMPARE(kept.size(), 1);
        QVERIFY2(kept[0].startsWith(QStringLiteral("weg.KOLBO.gelöscht-")), qPrintable(kept[0]));
        QVERIFY(QRegularExpression(QStringLiteral("-\\d{8}-\\d{6}$")).match(kept[0]).hasMatch());
        QCOMPARE(ReadBytes(home.model.BackupFolder + kept[0]), QByteArray("inhalt"));
    }
};

QTEST_GUILESS_MAIN(TestDataSafety)
#include "tst_data_safety.moc"
