#include "scoring/bz_karte.h"

#include "core/log_file.h"
#include "core/settings.h"
#include "scoring/colour_buttons.h"
#include "scoring/flood_fill.h"
#include "ui/back_colour.h"
#include "ui/print_job.h"
#include "ui/window_support.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

namespace kolibrino {

BZKarte::BZKarte(Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Window), m_(m), dialogs_(dialogs), menuEntry_(menuEntry) {
    setObjectName(QStringLiteral("BZKarte"));
    setWindowTitle(QStringLiteral("Bezirke Karte"));
    setAttribute(Qt::WA_DeleteOnClose);
    timer1_.setSingleShot(true);
    timer1_.setInterval(0);
    connect(&timer1_, &QTimer::timeout, this, &BZKarte::Timer1Tick);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    picture3_ = new QWidget;
    picture3_->setObjectName(QStringLiteral("Picture3"));
    auto* panel = new QHBoxLayout(picture3_);
    auto* frame2 = new QGroupBox(QStringLiteral("Farbauswahl"));
    frame2->setObjectName(QStringLiteral("Frame2"));
    auto* colours = new QHBoxLayout(frame2);
    AddColourButtons(buttons_, colours, this, [this](int i) { CommandClick(i); });
    panel->addWidget(frame2);
    combo1_ = new QComboBox;
    combo1_->setObjectName(QStringLiteral("Combo1"));
    for (const char* row : kMapFilterRows)
        combo1_->addItem(QString::fromUtf8(row));
    combo1_->setPlaceholderText(QStringLiteral("Bezirke einfärben"));
    combo1_->setCurrentIndex(-1);
    connect(combo1_, &QComboBox::activated, this, &BZKarte::Combo1Click);
    panel->addWidget(combo1_);
    auto* frame1 = new QGroupBox;
    frame1->setObjectName(QStringLiteral("Frame1"));
    auto* f1 = new QHBoxLayout(frame1);
    auto* command8 = new QPushButton(QStringLiteral("Karte in den Hintergrund"));
    command8->setObjectName(QStringLiteral("Command8"));
    connect(command8, &QPushButton::clicked, this, &BZKarte::Command8Click);
    auto* command7 = new QPushButton(QStringLiteral("Karte drucken"));
    command7->setObjectName(QStringLiteral("Command7"));
    connect(command7, &QPushButton::clicked, this, [this] { Command7Click(); });
    f1->addWidget(command8);
    f1->addWidget(command7);
    panel->addWidget(frame1);
    check1_ = new QCheckBox(QStringLiteral("Karte halbe Größe"));
    check1_->setObjectName(QStringLiteral("Check1"));
    connect(check1_, &QCheckBox::clicked, this, &BZKarte::Check1Click);
    panel->addWidget(check1_);
    panel->addStretch(1);
    layout->addWidget(picture3_);

    command6_ = new QPushButton(QStringLiteral("&Volle Größe"));
    command6_->setObjectName(QStringLiteral("Command6"));
    command6_->hide();
    connect(command6_, &QPushButton::clicked, this, &BZKarte::Command6Click);
    layout->addWidget(command6_, 0, Qt::AlignLeft);

    picture2_ = new QScrollArea;
    picture2_->setObjectName(QStringLiteral("Picture2"));
    picture1_ = new QLabel;
    picture1_->setObjectName(QStringLiteral("Picture1"));
    picture2_->setWidget(picture1_);
    picture2_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    picture2_->horizontalScrollBar()->setObjectName(QStringLiteral("HScroll1"));
    picture2_->verticalScrollBar()->setObjectName(QStringLiteral("VScroll1"));
    layout->addWidget(picture2_, 1);
    image1_ = new QLabel;
    image1_->setObjectName(QStringLiteral("Image1"));
    image1_->setScaledContents(true);
    image1_->hide();
    layout->addWidget(image1_, 0, Qt::AlignLeft | Qt::AlignTop);
}

void BZKarte::Load() {
    for (int i = 0; i < 5; ++i) {
        const int v = int(IniReadInt({}, QStringLiteral("Farben"), QString::fromLatin1(kFarbenKeys[i])));
        if (v != 0) SetButtonColour(i, v);
    }
    RestoreWindowPos(this, QStringLiteral("BZKarte"));
    timer1_.start();
    SetCompanionOpen(m_, Companion::BZKarte, menuEntry_, true);
}

int BZKarte::ButtonColour(int i) const {
    return int(BackColourOf(buttons_[size_t(i)]));
}

void BZKarte::SetButtonColour(int i, int bgr) {
    SetBackColour(buttons_[size_t(i)], quint32(bgr));
}

MapColours BZKarte::Colours() const {
    MapColours c;
    for (int i = 0; i < 5; ++i)
        MapColour(c, i) = ButtonColour(i);
    return c;
}

void BZKarte::LoadMap() {
    map_ = LoadMapImage(m_.DataFolder + QStringLiteral("BZ_Karte.gif"));
}

void BZKarte::ShowMap() {
    QImage shown = map_;
    if (marked_ > 0 && size_t(marked_) < m_.BezirkRecords.size()) {
        const BezirkRecord& b = m_.BezirkRecords[size_t(marked_)];
        QPainter p(&shown);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(Qt::white, 7));
        p.drawEllipse(QPointF(b.X, b.Y), 16, 16);
        p.setPen(QPen(QColor(220, 0, 0), 4));
        p.drawEllipse(QPointF(b.X, b.Y), 16, 16);
    }
    picture1_->setPixmap(QPixmap::fromImage(shown));
    picture1_->resize(map_.size());
    if (image1_->isVisible()) image1_->setPixmap(QPixmap::fromImage(shown));
}

QImage BZKarte::ShownImage() const {
    return picture1_->pixmap().toImage();
}

void BZKarte::BezirkZeigen(const QString& code) {
    const int n = BezirkNumber(m_, code);
    if (n <= 0 || size_t(n) >= m_.BezirkRecords.size()) return;
    marked_ = n;
    ShowMap();
    const BezirkRecord& b = m_.BezirkRecords[size_t(n)];
    if (!HalfSize()) picture2_->ensureVisible(b.X, b.Y, picture2_->width() / 2, picture2_->height() / 2);
    if (isMinimized()) showNormal();
    raise();
}

QImage BZKarte::HalfView() const {
    if (!image1_->isVisible()) return {};
    return image1_->pixmap().toImage().scaled(image1_->size());
}

bool BZKarte::HalfSize() const {
    return image1_->isVisible();
}

void BZKarte::FitWindow() {
    if (image1_->isVisible()) {
        resize(image1_->size());
        return;
    }
    const int frame = 2 * picture2_->frameWidth();
    resize(map_.width() + frame, map_.height() + frame + picture3_->sizeHint().height());
}

void BZKarte::Fuellen(const QString& code) {
    if (combo1_->currentIndex() > -1) {
        timer1_.start();
        return;
    }
    if (FuellenImage(map_, m_, code, Colours())) ShowMap();
}

void BZKarte::Fuellen2(const QString& code, int filter) {
    Fuellen2Image(map_, m_, code, filter, Colours());
}

void BZKarte::Combo1Click(int row) {
    if (row == 0) {
        timer1_.start();
        return;
    }
    if (row < 1 || row > 8) return;
    marked_ = 0;
    LoadMap();
    for (size_t i = 1; i < m_.BezirkRecords.size(); ++i) {
        const BezirkRecord& b = m_.BezirkRecords[i];
        if (FilterMatches(b, row)) Fuellen2(b.Code, row);
    }
    ShowMap();
}

void BZKarte::Timer1Tick() {
    if (combo1_->currentIndex() != -1) combo1_->setCurrentIndex(-1);
    marked_ = 0;
    LoadMap();
    if (!image1_->isVisible()) FitWindow();
    PaintStandard(map_, m_, Colours());
    ShowMap();
    timer1_.stop();
}

void BZKarte::CommandClick(int i) {
    const std::optional<int> chosen = AskBandColour(dialogs_, ButtonColour(i));
    if (!chosen) return;
    const int colour = *chosen;
    SetButtonColour(i, colour);
    IniWrite({}, QStringLiteral("Farben"), QString::fromLatin1(kFarbenKeys[i]), ButtonColour(i));
    if (i == 4) return;
    if (i <= 2) timer1_.start();
    if (colourChanged) colourChanged(i, colour);
}

void BZKarte::Check1Click() {
    if (check1_->isChecked()) {
        image1_->setFixedSize(map_.width() / 2, map_.height() / 2);
        picture3_->hide();
        picture2_->hide();
        image1_->show();
        image1_->setPixmap(QPixmap::fromImage(map_));
        command6_->show();
        resize(image1_->width(), image1_->height() + command6_->sizeHint().height());
    } else {
        Command6Click();
    }
}

void BZKarte::Command6Click() {
    picture2_->show();
    image1_->hide();
    check1_->setChecked(false);
    picture3_->show();
    command6_->hide();
    FitWindow();
}

QString BZKarte::PrintHeading() const {
    const int row = combo1_->currentIndex();
    return combo1_->itemText(row > -1 ? row : 0);
}

QImage BZKarte::PrintImage() const {
    // The grey around the country is the window's background, not the map's: on paper
    // it becomes white. Only the grey that touches the edge goes.
    QImage page = map_.convertToFormat(QImage::Format_RGB32);
    if (page.isNull()) return page;
    const QRgb grey = page.pixel(0, 0);
    if (qGray(grey) == 255) return page;
    auto clear = [&](int x, int y) {
        if ((page.pixel(x, y) & 0xFFFFFF) == (grey & 0xFFFFFF)) FloodFill4(page, QPoint(x, y), qRgb(255, 255, 255));
    };
    for (int x = 0; x < page.width(); ++x) {
        clear(x, 0);
        clear(x, page.height() - 1);
    }
    for (int y = 0; y < page.height(); ++y) {
        clear(0, y);
        clear(page.width() - 1, y);
    }
    return page;
}

void BZKarte::DrawPrint(QPainter& p, QPrinter& printer) const {
    const double dotsPerMm = printer.resolution() / 25.4;
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(15);
    p.setFont(font);
    const QFontMetricsF fm(font, &printer);
    // The map at 90 % of its size in millimetres (96 pixels to the inch).
    const double wMm = map_.width() * 25.4 / 96 * 0.9;
    const double hMm = map_.height() * 25.4 / 96 * 0.9;
    FitIntoPage(p, printer, std::max(wMm * dotsPerMm, 50 * dotsPerMm + fm.horizontalAdvance(PrintHeading())),
                (20 + hMm) * dotsPerMm);
    p.drawText(QPointF(50 * dotsPerMm, 10 * dotsPerMm + fm.ascent()), PrintHeading());
    p.drawImage(QRectF(0, 20 * dotsPerMm, wMm * dotsPerMm, hMm * dotsPerMm), PrintImage());
}

bool BZKarte::Command7Click(QString* pdfPath) {
    if (dialogs_.MsgBox(QStringLiteral("Soll die aktuelle Karte auf dem Standarddrucker ausgegeben werden?"),
                        Msg::Question | Msg::OkCancel) == Msg::Cancel)
        return false;
    Printout job;
    job.jobName = QStringLiteral("Bezirke Karte");
    job.orientation = QPageLayout::Landscape;
    job.paint = [this](QPainter& p, QPrinter& printer) {
        DrawPrint(p, printer);
        return true;
    };
    job.open = openUrl;
    const PrintOutcome o = RunPrintout(dialogs_, m_, job, pdfPath);
    return o == PrintOutcome::Printed || o == PrintOutcome::IntoPdf || o == PrintOutcome::Waiting;
}

void BZKarte::Command8Click() {
    if (bringOthersToFront) bringOthersToFront();
}

void BZKarte::closeEvent(QCloseEvent* event) {
    SaveWindowPos(this, QStringLiteral("BZKarte"));
    timer1_.stop();
    SetCompanionOpen(m_, Companion::BZKarte, menuEntry_, false);
    event->accept();
}

} // namespace kolibrino
