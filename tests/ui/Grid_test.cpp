#include "ui/Grid.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "Rows.h"

namespace vl {
namespace {

using test::clockText;
using test::reminderRow;
using test::someFriday;

std::vector<GridRow> manyRows(int n) {
    std::vector<GridRow> rows;
    rows.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        // Out of order on purpose: 7919 is a prime.
        rows.push_back(reminderRow("{" + std::to_string(i) + "}",
                                   "Reminder " + std::to_string(i * 7919 % n), i * 7919 % n));
    }
    return rows;
}

class GridTest : public testing::Test {
protected:
    GridTest() {
        grid.InitGrid();
        list.setNow(someFriday());
        grid.resize(500, 300);
        grid.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&grid));
    }
    std::string current() const {
        return list.currentRow() ? plainText(list.currentRow()->GUID) : "";
    }

    GridList list{0, clockText};
    ColumnWidths widths;
    Grid grid{list, widths};
};

TEST_F(GridTest, BeginsSortedByTheReminder) {
    list.setRows({reminderRow("late", "a", 50), reminderRow("early", "b", 10)});
    list.selectFirst();
    EXPECT_EQ(current(), "early");
}

TEST_F(GridTest, ARefillKeepsSelectionCurrentRowAndPlace) {
    std::vector<GridRow> rows = manyRows(200);
    list.setRows(rows);
    ASSERT_TRUE(list.SelectGUID("{100}"));
    grid.selectionModel()->select(grid.indexBelow(grid.currentIndex()),
                                  QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const auto selected = list.SelectedGUIDs();
    ASSERT_EQ(selected.size(), 2U);
    const int y = grid.visualRect(grid.currentIndex()).top();

    // Another order, one row less above the current one, one more at the end.
    rows.erase(
        std::find_if(rows.begin(), rows.end(), [](const auto& r) { return r.GUID == "{0}"; }));
    std::reverse(rows.begin(), rows.end());
    rows.push_back(reminderRow("new", "new", 5000));
    QSignalSpy resets(grid.model(), &QAbstractItemModel::modelReset);
    list.setRows(rows);
    ASSERT_EQ(resets.count(), 1);
    EXPECT_EQ(current(), "{100}");
    EXPECT_EQ(list.SelectedGUIDs(), selected);
    EXPECT_EQ(grid.visualRect(grid.currentIndex()).top(), y);
}

TEST_F(GridTest, AtItsTopAListStaysThere) {
    std::vector<GridRow> rows = manyRows(50);
    list.setRows(rows);
    list.selectFirst();
    rows.push_back(reminderRow("first", "above all others", -100));
    list.setRows(rows);
    EXPECT_EQ(grid.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(grid.indexAt(QPoint(1, 1)).data(GridModel::SummaryRole).toString() ==
                "above all others");
}

TEST_F(GridTest, HomeAndEndBringTheirRowWherever) {
    list.setRows(manyRows(50));
    list.selectFirst();
    grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum());
    QTest::keyClick(&grid, Qt::Key_Home);
    EXPECT_EQ(grid.verticalScrollBar()->value(), 0);
    QTest::keyClick(&grid, Qt::Key_End);
    grid.verticalScrollBar()->setValue(0);
    QTest::keyClick(&grid, Qt::Key_End);
    EXPECT_GE(grid.verticalScrollBar()->value(), grid.verticalScrollBar()->maximum() - 1);
}

TEST_F(GridTest, WhenTheCurrentRowIsGoneItsNeighbourIsCurrent) {
    std::vector<GridRow> rows{reminderRow("a", "a", 1), reminderRow("b", "b", 2),
                              reminderRow("c", "c", 3)};
    list.setRows(rows);
    list.SelectGUID("b");
    rows.erase(rows.begin() + 1);
    list.setRows(rows);
    EXPECT_EQ(current(), "c");
    EXPECT_EQ(list.SelectedGUIDs(), std::vector<std::string>{"c"});
    list.setRows({});
    EXPECT_EQ(current(), "");
    EXPECT_TRUE(list.SelectedGUIDs().empty());
}

TEST_F(GridTest, WhenTheCurrentRowIsTakenOutTheNextOneIsCurrent) {
    list.setRows({reminderRow("a", "a", 1), reminderRow("b", "b", 2), reminderRow("c", "c", 3)});
    list.SelectGUID("b");
    list.RemoveGUID("b");
    EXPECT_EQ(current(), "c");
    EXPECT_EQ(list.SelectedGUIDs(), std::vector<std::string>{"c"});
    list.RemoveGUID("c");
    EXPECT_EQ(current(), "a") << "there is none after it";
}

TEST_F(GridTest, PutsARowOnceAndRemovesItOnce) {
    list.putRow(reminderRow("a", "x", 0));
    list.putRow(reminderRow("A", "y", 0));
    EXPECT_EQ(list.rowCount(), 1U);
    EXPECT_TRUE(list.RemoveGUID("A"));
    EXPECT_FALSE(list.RemoveGUID("A"));
}

TEST_F(GridTest, TellsWhenTheCurrentRowShowsSomethingElse) {
    list.setRows({reminderRow("a", "x", 0), reminderRow("b", "y", 1)});
    QSignalSpy told(&list, &GridList::currentRowChanged);
    list.SelectGUID("a");
    EXPECT_EQ(told.count(), 1);
    list.putRow(reminderRow("b", "z", 1));
    EXPECT_EQ(told.count(), 1);
    list.putRow(reminderRow("a", "z", 0));
    EXPECT_EQ(told.count(), 2);
}

TEST_F(GridTest, ASearchThatFindsNothingIsKnownAsSuch) {
    EXPECT_FALSE(list.allFilteredOut());
    list.setRows({reminderRow("a", "x", 0)});
    list.setSearch("nowhere");
    EXPECT_TRUE(list.allFilteredOut());
    EXPECT_FALSE(list.SelectGUID("a"));
    EXPECT_EQ(list.rowCount(), 1U);
}

TEST_F(GridTest, TheSubjectTakesTwoLines) {
    list.setRows({reminderRow("a", "x", 0)});
    EXPECT_GE(grid.visualRect(grid.model()->index(0, 0)).height(),
              grid.fontMetrics().height() * 9 / 5);
}

TEST_F(GridTest, TenThousandRowsAreNoHitch) {
    const std::vector<GridRow> rows = manyRows(10000);
    QElapsedTimer timer;
    const auto measure = [&timer](const char* what, int limit, auto&& step) {
        timer.start();
        step();
        const auto took = static_cast<int>(timer.elapsed());
        testing::Test::RecordProperty(what, took);
        std::cout << what << ": " << took << " ms\n";
        EXPECT_LT(took, limit) << what;
    };
    // Limits are ten times what it takes on a slow machine: they are to catch squares.
    measure("first fill", 2500, [&] { list.setRows(rows); });
    measure("equal refill", 1000, [&] { list.setRows(rows); });
    measure("sort by subject", 2500, [&] { grid.sortByColumn(0, Qt::AscendingOrder); });
    std::vector<GridRow> fewer(rows.begin() + 1, rows.end());
    measure("refill less one", 2500, [&] { list.setRows(fewer); });
    measure("a minute later", 1000, [&] { list.setNow(someFriday().addMinutes(1)); });
    measure("search", 1000, [&] { list.setSearch("999"); });
    measure("search undone", 2500, [&] { list.setSearch(""); });
    measure("one row", 200, [&] { list.putRow(reminderRow("one", "more", 7)); });
}

}  // namespace
}  // namespace vl
