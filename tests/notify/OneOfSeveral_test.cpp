// Acts on one occurrence of several, and on one event that stands in several lists.
#include <gtest/gtest.h>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

class OneOfSeveral : public testing::Test {
protected:
    OneOfSeveral() { desk.clock.time = at(8, 0, 0, 18); }

    /// Checks every minute, each reminder dismissed as it comes.
    std::string runTo(DateTime until) {
        std::string taken;
        while (desk.clock.time < until) {
            const std::string now = desk.check(desk.clock.time.addMinutes(1));
            taken += (taken.empty() || now.empty() ? "" : ", ") + now;
            if (!now.empty()) {
                desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This);
            }
        }
        return taken;
    }
    bool isAllDone() { return desk.file.value("S", "status") == Variant("AllDone"); }

    FileDesk desk;
};

// On the 21st and the 22nd; the last one reminds first of what is left.
TEST_F(OneOfSeveral, TheLastMarkedAsDoneSilencesNoneBeforeIt) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        FileDesk fresh;
        fresh.clock.time = at(8, 0, 0, 18);
        fresh.put(series("S", at(10, 0, 0, 21), "FREQ=DAILY;COUNT=2", {2880, 15}));
        EXPECT_EQ(fresh.check(at(10, 0, 0, 19)), "S 10:00");
        fresh.program->acts.Dismiss(fresh.listed.at("S"), DismissMode::This);
        EXPECT_EQ(fresh.check(at(10, 0)), "S 10:00");
        fresh.program->acts.Dismiss(fresh.listed.at("S"), DismissMode::This, true);
        EXPECT_NE(fresh.file.value("S", "status"), Variant("AllDone"));
        if (restarts) {
            fresh.program.reset();
        }
        EXPECT_EQ(fresh.check(at(9, 44, 0, 21)), "");
        EXPECT_EQ(fresh.check(at(9, 45, 0, 21)), "S 09:45");
        fresh.program->acts.Dismiss(fresh.listed.at("S"), DismissMode::This);
        EXPECT_EQ(fresh.check(at(9, 45, 0, 22)), "") << "the last one is done";
    }
}

TEST_F(OneOfSeveral, TheLastMarkedAsDoneIsTheEndOfItsEventWhenNoneIsLeft) {
    desk.put(series("S", at(10, 0, 0, 19), "FREQ=DAILY;COUNT=2", {15}));
    EXPECT_EQ(runTo(at(10, 30, 0, 19)), "S 09:45");
    EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
    desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This, true);
    EXPECT_TRUE(isAllDone());
}

// A view puts a snooze to an occurrence by the row's next reminder: here to that of the 22nd.
TEST_F(OneOfSeveral, ASnoozeThatAViewShowsIsOfTheOccurrenceThatWasSnoozed) {
    desk.put(series("S", at(10, 0, 0, 20), "FREQ=DAILY", {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
    desk.clock.time = at(9, 46);
    desk.program->acts.Snooze(desk.listed.at("S"), 2 * 1440);
    EXPECT_EQ(runTo(at(9, 44, 0, 22)), "S 09:45") << "of the 21st";
    const auto event = objectAt<calEvent>(*desk.program->period.mCol, "S");
    desk.program->acts.Dismiss({event, at(10, 0, 0, 22), at(9, 46, 0, 22)}, DismissMode::This);
    EXPECT_EQ(runTo(at(12, 0, 0, 22)), "S 09:45") << "of the 22nd; that of the 20th is dealt with";
}

TEST_F(OneOfSeveral, WhatHasBecomeASeriesIsAskedForAsOne) {
    desk.put(single("S", at(10, 0, 0, 18), {15}));
    EXPECT_EQ(desk.check(at(9, 45, 0, 18)), "S 09:45");
    desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This);
    EXPECT_EQ(desk.check(at(12, 0, 0, 19)), "");
    desk.clock.time = at(12, 0, 5, 19);
    desk.put(series("S", at(10, 0, 0, 18), "FREQ=DAILY", {15}));
    EXPECT_EQ(desk.check(at(12, 0, 10, 19)), "S 09:45");
    EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 19));
    desk.program.reset();
    EXPECT_EQ(desk.check(at(12, 1, 0, 19)), "S 09:45") << "it was not acted upon";
    EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 19));
    EXPECT_EQ(desk.file.value("S", "status"), Variant(""));
}

// The second falls due behind the row of the first, the day before the restart.
TEST_F(OneOfSeveral, WhatHasBecomeASeriesInTheListLosesNothingOverARestart) {
    desk.put(single("S", at(10, 0, 0, 18), {15}));
    EXPECT_EQ(desk.check(at(9, 45, 0, 18)), "S 09:45");
    desk.clock.time = at(9, 50, 0, 18);
    desk.put(series("S", at(10, 0, 0, 18), "FREQ=DAILY;COUNT=2", {15}));
    desk.check(at(9, 51, 0, 18));
    desk.check(at(9, 52, 0, 18));
    desk.check(at(9, 46, 0, 19));
    desk.check(at(9, 50));
    desk.program.reset();
    EXPECT_EQ(desk.check(at(9, 55)), "S 09:45");
    EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 19)) << "the later of two";
}

// The status was cleared by the host, and waits to be written again.
TEST_F(OneOfSeveral, WhatAnotherProgramSnoozesAfterItWasDoneComes) {
    desk.put(single("S", at(9, 0, 0, 18), {60}));
    EXPECT_EQ(desk.check(at(8, 1, 0, 18)), "S 08:00");
    desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This, true);
    ASSERT_TRUE(isAllDone());
    desk.put(single("S", at(9, 0, 0, 18), {60}));
    desk.file.change("S", {{"NextReminder", Variant(at(8, 30, 0, 18))},
                           {"Dismissed", Variant(at(8, 1, 0, 18))}});
    desk.program.reset();
    EXPECT_EQ(desk.check(at(8, 2, 0, 18)), "");
    EXPECT_FALSE(isAllDone());
    EXPECT_EQ(desk.check(at(8, 30, 0, 18)), "S 08:30");
}

}  // namespace
}  // namespace vl
