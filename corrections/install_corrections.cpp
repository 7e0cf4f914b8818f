#include "corrections/install_corrections.h"

#include "core/backup.h"
#include "core/log_file.h"
#include "core/tallies.h"
#include "corrections/bearbeiten.h"
#include "corrections/correction_counters.h"
#include "corrections/delete_entry.h"
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
    // The map and the table learn of the district and state station that lost a contact.
    if (r.countersLowered) {
        if (m.Open.BZKarte && w.bzKarteFuellen) w.bzKarteFuellen(r.bezirk);
        if (m.Open.GridKarte && w.gridKarteCellColor) {
            if (IsStaatsfunkCall(r.call))
                w.gridKarteCellColor(r.bezirk, 0, r.call.left(3));
            else
                w.gridKarteCellColor(r.bezirk, GruppeOf(m, BezirkNumber(m, r.bezirk)), QString());
        }
    }
    if (m.Open.Statistik) emit w.statistikRefreshRequested();
    // The selection stays at the place of the deleted row.
    if (LogGridView* v = w.GridView(); v && w.Grid().DataRows() > 0)
        v->setCurrentIndex(w.Grid().index(std::min(row, w.Grid().DataRows() - 1), 0));
    BackupAfterChange(w, m, dialogs);
    if (m.Open.LogTracker) emit w.trackerRefreshRequested();
    if (m.Open.DBLog) emit w.dbLogRefreshRequested();
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
    if (window.Applied()) {
        if (m.Open.BZKarte && w.bzKarteFuellen) {
            w.bzKarteFuellen(window.Result().oldBezirk);
            w.bzKarteFuellen(window.Result().newBezirk);
        }
        if (m.Open.GridKarte && w.gridKarteCellColor) {
            for (const QString& b : {window.Result().oldBezirk, window.Result().newBezirk})
                w.gridKarteCellColor(b, GruppeOf(m, BezirkNumber(m, b)), QString());
        }
        if (m.Open.Statistik) emit w.statistikRefreshRequested();
    }
    // When the window has closed, applied or not.
    if (m.Open.LogTracker) emit w.trackerRefreshRequested();
    BackupAfterChange(w, m, dialogs);
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
}

} // namespace kolibrino::corrections
