#include "ui/Grid.h"

#include <algorithm>
#include <utility>

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

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

Grid::Grid(GridList& list, ColumnWidths& widths, QWidget* parent)
    : QTreeView(parent), list_(list), columns_(*this, list, widths) {
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
    columns_.watch();
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
        columns_.measure();
        restore(*before_);
    });
}

void Grid::wireHeader() {
    connect(&columns_, &ShownColumns::changed, this, &Grid::columnsChanged);
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        emit headingMenuAsked(header()->viewport()->mapToGlobal(at));
    });
}

void Grid::InitGrid() { arrange(firstLayout(list_.grid(), unit())); }

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
    columns_.measure();
    QTreeView::showEvent(event);
}

void Grid::resizeEvent(QResizeEvent* event) {
    if (event->size().width() != event->oldSize().width()) {
        columns_.fit();  // first, or a scroll bar would come and go
    }
    QTreeView::resizeEvent(event);
}

void Grid::changeEvent(QEvent* event) {
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        columns_.measure();
        columns_.fit();
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
