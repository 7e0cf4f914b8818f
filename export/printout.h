// The log printout: the grid's rows in their present order as a fixed-pitch table on
// the default printer, or into a PDF file when the machine has no printer.
//
// GUI thread only (the printer and its fonts). Messages go through Dialogs; a
// printer that cannot be started shows the "FEHLER" box. Never throws.
#pragma once

#include "core/dialogs.h"
#include "entry/log_grid_model.h"

#include <QString>

class QPagedPaintDevice;

namespace kolibrino::exporting {

// Paints the pages on the device; returns the number of pages, 0 when it cannot paint.
int PaintLog(QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz);

// The menu "Log Drucken". pdfOnly: always into pdfPath, even with a printer.
void PrintLogMenu(Dialogs& dialogs, const LogGridModel& grid, const QString& myBz, const QString& pdfPath,
                  bool pdfOnly);

} // namespace kolibrino::exporting
