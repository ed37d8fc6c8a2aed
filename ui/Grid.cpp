#include "ui/Grid.h"

#include <algorithm>
#include <utility>

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include "ui/ColumnNeeds.h"
#include "ui/GridDelegate.h"
#include "ui/QtText.h"

namespace vl {

/// What a refill must not disturb. The row is remembered by GUID: indexes do not outlive a reset.
struct Grid::Place {
    std::string top;  // the row at the upper edge, and how far it is scrolled out of view
    int topOffset = 0;
    int scroll = 0;
    int scrollX = 0;
};

Grid::Grid(GridList& list, QWidget* parent)
    : QTreeView(parent), list_(list), widths_(list.rows().columns().size()) {
    const auto columns = list_.rows().columns();
    setItemDelegate(
        new GridDelegate(columnIndex(columns, CIDSubject), columnIndex(columns, CIDDue), this));
    setModel(&list_.proxy());
    const std::unique_ptr<QItemSelectionModel> itsOwn(selectionModel());
    setSelectionModel(&list_.selection());
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    header()->setStretchLastSection(false);
    header()->setHighlightSections(false);
    header()->setSectionsMovable(true);
    header()->setFirstSectionMovable(true);
    // As the list is sorted, or it would be sorted anew by whatever column comes first.
    header()->setSortIndicator(list_.proxy().sortColumn(), list_.proxy().sortOrder());
    setSortingEnabled(true);
    wireHeader();
    wireList();
}

Grid::~Grid() = default;

void Grid::wireList() {
    connect(&list_, &GridList::rowAsked, this, &Grid::onRowAsked);
    connect(&list_, &GridList::rowInView, this, &Grid::showCurrentRow);
    connect(&list_, &GridList::refilling, this,
            [this] { before_ = std::make_unique<Place>(place()); });
    connect(&list_, &GridList::refilled, this, [this] {
        measure();
        restore(*before_);
    });
    measuring_.setSingleShot(true);
    connect(&measuring_, &QTimer::timeout, this, &Grid::measure);
    connect(&list_.rows(), &QAbstractItemModel::rowsInserted, this, &Grid::measureSoon);
    connect(&list_.rows(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& from, const QModelIndex& to) {
                const int live = columnIndex(list_.rows().columns(), CIDDue);
                if (from.column() != live || to.column() != live) {  // which a minute changes
                    measureSoon();
                }
            });
}

// One row may follow the other.
void Grid::measureSoon() {
    if (isVisible()) {
        measuring_.start(0);
    }
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

void Grid::InitGrid() { arrange(firstLayout(list_.grid(), unit())); }

void Grid::arrange(const ColumnLayout& layout) {
    int place = 0;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(list_.rows().columns(), column.id);
        header()->moveSection(header()->visualIndex(index), place++);
        setColumnHidden(index, column.hidden);
    }
    setWidths(layout);
    sized_ = layout.sized;
    needs_.clear();
    measure();
    sortByColumn(columnIndex(list_.rows().columns(), layout.sortedBy),
                 layout.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    emit columnsChanged();
}

void Grid::setWidths(const ColumnLayout& layout) {
    fitting_ = true;
    for (const ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(list_.rows().columns(), column.id);
        widths_[static_cast<std::size_t>(index)] = column.width;
        setColumnWidth(index, column.width);  // a hidden one has it when it is shown
    }
    fitting_ = false;
}

void Grid::measure() {
    if (sized_) {
        return;
    }
    std::vector<int> needs = neededWidths(list_.rows(), fontMetrics());
    // A little more than the cell's margins, or the next column's text would seem to go on with it.
    const int margins =
        2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + unit();
    for (int column = 0; column < header()->count(); ++column) {
        int& need = needs[static_cast<std::size_t>(column)];
        need = need == 0 ? 0 : std::max(need + margins, header()->sectionSizeHint(column));
    }
    if (needs != needs_) {
        needs_ = std::move(needs);
        fit();
    }
}

void Grid::fit() {
    if (!sized_) {
        ColumnLayout layout = columnLayout();
        fitColumns(layout, list_.grid(), unit(), viewport()->width(), needs_);
        setWidths(layout);
    }
}

ColumnLayout Grid::columnLayout() const {
    ColumnLayout layout;
    const auto columns = list_.rows().columns();
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

// From there on the user goes on by the keyboard: it is where a choice of several rows begins. With
// a key held down the view would take it for a choice of the user's.
void Grid::onRowAsked(const QModelIndex& at) {
    if (QGuiApplication::keyboardModifiers() == Qt::NoModifier) {
        setCurrentIndex(at);
    }
    scrollTo(at);
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

void Grid::setEmptyText(const QString& text) {
    if (text != emptyText_) {
        emptyText_ = text;
        setAccessibleDescription(text);
        viewport()->update();
    }
}

QSize Grid::minimumSizeHint() const {
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const int row = itemDelegate()->sizeHint(option, {}).height();
    const int bars = header()->sizeHint().height() + horizontalScrollBar()->sizeHint().height();
    return {QTreeView::minimumSizeHint().width(), bars + 2 * row + 2 * frameWidth()};
}

void Grid::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (list_.proxy().rowCount() > 0 || emptyText_.isEmpty()) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(Tones(palette()).dimmed);
    const int lines = 2 * fontMetrics().lineSpacing();
    const int above = std::clamp((viewport()->height() - lines) / 2, 0, 24);
    const QRect area = viewport()->rect().adjusted(24, above, -24, 0);
    painter.drawText(area, static_cast<int>(Qt::AlignHCenter | Qt::AlignTop) | Qt::TextWordWrap,
                     emptyText_);
}

void Grid::showEvent(QShowEvent* event) {
    measure();
    QTreeView::showEvent(event);
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
        measure();
        fit();
    }
}

void Grid::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        // Held down, a key acts once: the next row it would be about nobody has looked at yet.
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!held_.isRepeat()) {
                emit openAsked();
            }
            break;
        case Qt::Key_Delete:
            if (!held_.isRepeat()) {
                emit dismissAsked(event->modifiers().testFlag(Qt::ShiftModifier));
            }
            break;
        case Qt::Key_Escape:  // Qt would look for a row that begins with it
            event->ignore();
            break;
        case Qt::Key_F10:
            if (event->modifiers() == Qt::ShiftModifier) {  // for who has no menu key
                emit menuAsked(menuPlace());
                break;
            }
            QTreeView::keyPressEvent(event);
            break;
        default:
            QTreeView::keyPressEvent(event);
            // Qt scrolls to another row, not back to the one that is current already.
            if (event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
                showCurrentRow();
            }
    }
}

// Below the row that it is about.
QPoint Grid::menuPlace() const {
    const QRect row = visualRect(currentIndex()) & viewport()->rect();
    return viewport()->mapToGlobal(row.isEmpty() ? QPoint() : row.bottomLeft());
}

void Grid::contextMenuEvent(QContextMenuEvent* event) {
    emit menuAsked(event->reason() == QContextMenuEvent::Keyboard ? menuPlace()
                                                                  : event->globalPos());
}

// Who comes by the keyboard finds a row that the buttons are about.
void Grid::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason && !selectionModel()->hasSelection() &&
        list_.proxy().rowCount() > 0) {
        setCurrentIndex(currentIndex().isValid() ? currentIndex() : list_.proxy().index(0, 0));
    }
}

// Not `activated`: where the desktop opens by a single click, that would open each row chosen.
void Grid::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->pos()).isValid()) {
        emit openAsked();
    }
}

Grid::Place Grid::place() const {
    Place place;
    const QModelIndex top = indexAt(QPoint(1, 1));
    if (top.isValid()) {
        place.top = plainText(list_.proxy().row(top.row()).GUID);
        place.topOffset = visualRect(top).top();
    }
    place.scroll = verticalScrollBar()->value();
    place.scrollX = horizontalScrollBar()->value();
    return place;
}

void Grid::restore(const Place& place) {
    // The rows are laid out first, or the scroll bar still has no range.
    doItemsLayout();
    const QModelIndex top = list_.proxy().indexOf(place.top);
    verticalScrollBar()->setValue(place.scroll);
    // At its top a list stays there: what comes above the first row is to be seen.
    if (place.scroll > 0 && !place.top.empty() && top.isValid()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + visualRect(top).top() -
                                      place.topOffset);
    }
    horizontalScrollBar()->setValue(place.scrollX);
}

}  // namespace vl
