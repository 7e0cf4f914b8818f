// Corrections without the mouse, and the stranded dupes: the grid's Menu key and
// Shift+F10 open its pop-up at the selected row, Enter and F2 open "Bearbeiten", Entf
// runs "Löschen" with its question; "Extras → Dupes prüfen…" finds the dupes that no
// normal contact is left for and makes them normal on the operator's word.
#include "corrections/delete_entry.h"
#include "corrections/stranded_dupes.h"
#include "corrections_support.h"

#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

template <class W> W* In(QDialog& d, const char* name) {
    return d.findChild<W*>(QString::fromLatin1(name));
}

std::vector<QsoRecord> Morning() {
    return {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("06:30:00")),
            MakeRecord(QStringLiteral("OE1CCC"), 80, QStringLiteral("WI"), QStringLiteral("07:00:00"))};
}

// Selects a data row with a left click, as the operator does before a key.
void SelectRow(CorrectionsFixture& f, int row) {
    LogGridView* v = f.View();
    v->scrollTo(f.Grid().index(row, 0));
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, v->visualRect(f.Grid().index(row, 4)).center());
    QCOMPARE(v->currentIndex().row(), row);
}

// The call the edit window shows when a key opens it; empty when none opened.
QString EditedCall(CorrectionsFixture& f, Qt::Key key) {
    QString call;
    setup::PushModalDriver([&call](QDialog& d) {
        QCOMPARE(d.objectName(), QStringLiteral("Bearbeiten"));
        call = In<QLineEdit>(d, "Text3")->text();
    });
    QTest::keyClick(f.View(), key);
    setup::ClearModalDrivers();
    return call;
}

} // namespace

class TestCorrectionsKeyboard : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    // The Menu key and Shift+F10 on the grid open its pop-up beside the selected row;
    // its "Bearbeiten" then works on that row.
    void menuKeyAndShiftF10OpenThePopupAtTheSelectedRow_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Menu") << int(Qt::Key_Menu) << int(Qt::NoModifier);
        QTest::newRow("Shift+F10") << int(Qt::Key_F10) << int(Qt::ShiftModifier);
    }
    void menuKeyAndShiftF10OpenThePopupAtTheSelectedRow() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        SelectRow(f, 1);
        QMenu* menu = f.window->PopupMenu();
        QVERIFY(!menu->isVisible());
        QTest::keyClick(f.View(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTRY_VERIFY(menu->isVisible());
        const QRect row = QRect(f.View()->viewport()->mapToGlobal(QPoint(0, 0)), f.View()->viewport()->size())
                              .intersected(QRect(f.View()->viewport()->mapToGlobal(
                                                     f.View()->visualRect(f.Grid().index(1, 4)).topLeft()),
                                                 f.View()->visualRect(f.Grid().index(1, 4)).size()));
        QVERIFY2(qAbs(menu->pos().y() - row.bottom()) <= row.height() + 2,
                 qPrintable(QStringLiteral("menu at %1, row at %2").arg(menu->pos().y()).arg(row.bottom())));
        QString call;
        setup::PushModalDriver([&call](QDialog& d) { call = In<QLineEdit>(d, "Text3")->text(); });
        menu->hide();
        f.window->Action(QStringLiteral("MnVerstecktBearbeiten"))->trigger();
        QCOMPARE(call, QStringLiteral("OE6BBB"));
    }

    // With no row selected the keys open nothing.
    void keysWithoutASelectedRowDoNothing() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        f.View()->setFocus();
        QCOMPARE(f.View()->currentIndex().row(), -1);
        QTest::keyClick(f.View(), Qt::Key_Menu);
        QVERIFY(!f.window->PopupMenu()->isVisible());
        QCOMPARE(EditedCall(f, Qt::Key_Return), QString());
        QTest::keyClick(f.View(), Qt::Key_Delete);
        QVERIFY(f.dialogs.boxes.isEmpty());
        QCOMPARE(f.Grid().DataRows(), 3);
    }

    // Enter, the keypad's Enter and F2 open "Bearbeiten" on the selected row.
    void enterAndF2OpenBearbeitenForTheSelectedRow_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("Enter") << int(Qt::Key_Return);
        QTest::newRow("keypad Enter") << int(Qt::Key_Enter);
        QTest::newRow("F2") << int(Qt::Key_F2);
    }
    void enterAndF2OpenBearbeitenForTheSelectedRow() {
        QFETCH(int, key);
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        SelectRow(f, 2);
        QCOMPARE(EditedCall(f, Qt::Key(key)), QStringLiteral("OE1CCC"));
        // Arrow keys move the selection; the key follows it.
        QTest::keyClick(f.View(), Qt::Key_Up);
        QCOMPARE(EditedCall(f, Qt::Key(key)), QStringLiteral("OE6BBB"));
    }

    // Entf asks the question of "Löschen"; No keeps the row, Yes deletes it.
    void entfRunsLoeschenWithItsQuestion() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(Morning()));
        SelectRow(f, 1);
        f.dialogs.AnswerMsgBox(Msg::No);
        QTest::keyClick(f.View(), Qt::Key_Delete);
        QCOMPARE(f.dialogs.boxes.size(), 1);
        QCOMPARE(f.dialogs.LastBox()->text, corrections::kMsgLoeschenFrage);
        QCOMPARE(f.dialogs.LastBox()->flags, 292);
        QCOMPARE(f.Grid().DataRows(), 3);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        QTest::keyClick(f.View(), Qt::Key_Delete);
        QCOMPARE(f.Grid().DataRows(), 2);
        QVERIFY(!f.FileBytes().contains("OE6BBB"));
        QCOMPARE(f.home.model.LogRecords[1].Status, int(Status::Deleted));
    }

    // A dupe whose normal contact went to another band by an edit is found; the
    // operator's Yes makes it a normal contact, in the grid, the counters and the file.
    void dupesPruefenMakesAStrandedDupeNormal() {
        CorrectionsFixture f;
        std::vector<QsoRecord> log = Morning();
        log.push_back(MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"),
                                 QStringLiteral("06:10:00"), QStringLiteral("SSB"), Status::Dupe));
        log.push_back(MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"),
                                 QStringLiteral("06:20:00"), QStringLiteral("SSB"), Status::Dupe));
        log.push_back(MakeRecord(QStringLiteral("OE1CCC"), 80, QStringLiteral("WI"),
                                 QStringLiteral("07:10:00"), QStringLiteral("SSB"), Status::Dupe));
        QVERIFY(f.StartWith(log));
        Model& m = f.home.model;
        QAction* entry = f.window->Action(QStringLiteral("MnDupesPruefen"));
        QVERIFY(entry && entry->isEnabled());
        // The last entry of Extras.
        QMenu* extras = f.window->menuBar()->findChild<QMenu*>(QStringLiteral("MnLog"));
        QVERIFY(extras);
        QCOMPARE(extras->actions().last(), entry);
        QCOMPARE(entry->text(), QStringLiteral("&Dupes prüfen…"));

        // Nothing stranded yet.
        entry->trigger();
        QCOMPARE(f.dialogs.LastBox()->text, corrections::kMsgKeineStrandedDupes);
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Information));

        // OE3AAA's normal contact moves to 40 m by the edit window: its two dupes stay dupes.
        setup::PushModalDriver([](QDialog& d) {
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("4"));
            QTest::mouseClick(In<QPushButton>(d, "Command4"), Qt::LeftButton);
        });
        SelectRow(f, f.RowOf(0));
        QTest::keyClick(f.View(), Qt::Key_Return);
        QCOMPARE(m.LogRecords[0].Band, 40);
        QCOMPARE(m.DupeCount, 3);
        const double qsos = m.QsoCount;
        const int md80 = m.BezirkRecords[size_t(BezirkNumber(m, QStringLiteral("MD")))].Anz80;

        // Declined: nothing changes.
        f.dialogs.boxes.clear();
        f.dialogs.AnswerMsgBox(Msg::No);
        const QByteArray before = f.FileBytes();
        entry->trigger();
        QCOMPARE(f.dialogs.boxes.size(), 1);
        QCOMPARE(f.dialogs.LastBox()->flags, corrections::kStrandedFrageFlags);
        const QString question = f.dialogs.LastBox()->text;
        QVERIFY(question.contains(QStringLiteral("01.05.2026  06:10:00  80m  SSB  OE3AAA  MD")));
        QVERIFY(!question.contains(QStringLiteral("06:20:00"))); // a dupe of the first once it is normal
        QVERIFY(!question.contains(QStringLiteral("OE1CCC")));   // its normal contact is still there
        QVERIFY(question.endsWith(corrections::kMsgStrandedFrage));
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(m.DupeCount, 3);

        // Yes: the earlier dupe is normal, the later one stays its dupe.
        f.dialogs.AnswerMsgBox(Msg::Yes);
        entry->trigger();
        QCOMPARE(f.dialogs.LastBox()->text, corrections::StrandedDoneText(1));
        QCOMPARE(m.LogRecords[3].Status, int(Status::Normal));
        QCOMPARE(m.LogRecords[4].Status, int(Status::Dupe));
        QCOMPARE(m.DupeCount, 2);
        QCOMPARE(m.QsoCount, qsos + 1);
        QCOMPARE(m.BezirkRecords[size_t(BezirkNumber(m, QStringLiteral("MD")))].Anz80, md80 + 1);
        QCOMPARE(f.Grid().Text(f.RowOf(3), kGridColDupe), QString());
        QVERIFY(f.IsDupeRow(f.RowOf(4)));
        QVERIFY(f.window->FileUpToDate());
        // The file read back gives the same log and counters.
        ReloadEqualsLive(m, f.LogPath());
        QCOMPARE(Reloaded(m, f.LogPath()).LogRecords[3].Status, int(Status::Normal));
        // Checked again: nothing left.
        entry->trigger();
        QCOMPARE(f.dialogs.LastBox()->text, corrections::kMsgKeineStrandedDupes);
    }

    // The command line lists and changes the same contacts with the same functions.
    void theCommandLineListsAndChangesStrandedDupes() {
        Home home;
        WriteBytes(home.model.DataFolder + QStringLiteral("bez_koord.txt"), SmallDistrictTable());
        Model m;
        m.SetLocale(AustrianLocale());
        m.LogFolder = home.model.LogFolder;
        m.Header = DefaultHeader(m);
        m.Header.MYCALL = QStringLiteral("OE1XYZ");
        m.Header.MYBZ = QStringLiteral("WI");
        m.LogRecords = {
            MakeRecord(QStringLiteral("OE3AAA"), 40, QStringLiteral("MD"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:10:00"),
                       QStringLiteral("SSB"), Status::Dupe)};
        m.CurrentLogName = QStringLiteral("cli.KOLBO");
        BuildLogText(m, true, 2026);
        QVERIFY(WriteLogFile(m).isEmpty());
        const QString path = m.LogFolder + m.CurrentLogName;
        const CliResult list = RunCli(home.model.DataFolder, {QStringLiteral("dupes"), path});
        QCOMPARE(list.code, 0);
        QCOMPARE(QString::fromLocal8Bit(list.out),
                 QStringLiteral("01.05.2026  06:10:00  80m  SSB  OE3AAA  MD\n"));
        const CliResult change =
            RunCli(home.model.DataFolder, {QStringLiteral("dupes"), path, QStringLiteral("--umwandeln")});
        QCOMPARE(change.code, 0);
        Model back;
        back.SetLocale(AustrianLocale());
        ScriptedDialogs d;
        QVERIFY(LoadLog(back, d, path) == 1);
        QCOMPARE(back.LogRecords[1].Status, int(Status::Normal));
        QCOMPARE(RunCli(home.model.DataFolder, {QStringLiteral("dupes"), path}).out, QByteArray());
    }
};

QTEST_MAIN(TestCorrectionsKeyboard)
#include "tst_corrections_keyboard.moc"
