// One of the window's three grids: rows, sorting, searching and painting in one widget.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <QTreeView>

#include "ui/ColumnLayout.h"
#include "ui/GridModel.h"
#include "ui/GridProxy.h"

namespace vl {

/// Rows are keyed by GUID (without regard to case). A refill keeps what the user has selected, the
/// current row, the place in the list and the focus; where the current row is gone, the one that
/// took its place becomes current. Ten thousand rows are refilled and sorted in well under a
/// quarter of a second.
class Grid final : public QTreeView {
    Q_OBJECT

public:
    /// `grid` is 0 new reminders, 1 all reminders, 2 events.
    Grid(int grid, TimeText timeText, QWidget* parent = nullptr);

    /// Order, widths and sorting as they are at first: by the reminder's time, or the event's date.
    void InitGrid();
    /// Where the user has not chosen widths, the columns fit into the grid, however large it gets.
    void arrange(const ColumnLayout& layout);
    ColumnLayout columnLayout() const;
    /// The width of an average character, which first widths are counted in.
    int unit() const { return fontMetrics().averageCharWidth(); }
    /// Hidden, a column keeps its width and its place.
    void showColumn(int column, bool shown);
    /// Sorts again by the column the grid remembers.
    void DoSort();

    void setRows(std::vector<GridRow> rows);
    void putRow(GridRow row);
    /// Where that was the only selected row, the one that is current then is selected.
    bool RemoveGUID(std::string_view GUID);

    /// Makes the row current, alone selected and visible. False when it is not shown.
    bool SelectGUID(std::string_view GUID);
    void selectFirst();
    /// The row after that of `GUID`, or the one before it where that is the last; empty for none.
    std::string neighbourOf(std::string_view GUID) const;
    /// Scrolls one step: by so many pixels down and to the right, as far as there is something.
    void ScrollDown(int down, int right = 0);
    /// Of the selected rows, from top to bottom.
    std::vector<std::string> SelectedGUIDs() const;
    /// The same rows as they stand now.
    std::vector<GridRow> selectedRows() const;
    /// Null when no row is current.
    const GridRow* currentRow() const;

    void renewFields() { model_.renewFields(); }

    /// Scrolls as far as it takes to have the current row in view.
    void showCurrentRow();
    /// What is at the upper edge stays there while rows are taken out and put in again.
    void keepScrollPlace(const std::function<void()>& change);

    void setNow(DateTime now) { model_.setNow(now); }
    void setDismissedView(bool on);
    /// What was chosen is chosen again when the search shows it again, unless the user has chosen
    /// something else meanwhile.
    void setSearch(const QString& search);
    /// What an empty grid says.
    void setEmptyText(const QString& text);
    const QString& emptyText() const { return emptyText_; }

    bool contains(std::string_view GUID) const { return model_.find(GUID).has_value(); }
    std::size_t rowCount() const { return model_.rows().size(); }
    /// Rows are there, but the search shows none of them.
    bool allFilteredOut() const;
    const GridModel& rows() const { return model_; }

signals:
    /// Another row is current, or the current row shows something else.
    void currentRowChanged();
    /// The number of rows has changed.
    void countChanged();
    /// Other rows are selected.
    void chosenRowsChanged();
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
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QList<int>& roles) override;

private:
    struct Place;
    void wireHeader();
    void fit();
    void setWidths(const ColumnLayout& layout);
    std::vector<int> selectedPositions() const;
    void chooseAgain();
    Place place() const;
    void restore(const Place& place);

    GridModel model_;
    GridProxy proxy_;
    QString emptyText_;
    std::vector<int> widths_;  // by column, also of the hidden ones
    bool sized_ = false;       // by the user
    bool fitting_ = false;     // by the grid itself, just now
    int grid_;
    // What the user chose last, for when a search has hidden it.
    std::vector<std::string> chosen_;
    std::string chosenCurrent_;
    bool filtering_ = false;
};

}  // namespace vl
