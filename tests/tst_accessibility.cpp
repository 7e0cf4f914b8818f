// The program for a blind operator, seen through Qt's own accessibility layer: what the
// screen reader is told (events recorded by an update handler) and what it can read
// (the accessible interfaces) in the main window and in every companion window.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "assist/log_tracker.h"
#include "core/scripted_dialogs.h"
#include "rig_window_support.h"
#include "scoring/install_scoring.h"
#include "ui/qt_dialogs.h"
#include "ui/spoken.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// What the reader was told: one line per event.
struct Told {
    QPointer<QObject> object;
    QAccessible::Event type;
    int child;
    QString description; // the object's description when the event came
};

std::vector<Told>& Events() {
    static std::vector<Told> events;
    return events;
}

void Record(QAccessibleEvent* e) {
    QString description;
    if (QAccessibleInterface* iface = e->accessibleInterface()) description = iface->text(QAccessible::Description);
    Events().push_back({e->object(), e->type(), e->child(), description});
}

// The texts spoken through description changes, in order.
QStringList Spoken() {
    QStringList out;
    for (const Told& t : Events())
        if (t.type == QAccessible::DescriptionChanged && !t.description.isEmpty()) out << t.description;
    return out;
}

// Events reach the handler only while a screen reader bridge is on (see main()).
#define REQUIRE_EVENTS()                                                                          \
    if (!QAccessible::isActive()) QSKIP("keine Bildschirmleser-Brücke: Qt meldet keine Ereignisse")
// An event check where events are reported.
#define IF_EVENTS(check)                                                                          \
    if (QAccessible::isActive()) check

QString DescriptionOf(QObject* o) {
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(o);
    return iface ? iface->text(QAccessible::Description) : QString();
}

void Settle() {
    for (int i = 0; i < 5; ++i) {
        QTest::qWait(5);
        QCoreApplication::processEvents();
    }
}

// The main window with every companion window installed, a rigctld behind the rig.
struct A11yFixture : RigFixture {
    A11yFixture() {
        // The shipped district table: every code an operator may type.
        QFile::remove(home.model.DataFolder + QStringLiteral("bez_koord.txt"));
        home.InstallDistricts();
    }
    // A contact typed as the operator does; band and mode are set (and spoken) first.
    void Contact(const QString& call, int bandIndex, const QString& bezirk, int modeIndex) {
        Combo(1)->setCurrentIndex(bandIndex);
        Combo(2)->setCurrentIndex(modeIndex);
        Settle();
        Events().clear();
        Text(3)->clear();
        QTest::keyClicks(Text(3), call);
        Combo(5)->clearEditText();
        QTest::keyClicks(Combo(5), bezirk);
        QTest::keyClick(Text(3), Qt::Key_Return);
    }
    bool Open(const std::vector<QsoRecord>& records = {}, bool withRig = false) {
        if (withRig) {
            if (!daemon.Start()) return false;
            rig::WriteRigConfig(home.model.IniPath, 1, {rig::kModelNetRigctl, daemon.Address(), 0});
        }
        WriteLog(QStringLiteral("test.KOLBO"), records);
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        InstallScoring(*window, home.model, dialogs, clock);
        InstallAssist(*window, home.model, dialogs, clock);
        rig::InstallRig(*window, home.model, dialogs, clock);
        if (!window->Load()) return false;
        window->show();
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get())) return false;
        Text(3)->setFocus();
        Settle();
        Events().clear();
        return true;
    }
    QWidget* Companion(const char* name) const {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String(name) && w->isVisible()) return w;
        return nullptr;
    }
};

} // namespace

class TestAccessibility : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        QAccessible::installUpdateHandler(&Record);
        QAccessible::setActive(true);
        if (!QAccessible::isActive())
            qInfo("Ohne Bildschirmleser-Brücke (offscreen) meldet Qt keine Ereignisse: geprüft wird, was "
                  "der Leser liest (Beschreibung, Name, Rolle); die Ereignisse prüft screen_reader.py mit Orca.");
    }
    void init() { Events().clear(); }

    // 1. Spoken messages.
    void wrongDistrictIsSpokenOnTheFieldAtFault();
    void dupeWarningIsSpokenWhileTheCallIsTyped();
    void loggedContactIsSpokenAndNotShown();
    void sameMessageTwiceIsSpokenTwice();
    void emptiedMessageLineGivesTheFieldItsOwnDescription();
    void messageBoxIsNamedByWhatItIsAbout();
    // 2. Values spoken.
    void bandModeAndOperatorBoxesShowTheirValue();
    void bandChangeByKeyIsSpoken();
    void programsOwnBandChangeIsSpoken();
    void rigMovingTheBandIsSpoken();
    void newOperatorIsSpoken();
    // 3. One focus.
    void addingARowLeavesTheFocusInTheCallField();
    // 4. No meaning by colour alone.
    void dupeButtonSaysItsState();
    void partialCallListSaysWorkedOrNew();
    void multiplierTableCellsSayWhereWorked();
    void resultTablesAndFiguresHaveNames();
    void callCheckCellsSayTheirPeriodAndState();
    // 5. Reachable.
    void f6ReachesTheLogGridAndGoesBack();
    void ctrlShiftDReachesTheDateField();
    void menuKeyInTheGridOpensThePopup();
    void hiddenGridColumnsAreNoCellsForTheReader();
    void companionWindowsAreWindowsAndAnnounced();
    void shortcutsBringUpOpenCompanionWindows();
    void shortcutOfAClosedWindowSaysSo();
};

void TestAccessibility::wrongDistrictIsSpokenOnTheFieldAtFault() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Contact(QStringLiteral("OE5ABC"), 1, QStringLiteral("W"), 1);
    QCOMPARE(f.Label13()->text(), QStringLiteral("BEZIRK ungültig"));
    Settle();
    QCOMPARE(QApplication::focusWidget(), f.Combo(5));
    QCOMPARE(DescriptionOf(f.Combo(5)), QStringLiteral("BEZIRK ungültig"));
    IF_EVENTS(QVERIFY(std::any_of(Events().begin(), Events().end(), [&](const Told& t) {
        return t.object == f.Combo(5) && t.type == QAccessible::DescriptionChanged &&
               t.description == QLatin1String("BEZIRK ungültig");
    })));
}

void TestAccessibility::dupeWarningIsSpokenWhileTheCallIsTyped() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"),
                               QStringLiteral("CW"))}));
    f.Combo(1)->setCurrentIndex(1);
    f.Combo(2)->setCurrentIndex(1);
    Settle();
    Events().clear();
    QTest::keyClicks(f.Text(3), QStringLiteral("OE5ABC"));
    const QString warning = f.Label13()->text();
    QVERIFY(warning.startsWith(QStringLiteral("Station bereits")));
    Settle();
    QCOMPARE(DescriptionOf(f.Text(3)), warning);
    IF_EVENTS(QVERIFY(Spoken().contains(warning)));
}

void TestAccessibility::loggedContactIsSpokenAndNotShown() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Contact(QStringLiteral("oe5abc"), 1, QStringLiteral("BR"), 1);
    QCOMPARE(f.Grid().DataRows(), 1);
    QCOMPARE(f.Label13()->text(), QString()); // the message line shows nothing new
    Settle();
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Geloggt OE5ABC 80m CW BR"));
    // And as the window's notification, which a reader speaks when it appears.
    auto* ansage = f.window->findChild<QWidget*>(QStringLiteral("KolibrinoAnsage"));
    QVERIFY(ansage);
    QAccessibleInterface* notification = QAccessible::queryAccessibleInterface(ansage);
    QCOMPARE(notification->role(), QAccessible::Notification);
    QCOMPARE(notification->text(QAccessible::Name), QStringLiteral("Geloggt OE5ABC 80m CW BR"));
    QVERIFY(ansage->isVisible());
    QCOMPARE(ansage->size(), QSize(0, 0));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Geloggt OE5ABC 80m CW BR"))));
}

void TestAccessibility::sameMessageTwiceIsSpokenTwice() {
    REQUIRE_EVENTS();
    A11yFixture f;
    QVERIFY(f.Open());
    f.Contact(QStringLiteral("OE5ABC"), 1, QStringLiteral("W"), 1);
    Settle();
    QTest::keyClick(f.Combo(5), Qt::Key_Return);
    Settle();
    QCOMPARE(Spoken().count(QStringLiteral("BEZIRK ungültig")), 2);
}

void TestAccessibility::emptiedMessageLineGivesTheFieldItsOwnDescription() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"))}));
    f.Combo(1)->setCurrentIndex(1);
    Settle();
    QTest::keyClicks(f.Text(3), QStringLiteral("OE5ABC"));
    Settle();
    QVERIFY(DescriptionOf(f.Text(3)).startsWith(QStringLiteral("Station bereits")));
    QTest::keyClick(f.Text(3), Qt::Key_Backspace);
    QCOMPARE(f.Label13()->text(), QString());
    Settle();
    // Its own meaning again (the tool tip), told to nobody.
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Rufzeichen der Gegenstation"));
}

void TestAccessibility::messageBoxIsNamedByWhatItIsAbout() {
    QtDialogs d;
    QString title, name;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        title = box->windowTitle();
        name = QAccessible::queryAccessibleInterface(box)->text(QAccessible::Name);
        QTest::keyClick(box, Qt::Key_Escape);
    });
    d.MsgBox(QStringLiteral("Soll das QSO als DUPE geloggt werden?"), 292, QString());
    QCOMPARE(title, QStringLiteral("Kolibrino"));
    QCOMPARE(name, QStringLiteral("Kolibrino – Frage"));
}

void TestAccessibility::bandModeAndOperatorBoxesShowTheirValue() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Combo(1)->setCurrentIndex(1);
    f.Combo(2)->setCurrentIndex(1);
    QAccessibleInterface* band = QAccessible::queryAccessibleInterface(f.Combo(1));
    QCOMPARE(band->text(QAccessible::Value), QStringLiteral("80m"));
    QCOMPARE(band->text(QAccessible::Description), QStringLiteral("80m, TX Band"));
    QCOMPARE(DescriptionOf(f.Combo(2)), QStringLiteral("CW, TX Mode"));
    QCOMPARE(DescriptionOf(f.Combo(6)), QStringLiteral("OE1XYZ, Call des aktuellen Operators"));
}

void TestAccessibility::bandChangeByKeyIsSpoken() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Combo(1)->setCurrentIndex(1);
    Settle();
    f.Combo(1)->setFocus();
    Events().clear();
    QTest::keyClick(f.Combo(1), Qt::Key_Up); // 40m; the focus jumps to the call
    Settle();
    QCOMPARE(QApplication::focusWidget(), f.Text(3));
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Band 40m"));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Band 40m"))));
}

void TestAccessibility::programsOwnBandChangeIsSpoken() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Combo(1)->setCurrentIndex(0);
    Settle();
    Events().clear();
    f.Combo(1)->setCurrentIndex(2); // as the rig or a correction does
    f.Combo(2)->setCurrentIndex(1);
    Settle();
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Band 30m. Mode CW"));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Band 30m. Mode CW"))));
}

void TestAccessibility::rigMovingTheBandIsSpoken() {
    A11yFixture f;
    QVERIFY(f.Open({}, true));
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("7050000")}));
    f.OpenFrequenz();
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 0);
    Events().clear();
    QVERIFY(f.daemon.Set({QStringLiteral("F"), QStringLiteral("3550000")}));
    QTRY_COMPARE(f.Combo(1)->currentIndex(), 1);
    Settle();
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Band 80m"));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Band 80m"))));
}

void TestAccessibility::newOperatorIsSpoken() {
    A11yFixture f;
    QVERIFY(f.Open());
    f.Combo(6)->setFocus();
    f.Combo(6)->clearEditText();
    QTest::keyClicks(f.Combo(6), QStringLiteral("oe3new"));
    Events().clear();
    QTest::keyClick(f.Combo(6), Qt::Key_Return);
    Settle();
    QCOMPARE(f.Combo(6)->currentText(), QStringLiteral("OE3NEW"));
    QCOMPARE(DescriptionOf(f.Combo(6)), QStringLiteral("Operator OE3NEW"));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Operator OE3NEW"))));
}

void TestAccessibility::addingARowLeavesTheFocusInTheCallField() {
    REQUIRE_EVENTS();
    A11yFixture f;
    QVERIFY(f.Open());
    f.Contact(QStringLiteral("OE5ABC"), 1, QStringLiteral("BR"), 1);
    f.Contact(QStringLiteral("OE6XYZ"), 1, QStringLiteral("GU"), 1);
    QCOMPARE(f.Grid().DataRows(), 2);
    Settle();
    for (const Told& t : Events())
        if (t.type == QAccessible::Focus) QVERIFY2(t.object != f.window->GridView(), "the grid took the focus");
    QCOMPARE(QApplication::focusWidget(), f.Text(3));
    QAccessibleInterface* call = QAccessible::queryAccessibleInterface(f.Text(3));
    QVERIFY(call->state().focused);
}

void TestAccessibility::dupeButtonSaysItsState() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"))}));
    auto* dupe = f.Child<QPushButton>("DUPCommand1");
    QCOMPARE(DescriptionOf(dupe), QStringLiteral("keine Dupe-Warnung"));
    f.Combo(1)->setCurrentIndex(1);
    QTest::keyClicks(f.Text(3), QStringLiteral("OE5ABC"));
    QCOMPARE(DescriptionOf(dupe), QStringLiteral("Dupe-Warnung: Station bereits gearbeitet"));
    f.window->Timer2Tick(); // blinking changes the colour, not the words
    QCOMPARE(DescriptionOf(dupe), QStringLiteral("Dupe-Warnung: Station bereits gearbeitet"));
}

void TestAccessibility::partialCallListSaysWorkedOrNew() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00")),
                    MakeRecord(QStringLiteral("OE5ABD"), 40, QStringLiteral("GU"), QStringLiteral("06:01"))}));
    f.window->Action(QStringLiteral("MnDB"))->trigger();
    auto* dbLog = qobject_cast<DBLog*>(f.Companion("DBLog"));
    QVERIFY(dbLog);
    f.Combo(1)->setCurrentIndex(1);
    f.Combo(2)->setCurrentIndex(0);
    QTest::keyClicks(f.Text(3), QStringLiteral("OE5AB"));
    Settle();
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(dbLog->GridView());
    QCOMPARE(table->text(QAccessible::Name), QStringLiteral("Teilrufzeichen"));
    QStringList cells;
    for (int c = 0; c < 2; ++c) {
        QAccessibleInterface* cell = table->tableInterface()->cellAt(0, c);
        QVERIFY(cell);
        cells << cell->text(QAccessible::Name) + QStringLiteral(" / ") + cell->text(QAccessible::Description);
    }
    QCOMPARE(cells, QStringList({QStringLiteral("OE5ABC  (BR), gearbeitet / gearbeitet"),
                                 QStringLiteral("OE5ABD  (GU), neu / neu")}));
}

void TestAccessibility::multiplierTableCellsSayWhereWorked() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00")),
                    MakeRecord(QStringLiteral("OE6ABC"), 40, QStringLiteral("GU"), QStringLiteral("06:01")),
                    MakeRecord(QStringLiteral("OE6ABD"), 80, QStringLiteral("GU"), QStringLiteral("06:02"))}));
    f.window->Action(QStringLiteral("MnBZGrid"))->trigger();
    QWidget* w = f.Companion("GridKarte");
    QVERIFY(w);
    Settle();
    auto* grid1 = w->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid1"));
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(grid1);
    QCOMPARE(table->text(QAccessible::Name), QStringLiteral("Bezirke"));
    auto meaning = [&](const QString& code) {
        for (int r = 0; r < grid1->rowCount(); ++r)
            for (int c = 0; c < grid1->columnCount(); ++c)
                if (grid1->item(r, c)->text() == code)
                    return table->tableInterface()->cellAt(r, c)->text(QAccessible::Description);
        return QStringLiteral("?");
    };
    QCOMPARE(meaning(QStringLiteral("BR")), QStringLiteral("gearbeitet auf 80m"));
    QCOMPARE(meaning(QStringLiteral("GU")), QStringLiteral("gearbeitet auf 40m und 80m"));
    QCOMPARE(meaning(QStringLiteral("WI")), QStringLiteral("nicht gearbeitet"));
    auto* grid2 = w->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid2"));
    QCOMPARE(QAccessible::queryAccessibleInterface(grid2)->text(QAccessible::Name), QStringLiteral("Bundesländer"));
    auto* grid3 = w->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid3"));
    QCOMPARE(QAccessible::queryAccessibleInterface(grid3)->text(QAccessible::Name),
             QStringLiteral("Gearbeitet Staatsfunkstellenprefix"));
    QVERIFY(grid1->focusPolicy() & Qt::TabFocus);
}

void TestAccessibility::resultTablesAndFiguresHaveNames() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"))}));
    f.window->Action(QStringLiteral("MnStatistik"))->trigger();
    QWidget* w = f.Companion("Statistik");
    QVERIFY(w);
    Settle();
    QStringList names;
    for (int i = 1; i <= 5; ++i)
        names << QAccessible::queryAccessibleInterface(
                     w->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid%1").arg(i)))
                     ->text(QAccessible::Name);
    QCOMPARE(names, QStringList({QStringLiteral("Staatsfunkst."), QStringLiteral("Bezirke"),
                                 QStringLiteral("Bundesländer"), QStringLiteral("Betriebsarten"),
                                 QStringLiteral("Vormittag/Nachmittag QSOs")}));
    auto* label6 = w->findChild<QLabel*>(QStringLiteral("Label6"));
    QCOMPARE(QAccessible::queryAccessibleInterface(label6)->text(QAccessible::Name),
             QStringLiteral("Gültige QSOs: 1"));
    QVERIFY(label6->focusPolicy() & Qt::TabFocus);
}

void TestAccessibility::callCheckCellsSayTheirPeriodAndState() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"), QStringLiteral("CW"))}));
    f.window->Action(QStringLiteral("MnLogTracker"))->trigger();
    QWidget* w = f.Companion("LogTracker");
    QVERIFY(w);
    f.window->GridView()->setCurrentIndex(f.Grid().index(0, 0));
    Settle();
    auto* grid = w->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid1"));
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(grid);
    QCOMPARE(table->text(QAccessible::Name), QStringLiteral("Rufzeichen Check"));
    QCOMPARE(table->tableInterface()->cellAt(1, 1)->text(QAccessible::Name),
             QStringLiteral("80m CW Vormittag: gearbeitet"));
    QCOMPARE(table->tableInterface()->cellAt(0, 0)->text(QAccessible::Name),
             QStringLiteral("40m SSB Vormittag: nicht gearbeitet"));
}

void TestAccessibility::f6ReachesTheLogGridAndGoesBack() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"))}));
    QTest::keyClick(f.Text(3), Qt::Key_F6);
    QCOMPARE(QApplication::focusWidget(), f.window->GridView());
    QCOMPARE(QAccessible::queryAccessibleInterface(f.window->GridView())->text(QAccessible::Name),
             QStringLiteral("Log"));
    QCOMPARE(f.window->GridView()->currentIndex().row(), 0);
    QTest::keyClick(f.window->GridView(), Qt::Key_F6);
    QCOMPARE(QApplication::focusWidget(), f.Text(3));
}

void TestAccessibility::ctrlShiftDReachesTheDateField() {
    A11yFixture f;
    QVERIFY(f.Open());
    QTest::keyClick(f.Text(3), Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget(), f.Text(1));
    QCOMPARE(f.Text(3)->text(), QString()); // nothing typed
}

void TestAccessibility::menuKeyInTheGridOpensThePopup() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00")),
                    MakeRecord(QStringLiteral("OE6ABC"), 80, QStringLiteral("GU"), QStringLiteral("06:01"))}));
    QTest::keyClick(f.Text(3), Qt::Key_F6);
    LogGridView* grid = f.window->GridView();
    QCOMPARE(grid->currentIndex().row(), 1);
    QTest::keyClick(grid, Qt::Key_Up);
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), grid->mapToGlobal(QPoint()));
    QApplication::sendEvent(grid, &menuKey);
    QTRY_VERIFY(f.window->PopupMenu()->isVisible());
    QCOMPARE(grid->selectionModel()->selectedRows().value(0).row(), 0);
    f.window->PopupMenu()->close();
}

void TestAccessibility::hiddenGridColumnsAreNoCellsForTheReader() {
    A11yFixture f;
    QVERIFY(f.Open({MakeRecord(QStringLiteral("OE5ABC"), 80, QStringLiteral("BR"), QStringLiteral("06:00"))}));
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(f.window->GridView());
    QAccessibleTableInterface* t = table->tableInterface();
    QVERIFY(t);
    QCOMPARE(t->columnCount(), kGridFirstHidden);
    QCOMPARE(t->rowCount(), 1);
    QCOMPARE(t->cellAt(0, kGridColCall)->text(QAccessible::Name), QStringLiteral("OE5ABC"));
    const QString frequency = f.Grid().Text(0, kGridColFrequenz);
    QCOMPARE(frequency, QStringLiteral("3500"));
    for (int i = 0; i < table->childCount(); ++i) {
        QAccessibleInterface* child = table->child(i);
        QVERIFY(child);
        QVERIFY2(child->text(QAccessible::Name) != frequency, "a hidden working column is read");
    }
}

void TestAccessibility::companionWindowsAreWindowsAndAnnounced() {
    A11yFixture f;
    QVERIFY(f.Open({}, true));
    const std::pair<const char*, const char*> windows[] = {
        {"MnBZKarte", "BZKarte"},   {"MnBZGrid", "GridKarte"},   {"MnStatistik", "Statistik"},
        {"MnLogTracker", "LogTracker"}, {"MnDB", "DBLog"},       {"MnFrequenz", "Frequenz"},
        {"MnTransceiver", "Transceiver"}};
    for (const auto& [entry, name] : windows) {
        Events().clear();
        QAction* a = f.window->Action(QString::fromLatin1(entry));
        QVERIFY2(a, entry);
        a->trigger();
        QWidget* w = f.Companion(name);
        QVERIFY2(w, name);
        Settle();
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
        QCOMPARE(iface->role(), QAccessible::Window);
        QAccessibleInterface* app = QAccessible::queryAccessibleInterface(qApp);
        bool inTree = false;
        for (int i = 0; i < app->childCount(); ++i)
            inTree = inTree || app->child(i)->object() == w;
        QVERIFY2(inTree, name);
        // The title as it stood when the window appeared (the partial-call window adds its
        // colour legend to it later).
        const QString told = QStringLiteral("Fenster %1").arg(w->windowTitle().section(QStringLiteral("  "), 0, 0));
        // Told on the control the reader stands on, in whichever window that is.
        const QList<QWidget*> all = QApplication::allWidgets();
        QVERIFY2(std::any_of(all.begin(), all.end(), [&](QWidget* c) { return DescriptionOf(c).startsWith(told) && DescriptionOf(c).contains(QStringLiteral("geöffnet")); }),
                 qPrintable(told));
        IF_EVENTS(QVERIFY(std::any_of(Spoken().begin(), Spoken().end(),
                                      [&](const QString& s) { return s.contains(told); })));
    }
}

void TestAccessibility::shortcutsBringUpOpenCompanionWindows() {
    A11yFixture f;
    QVERIFY(f.Open({}, true));
    const std::tuple<const char*, const char*, Qt::Key> windows[] = {
        {"MnBZKarte", "BZKarte", Qt::Key_K},     {"MnBZGrid", "GridKarte", Qt::Key_M},
        {"MnStatistik", "Statistik", Qt::Key_E}, {"MnLogTracker", "LogTracker", Qt::Key_C},
        {"MnDB", "DBLog", Qt::Key_T},            {"MnFrequenz", "Frequenz", Qt::Key_F},
        {"MnTransceiver", "Transceiver", Qt::Key_R}};
    for (const auto& [entry, name, key] : windows) {
        f.window->Action(QString::fromLatin1(entry))->trigger();
        QWidget* w = f.Companion(name);
        QVERIFY2(w, name);
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY2(QTest::qWaitForWindowActive(w), name);
        // And back to the call field from there.
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : w, Qt::Key_H,
                        Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        QCOMPARE(QApplication::focusWidget(), f.Text(3));
    }
}

void TestAccessibility::shortcutOfAClosedWindowSaysSo() {
    A11yFixture f;
    QVERIFY(f.Open());
    QTest::keyClick(f.Text(3), Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    Settle();
    QCOMPARE(DescriptionOf(f.Text(3)), QStringLiteral("Fenster Ergebnis nicht geöffnet"));
    IF_EVENTS(QVERIFY(Spoken().contains(QStringLiteral("Fenster Ergebnis nicht geöffnet"))));
    QCOMPARE(f.Text(3)->text(), QString());
}

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
