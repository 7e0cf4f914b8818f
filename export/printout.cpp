#include "export/printout.h"

#include "core/log_model.h"
#include "export/printout_text.h"
#include "ui/print_job.h"

#include <QFileInfo>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>

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

int PaintLog(QPainter& p, QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz,
             int fromPage, int toPage) {
    if (!p.isActive()) return 0;
    const QFont font = PrintFont();
    p.setFont(font);
    const QFontMetrics fm(font, &device);
    const int width = device.width();
    const int height = device.height();
    const int w = std::max(1, fm.horizontalAdvance(QLatin1Char('W')));
    const int ruleLength = width / w;
    const QString rule(ruleLength, QLatin1Char('-'));
    // Pages outside the range chosen in the print dialog are laid out, not printed.
    auto wanted = [&](int page) { return fromPage <= 0 || (page >= fromPage && (toPage <= 0 || page <= toPage)); };
    int page = 1;
    int printed = 0;
    int y = 0;
    auto line = [&](int x, const QString& text) {
        if (wanted(page)) p.drawText(x, y + fm.ascent(), text);
        y += fm.height();
    };
    auto head = [&] {
        if (wanted(page) && printed++ > 0) device.newPage();
        const QString mark = PrintPageMark(page);
        line(width / 2 - fm.horizontalAdvance(mark) / 2, mark);
        line(0, PrintHeading());
        line(0, rule);
    };
    head();
    for (int row = 0; row < grid.DataRows(); ++row) {
        if (y + fm.height() + 50 > height) {
            ++page;
            y = 0;
            head();
        }
        line(0, PrintLine(grid, row, myBz).left(ruleLength));
    }
    return page;
}

int PaintLog(QPagedPaintDevice& device, const LogGridModel& grid, const QString& myBz) {
    QPainter p(&device);
    return PaintLog(p, device, grid, myBz, 0, 0);
}

bool PrintLogMenu(Dialogs& dialogs, const Model& m, const LogGridModel& grid, const QString& myBz,
                  const std::function<bool(const QUrl&)>& open) {
    if (grid.Rows() < 2) {
        dialogs.MsgBox(QString::fromUtf8(kKeineDruckeintraege), Msg::Information);
        return false;
    }
    if (dialogs.MsgBox(QString::fromUtf8(kDruckFrage), Msg::OkCancel | Msg::Question) != Msg::Ok) return false;
    Printout job;
    job.jobName = QFileInfo(m.CurrentLogName).completeBaseName();
    if (job.jobName.isEmpty()) job.jobName = QStringLiteral("Kolibrino Log");
    job.orientation = QPageLayout::Landscape;
    job.open = open;
    job.paint = [&](QPainter& p, QPrinter& printer) {
        BusyScope busy(dialogs);
        const bool range = printer.printRange() == QPrinter::PageRange;
        return PaintLog(p, printer, grid, myBz, range ? printer.fromPage() : 0, range ? printer.toPage() : 0) > 0;
    };
    const PrintOutcome o = RunPrintout(dialogs, m, job);
    if (o == PrintOutcome::Printed) dialogs.MsgBox(QString::fromUtf8(kGedruckt), Msg::Information);
    return o == PrintOutcome::Printed || o == PrintOutcome::IntoPdf || o == PrintOutcome::Waiting;
}

} // namespace kolibrino::exporting
