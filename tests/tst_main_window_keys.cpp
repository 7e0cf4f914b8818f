// The entry fields at the keyboard on the real main window: key filters, Space, Tab
// and Enter, the clearing keys, focus colours, the call field's look-ups, the dupe
// warning, the combo boxes, QSL, operators, the entry menu entries, and a session of
// twenty contacts typed without the mouse.
#include "entry/entry_colours.h"
#include "entry/entry_keys.h"
#include "tst_main_window_support.h"
#include "ui/back_colour.h"

#include <QApplication>
#include <QPushButton>
#include <QSignalSpy>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

const QByteArray kCallList =
    "OE1ABC;Anna Berger\r\nOE5XYZ;Max Muster\r\nOE/DL1AA;Gast\r\nOE9ZZZ;Zita Zangerl\r\n";

// A window over a log of these records, active, with the call list in the data folder.
struct Keys : WindowFixture {
    bool Begin(const std::vector<QsoRecord>& records = {}) {
        WriteBytes(home.model.DataFolder + QStringLiteral("OeCallList.txt"), kCallList);
        WriteLog(QStringLiteral("test.KOLBO"), records);
        if (!Start()) return false;
        window->activateWindow();
        return QTest::qWaitForWindowActive(window.get());
    }
    QWidget* Focus() const { return QApplication::focusWidget(); }
    void Press(Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) { QTest::keyClick(Focus(), k, m); }
    void Typed(const QString& s) { QTest::keyClicks(Focus(), s); }
    void FocusOn(QWidget* w) {
        w->setFocus(Qt::OtherFocusReason);
        QCOMPARE(Focus(), w);
    }
    QPushButton* Dupe() const { return Child<QPushButton>("DUPCommand1"); }
    QLabel* Label10() const { return Child<QLabel>("Label10"); }
    QCheckBox* Check1() const { return Child<QCheckBox>("Check1"); }
    QColor Base(QWidget* w) const { return w->palette().color(QPalette::Base); }
};

const QColor kCyan = ColourOf(EntryColour::Cyan);
const QColor kWhite = ColourOf(EntryColour::White);
const QColor kGrey = ColourOf(EntryColour::Grey);
const QColor kGreen = ColourOf(EntryColour::Green);

} // namespace

class TestMainWindowKeys : public QObject {
    Q_OBJECT

private slots:
    void spaceInTheCallMovesToTheDistrictWithoutABlank() {
        Keys f;
        QVERIFY(f.Begin());
        QCOMPARE(f.Focus(), f.Text(3));
        f.Typed(QStringLiteral("OE3ABC"));
        f.Press(Qt::Key_Space);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABC"));
        QCOMPARE(f.Focus(), f.Combo(5));
        // From the district Space goes back to the call, and Shift+Space as well.
        f.Press(Qt::Key_Space);
        QCOMPARE(f.Focus(), f.Text(3));
        f.Press(Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(f.Focus(), f.Combo(5));
        f.Press(Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(f.Focus(), f.Text(3));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABC"));
        QVERIFY(f.Combo(5)->currentText().isEmpty());
    }

    void spaceAndShiftSpaceFromTheOtherFields() {
        Keys f;
        QVERIFY(f.Begin());
        f.window->MnEingabe();
        struct Jump {
            QWidget* from;
            QWidget* space;
            QWidget* shiftSpace;
        };
        const Jump jumps[] = {
            {f.Text(1), f.Text(3), f.Combo(5)},  {f.Text(2), f.Text(3), f.Combo(5)},
            {f.Combo(1), f.Text(3), f.Combo(5)}, {f.Combo(2), f.Text(3), f.Combo(5)},
            {f.Check1(), f.Text(3), f.Combo(5)}, {f.Text(4), f.Combo(5), f.Text(3)},
            {f.Text(5), f.Combo(5), f.Text(3)},  {f.Combo(5), f.Text(3), f.Text(3)},
        };
        for (const Jump& j : jumps) {
            f.FocusOn(j.from);
            f.Press(Qt::Key_Space);
            QCOMPARE(f.Focus(), j.space);
            f.FocusOn(j.from);
            f.Press(Qt::Key_Space, Qt::ShiftModifier);
            QCOMPARE(f.Focus(), j.shiftSpace);
        }
        // Space never ticks the QSL box.
        QVERIFY(!f.Check1()->isChecked());
        QCOMPARE(f.Text(4)->text(), QStringLiteral("59"));
        // In the note and the operator field Space types.
        f.FocusOn(f.Text(8));
        f.Typed(QStringLiteral("a b"));
        f.Press(Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(f.Text(8)->text(), QStringLiteral("a b "));
        QCOMPARE(f.Focus(), f.Text(8));
        f.FocusOn(f.Combo(6));
        f.Combo(6)->clearEditText();
        f.Typed(QStringLiteral("a b"));
        QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("A B"));
    }

    void shiftDownFollowsTheShiftKey() {
        Keys f;
        QVERIFY(f.Begin());
        QTest::keyPress(f.Text(3), Qt::Key_Shift, Qt::ShiftModifier);
        QVERIFY(f.window->Shift.ShiftDown);
        QTest::keyRelease(f.Text(3), Qt::Key_Shift);
        QVERIFY(!f.window->Shift.ShiftDown);
        // Ctrl is no Shift state of 1.
        QTest::keyPress(f.Text(3), Qt::Key_Control, Qt::ControlModifier);
        QVERIFY(!f.window->Shift.ShiftDown);
        QTest::keyRelease(f.Text(3), Qt::Key_Control);
    }

    void callFieldKeepsItsKeysAndUpperCases() {
        Keys f;
        QVERIFY(f.Begin());
        f.Typed(QStringLiteral("oe5xyz-p"));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE5XYZ/P"));
        // Dropped: punctuation, umlauts, a blank typed in the text.
        f.Typed(QStringLiteral(".,#+*_=?"));
        f.Press(Qt::Key_Adiaeresis);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE5XYZ/P"));
        f.Press(Qt::Key_Backspace);
        f.Press(Qt::Key_Backspace);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE5XYZ"));
        // Ctrl+C copies (kept), Ctrl+V pastes nothing (dropped).
        f.Text(3)->selectAll();
        f.Press(Qt::Key_C, Qt::ControlModifier);
        f.Text(3)->end(false);
        f.Press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE5XYZ"));
        // Ctrl+X cuts.
        f.Text(3)->selectAll();
        f.Press(Qt::Key_X, Qt::ControlModifier);
        QVERIFY(f.Text(3)->text().isEmpty());
    }

    void dateAndTimeKeepOnlyDigitsAndTheirSeparator() {
        Keys f;
        QVERIFY(f.Begin());
        QVERIFY(f.window->Timer1().isActive());
        f.FocusOn(f.Text(2));
        f.Text(2)->clear();
        f.Typed(QStringLiteral("a"));
        // Any key stops the running time, even one that is dropped.
        QVERIFY(!f.window->Timer1().isActive());
        f.Typed(QStringLiteral("12.3:4x5"));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("123:45"));
        f.FocusOn(f.Text(1));
        f.Text(1)->clear();
        f.Typed(QStringLiteral("1:2.05.2026/"));
        QCOMPARE(f.Text(1)->text(), QStringLiteral("12.05.2026"));
        // The reset of the entry starts the clock again.
        f.Press(Qt::Key_W, Qt::ControlModifier);
        QVERIFY(f.window->Timer1().isActive());
    }

    void ctrlOrAltWithWOrF10ClearsTheEntry() {
        Keys f;
        QVERIFY(f.Begin());
        const struct {
            Qt::Key key;
            Qt::KeyboardModifiers mods;
        } clearing[] = {{Qt::Key_W, Qt::ControlModifier},
                        {Qt::Key_W, Qt::AltModifier},
                        {Qt::Key_F10, Qt::ControlModifier},
                        {Qt::Key_F10, Qt::AltModifier},
                        {Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier}};
        for (const auto& c : clearing) {
            f.FocusOn(f.Text(3));
            f.Typed(QStringLiteral("OE3ABC"));
            f.FocusOn(f.Text(4));
            f.Text(4)->setText(QStringLiteral("57"));
            f.Combo(5)->setEditText(QStringLiteral("MD"));
            f.Press(c.key, c.mods);
            QVERIFY(f.Text(3)->text().isEmpty());
            QCOMPARE(f.Text(4)->text(), QStringLiteral("59"));
            QVERIFY(f.Combo(5)->currentText().isEmpty());
            QCOMPARE(f.Focus(), f.Text(3));
        }
        // A plain W types, and so does Shift+W.
        f.Press(Qt::Key_W);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("W"));
        f.Press(Qt::Key_W, Qt::ShiftModifier);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("WW"));
        f.Press(Qt::Key_F10);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("WW"));
        QVERIFY(f.home.model.LogRecords.empty());
    }

    void enterLogsFromEveryFieldButTheOperator() {
        Keys f;
        QVERIFY(f.Begin());
        f.window->MnEingabe();
        const QList<QWidget*> fields = {f.Text(1), f.Text(2), f.Combo(1), f.Combo(2), f.Text(3),
                                        f.Text(4), f.Text(5), f.Combo(5), f.Check1(), f.Text(8)};
        int n = 0;
        for (QWidget* w : fields) {
            f.Combo(1)->setCurrentIndex(1);
            f.Text(3)->setText(QStringLiteral("OE3A%1").arg(QChar(u'A' + n)));
            f.Combo(5)->setEditText(QStringLiteral("MD"));
            f.FocusOn(w);
            f.Press(Qt::Key_Return);
            ++n;
            QCOMPARE(f.home.model.LogRecords.size(), size_t(n));
            QCOMPARE(f.Focus(), f.Text(3));
        }
        // The keypad's Enter is Enter too.
        f.Text(3)->setText(QStringLiteral("OE3ZZZ"));
        f.Combo(5)->setEditText(QStringLiteral("WI"));
        f.Press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(n + 1));
        // Enter in the operator field is the operator's own.
        f.Text(3)->setText(QStringLiteral("OE3YYY"));
        f.Combo(5)->setEditText(QStringLiteral("WI"));
        f.FocusOn(f.Combo(6));
        f.Press(Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(n + 1));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3YYY"));
    }

    void focusPaintsCyanAndLeavingWhite() {
        Keys f;
        QVERIFY(f.Begin());
        QCOMPARE(f.Base(f.Text(3)), kCyan);
        f.Press(Qt::Key_Tab);
        QCOMPARE(f.Focus(), f.Text(4));
        QCOMPARE(f.Base(f.Text(4)), kCyan);
        QCOMPARE(f.Base(f.Text(3)), kWhite);
        for (QWidget* w :
             QList<QWidget*>{f.Text(1), f.Text(2), f.Combo(1), f.Combo(2), f.Text(5), f.Combo(5)}) {
            f.FocusOn(w);
            QCOMPARE(f.Base(w), kCyan);
            f.FocusOn(f.Text(4));
            QCOMPARE(f.Base(w), kWhite);
        }
        // Locked date and time stay grey with the focus; manual time is green.
        f.window->MnDateTimeLock();
        QCOMPARE(f.Base(f.Text(1)), kGrey);
        f.FocusOn(f.Text(2));
        QCOMPARE(f.Base(f.Text(2)), kGrey);
        f.FocusOn(f.Text(4));
        QCOMPARE(f.Base(f.Text(2)), kGrey);
        f.window->MnZeitDatumLock();
        QCOMPARE(f.Base(f.Text(2)), kGreen);
        f.FocusOn(f.Text(2));
        QCOMPARE(f.Base(f.Text(2)), kGreen);
        f.FocusOn(f.Text(1));
        QCOMPARE(f.Base(f.Text(1)), kGreen);
        QCOMPARE(f.Base(f.Text(2)), kGreen);
    }

    void reportsSelectTheirTextOnFocus() {
        Keys f;
        QVERIFY(f.Begin());
        f.FocusOn(f.Text(4));
        QCOMPARE(f.Text(4)->selectedText(), QStringLiteral("59"));
        f.Typed(QStringLiteral("57"));
        QCOMPARE(f.Text(4)->text(), QStringLiteral("57"));
        f.Press(Qt::Key_Tab);
        QCOMPARE(f.Focus(), f.Text(5));
        QCOMPARE(f.Text(5)->selectedText(), QStringLiteral("59"));
    }

    void tabFromTheDistrictFollowsTheLock_data() {
        QTest::addColumn<bool>("locked");
        QTest::addColumn<bool>("extended");
        QTest::addColumn<QString>("fromDistrict");
        QTest::addColumn<QString>("fromNote");
        QTest::newRow("free") << false << false << "Text2"
                              << "";
        QTest::newRow("locked") << true << false << "Combo1"
                                << "";
        QTest::newRow("free, extended") << false << true << "Text1"
                                        << "Text2";
        QTest::newRow("locked, extended") << true << true << "Check1"
                                          << "Combo1";
    }
    void tabFromTheDistrictFollowsTheLock() {
        QFETCH(bool, locked);
        QFETCH(bool, extended);
        QFETCH(QString, fromDistrict);
        QFETCH(QString, fromNote);
        Keys f;
        QVERIFY(f.Begin());
        if (locked) f.window->MnDateTimeLock();
        if (extended) f.window->MnEingabe();
        f.FocusOn(f.Combo(5));
        f.Press(Qt::Key_Tab);
        QCOMPARE(f.Focus()->objectName(), fromDistrict);
        if (extended) {
            f.FocusOn(f.Text(8));
            f.Press(Qt::Key_Tab);
            QCOMPARE(f.Focus()->objectName(), fromNote);
        }
        // Shift+Tab keeps the usual order backwards.
        f.FocusOn(f.Combo(5));
        f.Press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(f.Focus(), f.Text(5));
        // Shift+Tab from the time goes to the note while it is shown.
        f.FocusOn(f.Text(2));
        f.Press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(f.Focus(), extended ? static_cast<QWidget*>(f.Text(8)) : f.Text(1));
    }

    void typedTimeIsNormalisedWhenLeaving() {
        Keys f;
        QVERIFY(f.Begin());
        f.FocusOn(f.Text(2));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
        // Leaving without typing changes nothing.
        f.Press(Qt::Key_Tab);
        QCOMPARE(f.Text(2)->text(), QStringLiteral("06:00"));
        f.FocusOn(f.Text(2));
        f.Text(2)->selectAll();
        f.Typed(QStringLiteral("930"));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("930"));
        f.Press(Qt::Key_Tab);
        QCOMPARE(f.Focus(), f.Combo(1));
        QCOMPARE(f.Text(2)->text(), QStringLiteral("09:30"));
        QCOMPARE(f.Base(f.Text(2)), kWhite);
        // The typed time stands until the entry is taken: the clock does not run.
        QVERIFY(!f.window->Timer1().isActive());
        f.clock.Set(QDateTime(kContestMorning.date(), QTime(6, 5)));
        QTest::qWait(3 * kTimer1IntervalMs);
        QCOMPARE(f.Text(2)->text(), QStringLiteral("09:30"));
        f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
        QCOMPARE(f.home.model.LogRecords.back().Zeit, QStringLiteral("09:30:00"));
    }

    void leavingTheCallFillsTheDistrictOfAWorkedStation() {
        Keys f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE1"), 40, QStringLiteral("GZ"), QStringLiteral("05:10:00"))}));
        f.Combo(1)->setCurrentIndex(1);
        f.Typed(QStringLiteral("OE1"));
        QVERIFY(f.Combo(5)->currentText().isEmpty()); // three characters: no look-up yet
        f.Press(Qt::Key_Space);
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("GZ"));
        QCOMPARE(f.Base(f.Text(3)), kWhite);
        QVERIFY(!f.Dupe()->isEnabled());
    }

    void callListNamesTheStation() {
        Keys f;
        QVERIFY(f.Begin());
        f.Typed(QStringLiteral("OE5"));
        QVERIFY(f.Label10()->isHidden());
        f.Typed(QStringLiteral("XYZ"));
        QVERIFY(!f.Label10()->isHidden());
        QCOMPARE(f.Label10()->text(), QStringLiteral("OE5XYZ Max Muster"));
        // A portable suffix ends the call for the list.
        f.Typed(QStringLiteral("-p"));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE5XYZ/P"));
        QCOMPARE(f.Label10()->text(), QStringLiteral("OE5XYZ Max Muster"));
        QVERIFY(!f.Label10()->isHidden());
        // A "/" within the first three characters is part of the call.
        f.Press(Qt::Key_W, Qt::ControlModifier);
        f.Typed(QStringLiteral("OE/DL1AA"));
        QCOMPARE(f.Label10()->text(), QStringLiteral("OE/DL1AA Gast"));
        // A call that only stands inside a line of the list is no hit.
        f.Press(Qt::Key_W, Qt::ControlModifier);
        QVERIFY(f.Label10()->isHidden());
        f.Typed(QStringLiteral("E1ABC"));
        QVERIFY(f.Label10()->isHidden());
        f.Press(Qt::Key_Backspace);
        QVERIFY(f.Label10()->isHidden());
    }

    void dupeWarningAppearsAtTheFourthCharacterBlinksAndIsDismissed() {
        Keys f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE5X"), 80, QStringLiteral("MD"), QStringLiteral("05:30:00"))}));
        f.Combo(1)->setCurrentIndex(1);
        f.Typed(QStringLiteral("OE5"));
        QVERIFY(!f.Dupe()->isEnabled());
        QVERIFY(f.Label13()->text().isEmpty());
        f.Typed(QStringLiteral("X"));
        QVERIFY(f.Dupe()->isEnabled());
        QCOMPARE(f.Label13()->text(), QStringLiteral("Station bereits um 05:30 Uhr gearbeitet!"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
        QVERIFY(f.window->Timer2().isActive());
        QCOMPARE(f.window->Timer2().interval(), kTimer2IntervalMs);
        const QColor red = ColourOf(EntryColour::Red);
        QCOMPARE(f.Dupe()->palette().color(QPalette::Button), red);
        // It blinks by itself: red, button face, red.
        QTRY_VERIFY_WITH_TIMEOUT(f.Dupe()->palette().color(QPalette::Button) != red, 3000);
        QCOMPARE(BackColourOf(f.Dupe()), EntryColour::ButtonFace);
        QTRY_COMPARE_WITH_TIMEOUT(f.Dupe()->palette().color(QPalette::Button), red, 3000);
        // The next key clears the message line; the button stays lit.
        f.Typed(QStringLiteral("Y"));
        QVERIFY(f.Label13()->text().isEmpty());
        QVERIFY(f.Dupe()->isEnabled());
        f.Press(Qt::Key_Backspace);
        QVERIFY(!f.Label13()->text().isEmpty());
        // A click on the message line dismisses it and empties the district.
        f.FocusOn(f.Text(4));
        QTest::mouseClick(f.Label13(), Qt::LeftButton);
        QVERIFY(!f.Dupe()->isEnabled());
        QVERIFY(!f.window->Timer2().isActive());
        QVERIFY(f.Combo(5)->currentText().isEmpty());
        QCOMPARE(f.Focus(), f.Text(3));
        // Without a lit button a click changes nothing.
        f.Combo(5)->setEditText(QStringLiteral("WI"));
        QTest::mouseClick(f.Label13(), Qt::LeftButton);
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("WI"));
        // On another band the same call is no dupe.
        f.Press(Qt::Key_W, Qt::ControlModifier);
        f.Combo(1)->setCurrentIndex(0);
        f.Typed(QStringLiteral("OE5X"));
        QVERIFY(!f.Dupe()->isEnabled());
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
    }

    void dupeButtonClickStopsTheBlinking() {
        Keys f;
        QVERIFY(f.Begin(
            {MakeRecord(QStringLiteral("OE5XYZ"), 80, QStringLiteral("MD"), QStringLiteral("05:30:00"))}));
        f.Combo(1)->setCurrentIndex(1);
        f.Typed(QStringLiteral("OE5XYZ"));
        QVERIFY(f.Dupe()->isEnabled());
        f.FocusOn(f.Text(5));
        QTest::mouseClick(f.Dupe(), Qt::LeftButton);
        QVERIFY(!f.Dupe()->isEnabled());
        QVERIFY(!f.window->Timer2().isActive());
        QCOMPARE(f.Focus(), f.Text(3));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD")); // the button leaves the district
    }

    void districtAndComboLimits() {
        Keys f;
        QVERIFY(f.Begin());
        f.FocusOn(f.Combo(5));
        f.Typed(QStringLiteral("mdx"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
        QCOMPARE(f.Combo(5)->lineEdit()->maxLength(), 2);
        f.Combo(5)->setEditText(QStringLiteral("GRAZ"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("GR"));
        f.Combo(6)->setEditText(QStringLiteral("OE1ABCDEFGHIJKLMN"));
        QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("OE1ABCDEFGHIJ"));
        QCOMPARE(f.Combo(6)->lineEdit()->maxLength(), 13);
    }

    void qslBoxShowsItsValue() {
        Keys f;
        QVERIFY(f.Begin());
        f.window->MnEingabe();
        QCOMPARE(f.Check1()->text(), QStringLiteral("QSL NEIN"));
        QCOMPARE(BackColourOf(f.Check1()), EntryColour::ButtonFace);
        QTest::mouseClick(f.Check1(), Qt::LeftButton);
        QVERIFY(f.Check1()->isChecked());
        QCOMPARE(f.Check1()->text(), QStringLiteral("QSL JA"));
        QCOMPARE(BackColourOf(f.Check1()), EntryColour::Highlight);
        QCOMPARE(f.Check1()->palette().color(QPalette::Window), ColourOf(EntryColour::Highlight));
        f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
        QCOMPARE(f.home.model.LogRecords.back().Qsl, 1);
        QTest::mouseClick(f.Check1(), Qt::LeftButton);
        QCOMPARE(f.Check1()->text(), QStringLiteral("QSL NEIN"));
        QCOMPARE(f.Check1()->palette().color(QPalette::Window), ColourOf(EntryColour::ButtonFace));
    }

    void operatorListIsMostRecentFirstOfTen() {
        Keys f;
        QVERIFY(f.Begin());
        QCOMPARE(f.Combo(6)->count(), 1); // the log's operator
        f.FocusOn(f.Combo(6));
        for (int i = 0; i < 11; ++i) {
            f.Combo(6)->clearEditText();
            f.Typed(QStringLiteral("oe%1op").arg(i));
            f.Press(Qt::Key_Return);
        }
        QCOMPARE(f.Combo(6)->count(), 12);
        QCOMPARE(f.Combo(6)->itemText(0), QStringLiteral("OE10OP"));
        QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("OE10OP"));
        QStringList stored;
        IniReadSection(f.home.model.IniPath, QStringLiteral("OPCALLs"), stored);
        QCOMPARE(stored.size(), 10);
        QCOMPARE(stored.first(), QStringLiteral("OE10OP"));
        QCOMPARE(stored.last(), QStringLiteral("OE1OP"));
        // An operator typed again moves up and is not doubled.
        f.Combo(6)->clearEditText();
        f.Typed(QStringLiteral("OE5OP"));
        f.Press(Qt::Key_Return);
        QCOMPARE(f.Combo(6)->count(), 12);
        QCOMPARE(f.Combo(6)->itemText(0), QStringLiteral("OE5OP"));
        QCOMPARE(f.Combo(6)->itemText(1), QStringLiteral("OE10OP"));
        // A pick in the list moves the entry to the top.
        emit f.Combo(6)->activated(3);
        QCOMPARE(f.Combo(6)->itemText(0), QStringLiteral("OE8OP"));
        QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("OE8OP"));
        QCOMPARE(f.Combo(6)->count(), 12);
        // The operator goes with the next contact.
        f.Type(QStringLiteral("OE3ABC"), 1, QStringLiteral("MD"));
        QCOMPARE(f.home.model.LogRecords.back().Operator, QStringLiteral("OE8OP"));
    }

    void modeClickSetsTheReportsAndChecksTheCall() {
        Keys f;
        QVERIFY(f.Begin({MakeRecord(QStringLiteral("OE5XYZ"), 80, QStringLiteral("MD"),
                                    QStringLiteral("05:30:00"), QStringLiteral("CW"))}));
        f.Combo(1)->setCurrentIndex(1);
        f.Combo(2)->setCurrentIndex(0);
        f.Typed(QStringLiteral("OE5XYZ"));
        QVERIFY(!f.Dupe()->isEnabled());
        f.FocusOn(f.Combo(2));
        f.Press(Qt::Key_Down);
        QCOMPARE(f.Combo(2)->currentText(), QStringLiteral("CW"));
        QCOMPARE(f.Text(4)->text(), QStringLiteral("599"));
        QCOMPARE(f.Text(5)->text(), QStringLiteral("599"));
        QVERIFY(f.Dupe()->isEnabled()); // worked on 80 m CW in the morning
        QCOMPARE(f.Focus(), f.Text(3));
        f.FocusOn(f.Combo(2));
        f.Press(Qt::Key_Up);
        QCOMPARE(f.Text(4)->text(), QStringLiteral("59"));
    }

    void bandAndModeClicksTellAnOpenFrequencyWindow() {
        Keys f;
        QVERIFY(f.Begin());
        QList<int> bands, modes;
        f.window->frequenzFreqAlt = [&](int i) { bands << i; };
        f.window->frequenzSetMode = [&](int i) { modes << i; };
        f.FocusOn(f.Combo(1));
        f.Press(Qt::Key_Down);
        QVERIFY(bands.isEmpty()); // closed: not called
        f.home.model.Open.Frequenz = true;
        f.FocusOn(f.Combo(1));
        f.Press(Qt::Key_Down);
        f.FocusOn(f.Combo(2));
        f.Press(Qt::Key_Down);
        QCOMPARE(bands, QList<int>{2});
        QCOMPARE(modes, QList<int>{1});
        f.home.model.Open.Frequenz = false;
    }

    void loadTellsAnOpenFrequencyWindowTheBand() {
        WindowFixture f;
        f.WriteLog(QStringLiteral("test.KOLBO"), {});
        f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("Band"), QStringLiteral("1"));
        f.Ini(QStringLiteral("Einstellungen"), QString::fromLatin1(CompanionOf(Companion::Frequenz).openKey),
              QStringLiteral("-1"));
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        f.window = std::make_unique<HauptForm>(f.home.model, f.dialogs, f.clock);
        QList<int> bands;
        f.window->companionOpener = [&](Companion id) {
            if (id == Companion::Frequenz) f.home.model.Open.Frequenz = true;
        };
        f.window->frequenzFreqAlt = [&](int i) { bands << i; };
        QVERIFY(f.window->Load());
        QCOMPARE(bands, QList<int>{1});
        f.home.model.Open.Frequenz = false;
    }

    void partialCallWindowIsToldWhileOpen() {
        Keys f;
        QVERIFY(f.Begin());
        QSignalSpy refresh(f.window.get(), &HauptForm::dbLogRefreshRequested);
        QSignalSpy clear(f.window.get(), &HauptForm::dbLogClearRequested);
        f.Typed(QStringLiteral("OE3"));
        QCOMPARE(refresh.count(), 0);
        f.home.model.Open.DBLog = true;
        f.window->dbLogRows = [] { return 4; };
        f.Typed(QStringLiteral("A"));
        QCOMPARE(refresh.count(), 1);
        QCOMPARE(clear.count(), 0);
        f.Press(Qt::Key_Backspace); // three characters: refreshed, and the list emptied
        QCOMPARE(refresh.count(), 2);
        QCOMPARE(clear.count(), 1);
        f.Press(Qt::Key_Backspace); // two
        QCOMPARE(refresh.count(), 3);
        f.Press(Qt::Key_Backspace); // one
        QCOMPARE(refresh.count(), 3);
        QCOMPARE(clear.count(), 3);
        f.home.model.Open.DBLog = false;
    }

    void callDefaultMenu() {
        Keys f;
        QVERIFY(f.Begin());
        QAction* a = f.window->Action(QStringLiteral("MnCallVorgabe"));
        a->trigger();
        QVERIFY(a->isChecked());
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE"));
        QCOMPARE(f.Text(3)->cursorPosition(), 2);
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("CallVorgabe")),
            -1.0);
        f.Typed(QStringLiteral("3ABC"));
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABC"));
        f.Press(Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE"));
        a->trigger();
        QVERIFY(!a->isChecked());
        QVERIFY(f.Text(3)->text().isEmpty());
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("CallVorgabe")),
            0.0);
        // Turned off with a call in the field, the call stays.
        a->trigger();
        f.Typed(QStringLiteral("3ABC"));
        a->trigger();
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABC"));
    }

    void extendedEntryMenu() {
        Keys f;
        QVERIFY(f.Begin());
        QWidget* picture4 = f.Child<QWidget>("Picture4");
        QAction* a = f.window->Action(QStringLiteral("MnEingabe"));
        QVERIFY(picture4->isHidden());
        f.FocusOn(f.Text(4));
        a->trigger();
        QVERIFY(a->isChecked());
        QVERIFY(!picture4->isHidden());
        QCOMPARE(f.Focus(), f.Text(3));
        a->trigger();
        QVERIFY(!a->isChecked());
        QVERIFY(picture4->isHidden());
        a->trigger();
        f.window->close();
        QCOMPARE(
            IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("ErwEeingabe")),
            -1.0);
        // The next start shows the panel.
        Keys g;
        g.Ini(QStringLiteral("Einstellungen"), QStringLiteral("ErwEeingabe"), QStringLiteral("-1"));
        QVERIFY(g.Begin());
        QVERIFY(!g.Child<QWidget>("Picture4")->isHidden());
        QVERIFY(g.window->Action(QStringLiteral("MnEingabe"))->isChecked());
    }

    void twentyContactsWithoutTheMouse() {
        Keys f;
        QVERIFY(f.Begin());
        f.Combo(1)->setCurrentIndex(1);
        const QString districts[] = {QStringLiteral("wi"), QStringLiteral("md"), QStringLiteral("gz")};
        for (int i = 0; i < 20; ++i) {
            f.At(QTime(6, 0).addSecs(i * 60));
            QCOMPARE(f.Focus(), f.Text(3));
            const QString call =
                QStringLiteral("oe%1%2%3").arg(1 + i % 9).arg(QChar(u'a' + i)).arg(QChar(u'a' + i % 7));
            f.Typed(call);
            f.Press(Qt::Key_Space);
            QCOMPARE(f.Focus(), f.Combo(5));
            f.Typed(districts[i % 3]);
            f.Press(Qt::Key_Return);
            QVERIFY2(f.Label13()->text().isEmpty(), qPrintable(f.Label13()->text()));
            QCOMPARE(f.home.model.LogRecords.size(), size_t(i + 1));
            const QsoRecord& r = f.home.model.LogRecords.back();
            QCOMPARE(r.Call, call.toUpper());
            QCOMPARE(r.Bezirk, districts[i % 3].toUpper());
            QCOMPARE(r.Band, 80);
            QCOMPARE(r.Zeit, QTime(6, 0).addSecs(i * 60).toString(QStringLiteral("hh:mm:ss")));
            QVERIFY(f.Text(3)->text().isEmpty());
            QVERIFY(f.Combo(5)->currentText().isEmpty());
        }
        QCOMPARE(f.Grid().DataRows(), 20);
        QVERIFY(f.dialogs.boxes.isEmpty());
        // The first call again: the warning comes while typing; Enter asks, No keeps it out.
        f.Typed(QStringLiteral("oe1a"));
        QVERIFY(!f.Dupe()->isEnabled());
        f.Typed(QStringLiteral("a"));
        QVERIFY(f.Dupe()->isEnabled());
        QVERIFY(!f.Label13()->text().isEmpty());
        f.Press(Qt::Key_Space);
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("WI"));
        f.dialogs.AnswerMsgBox(Msg::No);
        f.Press(Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(20));
        QCOMPARE(f.Focus(), f.Text(3));
    }
};

QTEST_MAIN(TestMainWindowKeys)
#include "tst_main_window_keys.moc"
