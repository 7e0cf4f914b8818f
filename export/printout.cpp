#include "export/printout.h"

#include "core/error_trap.h"
#include "export/printout_text.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <memory>

namespace kolibrino::exporting {
namespace {

QFont PrintFont() {
    // Courier New where it exists; its metric twin elsewhere.
    QFont::insertSubstitutions(QStringLiteral("Courier New"),
                               {QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans Mono")});
    QFont f(QStringLiteral("Courier New"), 8);
    f.setStyleHint(QFont::TypeWriter);
    f.setFixedPitch(true);
    return f;
}

} // namespace

int PaintLog(QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz) {
    QPainter p(&device);
    if (!p.isActive()) return 0;
    const QFont font = PrintFont();
    p.setFont(font);
    const QFontMetrics fm(font, &device);
    const int width = device.width();
    const int height = device.height();
    const int w = std::max(1, fm.horizontalAdvance(QLatin1Char('W')));
    const int ruleLength = width / w;
    const QString rule(ruleLength, QLatin1Char('-'));
    int page = 1;
    int y = 0;
    auto line = [&](int x, const QString& text) {
        p.drawText(x, y + fm.ascent(), text);
        y += fm.height();
    };
    auto head = [&] {
        const QString mark = PrintPageMark(page);
        line(width / 2 - fm.horizontalAdvance(mark) / 2, mark);
        line(0, PrintHeading());
        line(0, rule);
    };
    head();
    for (int row = 0; row < grid.DataRows(); ++row) {
        if (y + fm.height() + 50 > height) {
            device.newPage();
            ++page;
            y = 0;
            head();
        }
        line(0, PrintLine(grid, row, myBz).left(ruleLength));
    }
    return page;
}

void PrintLogMenu(Dialogs& dialogs, const LogGridModel& grid, const QString& myBz, const QString& pdfPath,
                  bool pdfOnly) {
    if (grid.Rows() < 2) {
        dialogs.MsgBox(QString::fromUtf8(kKeineDruckeintraege), Msg::Information);
        return;
    }
    if (dialogs.MsgBox(QString::fromUtf8(kDruckFrage), Msg::OkCancel | Msg::Question) != Msg::Ok) return;
    bool printed = false;
    const bool done = RunTrapped(dialogs, [&]() -> QString {
        BusyScope busy(dialogs);
        const QPrinterInfo info = QPrinterInfo::defaultPrinter();
        std::unique_ptr<QPrinter> printer;
        if (!pdfOnly && !info.isNull()) {
            printer = std::make_unique<QPrinter>(info, QPrinter::HighResolution);
        } else {
            printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
            printer->setOutputFormat(QPrinter::PdfFormat);
            printer->setOutputFileName(pdfPath);
        }
        printer->setPageOrientation(QPageLayout::Landscape);
        printer->setDocName(QStringLiteral("Kolibrino Log"));
        if (PaintLog(*printer, grid, myBz) == 0)
            return QStringLiteral("Der Drucker kann nicht gestartet werden.");
        printed = true;
        return {};
    });
    if (done && printed) dialogs.MsgBox(QString::fromUtf8(kGedruckt), Msg::Information);
}

} // namespace kolibrino::exporting
