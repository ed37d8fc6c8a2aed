// When a reminder is due, and when it is not any more: the program over days, acts and restarts.
#include <gtest/gtest.h>

#include <filesystem>

#include "../model/ZoneForTest.h"
#include "Desk.h"
#include "base/ErrorState.h"
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

// ---- what is taken

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

// ---- what an act does

TEST_F(Pending, ASnoozeComesWhenItsTimeHasComeAndOnce) {
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

TEST_F(Pending, ScheduledRemindersBeforeTheSnoozeAreSupersededLaterOnesAreNot) {
    desk.put(single("A", at(10, 0), {60, 30, 5}));
    EXPECT_EQ(desk.run(at(9, 0, 10)), "A 20 10:00 (20 09:00)");
    desk.snooze("A", 45);
    EXPECT_EQ(desk.run(at(9, 45, 10)), "A 20 10:00 (20 09:45)") << "not at 9:30";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(10, 30)), "A 20 10:00 (20 09:55)");
}

TEST_F(Pending, EachModeSilencesWhatItSays) {
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

TEST_F(Pending, NoActOnOneOccurrenceTouchesAnother) {
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

TEST_F(Pending, ARowLeftListedForAWeekHidesNoLaterOccurrence) {
    desk.put(series("A", at(10, 0, 0, 2), "FREQ=WEEKLY;BYDAY=FR", {15}));
    EXPECT_EQ(desk.run(at(9, 45)), "A 20 10:00 (20 09:45)");
    EXPECT_EQ(desk.run(at(9, 50, 0, 27), 60), "") << "still listed";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(9, 51, 0, 27)), "A 27 10:00 (27 09:45)") << "that one was never acted on";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(23, 0, 0, 27), 60), "");
}

TEST_F(Pending, OfManyThatWereMissedWhileOneWasListedTheLatestIsShown) {
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

TEST_F(Pending, OccurrencesThatOverlapAreEachDealtWithByThemselves) {
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

TEST_F(Pending, AListedEventCountsAsDueAgain) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 31));
    desk.check(at(9, 40));
    EXPECT_FALSE(desk.rang());
    EXPECT_EQ(desk.check(at(9, 45)), "") << "no second row";
    EXPECT_TRUE(desk.rang());
}

TEST_F(Pending, DoneIsDone) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {30, -30}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::This, true);
    EXPECT_EQ(desk.run(at(9, 29, 0, 21), 60), "");
    EXPECT_EQ(desk.run(at(9, 30, 0, 21)), "A 21 10:00 (21 09:30)");
}

TEST_F(Pending, ReactivatedItCountsAsNewlyMet) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(9, 50)), "");
    desk.reactivate("A");
    EXPECT_EQ(desk.check(at(9, 51)), "A 20 10:00 (20 09:30)");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 52)), "A 20 10:00 (20 09:30)");
}

// ---- restarts, crashes, copies

TEST_F(Pending, WhatWasListedAndNotActedUponIsListedAgainAfterARestart) {
    desk.put(single("A", at(10, 0, 0, 15), {15}));
    desk.put(series("B", at(8, 0, 0, 15), "FREQ=DAILY;COUNT=1", {15}));
    desk.clock.time = at(7, 0, 0, 15);
    EXPECT_EQ(desk.run(at(9, 45, 0, 15), 60), "B 15 08:00 (15 07:45), A 15 10:00 (15 09:45)");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0)), "B 15 08:00 (15 07:45), A 15 10:00 (15 09:45)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0)), "B 15 08:00 (15 07:45)");
}

TEST_F(Pending, ACrashBetweenLedgerAndRowLosesNothingAndBringsNothingBack) {
    desk.rowsAreWritten = false;
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("B", 30);
    desk.start();
    EXPECT_EQ(desk.check(at(9, 46)), "");
    const auto row = objectAt<calEvent>(*desk.program->period.mCol, "A");
    EXPECT_EQ(row->Dismissed, at(9, 45)) << "the act stands, and is on its way into the row";
    EXPECT_EQ(desk.program->state.waitingWrites, 2);
    EXPECT_EQ(desk.run(at(10, 15)), "B 20 10:00 (20 10:15)");
}

TEST_F(Pending, ATornLedgerLosesOnlyItsLastLine) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.dismiss("B");
    desk.rows.at("B")->Dismissed = DateTime();  // the crash came before the row was written
    desk.stop();
    const std::string all = test::readFile(desk.ledgerPath);
    test::writeFile(desk.ledgerPath, all.substr(0, all.size() - 10));
    EXPECT_EQ(desk.check(at(9, 46)), "B 20 10:00 (20 09:45)");
}

TEST_F(Pending, WithoutItsLedgerTheProgramGoesByTheRows) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.put(single("C", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("B", 30);
    desk.stop();
    std::filesystem::remove(desk.ledgerPath);
    EXPECT_EQ(desk.check(at(9, 46)), "C 20 10:00 (20 09:45)");
    EXPECT_EQ(desk.run(at(10, 15)), "B 20 10:00 (20 10:15)");
}

TEST_F(Pending, WithoutAPlaceForItTheLedgerLivesInMemory) {
    desk.ledgerPath = (desk.folder / "no" / "folder").string();
    desk.put(single("A", at(10, 0), {30, 15}));
    EXPECT_EQ(desk.run(at(9, 30)), "A 20 10:00 (20 09:30)");
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(11, 0)), "");
}

TEST_F(Pending, WhatASecondCopyDealtWithLeavesThisOnesList) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    Desk::Program other(desk.clock, desk.ledgerPath);
    for (const auto& [GUID, row] : desk.rows) {
        other.period.Add(std::make_shared<calEvent>(*row), GUID);
    }
    other.acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    EXPECT_EQ(desk.check(at(9, 46)), "");
    EXPECT_EQ(desk.program->screen.count("RemoveGUID A 0"), 1U);
    EXPECT_FALSE(desk.program->state.NewReminders->Exists("A"));
    EXPECT_TRUE(desk.program->state.NewReminders->Exists("B"));
}

// ---- what others write into the row

TEST_F(Pending, ARowThatAnotherProgramHasChangedSpeaks) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::All);
    desk.change("A", [](calEvent& e) { e.NextReminder = at(11, 0); });
    EXPECT_EQ(desk.run(at(11, 0)), "A 20 10:00 (20 11:00)") << "it was snoozed elsewhere";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(12, 0)), "");
}

TEST_F(Pending, WhatTheRowSaysOfAnEventWithoutALedger) {
    struct Case {
        const char* what;
        bool repeats;
        DateTime next;
        DateTime dismissed;
        DateTime modified;
        const char* taken;  // from 9:00 to noon of the next day, not acted upon
    };
    static const Case cases[] = {
        {"nothing", false, {}, {}, {}, "A 20 10:00 (20 09:30)"},
        {"dismissed", false, {}, at(9, 10), at(8, 0), ""},
        {"dismissed, then changed by the host",
         false,
         {},
         at(9, 10),
         at(9, 11),
         "A 20 10:00 (20 09:30)"},
        {"dismissed, an old next reminder", false, at(9, 10), at(9, 10), at(8, 0), ""},
        {"snoozed", false, at(9, 40), {}, {}, "A 20 10:00 (20 09:40)"},
        {"dismissed, the next one noted", false, at(9, 45), at(9, 31), at(8, 0),
         "A 20 10:00 (20 09:45)"},
        {"series, dismissed before", true, {}, at(9, 31, 0, 19), {}, "A 20 10:00 (20 09:30)"},
        {"series, dismissed today", true, {}, at(9, 31), {}, "A 21 10:00 (21 09:30)"},
        {"series, the next instance's noted",
         true,
         at(9, 30, 0, 21),
         at(9, 31),
         {},
         "A 21 10:00 (21 09:30)"},
        {"series, snoozed over a reminder",
         true,
         at(9, 50),
         at(9, 31, 0, 19),
         {},
         "A 20 10:00 (20 09:50)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Desk fresh;
        const auto e = c.repeats ? series("A", at(10, 0, 0, 16), "FREQ=DAILY", {30, 15})
                                 : single("A", at(10, 0), {30, 15});
        e->NextReminder = c.next;
        e->Dismissed = c.dismissed;
        e->Modified = c.modified;
        fresh.put(e);
        fresh.clock.time = c.dismissed > at(9, 0) ? c.dismissed : at(9, 0);
        EXPECT_EQ(fresh.run(at(12, 0, 0, 21), 60), c.taken);
    }
}

TEST_F(Pending, AHostThatClearsBothColumnsSaysNothing) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("A", 30);
    desk.change("A", [](calEvent& e) {
        e.NextReminder = DateTime();
        e.Dismissed = DateTime();
    });
    EXPECT_EQ(desk.run(at(10, 10)), "");
    EXPECT_EQ(desk.run(at(10, 15)), "A 20 10:00 (20 10:15)");
}

// ---- exceptions to a series

std::shared_ptr<calEvent> exceptionTo(const calEvent& master, const char* GUID, DateTime replaced,
                                      DateTime start) {
    auto e = single(GUID, start, {15});
    e->RecurrenceState = 3;
    e->recurringEventId = master.id;
    e->RExceptionStartTimeOrig = replaced;
    return e;
}

TEST_F(Pending, TheStartThatAnExceptionReplacesIsNoOccurrenceAnyMore) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0, 0, 21), at(16, 0, 0, 21)));
    EXPECT_EQ(desk.run(at(12, 0)), "M 20 10:00 (20 09:45)");
    desk.dismiss("M");
    EXPECT_EQ(desk.run(at(17, 0, 0, 21), 60), "X 21 16:00 (21 15:45)");
    desk.dismiss("X");
    EXPECT_EQ(desk.run(at(9, 45, 0, 22), 60), "M 22 10:00 (22 09:45)");
}

TEST_F(Pending, AnExceptionBroughtForwardAndFinishedDoesNotLetTheOldTimeRing) {
    const auto master = series("M", at(10, 0, 0, 13), "FREQ=WEEKLY", {15});  // Fridays
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0, 0, 27), at(10, 0, 0, 24)));
    desk.check(at(23, 0));
    for (const auto& [GUID, row] : desk.listed) {
        desk.dismiss(GUID);
    }
    desk.clock.time = at(9, 0, 0, 24);
    EXPECT_EQ(desk.run(at(9, 45, 0, 24)), "X 24 10:00 (24 09:45)");
    desk.dismiss("X", DismissMode::This, true);
    EXPECT_EQ(desk.program->state.NewReminders->Count(), 0U);
    desk.rows.erase("X");  // finished events are read no more
    desk.start();
    EXPECT_EQ(desk.run(at(12, 0, 0, 27), 60), "");
}

TEST_F(Pending, ADeletedExceptionHasNoOccurrenceAndReplacesItsStart) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=2", {15});
    const auto gone = exceptionTo(*master, "X", at(10, 0, 0, 21), at(10, 0, 0, 21));
    gone->ISRecurrenceExceptionDeleted = 1;
    desk.put(master);
    desk.put(gone);
    EXPECT_EQ(desk.run(at(12, 0)), "M 20 10:00 (20 09:45)");
    desk.dismiss("M");
    desk.remove("X");  // its row is purged
    EXPECT_EQ(desk.run(at(12, 0, 0, 21), 60), "");
    desk.start();
    EXPECT_EQ(desk.check(), "");
}

TEST_F(Pending, ASnoozeEndsWhenItsOccurrenceIsTakenAway) {
    for (const bool byExdate : {false, true}) {
        Desk fresh;
        const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=2", {15});
        fresh.put(master);
        fresh.run(at(9, 45));
        fresh.snooze("M", 60);
        if (byExdate) {
            fresh.change("M", [](calEvent& e) {
                e.recurrence = R"(["RRULE:FREQ=DAILY;COUNT=2","EXDATE:20261120T100000"])";
            });
        } else {
            fresh.put(exceptionTo(*master, "X", at(10, 0), at(18, 0, 0, 25)));
        }
        EXPECT_EQ(fresh.run(at(11, 0)), "") << byExdate;
    }
}

TEST_F(Pending, ASnoozeOutlivesAReTimedSeries) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
    desk.run(at(9, 45));
    desk.snooze("A", 60);
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(18, 0);
        e.EndDateTime = at(18, 30);
    });
    EXPECT_EQ(desk.run(at(10, 45)), "A 20 10:00 (20 10:45)");
}

// ---- clocks and zones

TEST_F(Pending, AWrongClockCorrectedLosesNothingThatIsToCome) {
    desk.put(single("A", at(10, 0, 0, 22), {1440, 15}));
    desk.put(single("B", at(15, 0), {15}));
    desk.check(at(12, 0, 0, 21));  // a day ahead
    ASSERT_TRUE(desk.listed.contains("A"));
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(12, 0)), "") << "corrected";
    EXPECT_EQ(desk.run(at(15, 0)), "B 20 15:00 (20 14:45)");
    EXPECT_EQ(desk.run(at(10, 0, 0, 22), 60), "A 22 10:00 (22 09:45)");
}

TEST_F(Pending, AClockTurnedBackBringsNothingBack) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    EXPECT_EQ(desk.check(at(9, 40)), "");
    EXPECT_EQ(desk.run(at(11, 0)), "");
}

TEST_F(Pending, AnOccurrenceIsTheSameInAnotherZone) {
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

TEST_F(Pending, ASnoozeIsAMoment) {
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

// ---- cost

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
