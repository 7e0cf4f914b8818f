// The logic of the window for the additional backup ("Zusätzliches Sichern"): which
// folders may not take the copy, the rules for a new folder's name, and reading and
// writing the two settings.
//
// Window thread only. Boxes go through Dialogs; settings writes never fail visibly.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

namespace kolibrino::setup {

struct BackupSettings {
    bool enabled = false; // SichernEA (1 on)
    QString folder;       // SicherungsPath, with its trailing "/"; empty if none
};

// The stored settings; the folder only when it is set, exists and is neither Logs/ nor
// Sicherung/.
BackupSettings ReadBackupSettings(const Model& m);

// Logs/ or Sicherung/ of DataFolder, however spelled (see SameFolder()).
bool IsForbiddenBackupFolder(const Model& m, const QString& folder);

// A folder chosen in the tree: the folder to show, after the warning box when it is
// forbidden (then DataFolder).
QString CheckChosenFolder(const Model& m, Dialogs& dialogs, const QString& folder);

// The rule for a new folder's name: false for the characters / \ : < > ? | " *, codes
// 1 to 31 or above 255, and 251 characters or more.
bool IsValidFolderName(const QString& name);

// "&Neuer Ordner": asks for the name, checks it, creates the folder below parent.
// Returns the new folder's path, or the empty text (after its box, if any).
QString CreateNewFolder(Dialogs& dialogs, const QString& parent);

// "&OK": checks, then stores folder and switch in memory and in the settings. False
// (after the box) when the switch is on without a folder.
bool SaveBackupSettings(Model& m, Dialogs& dialogs, bool enabled, const QString& folder);

} // namespace kolibrino::setup
