#include "entry/log_grid_view.h"

#include "entry/log_grid_model.h"
#include "ui/window_support.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSortFilterProxyModel>

namespace kolibrino {
namespace {

// Typical widest contents of the visible columns, so that no cell is cut off when the
// grid's font is larger than the design font.
const char* const kSampleText[kGridFirstHidden] = {"00.00.0000", "00:00", "80m", "Mode", "OE9XYZ/P", "RSTs",
                                                   "RSTe",       "BZ",    "QSL", "",     "OE0ABC",   "Dupe"};

// The visible columns of the grid model.
class VisibleColumns : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool filterAcceptsColumn(int column, const QModelIndex&) const override { return column < kGridFirstHidden; }
};

} // namespace

LogGridView::LogGridView(QWidget* parent) : QTableView(parent), shown_(new VisibleColumns(this)) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setSortingEnabled(false);
    verticalHeader()->setVisible(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setSectionsClickable(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

void LogGridView::setModel(QAbstractItemModel* model) {
    shown_->setSourceModel(model);
    QTableView::setModel(model ? shown_ : nullptr);
}

QAbstractItemModel* LogGridView::sourceModel() const {
    return shown_->sourceModel();
}

QModelIndex LogGridView::Shown(const QModelIndex& index) const {
    if (index.isValid() && index.model() == shown_->sourceModel()) return shown_->mapFromSource(index);
    return index;
}

void LogGridView::setCurrentIndex(const QModelIndex& index) {
    QTableView::setCurrentIndex(Shown(index));
}

QRect LogGridView::visualRect(const QModelIndex& index) const {
    return QTableView::visualRect(Shown(index));
}

void LogGridView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    QTableView::scrollTo(Shown(index), hint);
}

bool LogGridView::isColumnHidden(int column) const {
    return column >= kGridFirstHidden || QTableView::isColumnHidden(column);
}

void LogGridView::SetGrid1() {
    const QFontMetrics fm(font());
    const QFontMetrics hm(horizontalHeader()->font());
    for (int c = 0; c < kGridFirstHidden; ++c) {
        setColumnHidden(c, false);
        const int design = TwipsToPixels(LogGridModel::WidthTwips(c));
        const int heading = hm.horizontalAdvance(LogGridModel::Heading(c)) + 16;
        const int sample = fm.horizontalAdvance(QString::fromLatin1(kSampleText[c])) + 12;
        setColumnWidth(c, std::max({design, heading, sample}));
    }
    // The note takes what width is left over.
    horizontalHeader()->setSectionResizeMode(9, QHeaderView::Stretch);
    // The heading cell is the current one: no contact stands highlighted.
    if (selectionModel()) {
        selectionModel()->clearSelection();
        selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    }
}

int LogGridView::VisibleRows() const {
    const int rowHeight = verticalHeader()->defaultSectionSize();
    return rowHeight > 0 ? viewport()->height() / rowHeight : 0;
}

void LogGridView::KeepLastRowInView() {
    if (!model() || model()->rowCount() == 0) return;
    scrollToBottom();
}

void LogGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    KeepLastRowInView();
}

void LogGridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    if (hasFocus())
        QTableView::currentChanged(current, previous);
    else
        QAbstractItemView::currentChanged(current, previous); // without the focus event of the cell
}

void LogGridView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::RightButton) {
        QTableView::mousePressEvent(event);
        return;
    }
    if (!model() || model()->rowCount() == 0) return;
    const int row = rowAt(event->position().toPoint().y());
    if (row < 0) return;
    setFocus(Qt::MouseFocusReason);
    setCurrentIndex(model()->index(row, 0));
    selectRow(row);
    emit popupRequested(row, event->globalPosition().toPoint());
}

int LogGridView::SelectedRow() const {
    if (!model() || model()->rowCount() == 0) return -1;
    const int row = currentIndex().row();
    return row >= 0 && row < model()->rowCount() ? row : -1;
}

void LogGridView::PopupAtSelectedRow() {
    const int row = SelectedRow();
    if (row < 0) return;
    selectRow(row);
    scrollTo(model()->index(row, 0));
    const QRect cell = visualRect(model()->index(row, 4));
    emit popupRequested(row, viewport()->mapToGlobal(cell.isValid() ? cell.bottomLeft() : QPoint(0, 0)));
}

void LogGridView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if (key == Qt::Key_Menu || (key == Qt::Key_F10 && mods == Qt::ShiftModifier)) {
        PopupAtSelectedRow();
        event->accept();
        return;
    }
    if (mods == Qt::NoModifier && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2)) {
        if (const int row = SelectedRow(); row >= 0) emit editRequested(row);
        event->accept();
        return;
    }
    if (mods == Qt::NoModifier && key == Qt::Key_Delete) {
        if (const int row = SelectedRow(); row >= 0) emit deleteRequested(row);
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void LogGridView::contextMenuEvent(QContextMenuEvent* event) {
    // The right button is handled on its press; the keyboard's menu key comes here.
    if (event->reason() == QContextMenuEvent::Keyboard) PopupAtSelectedRow();
    event->accept();
}

} // namespace kolibrino
