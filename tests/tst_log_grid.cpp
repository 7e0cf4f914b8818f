// The log grid of the main window: shape, refill, the red dupe cell, the sorts, the
// pop-up and the double click.
#include "core/tallies.h"
#include "tst_main_window_support.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

std::vector<QsoRecord> MixedLog() {
    return {
        MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("06:05:10")),
        MakeRecord(QStringLiteral("oe1zzz"), 40, QStringLiteral("WI"), QStringLiteral("06:01:00")),
        MakeRecord(QStringLiteral("OE6KLM"), 80, QStringLiteral("GZ"), QStringLiteral("06:05:50"),
                   QStringLiteral("CW")),
        MakeRecord(QStringLiteral("OE3ABC"), 80, QStringLiteral("MD"), QStringLiteral("06:09:00"),
                   QStringLiteral("SSB"), Status::Dupe),
        MakeRecord(QStringLiteral("OEK1"), 80, QStringLiteral("zz"), QStringLiteral("14:30:00")),
        MakeRecord(QStringLiteral("OE9AAA"), 40, QStringLiteral("ZZ"), QStringLiteral("05:59:59")),
    };
}

QStringList Column(const LogGridModel& g, int column) {
    QStringList out;
    for (int r = 0; r < g.DataRows(); ++r)
        out << g.Text(r, column);
    return out;
}

} // namespace

class TestLogGrid : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { PinLocale(); }
    void emptyLogShowsTheHeadingRowAlone();
    void rightClickOnAnEmptyGridDoesNothing();
    void columnsHaveTheirHeadingsAndHiddenWorkColumns();
    void refillShowsRecordsInRecordOrder();
    void refillRebuildsEveryCounter();
    void refillTwiceGivesTheSameCounters();
    void dupeRowIsRedOnlyInColumn11();
    void sortByTimeKeepsSameMinuteAdjacent_data();
    void sortByTimeKeepsSameMinuteAdjacent();
    void sortMenusStoreTheirSortMode_data();
    void sortMenusStoreTheirSortMode();
    void textSortsIgnoreCase();
    void sortKeepsTheRedCellWithItsRow();
    void rightClickSelectsTheRowAndPopsUpTheMenu();
    void doubleClickOnTheHeadingRowDoesNothing();
    void doubleClickOnARowAsksForTheEditWhenItExists();
    void rowChangeRefreshesTheTrackerOnlyWhenOpen();
    void lastRowIsKeptInView();
};

void TestLogGrid::emptyLogShowsTheHeadingRowAlone() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QCOMPARE(f.Grid().Rows(), 1);
    QCOMPARE(f.Grid().rowCount(), 0);
    QVERIFY(f.window->GridView()->horizontalHeader()->isVisible());
}

void TestLogGrid::rightClickOnAnEmptyGridDoesNothing() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    QSignalSpy spy(f.window->GridView(), &LogGridView::popupRequested);
    QTest::mouseClick(f.window->GridView()->viewport(), Qt::RightButton, {}, QPoint(20, 10));
    QCOMPARE(spy.count(), 0);
    QVERIFY(!f.window->PopupMenu()->isVisible());
}

void TestLogGrid::columnsHaveTheirHeadingsAndHiddenWorkColumns() {
    WindowFixture f;
    QVERIFY(f.StartEmpty());
    const QStringList headings = {
        QStringLiteral("Datum"), QStringLiteral("Zeit"),       QStringLiteral("Band"),
        QStringLiteral("Mode"),  QStringLiteral("Rufzeichen"), QStringLiteral("RSTs"),
        QStringLiteral("RSTe"),  QStringLiteral("BZ"),         QStringLiteral("QSL"),
        QStringLiteral("Notiz"), QStringLiteral("OpCall"),     QStringLiteral("Dupe")};
    QCOMPARE(f.Grid().columnCount(), 17);
    for (int c = 0; c < 17; ++c) {
        const bool hidden = c >= 12;
        QCOMPARE(f.window->GridView()->isColumnHidden(c), hidden);
        QCOMPARE(f.Grid().headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(),
                 hidden ? QString() : headings[c]);
        if (!hidden) QVERIFY(f.window->GridView()->columnWidth(c) >= LogGridModel::WidthTwips(c) / 15);
    }
    QCOMPARE(LogGridModel::WidthTwips(4), 1750);
    QCOMPARE(LogGridModel::WidthTwips(11), 650);
    QCOMPARE(LogGridModel::WidthTwips(16), 0);
}

void TestLogGrid::refillShowsRecordsInRecordOrder() {
    WindowFixture f;
    auto records = MixedLog();
    records[1].Bemerkung = QStringLiteral("Notiz");
    records[1].Qsl = 1;
    records[1].Frequenz = 7012.5f;
    f.WriteLog(QStringLiteral("test.KOLBO"), records);
    QVERIFY(f.Start());
    QCOMPARE(f.Grid().DataRows(), 6);
    QCOMPARE(Column(f.Grid(), 4),
             QStringList({QStringLiteral("OE3ABC"), QStringLiteral("oe1zzz"), QStringLiteral("OE6KLM"),
                          QStringLiteral("OE3ABC"), QStringLiteral("OEK1"), QStringLiteral("OE9AAA")}));
    const QStringList row1 = {
        QStringLiteral("01.05.2026"), QStringLiteral("06:01"),  QStringLiteral("40m"),
        QStringLiteral("SSB"),        QStringLiteral("oe1zzz"), QStringLiteral("59"),
        QStringLiteral("59"),         QStringLiteral("WI"),     QStringLiteral("1"),
        QStringLiteral("Notiz"),      QStringLiteral("OE1OPR"), QString(),
        QStringLiteral("SSB"),        QStringLiteral("0"),      QStringLiteral("7012.5"),
        QStringLiteral("0"),          QStringLiteral("1")};
    for (int c = 0; c < 17; ++c)
        QCOMPARE(f.Grid().Text(1, c), row1[c]);
    QCOMPARE(f.Grid().SortMode(), GridSort::None);
}

void TestLogGrid::refillRebuildsEveryCounter() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    Model& m = f.home.model;
    QCOMPARE(m.QsoCount, 5.0);
    QCOMPARE(m.DupeCount, 1);
    QCOMPARE(m.StaatsfunkRecords.size(), size_t(1));
    QCOMPARE(m.StaatsfunkRecords[0].Anz80, 1);
    QCOMPARE(m.BezirkRecords[2].AnzGesamt, 1); // MD: the dupe does not count
    QCOMPARE(m.BezirkRecords[4].AnzGesamt, 1); // ZZ; "zz" is no district
    QCOMPARE(m.ModeBandCount[0][1], 1); // "zz" stands in no district: no mode table either
    QCOMPARE(m.ModeBandCount[1][1], 1);
    QCOMPARE(m.PeriodBandCount[1][1], 0); // the 14:30 SSB contact was the one to "zz"
}

void TestLogGrid::refillTwiceGivesTheSameCounters() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    const Model before = f.home.model;
    f.window->DatenInGrid1Neu();
    QCOMPARE(f.home.model.QsoCount, before.QsoCount);
    QCOMPARE(f.home.model.ModeBandCount, before.ModeBandCount);
    QCOMPARE(f.home.model.GruppeBandCount, before.GruppeBandCount);
    QCOMPARE(f.Grid().DataRows(), 6);
}

void TestLogGrid::dupeRowIsRedOnlyInColumn11() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    for (int r = 0; r < f.Grid().DataRows(); ++r) {
        for (int c = 0; c < 17; ++c) {
            const bool red = r == 3 && c == 11;
            QCOMPARE(f.Grid().BackColor(r, c), red ? kDupeBackColor : -1);
            const QVariant bg = f.Grid().data(f.Grid().index(r, c), Qt::BackgroundRole);
            QCOMPARE(bg.isValid(), red);
            if (red) QCOMPARE(bg.value<QColor>(), QColor(255, 0, 0));
        }
        QCOMPARE(f.Grid().Text(r, 11), r == 3 ? QStringLiteral("Dupe") : QString());
    }
}

void TestLogGrid::sortByTimeKeepsSameMinuteAdjacent_data() {
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("ascending") << "MnSortierenZeit1"
                               << QStringList{"OE9AAA", "oe1zzz", "OE3ABC", "OE6KLM", "OE3ABC", "OEK1"};
    QTest::newRow("descending") << "MnSortierenZeit2"
                                << QStringList{"OEK1", "OE3ABC", "OE3ABC", "OE6KLM", "oe1zzz", "OE9AAA"};
}

void TestLogGrid::sortByTimeKeepsSameMinuteAdjacent() {
    QFETCH(QString, menu);
    QFETCH(QStringList, calls);
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    f.window->Action(menu)->trigger();
    const QStringList got = Column(f.Grid(), 4);
    // The two contacts of 06:05 stand side by side, in whatever order.
    const QStringList times = Column(f.Grid(), 1);
    const qsizetype first = times.indexOf(QStringLiteral("06:05"));
    QCOMPARE(times.lastIndexOf(QStringLiteral("06:05")), first + 1);
    QStringList expected = calls;
    const QSet<QString> pair = {got[first], got[first + 1]};
    QCOMPARE(pair, QSet<QString>({QStringLiteral("OE3ABC"), QStringLiteral("OE6KLM")}));
    expected[first] = got[first];
    expected[first + 1] = got[first + 1];
    QCOMPARE(got, expected);
}

void TestLogGrid::sortMenusStoreTheirSortMode_data() {
    QTest::addColumn<QString>("menu");
    QTest::addColumn<int>("sortMode");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("ascending");
    QTest::newRow("Zeit1") << "MnSortierenZeit1" << 1 << 1 << true;
    QTest::newRow("Zeit2") << "MnSortierenZeit2" << 2 << 1 << false;
    QTest::newRow("Rufzeichen1") << "MnSortierenRufzeichen1" << 4 << 4 << true;
    QTest::newRow("Rufzeichen2") << "MnSortierenRufzeichen2" << 3 << 4 << false;
    QTest::newRow("Bezirk1") << "MnSortierenBezirk1" << 6 << 7 << true;
    QTest::newRow("Bezirk2") << "MnSortierenBezirk2" << 5 << 7 << false;
}

void TestLogGrid::sortMenusStoreTheirSortMode() {
    QFETCH(QString, menu);
    QFETCH(int, sortMode);
    QFETCH(int, column);
    QFETCH(bool, ascending);
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    f.window->Action(menu)->trigger();
    QCOMPARE(f.Grid().SortMode(), sortMode);
    const QStringList values = Column(f.Grid(), column);
    for (qsizetype i = 0; i + 1 < values.size(); ++i) {
        const int c = column == 1
                          ? QTime::fromString(values[i], QStringLiteral("HH:mm"))
                                    .secsTo(QTime::fromString(values[i + 1], QStringLiteral("HH:mm"))) *
                                -1
                          : values[i].compare(values[i + 1], Qt::CaseInsensitive);
        QVERIFY2(ascending ? c <= 0 : c >= 0, qPrintable(values.join(QLatin1Char(','))));
    }
}

void TestLogGrid::textSortsIgnoreCase() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    f.window->Sortieren(GridSort::BezirkAuf);
    QCOMPARE(Column(f.Grid(), 7),
             QStringList({QStringLiteral("GZ"), QStringLiteral("MD"), QStringLiteral("MD"),
                          QStringLiteral("WI"), QStringLiteral("zz"), QStringLiteral("ZZ")}));
    f.window->Sortieren(GridSort::RufzeichenAuf);
    QCOMPARE(Column(f.Grid(), 4).mid(0, 4),
             QStringList({QStringLiteral("oe1zzz"), QStringLiteral("OE3ABC"), QStringLiteral("OE3ABC"),
                          QStringLiteral("OE6KLM")}));
}

void TestLogGrid::sortKeepsTheRedCellWithItsRow() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    f.window->Sortieren(GridSort::ZeitAb);
    for (int r = 0; r < f.Grid().DataRows(); ++r) {
        const bool dupe = f.Grid().Text(r, kGridColLaufNr) == QLatin1String("3");
        QCOMPARE(f.Grid().BackColor(r, 11), dupe ? kDupeBackColor : -1);
    }
}

void TestLogGrid::rightClickSelectsTheRowAndPopsUpTheMenu() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    LogGridView* view = f.window->GridView();
    view->scrollToTop();
    const QRect cell = view->visualRect(f.Grid().index(2, 4));
    QSignalSpy spy(view, &LogGridView::popupRequested);
    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, cell.center());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toInt(), 2);
    QCOMPARE(view->currentIndex().row(), 2);
    QCOMPARE(view->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(view->selectionModel()->selectedRows().first().row(), 2);
    QTRY_VERIFY(f.window->PopupMenu()->isVisible());
    QVERIFY(!f.window->Action(QStringLiteral("MnVerstecktLoeschen"))->isEnabled());
    QVERIFY(!f.window->Action(QStringLiteral("MnVerstecktBearbeiten"))->isEnabled());
    f.window->PopupMenu()->close();
}

void TestLogGrid::doubleClickOnTheHeadingRowDoesNothing() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    f.window->Action(QStringLiteral("MnVerstecktBearbeiten"))
        ->setEnabled(true); // as once the edit window exists
    QSignalSpy spy(f.window.get(), &HauptForm::bearbeitenRequested);
    QHeaderView* header = f.window->GridView()->horizontalHeader();
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionPosition(4) + 5, 5));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(f.Grid().SortMode(), GridSort::None);
}

void TestLogGrid::doubleClickOnARowAsksForTheEditWhenItExists() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    LogGridView* view = f.window->GridView();
    view->scrollToTop();
    const QPoint at = view->visualRect(f.Grid().index(1, 4)).center();
    QSignalSpy spy(f.window.get(), &HauptForm::bearbeitenRequested);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(spy.count(), 0); // the edit window is not there yet
    f.window->Action(QStringLiteral("MnVerstecktBearbeiten"))->setEnabled(true);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toInt(), 1);
}

void TestLogGrid::rowChangeRefreshesTheTrackerOnlyWhenOpen() {
    WindowFixture f;
    f.WriteLog(QStringLiteral("test.KOLBO"), MixedLog());
    QVERIFY(f.Start());
    QSignalSpy spy(f.window.get(), &HauptForm::trackerRefreshRequested);
    LogGridView* view = f.window->GridView();
    view->setCurrentIndex(f.Grid().index(2, 0));
    QCOMPARE(spy.count(), 0);
    f.home.model.Open.LogTracker = true;
    view->setCurrentIndex(f.Grid().index(4, 0));
    QCOMPARE(spy.count(), 1);
}

void TestLogGrid::lastRowIsKeptInView() {
    WindowFixture f;
    std::vector<QsoRecord> many;
    for (int i = 0; i < 200; ++i)
        many.push_back(MakeRecord(QStringLiteral("OE1A%1").arg(i), 80, QStringLiteral("WI"),
                                  QTime(6, 0).addSecs(i * 30).toString(QStringLiteral("HH:mm:ss"))));
    f.WriteLog(QStringLiteral("test.KOLBO"), many);
    QVERIFY(f.Start());
    LogGridView* view = f.window->GridView();
    auto lastShown = [&] {
        const QRect r = view->visualRect(f.Grid().index(f.Grid().DataRows() - 1, 0));
        return r.isValid() && view->viewport()->rect().contains(r.center());
    };
    QTRY_VERIFY(lastShown());
    f.Type(QStringLiteral("OE3NEU"), 1, QStringLiteral("MD"));
    QCOMPARE(f.Grid().DataRows(), 201);
    QTRY_VERIFY(lastShown());
    QCOMPARE(view->currentIndex().row(), 200);
    f.window->resize(f.window->width(), f.window->height() - 100);
    QTRY_VERIFY(lastShown());
}

QTEST_MAIN(TestLogGrid)
#include "tst_log_grid.moc"
