// ZeitAendern ("Log nachträglich ändern"): the modal window of the bulk change. It
// works on a private copy of the log, shows it in its own grid, and reaches the log
// only through "S&peichern", which rewrites the file and reads it back.
//
// Made by the menu entry MnLogExportierenDatumZeit on the GUI thread. Every check and
// change is in bulk_change.h; the window reads its controls and shows the outcome.
// A file that cannot be read back after the save closes the main window (the program
// ends). Nothing throws.
#pragma once

#include "core/clock.h"
#include "core/dialogs.h"
#include "core/log_model.h"
#include "entry/log_grid_model.h"

#include <QDialog>
#include <array>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QTableView;

namespace kolibrino {
class HauptForm;
}

namespace kolibrino::corrections {

class ZeitAendern : public QDialog {
    Q_OBJECT
public:
    ZeitAendern(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock);

    int ShowModal();
    // The controls' events.
    void Option1Click(int index);
    void Check1Click();
    void Command2Click(); // "&Übernehmen"
    void Command1Click(); // "&Abbrechen"
    void Command6Click(); // "S&peichern"
    void Command7Click(); // show or hide the grid
    void SelectEntry(bool start);
    void EndSelection();
    void GridClick(int row);

    const std::vector<QsoRecord>& WorkingCopy() const { return copy_; }
    bool ChangesMade() const { return changesMade_; }
    bool GridShown() const { return gridShown_; }
    LogGridModel& Grid() { return grid_; }

protected:
    void reject() override;

private:
    void Build();
    void FillGrid();
    void ShowGrid(bool on);
    void GrowForGrid();
    void SetControlsEnabled(bool on);
    int Kind() const;

    HauptForm& main_;
    Model& m_;
    Dialogs& dialogs_;
    const TimeSource& clock_;
    std::vector<QsoRecord> copy_;
    bool changesMade_ = false;
    enum class Selecting { None, Start, End } selecting_ = Selecting::None;
    bool gridShown_ = false;
    bool closing_ = false;
    LogGridModel grid_;

    std::array<QRadioButton*, 6> option1_{};
    QLabel* label1_ = nullptr;
    QLabel* label5_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QLabel* label2_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QWidget* picture1_ = nullptr;
    QPushButton* command3_ = nullptr;
    QPushButton* command4_ = nullptr;
    QLabel* label3_ = nullptr;
    QLabel* label4_ = nullptr;
    QPushButton* command2_ = nullptr;
    QPushButton* command1_ = nullptr;
    QPushButton* command6_ = nullptr;
    QPushButton* command7_ = nullptr;
    QTableView* grid1_ = nullptr;
    QWidget* picture2_ = nullptr;
    QPushButton* command5_ = nullptr;
    QWidget* controls_ = nullptr;
};

// The arrows of the toggle button, by their characters in the symbol font: "4" shows
// the grid, "3" hides it. The button shows the arrow drawn; its property "marlett"
// holds the character.
inline constexpr QChar ArrowShow = QLatin1Char('4');
inline constexpr QChar ArrowHide = QLatin1Char('3');
void SetArrow(QPushButton* button, QChar marlett);

// The menu entry's flow: the window, modal.
void MnLogExportierenDatumZeit(HauptForm& main, Model& m, Dialogs& dialogs, const TimeSource& clock);

} // namespace kolibrino::corrections
