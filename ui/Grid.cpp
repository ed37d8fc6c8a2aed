#include "ui/Grid.h"

#include <algorithm>
#include <utility>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
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
    : QTreeView(parent),
      model_(gridColumns(grid), std::move(timeText)),
      proxy_(model_),
      widths_(gridColumns(grid).size()),
      grid_(grid) {
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
    header()->setSectionsMovable(true);
    header()->setFirstSectionMovable(true);
    wireHeader();
    connect(&model_, &QAbstractItemModel::rowsInserted, this, &Grid::countChanged);
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, &Grid::countChanged);
    connect(&model_, &QAbstractItemModel::modelReset, this, &Grid::countChanged);
}

void Grid::wireHeader() {
    const auto changed = [this] { emit columnsChanged(); };
    connect(header(), &QHeaderView::sectionMoved, this, changed);
    connect(header(), &QHeaderView::sortIndicatorChanged, this, changed);
    connect(header(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (width > 0 && !fitting_) {  // hiding one makes it 0
            widths_[static_cast<std::size_t>(column)] = width;
            sized_ = true;
            emit columnsChanged();
        }
    });
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        emit headingMenuAsked(header()->viewport()->mapToGlobal(at));
    });
}

void Grid::InitGrid() { arrange(firstLayout(grid_, unit())); }

void Grid::arrange(const ColumnLayout& layout) {
    int place = 0;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(model_.columns(), column.id);
        header()->moveSection(header()->visualIndex(index), place++);
        setColumnHidden(index, column.hidden);
    }
    setWidths(layout);
    sized_ = layout.sized;
    fit();
    sortByColumn(columnIndex(model_.columns(), layout.sortedBy),
                 layout.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    emit columnsChanged();
}

void Grid::setWidths(const ColumnLayout& layout) {
    fitting_ = true;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(model_.columns(), column.id);
        widths_[static_cast<std::size_t>(index)] = column.width;
        setColumnWidth(index, column.width);  // a hidden one has it when it is shown
    }
    fitting_ = false;
}

void Grid::fit() {
    if (!sized_) {
        ColumnLayout layout = columnLayout();
        fitColumns(layout, grid_, unit(), viewport()->width());
        setWidths(layout);
    }
}

ColumnLayout Grid::columnLayout() const {
    ColumnLayout layout;
    const auto columns = model_.columns();
    for (int place = 0; place < header()->count(); ++place) {
        const int column = header()->logicalIndex(place);
        const auto at = static_cast<std::size_t>(column);
        layout.columns.push_back({columns[at].id, widths_[at], isColumnHidden(column)});
    }
    layout.sortedBy = columns[static_cast<std::size_t>(header()->sortIndicatorSection())].id;
    layout.descending = header()->sortIndicatorOrder() == Qt::DescendingOrder;
    layout.sized = sized_;
    return layout;
}

void Grid::showColumn(int column, bool shown) {
    if (shown == isColumnHidden(column)) {
        fitting_ = true;
        setColumnHidden(column, !shown);
        fitting_ = false;
        fit();
        emit columnsChanged();
    }
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

bool Grid::RemoveGUID(std::string_view GUID) {
    const QModelIndex index = proxy_.indexOf(GUID);
    const bool chosen = index.isValid() && selectionModel()->isSelected(index);
    const bool current = index.isValid() && currentIndex().row() == index.row();
    const std::string next = current ? neighbourOf(GUID) : std::string();
    const bool removed = model_.removeRow(GUID);
    // Who works through a list has the next row at hand; Qt would go to the one above.
    if (removed && !next.empty()) {
        selectionModel()->setCurrentIndex(proxy_.indexOf(next), QItemSelectionModel::NoUpdate);
    }
    if (chosen && removed && !selectionModel()->hasSelection() && currentIndex().isValid()) {
        setCurrentIndex(currentIndex());
    }
    return removed;
}

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

void Grid::showCurrentRow() {
    if (currentIndex().isValid()) {
        const int across = horizontalScrollBar()->value();
        scrollTo(currentIndex());
        horizontalScrollBar()->setValue(across);
    }
}

void Grid::keepScrollPlace(const std::function<void()>& change) {
    const int scroll = verticalScrollBar()->value();
    change();
    verticalScrollBar()->setValue(scroll);
    showCurrentRow();
}

void Grid::ScrollDown(int down, int right) {
    verticalScrollBar()->setValue(verticalScrollBar()->value() + down);
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + right);
}

std::string Grid::neighbourOf(std::string_view GUID) const {
    const int current = proxy_.indexOf(GUID).row();
    if (current < 0 || proxy_.rowCount() < 2) {
        return {};
    }
    const bool isLast = current == proxy_.rowCount() - 1;
    return plainText(proxy_.row(isLast ? current - 1 : current + 1).GUID);
}

std::vector<int> Grid::selectedPositions() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(selected.size()));
    for (const QModelIndex& index : selected) {
        rows.push_back(index.row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<std::string> Grid::SelectedGUIDs() const {
    std::vector<std::string> GUIDs;
    for (const int row : selectedPositions()) {
        GUIDs.push_back(plainText(proxy_.row(row).GUID));
    }
    return GUIDs;
}

std::vector<GridRow> Grid::selectedRows() const {
    std::vector<GridRow> rows;
    for (const int row : selectedPositions()) {
        rows.push_back(proxy_.row(row));
    }
    return rows;
}

const GridRow* Grid::currentRow() const {
    const QModelIndex index = currentIndex();
    return index.isValid() ? &proxy_.row(index.row()) : nullptr;
}

void Grid::setDismissedView(bool on) { model_.setDismissedView(on); }

void Grid::setSearch(const QString& search) {
    filtering_ = true;
    proxy_.setSearch(search);
    chooseAgain();
    filtering_ = false;
}

// Not its neighbour, which nobody chose, where it is not shown.
void Grid::chooseAgain() {
    QItemSelection selection;
    for (const std::string& GUID : chosen_) {
        const QModelIndex index = proxy_.indexOf(GUID);
        if (index.isValid()) {
            selection.select(index, index);
        }
    }
    selectionModel()->setCurrentIndex(proxy_.indexOf(chosenCurrent_),
                                      QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection,
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    showCurrentRow();
}

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

void Grid::resizeEvent(QResizeEvent* event) {
    if (event->size().width() != event->oldSize().width()) {
        fit();  // first, or a scroll bar would come and go
    }
    QTreeView::resizeEvent(event);
}

void Grid::changeEvent(QEvent* event) {
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        fit();
    }
}

void Grid::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit openAsked();
            break;
        case Qt::Key_Delete:
            emit dismissAsked(event->modifiers().testFlag(Qt::ShiftModifier));
            break;
        default:
            QTreeView::keyPressEvent(event);
            // Qt scrolls to another row, not back to the one that is current already.
            if (event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
                showCurrentRow();
            }
    }
}

void Grid::contextMenuEvent(QContextMenuEvent* event) {
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {  // below the row that it is about
        const QRect row = visualRect(currentIndex()) & viewport()->rect();
        at = viewport()->mapToGlobal(row.isEmpty() ? QPoint() : row.bottomLeft());
    }
    emit menuAsked(at);
}

// Who comes by the keyboard finds a row that the buttons are about.
void Grid::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason && !selectionModel()->hasSelection() &&
        proxy_.rowCount() > 0) {
        setCurrentIndex(currentIndex().isValid() ? currentIndex() : proxy_.index(0, 0));
    }
}

// Not `activated`: where the desktop opens by a single click, that would open each row chosen.
void Grid::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->pos()).isValid()) {
        emit openAsked();
    }
}

void Grid::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTreeView::selectionChanged(selected, deselected);
    if (!filtering_) {
        chosen_ = SelectedGUIDs();
    }
    emit chosenRowsChanged();
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (!filtering_) {
        chosenCurrent_ =
            current.isValid() ? plainText(proxy_.row(current.row()).GUID) : std::string();
    }
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
    // At its top a list stays there: what comes above the first row is to be seen.
    if (place.scroll > 0 && !place.top.empty() && top.isValid()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + visualRect(top).top() -
                                      place.topOffset);
    }
    horizontalScrollBar()->setValue(place.scrollX);
}

}  // namespace vl
