// The view of the main window's log grid: whole-row selection, the hidden working
// columns, the red "Dupe" cell, and the right-button press that selects the row under
// the pointer and asks for the pop-up menu. From the keyboard: the Menu key and
// Shift+F10 ask for the pop-up at the selected row, Enter and F2 for editing it, Entf
// for deleting it.
//
// GUI thread only. Never fails; a press outside the rows does nothing.
#pragma once

#include <QTableView>

namespace kolibrino {

class LogGridView : public QTableView {
    Q_OBJECT
public:
    explicit LogGridView(QWidget* parent = nullptr);

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
    // The context-menu key as the window system reports it.
    void contextMenuEvent(QContextMenuEvent* event) override;
    // A grid that changes its height keeps its last row in view.
    void resizeEvent(QResizeEvent* event) override;

private:
    // The selected data row, -1 when none.
    int SelectedRow() const;
    void PopupAtSelectedRow();
};

} // namespace kolibrino
