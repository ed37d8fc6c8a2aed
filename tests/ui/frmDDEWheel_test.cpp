#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include "WindowTest.h"

namespace vl {
namespace {

/// The window shown, with more rows in each grid than fit.
class frmDDEWheel : public test::WindowTest {
protected:
    void show() {
        load();
        window->resize(500, 300);
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        for (int i = 0; i < kGridCount; ++i) {
            std::vector<GridRow> rows;
            rows.reserve(100);
            for (int n = 0; n < 100; ++n) {
                rows.push_back(test::reminderRow("{" + std::to_string(n) + "}", "Meeting", n));
            }
            grid(i).list().setRows(std::move(rows));
        }
        child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
        idle();
    }
    /// Waits until the actions timer has stopped itself.
    void idle() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return !timer("TimerActions").isActive(); }));
        EXPECT_EQ(state.pendingActions->Count(), 0U);
    }
    QTimer& timer(const char* name) const { return child<QTimer>(name); }
    static void turn(Grid& grid, QPoint rotation, QPoint pixels = {},
                     Qt::KeyboardModifiers keys = {}) {
        const QPointF at(20, 20);
        QWheelEvent event(at, at, pixels, rotation, Qt::NoButton, keys, Qt::NoScrollPhase, false);
        QApplication::sendEvent(grid.viewport(), &event);
    }
    int down(int i) const { return grid(i).verticalScrollBar()->value(); }
    int across(int i) const { return grid(i).horizontalScrollBar()->value(); }
    int notch(int i) const {
        return QApplication::wheelScrollLines() * grid(i).verticalScrollBar()->singleStep();
    }
};

TEST_F(frmDDEWheel, AsksFirstAndScrollsOutsideOfTheMessage) {
    show();
    turn(grid(2), {0, -120});
    EXPECT_EQ(down(2), 0);
    EXPECT_EQ(state.pendingActions->Count(), 1U);
    EXPECT_EQ(state.pendingActions->Item(1), Variant("MouseWheel"));
    EXPECT_EQ(state.iWheelRotationY, -120);
    idle();
    EXPECT_EQ(down(2), notch(2));
    EXPECT_EQ(state.iWheelRotationY, 0);
    turn(grid(2), {0, 120});
    idle();
    EXPECT_EQ(down(2), 0);
}

TEST_F(frmDDEWheel, OverThePeriodsItScrollsTheListUnlessTheUserIsThere) {
    show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const auto turnOver = [](QWidget& control) {
        const QPointF at(5, 5);
        QWheelEvent event(at, control.mapToGlobal(at), {}, QPoint(0, -120), Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&control, &event);
    };
    grid(2).setFocus();
    for (QWidget* control : {static_cast<QWidget*>(&list()), &child<QWidget>("UpDown1")}) {
        SCOPED_TRACE(plainText(control->objectName()));
        const int before = down(2);
        turnOver(*control);
        idle();
        EXPECT_EQ(state.sPeriod, "T");
        EXPECT_NE(control->focusPolicy(), Qt::WheelFocus) << "nor does it take the focus along";
        EXPECT_EQ(down(2), before + notch(2));
    }
    list().setFocus();
    turnOver(list());
    EXPECT_EQ(state.sPeriod, "D+1") << "who is there steps through them";
}

TEST_F(frmDDEWheel, AddsWhatIsTurnedMeanwhile) {
    show();
    for (int i = 0; i < 24; ++i) {
        turn(grid(2), {0, -15});
    }
    EXPECT_EQ(state.pendingActions->Count(), 1U);
    EXPECT_EQ(state.iWheelRotationY, -360);
    idle();
    EXPECT_EQ(down(2), 3 * notch(2));
}

TEST_F(frmDDEWheel, ScrollsAcrossToo) {
    show();
    ASSERT_GT(grid(2).horizontalScrollBar()->maximum(), 0);
    turn(grid(2), {-40, 0});
    EXPECT_EQ(state.iWheelRotationX, -40);
    idle();
    EXPECT_GT(across(2), 0);
    EXPECT_EQ(down(2), 0);
}

TEST_F(frmDDEWheel, TakesPixelsAsTheyAre) {
    show();
    turn(grid(2), {0, -120}, {0, -7});
    turn(grid(2), {0, -120}, {-2, -4});
    idle();
    EXPECT_EQ(down(2), 11);
    EXPECT_EQ(across(2), 2);
}

TEST_F(frmDDEWheel, TurnsPagesWithControlOrShift) {
    show();
    turn(grid(2), {0, -120}, {}, Qt::ControlModifier);
    idle();
    EXPECT_EQ(down(2), grid(2).verticalScrollBar()->pageStep());
}

TEST_F(frmDDEWheel, KeepsWhatIsMeantForAnotherGrid) {
    show();
    turn(grid(1), {0, -120});
    turn(grid(2), {0, -240});
    EXPECT_EQ(state.pendingActions->Count(), 1U);
    idle();
    EXPECT_EQ(down(1), notch(1));
    EXPECT_EQ(down(2), 2 * notch(2));
    EXPECT_EQ(down(0), 0);
}

TEST_F(frmDDEWheel, HandlesOneRequestATick) {
    show();
    state.pendingActions->Add("something else");
    turn(grid(2), {0, -120});
    state.pendingActions->Add("mousewheel");
    timer("TimerActions").stop();  // the first one does not wait for it
    EXPECT_TRUE(QTest::qWaitFor([this] { return state.pendingActions->Count() == 2; }))
        << "what is unknown is passed over";
    EXPECT_EQ(down(2), 0);
    timer("TimerActions").start();
    EXPECT_TRUE(QTest::qWaitFor([this] { return state.pendingActions->Count() == 1; }));
    EXPECT_EQ(down(2), notch(2));
    idle();
}

TEST_F(frmDDEWheel, StopsItsTimerWhenThereIsNothingToDo) {
    show();
    EXPECT_EQ(timer("TimerActions").interval(), 50);
    turn(grid(2), {0, 120});
    EXPECT_TRUE(timer("TimerActions").isActive());
    idle();
}

TEST_F(frmDDEWheel, ScrollsInItsOwnWayInADevelopmentRun) {
    DebugMode = true;
    GridUtils none(true);
    window = std::make_unique<frmDDE>(parts(none));
    window->Load();
    turn(grid(2), {0, -120});
    EXPECT_EQ(state.pendingActions->Count(), 0U);
    EXPECT_EQ(window->CheckInterval(), 20000);
    window->ShowHide();
    EXPECT_EQ(window->CheckInterval(), 2000);
    window.reset();
}

TEST_F(frmDDEWheel, LetsTheGridsGoWhenTheProgramEnds) {
    show();
    window->Exit();
    turn(grid(2), {0, -120});
    EXPECT_EQ(state.pendingActions->Count(), 0U);
    EXPECT_EQ(down(2), notch(2));
    EXPECT_EQ(ini("Reminders", "Period"), "T") << "saved first";
}

}  // namespace
}  // namespace vl
