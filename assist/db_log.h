// DBLog, the partial-call window ("Teilrufzeichen"): while the operator types a call in
// the main window, every call of the log that contains the typed letters, with its
// district, in the worked or the not-worked colour. A double click takes call and
// district into the main window.
//
// Made and shown by InstallAssist (assist/install_assist.h) through the main window's
// companion hook; it reads the main window's entry fields by their object names
// (Text2, Text3, Combo1, Combo2, Combo5). GUI thread only. Nothing fails: colour and
// name boxes go through the Dialogs given, and a cancelled box changes nothing.
#pragma once

#include "assist/partial_call.h"
#include "core/dialogs.h"
#include "core/log_model.h"

#include <QAbstractTableModel>
#include <QTimer>
#include <QWidget>
#include <vector>

class QAction;
class QComboBox;
class QLineEdit;
class QMenu;
class QTableView;

namespace kolibrino {

class HauptForm;

// The five-column grid of the window: entries row by row, five a row.
class PartialGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kColumns = 5;
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    void SetEntries(std::vector<PartialEntry> entries);
    void Clear() { SetEntries({}); }
    void SetColours(int gear, int nichtGear);
    const std::vector<PartialEntry>& Entries() const { return entries_; }
    // The cell's text and text colour (0x00BBGGRR); empty and -1 for an empty cell.
    QString CellText(int row, int column) const;
    int CellColour(int row, int column) const;

private:
    const PartialEntry* At(int row, int column) const;
    std::vector<PartialEntry> entries_;
    int gear_ = 255;
    int nichtGear_ = 65280;
};

class DBLog : public QWidget {
    Q_OBJECT
public:
    DBLog(HauptForm& main, Model& m, Dialogs& dialogs, QAction* menuEntry, QWidget* parent = nullptr);
    ~DBLog() override;

    // Position, colours, grid, the open flag; Timer1 starts enabled.
    void Load();
    // The tick of Timer1: caption, search, grid.
    void Timer1Tick();
    QTimer& Timer1() { return timer1_; }
    // The grid's rows set to 0 (the main window's call field fell below four characters).
    void ClearList() { grid_.Clear(); }
    int Rows() const { return grid_.rowCount(); }

    // Double click on a cell: call and district into the main window.
    void CellDoubleClick(int row, int column);
    void MnGearbeitetfarbe();
    void MnNichtgearbeitetfarbe();
    void MnHintergrundfarbe();

    PartialGridModel& Grid() { return grid_; }
    QTableView* GridView() const { return view_; }
    QMenu* PopupMenu() const { return mnVersteckt_; }
    const PartialColours& Colours() const { return colours_; }

    // Design size in pixels; the stored height is taken only when not below it.
    static QSize DesignSize();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ApplyColours();
    void FitWidth();
    // The equal width of the columns: enough for the longest call and for every entry.
    int CellWidth(const std::vector<PartialEntry>& entries) const;
    void PickColourName(bool worked);

    HauptForm& main_;
    Model& m_;
    Dialogs& dialogs_;
    QAction* menuEntry_;
    PeriodRule rule_;
    PartialColours colours_;
    PartialGridModel grid_;
    QTableView* view_ = nullptr;
    QMenu* mnVersteckt_ = nullptr;
    QTimer timer1_;
    bool unloaded_ = false;
    QLineEdit* text2_ = nullptr;
    QLineEdit* text3_ = nullptr;
    QComboBox* combo1_ = nullptr;
    QComboBox* combo2_ = nullptr;
    QComboBox* combo5_ = nullptr;
};

} // namespace kolibrino
