#include "ui/ColumnMenu.h"

#include <algorithm>

#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>

#include "ui/Grid.h"
#include "ui/MenuLook.h"

namespace vl {

namespace {

QString headingOf(const Grid& grid, int column) {
    return grid.model()->headerData(column, Qt::Horizontal).toString();
}

QString idOf(const Grid& grid, int column) {
    return grid.list().rows().columns()[static_cast<std::size_t>(column)].id;
}

QMenu* addMenu(QMenu& menu, const char* name, const QString& text) {
    QMenu* inside = menu.addMenu(text);
    inside->setObjectName(name);
    return inside;
}

QAction* addChecked(QMenu& menu, const QString& name, const QString& text, bool checked) {
    QAction* entry = menu.addAction(text);
    entry->setObjectName(name);
    entry->setCheckable(true);
    entry->setChecked(checked);
    return entry;
}

void addShown(QMenu& menu, Grid& grid) {
    for (int i = 0; i < grid.header()->count(); ++i) {
        QAction* entry = addChecked(menu, "mnuColumn" + idOf(grid, i), headingOf(grid, i),
                                    !grid.isColumnHidden(i));
        entry->setEnabled(idOf(grid, i) != CIDSubject);
        QObject::connect(entry, &QAction::toggled, &grid,
                         [&grid, i](bool shown) { grid.showColumn(i, shown); });
    }
}

// What a click on a heading does, and another one.
void addSorting(QMenu& menu, Grid& grid) {
    QMenu& by = *addMenu(menu, "mnuSortBy", QObject::tr("&Sort by"));
    auto* group = new QActionGroup(&by);
    group->setObjectName("grpSortBy");
    const int sorted = grid.header()->sortIndicatorSection();
    for (int i = 0; i < grid.header()->count(); ++i) {
        QAction* entry = addChecked(by, "mnuSort" + idOf(grid, i), headingOf(grid, i), i == sorted);
        group->addAction(entry);
        QObject::connect(entry, &QAction::triggered, &grid,
                         [&grid, i] { grid.sortByColumn(i, grid.header()->sortIndicatorOrder()); });
    }
    by.addSeparator();
    const bool down = grid.header()->sortIndicatorOrder() == Qt::DescendingOrder;
    const QAction* order = addChecked(by, "mnuSortDown", QObject::tr("&Descending"), down);
    QObject::connect(order, &QAction::toggled, &grid, [&grid](bool descending) {
        grid.sortByColumn(grid.header()->sortIndicatorSection(),
                          descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    });
}

// What dragging a heading does, by one place: past columns that are hidden.
void addMoves(QMenu& menu, Grid& grid, int by, const char* name, const QString& text) {
    QMenu& move = *addMenu(menu, name, text);
    QHeaderView& header = *grid.header();
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        int to = place + by;
        while (to >= 0 && to < header.count() && grid.isColumnHidden(header.logicalIndex(to))) {
            to += by;
        }
        if (grid.isColumnHidden(column) || to < 0 || to >= header.count()) {
            continue;
        }
        QAction* entry = move.addAction(headingOf(grid, column));
        entry->setObjectName(name + idOf(grid, column));
        QObject::connect(entry, &QAction::triggered, &grid,
                         [&header, place, to] { header.moveSection(place, to); });
    }
}

// What dragging a heading's edge does, by a few characters.
void addWidths(QMenu& menu, Grid& grid, int characters, const char* name, const QString& text) {
    constexpr int kLeast = 4;  // characters
    QMenu& size = *addMenu(menu, name, text);
    const QHeaderView& header = *grid.header();
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        const int width = grid.columnWidth(column) + characters * grid.unit();
        if (grid.isColumnHidden(column) || width < kLeast * grid.unit()) {
            continue;
        }
        QAction* entry = size.addAction(headingOf(grid, column));
        entry->setObjectName(name + idOf(grid, column));
        QObject::connect(entry, &QAction::triggered, &grid,
                         [&grid, column, width] { grid.setColumnWidth(column, width); });
    }
}

// Of the text, as a key gives it.
QChar letterOf(const QString& text) {
    const qsizetype at = text.indexOf(u'&');
    return at < 0 || at + 1 == text.size() ? QChar() : text[at + 1].toLower();
}

// Each entry that has no letter gets the first of its own that is free; the shortest choose first.
void giveLetters(const QMenu& menu) {
    QList<QAction*> entries = menu.actions();
    std::stable_sort(entries.begin(), entries.end(), [](const QAction* one, const QAction* other) {
        return one->text().size() < other->text().size();
    });
    QString taken;
    for (const QAction* entry : entries) {
        taken += letterOf(entry->text());
    }
    for (QAction* entry : entries) {
        QString text = entry->text();
        for (qsizetype at = 0; letterOf(text).isNull() && at < text.size(); ++at) {
            if (text[at].isLetter() && !taken.contains(text[at].toLower())) {
                taken += text[at].toLower();
                text.insert(at, u'&');
                entry->setText(text);
            }
        }
    }
}

}  // namespace

void fillColumnMenu(QMenu& menu, Grid& grid) {
    constexpr int kStep = 4;  // characters
    addShown(menu, grid);
    menu.addSeparator();
    addSorting(menu, grid);
    addMoves(menu, grid, -1, "mnuMoveLeft", QObject::tr("Move to the &left"));
    addMoves(menu, grid, 1, "mnuMoveRight", QObject::tr("Move to the ri&ght"));
    addWidths(menu, grid, kStep, "mnuWider", QObject::tr("&Wider"));
    addWidths(menu, grid, -kStep, "mnuNarrower", QObject::tr("&Narrower"));
    menu.addSeparator();
    QAction* reset = menu.addAction(QObject::tr("&Reset columns"));
    reset->setObjectName("mnuColumnsReset");
    QObject::connect(reset, &QAction::triggered, &grid, [&grid] { grid.InitGrid(); });
    giveLetters(menu);
    for (const QMenu* inside : menu.findChildren<QMenu*>()) {
        giveLetters(*inside);
    }
}

void showColumnMenu(Grid& grid, const QPoint& at) {
    QMenu menu(&grid);
    menu.setObjectName("mnuColumns");
    fillColumnMenu(menu, grid);
    applyMenuLook(menu);
    menu.exec(at);
}

}  // namespace vl
