#include "scoring/grid_karte.h"

#include "core/log_file.h"
#include "core/settings.h"
#include "scoring/colour_buttons.h"
#include "scoring/map_paint.h"
#include "ui/back_colour.h"
#include "ui/window_support.h"

#include <QAction>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPushButton>
#include <QTableWidget>
#include <QToolTip>
#include <QVBoxLayout>

namespace kolibrino {

namespace {

constexpr int kGridBack = 0xFFFFFF;

// What a cell's colour says, for the screen reader (the colour rule in words).
QString WorkedOn(int c40, int c80) {
    if (c40 > 0 && c80 > 0) return QStringLiteral("gearbeitet auf 40m und 80m");
    if (c40 > 0) return QStringLiteral("gearbeitet auf 40m");
    if (c80 > 0) return QStringLiteral("gearbeitet auf 80m");
    return QStringLiteral("nicht gearbeitet");
}

void SetMeaning(QTableWidgetItem* it, const QString& meaning) {
    it->setData(Qt::AccessibleDescriptionRole, meaning);
    it->setData(Qt::AccessibleTextRole, it->text().isEmpty() ? QString() : it->text() + QStringLiteral(", ") + meaning);
}

QTableWidget* MakeGrid(const char* name, const QString& accessibleName, int rows, int columns) {
    auto* g = new QTableWidget(rows, columns);
    g->setObjectName(QString::fromLatin1(name));
    g->setAccessibleName(accessibleName);
    g->horizontalHeader()->hide();
    g->verticalHeader()->hide();
    g->setEditTriggers(QAbstractItemView::NoEditTriggers);
    g->setSelectionMode(QAbstractItemView::NoSelection);
    g->setFocusPolicy(Qt::TabFocus); // the keyboard reads the cells
    g->horizontalHeader()->setDefaultSectionSize(42);
    g->verticalHeader()->setDefaultSectionSize(20);
    g->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    g->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    g->setFixedSize(columns * 42 + 2, rows * 20 + 2);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c) {
            auto* it = new QTableWidgetItem;
            it->setTextAlignment(Qt::AlignCenter);
            it->setBackground(QColor(BgrToRgb(kGridBack)));
            it->setForeground(Qt::black);
            g->setItem(r, c, it);
        }
    return g;
}

} // namespace

GridKarte::GridKarte(Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Window), m_(m), dialogs_(dialogs), menuEntry_(menuEntry) {
    setObjectName(QStringLiteral("GridKarte"));
    setWindowTitle(QStringLiteral("Multiplikatoren-Tabelle"));
    setAttribute(Qt::WA_DeleteOnClose);
    timer1_.setSingleShot(true);
    timer1_.setInterval(0);
    connect(&timer1_, &QTimer::timeout, this, &GridKarte::Timer1Tick);

    const int districts = int(m_.BezirkRecords.size()) - 1;
    grid1_ = MakeGrid("MSFlexGrid1", QStringLiteral("Bezirke"), std::max(1, (std::max(0, districts) + 9) / 10), 10);
    grid2_ = MakeGrid("MSFlexGrid2", QStringLiteral("Bundesländer"), 1, 9);
    grid3_ = MakeGrid("MSFlexGrid3", QStringLiteral("Gearbeitet Staatsfunkstellenprefix"), 1, 9);
    grid1_->viewport()->installEventFilter(this);
    grid1_->viewport()->setMouseTracking(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grid1_);
    layout->addWidget(grid2_);
    auto* frame = new QGroupBox(QStringLiteral("Gearbeitet Staatsfunkstellenprefix"));
    (new QVBoxLayout(frame))->addWidget(grid3_);
    layout->addWidget(frame);
    auto* row = new QHBoxLayout;
    AddColourButtons(buttons_, row, this, [this](int i) { CommandClick(i); });
    layout->addLayout(row);

    for (int n = 1; n <= districts; ++n) {
        QTableWidgetItem* it = grid1_->item((n - 1) / 10, (n - 1) % 10);
        it->setText(m_.BezirkRecords[size_t(n)].Code);
        SetMeaning(it, WorkedOn(0, 0));
    }
    for (int k = 1; k <= 9; ++k) {
        grid2_->item(0, k - 1)->setText(QStringLiteral("OE%1").arg(k));
        SetMeaning(grid2_->item(0, k - 1), WorkedOn(0, 0));
    }
}

void GridKarte::Load() {
    for (int i = 0; i < 3; ++i) {
        const QString v = IniReadString({}, QStringLiteral("Farben"), QString::fromLatin1(kFarbenKeys[i]));
        if (!v.isEmpty() && ProfileInt(v) != 0) SetButtonColour(i, ProfileInt(v));
    }
    RestoreWindowPos(this, QStringLiteral("BZGrid"));
    timer1_.start();
    SetCompanionOpen(m_, Companion::GridKarte, menuEntry_, true);
}

int GridKarte::ButtonColour(int i) const {
    return int(BackColourOf(buttons_[size_t(i)]));
}

void GridKarte::SetButtonColour(int i, int bgr) {
    SetBackColour(buttons_[size_t(i)], quint32(bgr));
}

void GridKarte::ColourCell(QTableWidget* grid, int row, int column, int c40, int c80) {
    QTableWidgetItem* it = grid->item(row, column);
    if (!it) return;
    int colour = -1;
    if (c40 > 0 && c80 == 0)
        colour = ButtonColour(0);
    else if (c40 == 0 && c80 > 0)
        colour = ButtonColour(1);
    else if (c40 > 0 && c80 > 0)
        colour = ButtonColour(2);
    if (colour < 0) return;
    it->setBackground(QColor(BgrToRgb(colour)));
    SetMeaning(it, WorkedOn(c40, c80));
}

void GridKarte::GridCellColor(const QString& code, int state, const QString& prefix) {
    const int n = BezirkNumber(m_, code);
    if (n > 0 && size_t(n) < m_.BezirkRecords.size()) {
        const BezirkRecord& b = m_.BezirkRecords[size_t(n)];
        ColourCell(grid1_, (n - 1) / 10, (n - 1) % 10, b.Anz40, b.Anz80);
    }
    if (state > 0 && state <= 9) {
        const auto& g = m_.GruppeBandCount[size_t(state - 1)];
        ColourCell(grid2_, 0, state - 1, g[0], g[1]);
    }
    if (!prefix.isEmpty()) {
        for (int c = 0; c < grid3_->columnCount(); ++c) {
            QTableWidgetItem* it = grid3_->item(0, c);
            if (it->text() == prefix) break;
            if (it->text().isEmpty()) {
                it->setText(prefix);
                it->setBackground(QColor(BgrToRgb(ButtonColour(1))));
                SetMeaning(it, QStringLiteral("gearbeitet"));
                break;
            }
        }
    }
}

void GridKarte::Timer1Tick() {
    const QColor back(BgrToRgb(kGridBack));
    for (size_t n = 1; n < m_.BezirkRecords.size(); ++n) {
        const BezirkRecord& b = m_.BezirkRecords[n];
        if (QTableWidgetItem* it = grid1_->item(int(n - 1) / 10, int(n - 1) % 10)) {
            it->setBackground(back);
            SetMeaning(it, WorkedOn(0, 0));
        }
        if (b.Anz40 > 0 || b.Anz80 > 0) GridCellColor(b.Code, 1, QString());
    }
    for (int c = 0; c < 9; ++c) {
        grid2_->item(0, c)->setBackground(back);
        SetMeaning(grid2_->item(0, c), WorkedOn(0, 0));
        const auto& g = m_.GruppeBandCount[size_t(c)];
        ColourCell(grid2_, 0, c, g[0], g[1]);
    }
    for (int c = 0; c < 9; ++c) {
        grid3_->item(0, c)->setBackground(back);
        grid3_->item(0, c)->setText(QString());
        SetMeaning(grid3_->item(0, c), QString());
    }
    for (const StaatsfunkRecord& s : m_.StaatsfunkRecords)
        GridCellColor(QString(), 0, s.Prefix);
    timer1_.stop();
}

void GridKarte::CommandClick(int i) {
    const std::optional<int> chosen = AskBandColour(dialogs_, ButtonColour(i));
    if (!chosen) return;
    const int colour = *chosen;
    SetButtonColour(i, colour);
    IniWrite({}, QStringLiteral("Farben"), QString::fromLatin1(kFarbenKeys[i]), ButtonColour(i));
    if (colourChanged) colourChanged(i, colour);
    timer1_.start();
}

QString GridKarte::ToolTipAt(int row, int column) const {
    const QTableWidgetItem* it = grid1_->item(row, column);
    if (!it || it->text().isEmpty()) return {};
    const int n = row * 10 + column + 1;
    if (size_t(n) >= m_.BezirkRecords.size()) return {};
    const BezirkRecord& b = m_.BezirkRecords[size_t(n)];
    return QStringLiteral("%1  OE%2  (%3)").arg(b.Name).arg(b.Gruppe).arg(b.AnzGesamt);
}

int GridKarte::CellColour(int grid, int row, int column) const {
    const QTableWidget* g = grid == 1 ? grid1_ : grid == 2 ? grid2_ : grid3_;
    const QTableWidgetItem* it = g->item(row, column);
    return it ? RgbToBgr(it->background().color().rgb()) : -1;
}

bool GridKarte::eventFilter(QObject* watched, QEvent* event) {
    if (watched == grid1_->viewport() && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QModelIndex index = grid1_->indexAt(help->pos());
        const QString tip = index.isValid() ? ToolTipAt(index.row(), index.column()) : QString();
        if (tip.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), tip, grid1_->viewport());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void GridKarte::closeEvent(QCloseEvent* event) {
    SaveWindowPos(this, QStringLiteral("BZGrid"));
    timer1_.stop();
    SetCompanionOpen(m_, Companion::GridKarte, menuEntry_, false);
    event->accept();
}

} // namespace kolibrino
