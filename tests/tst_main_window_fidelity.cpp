// The main window as an operator meets it: the district of a worked station at Enter,
// typing over a filled field reached from the keyboard, the clearing keys while the
// grid has the focus, no contact highlighted after a start or a refill, and the shared
// mechanism that selects a field's text when the keyboard brings the focus.
#include "tst_main_window_support.h"
#include "ui/keyboard_focus.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QVBoxLayout>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// A window over a log of these records, active, so that the focus moves for real.
struct Active : WindowFixture {
    bool Begin(const std::vector<QsoRecord>& records = {}) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        if (!Start()) return false;
        window->activateWindow();
        return QTest::qWaitForWindowActive(window.get());
    }
    QWidget* Focus() const { return QApplication::focusWidget(); }
    LogGridView* GridView() const { return window->GridView(); }
};

} // namespace

class TestMainWindowFidelity : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PinLocale(); }

    void enterLogsAWorkedStationWithTheDistrictOfItsLastRecord() {
        Active f;
        // OE3ABC worked on 80 m from Mödling; now on 40 m it is no dupe.
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("05:10"))}));
        f.Combo(1)->setCurrentIndex(0);
        f.Text(3)->clear();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE3ABC"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
        // The operator puts another district in after the look-up.
        f.Combo(5)->setEditText(QStringLiteral("GZ"));
        QTest::keyClick(f.Combo(5), Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(2));
        QCOMPARE(f.home.model.LogRecords.back().Bezirk, QStringLiteral("MD"));
        QCOMPARE(f.Grid().Text(f.Grid().DataRows() - 1, 7), QStringLiteral("MD"));
        QVERIFY(f.FileBytes().contains("OE3ABC\xb6"
                                       "40\xb6"
                                       "MD"));
    }

    void refusedDupeLeavesTheFilledDistrictShown() {
        Active f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 40, QStringLiteral("MD"), QStringLiteral("05:10"))}));
        f.Combo(1)->setCurrentIndex(0);
        f.Text(3)->clear();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE3ABC"));
        f.Combo(5)->setEditText(QStringLiteral("GZ"));
        f.dialogs.AnswerMsgBox(Msg::No);
        QTest::keyClick(f.Combo(5), Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(1));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
    }

    void spaceIntoAFilledDistrictSelectsItSoTypingReplacesIt() {
        Active f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("05:10"))}));
        QCOMPARE(f.Focus(), f.Text(3));
        QTest::keyClicks(f.Text(3), QStringLiteral("OE3ABC"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
        QTest::keyClick(f.Text(3), Qt::Key_Space);
        QCOMPARE(f.Focus(), f.Combo(5));
        QCOMPARE(f.Combo(5)->lineEdit()->selectedText(), QStringLiteral("MD"));
        QTest::keyClicks(f.Combo(5), QStringLiteral("gz"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("GZ"));
    }

    void shiftSpaceBackIntoAFilledCallSelectsIt() {
        Active f;
        QVERIFY(f.Begin());
        QTest::keyClicks(f.Text(3), QStringLiteral("OE5XYZ"));
        f.Text(4)->setFocus(Qt::MouseFocusReason);
        QCOMPARE(f.Focus(), f.Text(4));
        QTest::keyClick(f.Text(4), Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(f.Focus(), f.Text(3));
        QCOMPARE(f.Text(3)->selectedText(), QStringLiteral("OE5XYZ"));
        QTest::keyClicks(f.Text(3), QStringLiteral("oe6abc"));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE6ABC"));
    }

    void aFieldFocusedForAnotherReasonKeepsItsCaret() {
        Active f;
        QVERIFY(f.Begin());
        QTest::keyClicks(f.Text(3), QStringLiteral("OE5XYZ"));
        f.Text(4)->setFocus(Qt::MouseFocusReason);
        f.Text(3)->setFocus(Qt::MouseFocusReason);
        QVERIFY(!f.Text(3)->hasSelectedText());
    }

    void keyboardFocusSelectsTheTextInAnyWindow() {
        QWidget w;
        auto* layout = new QVBoxLayout(&w);
        auto* first = new QLineEdit(QStringLiteral("eins"), &w);
        auto* edit = new QLineEdit(QStringLiteral("zwei"), &w);
        auto* combo = new QComboBox(&w);
        combo->setEditable(true);
        combo->setEditText(QStringLiteral("drei"));
        layout->addWidget(first);
        layout->addWidget(edit);
        layout->addWidget(combo);
        SelectAllOnKeyboardFocus(&w);
        w.show();
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        first->setFocus(Qt::MouseFocusReason);
        FocusFromKeyboard(combo);
        QCOMPARE(combo->lineEdit()->selectedText(), QStringLiteral("drei"));
        FocusFromKeyboard(edit);
        QCOMPARE(edit->selectedText(), QStringLiteral("zwei"));
        QTest::keyClick(edit, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), combo);
        QCOMPARE(combo->lineEdit()->selectedText(), QStringLiteral("drei"));
        QTest::keyClicks(combo, QStringLiteral("vier"));
        QCOMPARE(combo->currentText(), QStringLiteral("vier"));
    }

    void clearingKeysActWhileTheGridHasTheFocus_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Ctrl+W") << int(Qt::Key_W) << int(Qt::ControlModifier);
        QTest::newRow("Alt+W") << int(Qt::Key_W) << int(Qt::AltModifier);
        QTest::newRow("Ctrl+F10") << int(Qt::Key_F10) << int(Qt::ControlModifier);
        QTest::newRow("Alt+F10") << int(Qt::Key_F10) << int(Qt::AltModifier);
    }
    void clearingKeysActWhileTheGridHasTheFocus() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Active f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("05:10"))}));
        QTest::keyClicks(f.Text(3), QStringLiteral("OE5XYZ"));
        f.Combo(5)->setEditText(QStringLiteral("GZ"));
        f.GridView()->setFocus(Qt::MouseFocusReason);
        QCOMPARE(f.Focus(), f.GridView());
        QTest::keyClick(f.GridView(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(f.Text(3)->text(), QString());
        QCOMPARE(f.Combo(5)->currentText(), QString());
        QCOMPARE(f.Focus(), f.Text(3));
    }

    void noContactIsHighlightedAfterTheStart() {
        Active f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("05:10")),
             MakeRecord(QStringLiteral("OE5XYZ"), 80, QStringLiteral("GZ"), QStringLiteral("05:20"))}));
        QVERIFY(f.GridView()->selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(!f.GridView()->currentIndex().isValid());
    }

    void noContactIsHighlightedAfterARefill() {
        Active f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("05:10")),
             MakeRecord(QStringLiteral("OE5XYZ"), 80, QStringLiteral("GZ"), QStringLiteral("05:20"))}));
        f.GridView()->selectRow(1);
        f.Grid().Clear();
        f.window->DatenInGrid1Neu();
        f.window->SetGrid1();
        QCOMPARE(f.Grid().DataRows(), 2);
        QVERIFY(f.GridView()->selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(!f.GridView()->currentIndex().isValid());
    }
};

QTEST_MAIN(TestMainWindowFidelity)
#include "tst_main_window_fidelity.moc"
