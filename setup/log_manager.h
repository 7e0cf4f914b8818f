// The log manager's logic: the list of logs, the name rules, rename, delete and copy
// of log files, and the "last log" remembered in the settings.
//
// Window thread only. Questions and messages go through Dialogs; file errors run
// through the "FEHLER" trap (Retry repeats the step, Cancel ends the event). Nothing
// throws, nothing is rolled back.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QStringList>
#include <functional>

namespace kolibrino::setup {

// Longest name a log may have (without the extension that is added).
inline constexpr int kMaxLogNameLength = 250;

// The log files of a folder ("*.kolbo", any case), sorted by name.
QStringList ListLogs(const QString& logFolder);

// True for "/", "\", ":", "<", ">", "?", "|", the double quote, "*", and codes 1 to 31
// or above 255.
bool IsForbiddenNameChar(QChar c);
bool HasForbiddenNameChar(const QString& name);

// The rename test of one trimmed answer: the empty text when it passes, else the box
// text ("Dateiname ungültig!..." or "Dateiname zu lang!...").
QString CheckRenameName(const QString& trimmedName);
// Whether a file of this name can be made in folder: its bytes in the file system's
// encoding (an umlaut takes two) against the longest name the file system holds there.
bool FileNameFits(const QString& folder, const QString& fileName);
// The box text when it does not ("Dateiname zu lang!..." of the rename).
QString TooLongText();
// The name the rename gives the file: the extension is always appended.
QString RenamedFileName(const QString& trimmedName);

// Rename (Command1): asks for each selected name, top down. listCount is the number of
// rows in the list; with none, nothing happens. Returns the number of files renamed.
// A log that another program holds for writing (core/log_lock.h) is neither renamed nor
// deleted: the box (48) names the holder and the walk stops. own is the lock this
// program holds, if any: its own current log may be renamed or deleted as before.
int RenameLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected,
               const LogLock* own = nullptr);
// Delete (Command2): asks Yes/No/Cancel for each selected name. Returns the count deleted.
int DeleteLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected,
               const LogLock* own = nullptr);
// Copy (Command3): asks for a folder, then copies each selected name there, asking
// before it overwrites. Returns the count copied, -1 when nothing was asked.
int CopyLogs(Dialogs& dialogs, const QString& logFolder, int listCount, const QStringList& selected);

// The folder the next "Ordner wählen" starts in (process-wide, as the copy leaves it).
QString BrowseStartFolder();
void SetBrowseStartFolder(const QString& folder);

// LastLogFile of section Pathe when that file is in LogFolder, else the empty text.
QString ExistingLastLog(const Model& m);
void WriteLastLogFile(const Model& m, const QString& name);

} // namespace kolibrino::setup
