// The window "Update" (title "Kolibrino"): the splash at start and the list of the
// offered files with their check boxes, over the update flow (update_flow.h).
//
// Made by InstallUpkeep (upkeep_install.h) for the splash way, before the main window
// is up, and for the menu way; shown modally. Activation presses Command1 by program.
// GUI thread only; network calls run on a worker thread (BesideTransport) while the
// splash or the busy panel keeps painting, within the update's time limits.
// Failures are the program's messages through the Dialogs given; nothing throws.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "upkeep/beside_transport.h"
#include "upkeep/update_flow.h"

#include <QDialog>
#include <functional>
#include <vector>

class QCheckBox;
class QFrame;
class QLabel;
class QPushButton;
class QScrollArea;
class QWidget;

namespace kolibrino::upkeep {

class UpdateWindow : public QDialog {
    Q_OBJECT
public:
    // splashWay: the main window is not up yet.
    UpdateWindow(Model& m, Dialogs& d, UpdateTransport& t, UpdateServer server, ProgramTarget program,
                 bool splashWay, QWidget* parent = nullptr);

    void Command1Click(); // "Erneut auf Updates Prüfen": the check
    void Command2Click(); // "Updates installieren"
    void Command4Click(); // "Alle"
    void Command5Click(); // "Keine"

    // The flag for installed updates: set by an install, cleared by a check with nothing new.
    bool UpdatesInstalled() const { return installed_; }
    const std::vector<UpdateEntry>& Entries() const { return entries_; }
    QList<QCheckBox*> Boxes() const;

    // How long the splash stays readable before the list is shown.
    int splashPauseMs = 2500;
    // The overall time limits of the check and the install.
    int checkLimitMs = kCheckLimitMs;
    int installLimitMs = kInstallLimitMs;
    // Ends the process after the replacement script has started. Default: _exit(0).
    std::function<void()> endProcess;

protected:
    void showEvent(QShowEvent* e) override;

private:
    void AddBox(int index);
    void ClearBoxes();
    void ShowBusy(const QString& text);
    void HideBusy();
    void ShowList();
    void Unload();

    Model& m_;
    Dialogs& d_;
    BesideTransport t_;
    UpdateServer server_;
    ProgramTarget program_;
    bool splashWay_;
    bool activated_ = false;
    bool installed_ = false;
    std::vector<UpdateEntry> entries_;

    QWidget* picture3_ = nullptr;
    QWidget* picture4_ = nullptr;
    QFrame* picture10_ = nullptr;
    QLabel* label22_ = nullptr;
    QScrollArea* picture11_ = nullptr;
    QWidget* picture1_ = nullptr;
    QPushButton* command1_ = nullptr;
    QPushButton* command2_ = nullptr;
    QPushButton* command4_ = nullptr;
    QPushButton* command5_ = nullptr;
};

} // namespace kolibrino::upkeep
