// The windows "QSO-Rate" and "Fehlende Multiplikatoren": their menu entries, how they
// follow logging, edits and deletions, the chart's colours and present slot, the
// double click that shows a district on the map, and their reopening at start.
#include "corrections/install_corrections.h"
#include "scoring/bz_karte.h"
#include "scoring/fehlende_multi.h"
#include "scoring/qso_rate.h"
#include "scoring_support.h"
#include "setup/modal.h"

#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

template <class W> W* In(QDialog& d, const char* name) {
    return d.findChild<W*>(QString::fromLatin1(name));
}

// The main window with the scoring windows and the corrections, over the shipped
// district table and map; the clock stands at 06:00 on the contest morning.
struct RateFixture : ScoringFixture {
    bool StartWith(const std::vector<QsoRecord>& records) {
        WriteLog(QStringLiteral("test.KOLBO"), records);
        return Again();
    }
    bool Again() {
        if (window) window->close();
        window.reset();
        qputenv("KOLIBRINO_LOG", "test.KOLBO");
        window = std::make_unique<HauptForm>(home.model, dialogs, clock);
        InstallScoring(*window, home.model, dialogs, clock);
        corrections::InstallCorrections(*window, home.model, dialogs, clock);
        if (!window->Load()) return false;
        window->show();
        return true;
    }
    QsoRate* OpenRate() {
        Menu("MnQsoRate")->trigger();
        Settle();
        return OpenQsoRate(*window);
    }
    FehlendeMulti* OpenNeeded() {
        Menu("MnFehlendeMulti")->trigger();
        Settle();
        return OpenFehlendeMulti(*window);
    }
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
    // OE6CCC (Graz, 40 m) becomes a contact from Baden on 80 m in the edit window.
    void EditGrazToBaden80() {
        bool driven = false;
        setup::PushModalDriver([&](QDialog& d) {
            driven = true;
            QTest::keyClicks(In<QComboBox>(d, "Combo1"), QStringLiteral("8"));
            QComboBox* bz = In<QComboBox>(d, "Combo5");
            bz->clearEditText();
            QTest::keyClicks(bz, QStringLiteral("BN"));
            QTest::mouseClick(In<QPushButton>(d, "Command4"), Qt::LeftButton);
        });
        Popup(RowOfCall(QStringLiteral("OE6CCC")), "MnVerstecktBearbeiten");
        QVERIFY(driven);
    }
    void DeleteCall(const QString& call) {
        dialogs.AnswerMsgBox(Msg::Yes);
        Popup(RowOfCall(call), "MnVerstecktLoeschen");
    }
};

std::vector<QsoRecord> ThreeDistricts() {
    return {MakeRecord(QStringLiteral("OE1AAA"), 40, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3BBB"), 80, QStringLiteral("MD"), QStringLiteral("05:40:00")),
            MakeRecord(QStringLiteral("OE6CCC"), 40, QStringLiteral("GZ"), QStringLiteral("05:50:00"))};
}

QPoint CentreOf(QTreeWidget* tree, QTreeWidgetItem* item) {
    tree->scrollToItem(item);
    return tree->visualItemRect(item).center();
}

} // namespace

class TestRateWindows : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }
    void cleanup() { setup::ClearModalDrivers(); }

    void menuEntriesStandAtTheEndOfFensterWithCheckMarks() {
        RateFixture f;
        QVERIFY(f.StartWith({}));
        auto* fenster = f.window->findChild<QMenu*>(QStringLiteral("MnAnsicht"));
        const QList<QAction*> entries = fenster->actions();
        QCOMPARE(entries.last()->objectName(), QStringLiteral("MnFehlendeMulti"));
        QCOMPARE(entries.last()->text(), QStringLiteral("Fehlende &Multiplikatoren"));
        QCOMPARE(entries[entries.size() - 2]->objectName(), QStringLiteral("MnQsoRate"));
        QCOMPARE(entries[entries.size() - 2]->text(), QStringLiteral("&QSO-Rate"));
        // No two entries of the menu share an access key.
        QSet<QChar> keys;
        for (QAction* a : entries) {
            const qsizetype amp = a->text().indexOf(QLatin1Char('&'));
            if (a->isSeparator() || amp < 0) continue;
            const QChar key = a->text().at(amp + 1).toLower();
            QVERIFY2(!keys.contains(key) || key == QLatin1Char('t'), qPrintable(a->text()));
            keys.insert(key);
        }
        QVERIFY(keys.contains(QLatin1Char('q')) && keys.contains(QLatin1Char('m')));

        QsoRate* rate = f.OpenRate();
        QVERIFY(rate && rate->isVisible());
        QCOMPARE(rate->windowTitle(), QStringLiteral("QSO-Rate"));
        QVERIFY(f.Menu("MnQsoRate")->isChecked());
        QVERIFY(f.home.model.Open.QsoRate);
        FehlendeMulti* needed = f.OpenNeeded();
        QVERIFY(needed && needed->isVisible());
        QCOMPARE(needed->windowTitle(), QStringLiteral("Fehlende Multiplikatoren"));
        QVERIFY(f.Menu("MnFehlendeMulti")->isChecked());
        f.Menu("MnQsoRate")->trigger();
        f.Menu("MnFehlendeMulti")->trigger();
        ScoringFixture::Settle();
        QVERIFY(!f.Menu("MnQsoRate")->isChecked());
        QVERIFY(!f.Menu("MnFehlendeMulti")->isChecked());
        QVERIFY(!f.home.model.Open.QsoRate && !f.home.model.Open.FehlendeMulti);
        QVERIFY(!OpenQsoRate(*f.window) && !OpenFehlendeMulti(*f.window));
    }

    void rateFollowsLoggingEditsAndDeletions() {
        RateFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        QsoRate* rate = f.OpenRate();
        QVERIFY(rate);
        // 06:00: 05:50 lies exactly ten minutes back; the hour holds all three.
        QCOMPARE(rate->Shown().perSlot[3], 1);
        QCOMPARE(rate->Shown().perSlot[5], 1);
        QCOMPARE(rate->LabelText(QStringLiteral("Label1")), QStringLiteral("0"));
        QCOMPARE(rate->LabelText(QStringLiteral("Label2")), QStringLiteral("3"));
        QCOMPARE(rate->LabelText(QStringLiteral("Label3")), QStringLiteral("3"));
        QCOMPARE(rate->LabelText(QStringLiteral("Label4")), QStringLiteral("0"));
        QCOMPARE(rate->Shown().present, 6);

        f.Type(QStringLiteral("OE5DDD"), 1, QStringLiteral("LL"));
        QCOMPARE(f.home.model.LogRecords.size(), size_t(4));
        QVERIFY(rate->Timer1().isActive());
        ScoringFixture::Settle();
        QCOMPARE(rate->Shown().perSlot[6], 1);
        QCOMPARE(rate->Shown().perBand[1][6], 1);
        QCOMPARE(rate->LabelText(QStringLiteral("Label1")), QStringLiteral("6"));
        QCOMPARE(rate->LabelText(QStringLiteral("Label2")), QStringLiteral("4"));

        // A confirmed dupe is logged and counts nowhere.
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Type(QStringLiteral("OE5DDD"), 1, QStringLiteral("LL"));
        QCOMPARE(f.home.model.LogRecords.back().Status, Status::Dupe);
        ScoringFixture::Settle();
        QCOMPARE(rate->Shown().perSlot[6], 1);
        QCOMPARE(rate->LabelText(QStringLiteral("Label3")), QStringLiteral("4"));

        f.EditGrazToBaden80();
        QTRY_COMPARE(rate->Shown().perBand[1][5], 1);
        QCOMPARE(rate->Shown().perBand[0][5], 0);

        f.DeleteCall(QStringLiteral("OE3BBB"));
        QCOMPARE(f.Grid().DataRows(), 4);
        QTRY_COMPARE(rate->Shown().perSlot[4], 0);
        QCOMPARE(rate->LabelText(QStringLiteral("Label3")), QStringLiteral("3"));

        // The clock moves on: the rate and the present slot follow.
        f.clock.Set(QDateTime(kContestMorning.date(), QTime(7, 45)));
        rate->Timer2Tick();
        ScoringFixture::Settle();
        QCOMPARE(rate->LabelText(QStringLiteral("Label1")), QStringLiteral("0"));
        QCOMPARE(rate->LabelText(QStringLiteral("Label2")), QStringLiteral("0"));
        QCOMPARE(rate->Shown().present, 16);
    }

    void chartDrawsOneColourPerBandAndMarksThePresentSlot() {
        RateFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        QsoRate* rate = f.OpenRate();
        RateChart* chart = rate->Chart();
        chart->resize(chart->sizeHint());
        const QImage picture = chart->grab().toImage();
        auto barPixel = [&](int slot) {
            const QRectF r = chart->SlotRect(slot);
            return QColor(picture.pixel(QPoint(int(r.center().x()), int(r.bottom()) - 3)));
        };
        QCOMPARE(barPixel(3), RateChart::BandColour(0)); // 05:30 on 40 m
        QCOMPARE(barPixel(4), RateChart::BandColour(1)); // 05:40 on 80 m
        QCOMPARE(barPixel(18), QColor(Qt::white));
        const QRectF present = chart->SlotRect(6);
        QCOMPARE(QColor(picture.pixel(QPoint(int(present.center().x()), int(present.top()) + 12))),
                 QColor(255, 236, 140));
    }

    void neededListFollowsLoggingEditsAndDeletions() {
        RateFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        FehlendeMulti* needed = f.OpenNeeded();
        QVERIFY(needed);
        QStringList codes40 = needed->ShownCodes(0);
        QCOMPARE(codes40.size(), 92);
        QVERIFY(!codes40.contains(QStringLiteral("WI")) && !codes40.contains(QStringLiteral("GZ")));
        QVERIFY(needed->ShownCodes(1).contains(QStringLiteral("WI")));
        QVERIFY(!needed->ShownCodes(1).contains(QStringLiteral("MD")));
        // Wien has no other district: its state leaves the 40 m list.
        QVERIFY(needed->Tree(0)->topLevelItem(0)->isHidden());
        QCOMPARE(needed->Tree(0)->topLevelItem(1)->text(0), QStringLiteral("OE2 Salzburg"));
        QCOMPARE(needed->StatesText(0),
                 QStringLiteral("Bundesländer: OE2 Salzburg, OE3 Niederösterreich, OE4 Burgenland, "
                                "OE5 Oberösterreich, OE7 Tirol, OE8 Kärnten, OE9 Vorarlberg"));

        f.Type(QStringLiteral("OE3XYZ"), 0, QStringLiteral("MD"));
        QVERIFY(needed->Timer1().isActive());
        ScoringFixture::Settle();
        QVERIFY(!needed->ShownCodes(0).contains(QStringLiteral("MD")));
        QVERIFY(!needed->StatesText(0).contains(QStringLiteral("OE3")));

        f.EditGrazToBaden80();
        QTRY_VERIFY(needed->ShownCodes(0).contains(QStringLiteral("GZ")));
        QVERIFY(!needed->ShownCodes(1).contains(QStringLiteral("BN")));
        QVERIFY(needed->StatesText(0).contains(QStringLiteral("OE6 Steiermark")));

        f.DeleteCall(QStringLiteral("OE3BBB"));
        QTRY_VERIFY(needed->ShownCodes(1).contains(QStringLiteral("MD")));
        QVERIFY(needed->ShownCodes(1).contains(QStringLiteral("WI")));
    }

    void doubleClickOnADistrictShowsItOnTheOpenMap() {
        RateFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        FehlendeMulti* needed = f.OpenNeeded();
        QTreeWidget* tree = needed->Tree(0);
        QTreeWidgetItem* kl = needed->ItemOf(0, QStringLiteral("KL"));
        QVERIFY(kl);
        // Map closed: nothing happens, and it stays closed.
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, CentreOf(tree, kl));
        QVERIFY(!f.home.model.Open.BZKarte);

        f.Menu("MnBZKarte")->trigger();
        ScoringFixture::Settle();
        BZKarte* karte = OpenBZKarte(*f.window);
        QVERIFY(karte);
        QCOMPARE(karte->Marked(), 0);
        const QImage painted = karte->Map();
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, CentreOf(tree, kl));
        const int n = f.Element(QStringLiteral("KL"));
        QCOMPARE(karte->Marked(), n);
        const BezirkRecord& b = f.home.model.BezirkRecords[size_t(n)];
        // The ring stands on the map as shown, not on the map that is painted and printed.
        QCOMPARE(QColor(karte->ShownImage().pixel(b.X + 16, b.Y)).red() > 180, true);
        QCOMPARE(QColor(karte->ShownImage().pixel(b.X + 16, b.Y)).green() < 60, true);
        QVERIFY(karte->Map() == painted);
        // A full repaint ends the marking.
        karte->Timer1Tick();
        QCOMPARE(karte->Marked(), 0);
    }

    void bothWindowsReopenAtStartWhereTheyWere() {
        RateFixture f;
        QVERIFY(f.StartWith(ThreeDistricts()));
        QsoRate* rate = f.OpenRate();
        FehlendeMulti* needed = f.OpenNeeded();
        rate->move(120, 90);
        needed->move(300, 60);
        const QPoint ratePos = rate->pos();
        const QPoint neededPos = needed->pos();
        QVERIFY(f.Again());
        ScoringFixture::Settle();
        QVERIFY(f.Menu("MnQsoRate")->isChecked());
        QVERIFY(f.Menu("MnFehlendeMulti")->isChecked());
        rate = OpenQsoRate(*f.window);
        needed = OpenFehlendeMulti(*f.window);
        QVERIFY(rate && needed);
        QCOMPARE(rate->pos(), ratePos);
        QCOMPARE(needed->pos(), neededPos);
        QCOMPARE(rate->LabelText(QStringLiteral("Label3")), QStringLiteral("3"));
        QVERIFY(!needed->ShownCodes(0).contains(QStringLiteral("WI")));
        // Closed at the end: not reopened.
        f.Menu("MnQsoRate")->trigger();
        QVERIFY(f.Again());
        QVERIFY(!OpenQsoRate(*f.window));
        QVERIFY(OpenFehlendeMulti(*f.window));
    }
};

QTEST_MAIN(TestRateWindows)
#include "tst_rate_windows.moc"
