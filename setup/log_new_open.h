// The log manager window "LogNewOpen": lists the logs of LogFolder, opens one (double
// click, or the last log), renames, deletes, copies, and creates a new log through
// StationLog. Its result is Model::CurrentLogName; it loads nothing itself.
//
// GUI thread only; shown modally through ExecModal(). Boxes go through Dialogs; file
// errors run through the "FEHLER" trap.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/log_switch.h"

#include <QDialog>

class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace kolibrino::setup {

class ClickLabel;

class LogNewOpen : public QDialog {
    Q_OBJECT
public:
    enum class Mode { Start, OpenOnly };

    LogNewOpen(Model& m, Dialogs& dialogs, const TimeSource& clock, const MainHooks& hooks, Mode mode,
               QWidget* parent = nullptr);

    // Label2: the last log. Every change is written to LastLogFile at once.
    void SetLastLog(const QString& name);
    QString LastLog() const;

    // The events, for the buttons and for tests.
    void OpenLastLog();                // click on Label2
    void OpenRow(const QString& name); // double click in File1
    void Rename();                     // Command1
    void Delete();                     // Command2
    void Copy();                       // Command3
    void NewLog();                     // Command4
    void ToggleExtended();             // Command5
    void RefreshList();
    QStringList SelectedNames() const;

protected:
    void showEvent(QShowEvent* e) override;

private:
    void FirstActivation();

    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    MainHooks hooks_;
    Mode mode_;
    bool activated_ = false;
    QListWidget* file1_ = nullptr;
    QLabel* label1_ = nullptr;
    ClickLabel* label2_ = nullptr;
    QPushButton* command4_ = nullptr;
    QPushButton* command5_ = nullptr;
    QGroupBox* frame1_ = nullptr;
};

} // namespace kolibrino::setup
