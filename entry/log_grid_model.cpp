#include "entry/log_grid_model.h"

#include "core/tallies.h"
#include "core/vb_text.h"

#include <QColor>
#include <QFont>
#include <algorithm>
#include <numeric>

namespace kolibrino {
namespace {

struct ColumnDef {
    const char* heading;
    int widthTwips;
    Qt::Alignment align;
};

const ColumnDef kColumns[kGridColumns] = {
    {"Datum", 900, Qt::AlignCenter},
    {"Zeit", 550, Qt::AlignCenter},
    {"Band", 500, Qt::AlignCenter},
    {"Mode", 520, Qt::AlignCenter},
    {"Rufzeichen", 1750, Qt::AlignLeft | Qt::AlignVCenter},
    {"RSTs", 580, Qt::AlignCenter},
    {"RSTe", 580, Qt::AlignCenter},
    {"BZ", 450, Qt::AlignCenter},
    {"QSL", 450, Qt::AlignCenter},
    {"Notiz", 1750, Qt::AlignLeft | Qt::AlignVCenter},
    {"OpCall", 1300, Qt::AlignLeft | Qt::AlignVCenter},
    {"Dupe", 650, Qt::AlignCenter},
    {"", 0, Qt::AlignLeft | Qt::AlignVCenter},
    {"", 0, Qt::AlignLeft | Qt::AlignVCenter},
    {"", 0, Qt::AlignLeft | Qt::AlignVCenter},
    {"", 0, Qt::AlignLeft | Qt::AlignVCenter},
    {"", 0, Qt::AlignLeft | Qt::AlignVCenter},
};

QColor ColorOfBgr(int bgr) {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

// Hours and minutes of a record time "hh:mm:ss" read by position; -1 when the text
// has another shape.
int MinuteOfDay(const QString& t, QChar sep) {
    if (t.size() != 8 || t[2] != sep || t[5] != sep) return -1;
    auto digit = [&](int i) {
        return t[i].unicode() >= '0' && t[i].unicode() <= '9' ? t[i].unicode() - '0' : -100;
    };
    const int h = digit(0) * 10 + digit(1);
    const int m = digit(3) * 10 + digit(4);
    if (h < 0 || h > 23 || m < 0 || m > 59) return -1;
    return h * 60 + m;
}

// The same for a short time "hh:mm".
int ShortMinuteOfDay(const QString& t, QChar sep) {
    if (t.size() != 5 || t[2] != sep) return -1;
    return MinuteOfDay(t + sep + QStringLiteral("00"), sep);
}

} // namespace

LogGridModel::LogGridModel(const LocaleFormats& formats, QObject* parent)
    : QAbstractTableModel(parent), formats_(formats) {}

QString LogGridModel::Heading(int column) {
    if (column < 0 || column >= kGridColumns) return {};
    return QString::fromLatin1(kColumns[column].heading);
}

int LogGridModel::WidthTwips(int column) {
    if (column < 0 || column >= kGridColumns) return 0;
    return kColumns[column].widthTwips;
}

int LogGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(rows_.size());
}

int LogGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kGridColumns;
}

QVariant LogGridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= int(rows_.size())) return {};
    const GridRow& row = rows_[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return row.cells[size_t(index.column())];
    case Qt::BackgroundRole:
        for (const auto& [col, bgr] : row.backColors)
            if (col == index.column()) return ColorOfBgr(bgr);
        return {};
    case Qt::ForegroundRole:
        for (const auto& [col, bgr] : row.backColors)
            if (col == index.column()) return QColor(Qt::white);
        return {};
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(kColumns[index.column()].align);
    case Qt::FontRole:
        if (index.column() == kGridColCall) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    default:
        return {};
    }
}

QVariant LogGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return Heading(section);
    if (role == Qt::TextAlignmentRole && section >= 0 && section < kGridColumns)
        return QVariant::fromValue(kColumns[section].align);
    return {};
}

QString LogGridModel::Text(int row, int column) const {
    if (row < 0 || row >= int(rows_.size()) || column < 0 || column >= kGridColumns) return {};
    return rows_[size_t(row)].cells[size_t(column)];
}

void LogGridModel::SetText(int row, int column, const QString& text) {
    if (row < 0 || row >= int(rows_.size()) || column < 0 || column >= kGridColumns) return;
    rows_[size_t(row)].cells[size_t(column)] = text;
    const QModelIndex i = index(row, column);
    emit dataChanged(i, i, {Qt::DisplayRole});
}

int LogGridModel::BackColor(int row, int column) const {
    if (row < 0 || row >= int(rows_.size())) return -1;
    for (const auto& [col, bgr] : rows_[size_t(row)].backColors)
        if (col == column) return bgr;
    return -1;
}

void LogGridModel::SetBackColor(int row, int column, int bgr) {
    if (row < 0 || row >= int(rows_.size()) || column < 0 || column >= kGridColumns) return;
    auto& colors = rows_[size_t(row)].backColors;
    auto it = std::find_if(colors.begin(), colors.end(), [&](const auto& p) { return p.first == column; });
    if (it != colors.end())
        it->second = bgr;
    else
        colors.emplace_back(column, bgr);
    const QModelIndex i = index(row, column);
    emit dataChanged(i, i, {Qt::BackgroundRole, Qt::ForegroundRole});
}

void LogGridModel::AppendRow(GridRow row) {
    const int n = int(rows_.size());
    beginInsertRows({}, n, n);
    rows_.push_back(std::move(row));
    endInsertRows();
}

void LogGridModel::RemoveRow(int row) {
    if (row < 0 || row >= int(rows_.size())) return;
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

void LogGridModel::ClearBackColors(int row) {
    if (row < 0 || row >= int(rows_.size())) return;
    rows_[size_t(row)].backColors.clear();
    emit dataChanged(index(row, 0), index(row, kGridColumns - 1), {Qt::BackgroundRole, Qt::ForegroundRole});
}

void LogGridModel::Clear() {
    beginResetModel();
    rows_.clear();
    endResetModel();
}

void LogGridModel::SetRows(std::vector<GridRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

GridRow LogGridModel::RowOfRecord(const QsoRecord& r) {
    static const QString kBands[3] = {QStringLiteral("40m"), QStringLiteral("80m"), QStringLiteral("30m")};
    static const QString kDupe = QStringLiteral("Dupe");
    static const QString kZero = QStringLiteral("0");
    static const QString kOne = QStringLiteral("1");
    GridRow row;
    auto& c = row.cells;
    if (r.Datum != lastDatum_) {
        const auto d = formats_.ParseDate(r.Datum);
        lastDatum_ = r.Datum;
        lastDatumShown_ = d ? formats_.ShortDate(*d) : r.Datum;
    }
    c[0] = lastDatumShown_;
    const int minute = MinuteOfDay(r.Zeit, formats_.TimeSeparator());
    if (minute >= 0) {
        QString& shown = minuteTexts_[size_t(minute)];
        if (shown.isEmpty()) shown = formats_.ShortTime(QTime(minute / 60, minute % 60));
        c[1] = shown;
    } else {
        const auto t = formats_.ParseTime(r.Zeit);
        c[1] = t ? formats_.ShortTime(*t) : r.Zeit;
    }
    const int bandCol = BandColumn(r.Band);
    c[2] = bandCol >= 0 ? kBands[bandCol] : QString::number(r.Band) + QLatin1Char('m');
    c[3] = r.Mode;
    c[4] = r.Call;
    c[5] = r.RstGesendet;
    c[6] = r.RstEmpfangen;
    c[7] = r.Bezirk;
    c[8] = r.Qsl == 0 ? kZero : r.Qsl == 1 ? kOne : QString::number(r.Qsl);
    c[9] = r.Bemerkung;
    c[10] = r.Operator;
    if (r.Status == Status::Dupe) {
        c[11] = kDupe;
        row.backColors.emplace_back(kGridColDupe, kDupeBackColor);
    }
    c[12] = r.ModeRx;
    c[13] = r.BandRx;
    c[14] = FloatText(r.Frequenz);
    c[15] = r.FrequenzRx == 0 ? kZero : FloatText(r.FrequenzRx);
    c[16] = FloatText(r.LaufNr);
    return row;
}

void LogGridModel::Sort(int sortMode) {
    sortMode_ = sortMode;
    const size_t n = rows_.size();
    std::vector<size_t> order(n);
    std::iota(order.begin(), order.end(), size_t(0));
    if (sortMode == GridSort::ZeitAuf || sortMode == GridSort::ZeitAb) {
        // One conversion per row, not one per comparison.
        std::vector<int> secs(n);
        const QChar sep = formats_.TimeSeparator();
        for (size_t i = 0; i < n; ++i) {
            const QString& t = rows_[i].cells[kGridColZeit];
            const int minute = ShortMinuteOfDay(t, sep); // the grid's own "hh:mm" read directly
            secs[i] = minute >= 0 ? minute * 60 : formats_.TimeSeconds(t).value_or(-1);
        }
        if (sortMode == GridSort::ZeitAuf)
            std::stable_sort(order.begin(), order.end(),
                             [&](size_t a, size_t b) { return secs[a] < secs[b]; });
        else
            std::stable_sort(order.begin(), order.end(),
                             [&](size_t a, size_t b) { return secs[a] > secs[b]; });
    } else {
        int column = -1;
        bool ascending = true;
        switch (sortMode) {
        case GridSort::RufzeichenAuf:
            column = kGridColCall;
            break;
        case GridSort::RufzeichenAb:
            column = kGridColCall;
            ascending = false;
            break;
        case GridSort::BezirkAuf:
            column = kGridColBezirk;
            break;
        case GridSort::BezirkAb:
            column = kGridColBezirk;
            ascending = false;
            break;
        default:
            return;
        }
        std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
            const int c =
                rows_[a].cells[size_t(column)].compare(rows_[b].cells[size_t(column)], Qt::CaseInsensitive);
            return ascending ? c < 0 : c > 0;
        });
    }
    // Rows already in this order stay as they are, without a new layout of the views.
    if (std::is_sorted(order.begin(), order.end())) return;
    emit layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<int> newPlace(n);
    for (size_t i = 0; i < n; ++i)
        newPlace[order[i]] = int(i);
    std::vector<GridRow> sorted;
    sorted.reserve(n);
    for (size_t i : order)
        sorted.push_back(std::move(rows_[i]));
    rows_ = std::move(sorted);
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& i : before)
        after << index(newPlace[size_t(i.row())], i.column());
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

void DatenInGrid1Neu(Model& m, LogGridModel& grid) {
    std::vector<GridRow> rows;
    rows.reserve(m.LogRecords.size());
    for (const QsoRecord& r : m.LogRecords)
        rows.push_back(grid.RowOfRecord(r));
    grid.SetRows(std::move(rows));
    RebuildTallies(m);
}

} // namespace kolibrino
