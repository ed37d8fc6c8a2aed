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

/// The event E at 4.
class SkippedNight : public testing::TestWithParam<Case> {
protected:
    static void putE(Desk& desk, std::initializer_list<int> minutes) {
        desk.clock.time = night(0, 0);
        const auto event = GetParam().repeats
                               ? series("E", night(4, 0), "FREQ=DAILY;COUNT=1", minutes)
                               : single("E", night(4, 0), minutes);
        if (*GetParam().zone != '\0') {
            event->JSON = std::string(R"({"start":{"timeZone":")") + GetParam().zone + "\"}}";
        }
        desk.put(event);
        EXPECT_EQ(desk.check(), "");
    }
    const test::ZoneForTest here{"Europe/Berlin"};
};

class SkippedHour : public SkippedNight {
protected:
    /// With reminders before, in and after what is skipped.
    SkippedHour() {
        putE(desk, {125, 90, 75, 45, 30, 15, 0});
        EXPECT_EQ(desk.run(night(1, 58)), "E 29 04:00 (29 01:55)");
        desk.dismiss("E");
        EXPECT_EQ(desk.run(night(1, 58, 50)), "");
    }
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

/// The list has taken the first reminder that is skipped before clocks do so.
class SkippedEarly : public SkippedNight {
protected:
    static void dismissFirst(Desk& desk, std::initializer_list<int> minutes, bool restarts) {
        putE(desk, minutes);
        EXPECT_EQ(desk.check(night(1, 59, 52)), "E 29 04:00 (29 02:00)");
        desk.clock.time = night(1, 59, 55);
        desk.dismiss("E");
        if (restarts) {
            desk.start();
        }
        EXPECT_EQ(desk.check(night(1, 59, 58)), "") << "it is dealt with";
        if (restarts) {
            desk.start();
        }
    }
};

TEST_P(SkippedEarly, TheOthersComeWhenClocksHaveSkippedThem) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk desk;
        dismissFirst(desk, {120, 90, 75, 60, 45}, restarts);
        EXPECT_EQ(desk.check(night(3, 0, 2)), "E 29 04:00 (29 02:30)");
        if (restarts) {
            desk.start();
            EXPECT_NE(desk.check(night(3, 0, 4)), "") << "it stands in the list";
        }
        desk.clock.time = night(3, 0, 8);
        desk.dismiss("E");
        EXPECT_EQ(desk.run(night(3, 15)), "E 29 04:00 (29 03:15)") << "with all up to then";
    }
}

TEST_P(SkippedEarly, SoDoesTheOneAtTheEndOfIt) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk desk;
        dismissFirst(desk, {120, 60}, restarts);
        EXPECT_EQ(desk.check(night(3, 0, 2)), "E 29 04:00 (29 03:00)");
        desk.clock.time = night(3, 0, 8);
        desk.dismiss("E");
        EXPECT_EQ(desk.run(night(3, 15)), "");
    }
}

TEST_P(SkippedEarly, WhatWasDismissedDoesNot) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk desk;
        dismissFirst(desk, {120, 45}, restarts);
        EXPECT_EQ(desk.run(night(3, 14)), "");
        EXPECT_EQ(desk.run(night(3, 15)), "E 29 04:00 (29 03:15)");
    }
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

const auto kCases =
    testing::Values(Case{"OfNoZone", "", false}, Case{"OfThisZone", "Europe/Berlin", false},
                    Case{"OfAnother", "Africa/Cairo", false}, Case{"SeriesOfNoZone", "", true},
                    Case{"SeriesOfThisZone", "Europe/Berlin", true});
const auto kName = [](const auto& one) { return std::string(one.param.name); };
INSTANTIATE_TEST_SUITE_P(Events, SkippedHour, kCases, kName);
INSTANTIATE_TEST_SUITE_P(Events, SkippedEarly, kCases, kName);

}  // namespace
}  // namespace vl
