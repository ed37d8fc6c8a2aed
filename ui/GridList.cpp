#include "ui/GridList.h"

#include <algorithm>
#include <utility>

#include "ui/ColumnLayout.h"
#include "ui/QtText.h"

namespace vl {

namespace {

constexpr auto kAlone = QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;

}  // namespace

/// What a refill must not disturb. Rows are remembered by GUID: indexes do not outlive a reset.
struct GridList::Choice {
    std::vector<std::string> selected;
    std::string current;
    int currentRow = -1;  // for when the current row is gone
    int currentColumn = 0;
};

GridList::GridList(int grid, TimeText timeText, QObject* parent)
    : QObject(parent),
      grid_(grid),
      model_(gridColumns(grid), std::move(timeText)),
      proxy_(model_),
      selection_(&proxy_) {
    sortBy(firstLayout(grid, 0).sortedBy, false);
    connect(&selection_, &QItemSelectionModel::selectionChanged, this,
            &GridList::onSelectionChanged);
    connect(&selection_, &QItemSelectionModel::currentChanged, this, &GridList::onCurrentChanged);
    connect(&proxy_, &QAbstractItemModel::dataChanged, this, &GridList::onDataChanged);
    connect(&model_, &QAbstractItemModel::rowsInserted, this, &GridList::countChanged);
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, &GridList::countChanged);
    connect(&model_, &QAbstractItemModel::modelReset, this, &GridList::countChanged);
}

void GridList::sortBy(std::string_view column, bool descending) {
    proxy_.sort(columnIndex(model_.columns(), column),
                descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void GridList::DoSort() { proxy_.sort(proxy_.sortColumn(), proxy_.sortOrder()); }

void GridList::setRows(std::vector<GridRow> rows) {
    emit refilling();
    const Choice before = choice();
    bool reset = false;
    const auto onReset =
        connect(&model_, &QAbstractItemModel::modelReset, this, [&] { reset = true; });
    model_.setRows(std::move(rows));
    disconnect(onReset);
    if (reset) {
        choose(before);
        emit refilled();
    }
    // Also where all looks the same: the rows stand for other event objects now.
    emit currentRowChanged();
}

void GridList::putRow(GridRow row) { model_.putRow(std::move(row)); }

bool GridList::RemoveGUID(std::string_view GUID) {
    const QModelIndex index = proxy_.indexOf(GUID);
    const bool chosen = index.isValid() && selection_.isSelected(index);
    const bool current = index.isValid() && selection_.currentIndex().row() == index.row();
    const std::string next = current ? neighbourOf(GUID) : std::string();
    const bool removed = model_.removeRow(GUID);
    // Who works through a list has the next row at hand; Qt would go to the one above.
    if (removed && !next.empty()) {
        selection_.setCurrentIndex(proxy_.indexOf(next), QItemSelectionModel::NoUpdate);
    }
    if (chosen && removed && !selection_.hasSelection() && selection_.currentIndex().isValid()) {
        selection_.setCurrentIndex(selection_.currentIndex(), kAlone);
    }
    return removed;
}

// Each row that goes has what is selected collected anew.
void GridList::RemoveGUIDs(const std::vector<std::string>& GUIDs) {
    constexpr std::size_t kFew = 8;
    if (GUIDs.size() <= kFew) {
        for (const std::string& GUID : GUIDs) {
            RemoveGUID(GUID);
        }
        return;
    }
    std::vector<char> goes(model_.rows().size(), 0);
    for (const std::string& GUID : GUIDs) {
        if (const auto row = model_.find(GUID)) {
            goes[static_cast<std::size_t>(*row)] = 1;
        }
    }
    std::vector<GridRow> left;
    for (std::size_t i = 0; i < goes.size(); ++i) {
        if (goes[i] == 0) {
            left.push_back(model_.rows()[i]);
        }
    }
    if (left.size() < goes.size()) {
        setRows(std::move(left));
    }
}

bool GridList::SelectGUID(std::string_view GUID) {
    const QModelIndex index = proxy_.indexOf(GUID);
    if (!index.isValid()) {
        return false;
    }
    selection_.setCurrentIndex(index, kAlone);
    emit rowAsked(index);
    return true;
}

void GridList::selectFirst() {
    if (proxy_.rowCount() > 0) {
        const QModelIndex first = proxy_.index(0, 0);
        selection_.setCurrentIndex(first, kAlone);
        emit rowAsked(first);
    }
}

std::string GridList::neighbourOf(std::string_view GUID) const {
    const QModelIndex index = proxy_.indexOf(GUID);
    if (!index.isValid() || proxy_.rowCount() < 2) {
        return {};
    }
    const int row = index.row();
    const int neighbour = row + 1 < proxy_.rowCount() ? row + 1 : row - 1;
    return plainText(proxy_.row(neighbour).GUID);
}

std::vector<int> GridList::selectedPositions() const {
    const QModelIndexList selected = selection_.selectedRows();
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(selected.size()));
    for (const QModelIndex& index : selected) {
        rows.push_back(index.row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<std::string> GridList::SelectedGUIDs() const {
    std::vector<std::string> GUIDs;
    for (const int row : selectedPositions()) {
        GUIDs.push_back(plainText(proxy_.row(row).GUID));
    }
    return GUIDs;
}

std::vector<GridRow> GridList::selectedRows() const {
    std::vector<GridRow> rows;
    for (const int row : selectedPositions()) {
        rows.push_back(proxy_.row(row));
    }
    return rows;
}

const GridRow* GridList::currentRow() const {
    const QModelIndex index = selection_.currentIndex();
    return index.isValid() ? &proxy_.row(index.row()) : nullptr;
}

void GridList::setSearch(const QString& search) {
    filtering_ = true;
    proxy_.setSearch(search);
    chooseAgain();
    filtering_ = false;
}

QItemSelection GridList::shownOf(const std::vector<std::string>& GUIDs) const {
    QItemSelection shown;
    for (const std::string& GUID : GUIDs) {
        const QModelIndex index = proxy_.indexOf(GUID);
        if (index.isValid()) {
            shown.select(index, index);
        }
    }
    return shown;
}

// Not its neighbour, which nobody chose, where it is not shown.
void GridList::chooseAgain() {
    const QModelIndex current = proxy_.indexOf(chosenCurrent_);
    selection_.setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    selection_.select(shownOf(chosen_), kAlone);
    if (current.isValid()) {
        emit rowInView(current);
    }
}

void GridList::onSelectionChanged() {
    if (!filtering_) {
        chosen_ = SelectedGUIDs();
    }
    emit chosenRowsChanged();
}

void GridList::onCurrentChanged(const QModelIndex& current, const QModelIndex& previous) {
    if (!filtering_) {
        chosenCurrent_ =
            current.isValid() ? plainText(proxy_.row(current.row()).GUID) : std::string();
    }
    if (current.row() != previous.row() || !previous.isValid()) {
        emit currentRowChanged();
    }
}

void GridList::onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight) {
    const int current = selection_.currentIndex().row();
    if (current >= topLeft.row() && current <= bottomRight.row()) {
        emit currentRowChanged();
    }
}

GridList::Choice GridList::choice() const {
    Choice choice;
    choice.selected = SelectedGUIDs();
    if (const GridRow* row = currentRow()) {
        choice.current = plainText(row->GUID);
        choice.currentRow = selection_.currentIndex().row();
        choice.currentColumn = selection_.currentIndex().column();
    }
    return choice;
}

void GridList::choose(const Choice& choice) {
    const QItemSelection shown = shownOf(choice.selected);
    selection_.select(shown, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QModelIndex current = choice.current.empty() ? QModelIndex() : proxy_.indexOf(choice.current);
    if (!current.isValid() && choice.currentRow >= 0 && proxy_.rowCount() > 0) {
        current = proxy_.index(std::min(choice.currentRow, proxy_.rowCount() - 1), 0);
    }
    if (current.isValid()) {
        const bool alone = shown.isEmpty() && !choice.selected.empty();
        selection_.setCurrentIndex(current.siblingAtColumn(choice.currentColumn),
                                   alone ? QItemSelectionModel::Select | QItemSelectionModel::Rows
                                         : QItemSelectionModel::NoUpdate);
    }
}

}  // namespace vl
