#include "notify/UpdateCycle.h"

#include <gtest/gtest.h>

#include "CheckParts.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

class Update : public test::CheckTest {
protected:
    Update() : CheckTest(DateTime::fromCivil(2026, 11, 20, 23, 59, 50)) {}
    UpdateCycle update{cycle, clock, state, screen, false};
};

TEST_F(Update, RenewsTheViewsWhenTheDayChanges) {
    update.Tick();
    EXPECT_EQ(screen.count("DoPeriod"), 1U) << "the first day is a new one";
    update.Tick();
    EXPECT_EQ(screen.count("DoPeriod"), 1U);
    clock.time = clock.time.addSeconds(10);
    update.Tick();
    EXPECT_EQ(screen.count("DoPeriod"), 2U);
    EXPECT_EQ(state.CurrentDate, DateTime::fromCivil(2026, 11, 21));
}

TEST_F(Update, RetunesTheChecksOnlyToAnotherInterval) {
    update.Tick();
    EXPECT_EQ(screen.interval, 20000) << "hidden";
    update.Tick();
    EXPECT_EQ(screen.count("SetCheckInterval"), 1U);
    screen.visible = true;
    update.Tick();
    update.Tick();
    EXPECT_EQ(screen.interval, 10000);
    EXPECT_EQ(screen.count("SetCheckInterval"), 2U);
    UpdateCycle(cycle, clock, state, screen, true).Tick();
    EXPECT_EQ(screen.interval, 2000);
}

TEST_F(Update, NeverReachesTheGridsFromHere) {
    screen.visible = true;
    for (int i = 0; i < 100; ++i) {
        update.Tick();
        ASSERT_LT(state.UpdateCount, 10);
    }
    EXPECT_EQ(screen.count("UpdateG1"), 0U);
    EXPECT_EQ(screen.count("UpdateUI"), 100U);
}

TEST_F(Update, GoesStepByStep) {
    screen.visible = true;
    screen.interval = 20000;
    update.Tick();
    EXPECT_EQ(screen.calls, (std::vector<std::string>{"ShowTime", "DoPeriod", "UpdateUI",
                                                      "SetCheckInterval 10000"}));
}

TEST_F(Update, KeepsTheFocusAsFound) {
    screen.hasFocus = true;
    update.Tick();
    EXPECT_TRUE(state.bHasFocus);
    screen.hasFocus = false;
    update.Tick();
    EXPECT_FALSE(state.bHasFocus);
    EXPECT_EQ(screen.count("UpdateUI"), 0U) << "hidden";
}

TEST_F(Update, KeepsPendingError) {
    ErrorState::set(ErrNo::Io);
    screen.visible = true;
    update.Tick();
    EXPECT_EQ(ErrorState::number(), ErrNo::Io);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
