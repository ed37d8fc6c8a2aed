// Clocks that are wrong, zones that change.
#include <gtest/gtest.h>

#include "../model/ZoneForTest.h"
#include "Desk.h"

namespace vl {
namespace {

using test::at;
using test::Desk;
using test::series;
using test::single;

class PendingClock : public testing::Test {
protected:
    Desk desk;
};

TEST_F(PendingClock, AWrongClockCorrectedLosesNothingThatIsToCome) {
    desk.put(single("A", at(10, 0, 0, 22), {1440, 15}));
    desk.put(single("B", at(15, 0), {15}));
    desk.check(at(12, 0, 0, 21));  // a day ahead
    ASSERT_TRUE(desk.listed.contains("A"));
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(12, 0)), "") << "corrected";
    EXPECT_EQ(desk.run(at(15, 0)), "B 20 15:00 (20 14:45)");
    EXPECT_EQ(desk.run(at(10, 0, 0, 22), 60), "A 22 10:00 (22 09:45)");
}

// ---- acts under a clock that is ahead, of hours or months

TEST_F(PendingClock, WhatIsNotOverByTheRightClockWasNotEndedByAnActUnderAWrongOne) {
    desk.put(series("A", at(10, 0, 0, 16), "FREQ=DAILY", {15}));
    desk.check(DateTime::fromCivil(2027, 2, 20, 9, 50, 0));
    ASSERT_TRUE(desk.listed.contains("A"));
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 0)), "");
    EXPECT_EQ(desk.run(at(12, 0), 60), "A 20 10:00 (20 09:45)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 50, 0, 21)), "A 21 10:00 (21 09:45)");
}

TEST_F(PendingClock, SoItIsWithAClockThatIsHoursAhead) {
    desk.put(series("A", at(8, 0), "FREQ=HOURLY", {5}));
    EXPECT_EQ(desk.check(at(12, 56)), "A 20 13:00 (20 12:55)");
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 50)), "");
    EXPECT_EQ(desk.check(at(9, 55)), "A 20 10:00 (20 09:55)");
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(10, 55)), "A 20 11:00 (20 10:55)");
}

// Also where the list knows no more of that reminder, since the host has moved the series.
TEST_F(PendingClock, ARowFromBeforeAMoveThatIsSnoozedByAClockAheadIsShownAgain) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
    EXPECT_EQ(desk.check(at(9, 46)), "A 20 10:00 (20 09:45)");
    const ActRow row = desk.listed.at("A");
    desk.change("A", [](calEvent& moved) {
        moved.StartDateTime = at(9, 58);
        moved.EndDateTime = at(10, 58);
    });
    EXPECT_EQ(desk.check(at(9, 46, 10)), "");
    desk.program->acts.Snooze(row, 10 * 1440);
    EXPECT_EQ(desk.check(at(9, 10)), "A 20 09:58 (20 09:43)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
}

TEST_F(PendingClock, ASnoozeUnderAClockThatWasPutBackTwiceComesAtItsTime) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(11, 0)), "A 20 10:00 (20 09:45)");
    desk.snooze("A", 12);
    EXPECT_EQ(desk.check(at(10, 0)), "A 20 10:00 (20 09:45)") << "in doubt";
    desk.clock.time = at(9, 0, 0, 10);
    desk.snooze("A", 19);
    EXPECT_EQ(desk.check(at(9, 18, 0, 10)), "");
    EXPECT_EQ(desk.check(at(9, 19, 0, 10)), "A 20 10:00 (10 09:19)");
}

TEST_F(PendingClock, ASnoozeUnderAClockDaysAheadSilencesNothing) {
    const auto inDecember = [](int hour, int minute, int day) {
        return DateTime::fromCivil(2026, 12, day, hour, minute, 0);
    };
    desk.put(single("A", inDecember(18, 0, 24), {1440, 15}));
    desk.check(at(9, 0));
    const std::string wrong = desk.check(DateTime::fromCivil(2027, 2, 20, 9, 0, 0));
    ASSERT_TRUE(desk.listed.contains("A")) << wrong;
    desk.snooze("A", 15);
    EXPECT_EQ(desk.check(at(9, 10)), "");
    EXPECT_EQ(desk.check(inDecember(17, 59, 23)), "");
    EXPECT_EQ(desk.check(inDecember(18, 0, 23)), "A 24 18:00 (23 18:00)") << "it was of this one";
    desk.dismiss("A");
    EXPECT_EQ(desk.check(inDecember(17, 45, 24)), "A 24 18:00 (24 17:45)");
}

TEST_F(PendingClock, ADismissalUnderAClockDaysAheadIsOfItsReminderAlone) {
    desk.put(single("A", at(18, 0, 0, 25), {1440, 15}));
    desk.check(at(9, 0));
    desk.check(at(18, 5, 0, 24));
    ASSERT_TRUE(desk.listed.contains("A"));
    desk.clock.time = at(9, 0, 0, 27);
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 1)), "");
    EXPECT_EQ(desk.check(at(18, 1, 0, 24)), "") << "that one is dealt with";
    EXPECT_EQ(desk.check(at(17, 45, 0, 25)), "A 25 18:00 (25 17:45)");
}

// An hour or more: a clock that runs by the time of another zone. Of the dismissal the reminder
// alone holds, of the snooze nothing.
TEST_F(PendingClock, WhatComesLaterComesAfterAnActUnderAClockHoursAhead) {
    for (const int hours : {1, 8, 23}) {
        for (const bool snoozes : {true, false}) {
            SCOPED_TRACE(std::to_string(hours) + (snoozes ? " snoozed" : " dismissed"));
            Desk fresh;
            fresh.put(single("A", at(11, 0), {60, 15}));
            fresh.check(at(9, 0));
            EXPECT_EQ(fresh.check(at(10, 0).addMinutes(hours * 60)), "A 20 11:00 (20 10:00)");
            if (snoozes) {
                fresh.snooze("A", 15);
            } else {
                fresh.dismiss("A");
            }
            EXPECT_EQ(fresh.check(at(10, 5)), snoozes ? "A 20 11:00 (20 10:00)" : "");
            fresh.dismiss("A");
            EXPECT_EQ(fresh.run(at(12, 0), 60), "A 20 11:00 (20 10:45)");
        }
    }
}

TEST_F(PendingClock, AnActInAnHourThatComesTwiceIsByNoWrongClock) {
    const test::ZoneForTest berlin("Europe/Berlin");
    const auto on = [](int hour, int minute) {
        return DateTime::fromCivil(2026, 10, 25, hour, minute, 0);
    };
    desk.clock.time = on(1, 0);
    desk.put(single("A", on(3, 30), {75}));
    EXPECT_EQ(desk.run(on(2, 15), 60), "A 25 03:30 (25 02:15)");
    desk.clock.time = on(2, 50);
    desk.snooze("A", 70);
    EXPECT_EQ(desk.check(on(2, 20)), "") << "half an hour later";
    EXPECT_EQ(desk.run(on(4, 0), 60), "A 25 03:30 (25 04:00)");
}

// Dealt with was what had come by then, as its user saw it there; what lies ahead here comes here.
TEST_F(PendingClock, AnActAfterAJourneyWestLeavesWhatIsStillToCome) {
    {
        const test::ZoneForTest tokyo("Asia/Tokyo");
        desk.put(single("A", at(10, 0), {15, -60, -120}));
        EXPECT_EQ(desk.check(at(18, 0)), "A 20 10:00 (20 09:45)");
        desk.dismiss("A");
    }
    const test::ZoneForTest berlin("Europe/Berlin");
    EXPECT_EQ(desk.check(at(10, 5)), "");
    desk.snooze("A", 10);
    EXPECT_EQ(desk.check(at(10, 15)), "A 20 10:00 (20 10:15)");
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(11, 0)), "A 20 10:00 (20 11:00)");
}

// What is over when it is asked for was not over when it was said to be ended.
TEST_F(PendingClock, AnActUnderAClockAheadEndsNothing) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk fresh;
        fresh.clock.time = at(8, 0, 0, 19);
        fresh.put(series("A", at(10, 0, 0, 16), "FREQ=DAILY", {15, -60}));
        EXPECT_EQ(fresh.check(at(9, 45, 0, 19)), "A 19 10:00 (19 09:45)");
        fresh.dismiss("A", DismissMode::All);
        fresh.check(DateTime::fromCivil(2027, 2, 20, 10, 0, 0));
        ASSERT_EQ(fresh.listed.at("A").InstanceStart, DateTime::fromCivil(2027, 2, 20, 10, 0, 0));
        fresh.dismiss("A");
        EXPECT_EQ(fresh.check(at(9, 50, 0, 19)), "");
        EXPECT_EQ(fresh.check(at(9, 0)), "");
        if (restarts) {
            fresh.stop();
        }
        EXPECT_EQ(fresh.check(at(10, 40)), "A 20 10:00 (20 09:45)") << "after a sleep over it";
        fresh.dismiss("A");
        EXPECT_EQ(fresh.run(at(12, 0), 60), "A 20 10:00 (20 11:00)") << "after its end";
        fresh.dismiss("A");
        fresh.check(at(9, 0, 0, 21));
        EXPECT_EQ(fresh.check(at(12, 0, 0, 22)), "A 22 10:00 (22 09:45)");
        fresh.dismiss("A", DismissMode::All);
        fresh.stop();
        EXPECT_EQ(fresh.run(at(9, 44, 0, 23), 60), "") << "that was ended by the right clock";
    }
}

TEST_F(PendingClock, AClockTurnedBackBringsNothingBack) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 40)), "");
    EXPECT_EQ(desk.run(at(11, 0)), "");
}

TEST_F(PendingClock, AnOccurrenceIsTheSameInAnotherZone) {
    for (const char* zone : {"", "America/New_York"}) {
        SCOPED_TRACE(zone);
        Desk fresh;
        {
            const test::ZoneForTest berlin("Europe/Berlin");
            fresh.put(series("A", at(16, 0), "FREQ=DAILY", {15}, zone));
            EXPECT_EQ(fresh.run(at(15, 45), 60), "A 20 16:00 (20 15:45)");
            fresh.dismiss("A");
        }
        const test::ZoneForTest tokyo("Asia/Tokyo");
        // The host writes local times: a call made in New York is eight hours later here.
        fresh.change("A", [&](calEvent& e) {
            e.StartDateTime = *zone != '\0' ? at(0, 0, 0, 21) : at(16, 0);
        });
        fresh.start();
        EXPECT_EQ(fresh.check(*zone != '\0' ? at(23, 45) : at(15, 46)), "");
        EXPECT_EQ(fresh.run(at(23, 50, 0, 21), 60),
                  *zone != '\0' ? "A 22 00:00 (21 23:45)" : "A 21 16:00 (21 15:45)");
    }
}

TEST_F(PendingClock, ASnoozeIsAMoment) {
    Desk fresh;
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        fresh.put(single("A", at(10, 0), {15}));
        fresh.run(at(9, 45));
        fresh.snooze("A", 60);  // 9:45 UTC
    }
    const test::ZoneForTest tokyo("Asia/Tokyo");
    fresh.start();
    EXPECT_EQ(fresh.check(at(18, 44)), "");
    EXPECT_EQ(fresh.check(at(18, 45)), "A 20 10:00 (20 18:45)");
}

TEST_F(PendingClock, WhatFellDueOnTheWayIntoAnotherZoneIsShown) {
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(series("A", at(16, 0), "FREQ=DAILY", {15}, "America/New_York"));
        desk.check(at(15, 40));  // 9:40 in New York
    }
    const test::ZoneForTest there("America/New_York");
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(10, 0);
        e.EndDateTime = at(10, 30);
    });
    EXPECT_EQ(desk.check(at(9, 50)), "A 20 10:00 (20 09:45)") << "the clock was not turned back";
}

TEST_F(PendingClock, ASnoozeIsAMomentAlsoForWhoTravelsMeanwhile) {
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(single("A", at(10, 0), {15}));
        desk.run(at(9, 45));
        desk.snooze("A", 435);  // until 17:00
        desk.check(at(9, 46));
    }
    const test::ZoneForTest there("America/New_York");
    EXPECT_EQ(desk.check(at(10, 50)), "");
    EXPECT_EQ(desk.check(at(11, 0)), "A 20 10:00 (20 11:00)");
}

TEST_F(PendingClock, ASingleEventWithAZoneIsTheSameInAnotherZone) {
    const auto e = single("A", at(16, 0), {15});
    e->JSON = R"({"start":{"timeZone":"America/New_York"}})";
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(e);
        EXPECT_EQ(desk.run(at(15, 45), 60), "A 20 16:00 (20 15:45)");
        desk.dismiss("A");
    }
    const test::ZoneForTest there("America/New_York");
    desk.change("A", [](calEvent& moved) {
        moved.StartDateTime = at(10, 0);
        moved.EndDateTime = at(10, 30);
    });
    EXPECT_EQ(desk.check(at(9, 50)), "") << "it was dealt with";
    desk.start();
    EXPECT_EQ(desk.check(at(9, 51)), "");
}

// A row holds local times, and does not say of which place.
TEST_F(PendingClock, ARowThatTheHostHasNotWrittenAnewMeansItsTimesHere) {
    const auto snoozed = single("B", at(16, 0), {20});
    snoozed->JSON = R"({"start":{"timeZone":"America/New_York"}})";
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(series("A", at(16, 0), "FREQ=DAILY;COUNT=1", {15}, "America/New_York"));
        desk.put(snoozed);
        desk.clock.time = at(15, 30);
        EXPECT_EQ(desk.run(at(15, 45), 60), "B 20 16:00 (20 15:40), A 20 16:00 (20 15:45)");
        desk.dismiss("A");
        desk.snooze("B", 60);  // until 16:45, there 10:45
    }
    const test::ZoneForTest there("America/New_York");
    EXPECT_EQ(desk.check(at(9, 50)), "");
    EXPECT_EQ(desk.run(at(10, 45)), "B 20 16:00 (20 10:45)") << "a snooze is a moment";
    desk.start();
    EXPECT_EQ(desk.check(at(10, 46)), "B 20 16:00 (20 10:45)");
    desk.dismiss("B");
    EXPECT_EQ(desk.run(at(15, 44), 60), "B 20 16:00 (20 15:40)");
    EXPECT_EQ(desk.run(at(15, 45)), "A 20 16:00 (20 15:45)")
        << "it is six hours later than what was dismissed";
}

// Nobody has moved what says the same time: its user is done with it.
TEST_F(PendingClock, WhatIsDoneStaysSoThereAlsoWhenTheHostWritesItsRowAgain) {
    const auto done = single("A", at(16, 0), {20});
    done->JSON = R"({"start":{"timeZone":"America/New_York"}})";
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(done);
        EXPECT_EQ(desk.run(at(15, 45), 60), "A 20 16:00 (20 15:40)");
        desk.dismiss("A", DismissMode::This, true);
        ASSERT_EQ(desk.rows.at("A")->status, "AllDone");
    }
    const test::ZoneForTest there("America/New_York");
    EXPECT_EQ(desk.check(at(9, 50)), "");
    desk.change("A", [&](calEvent& row) {
        row.status.clear();
        row.Modified = desk.clock.time;
    });
    EXPECT_EQ(desk.run(at(15, 50), 60), "");
    desk.start();
    EXPECT_EQ(desk.run(at(15, 52), 60), "");
    desk.change("A", [&](calEvent& row) {
        row.status.clear();
        row.StartDateTime = at(17, 0);
        row.EndDateTime = at(18, 0);
        row.Modified = desk.clock.time;
    });
    EXPECT_EQ(desk.run(at(16, 40), 60), "A 20 17:00 (20 16:40)") << "moved";
}

// The rows of the list are filled anew after a journey.
TEST_F(PendingClock, OfTwoOccurrencesThatAreListedTheRowIsOfTheLaterOne) {
    desk.clock.time = at(8, 0, 0, 19);
    desk.put(series("A", at(10, 0, 0, 19), "FREQ=DAILY", {15}, "Europe/Berlin"));
    EXPECT_EQ(desk.check(at(9, 45, 0, 19)), "A 19 10:00 (19 09:45)");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 50)), "A 20 10:00 (20 09:45)");
    calEvent row(*desk.rows.at("A"));
    ASSERT_TRUE(desk.program->reminders.RecordListed(row));
    EXPECT_EQ(row.InstanceStart, desk.listed.at("A").InstanceStart);
}

TEST_F(PendingClock, AnHourThatComesTwiceElsewhereSilencesNothing) {
    const test::ZoneForTest berlin("Europe/Berlin");
    const auto on = [](int hour, int minute) {
        return DateTime::fromCivil(2026, 11, 1, hour, minute, 0);
    };
    desk.put(series("A", on(8, 0), "FREQ=DAILY", {110, 50}, "America/New_York"));  // there at 2:00
    desk.clock.time = on(6, 0);
    EXPECT_EQ(desk.run(on(6, 10), 60), "A 01 08:00 (01 06:10)");
    desk.run(on(6, 50), 60);
    desk.dismiss("A");  // there it is 1:50 for the first time
    EXPECT_EQ(desk.run(on(7, 10), 60), "A 01 08:00 (01 07:10)") << "and 1:10 for the second";
}

TEST_F(PendingClock, AnActInTheSecondPassOfAnHourBringsNothingBackThatOneInTheFirstDealtWith) {
    const test::ZoneForTest berlin("Europe/Berlin");  // at 3:00 it is 2:00 again
    const auto on = [](int hour, int minute) {
        return DateTime::fromCivil(2026, 10, 25, hour, minute, 0);
    };
    for (const int acts : {1, 2}) {
        SCOPED_TRACE(acts);
        Desk fresh;
        fresh.clock.time = on(1, 0);
        fresh.put(series("A", on(5, 0), "FREQ=DAILY", {170, 150, 15}));
        EXPECT_EQ(fresh.check(on(2, 10)), "A 25 05:00 (25 02:10)");
        EXPECT_EQ(fresh.check(on(2, 30)), "") << "the same row";
        fresh.clock.time = on(2, 31);
        fresh.dismiss("A");
        for (int i = 0; i < acts; ++i) {
            fresh.check(on(2, 5 + 10 * i));
            fresh.dismiss("A");
        }
        EXPECT_EQ(fresh.run(on(4, 44), 60), "");
        EXPECT_EQ(fresh.run(on(4, 45), 60), "A 25 05:00 (25 04:45)");
    }
}

}  // namespace
}  // namespace vl
