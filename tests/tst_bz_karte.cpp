// The district map: the fill of every district stays inside its outline, the band-mix
// colours, the filter rows, half size, colours and printing.
#include "core/call_index.h"
#include "core/print_choice.h"

#include <QPrinter>
#include "scoring/bz_karte.h"
#include "scoring/flood_fill.h"
#include "scoring/grid_karte.h"
#include "scoring/statistik_window.h"
#include "scoring_support.h"

#include <QComboBox>
#include <QProcess>
#include <QPushButton>
#include <QScrollBar>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

QRgb Pixel(const QImage& map, const BezirkRecord& b) {
    return map.pixel(b.X, b.Y) | 0xff000000u;
}

QString RunTool(const QString& tool, const QStringList& args) {
    QProcess p;
    p.start(tool, args);
    if (!p.waitForFinished(60000)) return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class TestBZKarte : public QObject {
    Q_OBJECT

    static BZKarte* Open(ScoringFixture& f) {
        f.Menu("MnBZKarte")->trigger();
        BZKarte* k = OpenBZKarte(*f.window);
        ScoringFixture::Settle();
        return k;
    }
    static MapColours Design() { return MapColours{}; }

private slots:
    void initTestCase() { PinLocale(); }

    void menuOpensTheMapPaintedAndClosesIt() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        BZKarte* k = Open(f);
        QVERIFY(k);
        QVERIFY(f.home.model.Open.BZKarte);
        QVERIFY(f.Menu("MnBZKarte")->isChecked());
        QCOMPARE(k->windowTitle(), QStringLiteral("Bezirke Karte"));
        QCOMPARE(k->Map().size(), QSize(1100, 600));
        QCOMPARE(Pixel(k->Map(), f.home.model.BezirkRecords[1]), BgrToRgb(Design().c40));
        f.Menu("MnBZKarte")->trigger();
        QVERIFY(!f.home.model.Open.BZKarte);
        QVERIFY(!f.Menu("MnBZKarte")->isChecked());
    }

    // For every district: filling it alone changes only white pixels of its own region,
    // reaches no other district's seed, and all fills together leave no white pixel.
    void everyDistrictFillStaysInsideItsOutline() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        Model& m = f.home.model;
        QCOMPARE(m.BezirkRecords.size(), size_t(95));
        const QImage fresh = k->Map();
        QImage all = fresh;
        const QRgb white = qRgb(255, 255, 255);
        for (size_t i = 1; i < m.BezirkRecords.size(); ++i) {
            BezirkRecord& b = m.BezirkRecords[i];
            b.Anz40 = 1; // only this district is worked
            k->Timer1Tick();
            b.Anz40 = 0;
            const QImage& one = k->Map();
            const QRgb colour = BgrToRgb(Design().c40);
            int changed = 0;
            for (int y = 0; y < fresh.height(); ++y) {
                const QRgb* a = reinterpret_cast<const QRgb*>(fresh.constScanLine(y));
                const QRgb* c = reinterpret_cast<const QRgb*>(one.constScanLine(y));
                for (int x = 0; x < fresh.width(); ++x) {
                    if ((a[x] | 0xff000000u) == (c[x] | 0xff000000u)) continue;
                    ++changed;
                    QVERIFY2((a[x] | 0xff000000u) == white, qPrintable(b.Code)); // only the white inside
                    QVERIFY2((c[x] | 0xff000000u) == colour, qPrintable(b.Code));
                }
            }
            QVERIFY2(changed > 0, qPrintable(b.Code));
            for (size_t j = 1; j < m.BezirkRecords.size(); ++j)
                if (j != i)
                    QVERIFY2(Pixel(one, m.BezirkRecords[j]) == white,
                             qPrintable(b.Code + QStringLiteral(" leaks into ") + m.BezirkRecords[j].Code));
            // The same region on a map where all earlier districts are filled: no overlap.
            QCOMPARE(FloodFill4(all, QPoint(b.X, b.Y), qRgb(1, 2, int(i))), changed);
        }
        int whiteLeft = 0;
        for (int y = 0; y < all.height(); ++y)
            for (int x = 0; x < all.width(); ++x)
                if ((all.pixel(x, y) | 0xff000000u) == white) ++whiteLeft;
        QCOMPARE(whiteLeft, 0);
    }

    void thirtyMetreOnlyDistrictIsNotPaintedButRows4And8PaintIt() {
        ScoringFixture f;
        f.home.model.IsStaatsfunkstelle = true;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 30, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        BZKarte* k = Open(f);
        const BezirkRecord& wi = f.home.model.BezirkRecords[1];
        QCOMPARE(wi.Anz30, 1);
        QCOMPARE(Pixel(k->Map(), wi), qRgb(255, 255, 255));
        for (int row : {4, 8}) {
            k->findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentIndex(row);
            k->Combo1Click(row);
            QCOMPARE(Pixel(k->Map(), wi), BgrToRgb(Design().c30));
        }
        k->Combo1Click(1); // "alle 40m Bezirke"
        QCOMPARE(Pixel(k->Map(), wi), qRgb(255, 255, 255));
    }

    void secondEntryRepaintsTheDistrictInPlaceWithoutReload() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        const BezirkRecord& wi = f.home.model.BezirkRecords[1];
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        QCOMPARE(Pixel(k->Map(), wi), BgrToRgb(Design().c40));
        QVERIFY(!k->Timer1().isActive());
        f.Type(QStringLiteral("OE1BBB"), 1, QStringLiteral("WI"));
        QVERIFY(!k->Timer1().isActive()); // no reload was asked for
        QCOMPARE(Pixel(k->Map(), wi), BgrToRgb(Design().c4080));
        const BezirkRecord& md = f.home.model.BezirkRecords[f.Element(QStringLiteral("MD"))];
        QCOMPARE(Pixel(k->Map(), md), qRgb(255, 255, 255));
    }

    void loggingInAFilterViewReturnsToTheStandardViewAndClearsTheBox() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 80, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        BZKarte* k = Open(f);
        auto* combo = k->findChild<QComboBox*>(QStringLiteral("Combo1"));
        combo->setCurrentIndex(1);
        k->Combo1Click(1); // "alle 40m Bezirke": WI (80 m) is not painted
        const BezirkRecord& wi = f.home.model.BezirkRecords[1];
        QCOMPARE(Pixel(k->Map(), wi), qRgb(255, 255, 255));
        f.Type(QStringLiteral("OE3AAA"), 0, QStringLiteral("MD"));
        QVERIFY(k->Timer1().isActive());
        ScoringFixture::Settle();
        QCOMPARE(combo->currentIndex(), -1);
        QCOMPARE(combo->placeholderText(), QStringLiteral("Bezirke einfärben"));
        QCOMPARE(Pixel(k->Map(), wi), BgrToRgb(Design().c80));
        QCOMPARE(Pixel(k->Map(), f.home.model.BezirkRecords[f.Element(QStringLiteral("MD"))]),
                 BgrToRgb(Design().c40));
    }

    void filterRowsFollowTheirTable_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<int>>("painted"); // of WI (40+80), MD (40), GZ (80), SA (30), BR (30+80)
        QTest::newRow("0") << 0 << "alle gültigen Bezirke" << QList<int>{1, 1, 1, 0, 1};
        QTest::newRow("1") << 1 << "alle 40m Bezirke" << QList<int>{1, 1, 0, 0, 0};
        QTest::newRow("2") << 2 << "alle 80m Bezirke" << QList<int>{1, 0, 1, 0, 1};
        QTest::newRow("3") << 3 << "alle 40/80m Bezirke" << QList<int>{1, 0, 0, 0, 0};
        QTest::newRow("4") << 4 << "alle 30m Bezirke" << QList<int>{0, 0, 0, 1, 1};
        QTest::newRow("5") << 5 << "alle 30/80m Bezirke" << QList<int>{0, 0, 0, 0, 1};
        QTest::newRow("6") << 6 << "nur 40m Bezirke" << QList<int>{0, 1, 0, 0, 0};
        QTest::newRow("7") << 7 << "nur 80m Bezirke" << QList<int>{0, 0, 1, 0, 0};
        QTest::newRow("8") << 8 << "nur 30m Bezirke!" << QList<int>{0, 0, 0, 1, 0};
    }
    void filterRowsFollowTheirTable() {
        QFETCH(int, row);
        QFETCH(QString, text);
        QFETCH(QList<int>, painted);
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        Model& m = f.home.model;
        const QStringList codes = {"WI", "MD", "GZ", "SA", "BR"};
        auto at = [&](const char* c) -> BezirkRecord& {
            return m.BezirkRecords[f.Element(QString::fromLatin1(c))];
        };
        at("WI").Anz40 = at("WI").Anz80 = 1;
        at("MD").Anz40 = 1;
        at("GZ").Anz80 = 1;
        at("SA").Anz30 = 1;
        at("BR").Anz30 = at("BR").Anz80 = 1;
        auto* combo = k->findChild<QComboBox*>(QStringLiteral("Combo1"));
        QCOMPARE(combo->itemText(row), text);
        combo->setCurrentIndex(row);
        emit combo->activated(row);
        ScoringFixture::Settle();
        for (int i = 0; i < codes.size(); ++i)
            QVERIFY2((Pixel(k->Map(), m.BezirkRecords[f.Element(codes[i])]) != qRgb(255, 255, 255)) ==
                         bool(painted[i]),
                     qPrintable(codes[i]));
        if (row > 0) QCOMPARE(k->PrintHeading(), text);
    }

    void openOutlineLetsOneFillRunOverBoth() {
        // Two districts side by side, no outline between them.
        QImage image(20, 10, QImage::Format_RGB32);
        image.fill(qRgb(255, 255, 255));
        for (int y = 0; y < 10; ++y)
            image.setPixel(19, y, qRgb(0, 0, 0));
        BezirkRecord a;
        a.X = 2;
        a.Y = 5;
        BezirkRecord b;
        b.X = 15;
        b.Y = 5;
        FillDistrict(image, a, 0x00FF00);
        QCOMPARE(image.pixel(b.X, b.Y), BgrToRgb(0x00FF00));
    }

    void choosingBlackLeavesColourAndSettingsUnchanged() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        const int before = k->ButtonColour(0);
        f.dialogs.AnswerColor(0);
        QTest::mouseClick(k->Button(0), Qt::LeftButton);
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Die Farbe schwarz ist nicht möglich!"));
        QCOMPARE(f.dialogs.LastBox()->flags, 64);
        QCOMPARE(k->ButtonColour(0), before);
        QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Farben"), QStringLiteral("40mFarbe")),
                 QString());
    }

    void colourChangeIsStoredRepaintsAndReachesTheTable() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        f.Menu("MnBZGrid")->trigger();
        BZKarte* k = Open(f);
        f.dialogs.AnswerColor(0x123456);
        k->CommandClick(0);
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Farben"), QStringLiteral("40mFarbe")),
                 double(0x123456));
        QCOMPARE(OpenGridKarte(*f.window)->ButtonColour(0), 0x123456);
        QVERIFY(k->Timer1().isActive());
        ScoringFixture::Settle();
        QCOMPARE(Pixel(k->Map(), f.home.model.BezirkRecords[1]), BgrToRgb(0x123456));
        // 30/80m: stored, but no repaint
        f.dialogs.AnswerColor(0x654321);
        k->CommandClick(4);
        QVERIFY(!k->Timer1().isActive());
        QCOMPARE(IniReadInt(f.home.model.IniPath, QStringLiteral("Farben"), QStringLiteral("3080mFarbe")),
                 double(0x654321));
    }

    void atHalfSizeANewDistrictShowsAtOnceInTheSmallView() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        k->show();
        QTest::mouseClick(k->findChild<QCheckBox*>(QStringLiteral("Check1")), Qt::LeftButton);
        QVERIFY(k->HalfSize());
        QVERIFY(k->findChild<QPushButton*>(QStringLiteral("Command6"))->isVisible());
        f.Type(QStringLiteral("OE1AAA"), 0, QStringLiteral("WI"));
        const BezirkRecord& wi = f.home.model.BezirkRecords[1];
        const QImage small = k->HalfView();
        QCOMPARE(small.size(), QSize(550, 300));
        QCOMPARE(small.pixel(wi.X / 2, wi.Y / 2) | 0xff000000u, BgrToRgb(Design().c40));
        QTest::mouseClick(k->findChild<QPushButton*>(QStringLiteral("Command6")), Qt::LeftButton);
        QVERIFY(!k->HalfSize());
        QVERIFY(!k->findChild<QCheckBox*>(QStringLiteral("Check1"))->isChecked());
    }

    void lineWithOnlyThreeSemicolonsEndsTheReading() {
        Home home;
        WriteBytes(
            home.model.DataFolder + QStringLiteral("bez_koord.txt"),
            Cp(QStringLiteral("WI;500;200;Wien;1;\r\nMD;480;230\r\nAB;1;2;\r\nGZ;420;420;Graz;6;\r\n")));
        ScriptedDialogs d;
        LoadBezirkTable(home.model, d);
        QCOMPARE(BezirkNumber(home.model, QStringLiteral("GZ")), 0);
    }

    void printedHeadingWithNoRowSelectedIsAlleGueltigenBezirke() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        BZKarte* k = Open(f);
        QCOMPARE(k->PrintHeading(), QStringLiteral("alle gültigen Bezirke"));
        const QString pdf = f.home.Path(QStringLiteral("karte.pdf"));
        qputenv("KOLIBRINO_PRINT_PDF", "1");
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerPrint([pdf](QPrinter& p) {
            p.setOutputFileName(pdf);
            return true;
        });
        f.dialogs.AnswerMsgBox(Msg::No);
        QString written;
        QVERIFY(k->Command7Click(&written));
        qunsetenv("KOLIBRINO_PRINT_PDF");
        QCOMPARE(written, pdf);
        QCOMPARE(f.dialogs.boxes.first().text,
                 QStringLiteral("Soll die aktuelle Karte auf dem Standarddrucker ausgegeben werden?"));
        QCOMPARE(f.dialogs.boxes.first().flags, 33);
        const QString info = RunTool(QStringLiteral("pdfinfo"), {pdf});
        QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+1\\n"))), qPrintable(info));
        QVERIFY2(info.contains(QStringLiteral("842 x 595 pts")), qPrintable(info)); // A4 landscape
        QVERIFY(RunTool(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")})
                    .contains(QStringLiteral("alle gültigen Bezirke")));
    }

    void pdfChosenInTheSettingsMenuSendsTheMapIntoAPdf() {
        ScoringFixture f;
        QVERIFY(f.StartScoring(
            {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("06:00:00"))}));
        QAction* choice = f.Menu("MnDruckenPDF");
        QVERIFY(!choice->isChecked());
        QVERIFY(!PrintIntoPdfChosen());
        choice->trigger();
        QVERIFY(choice->isChecked());
        QVERIFY(PrintIntoPdfChosen());
        QCOMPARE(IniReadString(f.home.model.IniPath, QStringLiteral("Einstellungen"),
                               QStringLiteral("DruckenPDF")),
                 QStringLiteral("1"));
        BZKarte* k = Open(f);
        const QString pdf = f.home.Path(QStringLiteral("gewaehlt.pdf"));
        f.dialogs.AnswerMsgBox(Msg::Ok);
        f.dialogs.AnswerPrint([pdf](QPrinter& p) {
            if (p.outputFormat() != QPrinter::PdfFormat) return false; // the choice comes first
            p.setOutputFileName(pdf);
            return true;
        });
        f.dialogs.AnswerMsgBox(Msg::No);
        QString written;
        QVERIFY(k->Command7Click(&written));
        QCOMPARE(written, pdf);
        QVERIFY(QFileInfo(pdf).size() > 0);
        choice->trigger();
        QVERIFY(!PrintIntoPdfChosen());
    }

    void backgroundButtonBringsTheOtherWindowsAndTheMainWindowToTheFront() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        f.window->show();
        BZKarte* k = Open(f);
        f.Menu("MnStatistik")->trigger();
        ScoringFixture::Settle();
        QWidget* s = OpenStatistik(*f.window);
        QCOMPARE(k->findChild<QPushButton*>(QStringLiteral("Command8"))->text(),
                 QStringLiteral("Karte in den Hintergrund"));
        k->raise();
        k->activateWindow();
        QTest::mouseClick(k->findChild<QPushButton*>(QStringLiteral("Command8")), Qt::LeftButton);
        QVERIFY(s->isVisible());
        QVERIFY(f.home.model.Open.BZKarte); // the map stays open behind them
    }

    void scrollBarsScrollTheMapInsideTheWindow() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        k->show();
        k->resize(400, 300);
        ScoringFixture::Settle();
        auto* h = k->findChild<QScrollBar*>(QStringLiteral("HScroll1"));
        auto* v = k->findChild<QScrollBar*>(QStringLiteral("VScroll1"));
        QVERIFY(h && v);
        QVERIFY(h->maximum() > 0);
        h->setValue(h->maximum());
        QCOMPARE(k->findChild<QLabel*>(QStringLiteral("Picture1"))->x(), -h->maximum());
    }

    void cancelledPrintWritesNothing() {
        ScoringFixture f;
        QVERIFY(f.StartScoring());
        BZKarte* k = Open(f);
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        QVERIFY(!k->Command7Click());
    }
};

QTEST_MAIN(TestBZKarte)
#include "tst_bz_karte.moc"
