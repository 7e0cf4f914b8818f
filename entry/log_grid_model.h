// The rows of the main window's log grid, and the refill that goes with them.
//
// LogGridModel is a table model of 17 columns: the eleven visible ones, the "Dupe"
// column with its red cell, and five hidden working columns (ModeRx, BandRx,
// Frequenz, FrequenzRx, LaufNr). The grid is a working copy of the log: rows hold
// texts, a new contact's row holds the texts as typed, and corrections read a
// contact's old values and its running number from its row. Rows are numbered from 0
// here; Rows() counts the heading row as well, the way the grid's callers count.
//
// DatenInGrid1Neu() refills the rows from LogRecords and rebuilds every counter.
//
// Window thread only. Nothing here fails: an out-of-range row or column reads as the
// empty text and writes nowhere.
#pragma once

#include "core/log_model.h"

#include <QAbstractTableModel>
#include <array>
#include <vector>

namespace kolibrino {

inline constexpr int kGridColumns = 17;
inline constexpr int kGridColDatum = 0;
inline constexpr int kGridColZeit = 1;
inline constexpr int kGridColBand = 2;
inline constexpr int kGridColMode = 3;
inline constexpr int kGridColCall = 4;
inline constexpr int kGridColBezirk = 7;
inline constexpr int kGridColDupe = 11;
inline constexpr int kGridFirstHidden = 12;
inline constexpr int kGridColFrequenz = 14;
inline constexpr int kGridColLaufNr = 16;
inline constexpr int kDupeBackColor = 255; // 0x00BBGGRR: pure red

// Sort orders of the grid's pop-up menu. Ascending texts have the higher number.
namespace GridSort {
inline constexpr int None = 0;
inline constexpr int ZeitAuf = 1;
inline constexpr int ZeitAb = 2;
inline constexpr int RufzeichenAb = 3;
inline constexpr int RufzeichenAuf = 4;
inline constexpr int BezirkAb = 5;
inline constexpr int BezirkAuf = 6;
} // namespace GridSort

struct GridRow {
    std::array<QString, kGridColumns> cells;
    // Back colours (0x00BBGGRR) of single cells: (column, colour).
    std::vector<std::pair<int, int>> backColors;
};

class LogGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit LogGridModel(const LocaleFormats& formats, QObject* parent = nullptr);

    static QString Heading(int column);
    static int WidthTwips(int column);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // Data rows plus the heading row: 1 for an empty grid.
    int Rows() const { return int(rows_.size()) + 1; }
    int DataRows() const { return int(rows_.size()); }
    QString Text(int row, int column) const;
    // The same without a copy, for writers that walk every row.
    const QString& Cell(int row, int column) const {
        static const QString kNone;
        if (row < 0 || row >= int(rows_.size()) || column < 0 || column >= kGridColumns) return kNone;
        return rows_[size_t(row)].cells[size_t(column)];
    }
    void SetText(int row, int column, const QString& text);
    // -1 when the cell has no colour of its own.
    int BackColor(int row, int column) const;
    void SetBackColor(int row, int column, int bgr);

    void AppendRow(GridRow row);
    // Takes one data row out (0-based); nothing for a row outside the grid.
    void RemoveRow(int row);
    // Gives every cell of a row the grid's own back colour again.
    void ClearBackColors(int row);
    void Clear();
    // Replaces all rows at once (one reset of the views).
    void SetRows(std::vector<GridRow> rows);

    // The row a record shows as after a load.
    GridRow RowOfRecord(const QsoRecord& r);

    // Sorts the rows by one of the GridSort orders and keeps the order number.
    void Sort(int sortMode);
    int SortMode() const { return sortMode_; }

private:
    const LocaleFormats& formats_;
    std::vector<GridRow> rows_;
    int sortMode_ = GridSort::None;
    // Display texts of dates and times, which repeat from row to row.
    QString lastDatum_, lastDatumShown_;
    std::array<QString, 24 * 60> minuteTexts_;
};

// The grid filled from LogRecords in record order, every counter rebuilt from zero
// (RebuildTallies). The sort order number is left as it was.
void DatenInGrid1Neu(Model& m, LogGridModel& grid);

} // namespace kolibrino
