// The companion windows together: after "Log Öffnen" every open one shows the new log
// (result window, call check, district map, multiplier table, partial-call window, in
// that order), and a companion window opened with no stored place leaves the call,
// report and district fields in view.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "assist/log_tracker.h"
#include "corrections/install_corrections.h"
#include "scoring/bz_karte.h"
#include "scoring/grid_karte.h"
#include "scoring/map_paint.h"
#include "scoring/statistik_window.h"
#include "scoring_support.h"
#include "setup/log_new_open.h"
#include "setup/main_window_setup.h"
#include "setup/modal.h"

#include <QApplication>
#include <QListWidget>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// The main window as the program puts it together (log set-up, scoring, call
// assistance, corrections) over the shipped district table and map.
struct CompanionFixture : ScoringFixture {
    bool StartWith(const std::vector<QsoRecord>& records) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        InstallScoring(*window, home.model, dialogs, clock);
        InstallAssist(*window, home.model, dialogs, clock);
        corrections::InstallCorrections(*window, home.model, dialogs, clock);
        if (!window->Load()) return false;
        // The log set-up after the start: the log comes from KOLIBRINO_LOG, not the log manager.
        setup::InstallLogSetup(*window, home.model, dialogs, clock);
        window->show();
        return true;
    }
    void OpenAll() {
        for (const char* entry : {"MnStatistik", "MnBZKarte", "MnBZGrid", "MnDB", "MnLogTracker"})
            Menu(entry)->trigger();
        statistik = OpenStatistik(*window);
        karte = OpenBZKarte(*window);
        gridKarte = OpenGridKarte(*window);
        dbLog = DBLogOf(*window);
        tracker = LogTrackerOf(*window);
        QVERIFY(statistik && karte && gridKarte && dbLog && tracker);
        Wait();
    }
    static void Wait() {
        for (int i = 0; i < 5; ++i) {
            QTest::qWait(5);
            QCoreApplication::processEvents();
        }
    }
    QRgb MapPixel(const QString& code) const {
        const BezirkRecord& b = home.model.BezirkRecords[size_t(Element(code))];
        return karte->Map().pixel(b.X, b.Y) | 0xff000000u;
    }
    int TableCell(const QString& code) const {
        const int n = Element(code);
        return gridKarte->CellColour(1, (n - 1) / 10, (n - 1) % 10);
    }
    QString PartialCalls() const {
        QStringList out;
        for (int r = 0; r < dbLog->Rows(); ++r)
            for (int c = 0; c < PartialGridModel::kColumns; ++c)
                if (!dbLog->Grid().CellText(r, c).isEmpty()) out << dbLog->Grid().CellText(r, c);
        return out.join(QLatin1Char(' '));
    }
    // The call, report and district fields of the main window, in global pixels.
    QList<QWidget*> EntryLine() const { return {Text(3), Text(4), Text(5), static_cast<QWidget*>(Combo(5))}; }
    static QRect Global(const QWidget* w) { return QRect(w->mapToGlobal(QPoint(0, 0)), w->size()); }

    Statistik* statistik = nullptr;
    BZKarte* karte = nullptr;
    GridKarte* gridKarte = nullptr;
    DBLog* dbLog = nullptr;
    LogTracker* tracker = nullptr;
};

std::vector<QsoRecord> LogA() {
    return {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3BBB"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00"))};
}

std::vector<QsoRecord> LogB() {
    return {MakeRecord(QStringLiteral("OE6CCC"), 40, QStringLiteral("GZ"), QStringLiteral("05:50:00")),
            MakeRecord(QStringLiteral("OE3BBZ"), 80, QStringLiteral("GZ"), QStringLiteral("06:00:00"))};
}

} // namespace

class TestCompanionWindows : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    // "Log Öffnen" of another log: the map, the multiplier table and the partial-call
    // window drop the old log's districts and calls and show the new one's, like the
    // result window and the call check, and are told in the order of the switch.
    void aLogSwitchBringsEveryOpenSideWindowToTheNewLog() {
        CompanionFixture f;
        QVERIFY(f.StartWith(LogA()));
        f.WriteLog(QStringLiteral("B.KOLBO"), LogB());
        f.OpenAll();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE3BB"));
        QTRY_VERIFY(f.PartialCalls().contains(QStringLiteral("OE3BBB")));
        QCOMPARE(f.MapPixel(QStringLiteral("MD")), BgrToRgb(MapColours{}.c80));
        QCOMPARE(f.TableCell(QStringLiteral("MD")), f.gridKarte->ButtonColour(1));
        QCOMPARE(f.MapPixel(QStringLiteral("GZ")), qRgb(255, 255, 255));

        QStringList told;
        HauptForm* w = f.window.get();
        QObject::connect(w, &HauptForm::statistikRefreshRequested,
                         [&] { told << QStringLiteral("Statistik"); });
        QObject::connect(w, &HauptForm::trackerRefreshRequested,
                         [&] { told << QStringLiteral("LogTracker"); });
        QObject::connect(w, &HauptForm::bzKarteRefreshRequested, [&] { told << QStringLiteral("BZKarte"); });
        QObject::connect(w, &HauptForm::gridKarteRefreshRequested,
                         [&] { told << QStringLiteral("GridKarte"); });
        QObject::connect(w, &HauptForm::dbLogRefreshRequested, [&] { told << QStringLiteral("DBLog"); });
        setup::PushModalDriver([](QDialog& d) {
            QCOMPARE(d.objectName(), QStringLiteral("LogNewOpen"));
            static_cast<setup::LogNewOpen&>(d).OpenRow(QStringLiteral("B.KOLBO"));
        });
        f.Menu("MnOpenLog")->trigger();
        QCOMPARE(f.home.model.CurrentLogName, QStringLiteral("B.KOLBO"));
        QCOMPARE(told, (QStringList{QStringLiteral("Statistik"), QStringLiteral("LogTracker"),
                                    QStringLiteral("BZKarte"), QStringLiteral("GridKarte"),
                                    QStringLiteral("DBLog")}));
        f.Wait();
        QTRY_COMPARE(f.MapPixel(QStringLiteral("MD")), qRgb(255, 255, 255));
        QCOMPARE(f.MapPixel(QStringLiteral("WI")), qRgb(255, 255, 255));
        QCOMPARE(f.MapPixel(QStringLiteral("GZ")), BgrToRgb(MapColours{}.c4080)); // 40 m and 80 m
        QTRY_VERIFY(f.TableCell(QStringLiteral("MD")) != f.gridKarte->ButtonColour(1));
        QCOMPARE(f.TableCell(QStringLiteral("GZ")), f.gridKarte->ButtonColour(2)); // 40 m and 80 m
        QTRY_VERIFY(!f.PartialCalls().contains(QStringLiteral("OE3BBB")));
        QVERIFY(f.PartialCalls().contains(QStringLiteral("OE3BBZ")));
    }

    // With no stored place, no companion window opens over the call, report or district
    // field of the main window.
    void companionWindowsOpenClearOfTheEntryLine_data() {
        QTest::addColumn<QString>("entry");
        for (const char* e : {"MnDB", "MnLogTracker", "MnStatistik", "MnBZKarte", "MnBZGrid"})
            QTest::newRow(e) << QString::fromLatin1(e);
    }
    void companionWindowsOpenClearOfTheEntryLine() {
        QFETCH(QString, entry);
        CompanionFixture f;
        QVERIFY(f.StartWith(LogA()));
        QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
        f.Menu(entry.toLatin1().constData())->trigger();
        f.Wait();
        QString name;
        for (const CompanionDef& c : Companions())
            if (entry == QLatin1String(c.menuEntry)) name = QString::fromLatin1(c.name);
        QWidget* opened = nullptr;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == name && top->isVisible()) opened = top;
        QVERIFY2(opened, qPrintable(name));
        const QRect frame = opened->frameGeometry();
        for (QWidget* field : f.EntryLine())
            QVERIFY2(!frame.intersects(CompanionFixture::Global(field)),
                     qPrintable(QStringLiteral("%1 at %2,%3 %4x%5 covers %6")
                                    .arg(opened->objectName())
                                    .arg(frame.x())
                                    .arg(frame.y())
                                    .arg(frame.width())
                                    .arg(frame.height())
                                    .arg(field->objectName())));
    }

    // A stored place wins over the placement.
    void aStoredPlaceStillWins() {
        CompanionFixture f;
        IniWrite(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("DBLogTop"), 450);
        IniWrite(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("DBLogLeft"), 4446);
        IniWrite(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("StatistikTop"), 1500);
        IniWrite(f.home.model.IniPath, QStringLiteral("FensterPos"), QStringLiteral("StatistikLeft"), 3000);
        QVERIFY(f.StartWith(LogA()));
        f.OpenAll();
        QCOMPARE(f.dbLog->pos(), QPoint(296, 30));
        QCOMPARE(f.statistik->pos(), QPoint(200, 100));
    }

    // Two windows opened one after the other do not land on the same place when the
    // screen has room for both.
    void placementAvoidsTheOtherWindowsWhereThereIsRoom() {
        const QRect screen(0, 0, 1920, 1080);
        const QRect main(0, 0, 1040, 640);
        const QRect keep(10, 60, 600, 30);
        const QPoint first = CompanionPlace(main, keep, QSize(708, 192), screen, {});
        QCOMPARE(first, QPoint(1044, 0)); // beside, at the main window's top
        const QPoint second =
            CompanionPlace(main, keep, QSize(500, 300), screen, {QRect(first, QSize(708, 192))});
        QVERIFY(!QRect(second, QSize(500, 300)).intersects(QRect(first, QSize(708, 192))));
        QVERIFY(screen.contains(QRect(second, QSize(500, 300))));
        // A screen no larger than the main window: below the entry line.
        const QPoint small = CompanionPlace(main, keep, QSize(708, 192), QRect(0, 0, 800, 600), {});
        QVERIFY(small.y() > keep.bottom());
        QVERIFY(QRect(0, 0, 800, 600).contains(QRect(small, QSize(708, 192))));
    }
};

QTEST_MAIN(TestCompanionWindows)
#include "tst_companion_windows.moc"
