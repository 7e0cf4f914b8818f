// The ADIF 2.2.7 export: the rows of the main log grid for other logbook programs,
// the 30 m contacts included and the dupes left out.
//
// BuildAdifBytes() is pure and writes code page 1252 straight, in one pass over the
// rows; ExportAdifMenu() is the menu flow through Dialogs.
//
// Window thread for the menu flow; the builder may run on any thread while nobody
// changes the grid. A write fault is shown by the "FEHLER" trap and leaves no file.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <QByteArray>
#include <QString>
#include <functional>

namespace kolibrino::exporting {

// The frequency of the grid (kHz) as ADIF's megahertz: "3700" becomes "3.700".
QString AdifFrequency(const QString& kHz);
// One contact line with its CR LF. The texts are as the file holds them: a character
// outside code page 1252 reads "?" (tag lengths count it as the grid does).
QString AdifQsoLine(const Model& m, const LogGridModel& grid, int row, const QString& ownBezirk);
QByteArray BuildAdifBytes(const Model& m, const LogGridModel& grid, const QString& ownBezirk);
QString BuildAdif(const Model& m, const LogGridModel& grid, const QString& ownBezirk);

void ExportAdifMenu(Dialogs& dialogs, const Model& m, const LogGridModel& grid, const QString& ownBezirk,
                    const std::function<void(const QString&)>& openInEditor);

} // namespace kolibrino::exporting
