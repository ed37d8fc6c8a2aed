// The columns of a grid as they are shown.
#pragma once

#include <vector>

#include <QObject>
#include <QTimer>

#include "notify/ReminderState.h"
#include "ui/ColumnLayout.h"
#include "ui/GridList.h"

class QTreeView;

namespace vl {

/// Order, widths, what is hidden and what the rows are sorted by. Where the user has not chosen
/// widths, the columns fit into the grid, however large it gets, and dates are wide enough for what
/// they say.
class ShownColumns final : public QObject {
    Q_OBJECT

public:
    /// `grid` shows `list`; `widths` are those of its columns. All must outlive it.
    ShownColumns(QTreeView& grid, const GridList& list, ColumnWidths& widths);

    /// From now on the user's changes are taken up. The grid has its header and its model.
    void watch();

    void arrange(const ColumnLayout& layout);
    ColumnLayout layout() const;
    /// Hidden, a column keeps its width and its place.
    void show(int column, bool shown);
    /// The width of an average character, which first widths are counted in.
    int unit() const;

    /// Looks what the columns need for what they say, at once or when all of it is said.
    void measure();
    void measureSoon();
    /// Into the width that the grid has.
    void fit();

signals:
    /// Moved, resized, shown, hidden, or the rows sorted by another one.
    void changed();

private:
    void sectionResized(int column, int width);
    int& widthOf(int column) const;
    void setWidths(const ColumnLayout& layout);

    QTreeView& grid_;
    const GridList& list_;
    ColumnWidths& widths_;    // also of the hidden ones
    std::vector<int> needs_;  // for what the columns say, see `fitColumns`
    QTimer measuring_;        // once, when rows have come
    bool sized_ = false;      // by the user
    bool fitting_ = false;    // by the program itself, just now
};

}  // namespace vl
