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
        grid.setNow(someFriday());
        grid.resize(500, 300);
        grid.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&grid));
    }
    std::string current() const {
        return grid.currentRow() ? plainText(grid.currentRow()->GUID) : "";
    }

    Grid grid{0, clockText};
};

TEST_F(GridTest, BeginsSortedByTheReminder) {
    grid.setRows({reminderRow("late", "a", 50), reminderRow("early", "b", 10)});
    grid.selectFirst();
    EXPECT_EQ(current(), "early");
}

TEST_F(GridTest, ARefillKeepsSelectionCurrentRowAndPlace) {
    std::vector<GridRow> rows = manyRows(200);
    grid.setRows(rows);
    ASSERT_TRUE(grid.SelectGUID("{100}"));
    grid.selectionModel()->select(grid.indexBelow(grid.currentIndex()),
                                  QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const auto selected = grid.SelectedGUIDs();
    ASSERT_EQ(selected.size(), 2U);
    const int y = grid.visualRect(grid.currentIndex()).top();

    // Another order, one row less above the current one, one more at the end.
    rows.erase(
        std::find_if(rows.begin(), rows.end(), [](const auto& r) { return r.GUID == "{0}"; }));
    std::reverse(rows.begin(), rows.end());
    rows.push_back(reminderRow("new", "new", 5000));
    QSignalSpy resets(grid.model(), &QAbstractItemModel::modelReset);
    grid.setRows(rows);
    ASSERT_EQ(resets.count(), 1);
    EXPECT_EQ(current(), "{100}");
    EXPECT_EQ(grid.SelectedGUIDs(), selected);
    EXPECT_EQ(grid.visualRect(grid.currentIndex()).top(), y);
}

TEST_F(GridTest, AtItsTopAListStaysThere) {
    std::vector<GridRow> rows = manyRows(50);
    grid.setRows(rows);
    grid.selectFirst();
    rows.push_back(reminderRow("first", "above all others", -100));
    grid.setRows(rows);
    EXPECT_EQ(grid.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(grid.indexAt(QPoint(1, 1)).data(GridModel::SummaryRole).toString() ==
                "above all others");
}

TEST_F(GridTest, HomeAndEndBringTheirRowWherever) {
    grid.setRows(manyRows(50));
    grid.selectFirst();
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
    grid.setRows(rows);
    grid.SelectGUID("b");
    rows.erase(rows.begin() + 1);
    grid.setRows(rows);
    EXPECT_EQ(current(), "c");
    EXPECT_EQ(grid.SelectedGUIDs(), std::vector<std::string>{"c"});
    grid.setRows({});
    EXPECT_EQ(current(), "");
    EXPECT_TRUE(grid.SelectedGUIDs().empty());
}

TEST_F(GridTest, WhenTheCurrentRowIsTakenOutTheNextOneIsCurrent) {
    grid.setRows({reminderRow("a", "a", 1), reminderRow("b", "b", 2), reminderRow("c", "c", 3)});
    grid.SelectGUID("b");
    grid.RemoveGUID("b");
    EXPECT_EQ(current(), "c");
    EXPECT_EQ(grid.SelectedGUIDs(), std::vector<std::string>{"c"});
    grid.RemoveGUID("c");
    EXPECT_EQ(current(), "a") << "there is none after it";
}

TEST_F(GridTest, PutsARowOnceAndRemovesItOnce) {
    grid.putRow(reminderRow("a", "x", 0));
    grid.putRow(reminderRow("A", "y", 0));
    EXPECT_EQ(grid.rowCount(), 1U);
    EXPECT_TRUE(grid.RemoveGUID("A"));
    EXPECT_FALSE(grid.RemoveGUID("A"));
}

TEST_F(GridTest, TellsWhenTheCurrentRowShowsSomethingElse) {
    grid.setRows({reminderRow("a", "x", 0), reminderRow("b", "y", 1)});
    QSignalSpy told(&grid, &Grid::currentRowChanged);
    grid.SelectGUID("a");
    EXPECT_EQ(told.count(), 1);
    grid.putRow(reminderRow("b", "z", 1));
    EXPECT_EQ(told.count(), 1);
    grid.putRow(reminderRow("a", "z", 0));
    EXPECT_EQ(told.count(), 2);
}

TEST_F(GridTest, ASearchThatFindsNothingIsKnownAsSuch) {
    EXPECT_FALSE(grid.allFilteredOut());
    grid.setRows({reminderRow("a", "x", 0)});
    grid.setSearch("nowhere");
    EXPECT_TRUE(grid.allFilteredOut());
    EXPECT_FALSE(grid.SelectGUID("a"));
    EXPECT_EQ(grid.rowCount(), 1U);
}

TEST_F(GridTest, TheSubjectTakesTwoLines) {
    grid.setRows({reminderRow("a", "x", 0)});
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
    measure("first fill", 2500, [&] { grid.setRows(rows); });
    measure("equal refill", 1000, [&] { grid.setRows(rows); });
    measure("sort by subject", 2500, [&] { grid.sortByColumn(0, Qt::AscendingOrder); });
    std::vector<GridRow> fewer(rows.begin() + 1, rows.end());
    measure("refill less one", 2500, [&] { grid.setRows(fewer); });
    measure("a minute later", 1000, [&] { grid.setNow(someFriday().addMinutes(1)); });
    measure("search", 1000, [&] { grid.setSearch("999"); });
    measure("search undone", 2500, [&] { grid.setSearch(""); });
    measure("one row", 200, [&] { grid.putRow(reminderRow("one", "more", 7)); });
}

}  // namespace
}  // namespace vl
