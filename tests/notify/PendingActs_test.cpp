// What an act does to the reminders that are still to come.
#include <gtest/gtest.h>

#include "Desk.h"

namespace vl {
namespace {

using test::allDay;
using test::at;
using test::Desk;
using test::series;
using test::single;

class PendingActs : public testing::Test {
protected:
    /// Enters a series whose occurrences last thirty hours. Two of them go on, whose reminders were
    /// before it was entered: the first is listed and dismissed, then the second listed.
    void meetTwoThatGoOn() {
        const auto e = series("A", at(8, 0, 0, 18), "FREQ=DAILY", {15});
        e->EndDateTime = e->StartDateTime.addMinutes(30 * 60);
        desk.check(at(9, 0));
        desk.put(e);
        EXPECT_EQ(desk.check(at(9, 1)), "A 19 08:00 (19 07:45)");
        desk.dismiss("A");
        EXPECT_EQ(desk.check(at(9, 2)), "A 20 08:00 (20 07:45)");
    }

    Desk desk;
};

TEST_F(PendingActs, ASnoozeComesWhenItsTimeHasComeAndOnce) {
    for (const int minutes : {5, 60 * 24, 60 * 24 * 14}) {
        SCOPED_TRACE(minutes);
        Desk fresh;
        fresh.put(single("A", at(10, 0), {15}));
        fresh.run(at(9, 45));
        fresh.snooze("A", minutes);
        const DateTime until = at(9, 45).addMinutes(minutes);
        const int step = minutes > 60 ? 600 : 10;
        EXPECT_EQ(fresh.run(until.addSeconds(-step - 10), step), "");
        fresh.start();
        EXPECT_NE(fresh.run(until, step), "") << "over a restart, and long after the event";
        fresh.dismiss("A");
        EXPECT_EQ(fresh.run(until.addDays(1), 600), "");
        fresh.start();
        EXPECT_EQ(fresh.check(), "");
    }
}

TEST_F(PendingActs, ScheduledRemindersBeforeTheSnoozeAreSupersededLaterOnesAreNot) {
    desk.put(single("A", at(10, 0), {60, 30, 5}));
    EXPECT_EQ(desk.run(at(9, 0, 10)), "A 20 10:00 (20 09:00)");
    desk.snooze("A", 45);
    EXPECT_EQ(desk.run(at(9, 45, 10)), "A 20 10:00 (20 09:45)") << "not at 9:30";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(10, 30)), "A 20 10:00 (20 09:55)");
}

TEST_F(PendingActs, AllButThoseAfterTheEventLeavesNoneAtItsStart) {
    desk.put(single("A", at(10, 0), {15, 0, -30}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.dismiss("A", DismissMode::AllButAfter);
    EXPECT_EQ(desk.run(at(10, 29)), "");
    EXPECT_EQ(desk.run(at(10, 30)), "A 20 10:00 (20 10:30)");
}

TEST_F(PendingActs, EachModeSilencesWhatItSays) {
    struct Case {
        const char* what;
        DismissMode mode;
        const char* later;
    };
    static constexpr Case cases[] = {
        {"this", DismissMode::This, "A 20 10:00 (20 09:45), A 20 10:00 (20 10:20)"},
        {"all but after", DismissMode::AllButAfter, "A 20 10:00 (20 10:20)"},
        {"all", DismissMode::All, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Desk fresh;
        fresh.put(single("A", at(10, 0), {30, 15, -20}));
        fresh.run(at(9, 30));
        fresh.dismiss("A", c.mode);
        std::string later = fresh.run(at(10, 0));
        if (!later.empty()) {
            fresh.dismiss("A");
        }
        fresh.start();
        const std::string last = fresh.run(at(11, 0));
        later += (later.empty() || last.empty() ? "" : ", ") + last;
        EXPECT_EQ(later, c.later);
    }
}

// So many minutes after its start stand elsewhere for no reminder.
TEST_F(PendingActs, ASnoozeOfAnyLengthStandsInTheListOnce) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.snooze("A", 100015);
    const DateTime then = at(10, 0).addMinutes(100000);
    EXPECT_NE(desk.check(then), "");
    EXPECT_EQ(desk.listed.at("A").reminder, then);
    EXPECT_EQ(desk.check(then.addSeconds(10)), "");
    EXPECT_EQ(desk.check(then.addSeconds(20)), "");
}

TEST_F(PendingActs, NoActOnOneOccurrenceTouchesAnother) {
    for (const DismissMode mode : {DismissMode::This, DismissMode::AllButAfter, DismissMode::All}) {
        Desk fresh;
        fresh.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
        EXPECT_EQ(fresh.run(at(9, 45)), "A 20 10:00 (20 09:45)");
        fresh.dismiss("A", mode, mode == DismissMode::All);
        EXPECT_EQ(fresh.run(at(9, 45, 0, 21), 60), "A 21 10:00 (21 09:45)");
        fresh.snooze("A", 60 * 48);
        EXPECT_EQ(fresh.run(at(9, 45, 0, 22), 60), "A 22 10:00 (22 09:45)")
            << "that one was snoozed, this one is not";
        fresh.dismiss("A");
        EXPECT_EQ(fresh.run(at(9, 44, 0, 23), 60), "");
        fresh.start();
        EXPECT_EQ(fresh.run(at(9, 46, 0, 23), 60), "A 23 10:00 (23 09:45)")
            << "of two that are pending at the same moment";
    }
}

TEST_F(PendingActs, ARowLeftListedForAWeekHidesNoLaterOccurrence) {
    desk.put(series("A", at(10, 0, 0, 2), "FREQ=WEEKLY;BYDAY=FR", {15}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    EXPECT_EQ(desk.run(at(9, 50, 0, 27), 60), "") << "still listed";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 51, 0, 27)), "A 27 10:00 (27 09:45)") << "that one was never acted on";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(23, 0, 0, 27), 60), "");
}

TEST_F(PendingActs, OfManyThatWereMissedWhileOneWasListedTheLatestIsShown) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.run(at(9, 0, 0, 26), 300);
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 0, 10, 26)), "A 25 10:00 (25 09:45)") << "the others are over, too";
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 0, 20, 26)), "") << "and end with it";
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0, 30, 26)), "");
    EXPECT_EQ(desk.run(at(9, 46, 0, 26)), "A 26 10:00 (26 09:45)");
}

TEST_F(PendingActs, OccurrencesThatOverlapAreEachDealtWithByThemselves) {
    // Each lasts a day and a half.
    const auto e = series("A", at(10, 0), "FREQ=DAILY", {15});
    e->EndDateTime = at(22, 0, 0, 21);
    desk.put(e);
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    desk.run(at(12, 0, 0, 21), 60);
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(12, 0, 10, 21)), "A 21 10:00 (21 09:45)");
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(9, 44, 0, 22), 60), "");
}

TEST_F(PendingActs, RemindersOfOneOccurrenceBetweenThoseOfAnotherAreEachShown) {
    // The day after tomorrow's rings tonight, before tomorrow's last.
    desk.put(series("A", at(10, 0, 0, 21), "FREQ=DAILY;COUNT=3", {36 * 60, 15}));
    desk.clock.time = at(21, 0, 0, 19);
    EXPECT_EQ(desk.run(at(22, 0, 0, 19), 60), "A 21 10:00 (19 22:00)");
    desk.snooze("A", 60 * 25);  // until 23:00 of the 20th
    EXPECT_EQ(desk.run(at(22, 0), 60), "A 22 10:00 (20 22:00)");
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(23, 0), 60), "A 21 10:00 (20 23:00)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 45, 0, 21), 60), "A 21 10:00 (21 09:45)");
    desk.run(at(22, 0, 0, 21), 60);  // it stands in the list while the third's falls due
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(22, 1, 0, 21), 60), "A 23 10:00 (21 22:00)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 44, 0, 23), 60), "") << "all of the second was dismissed";
    EXPECT_EQ(desk.run(at(12, 0, 0, 23), 60), "A 23 10:00 (23 09:45)");
}

TEST_F(PendingActs, AListedEventCountsAsDueAgain) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 31));
    desk.check(at(9, 40));
    EXPECT_FALSE(desk.rang());
    EXPECT_EQ(desk.check(at(9, 45)), "") << "no second row";
    EXPECT_TRUE(desk.rang());
}

TEST_F(PendingActs, DoneIsDone) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {30, -30}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::This, true);
    EXPECT_EQ(desk.run(at(9, 29, 0, 21), 60), "");
    EXPECT_EQ(desk.run(at(9, 30, 0, 21)), "A 21 10:00 (21 09:30)");
}

TEST_F(PendingActs, ReactivatedItCountsAsNewlyMet) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(9, 50)), "");
    desk.reactivate("A");
    EXPECT_EQ(desk.check(at(9, 51)), "A 20 10:00 (20 09:30)");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 52)), "A 20 10:00 (20 09:30)");
}

TEST_F(PendingActs, ReactivatedItCountsAsNewlyMetWhateverIsDoneToOneOccurrenceBeforeTheCheck) {
    meetTwoThatGoOn();
    desk.dismiss("A");
    desk.reactivate("A");
    desk.snooze("A", 60);
    EXPECT_EQ(desk.check(at(9, 3)), "A 19 08:00 (19 07:45)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(10, 3), 60), "A 20 08:00 (20 10:02)");
}

TEST_F(PendingActs, AnOccurrenceThatWasSnoozedWhenOthersEndedStillHasItsLaterReminders) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY;COUNT=2", {15, -4320}));
    desk.run(at(9, 45));
    desk.snooze("A", 60 * 24 + 5);
    EXPECT_EQ(desk.run(at(9, 45, 0, 21), 60), "A 21 10:00 (21 09:45)");
    desk.run(at(10, 40, 0, 21), 60);
    desk.dismiss("A");  // the first is over, and snoozed
    EXPECT_EQ(desk.check(at(10, 41, 0, 21)), "A 20 10:00 (21 09:50)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(10, 0, 0, 23), 60), "A 20 10:00 (23 10:00)");
}

TEST_F(PendingActs, OfOccurrencesThatWereMetTogetherEachIsListed) {
    meetTwoThatGoOn();
    desk.start();
    EXPECT_EQ(desk.check(at(9, 3)), "A 20 08:00 (20 07:45)");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(12, 0), 60), "");
}

TEST_F(PendingActs, WhatIsSnoozedIsNotDone) {
    desk.rowsAreWritten = false;  // a view may show for a while what was marked as done
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A", DismissMode::This, true);
    ASSERT_EQ(objectAt<calEvent>(*desk.program->period.mCol, "A")->status, "AllDone");
    desk.snooze("A", 30);
    EXPECT_EQ(objectAt<calEvent>(*desk.program->period.mCol, "A")->status, "");
    EXPECT_EQ(desk.run(at(10, 15)), "A 20 10:00 (20 10:15)");
    desk.dismiss("A", DismissMode::All, true);
    desk.reactivate("A");
    EXPECT_EQ(desk.check(at(10, 16)), "A 20 10:00 (20 09:45)");
}

TEST_F(PendingActs, ReactivatedItCountsAsNewlyMetAlsoByTheNextRun) {
    desk.put(single("A", at(10, 0, 0, 22), {60 * 24 * 5}));  // its reminder was days ago
    desk.clock.time = at(9, 0, 0, 17);
    EXPECT_EQ(desk.run(at(10, 0, 0, 17), 60), "A 22 10:00 (17 10:00)");
    desk.dismiss("A");
    desk.run(at(10, 10, 0, 20), 600);
    desk.reactivate("A");
    desk.start();
    EXPECT_EQ(desk.check(), "A 22 10:00 (17 10:00)");
}

TEST_F(PendingActs, SoItDoesWhereThatRunHasLeftTheActOnOneOccurrence) {
    meetTwoThatGoOn();
    desk.dismiss("A");
    desk.reactivate("A");
    desk.snooze("A", 60);
    desk.start();
    EXPECT_EQ(desk.check(at(9, 3)), "A 19 08:00 (19 07:45)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.run(at(10, 3), 60), "A 20 08:00 (20 10:02)") << "once listed it is met";
}

TEST_F(PendingActs, AnActOnARowFromBeforeAMoveLeavesWhatIsPendingSinceAlsoToTheNextRun) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(12, 0);
        e.EndDateTime = at(12, 30);
    });
    EXPECT_EQ(desk.run(at(11, 50), 60), "") << "it is listed still, as it was";
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(at(11, 51)), "A 20 12:00 (20 11:45)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.run(at(12, 30), 60), "");
}

TEST_F(PendingActs, DoneOnARowFromBeforeAMoveIsOfWhatItShows) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(12, 0);
        e.EndDateTime = at(12, 30);
    });
    desk.run(at(9, 50));
    desk.dismiss("A", DismissMode::This, true);
    EXPECT_EQ(desk.run(at(12, 0), 60), "A 20 12:00 (20 11:45)");
    desk.dismiss("A", DismissMode::This, true);
    EXPECT_EQ(desk.rows.at("A")->status, "AllDone");
}

// By the minutes before the start at which the event is listed after the act, each time dismissed.
TEST_F(PendingActs, EachActOnEachKindOfEvent) {
    struct Kind {
        const char* what;
        DateTime start;
        std::shared_ptr<calEvent> (*make)(DateTime start);
    };
    const Kind kinds[] = {
        {"single", at(12, 0),
         [](DateTime start) {
             return single("A", start, {30, 15, -20});
         }},
        {"moved", at(12, 0),
         [](DateTime) {
             return single("A", at(16, 0), {30, 15, -20});
         }},
        {"repeating", at(12, 0),
         [](DateTime start) {
             return series("A", start, "FREQ=DAILY", {30, 15, -20});
         }},
        {"all day", at(0, 0, 0, 21),
         [](DateTime start) {
             return allDay("A", start, {30, 15, -20});
         }},
    };
    struct Case {
        const char* act;
        void (*apply)(Desk& desk);
        std::vector<int> later;
    };
    const Case cases[] = {
        {"snooze", [](Desk& d) { d.snooze("A", 20); }, {10, -20}},
        {"snooze over all", [](Desk& d) { d.snooze("A", 90); }, {-60}},
        {"this", [](Desk& d) { d.dismiss("A"); }, {15, -20}},
        {"all but after", [](Desk& d) { d.dismiss("A", DismissMode::AllButAfter); }, {-20}},
        {"all", [](Desk& d) { d.dismiss("A", DismissMode::All); }, {}},
        {"done", [](Desk& d) { d.dismiss("A", DismissMode::This, true); }, {}},
        {"reactivate", [](Desk& d) { d.reactivate("A"); }, {30, 15, -20}},
    };
    for (const Kind& kind : kinds) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.act) + " on " + kind.what);
            Desk fresh;
            fresh.put(kind.make(kind.start));
            fresh.check(at(9, 0));
            fresh.change("A", [&](calEvent& e) {
                const std::int64_t length =
                    e.EndDateTime.milliseconds() - e.StartDateTime.milliseconds();
                e.StartDateTime = kind.start;
                e.EndDateTime = DateTime::fromMilliseconds(kind.start.milliseconds() + length);
            });
            ASSERT_NE(fresh.check(kind.start.addMinutes(-30)), "");
            c.apply(fresh);
            std::vector<int> later;
            while (fresh.clock.time < kind.start.addMinutes(180)) {
                if (!fresh.check(fresh.clock.time.addMinutes(1)).empty()) {
                    const ActRow& row = fresh.listed.at("A");
                    later.push_back(static_cast<int>(minutesBetween(row.reminder, kind.start)));
                    fresh.dismiss("A");
                }
            }
            EXPECT_EQ(later, c.later);
        }
    }
}

// It was noted as what it is now; that reminder nobody wants any more.
TEST_F(PendingActs, ARowFromBeforeAMoveLeavesNoReminderThatTheHostHasTakenAway) {
    desk.put(series("A", at(11, 0), "FREQ=DAILY", {60, 10}));
    EXPECT_EQ(desk.run(at(10, 0)), "A 20 11:00 (20 10:00)");
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(10, 40);
        e.EndDateTime = at(11, 10);
    });
    EXPECT_EQ(desk.run(at(10, 1)), "");
    desk.change("A", [](calEvent& e) { e.reminders = single("", at(9, 0), {-20})->reminders; });
    EXPECT_EQ(desk.run(at(10, 2)), "");
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(11, 10)), "A 20 10:40 (20 11:00)");
}

}  // namespace
}  // namespace vl
