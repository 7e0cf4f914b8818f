// ServerAdressen ("Server und Adressen"), from Einstellungen → "Server und Adressen…":
// the log server, the contest manager's addresses, the contest rules page, the info
// window's mail address, the update server with its folder and the update check at
// start, each field with a line that says what it is for. "Log-Server testen" runs the
// connection test to the log server as its menu entry does, "Update-Server testen"
// reaches the update server and fetches its list; both run on a worker thread behind
// the busy panel with what is typed, before it is stored. OK checks every entry
// (a German message names the first bad one) and writes them (setup/server_settings.h).
//
// GUI thread only; modal. Never throws.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "setup/server_settings.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace kolibrino::setup {

class ServerAdressen : public QDialog {
    Q_OBJECT
public:
    ServerAdressen(const Model& m, Dialogs& dialogs, QWidget* parent = nullptr);

    ServerSettings Entered() const;
    void CommandLogTestClick();
    void CommandUpdateTestClick();
    // OK: false (and the window stays) when an entry cannot be used.
    bool CommandOkClick();

private:
    const Model& m_;
    Dialogs& dialogs_;
    QLineEdit* logServer_ = nullptr;
    QLineEdit* contestMail_ = nullptr;
    QLineEdit* regeln_ = nullptr;
    QLineEdit* infoMail_ = nullptr;
    QLineEdit* updateServer_ = nullptr;
    QLineEdit* updatePfad_ = nullptr;
    QCheckBox* beimStart_ = nullptr;
};

// Einstellungen → "Server und Adressen…".
void MnServerAdressen(QWidget* parent, const Model& m, Dialogs& dialogs);

} // namespace kolibrino::setup
