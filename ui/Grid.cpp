#include "ui/Grid.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>

#include "ui/GridDelegate.h"
#include "ui/QtText.h"

namespace vl {

/// What a refill must not disturb. Rows are remembered by GUID: indexes do not outlive a reset.
struct Grid::Place {
    std::vector<std::string> selected;
    std::string current;
    int currentRow = -1;  // for when the current row is gone
    int currentColumn = 0;
    std::string top;  // the row at the upper edge, and how far it is scrolled out of view
    int topOffset = 0;
    int scroll = 0;
    int scrollX = 0;
};

Grid::Grid(int grid, TimeText timeText, QWidget* parent)
    : QTreeView(parent), model_(gridColumns(grid), std::move(timeText)), proxy_(model_) {
    const auto columns = model_.columns();
    setItemDelegate(
        new GridDelegate(columnIndex(columns, CIDSubject), columnIndex(columns, CIDDue), this));
    setModel(&proxy_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setSortingEnabled(true);
    header()->setStretchLastSection(false);
    header()->setHighlightSections(false);
    connect(&model_, &QAbstractItemModel::rowsInserted, this, &Grid::countChanged);
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, &Grid::countChanged);
    connect(&model_, &QAbstractItemModel::modelReset, this, &Grid::countChanged);
}

void Grid::InitGrid() {
    const auto columns = model_.columns();
    const int unit = fontMetrics().averageCharWidth();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        setColumnWidth(static_cast<int>(i), columns[i].width * unit);
    }
    const int byReminder = columnIndex(columns, CIDReminderD);
    sortByColumn(byReminder >= 0 ? byReminder : columnIndex(columns, CIDEventD),
                 Qt::AscendingOrder);
}

void Grid::DoSort() {
    sortByColumn(header()->sortIndicatorSection(), header()->sortIndicatorOrder());
}

void Grid::setRows(std::vector<GridRow> rows) {
    const Place before = place();
    bool reset = false;
    const auto onReset =
        connect(&model_, &QAbstractItemModel::modelReset, this, [&] { reset = true; });
    model_.setRows(std::move(rows));
    disconnect(onReset);
    if (reset) {
        restore(before);
    }
    // Also where all looks the same: the rows stand for other event objects now.
    emit currentRowChanged();
}

void Grid::putRow(GridRow row) { model_.putRow(std::move(row)); }

bool Grid::RemoveGUID(std::string_view GUID) { return model_.removeRow(GUID); }

bool Grid::SelectGUID(std::string_view GUID) {
    const QModelIndex index = proxy_.indexOf(GUID);
    if (!index.isValid()) {
        return false;
    }
    setCurrentIndex(index);
    scrollTo(index);
    return true;
}

void Grid::selectFirst() {
    if (proxy_.rowCount() > 0) {
        setCurrentIndex(proxy_.index(0, 0));
        scrollToTop();
    }
}

void Grid::ScrollDown(int down, int right) {
    verticalScrollBar()->setValue(verticalScrollBar()->value() + down);
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + right);
}

std::vector<std::string> Grid::SelectedGUIDs() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(selected.size()));
    for (const QModelIndex& index : selected) {
        rows.push_back(index.row());
    }
    std::sort(rows.begin(), rows.end());
    std::vector<std::string> GUIDs;
    GUIDs.reserve(rows.size());
    for (const int row : rows) {
        GUIDs.push_back(plainText(proxy_.row(row).GUID));
    }
    return GUIDs;
}

const GridRow* Grid::currentRow() const {
    const QModelIndex index = currentIndex();
    return index.isValid() ? &proxy_.row(index.row()) : nullptr;
}

void Grid::setDismissedView(bool on) { model_.setDismissedView(on); }

void Grid::setEmptyText(const QString& text) {
    if (text != emptyText_) {
        emptyText_ = text;
        setAccessibleDescription(text);
        viewport()->update();
    }
}

bool Grid::allFilteredOut() const { return rowCount() > 0 && proxy_.rowCount() == 0; }

void Grid::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (proxy_.rowCount() > 0 || emptyText_.isEmpty()) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(Tones(palette()).dimmed);
    const QRect area = viewport()->rect().adjusted(24, 24, -24, -24);
    painter.drawText(area, static_cast<int>(Qt::AlignHCenter | Qt::AlignTop) | Qt::TextWordWrap,
                     emptyText_);
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (current.row() != previous.row() || !previous.isValid()) {
        emit currentRowChanged();
    }
}

void Grid::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                       const QList<int>& roles) {
    QTreeView::dataChanged(topLeft, bottomRight, roles);
    const int current = currentIndex().row();
    if (current >= topLeft.row() && current <= bottomRight.row()) {
        emit currentRowChanged();
    }
}

Grid::Place Grid::place() const {
    Place place;
    place.selected = SelectedGUIDs();
    if (const GridRow* row = currentRow()) {
        place.current = plainText(row->GUID);
        place.currentRow = currentIndex().row();
        place.currentColumn = currentIndex().column();
    }
    const QModelIndex top = indexAt(QPoint(1, 1));
    if (top.isValid()) {
        place.top = plainText(proxy_.row(top.row()).GUID);
        place.topOffset = visualRect(top).top();
    }
    place.scroll = verticalScrollBar()->value();
    place.scrollX = horizontalScrollBar()->value();
    return place;
}

void Grid::restore(const Place& place) {
    QItemSelection selection;
    for (const std::string& GUID : place.selected) {
        const QModelIndex index = proxy_.indexOf(GUID);
        if (index.isValid()) {
            selection.select(index, index);
        }
    }
    QItemSelectionModel& chosen = *selectionModel();
    chosen.select(selection, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QModelIndex current = place.current.empty() ? QModelIndex() : proxy_.indexOf(place.current);
    if (!current.isValid() && place.currentRow >= 0 && proxy_.rowCount() > 0) {
        current = proxy_.index(std::min(place.currentRow, proxy_.rowCount() - 1), 0);
    }
    if (current.isValid()) {
        const bool alone = selection.isEmpty() && !place.selected.empty();
        chosen.setCurrentIndex(current.siblingAtColumn(place.currentColumn),
                               alone ? QItemSelectionModel::Select | QItemSelectionModel::Rows
                                     : QItemSelectionModel::NoUpdate);
    }
    // The rows are laid out first, or the scroll bar still has no range.
    doItemsLayout();
    const QModelIndex top = proxy_.indexOf(place.top);
    verticalScrollBar()->setValue(place.scroll);
    if (!place.top.empty() && top.isValid()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + visualRect(top).top() -
                                      place.topOffset);
    }
    horizontalScrollBar()->setValue(place.scrollX);
}

}  // namespace vl
