// A clock that is behind for a while, until something sets it: what was done before holds.
#include <functional>

#include <gtest/gtest.h>

#include "Desk.h"
#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::Desk;
using test::FileDesk;
using test::series;
using test::single;

enum class Ends { Never, BeforeItIsBehind, WhileItIsBehind };

struct Wrong {
    int minutes;
    Ends ends;
};
constexpr int kMinutes[] = {24, 25, 26, 60, 300, 2880};
constexpr Ends kEnds[] = {Ends::Never, Ends::BeforeItIsBehind, Ends::WhileItIsBehind};

// 26 minutes behind, the clock is 25 and some seconds behind the act.
class ClockBehind : public testing::Test {
protected:
    static void forEach(const std::function<void(const Wrong&)>& test) {
        for (const int minutes : kMinutes) {
            for (const Ends ends : kEnds) {
                SCOPED_TRACE(testing::Message() << minutes << " minutes behind, the program ends "
                                                << static_cast<int>(ends));
                test({minutes, ends});
            }
        }
    }

    /// From `when` on, half a minute of checks by a clock that is behind.
    static void isBehind(FileDesk& desk, DateTime when, const Wrong& wrong) {
        if (wrong.ends == Ends::BeforeItIsBehind) {
            desk.program.reset();
        }
        for (const int seconds : {0, 10, 20}) {
            desk.check(when.addSeconds(seconds).addMinutes(-wrong.minutes));
        }
        if (wrong.ends == Ends::WhileItIsBehind) {
            desk.program.reset();
        }
    }

    /// An event of which two reminders have come, and which is acted upon at 9:46.
    static void listA(FileDesk& desk) {
        desk.clock.time = at(8, 0);
        desk.put(single("A", at(10, 0), {60, 15}));
        EXPECT_EQ(desk.check(at(9, 0)), "A 09:00");
        EXPECT_EQ(desk.check(at(9, 45)), "");
        desk.clock.time = at(9, 46);
    }
};

TEST_F(ClockBehind, ASnoozeComesAtItsTime) {
    forEach([](const Wrong& wrong) {
        for (const int minutes : {120, 1440}) {
            SCOPED_TRACE(minutes);
            FileDesk desk;
            listA(desk);
            const DateTime until = at(9, 46).addMinutes(minutes);
            desk.program->acts.Snooze(desk.listed.at("A"), minutes);
            EXPECT_EQ(desk.check(at(9, 46, 10)), "");
            isBehind(desk, at(9, 46, 20), wrong);
            EXPECT_EQ(desk.check(at(9, 47)), "");
            EXPECT_EQ(desk.program->state.NewReminders->Count(), 0) << "whatever came meanwhile";
            EXPECT_EQ(desk.check(until.addSeconds(-20)), "");
            desk.program->screen.forget();
            EXPECT_EQ(desk.check(until).substr(0, 1), "A");
            EXPECT_EQ(desk.listed.at("A").reminder, until);
            EXPECT_EQ(desk.program->screen.count("PlayReminderSound"), 1);
            desk.program.reset();
            EXPECT_EQ(desk.check(until.addMinutes(1)).substr(0, 1), "A") << "until it is acted on";
        }
    });
}

TEST_F(ClockBehind, WhatWasDealtWithDoesNotComeBack) {
    struct Act {
        const char* name;
        DismissMode mode;
        bool done;
    };
    constexpr Act acts[] = {{"this", DismissMode::This, false},
                            {"all but after", DismissMode::AllButAfter, false},
                            {"all", DismissMode::All, false},
                            {"done", DismissMode::This, true}};
    forEach([&](const Wrong& wrong) {
        for (const Act& act : acts) {
            SCOPED_TRACE(act.name);
            FileDesk desk;
            listA(desk);
            desk.program->acts.Dismiss(desk.listed.at("A"), act.mode, act.done);
            EXPECT_EQ(desk.check(at(9, 46, 10)), "");
            isBehind(desk, at(9, 46, 20), wrong);
            EXPECT_EQ(desk.check(at(9, 47)), "");
            EXPECT_EQ(desk.program->state.NewReminders->Count(), 0);
            desk.program.reset();
            EXPECT_EQ(desk.check(at(9, 48)), "");
            EXPECT_EQ(desk.check(at(12, 0)), "");
        }
    });
}

TEST_F(ClockBehind, WhatIsHiddenStaysSo) {
    forEach([](const Wrong& wrong) {
        FileDesk desk;
        listA(desk);
        desk.program->acts.Hide(desk.listed.at("A"), true);
        desk.check(at(9, 46, 10));
        isBehind(desk, at(9, 46, 20), wrong);
        desk.check(at(9, 47));
        EXPECT_EQ(desk.file.value("A", "Hidden"), Variant(true));
    });
}

TEST_F(ClockBehind, OccurrencesThatWereEndedStaySo) {
    forEach([](const Wrong& wrong) {
        FileDesk desk;
        desk.clock.time = at(8, 0, 0, 16);
        desk.put(series("S", at(10, 0, 0, 16), "FREQ=DAILY", {15}));
        EXPECT_EQ(desk.check(at(9, 45, 0, 16)), "S 09:45");
        for (int day = 17; day <= 20; ++day) {
            EXPECT_EQ(desk.check(at(9, 45, 0, day)), "");
        }
        desk.clock.time = at(10, 50);
        desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This);
        EXPECT_EQ(desk.check(at(10, 51)), "S 09:45") << "the last one stands for those before it";
        desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This);
        EXPECT_EQ(desk.check(at(10, 52)), "");
        isBehind(desk, at(10, 52, 10), wrong);
        EXPECT_EQ(desk.check(at(10, 53)), "");
        desk.program.reset();
        EXPECT_EQ(desk.check(at(10, 54)), "");
        EXPECT_EQ(desk.check(at(9, 45, 0, 21)), "S 09:45");
    });
}

// A snooze that was shown by the clock that was behind, and dismissed again, is dismissed.
TEST_F(ClockBehind, AnActMeanwhileHolds) {
    FileDesk desk;
    listA(desk);
    desk.program->acts.Snooze(desk.listed.at("A"), 120);
    EXPECT_EQ(desk.check(at(9, 20)), "A 09:00") << "what was meant is not known";
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::All);
    EXPECT_EQ(desk.check(at(9, 47)), "");
    EXPECT_EQ(desk.check(at(11, 46)), "");
}

// ---- a clock that was ahead before, when it has not come to those acts yet

class ClockAheadBefore : public testing::Test {
protected:
    /// Dismissed at what the clock called 17:50; it is 9:05.
    ClockAheadBefore() {
        desk.put(single("A", at(18, 0), {60, 15}));
        desk.check(at(9, 0));
        EXPECT_EQ(desk.check(at(17, 50)), "A 20 18:00 (20 17:00)");
        desk.dismiss("A");
        EXPECT_EQ(desk.check(at(9, 5)), "");
    }
    Desk desk;
};

TEST_F(ClockAheadBefore, OnceItHasGoneOnForAnHourASleepIsNoClockThatIsSet) {
    EXPECT_EQ(desk.run(at(10, 5), 60), "");
    EXPECT_EQ(desk.check(at(17, 55)), "A 20 18:00 (20 17:45)");
}

TEST_F(ClockAheadBefore, TheHourIsThatOfOneRunWithoutItsSleeps) {
    EXPECT_EQ(desk.run(at(9, 35), 60), "");
    EXPECT_EQ(desk.check(at(10, 30)), "");
    desk.stop();
    EXPECT_EQ(desk.run(at(11, 0), 60), "");
    EXPECT_EQ(desk.check(at(17, 55)), "") << "the clock may have been behind";
}

TEST_F(ClockAheadBefore, WhatItHasComeToStepByStepIsRight) {
    Desk fresh;
    fresh.put(single("A", at(11, 0), {50, 35}));
    fresh.check(at(9, 0));
    EXPECT_EQ(fresh.check(at(10, 30)), "A 20 11:00 (20 10:10)");
    fresh.dismiss("A");
    EXPECT_EQ(fresh.check(at(10, 0)), "");
    EXPECT_EQ(fresh.run(at(10, 31), 60), "A 20 11:00 (20 10:25)");
    fresh.start();
    EXPECT_EQ(fresh.check(at(10, 32)), "A 20 11:00 (20 10:25)");
}

TEST_F(ClockAheadBefore, ADoubtIsKeptOverARestart) {
    desk.stop();
    EXPECT_EQ(desk.run(at(10, 10), 60), "");
    desk.stop();
    EXPECT_EQ(desk.run(at(11, 10), 60), "");
    EXPECT_EQ(desk.check(at(17, 55)), "A 20 18:00 (20 17:45)");
}

}  // namespace
}  // namespace vl
