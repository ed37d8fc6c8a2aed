// What shows one of the window's three lists: columns, scrolling, painting, keys and mouse.
#pragma once

#include <functional>
#include <memory>

#include <QTreeView>

#include "ui/ColumnLayout.h"
#include "ui/GridList.h"
#include "ui/HeldKey.h"
#include "ui/ShownColumns.h"

namespace vl {

/// A refill of the list keeps the place in it and the focus. What is selected is the list's.
class Grid final : public QTreeView {
    Q_OBJECT

public:
    /// `list` and `widths`, which are its columns', must outlive the grid.
    Grid(GridList& list, ColumnWidths& widths, QWidget* parent = nullptr);
    ~Grid() override;

    GridList& list() { return list_; }
    const GridList& list() const { return list_; }

    /// Order, widths and sorting as they are at first: by the reminder's time, or the event's date.
    void InitGrid();
    /// These four as `ShownColumns` has them.
    void arrange(const ColumnLayout& layout) { columns_.arrange(layout); }
    ColumnLayout columnLayout() const { return columns_.layout(); }
    int unit() const { return columns_.unit(); }
    void showColumn(int column, bool shown) { columns_.show(column, shown); }
    /// Scrolls one step: by so many pixels down and to the right, as far as there is something.
    void ScrollDown(int down, int right = 0);
    /// Scrolls as far as it takes to have the current row in view.
    void showCurrentRow();
    /// What is at the upper edge stays there while rows are taken out and put in again.
    void keepScrollPlace(const std::function<void()>& change);

    /// What an empty grid says.
    void setEmptyText(const QString& text);
    const QString& emptyText() const { return emptyText_; }

    /// Two rows are seen whatever the size of the window.
    QSize minimumSizeHint() const override;

signals:
    /// Columns have been moved, resized, shown, hidden, or the rows sorted by another one.
    void columnsChanged();
    /// Double click, Enter.
    void openAsked();
    /// Delete; with Shift the user wants to choose.
    void dismissAsked(bool choose);
    /// By the mouse or by the menu key; `at` is a place on the screen.
    void menuAsked(const QPoint& at);
    void headingMenuAsked(const QPoint& at);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    struct Place;
    void wireHeader();
    void wireList();
    QPoint menuPlace() const;
    void onRowAsked(const QModelIndex& at);
    Place place() const;
    void restore(const Place& place);

    GridList& list_;
    ShownColumns columns_;
    HeldKey held_;
    QString emptyText_;
    // Where the list stood before a refill that is under way.
    std::unique_ptr<Place> before_;
};

}  // namespace vl
