#include "scoring/bezirke_liste.h"

#include "ui/print_job.h"

#include <QLabel>
#include <algorithm>
#include <QMenuBar>
#include <QPainter>
#include <QPrinter>
#include <QScrollArea>
#include <QVBoxLayout>

namespace kolibrino {

namespace {

constexpr double kPageWidthMm = 210;
constexpr double kPageHeightMm = 297;
constexpr double kScreenDotsPerMm = 96 / 25.4;
constexpr int kColumnRows = 53;
constexpr double kMaxLineMm = 5.0;

} // namespace

QString BezirkeListeLine(const BezirkRecord& b) {
    return QStringLiteral(" %1 - %2 (OE%3)").arg(b.Code, b.Name).arg(b.Gruppe);
}

std::vector<std::pair<QString, QString>> BezirkeListeRows(const Model& m) {
    std::vector<std::pair<QString, QString>> rows;
    const int highest = int(m.BezirkRecords.size()) - 1;
    for (int i = 1; i <= kColumnRows && i <= highest; ++i) {
        QString right;
        if (i + kColumnRows < highest) right = BezirkeListeLine(m.BezirkRecords[size_t(i + kColumnRows)]);
        rows.emplace_back(BezirkeListeLine(m.BezirkRecords[size_t(i)]), right);
    }
    return rows;
}

void DrawBezirkeListe(QPainter& p, const Model& m, double dotsPerMm) {
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(13);
    p.setFont(font);
    const QFontMetricsF fm(font, p.device());
    // The font's own line height, but never more than fits 55 lines on the page.
    const double line = std::min(fm.height(), kMaxLineMm * dotsPerMm);
    const double ascent = fm.ascent();
    double y = 10 * dotsPerMm;
    p.drawText(QPointF(80 * dotsPerMm, y + ascent), QStringLiteral("Bezirkeliste"));
    y += 2 * line;
    for (const auto& [left, right] : BezirkeListeRows(m)) {
        p.drawText(QPointF(0, y + ascent), left);
        if (!right.isEmpty()) p.drawText(QPointF(105 * dotsPerMm, y + ascent), right);
        y += line;
    }
}

BezirkeListe::BezirkeListe(const Model& m, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_(m), dialogs_(dialogs) {
    setObjectName(QStringLiteral("BezirkeListe"));
    setWindowTitle(QStringLiteral("Bezirke Liste"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QMenuBar;
    QMenu* datei = bar->addMenu(QStringLiteral("&Datei"));
    datei->setObjectName(QStringLiteral("MnDatei"));
    QAction* drucken = datei->addAction(QStringLiteral("&Drucken"));
    drucken->setObjectName(QStringLiteral("MnDrucken"));
    connect(drucken, &QAction::triggered, this, [this] { MnDrucken(); });
    QAction* beenden = datei->addAction(QStringLiteral("&Beenden"));
    beenden->setObjectName(QStringLiteral("MnBenenden"));
    connect(beenden, &QAction::triggered, this, &QDialog::reject);
    layout->setMenuBar(bar);

    // The page, drawn once.
    page_ = QImage(int(kPageWidthMm * kScreenDotsPerMm), int(kPageHeightMm * kScreenDotsPerMm),
                   QImage::Format_RGB32);
    page_.setDotsPerMeterX(int(kScreenDotsPerMm * 1000));
    page_.setDotsPerMeterY(int(kScreenDotsPerMm * 1000));
    page_.fill(Qt::white);
    {
        QPainter p(&page_);
        p.setRenderHint(QPainter::TextAntialiasing);
        DrawBezirkeListe(p, m_, kScreenDotsPerMm);
    }
    auto* picture2 = new QScrollArea;
    picture2->setObjectName(QStringLiteral("Picture2"));
    auto* picture11 = new QLabel;
    picture11->setObjectName(QStringLiteral("Picture11"));
    picture11->setPixmap(QPixmap::fromImage(page_));
    picture11->resize(page_.size());
    picture2->setWidget(picture11);
    layout->addWidget(picture2);
    resize(page_.width() + 30, 700);
}

bool BezirkeListe::MnDrucken(QString* pdfPath) {
    if (dialogs_.MsgBox(QStringLiteral("Soll die Liste auf dem Standarddrucker ausgegeben werden?"),
                        Msg::Question | Msg::OkCancel) == Msg::Cancel)
        return false;
    Printout job;
    job.jobName = QStringLiteral("Bezirke Liste");
    job.paint = [this](QPainter& p, QPrinter& printer) {
        const double dotsPerMm = printer.resolution() / 25.4;
        // The page as drawn on screen: 7 mm down, two columns, the widest line on the right.
        QFont font(QStringLiteral("Arial"));
        font.setPointSizeF(13);
        const QFontMetricsF fm(font, &printer);
        double right = 0;
        for (const auto& row : BezirkeListeRows(m_))
            right = std::max(right, fm.horizontalAdvance(row.second));
        const double line = std::min(fm.height(), kMaxLineMm * dotsPerMm);
        FitIntoPage(p, printer, 105 * dotsPerMm + right,
                    (7 + 10) * dotsPerMm + fm.ascent() + (kColumnRows + 2) * line);
        p.translate(0, 7 * dotsPerMm);
        DrawBezirkeListe(p, m_, dotsPerMm);
        return true;
    };
    job.open = openUrl;
    const PrintOutcome o = RunPrintout(dialogs_, m_, job, pdfPath);
    return o == PrintOutcome::Printed || o == PrintOutcome::IntoPdf || o == PrintOutcome::Waiting;
}

} // namespace kolibrino
