// Where the save dialogs of the exports start: the folder last used for that kind of
// file (section "Ordner" of the settings file, one key per kind), or the log folder
// Logs/ when none was used yet or it is gone. Never the program's own folder.
//
// Window thread only (it reads and writes the settings file). Never fails: an unreadable
// key reads as none; a refused write leaves the last folder as it was.
#pragma once

#include <QString>

namespace kolibrino {

struct Model;

namespace SaveKind {
inline const char* const Adif = "ADIF";
inline const char* const Cabrillo = "Cabrillo";
inline const char* const Ergebnis = "Ergebnis";
inline const char* const Pdf = "PDF";
} // namespace SaveKind

// The folder to start the dialog in, with a trailing "/".
QString SaveStartFolder(const Model& m, const char* kind);
// Notes the folder of a file the operator chose for that kind.
void RememberSaveFolder(const char* kind, const QString& chosenFile);

} // namespace kolibrino
