// The text of the log printout: page mark, heading and one line per grid row.
//
// Called by the printout (window thread) and by tests. Pure functions; never fail.
#pragma once

#include "entry/log_grid_model.h"

#include <QString>

namespace kolibrino::exporting {

QString PrintPageMark(int page); // "<Seite 1>"
QString PrintHeading();
// The line of a grid row (rows from 0), not yet cut to the rule's length.
QString PrintLine(const LogGridModel& grid, int row, const QString& myBz);

inline const char* const kKeineDruckeintraege = "Es sind keine Logeinträge zum Drucken vorhanden!";
inline const char* const kDruckFrage = "Soll das aktuelle Log auf dem Standarddrucker ausgegeben werden?\n\n"
                                       "Das Log kann vor dem Drucken durch einen Rechtsklick auf die Tabelle "
                                       "verschieden sortiert werden.\n\n"
                                       "Der Ausdruck erfolgt in der aktuellen Sortierung!";
inline const char* const kGedruckt = "Das Log wurde gedruckt.";

} // namespace kolibrino::exporting
