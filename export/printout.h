// The log printout: the grid's rows in their present order as a fixed-pitch table on
// the printer chosen in the print dialog (the default printer first), or into a PDF.
//
// GUI thread only (the printer and its fonts). Messages go through Dialogs; a printer
// that cannot be started or a job the queue refuses shows the "FEHLER" box, and only a
// job handed over says "Das Log wurde gedruckt." (see ui/print_job.h). Never throws.
#pragma once

#include "core/dialogs.h"
#include "entry/log_grid_model.h"

#include <QString>
#include <QUrl>
#include <functional>

class QPagedPaintDevice;
class QPainter;

namespace kolibrino {
struct Model;
}

namespace kolibrino::exporting {

// Paints the pages on the device; returns the number of pages, 0 when it cannot paint.
// fromPage..toPage (from 1; 0 for all) are the pages put on paper.
int PaintLog(QPainter& p, QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz,
             int fromPage, int toPage);
int PaintLog(QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz);

// The menu "Log Drucken"; true when the pages went to a printer or a PDF.
bool PrintLogMenu(Dialogs& dialogs, const Model& m, const LogGridModel& grid, const QString& myBz,
                  const std::function<bool(const QUrl&)>& open);

} // namespace kolibrino::exporting
