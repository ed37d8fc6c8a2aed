#include "ui/GridModel.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "model/calEvent.h"
#include "ui/QtText.h"
#include "ui/Tips.h"

namespace vl {

namespace {

std::string keyOf(const GridRow& row) { return text::foldCase(plainText(row.GUID)); }

}  // namespace

GridModel::GridModel(std::span<const GridColumn> columns, TimeText timeText, QObject* parent)
    : QAbstractTableModel(parent), columns_(columns) {
    context_.timeText = std::move(timeText);
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const GridRow& row = rows_[static_cast<std::size_t>(index.row())];
    const GridColumn& column = columns_[static_cast<std::size_t>(index.column())];
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return column.text(row, context_);
        case Qt::AccessibleDescriptionRole:
            // Dimmed to the eye.
            return row.dismissed > DateTime() ? tr("dismissed") : QString();
        case Qt::ToolTipRole:
            return plainTip(column.toolTip ? column.toolTip(row, context_) : row.toolTip);
        case DueStateRole:
            return static_cast<int>(rowState(row, context_.now));
        case OverdueRole:
            return !row.ofEvent;
        case DismissedRole:
            return row.dismissed > DateTime();
        case SummaryRole:
            return row.summary;
        case DetailRole:
            return row.detail;
        default:
            return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return {};
    }
    const GridColumn& column = columns_[static_cast<std::size_t>(section)];
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return qtText(context_.dismissedView ? column.dismissedHeading : column.heading);
        case Qt::TextAlignmentRole:
            return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        default:
            return {};
    }
}

std::optional<int> GridModel::find(std::string_view GUID) const {
    const auto at = byGuid_.find(text::foldCase(GUID));
    return at == byGuid_.end() ? std::nullopt : std::optional(at->second);
}

void GridModel::setRows(std::vector<GridRow> rows) {
    const auto sameKey = [](const GridRow& a, const GridRow& b) { return a.GUID == b.GUID; };
    if (std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(), sameKey)) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            replace(static_cast<int>(i), std::move(rows[i]));
        }
        return;
    }
    beginResetModel();
    rows_ = std::move(rows);
    buildIndex();
    endResetModel();
}

void GridModel::putRow(GridRow row) {
    std::string key = keyOf(row);
    if (const auto at = byGuid_.find(key); at != byGuid_.end()) {
        replace(at->second, std::move(row));
        return;
    }
    const int end = rowCount();
    beginInsertRows({}, end, end);
    byGuid_.emplace(std::move(key), end);
    rows_.push_back(std::move(row));
    endInsertRows();
}

bool GridModel::removeRow(std::string_view GUID) {
    const std::optional<int> row = find(GUID);
    if (!row) {
        return false;
    }
    beginRemoveRows({}, *row, *row);
    rows_.erase(rows_.begin() + *row);
    buildIndex();
    endRemoveRows();
    return true;
}

void GridModel::renewFields() {
    int first = rowCount();
    int last = -1;
    for (int i = 0; i < rowCount(); ++i) {
        GridRow& row = rows_[static_cast<std::size_t>(i)];
        const QString field = row.event ? qtText(row.event->FieldName) : row.field;
        if (field != row.field) {
            row.field = field;
            first = std::min(first, i);
            last = i;
        }
    }
    if (last >= 0) {
        const int column = columnIndex(columns_, CIDField);
        emit dataChanged(index(first, column), index(last, column));
    }
}

void GridModel::setNow(DateTime now) {
    const DateTime before = std::exchange(context_.now, now);
    if (rows_.empty() || minutesBetween(before, now) == 0) {
        return;
    }
    const bool sameDay = before.date() == now.date();
    const int live = columnIndex(columns_, CIDDue);
    emit dataChanged(index(0, sameDay ? live : 0),
                     index(rowCount() - 1, sameDay ? live : columnCount() - 1));
}

void GridModel::setDismissedView(bool on) {
    if (std::exchange(context_.dismissedView, on) == on) {
        return;
    }
    const int column = columnIndex(columns_, CIDEventD);
    emit headerDataChanged(Qt::Horizontal, column, column);
    if (!rows_.empty()) {
        emit dataChanged(index(0, column), index(rowCount() - 1, column));
    }
}

void GridModel::replace(int row, GridRow with) {
    GridRow& old = rows_[static_cast<std::size_t>(row)];
    const bool same = showsTheSame(old, with);
    old = std::move(with);
    if (!same) {
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));
    }
}

void GridModel::buildIndex() {
    byGuid_.clear();
    byGuid_.reserve(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        byGuid_.emplace(keyOf(rows_[i]), static_cast<int>(i));
    }
}

}  // namespace vl
