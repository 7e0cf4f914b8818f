#include "setup/main_window_setup.h"

#include "entry/main_window.h"
#include "setup/server_window.h"
#include "setup/setup_flows.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>

namespace kolibrino::setup {

MainHooks HooksOf(HauptForm& w, Model& m) {
    MainHooks h;
    h.clearGrid = [&w] { w.Grid().Clear(); };
    h.fillGrid = [&w] { w.DatenInGrid1Neu(); };
    h.showStation = [&w](const QString& bezirk, const QString& call, const QString& opCall) {
        if (auto* l = w.findChild<QLabel*>(QStringLiteral("Label12"))) l->setText(bezirk);
        if (auto* f = w.findChild<QGroupBox*>(QStringLiteral("Frame1"))) f->setTitle(call);
        if (auto* c = w.findChild<QComboBox*>(QStringLiteral("Combo6"))) {
            c->setEditText(opCall);
            if (c->findText(opCall, Qt::MatchExactly | Qt::MatchCaseSensitive) < 0) c->addItem(opCall);
        }
    };
    h.setOperators = [&w](const QStringList& rows, const QString& text) {
        if (auto* c = w.findChild<QComboBox*>(QStringLiteral("Combo6"))) {
            c->clear();
            c->addItems(rows);
            c->setEditText(text);
        }
    };
    h.applyBandDefault = [&w] {
        if (auto* c = w.findChild<QComboBox*>(QStringLiteral("Combo1"))) emit c->activated(c->currentIndex());
    };
    h.refreshSideWindows = [&w, &m] {
        if (m.Open.Statistik) emit w.statistikRefreshRequested();
        if (m.Open.LogTracker) emit w.trackerRefreshRequested();
        if (m.Open.BZKarte) emit w.bzKarteRefreshRequested();
        if (m.Open.GridKarte) emit w.gridKarteRefreshRequested();
        if (m.Open.DBLog) emit w.dbLogRefreshRequested();
    };
    h.setTitle = [&w](const QString& title) { w.setWindowTitle(title); };
    h.armBackupTimer = [&w] { w.Timer3().start(); };
    h.autoBackupChecked = [&w] {
        QAction* a = w.Action(QStringLiteral("MnAutomatischesSichern"));
        return a && a->isChecked();
    };
    h.startScoreRefresh = [&w] { emit w.statistikRefreshRequested(); };
    return h;
}

void InstallLogSetup(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock) {
    w.logChooser = [&w, &m, &dialogs, &clock] { ChooseLogAtStart(&w, m, dialogs, clock, HooksOf(w, m)); };
    auto connectEntry = [&w](const char* name, std::function<void()> click) {
        QAction* a = w.Action(QString::fromLatin1(name));
        if (!a) return;
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, &w, std::move(click));
    };
    auto endIfAsked = [&w](SwitchResult r) {
        if (r == SwitchResult::EndProgram) w.close();
    };
    connectEntry("MnNeuesLog", [&w, &m, &dialogs, &clock, endIfAsked] {
        endIfAsked(MnNeuesLog(&w, m, dialogs, clock, HooksOf(w, m)));
    });
    connectEntry("MnOpenLog", [&w, &m, &dialogs, &clock, endIfAsked] {
        endIfAsked(MnOpenLog(&w, m, dialogs, clock, HooksOf(w, m)));
    });
    connectEntry("MnServerAdressen", [&w, &m, &dialogs] { MnServerAdressen(&w, m, dialogs); });
    connectEntry("MnLogoptionen",
                 [&w, &m, &dialogs, &clock] { MnLogoptionen(&w, m, dialogs, clock, HooksOf(w, m)); });
    if (QAction* a = w.Action(QStringLiteral("MnAutomatischesSichern"))) {
        a->setEnabled(true);
        // The entry is a check mark that Qt flips on the click; the window decides it.
        QObject::connect(a, &QAction::triggered, &w, [a, &w, &m, &dialogs](bool flipped) {
            const auto checked = MnAutomatischesSichern(&w, m, dialogs);
            a->setChecked(checked ? *checked : !flipped);
        });
    }
}

} // namespace kolibrino::setup
