// LogTracker, the call check window: for the contact selected in the main window's log
// grid, a tick in every band, mode and period that station has been worked in.
//
// Made and shown by InstallAssist (assist/install_assist.h) through the main window's
// companion hook; it reads the main window's log grid (its current row and the call
// column). GUI thread only. Nothing fails: a row that is no contact leaves the matrix
// empty.
#pragma once

#include "assist/partial_call.h"
#include "core/log_model.h"

#include <QTimer>
#include <QWidget>

class QAction;
class QLabel;
class QTableWidget;

namespace kolibrino {

class HauptForm;

// What a tick cell shows. The classic symbol font drew its tick for the letter "a";
// here the tick is the character itself, so that it shows with any font.
inline constexpr QChar kTick = QChar(0x2713);

class LogTracker : public QWidget {
    Q_OBJECT
public:
    LogTracker(HauptForm& main, Model& m, QAction* menuEntry, QWidget* parent = nullptr);
    ~LogTracker() override;

    // Caption, headings, position, the open flag; Timer1 starts enabled.
    void Load();
    void Timer1Tick();
    QTimer& Timer1() { return timer1_; }

    QTableWidget* Grid() const { return grid_; }
    // The inner cell of row 0..2 (40, 80, 30 m) and column 0..3; true when it holds a tick.
    bool Ticked(int row, int column) const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Each cell's tick in words for the screen reader.
    void SpeakableCells();
    HauptForm& main_;
    Model& m_;
    QAction* menuEntry_;
    PeriodRule rule_;
    QTableWidget* grid_ = nullptr;
    QLabel* label1_ = nullptr;
    QLabel* label2_ = nullptr;
    QTimer timer1_;
    bool unloaded_ = false;
};

} // namespace kolibrino
