// Where the map and the district list are printed: the default printer, or a PDF file
// when there is no printer or the operator chose PDF (core/print_choice.h).
//
// Who calls it: BZKarte (Command7) and BezirkeListe (MnDrucken), GUI thread only.
// Fails quietly: a cancelled PDF name prints nothing and gives false; a printer or
// file that cannot be opened shows "FEHLER" with the reason (OK only) and gives false.
#pragma once

#include "core/dialogs.h"

#include <QPageLayout>
#include <QString>
#include <functional>

class QPrinter;

namespace kolibrino {

// Runs draw on a printer page of the given orientation; *pdfPath names the PDF written,
// if any.
bool PrintPage(Dialogs& dialogs, QPageLayout::Orientation orientation, const QString& jobName,
               const std::function<void(QPrinter&)>& draw, QString* pdfPath = nullptr);

} // namespace kolibrino
