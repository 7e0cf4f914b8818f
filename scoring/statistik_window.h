// Statistik ("Ergebnis"): the running result of the open log. Every figure comes from
// ComputeScore() (scoring/score.h); the window only shows it, colours its tables and
// writes the results text file.
//
// Who calls it: InstallScoring() opens and closes it from MnStatistik; anyone who
// changes the log while it is open arms Timer1 (the main window through its signal
// statistikRefreshRequested); the map and the multiplier table call FarbenLaden after a
// colour change. GUI thread only. The recomputation never fails; a file that cannot be
// written shows the "FEHLER" box (Retry, Cancel) and nothing else changes.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "scoring/score.h"

#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <array>
#include <functional>

class QAction;
class QLabel;
class QPushButton;
class QTableWidget;

namespace kolibrino {

class Statistik : public QWidget {
    Q_OBJECT
public:
    Statistik(Model& m, Dialogs& dialogs, const TimeSource& clock, QAction* menuEntry,
              QWidget* parent = nullptr);

    // Headers, position, colours, then the open flag; arms Timer1 for the first fill.
    void Load();
    // The three colours (40 m, 80 m, 30 m) from section "Farben"; empty gives white.
    void FarbenLaden();
    // The deferred recomputation: a zero-interval single shot, so that several changes
    // before it runs make one recomputation.
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();
    // Click of Command4: save the result as a text file.
    void Command4Click();

    // The figures last shown.
    const ScoreResult& Shown() const { return shown_; }
    QString LabelText(const QString& objectName) const;
    // Tool tip of MSFlexGrid5 for a grid row (row 0 is the header).
    static QString Grid5ToolTip(int row);
    std::array<int, 3> Colours() const { return colours_; }

    // Opens a file in the desktop's editor (QDesktopServices by default).
    std::function<bool(const QUrl&)> openUrl;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void FillGrid(QTableWidget* grid, const std::vector<ScoreGridRow>& rows,
                  const std::vector<int>& colourOfColumn);

    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    QAction* menuEntry_;
    QTimer timer1_;
    ScoreResult shown_;
    std::array<int, 3> colours_{0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
    std::array<QTableWidget*, 5> grids_{};
    QPushButton* command4_ = nullptr;
};

} // namespace kolibrino
