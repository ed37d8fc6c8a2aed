// Exceptions to a series.
#include <gtest/gtest.h>

#include "Desk.h"

namespace vl {
namespace {

using test::at;
using test::Desk;
using test::series;
using test::single;

class PendingException : public testing::Test {
protected:
    Desk desk;
};

std::shared_ptr<calEvent> exceptionTo(const calEvent& master, const char* GUID, DateTime replaced,
                                      DateTime start) {
    auto e = single(GUID, start, {15});
    e->RecurrenceState = 3;
    e->recurringEventId = master.id;
    e->RExceptionStartTimeOrig = replaced;
    return e;
}

TEST_F(PendingException, TheStartThatAnExceptionReplacesIsNoOccurrenceAnyMore) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0, 0, 21), at(16, 0, 0, 21)));
    EXPECT_EQ(desk.run(at(12, 0)), "M 20 10:00 (20 09:45)");
    desk.dismiss("M");
    EXPECT_EQ(desk.run(at(17, 0, 0, 21), 60), "X 21 16:00 (21 15:45)");
    desk.dismiss("X");
    EXPECT_EQ(desk.run(at(9, 45, 0, 22), 60), "M 22 10:00 (22 09:45)");
}

// Also where its row goes while the program is off.
TEST_F(PendingException, WhatTheUserHasDismissedWithItDoesNotComeAtTheReplacedStart) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0), at(14, 0)));
    EXPECT_EQ(desk.run(at(13, 45), 60), "X 20 14:00 (20 13:45)");
    desk.dismiss("X");
    desk.stop();
    desk.rows.erase("X");
    EXPECT_EQ(desk.run(at(9, 45, 0, 21), 60), "M 21 10:00 (21 09:45)");
}

// Two of the host's databases hold the same calendar.
class TwoBases : public PendingException {
protected:
    TwoBases() {
        for (const char* base : {"Home.vldb", "Work.vldb"}) {
            const auto master = series(base, at(10, 0), "FREQ=DAILY", {15});
            master->id = "the same";
            master->VLBase = base;
            desk.put(master);
        }
    }
    std::shared_ptr<calEvent> ofWork(DateTime replaced, DateTime start) {
        auto e = exceptionTo(*desk.rows.at("Work.vldb"), "X", replaced, start);
        e->VLBase = "WORK.vldb";
        return e;
    }
    /// Also what was due behind it.
    void dismissAll() {
        desk.listed.erase("X");
        do {
            for (const auto& [GUID, row] : desk.listed) {
                desk.dismiss(GUID);
            }
            desk.listed.clear();
        } while (!desk.check().empty());
    }
};

TEST_F(TwoBases, AnExceptionInOneTakesNothingAwayInTheOther) {
    desk.put(ofWork(at(10, 0, 0, 21), at(16, 0, 0, 21)));
    desk.run(at(12, 0));
    dismissAll();
    EXPECT_EQ(desk.run(at(17, 0, 0, 21), 60),
              "Home.vldb 21 10:00 (21 09:45), X 21 16:00 (21 15:45)");
}

TEST_F(TwoBases, NorDoesItWhenItIsFinishedOrDeleted) {
    for (const bool deleted : {false, true}) {
        SCOPED_TRACE(deleted);
        const int day = deleted ? 25 : 22;
        desk.put(ofWork(at(10, 0, 0, day), at(9, 0, 0, day - 1)));
        desk.run(at(12, 0, 0, day - 1), 60);
        if (deleted) {
            desk.remove("X");
        } else {
            desk.dismiss("X", DismissMode::This, true);
            desk.rows.erase("X");
        }
        dismissAll();
        desk.start();
        const std::string wanted =
            std::to_string(day) + " 10:00 (" + std::to_string(day) + " 09:45)";
        EXPECT_EQ(desk.run(at(12, 0, 0, day), 60), "Home.vldb " + wanted);
        dismissAll();
    }
}

TEST_F(TwoBases, NorDoesOneThatDoesNotSayWhatItReplaces) {
    desk.put(ofWork(DateTime(), at(10, 0)));
    EXPECT_EQ(desk.run(at(9, 45)), "Home.vldb 20 10:00 (20 09:45), X 20 10:00 (20 09:45)");
}

TEST_F(TwoBases, WhereItsOwnSeriesIsNotThereItSpeaksOfTheOther) {
    const auto exception = ofWork(at(10, 0, 0, 21), at(16, 0, 0, 21));
    desk.rows.erase("Work.vldb");
    desk.put(exception);
    desk.run(at(12, 0));
    dismissAll();
    EXPECT_EQ(desk.run(at(17, 0, 0, 21), 60), "X 21 16:00 (21 15:45)");
}

TEST_F(TwoBases, ADatabaseThatTheHostHasMovedKeepsItsExceptions) {
    desk.put(ofWork(at(10, 0, 0, 22), at(9, 0, 0, 21)));
    desk.run(at(12, 0, 0, 21), 60);
    desk.dismiss("X", DismissMode::This, true);
    desk.rows.erase("X");
    dismissAll();
    desk.change("Work.vldb", [](calEvent& e) { e.VLBase = "D:\\Work.vldb"; });
    desk.start();
    EXPECT_EQ(desk.run(at(12, 0, 0, 22), 60), "") << "of which of both it was nobody can tell";
}

TEST_F(PendingException, AnExceptionBroughtForwardAndFinishedDoesNotLetTheOldTimeRing) {
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

TEST_F(PendingException, OneThatSaysWhatItReplacesTakesNothingElseAway) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=2", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0, 0, 21), at(10, 0)));
    EXPECT_EQ(desk.run(at(9, 45)), "M 20 10:00 (20 09:45), X 20 10:00 (20 09:45)");
}

TEST_F(PendingException, OneThatDoesNotSayWhatItReplacesTakesTheOccurrenceThatFallsDueWithIt) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=2", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", DateTime(), at(10, 0)));
    EXPECT_EQ(desk.run(at(9, 45)), "X 20 10:00 (20 09:45)");
    desk.dismiss("X");
    EXPECT_EQ(desk.run(at(9, 44, 0, 21), 60), "") << "nor does the series ring in its place";
    desk.start();
    EXPECT_EQ(desk.run(at(9, 45, 0, 21), 60), "M 21 10:00 (21 09:45)");
}

// What was put off is no occurrence that would have been shown with it.
TEST_F(PendingException, OneThatDoesNotSayWhatItReplacesLeavesASnoozeAlone) {
    desk.clock.time = at(8, 0, 0, 19);
    const auto master = series("M", at(10, 0, 0, 19), "FREQ=WEEKLY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", DateTime(), at(16, 0, 0, 19)));
    EXPECT_EQ(desk.check(at(9, 45, 0, 19)), "M 19 10:00 (19 09:45)");
    desk.snooze("M", 6 * 60);
    desk.check(at(10, 0, 0, 19));
    EXPECT_EQ(desk.check(at(17, 0, 0, 19)), "M 19 10:00 (19 15:45), X 19 16:00 (19 15:45)")
        << "both fell due in a sleep";
    EXPECT_EQ(desk.check(at(17, 0, 10, 19)), "");
    desk.start();
    EXPECT_EQ(desk.check(at(17, 1, 0, 19)), "M 19 10:00 (19 15:45), X 19 16:00 (19 15:45)");
}

// Another program has put it off.
TEST_F(PendingException, OneThatDoesNotSayWhatItReplacesLeavesASnoozeInTheRowAlone) {
    const auto master = series("M", at(10, 0), "FREQ=WEEKLY", {15});
    master->NextReminder = at(15, 45);
    desk.put(master);
    desk.put(exceptionTo(*master, "X", DateTime(), at(16, 0)));
    desk.check(at(9, 0));
    EXPECT_EQ(desk.check(at(17, 0)), "M 20 10:00 (20 15:45), X 20 16:00 (20 15:45)");
}

TEST_F(PendingException, OneThatDoesNotSayWhatItReplacesLeavesWhatStoodInTheListAlone) {
    const auto master = series("M", at(10, 0), "FREQ=WEEKLY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", DateTime(), at(16, 0)));
    EXPECT_EQ(desk.check(at(9, 45)), "M 20 10:00 (20 09:45)");
    EXPECT_EQ(desk.check(at(15, 45)), "X 20 16:00 (20 15:45)");
    desk.start();
    EXPECT_EQ(desk.check(at(15, 46)), "M 20 10:00 (20 09:45), X 20 16:00 (20 15:45)");
}

TEST_F(PendingException, OneThatDoesNotSayWhatItReplacesTakesNoOccurrenceOfAnotherDay) {
    desk.clock.time = at(8, 0);
    const auto master = series("M", at(10, 0, 0, 23), "FREQ=WEEKLY", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", DateTime(), at(16, 0, 0, 25)));
    desk.check(at(9, 0));
    EXPECT_EQ(desk.check(at(17, 0, 0, 25)), "M 23 10:00 (23 09:45), X 25 16:00 (25 15:45)")
        << "missed in a sleep";
    EXPECT_EQ(desk.check(at(17, 0, 10, 25)), "");
    desk.start();
    EXPECT_EQ(desk.check(at(17, 1, 0, 25)), "M 23 10:00 (23 09:45), X 25 16:00 (25 15:45)");
}

TEST_F(PendingException, ADeletedExceptionHasNoOccurrenceAndReplacesItsStart) {
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

TEST_F(PendingException, ASnoozeEndsWhenItsOccurrenceIsTakenAway) {
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

TEST_F(PendingException,
       NothingIsLeftOfASnoozedOccurrenceThatIsTakenAwayAfterALaterOneWasDismissed) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY;COUNT=2", {15, -4320}));
    desk.run(at(9, 45));
    desk.snooze("A", 60 * 24 + 5);
    EXPECT_EQ(desk.run(at(9, 45, 0, 21), 60), "A 21 10:00 (21 09:45)");
    desk.change("A", [](calEvent& e) {
        e.recurrence = R"(["RRULE:FREQ=DAILY;COUNT=2","EXDATE:20261120T100000"])";
    });
    desk.run(at(10, 40, 0, 21), 60);
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(11, 0, 0, 23), 60), "");
    EXPECT_EQ(desk.run(at(10, 0, 0, 24), 60), "A 21 10:00 (24 10:00)");
}

TEST_F(PendingException, ASnoozeOutlivesAReTimedSeries) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
    desk.run(at(9, 45));
    desk.snooze("A", 60);
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(18, 0);
        e.EndDateTime = at(18, 30);
    });
    EXPECT_EQ(desk.run(at(10, 45)), "A 20 10:00 (20 10:45)");
}

}  // namespace
}  // namespace vl
