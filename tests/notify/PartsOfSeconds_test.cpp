// Times that a host has written with parts of a second, as "now plus ten minutes" has them.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

class PartsOfSeconds : public testing::TestWithParam<int> {
protected:
    PartsOfSeconds() { desk.clock.time = at(8, 0); }

    /// In the file, where nothing of ours writes them. How often the time stood there.
    int add(DateTime time) {
        std::ifstream in(desk.file.path(), std::ios::binary);
        std::stringstream all;
        all << in.rdbuf();
        std::string bytes = all.str();
        const double before = time.days();
        const double after = DateTime::fromMilliseconds(time.milliseconds() + GetParam()).days();
        int found = 0;
        for (std::size_t i = 0; i + sizeof before <= bytes.size(); ++i) {
            if (std::memcmp(&bytes[i], &before, sizeof before) == 0) {
                std::memcpy(&bytes[i], &after, sizeof after);
                ++found;
            }
        }
        std::ofstream(desk.file.path(), std::ios::binary) << bytes;
        return found;
    }

    FileDesk desk;
};

TEST_P(PartsOfSeconds, WhatWasDismissedDoesNotComeBackWithARestart) {
    for (const DismissMode mode : {DismissMode::This, DismissMode::AllButAfter, DismissMode::All}) {
        SCOPED_TRACE(static_cast<int>(mode));
        const std::string GUID = "A" + std::to_string(static_cast<int>(mode));
        desk.clock.time = at(8, 0);
        desk.program.reset();
        desk.put(single(GUID, at(10, 0, static_cast<int>(mode)), {15}));
        ASSERT_EQ(add(at(10, 0, static_cast<int>(mode))), 1);
        EXPECT_EQ(desk.check(at(8, 1)), "");
        EXPECT_EQ(desk.check(at(9, 45, 10)), GUID + " 09:45");
        desk.program->acts.Dismiss(desk.listed.at(GUID), mode);
        desk.program.reset();
        EXPECT_EQ(desk.check(at(9, 46)), "");
        desk.program.reset();
        EXPECT_EQ(desk.check(at(9, 47)), "");
    }
}

TEST_P(PartsOfSeconds, AnExceptionTakesTheStartThatItReplacesOutOfItsSeries) {
    for (const bool ofBoth : {false, true}) {
        SCOPED_TRACE(ofBoth);
        const int first = 16;
        desk.program.reset();
        desk.clock.time = at(8, 0);
        const auto master =
            series(ofBoth ? "T" : "S", at(10, 0, ofBoth ? 1 : 0, first), "FREQ=DAILY", {15});
        desk.put(master);
        auto exception = single(ofBoth ? "F" : "E", at(14, 0), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = master->id;
        exception->RExceptionStartTimeOrig = at(10, 0, ofBoth ? 1 : 0);
        desk.put(exception);
        ASSERT_EQ(add(at(10, 0, ofBoth ? 1 : 0)), 1);
        if (ofBoth) {
            ASSERT_EQ(add(at(10, 0, 1, first)), 1);
        }
        EXPECT_EQ(desk.check(at(9, 40)), "");
        EXPECT_EQ(desk.check(at(9, 50)), "");
    }
}

// No check has read it as an event: its start is read for the ledger alone, before the row is
// purged.
TEST_P(PartsOfSeconds, SoDoesOneThatWasWrittenAndDeletedBetweenTwoChecks) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        desk.program.reset();
        desk.clock.time = at(8, 0);
        const std::string name = restarts ? "T" : "S";
        const DateTime start = at(10, 0, restarts ? 1 : 0);
        const auto master = series(name, start.addDays(-4), "FREQ=DAILY", {15});
        desk.put(master);
        EXPECT_EQ(desk.check(at(8, 1)), "");
        auto exception = single("of " + name, at(14, 0), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = master->id;
        exception->RExceptionStartTimeOrig = start;
        desk.put(exception);
        desk.file.change(exception->GUID, {{"Deleted", Variant(true)}});
        ASSERT_GE(add(start), 1);
        EXPECT_EQ(desk.check(at(8, 3)), "");
        EXPECT_FALSE(desk.file.value(exception->GUID, "Deleted")) << "purged";
        if (restarts) {
            desk.program.reset();
        }
        EXPECT_EQ(desk.check(at(9, 46)), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, PartsOfSeconds, testing::Values(1, 300, -300, -1));

}  // namespace
}  // namespace vl
