// The Cabrillo 3.0 writer: the open log as the contest wants it.
//
// BuildCabrilloBytes() makes the whole file from the rows of the main log grid as they
// stand (sort order included) and the log's header, straight in code page 1252 and in
// one pass over the rows. The claimed score comes from the caller through a
// ScoreFunction; when it gives nothing, no file text is made and the caller shows
// kCabrilloFehler. WriteCabrillo() replaces the target atomically, so a failure never
// leaves a partial file behind.
//
// ExportCabrilloMenu() is the whole menu flow (save dialog, the empty-log message,
// the score failure, the closing question) through Dialogs.
//
// Window thread for the menu flow; the builders are pure and may run on any thread
// as long as nobody changes the grid or the model meanwhile.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

namespace kolibrino::exporting {

// The claimed score of the log; nullopt when it cannot be worked out.
using ScoreFunction = std::function<std::optional<long>(const Model&)>;

inline const char* const kCabrilloFehler = "Fehler im LOG, Cabrillo kann nicht erzeugt werden!";

struct CabrilloSource {
    const Model& m;
    const LogGridModel& grid;
    QString ownBezirk; // as the main window shows it (Label12)
    int year = 0;      // of the system clock, for CREATED-BY
};

// The text of one contact line without its line end (73 characters for two-character
// districts); the slot of 75 characters holds it and its CR LF. Like every text below,
// as the file holds it: a character outside code page 1252 reads "?".
QString CabrilloQsoLine(const CabrilloSource& src, int row);

// The whole file as code page 1252 bytes, lines ended by CR LF; nullopt when the score
// is not available.
std::optional<QByteArray> BuildCabrilloBytes(const CabrilloSource& src, const ScoreFunction& score);
// The same as text.
std::optional<QString> BuildCabrillo(const CabrilloSource& src, const ScoreFunction& score);

enum class CabrilloResult { Written, Empty, ScoreFailed, WriteFailed };

// Deletes an existing file at path first (even when the log then proves empty), then
// writes the file unless the grid has no rows or the score fails. *error holds the
// description of a write fault.
CabrilloResult WriteCabrillo(const CabrilloSource& src, const ScoreFunction& score, const QString& path,
                             QString* error = nullptr);

// The menu "Cabrillo-Datei erzeugen". openInEditor is run on the Yes of the closing
// question.
void ExportCabrilloMenu(Dialogs& dialogs, const CabrilloSource& src, const ScoreFunction& score,
                        const QString& startFolder, const std::function<void(const QString&)>& openInEditor);

} // namespace kolibrino::exporting
