// The multiplier table: cell layout, the colour rule, the repaint, prefixes, tool tips
// and the colour buttons.
#include "scoring/bz_karte.h"
#include "scoring/grid_karte.h"
#include "scoring/map_paint.h"
#include "scoring/statistik_window.h"
#include "scoring_support.h"

#include <QPushButton>
#include <QTableWidget>

using namespace kolibrino;
using namespace kolibrino::test;

class TestGridKarte : public QObject {
    Q_OBJECT

    static GridKarte* Open(ScoringFixture& f) {
        f.Menu("MnBZGrid")->trigger();
        GridKarte* g = OpenGridKarte(*f.window);
        ScoringFixture::Settle();
        return g;
    }
    static int Cell(GridKarte* g, int n) { return g->CellColour(1, (n - 1) / 10, (n - 1) % 10); }
    static constexpr int kWhite = 0xFFFFFF;

private slots:
    void initTestCase() { PinLocale(); }

    void districtsStandTenToARowInTableOrder() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        GridKarte* g = Open(f);
        QVERIFY(f.Menu("MnBZGrid")->isChecked());
        QCOMPARE(g->windowTitle(), QStringLiteral("Multiplikatoren-Tabelle"));
        auto* grid1 = g->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid1"));
        QCOMPARE(grid1->rowCount(), 10);
        QCOMPARE(grid1->item(0, 0)->text(), QStringLiteral("WI"));
        QCOMPARE(grid1->item(2, 0)->text(), f.home.model.BezirkRecords[21].Code);
        QCOMPARE(grid1->item(9, 3)->text(), QStringLiteral("FK"));
        QCOMPARE(grid1->item(9, 4)->text(), QString());
        auto* grid2 = g->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid2"));
        QCOMPARE(grid2->item(0, 4)->text(), QStringLiteral("OE5"));
        QCOMPARE(g->Button(2)->text(), QStringLiteral("40/80m"));
        QCOMPARE(g->Button(1)->toolTip(), QStringLiteral("Farbe für gearbeitete 80m Felder"));
    }

    void contactsColourTheirCellsByBand() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        GridKarte* g = Open(f);
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        QCOMPARE(Cell(g, 1), g->ButtonColour(0));
        QCOMPARE(g->CellColour(2, 0, 0), g->ButtonColour(0));
        f.Type(QStringLiteral("OE3AAA"), 1, QStringLiteral("MD"));
        QCOMPARE(Cell(g, f.Element(QStringLiteral("MD"))), g->ButtonColour(1));
        f.Type(QStringLiteral("OE1BBB"), 1, QStringLiteral("WI"));
        QCOMPARE(Cell(g, 1), g->ButtonColour(2));
        QCOMPARE(g->CellColour(2, 0, 0), g->ButtonColour(2));
        QCOMPARE(Cell(g, 2), kWhite);
    }

    void districtWithOnly30mContactsStaysUncoloured() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OEY21"), 30, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        GridKarte* g = Open(f);
        QCOMPARE(Cell(g, 1), kWhite);
        QCOMPARE(g->CellColour(2, 0, 0), kWhite);
        g->GridCellColor(QStringLiteral("WI"), 1, QString());
        QCOMPARE(Cell(g, 1), kWhite);
    }

    void deletingTheOnly40mContactTurnsBothBandsTo80mAfterTheRepaint() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE1BBB"), 80, QStringLiteral("WI"), QStringLiteral("06:01:00"))}));
        GridKarte* g = Open(f);
        QCOMPARE(Cell(g, 1), g->ButtonColour(2));
        // What a deletion does to the tallies of the 40 m contact.
        Model& m = f.home.model;
        m.BezirkRecords[1].Anz40 = 0;
        m.BezirkRecords[1].AnzGesamt = 1;
        m.GruppeBandCount[0][0] = 0;
        g->GridCellColor(QStringLiteral("WI"), 1, QString());
        QCOMPARE(Cell(g, 1), g->ButtonColour(1)); // 80 m only
        m.BezirkRecords[1].Anz80 = 0;
        g->GridCellColor(QStringLiteral("WI"), 1, QString());
        QCOMPARE(Cell(g, 1), g->ButtonColour(1)); // a cell without contacts stays as it is
        emit f.window->gridKarteRefreshRequested();
        QVERIFY(g->Timer1().isActive());
        ScoringFixture::Settle();
        QCOMPARE(Cell(g, 1), kWhite);
    }

    void aPrefixIsShownOnlyOnce() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        GridKarte* g = Open(f);
        f.Type(QStringLiteral("OEY21"), 1, QStringLiteral("WI"));
        f.Type(QStringLiteral("OEY22"), 1, QStringLiteral("MD"));
        auto* grid3 = g->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid3"));
        QCOMPARE(grid3->item(0, 0)->text(), QStringLiteral("OEY"));
        QCOMPARE(grid3->item(0, 1)->text(), QString());
        QCOMPARE(g->CellColour(3, 0, 0), g->ButtonColour(1));
        g->Timer1Tick();
        QCOMPARE(grid3->item(0, 0)->text(), QStringLiteral("OEY"));
        QCOMPARE(grid3->item(0, 1)->text(), QString());
    }

    void moreThanNinePrefixesStayOutOfTheTableButNotOutOfTheResult() {
        ScoringFixture f;
        std::vector<QsoRecord> records;
        for (int i = 0; i < 11; ++i)
            records.push_back(MakeRecord(QStringLiteral("OE%1X").arg(QChar(u'A' + i)), 80,
                                         QStringLiteral("WI"), QStringLiteral("06:%1:00").arg(10 + i)));
        QVERIFY(f.StartScoring(records));
        GridKarte* g = Open(f);
        f.Menu("MnStatistik")->trigger();
        ScoringFixture::Settle();
        auto* grid3 = g->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid3"));
        QCOMPARE(grid3->columnCount(), 9);
        QCOMPARE(grid3->item(0, 8)->text(), QStringLiteral("OEI"));
        Statistik* s = OpenStatistik(*f.window);
        QCOMPARE(s->findChild<QTableWidget*>(QStringLiteral("MSFlexGrid1"))->rowCount(), 11);
        QCOMPARE(s->LabelText(QStringLiteral("Label21")), QStringLiteral("11"));
    }

    void toolTipShowsNameStateAndCount() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE1BBB"), 80, QStringLiteral("WI"), QStringLiteral("06:01:00"))}));
        GridKarte* g = Open(f);
        QCOMPARE(g->ToolTipAt(0, 0), QStringLiteral("Wien  OE1  (2)"));
        QCOMPARE(g->ToolTipAt(0, 1), QStringLiteral("Hallein  OE2  (0)"));
        QCOMPARE(g->ToolTipAt(9, 5), QString());
    }

    void blackIsRefusedAndAColourIsStoredAndSpread() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 80, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        GridKarte* g = Open(f);
        f.Menu("MnBZKarte")->trigger();
        f.Menu("MnStatistik")->trigger();
        ScoringFixture::Settle();
        const int before = g->ButtonColour(1);
        f.dialogs.AnswerColor(0);
        QTest::mouseClick(g->Button(1), Qt::LeftButton);
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Die Farbe schwarz ist nicht möglich!"));
        QCOMPARE(g->ButtonColour(1), before);
        f.dialogs.AnswerColor(-1);
        g->CommandClick(1);
        QCOMPARE(g->ButtonColour(1), before);
        f.dialogs.AnswerColor(0x00AA00);
        g->CommandClick(1);
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Farben"), QStringLiteral("80mFarbe")),
                 double(0x00AA00));
        QVERIFY(g->Timer1().isActive());
        ScoringFixture::Settle();
        QCOMPARE(Cell(g, 1), 0x00AA00);
        QCOMPARE(OpenBZKarte(*f.window)->ButtonColour(1), 0x00AA00);
        QCOMPARE(OpenStatistik(*f.window)->Colours()[1], 0x00AA00);
    }

    void storedColoursAreUsedAtLoad() {
        ScoringFixture f;
        f.Ini(QStringLiteral("Farben"), QStringLiteral("4080mFarbe"), QString::number(0x0000AA));
        QVERIFY(f.StartScoring());
        GridKarte* g = Open(f);
        QCOMPARE(g->ButtonColour(2), 0x0000AA);
        QCOMPARE(g->ButtonColour(0), MapColours{}.c40);
    }
};

QTEST_MAIN(TestGridKarte)
#include "tst_grid_karte.moc"
