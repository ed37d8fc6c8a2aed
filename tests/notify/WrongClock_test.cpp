// A clock that is far off for a while: what it makes the program do is undone, or was not done.
#include <gtest/gtest.h>

#include <tuple>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::single;

DateTime day(int year, int month, int dayOfMonth, int hour = 9, int minute = 0) {
    return DateTime::fromCivil(year, month, dayOfMonth, hour, minute, 0);
}

class WrongClock : public testing::Test {
protected:
    WrongClock() { desk.clock.time = at(8, 0); }

    /// Ends the program, and starts it and lets it check at this time.
    std::string restart(DateTime when) {
        desk.program.reset();
        return desk.check(when);
    }
    std::string statusOf(const std::string& GUID) {
        DBRemindUtils db;
        db.DBFullName = desk.file.path();
        return CalEvents(db, desk.clock).EventByGUID(GUID)->status;
    }

    FileDesk desk;
};

TEST_F(WrongClock, AStartFarAheadFinishesNothingThatIsStillToCome) {
    desk.put(single("Old", day(2026, 11, 2, 18), {15}));
    desk.put(single("A", day(2026, 11, 21, 18), {15}));
    desk.put(single("B", day(2026, 12, 24, 18), {15}));
    desk.check(at(9, 0));
    EXPECT_EQ(restart(day(2027, 11, 20)), "") << "a year ahead";
    EXPECT_EQ(statusOf("Old"), "AllDone");
    EXPECT_EQ(statusOf("A"), "");
    EXPECT_EQ(restart(at(9, 20)), "") << "right again";
    EXPECT_EQ(desk.check(day(2026, 11, 21, 17, 45)), "A 17:45");
    EXPECT_EQ(desk.check(day(2026, 12, 24, 17, 45)), "B 17:45");
}

// A second start under such a clock does finish them; they are taken back.
TEST_F(WrongClock, WhatWasFinishedUnderAClockAheadComesAllTheSame) {
    desk.put(single("A", day(2026, 11, 21, 18), {15}));
    desk.put(single("Done", day(2026, 11, 21, 18), {15}));
    desk.put(test::series("S", day(2026, 11, 16, 8), "FREQ=WEEKLY;COUNT=4", {15}));
    desk.check(at(9, 0));
    const auto done = objectAt<calEvent>(*desk.program->period.mCol, "Done");
    desk.program->acts.Dismiss({done, done->StartDateTime, {}}, DismissMode::This, true);
    restart(day(2027, 11, 20));
    restart(day(2027, 11, 20, 10));
    ASSERT_EQ(statusOf("A"), "AllDone");
    ASSERT_EQ(statusOf("S"), "AllDone");
    EXPECT_EQ(desk.check(at(9, 20)), "") << "right again, without a new start";
    EXPECT_EQ(statusOf("A"), "");
    EXPECT_EQ(statusOf("S"), "");
    EXPECT_EQ(statusOf("Done"), "AllDone") << "by its user";
    EXPECT_EQ(desk.check(day(2026, 11, 21, 17, 45)), "A 17:45");
    EXPECT_EQ(desk.check(day(2026, 11, 23, 7, 45)), "S 07:45");
}

// It is in neither set when the clock is put back, since it was finished by the wrong one.
TEST_F(WrongClock, WhatWasDoneUnderAClockAheadIsSetRightAlsoWhereTheEventWasFinishedByIt) {
    desk.put(single("A", at(10, 0), {15, 5, -60}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.clock.time = day(2026, 12, 6);
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    restart(day(2026, 12, 6));
    restart(day(2026, 12, 6, 10));
    ASSERT_EQ(statusOf("A"), "AllDone");
    EXPECT_EQ(desk.check(at(9, 56)), "");
    EXPECT_EQ(desk.check(at(9, 56, 10)), "") << "what had come by then was dismissed";
    EXPECT_EQ(desk.check(at(11, 0)), "A 11:00");
}

// Somebody has the file in the moment in which the clock is asked.
TEST_F(WrongClock, AnActStaysInDoubtAsLongAsItsEventCannotBeRead) {
    desk.put(single("A", at(10, 0), {15, 5, -60}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.clock.time = day(2026, 12, 6);
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    restart(day(2026, 12, 6));
    restart(day(2026, 12, 6, 10));
    ASSERT_EQ(statusOf("A"), "AllDone") << "neither set has it";
    desk.clock.time = at(9, 56);
    const auto isDoubted = [&] {
        return !desk.program->ledger.find(desk.file.path(), "A")->doubted.empty();
    };
    CalEvents& reminders = desk.program->reminders;
    desk.takeFileAway();
    EXPECT_TRUE(reminders.TakeClock({at(9, 56), true, false, false}));
    EXPECT_FALSE(isDoubted());
    desk.bringFileBack();
    EXPECT_TRUE(reminders.TakeClock({at(9, 57), false, false, false}));
    EXPECT_TRUE(isDoubted());
    EXPECT_FALSE(reminders.TakeClock({at(10, 57), false, false, true})) << "set right";
    desk.file.remove("A");
    EXPECT_FALSE(reminders.TakeClock({at(9, 57), true, false, false})) << "nothing to set right";
}

// What the host has written since then has stamps of before that check.
TEST_F(WrongClock, AStartBeforeTheLastCheckMeetsEverythingAnew) {
    desk.put(single("Dealt", at(9, 10), {15}));
    EXPECT_EQ(desk.check(at(12, 0)), "Dealt 08:55");
    desk.program->acts.Dismiss(desk.listed.at("Dealt"), DismissMode::This);
    desk.clock.time = at(8, 59);
    const auto fair = single("Fair", at(8, 0, 0, 19), {15});
    fair->EndDateTime = at(18, 0, 0, 24);
    desk.put(fair);
    EXPECT_EQ(restart(at(9, 0)), "Fair 07:45");
}

// What was entered after that run fell due while no program was there to see it.
TEST_F(WrongClock, AfterChecksByAClockAheadAStartAsksFromTheOneBeforeThem) {
    for (const int hours : {7, 24, 24 * 5, 24 * 400}) {
        SCOPED_TRACE(hours);
        FileDesk fresh;
        fresh.clock.time = at(8, 0);
        fresh.put(single("Dealt", at(9, 10), {15}));
        ASSERT_EQ(fresh.check(at(9, 0)), "Dealt 08:55");
        fresh.program->acts.Dismiss(fresh.listed.at("Dealt"), DismissMode::This);
        fresh.check(at(9, 1).addMinutes(hours * 60));
        fresh.program.reset();
        fresh.clock.time = at(9, 2);
        fresh.put(single("C", at(16, 0), {15}));
        fresh.put(single("D", at(17, 0), {15}));
        fresh.put(single("E", day(2026, 11, 21, 10), {15}));
        fresh.clock.time = day(2026, 11, 21, 8);
        EXPECT_EQ(fresh.check(day(2026, 11, 21, 8)), "C 15:45, D 16:45");
    }
}

// The events of months without the program go a start later, or the day after.
TEST_F(WrongClock, AfterMonthsWithoutTheProgramWhatIsPastIsFinishedTheDayAfter) {
    desk.put(single("A", day(2026, 11, 21, 18), {15}));
    desk.check(at(9, 0));
    EXPECT_EQ(restart(day(2027, 11, 20)), "");
    EXPECT_EQ(statusOf("A"), "");
    desk.check(day(2027, 11, 21));
    EXPECT_EQ(statusOf("A"), "AllDone");
}

// ---- the host moves what is finished, and leaves the status alone: it is the program's

class MovedWhenFinished : public WrongClock {
protected:
    void move(const std::string& GUID, DateTime start) {
        desk.file.change(GUID, {{"StartDateTime", Variant(start)},
                                {"EndDateTime", Variant(start.addMinutes(30))},
                                {"Modified", Variant(desk.clock.time)}});
    }
};

TEST_F(MovedWhenFinished, ComesAtItsNewTime) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::All);
    EXPECT_EQ(restart(at(9, 0, 0, 22)), "");
    EXPECT_EQ(restart(at(9, 0, 0, 23)), "");
    ASSERT_EQ(statusOf("A"), "AllDone");
    move("A", at(18, 0, 0, 24));
    EXPECT_EQ(desk.check(at(9, 1, 0, 23)), "");
    EXPECT_EQ(statusOf("A"), "");
    EXPECT_EQ(desk.check(at(17, 45, 0, 24)), "A 17:45");
}

TEST_F(MovedWhenFinished, ComesAlsoWhenItIsMovedWhileTheProgramIsOff) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 0));
    EXPECT_EQ(restart(at(9, 0, 0, 23)), "A 09:45") << "missed";
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    EXPECT_EQ(restart(at(9, 0, 0, 24)), "");
    ASSERT_EQ(statusOf("A"), "AllDone");
    desk.program.reset();
    move("A", at(18, 0, 0, 25));
    EXPECT_EQ(restart(at(9, 0, 0, 25)), "");
    EXPECT_EQ(desk.check(at(17, 45, 0, 25)), "A 17:45");
}

struct MovedTo {
    const char* what;
    DateTime start;
    const char* comes;
};
class MovedIntoToday : public MovedWhenFinished,
                       public testing::WithParamInterface<std::tuple<MovedTo, bool>> {};

TEST_P(MovedIntoToday, ComesAtOnceWhereItsReminderIsPastByThen) {
    const auto& [to, isOff] = GetParam();
    SCOPED_TRACE(to.what);
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    EXPECT_EQ(restart(at(9, 0, 0, 22)), "");
    EXPECT_EQ(restart(at(9, 0, 0, 23)), "");
    ASSERT_EQ(statusOf("A"), "AllDone");
    EXPECT_EQ(desk.check(at(8, 49, 50, 24)), "");
    if (isOff) {
        desk.program.reset();
    }
    desk.clock.time = at(8, 50, 0, 24);
    move("A", to.start);
    EXPECT_EQ(desk.check(at(8, 50, 10, 24)), to.comes);
    EXPECT_EQ(desk.check(at(8, 50, 20, 24)), "");
}

INSTANTIATE_TEST_SUITE_P(
    Starts, MovedIntoToday,
    testing::Combine(testing::Values(MovedTo{"in ten minutes", at(9, 0, 0, 24), "A 08:45"},
                                     MovedTo{"has begun", at(8, 30, 0, 24), "A 08:15"},
                                     MovedTo{"was today", at(7, 0, 0, 24), "A 06:45"},
                                     MovedTo{"was yesterday", at(7, 0, 0, 23), ""}),
                     testing::Bool()));

// The row of the list is from before the move, whatever the seconds of the two say.
TEST_F(MovedWhenFinished, ComesAlsoWhenItIsMovedWhileItsUserMarksItAsDone) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.clock.time = at(9, 46);
    move("A", at(18, 0));
    desk.clock.time = at(9, 46, 5);
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This, true);
    EXPECT_EQ(desk.check(at(9, 46, 10)), "");
    EXPECT_EQ(statusOf("A"), "");
    EXPECT_EQ(desk.check(at(17, 45)), "A 17:45");
}

TEST_F(MovedWhenFinished, WhatItsUserMarkedAsDoneStaysSoWhereverThatWas) {
    desk.put(single("Here", at(10, 0), {15}));
    desk.put(single("Elsewhere", at(10, 0, 0, 22), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "Here 09:45");
    desk.program->acts.Dismiss(desk.listed.at("Here"), DismissMode::This, true);
    desk.file.change("Elsewhere",
                     {{"status", Variant("AllDone")}, {"Dismissed", Variant(at(9, 46))}});
    EXPECT_EQ(restart(at(9, 47)), "");
    EXPECT_EQ(statusOf("Here"), "AllDone");
    EXPECT_EQ(statusOf("Elsewhere"), "AllDone");
    EXPECT_EQ(desk.check(at(9, 45, 0, 22)), "");
    // Moved after that it is an event with a time to come.
    move("Elsewhere", at(18, 0, 0, 23));
    desk.check(at(9, 46, 0, 22));
    EXPECT_EQ(desk.check(at(17, 45, 0, 23)), "Elsewhere 17:45");
}

}  // namespace
}  // namespace vl
