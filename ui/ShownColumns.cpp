#include "ui/ShownColumns.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QTreeView>

#include "ui/ColumnNeeds.h"

namespace vl {

ShownColumns::ShownColumns(QTreeView& grid, const GridList& list, ColumnWidths& widths)
    : grid_(grid), list_(list), widths_(widths) {
    measuring_.setSingleShot(true);
    connect(&measuring_, &QTimer::timeout, this, &ShownColumns::measure);
}

void ShownColumns::watch() {
    const QHeaderView* header = grid_.header();
    connect(header, &QHeaderView::sectionMoved, this, &ShownColumns::changed);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &ShownColumns::changed);
    connect(header, &QHeaderView::sectionResized, this,
            [this](int column, int, int width) { sectionResized(column, width); });
    connect(&list_.rows(), &QAbstractItemModel::rowsInserted, this, &ShownColumns::measureSoon);
    connect(&list_.rows(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& from, const QModelIndex& to) {
                const int live = columnIndex(list_.rows().columns(), CIDDue);
                if (from.column() != live || to.column() != live) {  // which a minute changes
                    measureSoon();
                }
            });
}

int ShownColumns::unit() const { return grid_.fontMetrics().averageCharWidth(); }

int& ShownColumns::widthOf(int column) const {
    return widths_[list_.rows().columns()[static_cast<std::size_t>(column)].id];
}

void ShownColumns::sectionResized(int column, int width) {
    if (width > 0 && !fitting_) {  // hiding one makes it 0
        widthOf(column) = width;
        sized_ = true;
        emit changed();
    }
}

// One row may follow the other.
void ShownColumns::measureSoon() {
    if (grid_.isVisible()) {
        measuring_.start(0);
    }
}

void ShownColumns::arrange(const ColumnLayout& layout) {
    int place = 0;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(list_.rows().columns(), column.id);
        grid_.header()->moveSection(grid_.header()->visualIndex(index), place++);
        grid_.setColumnHidden(index, column.hidden);
    }
    setWidths(layout);
    sized_ = layout.sized;
    needs_.clear();
    measure();
    grid_.sortByColumn(columnIndex(list_.rows().columns(), layout.sortedBy),
                       layout.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    emit changed();
}

void ShownColumns::setWidths(const ColumnLayout& layout) {
    fitting_ = true;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(list_.rows().columns(), column.id);
        widthOf(index) = column.width;
        grid_.setColumnWidth(index, column.width);  // a hidden one has it when it is shown
    }
    fitting_ = false;
}

void ShownColumns::measure() {
    if (sized_) {
        return;
    }
    std::vector<int> needs = neededWidths(list_.rows(), grid_.fontMetrics());
    // A little more than the cell's margins, or the next column's text would seem to go on with it.
    const int margins =
        2 * (grid_.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid_) + 1) +
        unit();
    for (int column = 0; column < grid_.header()->count(); ++column) {
        int& need = needs[static_cast<std::size_t>(column)];
        need = need == 0 ? 0 : std::max(need + margins, grid_.header()->sectionSizeHint(column));
    }
    if (needs != needs_) {
        needs_ = std::move(needs);
        fit();
    }
}

void ShownColumns::fit() {
    if (!sized_) {
        ColumnLayout fitted = layout();
        fitColumns(fitted, list_.grid(), unit(), grid_.viewport()->width(), needs_);
        setWidths(fitted);
    }
}

ColumnLayout ShownColumns::layout() const {
    ColumnLayout now;
    const auto columns = list_.rows().columns();
    const QHeaderView& header = *grid_.header();
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        const auto at = static_cast<std::size_t>(column);
        now.columns.push_back({columns[at].id, widthOf(column), grid_.isColumnHidden(column)});
    }
    now.sortedBy = columns[static_cast<std::size_t>(header.sortIndicatorSection())].id;
    now.descending = header.sortIndicatorOrder() == Qt::DescendingOrder;
    now.sized = sized_;
    return now;
}

void ShownColumns::show(int column, bool shown) {
    if (shown == grid_.isColumnHidden(column)) {
        fitting_ = true;
        grid_.setColumnHidden(column, !shown);
        fitting_ = false;
        fit();
        emit changed();
    }
}

}  // namespace vl
