// Helpers of the corrections tests: the main window with the corrections installed,
// the pop-up menu driven through the grid, and the comparison of the live model with
// the file read back into a fresh one.
#pragma once

#include "core/call_index.h"
#include "core/tallies.h"
#include "corrections/install_corrections.h"
#include "setup/modal.h"
#include "disk_support.h"
#include "tst_main_window_support.h"

#include <QAction>
#include <QMenu>

namespace kolibrino::test {

class CorrectionsFixture : public WindowFixture {
public:
    // Writes the records as test.KOLBO, starts the window, installs the corrections.
    bool StartWith(const std::vector<QsoRecord>& records, int wertungsst = 0) {
        WriteLog(QStringLiteral("test.KOLBO"), records, wertungsst);
        if (!Start()) return false;
        corrections::InstallCorrections(*window, home.model, dialogs, clock);
        window->show();
        return true;
    }
    LogGridView* View() const { return window->GridView(); }

    // Right button on a data row, then the pop-up entry, as the operator does it.
    void Popup(int row, const char* entry) {
        View()->scrollTo(Grid().index(row, 0));
        const QRect r = View()->visualRect(Grid().index(row, 4));
        QTest::mouseClick(View()->viewport(), Qt::RightButton, {}, r.center());
        QMenu* menu = window->PopupMenu();
        QAction* a = window->Action(QString::fromLatin1(entry));
        QVERIFY(a && a->isEnabled());
        menu->hide();
        a->trigger();
    }
    void DoubleClick(int row) {
        View()->scrollTo(Grid().index(row, 0));
        const QRect r = View()->visualRect(Grid().index(row, 4));
        QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, r.center());
        QTest::mouseDClick(View()->viewport(), Qt::LeftButton, {}, r.center());
    }
    // The grid row that shows a record.
    int RowOf(int record) const {
        const QString key = QString::number(record);
        for (int r = 0; r < Grid().DataRows(); ++r)
            if (Grid().Text(r, kGridColLaufNr) == key) return r;
        return -1;
    }
    bool IsDupeRow(int row) const { return Grid().Text(row, kGridColDupe) == QLatin1String("Dupe"); }

    // A write limit for this process: the next rewrite fails until it is lifted.
    void BlockWrites() {
        block = std::make_unique<WriteBlock>();
        QVERIFY(block->Active());
    }
    void UnblockWrites() { block.reset(); }
    std::unique_ptr<WriteBlock> block;
    // Blocks the rewrite until the "FEHLER" box shows; *during gets the file's bytes at
    // that moment, and the next try (Wiederholen) goes through.
    void BlockWritesUntilFehler(QByteArray* during) {
        BlockWrites();
        dialogs.onMsgBox = [this, during](const ShownBox& b) {
            if (!b.text.startsWith(QStringLiteral("FEHLER"))) return;
            *during = FileBytes();
            UnblockWrites();
        };
    }
};

// Live records with their deleted ones left out, compared field by field with the
// records of a fresh load (the running number is renumbered by the load and left out).
inline void CompareRecords(const std::vector<QsoRecord>& live, const std::vector<QsoRecord>& loaded) {
    std::vector<const QsoRecord*> kept;
    for (const QsoRecord& r : live)
        if (r.Status != Status::Deleted) kept.push_back(&r);
    QCOMPARE(loaded.size(), kept.size());
    for (size_t i = 0; i < kept.size(); ++i) {
        const QsoRecord& a = *kept[i];
        const QsoRecord& b = loaded[i];
        QCOMPARE(b.Call, a.Call);
        QCOMPARE(b.Band, a.Band);
        QCOMPARE(b.Bezirk, a.Bezirk);
        QCOMPARE(b.Datum, a.Datum);
        QCOMPARE(b.Zeit, a.Zeit);
        QCOMPARE(b.RstGesendet, a.RstGesendet);
        QCOMPARE(b.RstEmpfangen, a.RstEmpfangen);
        QCOMPARE(b.Qsl, a.Qsl);
        QCOMPARE(b.Mode, a.Mode);
        QCOMPARE(b.ModeRx, a.ModeRx);
        QCOMPARE(b.Status, a.Status);
        QCOMPARE(b.Operator, a.Operator);
        QCOMPARE(b.Bemerkung, a.Bemerkung);
        QCOMPARE(b.Frequenz, a.Frequenz);
    }
}

// What a load of the file on disk gives, counters rebuilt.
inline Model Reloaded(const Model& live, const QString& path) {
    Model m;
    m.SetLocale(AustrianLocale());
    m.DataFolder = live.DataFolder;
    m.BezirkRecords = live.BezirkRecords;
    m.BezirkIndex = live.BezirkIndex;
    ScriptedDialogs d;
    [&] { QVERIFY(LoadLog(m, d, path) == 1); }();
    RebuildTallies(m);
    return m;
}

// The file read back equals the live model: the records, and every counter of the
// score but the ones the caller says may drift.
struct Drift {
    bool modeBand = false; // ModeBandCount and PeriodBandCount (deleting a dupe)
    bool qsoCount = false; // QsoCount (editing to or from 30 m)
};
inline void ReloadEqualsLive(const Model& live, const QString& path, Drift drift = {}) {
    // The live text and index are what a rebuild from the records gives, and on disk.
    Model rebuilt = live;
    BuildLogText(rebuilt, true, 2026);
    QCOMPARE(live.LogText, rebuilt.LogText);
    QCOMPARE(live.CallIndex, rebuilt.CallIndex);
    QCOMPARE(ReadBytes(path), ToCp1252(live.LogText));
    const Model back = Reloaded(live, path);
    CompareRecords(live.LogRecords, back.LogRecords);
    if (!drift.qsoCount) QCOMPARE(back.QsoCount, live.QsoCount);
    QCOMPARE(back.DupeCount, live.DupeCount);
    if (!drift.modeBand) {
        QCOMPARE(back.ModeBandCount, live.ModeBandCount);
        QCOMPARE(back.PeriodBandCount, live.PeriodBandCount);
    }
    CompareMultiplierTallies(back, live, 1);
    if (QTest::currentTestFailed()) return;
    QCOMPARE(back.CallIndex.count(kPilcrow), live.CallIndex.count(kPilcrow));
}

} // namespace kolibrino::test
