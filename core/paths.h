// Where Kolibrino keeps its files.
//
// DataFolder is $KOLIBRINO_HOME when set, else $XDG_DATA_HOME/kolibrino/ (by default
// ~/.local/share/kolibrino/), with Logs/, Sicherung/ and Tmp/ below it. At every start
// the files the program ships (district table, map, manual) are copied there when
// missing, and the MD5 of each copy is noted in the settings (section [Ausgeliefert],
// key the file's name). A copy that is still as it was copied is replaced when the
// package ships another version; a file the operator changed, or one an update
// installed (noted as kNotShippedCopy), is never overwritten.
//
// Window thread, at start. Returns false with a German description when a folder
// cannot be created; the model's paths are set either way.
#pragma once

#include "core/log_model.h"

namespace kolibrino {

inline const char* const kIniFileName = "kolibrino.INI";
inline const char* const kLogExtension = ".KOLBO";

// AppFolder: the executable's folder with a trailing "/".
void IniStartup(Model& m, const QString& appFolder);
// DataFolder, IniPath and the three folders below; creates what is missing.
bool SetupFolders(Model& m, QString* error = nullptr);
inline const char* const kSectionShipped = "Ausgeliefert";
inline const char* const kNotShippedCopy = "0";
// Copies the shipped data files into DataFolder when missing there, or when the copy
// there is unchanged and the shipped file differs. Returns the names copied. A copy
// that fails leaves the file there as it was (and is tried again at the next start).
QStringList CopyShippedData(const Model& m);
// Notes that DataFolder's file of that name is no shipped copy any more (an update
// installed it): a package upgrade leaves it alone.
void ForgetShippedCopy(const Model& m, const QString& name);
// Whether two paths name the same folder, however spelled: after cleaning ("./",
// "..", repeated and trailing slashes), without regard to case (a stick's file system
// ignores it), by canonical path (symbolic links followed) and by the file system's
// identity of the folder (device and inode).
bool SameFolder(const QString& a, const QString& b);
// Logs/ or Sicherung/ of DataFolder, however spelled: never a folder for the
// operator's additional backup.
bool IsLogOrBackupFolder(const Model& m, const QString& folder);

// Where the shipped data lie: beside the executable ("data/"), installed
// ("../share/kolibrino/") or the source tree of a developer build.
QString ShippedDataFolder(const Model& m);

} // namespace kolibrino
