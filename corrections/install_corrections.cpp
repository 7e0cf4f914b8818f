#include "corrections/install_corrections.h"

#include "core/backup.h"
#include "corrections/bearbeiten.h"
#include "corrections/delete_entry.h"
#include "corrections/stranded_dupes.h"
#include "corrections/zeit_aendern.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"

#include <QAction>
#include <QCoreApplication>
#include <QLineEdit>

namespace kolibrino::corrections {
namespace {

void BackupAfterChange(HauptForm& w, Model& m, Dialogs& dialogs) {
    w.Timer3().start();
    QAction* a = w.Action(QStringLiteral("MnAutomatischesSichern"));
    if (a && a->isChecked() && !m.ExtraBackupPath.isEmpty())
        BackupFile(dialogs, m.LogFolder + m.CurrentLogName, m.ExtraBackupPath + m.CurrentLogName,
                   m.ExtraBackupPath);
}

// The companion windows that show data derived from the log, told to rebuild once the
// change is in the model and the file. Each rebuilds on its own one-shot timer, after
// the present event.
struct Refresh {
    bool statistik = false;
    bool karten = false; // the district map and the multiplier table
    bool tracker = false;
    bool dbLog = false;
};

void RequestRefresh(HauptForm& w, const Model& m, Refresh r) {
    if (r.statistik && m.Open.Statistik) emit w.statistikRefreshRequested();
    if (r.karten && m.Open.BZKarte) emit w.bzKarteRefreshRequested();
    if (r.karten && m.Open.GridKarte) emit w.gridKarteRefreshRequested();
    if (r.tracker && m.Open.LogTracker) emit w.trackerRefreshRequested();
    if (r.dbLog && m.Open.DBLog) emit w.dbLogRefreshRequested();
}

void FocusCall(HauptForm& w) {
    if (auto* t = w.findChild<QLineEdit*>(QStringLiteral("Text3"))) t->setFocus(Qt::OtherFocusReason);
}

} // namespace

void LoeschenFlow(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock, int row) {
    DeleteCalls calls;
    calls.processEvents = [] { QCoreApplication::processEvents(); };
    calls.sort = [&w](int mode) { w.Sortieren(mode); };
    const DeleteResult r = DeleteEntry(m, dialogs, w.Grid(), row, clock.Now().date().year(), calls);
    if (r.outcome == DeleteResult::LogTextBroken) {
        w.close();
        QCoreApplication::exit(1);
        return;
    }
    if (r.outcome != DeleteResult::Deleted) return;
    // After Cancel on a failed write the file lags behind: the next contact or the
    // closing writes it again.
    w.SetFileUpToDate(r.fileWritten);
    // The selection stays at the place of the deleted row.
    if (LogGridView* v = w.GridView(); v && w.Grid().DataRows() > 0)
        v->setCurrentIndex(w.Grid().index(std::min(row, w.Grid().DataRows() - 1), 0));
    BackupAfterChange(w, m, dialogs);
    // A district or state station that lost its contact can lose its colour, which only
    // a repaint of the whole map and table takes away. A deleted or promoted dupe leaves
    // them as they were.
    Refresh refresh;
    refresh.statistik = refresh.tracker = refresh.dbLog = true;
    refresh.karten = r.countersLowered;
    RequestRefresh(w, m, refresh);
    FocusCall(w);
}

void BearbeitenFlow(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock, int row) {
    if (row < 0 || row >= w.Grid().DataRows()) return;
    if (const auto refusal = EditRefusal(w.Grid(), row)) {
        dialogs.MsgBox(*refusal, Msg::Critical);
        return;
    }
    Bearbeiten window(w, m, dialogs, clock, row);
    if (!window.Open()) return;
    window.ShowModal();
    Refresh refresh;
    refresh.tracker = true; // when the window has closed, applied or not
    if (window.Applied()) {
        w.SetFileUpToDate(window.Result().fileWritten);
        refresh.statistik = refresh.karten = refresh.dbLog = true;
    }
    RequestRefresh(w, m, refresh);
    BackupAfterChange(w, m, dialogs);
    FocusCall(w);
}

void MnDupesPruefen(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock) {
    const StrandedResult r = DupesPruefen(m, dialogs, w.Grid(), clock.Now().date().year());
    if (r.outcome == StrandedResult::LogTextBroken) {
        w.close();
        QCoreApplication::exit(1);
        return;
    }
    if (r.outcome != StrandedResult::Promoted) return;
    w.SetFileUpToDate(r.fileWritten);
    BackupAfterChange(w, m, dialogs);
    Refresh refresh;
    refresh.statistik = refresh.karten = refresh.tracker = refresh.dbLog = true;
    RequestRefresh(w, m, refresh);
    FocusCall(w);
}

void InstallCorrections(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock) {
    for (const char* name : {"MnVerstecktLoeschen", "MnVerstecktBearbeiten"})
        if (QAction* a = w.Action(QString::fromLatin1(name))) a->setEnabled(true);
    QObject::connect(&w, &HauptForm::loeschenRequested, &w,
                     [&w, &m, &dialogs, &clock](int row) { LoeschenFlow(w, m, dialogs, clock, row); });
    QObject::connect(&w, &HauptForm::bearbeitenRequested, &w,
                     [&w, &m, &dialogs, &clock](int row) { BearbeitenFlow(w, m, dialogs, clock, row); });
    if (QAction* a = w.Action(QStringLiteral("MnLogExportierenDatumZeit"))) {
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, &w,
                         [&w, &m, &dialogs, &clock] { MnLogExportierenDatumZeit(w, m, dialogs, clock); });
    }
    if (QAction* a = w.Action(QStringLiteral("MnDupesPruefen"))) {
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, &w,
                         [&w, &m, &dialogs, &clock] { MnDupesPruefen(w, m, dialogs, clock); });
    }
}

} // namespace kolibrino::corrections
