// The view of the main window's log grid: whole-row selection, the hidden working
// columns, the red "Dupe" cell, and the right-button press that selects the row under
// the pointer and asks for the pop-up menu.
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

protected:
    void mousePressEvent(QMouseEvent* event) override;
    // A grid that changes its height keeps its last row in view.
    void resizeEvent(QResizeEvent* event) override;
};

} // namespace kolibrino
