// One of the window's three lists: rows, order, search and selection, whether a grid shows them or
// not.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QItemSelectionModel>

#include "notify/ReminderScreen.h"
#include "ui/GridModel.h"
#include "ui/GridProxy.h"

namespace vl {

/// Rows are keyed by GUID (without regard to case). A refill keeps what the user has selected and
/// the current row; where the current row is gone, the one that took its place becomes current. Ten
/// thousand rows are refilled and sorted in well under a quarter of a second.
class GridList final : public QObject {
    Q_OBJECT

public:
    /// `grid` is 0 new reminders, 1 all reminders, 2 events. Sorted as at first: by the reminder's
    /// time, or the event's date.
    GridList(int grid, TimeText timeText, QObject* parent = nullptr);

    int grid() const { return grid_; }
    const GridModel& rows() const { return model_; }
    GridProxy& proxy() { return proxy_; }
    const GridProxy& proxy() const { return proxy_; }
    QItemSelectionModel& selection() { return selection_; }
    const QItemSelectionModel& selection() const { return selection_; }

    /// Sorts by a column, and from then on whenever rows come or change.
    void sortBy(std::string_view column, bool descending);
    /// Sorts again by the column the list remembers.
    void DoSort();

    void setRows(std::vector<GridRow> rows);
    void putRow(GridRow row);
    /// Where that was the only selected row, the one that is current then is selected.
    bool RemoveGUID(std::string_view GUID);
    /// The same for several, in one go where they are many.
    void RemoveGUIDs(const std::vector<std::string>& GUIDs);

    /// Makes the row current, alone selected and visible. False when it is not shown.
    bool SelectGUID(std::string_view GUID);
    void selectFirst();
    /// The row after that of `GUID`, or the one before it where that is the last; empty for none.
    std::string neighbourOf(std::string_view GUID) const;
    /// Of the selected rows, from top to bottom.
    std::vector<std::string> SelectedGUIDs() const;
    /// The same rows as they stand now.
    std::vector<GridRow> selectedRows() const;
    /// Null when no row is current.
    const GridRow* currentRow() const;

    void renewFields() { model_.renewFields(); }
    void setNow(DateTime now) { model_.setNow(now); }
    void setDismissedView(bool on) { model_.setDismissedView(on); }
    /// What was chosen is chosen again when the search shows it again, unless the user has chosen
    /// something else meanwhile.
    void setSearch(const QString& search);

    bool contains(std::string_view GUID) const { return model_.find(GUID).has_value(); }
    std::size_t rowCount() const { return model_.rows().size(); }
    /// Rows are there, but the search shows none of them.
    bool allFilteredOut() const { return rowCount() > 0 && proxy_.rowCount() == 0; }

signals:
    /// Another row is current, or the current row shows something else.
    void currentRowChanged();
    /// The number of rows has changed.
    void countChanged();
    /// Other rows are selected.
    void chosenRowsChanged();
    /// The row was chosen by somebody else than the user: it is to be brought into view.
    void rowAsked(const QModelIndex& at);
    /// The row that the user has chosen is shown again.
    void rowInView(const QModelIndex& at);
    /// Before and after all rows are replaced by others; what is selected is still and again so.
    void refilling();
    void refilled();

private:
    struct Choice;
    void onSelectionChanged();
    void onCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    void onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    std::vector<int> selectedPositions() const;
    QItemSelection shownOf(const std::vector<std::string>& GUIDs) const;
    Choice choice() const;
    void choose(const Choice& choice);
    void chooseAgain();

    int grid_;
    GridModel model_;
    GridProxy proxy_;
    QItemSelectionModel selection_;
    // What the user chose last, for when a search has hidden it.
    std::vector<std::string> chosen_;
    std::string chosenCurrent_;
    bool filtering_ = false;
};

/// One for each grid, in the order of the tabs.
using GridLists = std::array<std::unique_ptr<GridList>, kGridCount>;

}  // namespace vl
