#include "scoring/print_target.h"

#include "core/print_choice.h"

#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

namespace kolibrino {

bool PrintPage(Dialogs& dialogs, QPageLayout::Orientation orientation, const QString& jobName,
               const std::function<void(QPrinter&)>& draw, QString* pdfPath) {
    QPrinter printer(QPrinter::HighResolution);
    const bool toPdf = QPrinterInfo::defaultPrinter().isNull() || PrintIntoPdfChosen();
    if (toPdf) {
        QString path = dialogs.SaveDialog(QStringLiteral("*.pdf (PDF-Dateien)|*.pdf"),
                                          QStringLiteral("Kein Drucker: als PDF speichern"), QString());
        if (path.isEmpty()) return false;
        if (!path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) path += QStringLiteral(".pdf");
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(path);
        if (pdfPath) *pdfPath = path;
    } else {
        printer.setPrinterName(QPrinterInfo::defaultPrinter().printerName());
    }
    printer.setDocName(jobName);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
    printer.setFullPage(true);
    if (!printer.isValid()) {
        dialogs.MsgBox(QStringLiteral("FEHLER\n\n\tDrucker kann nicht geöffnet werden"), Msg::Critical);
        return false;
    }
    draw(printer);
    return true;
}

} // namespace kolibrino
