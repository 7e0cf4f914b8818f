// Deleting a contact through the grid's pop-up menu: the question, the promotion of a
// dupe in every sort order, the counters, the file, and a failed write.
#include "corrections/delete_entry.h"
#include "corrections_support.h"

#include <unistd.h>

using namespace kolibrino;
using namespace kolibrino::test;

namespace {

// Three equal contacts of OE3AAA in the morning, stored out of time order: the normal
// one at 06:00 (record 1), dupes at 06:30 (record 2) and 06:15 (record 3).
std::vector<QsoRecord> ThreeEqual() {
    return {MakeRecord(QStringLiteral("OE1ZZZ"), 80, QStringLiteral("WI"), QStringLiteral("05:30:00")),
            MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
            MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:30:00"),
                       QStringLiteral("SSB"), Status::Dupe),
            MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:15:00"),
                       QStringLiteral("SSB"), Status::Dupe),
            MakeRecord(QStringLiteral("OE6BBB"), 40, QStringLiteral("GZ"), QStringLiteral("07:00:00"))};
}

} // namespace

class TestCorrectionsDelete : public QObject {
    Q_OBJECT
private:
    // Deletes record 1 in the given sort order; returns the promoted record.
    int DeleteFirstOfThree(CorrectionsFixture& f, int sortMode) {
        if (!f.StartWith(ThreeEqual())) return -100;
        if (sortMode != GridSort::None) f.window->Sortieren(sortMode);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOf(1), "MnVerstecktLoeschen");
        for (int rec : {2, 3})
            if (f.home.model.LogRecords[size_t(rec)].Status == Status::Normal) return rec;
        return -1;
    }

private slots:
    void initTestCase() {
        PinLocale();
        setup::SetDriverMode(true);
    }

    void deletingADupeLeavesEveryOtherRowAlone() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const Model& m = f.home.model;
        const double qsos = m.QsoCount;
        const int md = m.BezirkRecords[2].AnzGesamt;
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOf(2), "MnVerstecktLoeschen");
        QCOMPARE(f.dialogs.boxes.first().text, corrections::kMsgLoeschenFrage);
        QCOMPARE(f.dialogs.boxes.first().flags, 292);
        QCOMPARE(m.LogRecords[2].Status, int(Status::Deleted));
        QCOMPARE(m.LogRecords[3].Status, int(Status::Dupe));
        QCOMPARE(f.Grid().DataRows(), 4);
        QVERIFY(f.IsDupeRow(f.RowOf(3)));
        QCOMPARE(f.Grid().SortMode(), int(GridSort::None)); // no sort for a dupe
        QCOMPARE(m.DupeCount, 1);
        QCOMPARE(m.QsoCount, qsos);
        QCOMPARE(m.BezirkRecords[2].AnzGesamt, md);
        // The dupe was never in the band and period tables of a load: they drift.
        ReloadEqualsLive(m, f.LogPath(), Drift{.modeBand = true});
    }

    void deletingTheFirstOfThreeEqualContactsPromotesTheSecondAndKeepsTheThirdADupe() {
        CorrectionsFixture f;
        QCOMPARE(DeleteFirstOfThree(f, GridSort::ZeitAuf), 3);
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[2].Status, int(Status::Dupe));
        QCOMPARE(m.LogRecords[1].Status, int(Status::Deleted));
        QVERIFY(!f.IsDupeRow(f.RowOf(3)));
        QCOMPARE(f.Grid().BackColor(f.RowOf(3), kGridColDupe), -1);
        QVERIFY(f.IsDupeRow(f.RowOf(2)));
        QCOMPARE(m.DupeCount, 1);
        QCOMPARE(m.QsoCount, 3.0); // the promoted contact inherits the count
        QCOMPARE(m.BezirkRecords[2].AnzGesamt, 1);
        // The promoted dupe was never in the band and period tables: they drift by one.
        QCOMPARE(m.ModeBandCount[0][1], 1);
        ReloadEqualsLive(m, f.LogPath(), Drift{.modeBand = true});
        QVERIFY(f.FileBytes().contains("06:15:00\xB6"
                                       "59\xB6"
                                       "59\xB6"
                                       "0\xB6SSB\xB6SSB\xB6"
                                       "0\xB6"));
    }

    void dupePromotionInEverySortOrder_data() {
        QTest::addColumn<int>("sortMode");
        QTest::addColumn<int>("promoted");
        QTest::addColumn<int>("sortAfter");
        QTest::newRow("unsortiert") << int(GridSort::None) << 3 << int(GridSort::ZeitAuf);
        QTest::newRow("Zeit aufsteigend") << int(GridSort::ZeitAuf) << 3 << int(GridSort::ZeitAuf);
        QTest::newRow("Zeit absteigend") << int(GridSort::ZeitAb) << 2 << int(GridSort::ZeitAb);
        QTest::newRow("Rufzeichen absteigend")
            << int(GridSort::RufzeichenAb) << 2 << int(GridSort::RufzeichenAb);
        QTest::newRow("Rufzeichen aufsteigend")
            << int(GridSort::RufzeichenAuf) << 2 << int(GridSort::RufzeichenAuf);
        QTest::newRow("Bezirk absteigend") << int(GridSort::BezirkAb) << 2 << int(GridSort::BezirkAb);
        QTest::newRow("Bezirk aufsteigend") << int(GridSort::BezirkAuf) << 2 << int(GridSort::BezirkAuf);
    }
    void dupePromotionInEverySortOrder() {
        QFETCH(int, sortMode);
        QFETCH(int, promoted);
        QFETCH(int, sortAfter);
        CorrectionsFixture f;
        QCOMPARE(DeleteFirstOfThree(f, sortMode), promoted);
        QCOMPARE(f.Grid().SortMode(), sortAfter);
        const int other = promoted == 2 ? 3 : 2;
        QCOMPARE(f.home.model.LogRecords[size_t(other)].Status, int(Status::Dupe));
        QCOMPARE(f.home.model.DupeCount, 1);
        ReloadEqualsLive(f.home.model, f.LogPath(), Drift{.modeBand = true});
    }

    void sortedByCallTheFirstDupeInGridOrderIsPromoted() {
        CorrectionsFixture f;
        QCOMPARE(DeleteFirstOfThree(f, GridSort::RufzeichenAuf), 2);
    }

    void sortedByTimeDescendingTheLatestDupeIsPromoted() {
        CorrectionsFixture f;
        QCOMPARE(DeleteFirstOfThree(f, GridSort::ZeitAb), 2); // 06:30 is the latest
    }

    void aMorningDupeIsNotPromotedByDeletingAnAfternoonContact() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:30:00"),
                        QStringLiteral("SSB"), Status::Dupe),
             MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("14:30:00"))}));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOf(2), "MnVerstecktLoeschen");
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[1].Status, int(Status::Dupe));
        QCOMPARE(m.LogRecords[2].Status, int(Status::Deleted));
        QCOMPARE(m.DupeCount, 1);
        QCOMPARE(m.QsoCount, 1.0);
        ReloadEqualsLive(m, f.LogPath());
    }

    void aDupeWithAnotherDistrictTextIsNotPromoted() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("WI"), QStringLiteral("06:30:00"),
                        QStringLiteral("SSB"), Status::Dupe)}));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOf(0), "MnVerstecktLoeschen");
        const Model& m = f.home.model;
        QCOMPARE(m.LogRecords[1].Status, int(Status::Dupe));
        QCOMPARE(m.QsoCount, 0.0);
        QCOMPARE(m.BezirkRecords[2].AnzGesamt, 0);
        QCOMPARE(m.GruppeBandCount[2][1], 0);
        ReloadEqualsLive(m, f.LogPath());
    }

    void unsortedWithDupesTheGridIsLeftSortedByTime() {
        CorrectionsFixture f;
        QCOMPARE(DeleteFirstOfThree(f, GridSort::None), 3);
        QCOMPARE(f.Grid().SortMode(), int(GridSort::ZeitAuf));
        QCOMPARE(f.Grid().Text(0, kGridColZeit), QStringLiteral("05:30"));
        QCOMPARE(f.Grid().Text(1, kGridColZeit), QStringLiteral("06:15"));
        QCOMPARE(f.Grid().Text(2, kGridColZeit), QStringLiteral("06:30"));
    }

    void unsortedWithoutDupesTheGridIsLeftAsItWas() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("07:00:00")),
             MakeRecord(QStringLiteral("OE6BBB"), 80, QStringLiteral("GZ"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE1CCC"), 80, QStringLiteral("WI"), QStringLiteral("05:00:00"))}));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(1, "MnVerstecktLoeschen");
        QCOMPARE(f.Grid().SortMode(), int(GridSort::None));
        QCOMPARE(f.Grid().Text(0, kGridColCall), QStringLiteral("OE3AAA"));
        QCOMPARE(f.Grid().Text(1, kGridColCall), QStringLiteral("OE1CCC"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void deletingTheOnlyContactGivesAnEmptyLogAndAHeaderOnlyFile() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("07:00:00"))}));
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(0, "MnVerstecktLoeschen");
        QVERIFY(f.home.model.LogRecords.empty());
        QCOMPARE(f.Grid().Rows(), 1);
        const QByteArray bytes = f.FileBytes();
        QVERIFY(bytes.endsWith("[ENDHEAD:]\r\n"));
        QVERIFY(!bytes.contains("OE3AAA"));
        QCOMPARE(f.home.model.QsoCount, 0.0);
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aRowWhoseCallIsNotInTheIndexIsReportedAndNothingChanges() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const QByteArray before = f.FileBytes();
        f.Grid().SetText(0, kGridColCall, QStringLiteral("OE9XXX"));
        const double qsos = f.home.model.QsoCount;
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(0, "MnVerstecktLoeschen");
        QCOMPARE(f.dialogs.LastBox()->text, QStringLiteral("Eintrag im Log nicht gefundne!"));
        QCOMPARE(f.dialogs.LastBox()->flags, int(Msg::Information));
        QCOMPARE(f.Grid().DataRows(), 5);
        QCOMPARE(f.home.model.QsoCount, qsos);
        QCOMPARE(f.home.model.LogRecords[0].Status, int(Status::Normal));
        QCOMPARE(f.FileBytes(), before);
    }

    void answeringNoChangesNothing() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const QByteArray before = f.FileBytes();
        f.dialogs.AnswerMsgBox(Msg::No);
        f.Popup(1, "MnVerstecktLoeschen");
        QCOMPARE(f.Grid().DataRows(), 5);
        QCOMPARE(f.FileBytes(), before);
    }

    void deletingTakesTheContactOutOfEveryCounter() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(
            {MakeRecord(QStringLiteral("OE3AAA"), 80, QStringLiteral("MD"), QStringLiteral("07:00:00")),
             MakeRecord(QStringLiteral("OEXABC"), 30, QStringLiteral("GZ"), QStringLiteral("06:00:00")),
             MakeRecord(QStringLiteral("OE1CCC"), 40, QStringLiteral("WI"), QStringLiteral("05:00:00"))},
            4));
        const Model& m = f.home.model;
        QCOMPARE(m.StaatsfunkRecords.size(), size_t(1));
        QCOMPARE(m.QsoCount, 2.0);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(1, "MnVerstecktLoeschen");
        QVERIFY(m.StaatsfunkRecords.empty());
        QCOMPARE(m.QsoCount, 2.0); // a 30 m contact never counted there
        QCOMPARE(m.BezirkRecords[3].AnzGesamt, 0);
        QCOMPARE(m.ModeBandCount[0][2], 0);
        ReloadEqualsLive(m, f.LogPath());
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(0, "MnVerstecktLoeschen");
        QCOMPARE(m.QsoCount, 1.0);
        QCOMPARE(m.BezirkRecords[2].Anz80, 0);
        ReloadEqualsLive(m, f.LogPath());
    }

    void theCompanionWindowsAreToldAfterADeletion() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        Model& m = f.home.model;
        m.Open.Statistik = m.Open.LogTracker = m.Open.DBLog = m.Open.BZKarte = true;
        QStringList told;
        QObject::connect(f.window.get(), &HauptForm::statistikRefreshRequested, [&] { told << "Statistik"; });
        QObject::connect(f.window.get(), &HauptForm::trackerRefreshRequested, [&] { told << "LogTracker"; });
        QObject::connect(f.window.get(), &HauptForm::dbLogRefreshRequested, [&] { told << "DBLog"; });
        QObject::connect(f.window.get(), &HauptForm::bzKarteRefreshRequested, [&] { told << "Karte"; });
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.Popup(f.RowOf(4), "MnVerstecktLoeschen");
        QVERIFY(told.contains(QStringLiteral("Statistik")));
        QVERIFY(told.contains(QStringLiteral("LogTracker")));
        QVERIFY(told.contains(QStringLiteral("DBLog")));
        QVERIFY(told.contains(QStringLiteral("Karte")));
        QVERIFY(f.window->Timer3().isActive());
    }

    void aFailedWriteKeepsTheOldFileAndARetryWritesTheNewOne() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const QByteArray before = f.FileBytes();
        QByteArray during;
        f.BlockWritesUntilFehler(&during);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Retry);
        f.Popup(f.RowOf(4), "MnVerstecktLoeschen");
        QCOMPARE(during, before);
        QCOMPARE(f.dialogs.boxes[1].flags, 21);
        QVERIFY(!f.FileBytes().contains("OE6BBB"));
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aReadOnlyLogFolderKeepsTheOldFileAndShowsTheErrorBox() {
        if (::geteuid() == 0)
            QSKIP("root writes into a read-only folder; the blocked temporary file covers this");
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const QByteArray before = f.FileBytes();
        QFile::setPermissions(f.home.model.LogFolder, QFile::ReadOwner | QFile::ExeOwner);
        f.dialogs.onMsgBox = [&](const ShownBox& b) {
            if (b.text.startsWith(QStringLiteral("FEHLER")))
                QFile::setPermissions(f.home.model.LogFolder,
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        };
        QCOMPARE(f.FileBytes(), before);
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Retry);
        f.Popup(f.RowOf(4), "MnVerstecktLoeschen");
        QCOMPARE(f.dialogs.boxes[1].flags, 21);
        ReloadEqualsLive(f.home.model, f.LogPath());
    }

    void aFailedWriteCancelledKeepsTheOldFileWhole() {
        CorrectionsFixture f;
        QVERIFY(f.StartWith(ThreeEqual()));
        const QByteArray before = f.FileBytes();
        f.BlockWrites();
        f.dialogs.AnswerMsgBox(Msg::Yes);
        f.dialogs.AnswerMsgBox(Msg::Cancel);
        f.Popup(f.RowOf(4), "MnVerstecktLoeschen");
        QVERIFY(f.dialogs.LastBox()->text.startsWith(QStringLiteral("FEHLER")));
        QCOMPARE(f.FileBytes(), before);
        QCOMPARE(f.Grid().DataRows(), 4); // the grid keeps the deletion
    }
};

QTEST_MAIN(TestCorrectionsDelete)
#include "tst_corrections_delete.moc"
