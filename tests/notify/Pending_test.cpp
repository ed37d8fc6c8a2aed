// When a reminder is taken into the list, and what that costs.
#include <gtest/gtest.h>

#include "Desk.h"
#include "model/Recurrence.h"

namespace vl {
namespace {

using test::allDay;
using test::at;
using test::Desk;
using test::series;
using test::single;

class Pending : public testing::Test {
protected:
    Desk desk;
};

TEST_F(Pending, EachReminderIsTakenOnce) {
    desk.put(single("A", at(10, 0), {30, 15}));
    EXPECT_EQ(desk.run(at(9, 30)), "A 20 10:00 (20 09:30)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(11, 0)), "");
    desk.start();
    EXPECT_EQ(desk.check(at(11, 1)), "") << "nor after a restart";
    desk.start();
    EXPECT_EQ(desk.check(at(8, 0, 0, 21)), "") << "nor on the next day";
}

TEST_F(Pending, WhatIsTakenSaysHowLongBeforeTheStartAndWhatComesNext) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 30));
    const auto row = [this] { return desk.listed.at("A").event; };
    EXPECT_EQ(row()->iRemMinutes, 30);
    EXPECT_EQ(row()->iRemMinutesNext, 15);
    EXPECT_EQ(row()->dLastReminder, at(9, 30));
    desk.snooze("A", 40);
    desk.run(at(10, 10));
    EXPECT_EQ(row()->iRemMinutes, -10);
    EXPECT_EQ(row()->iRemMinutesNext, -100000) << "it was snoozed";
    EXPECT_EQ(row()->dLastReminder, at(10, 10));
}

TEST_F(Pending, TheFirstCheckOfARunShowsWhatFellDueWhileTheProgramWasOff) {
    struct Case {
        const char* what;
        DateTime start;
        const char* taken;
    };
    const Case cases[] = {
        {"this morning", at(7, 0), "A 20 07:00 (20 06:45)"},
        {"last night, over", at(22, 0, 0, 19), "A 19 22:00 (19 21:45)"},
        {"before the last check", at(8, 0, 0, 17), ""},
        {"after the last check", at(20, 0, 0, 18), "A 18 20:00 (18 19:45)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Desk fresh;
        fresh.check(at(12, 0, 0, 18));  // the last check of the run before
        fresh.stop();
        fresh.put(single("A", c.start, {15}));
        EXPECT_EQ(fresh.check(at(9, 0)), c.taken);
    }
}

TEST_F(Pending, LooksBackAtMostThirtyDays) {
    desk.check(at(0, 0).addDays(-60));
    desk.stop();
    desk.put(single("A", at(10, 0).addDays(-31), {15}));
    desk.put(single("B", at(10, 0).addDays(-29), {15}));
    EXPECT_EQ(desk.check(at(9, 0)).substr(0, 1), "B");
}

TEST_F(Pending, WithoutAnEarlierRunTheFirstCheckBeginsAtMidnight) {
    desk.put(single("A", at(23, 59, 59, 19), {0}));
    desk.put(single("B", at(0, 0), {0}));
    EXPECT_EQ(desk.check(at(9, 0)), "B 20 00:00 (20 00:00)");
}

// That check was one by a wrong clock: since when nobody has asked is not known.
TEST_F(Pending, WhereTheLastCheckLiesAheadTheFirstOneBeginsAtMidnight) {
    for (const DateTime last : {at(9, 0, 1), at(12, 0, 0, 25), at(9, 0).addDays(400)}) {
        SCOPED_TRACE(formatDateTime(last));
        Desk fresh;
        fresh.check(last);
        fresh.stop();
        fresh.clock.time = at(9, 0);
        fresh.put(single("A", at(23, 59, 59, 19), {0}));
        fresh.put(single("B", at(0, 0), {0}));
        fresh.start();
        EXPECT_EQ(fresh.program->cycle.UncheckedSince(), at(0, 0));
        EXPECT_EQ(fresh.check(), "B 20 00:00 (20 00:00)");
    }
}

TEST_F(Pending, AnEventEnteredLateStillRings) {
    struct Case {
        const char* what;
        DateTime start;
        int minutes;  // of the reminder, before the start
        int lasts;
        const char* taken;
    };
    static const Case cases[] = {
        {"ten minutes before it starts", at(12, 10), 15, 30, "A 20 12:10 (20 11:55)"},
        {"while it goes on", at(11, 50), 15, 30, "A 20 11:50 (20 11:35)"},
        {"its reminder was yesterday, it is tomorrow", at(9, 0, 0, 21), 1440 * 2, 30,
         "A 21 09:00 (19 09:00)"},
        {"it goes on since last week", at(9, 0, 0, 13), 15, 60 * 24 * 14, "A 13 09:00 (13 08:45)"},
        {"it was this morning", at(8, 0), 15, 30, "A 20 08:00 (20 07:45)"},
        {"it was yesterday", at(8, 0, 0, 19), 15, 30, ""},
        {"it is to come", at(13, 0), 15, 30, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Desk fresh;
        fresh.check(at(11, 59, 50));
        const auto e = single("A", c.start, {c.minutes});
        e->EndDateTime = c.start.addMinutes(c.lasts);
        fresh.put(e);
        EXPECT_EQ(fresh.check(at(12, 0)), c.taken);
        EXPECT_EQ(fresh.check(at(12, 0, 10)), "") << "met once";
    }
}

TEST_F(Pending, AtAStartOnlyWhatTheHostHasTouchedSinceTheLastCheckIsMetForTheFirstTime) {
    const auto e = single("A", at(10, 0, 0, 23), {60 * 24 * 7});  // it should have rung on the 16th
    e->Modified = at(9, 0, 0, 19);
    desk.put(e);
    EXPECT_EQ(desk.check(at(9, 0)), "") << "a first start does not show all that is to come";
    desk.stop();
    desk.change("A", [](calEvent& row) { row.Modified = at(9, 30); });
    EXPECT_EQ(desk.check(at(10, 0)), "A 23 10:00 (16 10:00)");
}

TEST_F(Pending, AnEventThatTheHostMovesIsMetAgain) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.dismiss("A", DismissMode::All);
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(9, 55);
        e.EndDateTime = at(10, 25);
    });
    EXPECT_EQ(desk.check(at(9, 50)), "A 20 09:55 (20 09:40)")
        << "what was handled was another time";
    desk.dismiss("A");
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(15, 0);
        e.EndDateTime = at(15, 30);
    });
    EXPECT_EQ(desk.run(at(16, 0)), "A 20 15:00 (20 14:45)");
}

TEST_F(Pending, AChangeOfSomethingElseIsNoNewTime) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.change("A", [](calEvent& e) {
        e.Location = "elsewhere";
        e.Modified = at(9, 46);
    });
    EXPECT_EQ(desk.run(at(11, 0)), "");
    desk.start();
    EXPECT_EQ(desk.check(), "");
}

TEST_F(Pending, ASnoozeFollowsASingleEventThatTheHostMoves) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.snooze("A", 30);
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(10, 0, 0, 23);
        e.EndDateTime = at(10, 30, 0, 23);
    });
    EXPECT_EQ(desk.run(at(10, 15)), "A 23 10:00 (20 10:15)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(), "") << "an act on it ends the snooze, under whichever start";
    EXPECT_EQ(desk.run(at(10, 0, 0, 23), 60), "A 23 10:00 (23 09:45)");
}

TEST_F(Pending, AllDayEventsCountFromMidnightAndLastTheirDay) {
    desk.put(allDay("A", at(0, 0, 0, 21), {360}));
    EXPECT_EQ(desk.run(at(18, 0), 60), "A 21 00:00 (20 18:00)");
    desk.dismiss("A");
    desk.put(allDay("B", at(0, 0), {0, -720}));
    EXPECT_EQ(desk.run(at(18, 1)), "B 20 00:00 (20 00:00)") << "entered today";
    desk.put(allDay("C", at(0, 0, 0, 18), {1440}, 3));
    EXPECT_EQ(desk.run(at(18, 2)), "C 18 00:00 (17 00:00)") << "its last day goes on";
    desk.put(allDay("D", at(0, 0, 0, 18), {1440}, 2));
    EXPECT_EQ(desk.run(at(18, 3)), "") << "it was over at midnight";
}

TEST_F(Pending, ASeriesOfAddedDatesAloneIsAskedForThemToo) {
    const auto e = single("A", at(10, 0), {15});
    e->recurrence = R"(["RDATE:20261121T120000,20261122T140000"])";
    e->RecurrenceState = 1;
    e->LoadRecurrence();
    desk.put(e);
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(13, 0, 0, 21), 60), "A 21 12:00 (21 11:45)");
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(15, 0, 0, 22), 60), "A 22 14:00 (22 13:45)");
}

TEST_F(Pending, TwoDueAtTheSameMomentAreTwoRows) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 30), {45}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45), B 20 10:30 (20 09:45)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 46)), "");
    EXPECT_TRUE(desk.program->state.NewReminders->Exists("B"));
}

TEST_F(Pending, TheEarliestComesFirst) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(9, 50), {15}));
    EXPECT_EQ(desk.check(at(9, 48)), "B 20 09:50 (20 09:35), A 20 10:00 (20 09:45)");
}

TEST_F(Pending, WhatWasTakenEarlyIsHeardAgainAndDoesNotComeBackAfterAnAct) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 44, 52)), "A 20 10:00 (20 09:45)") << "before the next tick";
    EXPECT_TRUE(desk.rang());
    EXPECT_EQ(desk.check(at(9, 44, 58)), "");
    EXPECT_TRUE(desk.rang());
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(10, 30)), "");
}

TEST_F(Pending, LongSeriesAreJumpedIntoNotWalked) {
    const auto secondly = series("A", at(0, 0, 0, 1), "FREQ=SECONDLY", {0, 1440 * 30});
    secondly->StartDateTime = DateTime::fromCivil(2000, 1, 1);
    secondly->EndDateTime = secondly->StartDateTime;
    secondly->LoadRecurrence();
    desk.put(secondly);
    desk.check(at(9, 0));
    const auto before = Recurrence::workDone();
    desk.check(at(9, 0, 0, 25));  // asleep for five days
    EXPECT_LT(Recurrence::workDone() - before, 10000U);
}

TEST_F(Pending, ACheckInWhichNothingHappensLooksAtNoSeries) {
    for (int i = 0; i < 200; ++i) {
        desk.put(series("A" + std::to_string(i), at(18, 0, 0, 1), "FREQ=DAILY", {15}));
    }
    desk.check(at(9, 0));
    desk.check(at(9, 0, 10));
    const auto before = Recurrence::workDone();
    EXPECT_EQ(desk.check(at(9, 0, 20)), "");
    EXPECT_EQ(Recurrence::workDone(), before);
    EXPECT_NE(desk.check(at(17, 45)), "") << "but when the time comes";
}

}  // namespace
}  // namespace vl
