#include "ui/print_job.h"

#include "core/log_model.h"
#include "core/print_choice.h"
#include "core/save_folders.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>

namespace kolibrino {
namespace {

// The answer of the print system to the last request this thread sent it: Qt's print
// engine hands the job to CUPS when the painter ends, and throws the answer away. Empty
// when the job was accepted or there is no CUPS.
QString LastCupsRefusal() {
    static QLibrary cups(QStringLiteral("cups"), 2);
    using StatusFn = int (*)();
    using TextFn = const char* (*)();
    const auto status = reinterpret_cast<StatusFn>(cups.resolve("cupsLastError"));
    const auto text = reinterpret_cast<TextFn>(cups.resolve("cupsLastErrorString"));
    if (!status) return {};
    const int code = status();
    if (code < 0x0400) return {}; // successful, informational or redirected
    const QString why = text ? QString::fromUtf8(text()) : QString();
    return why.isEmpty() ? QStringLiteral("Fehler 0x%1").arg(code, 4, 16, QLatin1Char('0')) : why;
}

void KeepMargins(QPrinter& printer) {
    const QMarginsF now = printer.pageLayout().margins(QPageLayout::Millimeter);
    const QMarginsF want(std::max(now.left(), kMinPrintMarginMm), std::max(now.top(), kMinPrintMarginMm),
                         std::max(now.right(), kMinPrintMarginMm), std::max(now.bottom(), kMinPrintMarginMm));
    printer.setPageMargins(want, QPageLayout::Millimeter);
}

QString PdfName(const QPrinter& printer, const QString& proposed) {
    QString file = printer.outputFileName();
    if (file.isEmpty()) file = proposed;
    if (!file.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) file += QStringLiteral(".pdf");
    return file;
}

PrintOutcome Fail(Dialogs& d, const QString& why) {
    d.MsgBox(QString::fromUtf8(kDruckFehler).arg(why), Msg::Critical);
    return PrintOutcome::Failed;
}

PrintOutcome TellPdf(Dialogs& d, const Printout& p, const QString& file) {
    const QFileInfo info(file);
    if (!info.exists() || info.size() == 0)
        return Fail(d, QStringLiteral("Die PDF-Datei %1 wurde nicht geschrieben.").arg(file));
    if (d.MsgBox(QStringLiteral("Der Ausdruck wurde als PDF-Datei gespeichert unter\n%1\n\n"
                                "Soll die Datei jetzt geöffnet werden?")
                     .arg(QDir::toNativeSeparators(file)),
                 Msg::YesNo | Msg::Information | Msg::DefaultButton2) == Msg::Yes) {
        const QUrl url = QUrl::fromLocalFile(file);
        if (p.open)
            p.open(url);
        else
            QDesktopServices::openUrl(url);
    }
    return PrintOutcome::IntoPdf;
}

} // namespace

void FitIntoPage(QPainter& p, const QPrinter& printer, double contentWidth, double contentHeight) {
    const double sx = contentWidth > 0 ? printer.width() / contentWidth : 1.0;
    const double sy = contentHeight > 0 ? printer.height() / contentHeight : 1.0;
    const double s = std::min({1.0, sx, sy});
    if (s < 1.0) p.scale(s, s);
}

PrintOutcome RunPrintout(Dialogs& dialogs, const Model& m, const Printout& p, QString* pdfPath) {
    QPrinter printer(QPrinter::HighResolution);
    const QString proposed = SaveStartFolder(m, SaveKind::Pdf) + p.jobName + QStringLiteral(".pdf");
    const QPrinterInfo standard = QPrinterInfo::defaultPrinter();
    if (standard.isNull() || PrintIntoPdfChosen()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(proposed);
        printer.setPageSize(QPageSize(QPageSize::A4));
    } else {
        printer.setPrinterName(standard.printerName());
    }
    printer.setDocName(p.jobName);
    printer.setPageOrientation(p.orientation);
    printer.setFullPage(false);
    KeepMargins(printer);
    if (!dialogs.PrintDialog(printer, QStringLiteral("Drucken"))) return PrintOutcome::Cancelled;

    const bool intoPdf = printer.outputFormat() == QPrinter::PdfFormat;
    QString file;
    if (intoPdf) {
        file = PdfName(printer, proposed);
        printer.setOutputFileName(file);
        RememberSaveFolder(SaveKind::Pdf, file);
    }
    KeepMargins(printer); // another printer or paper may have come with the dialog
    QPainter painter;
    if (!painter.begin(&printer)) {
        return Fail(dialogs, intoPdf ? QStringLiteral("Die Datei %1 kann nicht geschrieben werden.").arg(file)
                                     : QStringLiteral("Der Drucker \"%1\" kann nicht gestartet werden.")
                                           .arg(printer.printerName()));
    }
    const bool painted = p.paint(painter, printer);
    const bool ended = painter.end();
    const QString refusal = intoPdf ? QString() : LastCupsRefusal();
    if (!refusal.isEmpty())
        return Fail(dialogs, QStringLiteral("Der Drucker \"%1\" hat den Druckauftrag nicht angenommen:\n\t%2")
                                 .arg(printer.printerName(), refusal));
    if (!painted || !ended || printer.printerState() == QPrinter::Error)
        return Fail(dialogs, intoPdf ? QStringLiteral("Die Datei %1 kann nicht geschrieben werden.").arg(file)
                                     : QStringLiteral("Der Druckauftrag für \"%1\" ist fehlgeschlagen.")
                                           .arg(printer.printerName()));
    if (intoPdf) {
        if (pdfPath) *pdfPath = file;
        return TellPdf(dialogs, p, file);
    }
    if (QPrinterInfo::printerInfo(printer.printerName()).state() == QPrinter::Error) {
        dialogs.MsgBox(QStringLiteral("Der Druckauftrag wartet in der Warteschlange: der Drucker \"%1\" ist "
                                      "angehalten.\nGedruckt wird erst, wenn er wieder freigegeben ist.")
                           .arg(printer.printerName()),
                       Msg::Exclamation);
        return PrintOutcome::Waiting;
    }
    return PrintOutcome::Printed;
}

} // namespace kolibrino
