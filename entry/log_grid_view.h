// The view of the main window's log grid: whole-row selection, the hidden working
// columns, the red "Dupe" cell, and the right-button press that selects the row under
// the pointer and asks for the pop-up menu. From the keyboard: the Menu key and
// Shift+F10 ask for the pop-up at the selected row, Enter and F2 for editing it, Entf
// for deleting it.
//
// GUI thread only. Never fails; a press outside the rows does nothing.
#pragma once

#include <QTableView>

class QSortFilterProxyModel;

namespace kolibrino {

// The grid's model as the view shows it: the visible columns only. The working
// columns stay in the model for the program, but out of the view and so out of the
// screen reader's table.
class LogGridView : public QTableView {
    Q_OBJECT
public:
    explicit LogGridView(QWidget* parent = nullptr);

    // The view stands over the model given (the grid model, with its working columns);
    // model() is what the view shows. Indexes of either model are taken.
    void setModel(QAbstractItemModel* model) override;
    QAbstractItemModel* sourceModel() const;
    void setCurrentIndex(const QModelIndex& index);
    QRect visualRect(const QModelIndex& index) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    // The working columns count as hidden columns of the grid.
    bool isColumnHidden(int column) const;

    // Widths (twips, at least wide enough for the heading and a typical cell),
    // hidden columns 12 to 16, cell (0,0) current when there are rows.
    void SetGrid1();
    // Moves the grid so that its last row is shown.
    void KeepLastRowInView();
    // Data rows the grid shows at its present height.
    int VisibleRows() const;

signals:
    // Right button pressed on a data row (0-based); the row is selected already.
    void popupRequested(int row, const QPoint& globalPos);
    // Enter or F2, and Entf, on the selected data row (0-based).
    void editRequested(int row);
    void deleteRequested(int row);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    // The menu key (or Shift+F10) on a row asks for the pop-up menu as the right button does.
    void contextMenuEvent(QContextMenuEvent* event) override;
    // A grid that changes its height keeps its last row in view.
    void resizeEvent(QResizeEvent* event) override;
    // A new current row while the operator types elsewhere tells the screen reader
    // nothing: the focus stays with the field that has it.
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    // The selected data row, -1 when none.
    int SelectedRow() const;
    void PopupAtSelectedRow();
    QModelIndex Shown(const QModelIndex& index) const;
    QSortFilterProxyModel* shown_;
};

} // namespace kolibrino
