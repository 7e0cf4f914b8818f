// GridKarte ("Multiplikatoren-Tabelle"): every district, federal state and
// state-station prefix as a cell whose colour says on which bands it counts.
//
// Who calls it: InstallScoring() opens and closes it from MnBZGrid; the main window
// calls GridCellColor after each logged contact (hook gridKarteCellColor); deletions,
// edits and colour changes arm Timer1 (signal gridKarteRefreshRequested). GUI thread
// only. Never fails: unknown codes, states above 9 and a full prefix row do nothing.
#pragma once

#include "core/dialogs.h"
#include "core/log_model.h"

#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>

class QAction;
class QPushButton;
class QTableWidget;

namespace kolibrino {

class GridKarte : public QWidget {
    Q_OBJECT
public:
    GridKarte(Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent = nullptr);

    void Load();
    // Colours the cells of one district, one federal state (1..9, 0 for none) and one
    // state-station prefix (empty for none) by their present counts.
    void GridCellColor(const QString& code, int state, const QString& prefix);
    // The full repaint, armed by anyone who may have taken a colour away.
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();
    // The colour buttons Command1..Command3 (index 0..2): 40m, 80m, 40/80m.
    QPushButton* Button(int i) const { return buttons_[size_t(i)]; }
    int ButtonColour(int i) const;
    void SetButtonColour(int i, int bgr);
    void CommandClick(int i);
    // Tool tip of a cell of MSFlexGrid1: name, state and total count; empty for an
    // empty cell.
    QString ToolTipAt(int row, int column) const;
    // Background colour of a cell as 0x00BBGGRR.
    int CellColour(int grid, int row, int column) const;

    // After a colour was chosen here: the map and the result window follow.
    std::function<void(int button, int bgr)> colourChanged;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ColourCell(QTableWidget* grid, int row, int column, int c40, int c80);

    Model& m_;
    Dialogs& dialogs_;
    QAction* menuEntry_;
    QTimer timer1_;
    QTableWidget* grid1_ = nullptr;
    QTableWidget* grid2_ = nullptr;
    QTableWidget* grid3_ = nullptr;
    std::array<QPushButton*, 3> buttons_{};
};

} // namespace kolibrino
