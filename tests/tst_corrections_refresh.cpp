// The corrections and the open companion windows: after a deletion, an edit or a bulk
// change the result window, the district map, the multiplier table, the partial-call
// window and the call check show the corrected log; a rewrite that failed and was
// cancelled is made good by the next contact or the closing.
#include "assist/db_log.h"
#include "assist/install_assist.h"
#include "assist/log_tracker.h"
#include "corrections/install_corrections.h"
#include "scoring/bz_karte.h"
#include "scoring/grid_karte.h"
#include "scoring/map_paint.h"
#include "scoring/statistik_window.h"
#include "disk_support.h"
#include "scoring_support.h"
#include "setup/modal.h"

#include <QMenu>
#include <QPushButton>
#include <QRadioButton>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

constexpr int kWhite = 0xFFFFFF;

template <class W> W* In(QDialog& d, const char* name) {
    return d.findChild<W*>(QString::fromLatin1(name));
}

// The main window with the scoring windows, the call assistance and the corrections,
// over the shipped district table and map.
struct RefreshFixture : ScoringFixture {
    bool StartWith(const std::vector<QsoRecord>& records) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        InstallScoring(*window, home.model, dialogs, clock);
        InstallAssist(*window, home.model, dialogs, clock);
        corrections::InstallCorrections(*window, home.model, dialogs, clock);
        if (!window->Load()) return false;
        window->show();
        return true;
    }
    // Opens the result window, the map, the multiplier table, the partial-call window
    // and the call check from their menu entries.
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
    // Lets every timer that is due run.
    static void Wait() {
        for (int i = 0; i < 5; ++i) {
            QTest::qWait(5);
            QCoreApplication::processEvents();
        }
    }
    // Right button on a data row, then the pop-up entry, as the operator does it.
    void Popup(int row, const char* entry) {
        LogGridView* view = window->GridView();
        view->scrollTo(Grid().index(row, 0));
        QTest::mouseClick(view->viewport(), Qt::RightButton, {},
                          view->visualRect(Grid().index(row, 4)).center());
        window->PopupMenu()->hide();
        QAction* a = window->Action(QString::fromLatin1(entry));
        QVERIFY(a && a->isEnabled());
        a->trigger();
    }
    int RowOfCall(const QString& call) const {
        for (int r = 0; r < Grid().DataRows(); ++r)
            if (Grid().Text(r, kGridColCall) == call) return r;
        return -1;
    }
    QRgb MapPixel(const QString& code) const {
        const BezirkRecord& b = home.model.BezirkRecords[size_t(Element(code))];
        return karte->Map().pixel(b.X, b.Y) | 0xff000000u;
    }
    // The multiplier table's cell of a district.
    int TableCell(const QString& code) const {
        const int n = Element(code);
        return gridKarte->CellColour(1, (n - 1) / 10, (n - 1) % 10);
    }
    // The partial-call window's cells ("call (district)"), one after another.
    QString PartialCalls() const {
        QStringList out;
        for (int r = 0; r < dbLog->Rows(); ++r)
            for (int c = 0; c < PartialGridModel::kColumns; ++c)
                if (!dbLog->Grid().CellText(r, c).isEmpty()) out << dbLog->Grid().CellText(r, c);
        return out.join(QLatin1Char(' '));
    }

    Statistik* statistik = nullptr;
    BZKarte* karte = nullptr;
    GridKarte* gridKarte = nullptr;
    DBLog* dbLog = nullptr;
    LogTracker* tracker = nullptr;
};

std::vector<QsoRecord> ThreeDistricts() {
    return {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3BBB"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00")),
            MakeRecord(QStringLiteral("OE6CCC"), 40, QStringLiteral("GZ"), QStringLiteral("05:50:00"))};
}

} // namespace

class TestCorrectionsRefresh : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    void aDeletionShowsInEveryOpenWindow() {
        RefreshFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        f.OpenAll();
        QTest::keyClicks(f.Text(3), QStringLiteral("OE3BB"));
        QTRY_VERIFY(f.PartialCalls().contains(QStringLiteral("OE3BBB")));
        QCOMPARE(f.statistik->Shown().Label6, 3.0);
        QCOMPARE(f.MapPixel(QStringLiteral("MD")), BgrToRgb(MapColours{}.c80));
        QCOMPARE(f.TableCell(QStringLiteral("MD")), f.gridKarte->ButtonColour(1));

        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOfCall(QStringLiteral("OE3BBB")), "MnVerstecktLoeschen");
        QCOMPARE(f.Grid().DataRows(), 2);
        QTRY_COMPARE(f.statistik->Shown().Label6, 2.0);
        QCOMPARE(f.statistik->LabelText(QStringLiteral("Label6")), QStringLiteral("2"));
        QTRY_COMPARE(f.MapPixel(QStringLiteral("MD")), qRgb(255, 255, 255));
        QTRY_COMPARE(f.TableCell(QStringLiteral("MD")), kWhite);
        QCOMPARE(f.TableCell(QStringLiteral("WI")), f.gridKarte->ButtonColour(0));
        QTRY_VERIFY(!f.PartialCalls().contains(QStringLiteral("OE3BBB")));
        // The selection stays at the place of the deleted row; the call check follows it.
        QTRY_COMPARE(f.tracker->windowTitle(), QStringLiteral("Check   OE6CCC"));
        QVERIFY(f.tracker->Ticked(0, 0));
        QVERIFY(f.window->FileUpToDate());
    }

    void anEditShowsInEveryOpenWindowOnceItsWindowHasClosed() {
        RefreshFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        f.OpenAll();
        f.Combo(1)->setCurrentIndex(0); // 40m
        QTest::keyClicks(f.Text(3), QStringLiteral("OE6CC"));
        QTRY_VERIFY(f.PartialCalls().contains(QStringLiteral("OE6CCC")));
        QCOMPARE(f.dbLog->Grid().CellColour(0, 0), f.dbLog->Colours().gearFarbe); // worked on 40m
        QCOMPARE(f.statistik->Shown().Label7, 2LL);
        QCOMPARE(f.MapPixel(QStringLiteral("GZ")), BgrToRgb(MapColours{}.c40));

        // OE6CCC from Graz on 40 m to Baden on 80 m.
        bool driven = false;
        setup::PushModalDriver([&](QDialog& d) {
            driven = true;
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("8"));
            QComboBox* bz = In<QComboBox>(d, "Combo5");
            bz->clearEditText();
            QTest::keyClicks(bz, QStringLiteral("BN"));
            QTest::mouseClick(In<QPushButton>(d, "Command4"), Qt::LeftButton);
        });
        f.Popup(f.RowOfCall(QStringLiteral("OE6CCC")), "MnVerstecktBearbeiten");
        QVERIFY(driven);
        QCOMPARE(f.home.model.LogRecords[2].Band, 80);
        QCOMPARE(f.home.model.LogRecords[2].Bezirk, QStringLiteral("BN"));
        QTRY_COMPARE(f.statistik->Shown().Label7, 1LL);
        QCOMPARE(f.statistik->Shown().Label8, 2LL);
        QTRY_COMPARE(f.MapPixel(QStringLiteral("GZ")), qRgb(255, 255, 255));
        QCOMPARE(f.MapPixel(QStringLiteral("BN")), BgrToRgb(MapColours{}.c80));
        QTRY_COMPARE(f.TableCell(QStringLiteral("GZ")), kWhite);
        QCOMPARE(f.TableCell(QStringLiteral("BN")), f.gridKarte->ButtonColour(1));
        // Worked on 80 m only now: not worked on the 40 m of the main window.
        QTRY_COMPARE(f.dbLog->Grid().CellColour(0, 0), f.dbLog->Colours().nichtGearFarbe);
        QVERIFY(f.window->FileUpToDate());
    }

    void aBulkBandChangeShowsInEveryOpenWindow() {
        RefreshFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        f.OpenAll();
        QCOMPARE(f.TableCell(QStringLiteral("WI")), f.gridKarte->ButtonColour(0));
        f.dialogs.AnswerMsgBox(Msg::Yes); // "Möchtest du die Änderungen wirklich übernehmen?"
        f.dialogs.AnswerMsgBox(Msg::Ok);  // "Änderungen erfolgreich abgeschlossen" ...
        f.dialogs.AnswerMsgBox(Msg::Yes); // "Möchtest du die Änderungen wirklich speichern?" ...
        bool driven = false;
        setup::PushModalDriver([&](QDialog& d) {
            driven = true;
            auto* band = In<QRadioButton>(d, "Option1_4"); // "&Band"
            QTest::mouseClick(band, Qt::LeftButton, {}, QPoint(8, band->height() / 2));
            QComboBox* value = In<QComboBox>(d, "Combo1");
            value->clearEditText();
            QTest::keyClicks(value, QStringLiteral("80m"));
            QTest::mouseClick(In<QPushButton>(d, "Command2"), Qt::LeftButton);
            QTest::mouseClick(In<QPushButton>(d, "Command6"), Qt::LeftButton);
        });
        f.Menu("MnLogExportierenDatumZeit")->trigger();
        QVERIFY(driven);
        QCOMPARE(f.home.model.LogRecords[0].Band, 80);
        QTRY_COMPARE(f.statistik->Shown().Label7, 0LL);
        QCOMPARE(f.statistik->Shown().Label8, 3LL);
        QTRY_COMPARE(f.MapPixel(QStringLiteral("WI")), BgrToRgb(MapColours{}.c80));
        QTRY_COMPARE(f.TableCell(QStringLiteral("WI")), f.gridKarte->ButtonColour(1));
    }

    void aCancelledFailedWriteIsMadeGoodByTheClosing() {
        RefreshFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        const QByteArray before = f.FileBytes();
        auto block = std::make_unique<WriteBlock>(); // the next rewrite fails until it is lifted
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        f.Popup(f.RowOfCall(QStringLiteral("OE3BBB")), "MnVerstecktLoeschen");
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(f.FileBytes(), before);
        QVERIFY(!f.window->FileUpToDate());
        block.reset();
        f.window->close();
        QVERIFY(!f.FileBytes().contains("OE3BBB"));
        QCOMPARE(f.FileBytes(), ToCp1252(f.home.model.LogText));
    }

    void aCancelledFailedEditIsMadeGoodByTheNextContact() {
        RefreshFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        auto block = std::make_unique<WriteBlock>(); // the next rewrite fails until it is lifted
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        setup::PushModalDriver([](QDialog& d) {
            QTest::keyClicks(In<QLineEdit>(d, "Text8"), QStringLiteral("Portabel"));
            QTest::mouseClick(In<QPushButton>(d, "Command4"), Qt::LeftButton);
        });
        f.Popup(f.RowOfCall(QStringLiteral("OE1AAA")), "MnVerstecktBearbeiten");
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QVERIFY(!f.FileBytes().contains("Portabel"));
        QVERIFY(!f.window->FileUpToDate());
        block.reset();
        f.Type(QStringLiteral("OE5DDD"), 0, QStringLiteral("LI"));
        QCOMPARE(f.home.model.LogRecords.size(), size_t(4));
        QVERIFY(f.window->FileUpToDate());
        QVERIFY(f.FileBytes().contains("Portabel"));
        QVERIFY(f.FileBytes().contains("OE5DDD"));
    }
};

QTEST_MAIN(TestCorrectionsRefresh)
#include "tst_corrections_refresh.moc"
