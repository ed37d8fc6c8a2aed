// Reminders whose times clocks skip.
#include <gtest/gtest.h>

#include "../model/ZoneForTest.h"
#include "Desk.h"

namespace vl {
namespace {

using test::Desk;
using test::series;
using test::single;

/// In the night in which the clocks of Berlin go from 2 to 3.
DateTime night(int hour, int minute, int second = 0) {
    return DateTime::fromCivil(2026, 3, 29, hour, minute, second);
}

struct Case {
    const char* name;
    const char* zone;  ///< in the event's JSON
    bool repeats;
};

class SkippedHour : public testing::TestWithParam<Case> {
protected:
    /// At 4, with reminders before, in and after what is skipped.
    SkippedHour() {
        desk.clock.time = night(0, 0);
        const std::initializer_list<int> minutes{125, 90, 75, 45, 30, 15, 0};
        const auto event = GetParam().repeats
                               ? series("E", night(4, 0), "FREQ=DAILY;COUNT=1", minutes)
                               : single("E", night(4, 0), minutes);
        if (*GetParam().zone != '\0') {
            event->JSON = std::string(R"({"start":{"timeZone":")") + GetParam().zone + "\"}}";
        }
        desk.put(event);
        EXPECT_EQ(desk.check(), "");
        EXPECT_EQ(desk.run(night(1, 58)), "E 29 04:00 (29 01:55)");
        desk.dismiss("E");
        EXPECT_EQ(desk.run(night(1, 58, 50)), "");
    }
    const test::ZoneForTest here{"Europe/Berlin"};
    Desk desk;
};

TEST_P(SkippedHour, WhatComesAfterItComes) {
    EXPECT_EQ(desk.check(night(3, 0)), "E 29 04:00 (29 02:30)");
    desk.dismiss("E");
    EXPECT_EQ(desk.run(night(3, 15)), "E 29 04:00 (29 03:15)");
    desk.dismiss("E");
    EXPECT_EQ(desk.run(night(3, 30)), "E 29 04:00 (29 03:30)");
    desk.dismiss("E");
    desk.start();
    EXPECT_EQ(desk.run(night(3, 45)), "E 29 04:00 (29 03:45)");
    desk.dismiss("E");
    EXPECT_EQ(desk.run(night(4, 0)), "E 29 04:00 (29 04:00)");
}

TEST_P(SkippedHour, ASnoozeEndsWhatItSkipped) {
    EXPECT_EQ(desk.check(night(3, 0)), "E 29 04:00 (29 02:30)");
    desk.snooze("E", 5);
    EXPECT_EQ(desk.run(night(3, 5)), "E 29 04:00 (29 03:05)");
    desk.dismiss("E");
    EXPECT_EQ(desk.run(night(3, 15)), "E 29 04:00 (29 03:15)");
}

TEST_P(SkippedHour, WhatStandsInTheListDoesSoAfterARestart) {
    EXPECT_EQ(desk.check(night(3, 0)), "E 29 04:00 (29 02:30)");
    desk.start();
    EXPECT_NE(desk.check(night(3, 1)), "");
    EXPECT_EQ(desk.check(night(3, 2)), "");
    desk.dismiss("E");
    EXPECT_EQ(desk.check(night(3, 3)), "");
    EXPECT_EQ(desk.run(night(3, 15)), "E 29 04:00 (29 03:15)");
}

// The host names the start as the series does, though no clock shows it.
TEST(SkippedStart, IsTakenAwayByItsException) {
    const test::ZoneForTest here("Europe/Berlin");
    for (const auto replaced : {night(2, 30), night(3, 30)}) {
        Desk desk;
        desk.clock.time = DateTime::fromCivil(2026, 3, 28, 12, 0, 0);
        const auto master =
            series("M", DateTime::fromCivil(2026, 3, 20, 2, 30, 0), "FREQ=DAILY", {15});
        desk.put(master);
        const auto moved = single("X", night(20, 0), {15});
        moved->RecurrenceState = 3;
        moved->recurringEventId = master->id;
        moved->RExceptionStartTimeOrig = replaced;
        desk.put(moved);
        desk.check();
        EXPECT_EQ(desk.run(night(20, 0), 60), "X 29 20:00 (29 19:45)");
    }
}

INSTANTIATE_TEST_SUITE_P(Events, SkippedHour,
                         testing::Values(Case{"OfNoZone", "", false},
                                         Case{"OfThisZone", "Europe/Berlin", false},
                                         Case{"OfAnother", "Africa/Cairo", false},
                                         Case{"SeriesOfNoZone", "", true},
                                         Case{"SeriesOfThisZone", "Europe/Berlin", true}),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vl
