#include "assist/log_tracker.h"

#include "core/settings.h"
#include "entry/log_grid_view.h"
#include "entry/main_window.h"
#include "ui/window_support.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>

namespace kolibrino {

LogTracker::LogTracker(HauptForm& main, Model& m, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Tool), main_(main), m_(m), menuEntry_(menuEntry),
      rule_(m.Formats, m.MittagsGrenze) {
    setObjectName(QStringLiteral("LogTracker"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    label1_ = new QLabel(QStringLiteral("Vormittag"), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label1_->setAlignment(Qt::AlignCenter);
    label2_ = new QLabel(QStringLiteral("Nachmittag"), this);
    label2_->setObjectName(QStringLiteral("Label2"));
    label2_->setAlignment(Qt::AlignCenter);

    grid_ = new QTableWidget(3, 4, this);
    grid_->setObjectName(QStringLiteral("MSFlexGrid1"));
    grid_->setHorizontalHeaderLabels(
        {QStringLiteral("SSB"), QStringLiteral("CW"), QStringLiteral("SSB"), QStringLiteral("CW")});
    grid_->setVerticalHeaderLabels({QStringLiteral("40m"), QStringLiteral("80m"), QStringLiteral("30m")});
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionMode(QAbstractItemView::NoSelection);
    grid_->setFocusPolicy(Qt::TabFocus); // the keyboard reads the cells
    grid_->setAccessibleName(QStringLiteral("Rufzeichen Check"));
    grid_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid_->horizontalHeader()->setDefaultSectionSize(48);
    grid_->verticalHeader()->setDefaultSectionSize(24);
    QFont tick = grid_->font();
    tick.setPointSize(tick.pointSize() + 3);
    tick.setBold(true);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c) {
            auto* item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignCenter);
            item->setFont(tick);
            grid_->setItem(r, c, item);
        }
    const int w = grid_->verticalHeader()->sizeHint().width() + 4 * 48 + 2 * grid_->frameWidth();
    const int h = grid_->horizontalHeader()->sizeHint().height() + 3 * 24 + 2 * grid_->frameWidth();
    grid_->setFixedSize(w, h);
    // The period labels stand over their two columns.
    auto* heads = new QHBoxLayout;
    heads->setSpacing(0);
    heads->addSpacing(grid_->verticalHeader()->sizeHint().width() + grid_->frameWidth());
    label1_->setFixedWidth(2 * 48);
    label2_->setFixedWidth(2 * 48);
    heads->addWidget(label1_);
    heads->addWidget(label2_);
    heads->addStretch();
    layout->addLayout(heads, 0, 0);
    layout->addWidget(grid_, 1, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    timer1_.setObjectName(QStringLiteral("Timer1"));
    timer1_.setSingleShot(true);
    timer1_.setTimerType(Qt::PreciseTimer);
    timer1_.setInterval(1);
    connect(&timer1_, &QTimer::timeout, this, &LogTracker::Timer1Tick);
}

LogTracker::~LogTracker() = default;

void LogTracker::Load() {
    setWindowTitle(QStringLiteral("Check"));
    const CompanionDef& def = CompanionOf(Companion::LogTracker);
    move(TwipsToPixels(def.defaultLeft), TwipsToPixels(def.defaultTop));
    const QString section = QString::fromLatin1(kSectionFensterPos);
    if (!IniReadString({}, section, QStringLiteral("LogTrackerTop")).isEmpty() ||
        !IniReadString({}, section, QStringLiteral("LogTrackerLeft")).isEmpty())
        RestoreWindowPos(this, QStringLiteral("LogTracker"));
    SetCompanionOpen(m_, Companion::LogTracker, menuEntry_, true);
    timer1_.start();
}

bool LogTracker::Ticked(int row, int column) const {
    const QTableWidgetItem* item = grid_->item(row, column);
    return item && !item->text().isEmpty();
}

void LogTracker::Timer1Tick() {
    timer1_.stop();
    timer1_.setInterval(1);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c)
            grid_->item(r, c)->setText(QString());
    SpeakableCells();
    const LogGridView* view = main_.GridView();
    if (!view) return;
    const int row = view->currentIndex().isValid() ? view->currentIndex().row() : -1;
    if (row < 0 || row >= main_.Grid().DataRows()) return;
    const QString call = main_.Grid().Text(row, kGridColCall);
    setWindowTitle(TrackerCaption(call));
    const TrackerTicks ticks = CallCheckTicks(m_.CallIndex, m_.LogRecords, call, rule_);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c)
            if (ticks[size_t(r)][size_t(c)]) grid_->item(r, c)->setText(QString(kTick));
    SpeakableCells();
}

void LogTracker::SpeakableCells() {
    // The tick in words, with the period the label above the column names.
    static const char* const kBands[3] = {"40m", "80m", "30m"};
    static const char* const kModes[4] = {"SSB", "CW", "SSB", "CW"};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c) {
            QTableWidgetItem* it = grid_->item(r, c);
            const QString where = QStringLiteral("%1 %2 %3")
                                      .arg(QLatin1String(kBands[r]), QLatin1String(kModes[c]),
                                           c < 2 ? label1_->text() : label2_->text());
            const QString state = it->text().isEmpty() ? QStringLiteral("nicht gearbeitet")
                                                       : QStringLiteral("gearbeitet");
            it->setData(Qt::AccessibleTextRole, where + QStringLiteral(": ") + state);
            it->setData(Qt::AccessibleDescriptionRole, state);
        }
}

void LogTracker::closeEvent(QCloseEvent* event) {
    if (!unloaded_) {
        unloaded_ = true;
        SaveWindowPos(this, QStringLiteral("LogTracker"));
        timer1_.stop();
        SetCompanionOpen(m_, Companion::LogTracker, menuEntry_, false);
    }
    event->accept();
}

} // namespace kolibrino
