// The window "SichernEinstellungen" (caption "Zusätzliches Sichern Einstellungen"):
// switches the additional backup on or off and chooses its folder in a tree of the
// machine's file systems. Logs/ and Sicherung/ of the data folder are refused.
//
// GUI thread only; shown modally through ExecModal(). The checks and the storing are
// the functions of backup_settings.h; boxes go through Dialogs.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFileSystemModel;
class QLineEdit;
class QTreeView;

namespace kolibrino::setup {

class SichernEinstellungen : public QDialog {
    Q_OBJECT
public:
    SichernEinstellungen(Model& m, Dialogs& dialogs, QWidget* parent = nullptr);

    // The file systems offered in Drive1: their mount points.
    static QStringList Volumes();

    // Events, for the controls and for tests.
    void ChooseVolume(const QString& root);   // Drive1
    void ChooseFolder(const QString& folder); // Dir1
    void NewFolder();                         // Command3
    void OkClicked();                         // Command2

    bool Enabled() const;   // the state stored by OK
    QString Folder() const; // Text1

private:
    void SelectInTree(const QString& folder);

    Model& m_;
    Dialogs& dialogs_;
    QCheckBox* check1_ = nullptr;
    QComboBox* drive1_ = nullptr;
    QTreeView* dir1_ = nullptr;
    QFileSystemModel* fs_ = nullptr;
    QLineEdit* text1_ = nullptr;
    bool selecting_ = false;
};

} // namespace kolibrino::setup
