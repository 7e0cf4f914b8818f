// The partial-call window and the call check window in the real main window: the menu
// entries, typing with the window open, the double click, logging, the colours, the
// positions, and the matrix of the selected contact.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "assist/log_tracker.h"
#include "tst_main_window_support.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QStyle>
#include <QTableView>
#include <QTableWidget>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// A main window with the call assistance installed, over a log of these records.
struct AssistFixture : WindowFixture {
    bool StartWith(const std::vector<QsoRecord>& records) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        InstallAssist(*window, home.model, dialogs, clock);
        if (!window->Load()) return false;
        window->show();
        return true;
    }
    QAction* Entry(const char* name) const { return window->Action(QString::fromLatin1(name)); }
    DBLog* OpenDBLog() {
        Entry("MnDB")->trigger();
        return DBLogOf(*window);
    }
    LogTracker* OpenTracker() {
        Entry("MnLogTracker")->trigger();
        return LogTrackerOf(*window);
    }
    // Lets every timer that is due run once.
    static void Settle() {
        for (int i = 0; i < 5; ++i) {
            QTest::qWait(5);
            QCoreApplication::processEvents();
        }
    }
};

std::vector<QsoRecord> SmallLog() {
    return {MakeRecord(QStringLiteral("OE1ABC"), 80, QStringLiteral("WI"), QStringLiteral("05:10:00")),
            MakeRecord(QStringLiteral("OE3ABD"), 40, QStringLiteral("MD"), QStringLiteral("05:20:00")),
            MakeRecord(QStringLiteral("OE6XYZ"), 40, QStringLiteral("GZ"), QStringLiteral("14:30:00"))};
}

QStringList CellTexts(DBLog* d) {
    QStringList out;
    for (int r = 0; r < d->Rows(); ++r)
        for (int c = 0; c < PartialGridModel::kColumns; ++c)
            if (!d->Grid().CellText(r, c).isEmpty()) out << d->Grid().CellText(r, c);
    return out;
}

} // namespace

class TestAssistWindows : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }

    // ---- Menu entries ---------------------------------------------------------------------

    void menuEntriesOpenAndCloseTheWindows() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        QVERIFY(f.Entry("MnDB")->isEnabled());
        QVERIFY(f.Entry("MnLogTracker")->isEnabled());
        QVERIFY(f.OpenDBLog());
        QVERIFY(f.home.model.Open.DBLog);
        QVERIFY(f.Entry("MnDB")->isChecked());
        f.Entry("MnDB")->trigger();
        QVERIFY(!f.home.model.Open.DBLog);
        QVERIFY(!f.Entry("MnDB")->isChecked());
        QTRY_VERIFY(!DBLogOf(*f.window));

        QVERIFY(f.OpenTracker());
        QVERIFY(f.home.model.Open.LogTracker);
        QVERIFY(f.Entry("MnLogTracker")->isChecked());
        f.Entry("MnLogTracker")->trigger();
        QVERIFY(!f.home.model.Open.LogTracker);
        QVERIFY(!f.Entry("MnLogTracker")->isChecked());
    }

    void windowsOpenAtTheLastExitReopenAtStart() {
        AssistFixture f;
        f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("DBLog"), QStringLiteral("-1"));
        f.Ini(QStringLiteral("Einstellungen"), QStringLiteral("LogTracker"), QStringLiteral("-1"));
        QVERIFY(f.StartWith(SmallLog()));
        QVERIFY(DBLogOf(*f.window));
        QVERIFY(LogTrackerOf(*f.window));
        QVERIFY(f.Entry("MnDB")->isChecked());
        f.window->close();
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Einstellungen"), QStringLiteral("DBLog")),
                 -1.0);
        QVERIFY(!f.home.model.Open.DBLog);
    }

    // ---- Typing with the window open ------------------------------------------------------

    void typingACallShowsTheMatchesAfterTheTimer() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        AssistFixture::Settle();
        QCOMPARE(d->Rows(), 0);
        f.Text(3)->setFocus();
        QTest::keyClicks(f.Text(3), QStringLiteral("ab"));
        // The key event itself leaves the grid alone; the timer fills it afterwards.
        QCOMPARE(d->Rows(), 0);
        QVERIFY(d->Timer1().isActive());
        QTRY_COMPARE(d->Rows(), 1);
        QCOMPARE(CellTexts(d), (QStringList{QStringLiteral("OE1ABC  (WI)"), QStringLiteral("OE3ABD  (MD)")}));
        // 40 m SSB in the morning: OE3ABD worked, OE1ABC (80 m) not.
        QCOMPARE(d->Grid().CellColour(0, 0), 65280);
        QCOMPARE(d->Grid().CellColour(0, 1), 255);
        QCOMPARE(d->Grid().data(d->Grid().index(0, 1), Qt::ForegroundRole).value<QColor>(),
                 QColor(255, 0, 0));
        QCOMPARE(d->windowTitle(), QStringLiteral("Teilrufzeichen                       ROT=gearbeitet     "
                                                  "GR\u00dcN=nicht gearbeitet     40m SSB"));
    }

    // A call of 13 characters shows with its district: the equal columns are wide enough
    // for the call, two blanks and the bracketed district, and the window for five of them.
    void aLongCallShowsWithItsDistrict() {
        AssistFixture f;
        std::vector<QsoRecord> log = SmallLog();
        log.push_back(MakeRecord(QStringLiteral("HB0/OE3KXY/PM"), 40, QStringLiteral("WI"),
                                 QStringLiteral("05:30:00")));
        log.push_back(
            MakeRecord(QStringLiteral("OE3KXY"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00")));
        QVERIFY(f.StartWith(log));
        DBLog* d = f.OpenDBLog();
        AssistFixture::Settle();
        f.Text(3)->setFocus();
        QTest::keyClicks(f.Text(3), QStringLiteral("KXY"));
        QTRY_COMPARE(d->Rows(), 1);
        QCOMPARE(CellTexts(d),
                 (QStringList{QStringLiteral("HB0/OE3KXY/PM  (WI)"), QStringLiteral("OE3KXY  (MD)")}));
        QTableView* v = d->GridView();
        const QFontMetrics fm(v->font());
        const int margin = 2 * (v->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, v) + 1);
        for (int c = 0; c < PartialGridModel::kColumns; ++c) {
            QCOMPARE(v->columnWidth(c), v->columnWidth(0));
            QVERIFY2(
                v->columnWidth(c) >= fm.horizontalAdvance(QStringLiteral("HB0/OE3KXY/PM  (WI)")) + margin,
                qPrintable(QStringLiteral("%1 < %2")
                               .arg(v->columnWidth(c))
                               .arg(fm.horizontalAdvance(QStringLiteral("HB0/OE3KXY/PM  (WI)")) + margin)));
        }
        QVERIFY(v->viewport()->width() >= PartialGridModel::kColumns * v->columnWidth(0));
    }

    void typingOeAloneShowsNothing() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE"));
        AssistFixture::Settle();
        QCOMPARE(d->Rows(), 0);
        QTest::keyClicks(f.Text(3), QStringLiteral("6X"));
        QTRY_COMPARE(CellTexts(d), QStringList{QStringLiteral("OE6XYZ  (GZ)")});
    }

    void oneCharacterShowsNothing() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("A"));
        AssistFixture::Settle();
        QCOMPARE(d->Rows(), 0);
    }

    void fewerThanFourCharactersEmptyTheListBeforeTheTimer() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE1AB"));
        QTRY_COMPARE(d->Rows(), 1);
        QTest::keyClick(f.Text(3), Qt::Key_Backspace);
        QTest::keyClick(f.Text(3), Qt::Key_Backspace);
        QCOMPARE(d->Rows(), 0); // "OE1" emptied the grid in the key event
        AssistFixture::Settle();
        QCOMPARE(d->Rows(), 0); // and the tick finds one character: nothing
    }

    void stationWorkedInTheOtherPeriodShowsTheNotWorkedColour() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("6XY"));
        QTRY_COMPARE(d->Rows(), 1);
        QCOMPARE(d->Grid().CellColour(0, 0), 65280); // worked 40 m SSB in the afternoon only
    }

    void bandAndModeChangesRefreshTheList() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("1ABC"));
        QTRY_COMPARE(d->Rows(), 1);
        QCOMPARE(d->Grid().CellColour(0, 0), 65280);
        f.Combo(1)->setCurrentIndex(1);
        emit f.Combo(1)->activated(1);
        QVERIFY(d->Timer1().isActive());
        QTRY_COMPARE(d->Grid().CellColour(0, 0), 255);
        QVERIFY(d->windowTitle().endsWith(QStringLiteral("80m SSB")));
        f.Combo(2)->setCurrentIndex(1);
        emit f.Combo(2)->activated(1);
        QTRY_COMPARE(d->Grid().CellColour(0, 0), 65280);
        QVERIFY(d->windowTitle().endsWith(QStringLiteral("80m CW")));
    }

    // ---- Picking a call -------------------------------------------------------------------

    void doubleClickFillsCallAndDistrict() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("ab"));
        QTRY_COMPARE(d->Rows(), 1);
        QTableView* view = d->GridView();
        QVERIFY(QTest::qWaitForWindowExposed(d));
        const QRect cell = view->visualRect(d->Grid().index(0, 1));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(f.Text(3)->text(), QStringLiteral("OE3ABD"));
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("MD"));
        QCOMPARE(f.window->focusWidget(), f.Text(3));
    }

    void cellWithFewerThanFourCharactersDoesNothingOnDoubleClick() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        QTest::keyClicks(f.Text(3), QStringLiteral("ab"));
        QTRY_COMPARE(d->Rows(), 1);
        QTableView* view = d->GridView();
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {},
                           view->visualRect(d->Grid().index(0, 4)).center());
        d->CellDoubleClick(0, 3);
        QCOMPARE(f.Text(3)->text(), QStringLiteral("ab").toUpper());
        QCOMPARE(f.Combo(5)->currentText(), QString());
    }

    // ---- Logging ----------------------------------------------------------------------------

    void loggingTheContactTurnsTheEntryWorked() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        f.Text(3)->setFocus();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE1ABC"));
        QTRY_COMPARE(CellTexts(d), QStringList{QStringLiteral("OE1ABC  (WI)")});
        QCOMPARE(d->Grid().CellColour(0, 0), 65280);
        QCOMPARE(f.Combo(5)->currentText(), QStringLiteral("WI"));
        QTest::keyClick(f.Text(3), Qt::Key_Return);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(4));
        QTest::keyClicks(f.Text(3), QStringLiteral("OE1ABC"));
        QTRY_COMPARE(d->Grid().CellColour(0, 0), 255);
        QCOMPARE(CellTexts(d), QStringList{QStringLiteral("OE1ABC  (WI)")});
    }

    // ---- Colours ------------------------------------------------------------------------------

    void colourNameOf25CharactersIsCutTo20AndShownInCapitals() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        f.dialogs.AnswerColor(0x00FFFF);
        const QString name = QStringLiteral("hellblau mit etwas rot xy");
        QCOMPARE(name.size(), 25);
        f.dialogs.AnswerInput(name);
        d->PopupMenu()->findChild<QAction*>(QStringLiteral("MnGearbeitetfarbe"))->trigger();
        QCOMPARE(f.dialogs.prompts.size(), 1);
        QVERIFY(f.dialogs.prompts[0].contains(QStringLiteral("unter 'gearbeitet' erscheinen")));
        QVERIFY(d->Timer1().isActive());
        QTRY_VERIFY(d->windowTitle().contains(QStringLiteral("HELLBLAU MIT ETWAS R=gearbeitet")));
        const QString ini = f.home.model.IniPath;
        QCOMPARE(IniReadString(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearFarbeName")),
                 QStringLiteral("HELLBLAU MIT ETWAS R"));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearFarbe")),
                 double(0x00FFFF));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearOK")), 1.0);
    }

    void notWorkedColourAndBackgroundAreStored() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        f.dialogs.AnswerColor(0x808080);
        f.dialogs.AnswerInput(QStringLiteral(" grau "));
        d->MnNichtgearbeitetfarbe();
        QCOMPARE(d->Colours().nichtGearFarbeName, QStringLiteral("GRAU"));
        f.dialogs.AnswerColor(0x000000);
        d->MnHintergrundfarbe();
        QCOMPARE(d->GridView()->palette().color(QPalette::Base), QColor(0, 0, 0));
        const QString ini = f.home.model.IniPath;
        QCOMPARE(IniReadInt(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("NichtGearFarbe")),
                 double(0x808080));
        QCOMPARE(IniReadInt(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("HFarbeOK")), 1.0);
        QCOMPARE(IniReadInt(ini, QStringLiteral("Teilrufzeichen"), QStringLiteral("HFarbe")), 0.0);
        // A new window reads them back.
        f.Entry("MnDB")->trigger();
        DBLog* again = f.OpenDBLog();
        QCOMPARE(again->Colours().nichtGearFarbe, 0x808080);
        QCOMPARE(again->Colours().hFarbe, 0);
    }

    void cancelledColourOrEmptyNameChangesNothing() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        d->MnGearbeitetfarbe(); // the colour dialog cancels
        QCOMPARE(f.dialogs.prompts.size(), 0);
        f.dialogs.AnswerColor(0x00FFFF);
        f.dialogs.AnswerInput(QStringLiteral("   "));
        d->MnGearbeitetfarbe();
        QCOMPARE(d->Colours().gearFarbe, 255);
        QCOMPARE(d->Colours().gearFarbeName, QStringLiteral("ROT"));
        QCOMPARE(
            IniReadString(f.home.model.IniPath, QStringLiteral("Teilrufzeichen"), QStringLiteral("GearOK")),
            QString());
    }

    // ---- Position ----------------------------------------------------------------------------

    void positionAndHeightAreKeptInFensterPos() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        d->move(120, 90);
        d->resize(d->width(), 300);
        f.Entry("MnDB")->trigger();
        const QString ini = f.home.model.IniPath;
        const QString pos = QStringLiteral("FensterPos");
        QCOMPARE(IniReadInt(ini, pos, QStringLiteral("DBLogHeight")), 300.0 * 15);
        QVERIFY(IniReadInt(ini, pos, QStringLiteral("DBLogLeft")) > 0);
        IniWrite(ini, pos, QStringLiteral("DBLogTop"), 1500);
        IniWrite(ini, pos, QStringLiteral("DBLogLeft"), 3000);
        DBLog* again = f.OpenDBLog();
        QCOMPARE(again->pos(), QPoint(200, 100));
        QCOMPARE(again->height(), 300);
        f.Entry("MnDB")->trigger();
        IniWrite(ini, pos, QStringLiteral("DBLogHeight"), 15 * 50); // below the design height: ignored
        QCOMPARE(f.OpenDBLog()->height(), DBLog::DesignSize().height());
    }

    // ---- The call check window -------------------------------------------------------------------

    void gridWithOnlyItsHeaderRowLeavesTheMatrixEmptyAndTheCaptionUnchanged() {
        AssistFixture f;
        QVERIFY(f.StartWith({}));
        LogTracker* t = f.OpenTracker();
        const QString caption = t->windowTitle();
        AssistFixture::Settle();
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 4; ++c)
                QVERIFY(!t->Ticked(r, c));
        QCOMPARE(t->windowTitle(), caption);
    }

    void trackerTicksTheSelectedStation() {
        AssistFixture f;
        std::vector<QsoRecord> log = SmallLog();
        log.push_back(MakeRecord(QStringLiteral("OE1ABC"), 40, QStringLiteral("WI"),
                                 QStringLiteral("15:00:00"), QStringLiteral("CW")));
        log.push_back(MakeRecord(QStringLiteral("OE1ABC"), 30, QStringLiteral("WI"),
                                 QStringLiteral("06:00:00"), QStringLiteral("CW")));
        QVERIFY(f.StartWith(log));
        LogTracker* t = f.OpenTracker();
        f.window->GridView()->setCurrentIndex(f.Grid().index(0, 0));
        QVERIFY(t->Timer1().isActive());
        QTRY_COMPARE(t->windowTitle(), QStringLiteral("Check   OE1ABC"));
        QVERIFY(t->Ticked(1, 0)); // 80 m SSB morning
        QVERIFY(t->Ticked(0, 3)); // 40 m CW afternoon
        QVERIFY(t->Ticked(2, 2)); // 30 m CW: always the third column
        int ticks = 0;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 4; ++c)
                ticks += t->Ticked(r, c);
        QCOMPARE(ticks, 3);
        QCOMPARE(t->Grid()->item(1, 0)->text(), QString(kTick));
        f.window->GridView()->setCurrentIndex(f.Grid().index(1, 0));
        QTRY_COMPARE(t->windowTitle(), QStringLiteral("Check   OE3ABD"));
        QVERIFY(t->Ticked(0, 0));
        QVERIFY(!t->Ticked(1, 0));
    }

    void loggingAContactRefreshesTheTracker() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        LogTracker* t = f.OpenTracker();
        f.Type(QStringLiteral("OE3ABD"), 0, QStringLiteral("MD"), 1);
        QCOMPARE(f.home.model.LogRecords.size(), size_t(4));
        QTRY_COMPARE(t->windowTitle(), QStringLiteral("Check   OE3ABD"));
        QVERIFY(t->Ticked(0, 0));
        QVERIFY(t->Ticked(0, 1));
    }

    void theRefreshRequestsOfACorrectionRebuildBothWindows() {
        AssistFixture f;
        QVERIFY(f.StartWith(SmallLog()));
        DBLog* d = f.OpenDBLog();
        LogTracker* t = f.OpenTracker();
        QTest::keyClicks(f.Text(3), QStringLiteral("6XY"));
        QTRY_COMPARE(d->Rows(), 1);
        AssistFixture::Settle();
        // A correction has moved the contact into the morning and tells the windows so.
        f.home.model.LogRecords[2].Zeit = QStringLiteral("06:30:00");
        emit f.window->dbLogRefreshRequested();
        QVERIFY(d->Timer1().isActive());
        QTRY_COMPARE(d->Grid().CellColour(0, 0), 255);
        emit f.window->trackerRefreshRequested();
        QVERIFY(t->Timer1().isActive());
    }
};

QTEST_MAIN(TestAssistWindows)
#include "tst_assist_windows.moc"
