#include "assist/db_log.h"

#include "core/settings.h"
#include "entry/entry_keys.h"
#include "entry/main_window.h"
#include "ui/window_support.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace kolibrino {
namespace {

QColor Bgr(int colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

QFont GridFont() {
    QFont f(QStringLiteral("Liberation Sans"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSize(10);
    f.setBold(true);
    return f;
}

} // namespace

// ---- The grid ----------------------------------------------------------------------------

int PartialGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : PartialGridRows(qsizetype(entries_.size()));
}

int PartialGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

const PartialEntry* PartialGridModel::At(int row, int column) const {
    if (row < 0 || column < 0 || column >= kColumns) return nullptr;
    const size_t i = size_t(row) * kColumns + size_t(column);
    return i < entries_.size() ? &entries_[i] : nullptr;
}

QString PartialGridModel::CellText(int row, int column) const {
    const PartialEntry* e = At(row, column);
    return e ? e->CellText() : QString();
}

int PartialGridModel::CellColour(int row, int column) const {
    const PartialEntry* e = At(row, column);
    if (!e) return -1;
    return e->worked ? gear_ : nichtGear_;
}

QVariant PartialGridModel::data(const QModelIndex& index, int role) const {
    const PartialEntry* e = At(index.row(), index.column());
    if (!e) return {};
    if (role == Qt::DisplayRole) return e->CellText();
    if (role == Qt::ForegroundRole) return Bgr(e->worked ? gear_ : nichtGear_);
    // The colour's meaning in words, for the screen reader.
    if (role == Qt::AccessibleDescriptionRole) return WorkedText(e->worked);
    if (role == Qt::AccessibleTextRole) return e->CellText() + QStringLiteral(", ") + WorkedText(e->worked);
    return {};
}

void PartialGridModel::SetEntries(std::vector<PartialEntry> entries) {
    if (entries.empty() && entries_.empty()) return;
    beginResetModel();
    entries_ = std::move(entries);
    endResetModel();
}

void PartialGridModel::SetColours(int gear, int nichtGear) {
    gear_ = gear;
    nichtGear_ = nichtGear;
    if (!entries_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
}

// ---- The window ----------------------------------------------------------------------------

QSize DBLog::DesignSize() {
    return QSize(700, 160);
}

DBLog::DBLog(HauptForm& main, Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Tool), main_(main), m_(m), dialogs_(dialogs), menuEntry_(menuEntry),
      rule_(m.Formats, m.MittagsGrenze) {
    setObjectName(QStringLiteral("DBLog"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Teilrufzeichen"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    view_ = new QTableView(this);
    view_->setObjectName(QStringLiteral("MSFlexGrid1"));
    view_->setAccessibleName(QStringLiteral("Teilrufzeichen"));
    view_->setModel(&grid_);
    view_->horizontalHeader()->hide(); // no fixed cells
    view_->verticalHeader()->hide();
    view_->setSelectionMode(QAbstractItemView::NoSelection);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    view_->setShowGrid(true);
    view_->setFont(GridFont());
    // Equal columns that hold the longest call the call field takes, two blanks and the district.
    view_->horizontalHeader()->setDefaultSectionSize(CellWidth({}));
    view_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->verticalHeader()->setDefaultSectionSize(QFontMetrics(view_->font()).height() + 4);
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(view_);
    connect(view_, &QTableView::doubleClicked, this,
            [this](const QModelIndex& i) { CellDoubleClick(i.row(), i.column()); });

    mnVersteckt_ = new QMenu(QStringLiteral("Farbe"), this);
    mnVersteckt_->setObjectName(QStringLiteral("MnVersteckt"));
    auto item = [this](const char* name, const QString& caption, void (DBLog::*click)()) {
        QAction* a = mnVersteckt_->addAction(caption);
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, click);
    };
    item("MnHintergrundfarbe", QStringLiteral("Hintergrundfarbe"), &DBLog::MnHintergrundfarbe);
    item("MnGearbeitetfarbe", QStringLiteral("Farbe gearbeitetes Call"), &DBLog::MnGearbeitetfarbe);
    item("MnNichtgearbeitetfarbe", QStringLiteral("Farbe nicht gearbeitetes Call"),
         &DBLog::MnNichtgearbeitetfarbe);
    connect(view_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& p) { mnVersteckt_->popup(view_->viewport()->mapToGlobal(p)); });

    timer1_.setObjectName(QStringLiteral("Timer1"));
    timer1_.setSingleShot(true);
    timer1_.setTimerType(Qt::PreciseTimer);
    timer1_.setInterval(1);
    connect(&timer1_, &QTimer::timeout, this, &DBLog::Timer1Tick);

    text2_ = main.findChild<QLineEdit*>(QStringLiteral("Text2"));
    text3_ = main.findChild<QLineEdit*>(QStringLiteral("Text3"));
    combo1_ = main.findChild<QComboBox*>(QStringLiteral("Combo1"));
    combo2_ = main.findChild<QComboBox*>(QStringLiteral("Combo2"));
    combo5_ = main.findChild<QComboBox*>(QStringLiteral("Combo5"));
}

DBLog::~DBLog() = default;

void DBLog::Load() {
    const CompanionDef& def = CompanionOf(Companion::DBLog);
    const QString section = QString::fromLatin1(kSectionFensterPos);
    resize(DesignSize());
    move(TwipsToPixels(def.defaultLeft), TwipsToPixels(def.defaultTop));
    if (!IniReadString({}, section, QStringLiteral("DBLogTop")).isEmpty() ||
        !IniReadString({}, section, QStringLiteral("DBLogLeft")).isEmpty())
        RestoreWindowPos(this, QStringLiteral("DBLog"));
    const int height = int(IniReadInt({}, section, QStringLiteral("DBLogHeight")));
    if (height <= ScreenHeightTwips() && TwipsToPixels(height) >= DesignSize().height())
        resize(width(), TwipsToPixels(height));
    colours_ = LoadPartialColours();
    ApplyColours();
    FitWidth();
    SetCompanionOpen(m_, Companion::DBLog, menuEntry_, true);
    timer1_.start();
}

int DBLog::CellWidth(const std::vector<PartialEntry>& entries) const {
    // A call of the full 13 characters the call field takes, two blanks and the
    // bracketed district; a wider entry widens every column alike.
    const QFontMetrics fm(view_->font());
    const int margin =
        2 * (view_->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view_) + 1) + 8;
    int text = fm.horizontalAdvance(QStringLiteral("HB0/OE9WWW/PM  (WW)"));
    for (const PartialEntry& e : entries)
        text = std::max(text, fm.horizontalAdvance(e.CellText()));
    return text + margin;
}

void DBLog::ApplyColours() {
    QPalette p = view_->palette();
    p.setColor(QPalette::Base, Bgr(colours_.hFarbe));
    p.setColor(QPalette::Window, Bgr(colours_.hFarbe));
    view_->setPalette(p);
    grid_.SetColours(colours_.gearFarbe, colours_.nichtGearFarbe);
}

void DBLog::FitWidth() {
    const int grid = PartialGridModel::kColumns * view_->horizontalHeader()->defaultSectionSize() +
                     view_->verticalScrollBar()->sizeHint().width() + 2 * view_->frameWidth();
    if (width() != grid) setFixedWidth(grid);
}

void DBLog::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (isMinimized()) return;
    // The grid fills the window's inner height through the layout; the width follows the grid.
    FitWidth();
}

void DBLog::Timer1Tick() {
    timer1_.stop();
    timer1_.setInterval(1);
    grid_.Clear();
    if (!text3_ || !combo1_ || !combo2_ || !text2_) return;
    setWindowTitle(PartialCaption(colours_, combo1_->currentText(), combo2_->currentText()));
    // The search itself drops "OE" and stops for "OE" alone or a single character.
    const Period period = rule_.OfText(text2_->text());
    std::vector<PartialEntry> list =
        PartialCallSearch(m_.CallIndex, m_.LogRecords, text3_->text(), BandOfText(combo1_->currentText()),
                          combo2_->currentText(), period, rule_);
    if (list.empty()) return;
    const int width = CellWidth(list);
    grid_.SetEntries(std::move(list));
    if (width != view_->horizontalHeader()->defaultSectionSize()) {
        view_->horizontalHeader()->setDefaultSectionSize(width);
        FitWidth();
    }
    view_->clearSelection();
    view_->setCurrentIndex(QModelIndex());
}

void DBLog::CellDoubleClick(int row, int column) {
    const QString text = grid_.CellText(row, column);
    if (text.size() < 4) return;
    if (const qsizetype blank = text.indexOf(QLatin1Char(' ')); blank >= 0 && text3_)
        text3_->setText(text.left(blank));
    if (const qsizetype open = text.indexOf(QLatin1Char('(')); open >= 0 && combo5_)
        combo5_->setEditText(text.mid(open + 1, 2));
    if (text3_) {
        main_.activateWindow();
        text3_->setFocus(Qt::OtherFocusReason);
    }
}

void DBLog::PickColourName(bool worked) {
    const int colour = dialogs_.SelectColor(worked ? colours_.gearFarbe : colours_.nichtGearFarbe, true);
    if (colour < 0) return;
    const std::optional<QString> answer =
        dialogs_.InputBox(ColourNamePrompt(worked), ColourNameTitle(worked),
                          worked ? colours_.gearFarbeName : colours_.nichtGearFarbeName);
    const QString name = ColourNameOfAnswer(answer.value_or(QString()));
    if (name.isEmpty()) return;
    if (worked) {
        colours_.gearFarbe = colour;
        colours_.gearFarbeName = name;
        StoreGearFarbe(colour, name);
    } else {
        colours_.nichtGearFarbe = colour;
        colours_.nichtGearFarbeName = name;
        StoreNichtGearFarbe(colour, name);
    }
    ApplyColours();
    timer1_.start();
}

void DBLog::MnGearbeitetfarbe() {
    PickColourName(true);
}

void DBLog::MnNichtgearbeitetfarbe() {
    PickColourName(false);
}

void DBLog::MnHintergrundfarbe() {
    const int colour = dialogs_.SelectColor(colours_.hFarbe, true);
    if (colour < 0) return;
    colours_.hFarbe = colour;
    ApplyColours();
    StoreHFarbe(colour);
}

void DBLog::closeEvent(QCloseEvent* event) {
    if (!unloaded_) {
        unloaded_ = true;
        SaveWindowPos(this, QStringLiteral("DBLog"));
        IniWrite({}, QString::fromLatin1(kSectionFensterPos), QStringLiteral("DBLogHeight"),
                 PixelsToTwips(height()));
        timer1_.stop();
        SetCompanionOpen(m_, Companion::DBLog, menuEntry_, false);
    }
    event->accept();
}

} // namespace kolibrino
