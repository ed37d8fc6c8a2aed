#include "ui/GridUtils.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include "Rows.h"
#include "ui/Grid.h"

namespace vl {
namespace {

QWheelEvent wheel(QPoint rotation, QPoint pixels = {}, Qt::KeyboardModifiers keys = {}) {
    return {QPointF(10, 10),
            QPointF(10, 10),
            pixels,
            rotation,
            Qt::NoButton,
            keys,
            Qt::NoScrollPhase,
            false};
}

void turn(Grid& grid, QPoint rotation) {
    QWheelEvent event = wheel(rotation);
    QApplication::sendEvent(grid.viewport(), &event);
}

/// A grid with more rows than it can show.
class Subclassing : public testing::Test {
protected:
    Subclassing() {
        constexpr int kRows = 200;
        std::vector<GridRow> rows;
        rows.reserve(kRows);
        for (int i = 0; i < kRows; ++i) {
            rows.push_back(
                test::reminderRow("{" + std::to_string(i) + "}", "Row " + std::to_string(i), i));
        }
        grid.resize(300, 200);
        grid.InitGrid();
        list.setRows(std::move(rows));
        grid.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&grid));
    }
    GridUtils::Receiver note() {
        return [this](QAbstractScrollArea& from, const WheelTurn& t) { turned(from, t); };
    }
    void turned(const QAbstractScrollArea& from, const WheelTurn& t) {
        EXPECT_EQ(&from, &grid);
        turns.push_back(t.rotation);
    }
    int place() const { return grid.verticalScrollBar()->value(); }

    GridList list{1, [](DateTime) { return std::string(); }};
    ColumnWidths widths;
    Grid grid{list, widths};
    std::vector<QPoint> turns;
};

TEST_F(Subclassing, HandsWheelMessagesOnInsteadOfScrolling) {
    GridUtils utils;
    utils.subclass(grid, note());
    turn(grid, {0, -120});
    turn(grid, {120, 0});
    EXPECT_EQ(turns, (std::vector{QPoint(0, -120), QPoint(120, 0)}));
    EXPECT_EQ(place(), 0);
    QTest::keyClick(&grid, Qt::Key_End);
    EXPECT_GT(place(), 0) << "all other messages go where they went";
}

TEST_F(Subclassing, GivesThemBackWhenItIsRemoved) {
    GridUtils utils;
    utils.subclass(grid, note());
    utils.removeSubclass(grid);
    utils.removeSubclass(grid);
    turn(grid, {0, -120});
    EXPECT_TRUE(turns.empty());
    EXPECT_GT(place(), 0);
}

TEST_F(Subclassing, TwiceIsOnce) {
    GridUtils utils;
    utils.subclass(grid, note());
    utils.subclass(grid, note());
    turn(grid, {0, -120});
    EXPECT_EQ(turns.size(), 1U);
    utils.removeSubclass(grid);
    turn(grid, {0, -120});
    EXPECT_EQ(turns.size(), 1U);
}

TEST_F(Subclassing, IsNotDoneInADevelopmentRun) {
    GridUtils utils(true);
    utils.subclass(grid, note());
    turn(grid, {0, -120});
    utils.removeSubclass(grid);
    EXPECT_TRUE(turns.empty());
    EXPECT_GT(place(), 0);
}

TEST_F(Subclassing, OutlivesTheGrid) {
    GridUtils utils;
    {
        GridList others(2, [](DateTime) { return std::string(); });
        ColumnWidths otherWidths;
        Grid other(others, otherWidths);
        utils.subclass(other, note());
    }
    utils.subclass(grid, note());
    turn(grid, {0, 120});
    EXPECT_EQ(turns.size(), 1U);
}

TEST(WheelTurn, SaysHowFarAndBy) {
    WheelTurn t = wheelTurn(wheel({15, -30}));
    EXPECT_EQ(t.rotation, QPoint(15, -30));
    EXPECT_TRUE(t.pixels.isNull());
    EXPECT_FALSE(t.pages);
    t = wheelTurn(wheel({0, 120}, {0, 7}, Qt::ControlModifier));
    EXPECT_EQ(t.pixels, QPoint(0, 7));
    EXPECT_TRUE(t.pages);
    EXPECT_TRUE(wheelTurn(wheel({0, 120}, {}, Qt::ShiftModifier)).pages);
    EXPECT_FALSE(wheelTurn(wheel({0, 120}, {}, Qt::AltModifier)).pages);
}

TEST(TakeScroll, SlowTurnsAddUpToFastOnes) {
    for (const int perNotch : {1, 3, 90, 121, 400}) {
        for (const int eighths : {1, -1, 7, -15, 120, 360}) {
            SCOPED_TRACE(testing::Message() << perNotch << " by " << eighths);
            int rotation = 0;
            int rest = 0;
            int moved = 0;
            for (int i = 0; i < 120; ++i) {
                rotation += eighths;
                moved += takeScroll(rotation, rest, perNotch);
                ASSERT_EQ(rotation, 0);
            }
            EXPECT_EQ(moved, perNotch * eighths);
            EXPECT_EQ(rest, 0);
        }
    }
}

}  // namespace
}  // namespace vl
