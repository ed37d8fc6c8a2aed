// What its user has marked as done, and what the host, a snooze or a wrong clock make of it later.
#include <gtest/gtest.h>

#include <string>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

const Variant kAllDone("AllDone");

class DoneAndThen : public testing::TestWithParam<bool> {
protected:
    /// The program ends, and starts with the next check, where that is what is tried.
    void perhapsRestart() {
        if (GetParam()) {
            desk.program.reset();
        }
    }
    void act(DismissMode mode, bool markDone = false) {
        desk.program->acts.Dismiss(desk.listed.at("S"), mode, markDone);
    }
    /// A check every minute, each reminder dismissed as it comes; the last parts of the days' and
    /// times at which they came.
    std::string come(DateTime until) {
        std::string came;
        while (desk.clock.time < until) {
            if (!desk.check(desk.clock.time.addMinutes(1)).empty()) {
                came += formatDateTime(desk.clock.time).substr(8, 8) + ", ";
                act(DismissMode::This);
            }
        }
        return came;
    }
    Variant status() { return *desk.file.value("S", "status"); }

    FileDesk desk;
};

// The 21st was dismissed, the 22nd marked as done: nothing was left. Other reminders are of both.
class DoneAndOtherReminders : public DoneAndThen {
protected:
    static std::shared_ptr<calEvent> meeting(int minutes) {
        return series("S", at(10, 0, 0, 21), "FREQ=DAILY;COUNT=2", {minutes});
    }
    void finish() {
        desk.clock.time = at(8, 0, 0, 18);
        desk.put(meeting(2880));
        ASSERT_EQ(desk.check(at(8, 1, 0, 18)), "");
        ASSERT_EQ(desk.check(at(10, 0, 0, 19)), "S 10:00");
        act(DismissMode::This);
        ASSERT_EQ(desk.check(at(10, 0)), "S 10:00");
        act(DismissMode::This, true);
        ASSERT_EQ(status(), kAllDone);
        ASSERT_EQ(desk.check(at(10, 1)), "");
        desk.clock.time = at(12, 0);
    }
};

TEST_P(DoneAndOtherReminders, TheOneBeforeComesByThem) {
    ASSERT_NO_FATAL_FAILURE(finish());
    desk.put(meeting(15));
    EXPECT_EQ(desk.check(at(12, 0, 10)), "");
    EXPECT_EQ(desk.check(at(12, 0, 20)), "");
    perhapsRestart();
    EXPECT_EQ(come(at(12, 0, 0, 22)), "21 09:45, ") << "the last one is done";
}

TEST_P(DoneAndOtherReminders, AlsoWhereTheHostLeavesTheStatusAlone) {
    ASSERT_NO_FATAL_FAILURE(finish());
    desk.file.change("S", {{"reminders", Variant(meeting(15)->reminders.str())},
                           {"Modified", Variant(at(12, 0))}});
    EXPECT_EQ(desk.check(at(12, 0, 10)), "");
    EXPECT_EQ(desk.check(at(12, 0, 20)), "");
    perhapsRestart();
    EXPECT_EQ(come(at(12, 0, 0, 22)), "21 09:45, ");
}

TEST_P(DoneAndOtherReminders, AlsoWhereTheProgramWasOffOverThem) {
    ASSERT_NO_FATAL_FAILURE(finish());
    desk.put(meeting(15));
    EXPECT_EQ(desk.check(at(12, 0, 10)), "");
    desk.program.reset();
    EXPECT_EQ(desk.check(at(8, 0, 0, GetParam() ? 22 : 21).addMinutes(180)), "S 09:45");
}

// Nor do they silence what goes on, where they are past by then.
TEST_P(DoneAndThen, OtherRemindersThatArePastComeOfWhatGoesOn) {
    const auto meeting = [](std::initializer_list<int> minutes) {
        auto daily = series("S", at(9, 0), "FREQ=DAILY;COUNT=2", minutes);
        daily->EndDateTime = at(18, 0);
        daily->LoadRecurrence();
        return daily;
    };
    desk.clock.time = at(8, 0, 0, 19);
    desk.put(meeting({15}));
    EXPECT_EQ(come(at(9, 0)), "20 08:45, ");
    const auto event = objectAt<calEvent>(*desk.program->period.mCol, "S");
    desk.program->acts.Dismiss({event, at(9, 0, 0, 21), at(8, 45, 0, 21)}, DismissMode::This, true);
    ASSERT_EQ(status(), kAllDone);
    EXPECT_EQ(desk.check(at(9, 1)), "");
    desk.clock.time = at(10, 0, 5);
    desk.put(meeting({15, -30}));
    perhapsRestart();
    EXPECT_EQ(come(at(12, 0, 0, 21)), "20 10:01, ") << "that of 09:30; the last one is done";
}

// The series of two is done, and moved by a day; the first is put off, all of the last dismissed.
TEST_P(DoneAndThen, ASnoozeOfAnotherOccurrenceOutlivesADismissalOfTheLast) {
    desk.clock.time = at(8, 0, 0, 18);
    desk.put(series("S", at(10, 0, 0, 18), "FREQ=DAILY;COUNT=2", {15}));
    EXPECT_EQ(come(at(9, 0, 0, 19)), "18 09:45, ");
    EXPECT_EQ(desk.check(at(9, 45, 0, 19)), "S 09:45");
    act(DismissMode::This, true);
    ASSERT_EQ(status(), kAllDone);
    desk.clock.time = at(12, 0, 0, 19);
    desk.put(series("S", at(10, 0, 0, 20), "FREQ=DAILY;COUNT=2", {15}));
    EXPECT_EQ(desk.check(at(12, 0, 10, 19)), "");
    EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
    desk.program->acts.Snooze(desk.listed.at("S"), 3 * 1440);
    EXPECT_EQ(desk.check(at(9, 45, 0, 21)), "S 09:45");
    act(DismissMode::All);
    EXPECT_EQ(desk.check(at(9, 47, 0, 21)), "");
    EXPECT_NE(status(), kAllDone);
    perhapsRestart();
    EXPECT_EQ(come(at(12, 0, 0, 24)), "23 09:45, ");
}

// What is only dismissed is not done: what a clock far ahead has finished of it comes.
TEST_P(DoneAndThen, ADismissalOfTheLastDoesNotEndTheSeriesForAWrongClock) {
    desk.clock.time = at(8, 0);
    desk.put(series("S", at(10, 0), "FREQ=DAILY;COUNT=5", {15}));
    desk.put(single("B", at(12, 0).addDays(90), {5}));
    ASSERT_EQ(desk.check(at(8, 1)), "");
    const auto event = objectAt<calEvent>(*desk.program->period.mCol, "S");
    desk.program->acts.Dismiss({event, at(10, 0, 0, 24), at(9, 45, 0, 24)}, DismissMode::All);
    ASSERT_EQ(desk.check(at(8, 2)), "");
    for (const DateTime ahead :
         {at(8, 0).addDays(18), at(8, 1).addDays(18), at(8, 1).addDays(19)}) {
        if (!desk.check(ahead).empty()) {
            EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 23));
            act(DismissMode::This);
        }
    }
    ASSERT_EQ(status(), kAllDone);
    perhapsRestart();
    desk.check(at(9, 0));
    desk.check(at(9, 0, 10));
    EXPECT_EQ(come(at(12, 0, 0, 24)), "20 09:45, 21 09:45, 22 09:45, ")
        << "that of the 23rd was listed by that clock, and dismissed";
}

// Nor what another program has dismissed of it in its row.
TEST_P(DoneAndThen, ADismissalElsewhereDoesNotEndTheSeriesForAWrongClock) {
    desk.clock.time = at(8, 0, 0, 19);
    desk.put(series("S", at(10, 0, 0, 19), "FREQ=DAILY;COUNT=4", {15}));
    ASSERT_EQ(desk.check(at(8, 1, 0, 19)), "");
    desk.file.change("S", {{"Dismissed", Variant(at(9, 46, 0, 19))}});
    desk.program.reset();
    EXPECT_EQ(desk.check(at(9, 47, 0, 19)), "");
    desk.file.change("S", {{"status", kAllDone}});
    perhapsRestart();
    desk.clock.time = at(8, 0);
    EXPECT_EQ(come(at(12, 0, 0, 22)), "20 09:45, 21 09:45, 22 09:45, ");
}

TEST_P(DoneAndThen, ASeriesThatAnExceptionHasLeftStaysDone) {
    desk.clock.time = at(8, 0, 0, 17);
    const auto meetings = series("S", at(10, 0), "FREQ=DAILY;COUNT=3", {2880, 15});
    const auto moved = single("X", at(10, 0, 0, 25), {15});
    moved->RecurrenceState = 3;
    moved->recurringEventId = meetings->id;
    moved->RExceptionStartTimeOrig = at(10, 0, 0, 21);
    desk.put(meetings);
    desk.put(moved);
    desk.put(single("B", at(20, 0, 0, 29), {5}));
    EXPECT_EQ(come(at(9, 59)), "18 10:00, 20 09:45, ");
    EXPECT_EQ(desk.check(at(10, 0)), "S 10:00");
    act(DismissMode::This, true);
    ASSERT_EQ(status(), kAllDone);
    perhapsRestart();
    for (const int minute : {1, 2, 3}) {
        desk.file.change("B", {{"Subject", Variant(std::to_string(minute))},
                               {"Modified", Variant(at(10, minute))}});
        EXPECT_EQ(desk.check(at(10, minute)), "");
        EXPECT_EQ(status(), kAllDone) << minute;
    }
}

INSTANTIATE_TEST_SUITE_P(Restarts, DoneAndThen, testing::Bool());
INSTANTIATE_TEST_SUITE_P(Restarts, DoneAndOtherReminders, testing::Bool());

}  // namespace
}  // namespace vl
