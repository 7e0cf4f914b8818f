#include "scoring/install_scoring.h"

#include "entry/main_window.h"
#include "scoring/bezirke_liste.h"
#include "scoring/bz_karte.h"
#include "scoring/fehlende_multi.h"
#include "scoring/grid_karte.h"
#include "scoring/qso_rate.h"
#include "scoring/statistik_window.h"
#include "ui/window_support.h"

#include <QAction>
#include <QPointer>
#include <algorithm>
#include <iterator>

namespace kolibrino {

namespace {

// The scoring windows of one main window; a child of it, so it lives as long.
class ScoringHub : public QObject {
public:
    ScoringHub(HauptForm& w, Model& m, Dialogs& d, const TimeSource& clock)
        : QObject(&w), w_(w), m_(m), d_(d), clock_(clock) {
        setObjectName(QStringLiteral("ScoringHub"));
    }

    void Toggle(Companion id) {
        if (OpenFlag(m_, id)) {
            if (QWidget* win = Window(id)) win->close();
            return;
        }
        QAction* entry = w_.Action(QString::fromLatin1(CompanionOf(id).menuEntry));
        QWidget* win = nullptr;
        if (id == Companion::QsoRate || id == Companion::FehlendeMulti) {
            win = OpenRateWindow(id, entry);
        } else if (id == Companion::Statistik) {
            auto* s = new Statistik(m_, d_, clock_, entry, &w_);
            if (w_.openUrl) s->openUrl = w_.openUrl;
            statistik = s;
            s->Load();
            win = s;
        } else if (id == Companion::GridKarte) {
            auto* g = new GridKarte(m_, d_, entry, &w_);
            gridKarte = g;
            g->colourChanged = [this](int button, int bgr) {
                if (bzKarte) {
                    bzKarte->SetButtonColour(button, bgr);
                    bzKarte->Timer1().start();
                }
                if (statistik) statistik->FarbenLaden();
            };
            g->Load();
            win = g;
        } else {
            auto* k = new BZKarte(m_, d_, entry, &w_);
            bzKarte = k;
            if (w_.openUrl) k->openUrl = w_.openUrl;
            k->colourChanged = [this](int button, int bgr) {
                if (button <= 2 && gridKarte) gridKarte->SetButtonColour(button, bgr);
                if (statistik) {
                    statistik->FarbenLaden();
                    statistik->Timer1().start();
                }
                if (button <= 2 && gridKarte) gridKarte->Timer1().start();
            };
            k->bringOthersToFront = [this] {
                for (const Companion c : {Companion::Frequenz, Companion::Statistik, Companion::Transceiver,
                                          Companion::LogTracker, Companion::GridKarte, Companion::DBLog})
                    if (OpenFlag(m_, c))
                        if (QWidget* other = OtherWindow(c)) other->raise();
                w_.raise();
                w_.activateWindow();
            };
            k->Load();
            win = k;
        }
        w_.RegisterCompanion(id, win);
        win->show();
        if (id == Companion::BZKarte) {
            w_.raise();
            w_.activateWindow();
        }
    }

    // The rate window and the list of missing multipliers, which follow the log.
    QWidget* OpenRateWindow(Companion id, QAction* entry) {
        if (id == Companion::QsoRate) {
            auto* r = new QsoRate(m_, clock_, entry, &w_);
            qsoRate = r;
            r->Load();
            return r;
        }
        auto* f = new FehlendeMulti(m_, entry, &w_);
        fehlendeMulti = f;
        f->showOnMap = [this](const QString& code) {
            if (bzKarte) bzKarte->BezirkZeigen(code);
        };
        f->Load();
        return f;
    }
    // The log changed; `appended` when contacts were only added behind the last one.
    void LogChanged(bool appended) {
        if (qsoRate) qsoRate->LogChanged(appended);
        if (fehlendeMulti) fehlendeMulti->Timer1().start();
    }

    QWidget* Window(Companion id) const {
        switch (id) {
        case Companion::Statistik:
            return statistik;
        case Companion::GridKarte:
            return gridKarte;
        case Companion::BZKarte:
            return bzKarte;
        case Companion::QsoRate:
            return qsoRate;
        case Companion::FehlendeMulti:
            return fehlendeMulti;
        default:
            return nullptr;
        }
    }
    // A window of another subsystem, found by its object name among the top levels.
    QWidget* OtherWindow(Companion id) const {
        if (QWidget* mine = Window(id)) return mine;
        for (QObject* child : w_.children()) {
            auto* win = qobject_cast<QWidget*>(child);
            if (win && win->isWindow() && win->objectName() == QLatin1String(CompanionOf(id).name))
                return win;
        }
        return nullptr;
    }

    HauptForm& w_;
    Model& m_;
    Dialogs& d_;
    const TimeSource& clock_;
    QPointer<Statistik> statistik;
    QPointer<GridKarte> gridKarte;
    QPointer<BZKarte> bzKarte;
    QPointer<QsoRate> qsoRate;
    QPointer<FehlendeMulti> fehlendeMulti;
};

ScoringHub* HubOf(HauptForm& w) {
    return w.findChild<ScoringHub*>(QStringLiteral("ScoringHub"), Qt::FindDirectChildrenOnly);
}

constexpr Companion kMine[] = {Companion::Statistik, Companion::GridKarte, Companion::BZKarte,
                               Companion::QsoRate, Companion::FehlendeMulti};

bool Mine(Companion id) {
    return std::find(std::begin(kMine), std::end(kMine), id) != std::end(kMine);
}

// Every change of the log passes through the main window's grid: a new contact adds a
// row at its end, an edit changes cells, a deletion removes a row or clears a dupe's
// mark, a refill resets it. Sorting only moves rows and changes nothing.
void FollowTheLog(HauptForm& w, ScoringHub* hub) {
    LogGridModel& grid = w.Grid();
    QObject::connect(&grid, &QAbstractItemModel::rowsInserted, hub,
                     [hub, &grid](const QModelIndex&, int, int last) {
                         hub->LogChanged(last == grid.DataRows() - 1);
                     });
    QObject::connect(&grid, &QAbstractItemModel::rowsRemoved, hub, [hub] { hub->LogChanged(false); });
    QObject::connect(&grid, &QAbstractItemModel::dataChanged, hub, [hub] { hub->LogChanged(false); });
    QObject::connect(&grid, &QAbstractItemModel::modelReset, hub, [hub] { hub->LogChanged(false); });
}

} // namespace

void InstallScoring(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource& clock) {
    auto* hub = new ScoringHub(w, m, dialogs, clock);
    auto previous = w.companionOpener;
    w.companionOpener = [hub, previous](Companion id) {
        if (Mine(id))
            hub->Toggle(id);
        else if (previous)
            previous(id);
    };
    for (const Companion id : kMine)
        if (QAction* a = w.Action(QString::fromLatin1(CompanionOf(id).menuEntry))) {
            a->setEnabled(true);
            // Qt flips the check mark on the click; the open flag decides it.
            QObject::connect(a, &QAction::triggered, hub, [a, &m, id] { a->setChecked(OpenFlag(m, id)); });
        }
    if (QAction* a = w.Action(QStringLiteral("MnBezirkeListe"))) {
        a->setEnabled(true);
        QObject::connect(a, &QAction::triggered, hub, [&w, &m, &dialogs] {
            BezirkeListe liste(m, dialogs, &w);
            if (w.openUrl) liste.openUrl = w.openUrl;
            liste.exec();
        });
    }
    w.bzKarteFuellen = [hub](const QString& code) {
        if (hub->bzKarte) hub->bzKarte->Fuellen(code);
    };
    w.gridKarteCellColor = [hub](const QString& code, int state, const QString& prefix) {
        if (hub->gridKarte) hub->gridKarte->GridCellColor(code, state, prefix);
    };
    FollowTheLog(w, hub);
    QObject::connect(&w, &HauptForm::statistikRefreshRequested, hub, [hub] {
        if (hub->statistik) hub->statistik->Timer1().start();
    });
    QObject::connect(&w, &HauptForm::bzKarteRefreshRequested, hub, [hub] {
        if (hub->bzKarte) hub->bzKarte->Timer1().start();
    });
    QObject::connect(&w, &HauptForm::gridKarteRefreshRequested, hub, [hub] {
        if (hub->gridKarte) hub->gridKarte->Timer1().start();
    });
}

Statistik* OpenStatistik(HauptForm& w) {
    ScoringHub* hub = HubOf(w);
    return hub ? hub->statistik.data() : nullptr;
}

GridKarte* OpenGridKarte(HauptForm& w) {
    ScoringHub* hub = HubOf(w);
    return hub ? hub->gridKarte.data() : nullptr;
}

QsoRate* OpenQsoRate(HauptForm& w) {
    ScoringHub* hub = HubOf(w);
    return hub ? hub->qsoRate.data() : nullptr;
}

FehlendeMulti* OpenFehlendeMulti(HauptForm& w) {
    ScoringHub* hub = HubOf(w);
    return hub ? hub->fehlendeMulti.data() : nullptr;
}

BZKarte* OpenBZKarte(HauptForm& w) {
    ScoringHub* hub = HubOf(w);
    return hub ? hub->bzKarte.data() : nullptr;
}

} // namespace kolibrino
