// The busy panel (Picture10 with its text Label22) and work run beside it; the rule
// that only one network job (a submission, an upload, the connection test, the
// update) runs at a time.
//
// BusyPanel shows the panel modal over the window and keeps it up across the steps of
// one job: Show() sets its text and paints it at once; Run() runs work on a worker
// thread and keeps the window thread's events running (the window paints, timers
// fire; input goes only to the panel) until work has returned. With a time limit the
// panel counts down the seconds the program still waits (Label23); with a cancel flag
// it offers "Abbrechen" (Command1), which sets the flag: the work must watch it
// (net::HttpTimeouts::cancel) and end at once. RunBeside() is one step with its own
// panel.
//
// NetworkJob marks a job as running for its lifetime. RunWhenIdle() runs an action at
// once when no job runs, else after the running job has ended (once per key; dropped
// when the context object is gone, or is a window that has closed meanwhile); so a
// reminder that comes during an upload waits until the upload has ended, and no job
// ever starts inside another.
//
// GUI thread only. work must not touch windows or the model; it must not throw.
#pragma once

#include <QString>
#include <atomic>
#include <functional>
#include <memory>

class QObject;
class QWidget;

namespace kolibrino::exporting {

inline const char* const kTxtAbbrechen = "Abbrechen";

class BusyPanelWindow;

class BusyPanel {
public:
    explicit BusyPanel(QWidget* window);
    ~BusyPanel();
    BusyPanel(const BusyPanel&) = delete;
    BusyPanel& operator=(const BusyPanel&) = delete;

    void Show(const QString& text);
    void Hide();
    // limitMs > 0: the countdown; cancel: the "Abbrechen" button sets it. Returns false
    // when the operator cancelled (the work has ended all the same).
    bool Run(const std::function<void()>& work, long limitMs = 0, std::atomic<bool>* cancel = nullptr);

private:
    std::unique_ptr<BusyPanelWindow> panel_;
};

void RunBeside(QWidget* window, const QString& text, const std::function<void()>& work);

class NetworkJob {
public:
    NetworkJob();
    ~NetworkJob();
    NetworkJob(const NetworkJob&) = delete;
    NetworkJob& operator=(const NetworkJob&) = delete;
    static bool Running();
};

void RunWhenIdle(QObject* context, const QString& key, std::function<void()> action);

} // namespace kolibrino::exporting
