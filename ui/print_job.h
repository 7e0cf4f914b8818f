// One printout from a menu: the system's print dialog (Dialogs::PrintDialog) with the
// default printer chosen (or a PDF file in Logs/ when the machine has no printer or the
// operator chose "In PDF-Datei drucken"), the painting inside the printable area, and
// the outcome told to the operator.
//
// Who calls it: the log printout, the district map and the district list; window thread
// only (the printer, its fonts and the dialogs). Never throws. A printer or PDF file that
// cannot be started, a job that the print queue refuses (CUPS), or a painting that fails
// shows the "FEHLER" box (flags 16) with the cause and gives Failed: nothing is reported
// as printed that was not handed over. A PDF says where it went and offers to open it.
#pragma once

#include "core/dialogs.h"

#include <QPageLayout>
#include <QString>
#include <QUrl>
#include <functional>

class QPainter;
class QPrinter;

namespace kolibrino {

struct Model;

struct Printout {
    QString jobName; // the print job's name, and the PDF file's proposed name
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    // Paints all pages (QPrinter::fromPage/toPage chosen in the dialog may be honoured);
    // the painter is active on the printer, its origin the printable area's corner.
    // false: nothing could be painted.
    std::function<bool(QPainter&, QPrinter&)> paint;
    // Opens the written PDF on the operator's yes; empty: the desktop's viewer.
    std::function<bool(const QUrl&)> open;
};

enum class PrintOutcome { Cancelled, Printed, IntoPdf, Waiting, Failed };

// pdfPath, when given, receives the PDF file written (IntoPdf only).
PrintOutcome RunPrintout(Dialogs& dialogs, const Model& m, const Printout& p, QString* pdfPath = nullptr);

// The smallest margin kept on every side of a printout, in millimetres, where the
// printer itself asks for less.
inline constexpr double kMinPrintMarginMm = 10.0;

// Scales the painter so that content of the given size (in device pixels) fits the
// printable area; never enlarges.
void FitIntoPage(QPainter& p, const QPrinter& printer, double contentWidth, double contentHeight);

inline const char* const kDruckFehler = "FEHLER\n\n\t%1\n\nEs wurde nichts gedruckt.";

} // namespace kolibrino
