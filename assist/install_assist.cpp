#include "assist/install_assist.h"

#include "assist/db_log.h"
#include "assist/log_tracker.h"
#include "entry/main_window.h"
#include "ui/window_support.h"

#include <QAction>
#include <QPointer>

namespace kolibrino {
namespace {

// Keeps the two windows of one main window; a child of it, so it lives as long.
class AssistWindows : public QObject {
public:
    AssistWindows(HauptForm& w, Model& m, Dialogs& d) : QObject(&w), w_(w), m_(m), d_(d) {
        setObjectName(QStringLiteral("AssistWindows"));
    }

    // The check-mark pattern: an open window closes, a closed one opens, and the
    // main window comes back to the front.
    void Toggle(Companion id) {
        QAction* entry = w_.Action(QString::fromLatin1(CompanionOf(id).menuEntry));
        QWidget* open = id == Companion::DBLog ? static_cast<QWidget*>(dbLog.data()) : tracker.data();
        if (OpenFlag(m_, id) && open) {
            open->close();
            if (entry) entry->setChecked(false);
            return;
        }
        if (id == Companion::DBLog) {
            dbLog = new DBLog(w_, m_, d_, entry, &w_);
            dbLog->Load();
            w_.RegisterCompanion(id, dbLog);
            dbLog->show();
        } else {
            tracker = new LogTracker(w_, m_, entry, &w_);
            tracker->Load();
            w_.RegisterCompanion(id, tracker);
            tracker->show();
        }
        w_.raise();
        w_.activateWindow();
    }

    // The windows while open; a closed one waits for its deletion and counts as gone.
    DBLog* OpenDBLog() const { return m_.Open.DBLog ? dbLog.data() : nullptr; }
    LogTracker* OpenTracker() const { return m_.Open.LogTracker ? tracker.data() : nullptr; }

    HauptForm& w_;
    Model& m_;
    Dialogs& d_;
    QPointer<DBLog> dbLog;
    QPointer<LogTracker> tracker;
};

AssistWindows* Of(const HauptForm& w) {
    return w.findChild<AssistWindows*>(QStringLiteral("AssistWindows"), Qt::FindDirectChildrenOnly);
}

} // namespace

void InstallAssist(HauptForm& w, Model& m, Dialogs& dialogs, const TimeSource&) {
    auto* windows = new AssistWindows(w, m, dialogs);
    for (const Companion id : {Companion::DBLog, Companion::LogTracker})
        if (QAction* a = w.Action(QString::fromLatin1(CompanionOf(id).menuEntry))) a->setEnabled(true);

    std::function<void(Companion)> before = w.companionOpener;
    w.companionOpener = [windows, before](Companion id) {
        if (id == Companion::DBLog || id == Companion::LogTracker)
            windows->Toggle(id);
        else if (before)
            before(id);
    };
    w.dbLogRows = [windows] { return windows->OpenDBLog() ? windows->OpenDBLog()->Rows() : 0; };

    QObject::connect(&w, &HauptForm::dbLogRefreshRequested, windows, [windows] {
        if (DBLog* d = windows->OpenDBLog()) d->Timer1().start();
    });
    QObject::connect(&w, &HauptForm::dbLogClearRequested, windows, [windows] {
        if (DBLog* d = windows->OpenDBLog()) d->ClearList();
    });
    QObject::connect(&w, &HauptForm::trackerRefreshRequested, windows, [windows] {
        if (LogTracker* t = windows->OpenTracker()) t->Timer1().start();
    });
}

DBLog* DBLogOf(const HauptForm& w) {
    AssistWindows* a = Of(w);
    return a ? a->OpenDBLog() : nullptr;
}

LogTracker* LogTrackerOf(const HauptForm& w) {
    AssistWindows* a = Of(w);
    return a ? a->OpenTracker() : nullptr;
}

} // namespace kolibrino
