// What a clock far ahead has finished before anybody was told of it.
#include <gtest/gtest.h>

#include <optional>

#include "FileDesk.h"
#include "support/HoldingProcess.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::HoldingProcess;
using test::single;

DateTime inJanuary(int dayOfMonth, int hour) {
    return DateTime::fromCivil(2027, 1, dayOfMonth, hour, 0, 0);
}

enum class Then { RunsOn, IsStartedAnew };

class TakenBack : public testing::Test {
protected:
    /// A is to come at 17:45 on the 21st; the program ends at nine on the 20th.
    void begin() {
        desk.emplace();
        desk->clock.time = at(8, 0);
        desk->put(single("A", at(18, 0, 0, 21), {15}));
        desk->put(single("Dealt with", at(18, 0, 0, 21), {2040}));
        desk->put(single("Done", at(18, 0, 0, 21), {2040}));
        ASSERT_EQ(desk->check(at(9, 0)), "Dealt with 08:00, Done 08:00");
        desk->program->acts.Dismiss(desk->listed.at("Dealt with"), DismissMode::This);
        desk->program->acts.Dismiss(desk->listed.at("Done"), DismissMode::This, true);
        desk->program.reset();
    }
    /// By the wrong clock a start, which asks for thirty days only, and one that finishes what is
    /// older.
    void startTwiceAhead() {
        for (const int hour : {9, 10}) {
            EXPECT_EQ(desk->check(inJanuary(10, hour)), "");
            desk->program.reset();
        }
        ASSERT_EQ(statusOf("A"), "AllDone");
        desk->start();
    }
    void go(Then then) {
        if (then == Then::IsStartedAnew) {
            desk->program.reset();
        }
    }
    std::string statusOf(const char* GUID) { return desk->file.value(GUID, "status")->toText(); }

    std::optional<FileDesk> desk;
};

// It was past already when the clock was put right.
TEST_F(TakenBack, WhatASecondStartAheadHasFinishedIsAskedForWhenTheClockIsRight) {
    for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
        SCOPED_TRACE(static_cast<int>(then));
        ASSERT_NO_FATAL_FAILURE(begin());
        ASSERT_NO_FATAL_FAILURE(startTwiceAhead());
        go(then);
        EXPECT_EQ(desk->check(at(17, 50, 0, 21)), "A 17:45");
        EXPECT_EQ(statusOf("A"), "");
        EXPECT_EQ(statusOf("Done"), "AllDone");
        EXPECT_EQ(desk->check(at(17, 50, 10, 21)), "");
        desk->program->acts.Dismiss(desk->listed.at("A"), DismissMode::This);
        desk->program.reset();
        EXPECT_EQ(desk->check(at(17, 51, 0, 21)), "") << "dealt with";
    }
}

TEST_F(TakenBack, WhatARunOfDaysAheadHasFinishedIsToo) {
    for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
        SCOPED_TRACE(static_cast<int>(then));
        ASSERT_NO_FATAL_FAILURE(begin());
        for (const int day : {10, 11, 12}) {
            EXPECT_EQ(desk->check(inJanuary(day, 9)), "");
        }
        ASSERT_EQ(statusOf("A"), "AllDone");
        go(then);
        EXPECT_EQ(desk->check(at(17, 50, 0, 21)), "A 17:45");
    }
}

TEST_F(TakenBack, WhatOneStartAheadHasNotAskedForIsAskedForWithoutAnother) {
    ASSERT_NO_FATAL_FAILURE(begin());
    EXPECT_EQ(desk->check(inJanuary(10, 9)), "");
    ASSERT_EQ(statusOf("A"), "");
    EXPECT_EQ(desk->check(at(17, 50, 0, 21)), "A 17:45");
    EXPECT_EQ(desk->check(at(17, 50, 10, 21)), "");
}

// Put back too far first, and then right.
TEST_F(TakenBack, ItComesAlsoWhereItsRowCouldNotBeWrittenMeanwhile) {
    for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
        SCOPED_TRACE(static_cast<int>(then));
        ASSERT_NO_FATAL_FAILURE(begin());
        ASSERT_NO_FATAL_FAILURE(startTwiceAhead());
        {
            const HoldingProcess other(desk->file.path());
            EXPECT_EQ(desk->check(at(12, 0)), "") << "put back too far";
            go(then);
            EXPECT_EQ(desk->check(at(17, 50, 0, 21)), "A 17:45");
            EXPECT_EQ(statusOf("A"), "AllDone");
            if (then == Then::IsStartedAnew) {
                go(then);
                EXPECT_EQ(desk->check(at(9, 0, 0, 22)), "A 17:45") << "it stands in the list";
            }
        }
        EXPECT_EQ(desk->check(at(9, 0, 10, 22)), "");
        EXPECT_EQ(statusOf("A"), "") << "as soon as the file takes it";
        const auto look = desk->program->db.TakeLook();
        EXPECT_EQ(desk->check(at(9, 0, 20, 22)), "");
        EXPECT_TRUE(look.same(desk->program->db.TakeLook())) << "nobody writes";
        desk->program->acts.Dismiss(desk->listed.at("A"), DismissMode::This, true);
        desk->program.reset();
        EXPECT_EQ(desk->check(at(9, 1, 0, 22)), "");
        EXPECT_EQ(statusOf("A"), "AllDone");
    }
}

// It is another one than its row then, which still says that it is finished.
TEST_F(TakenBack, SoDoesWhatIsActedUponBeforeItsRowCouldBeWritten) {
    ASSERT_NO_FATAL_FAILURE(begin());
    desk->clock.time = at(9, 1);
    desk->put(single("B", at(18, 0, 0, 21), {15, -5}));
    ASSERT_NO_FATAL_FAILURE(startTwiceAhead());
    ASSERT_EQ(statusOf("B"), "AllDone");
    {
        const HoldingProcess other(desk->file.path());
        EXPECT_EQ(desk->check(at(17, 46, 0, 21)), "A 17:45, B 17:45");
        desk->program->acts.Dismiss(desk->listed.at("B"), DismissMode::AllButAfter);
        EXPECT_EQ(desk->check(at(18, 5, 0, 21)), "B 18:05");
    }
    EXPECT_EQ(desk->check(at(18, 5, 10, 21)), "");
    EXPECT_EQ(statusOf("B"), "");
}

// A program that knows of no snooze does so with every check.
TEST_F(TakenBack, WhatIsSnoozedComesHoweverOftenSomebodyElseFinishesIt) {
    for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
        SCOPED_TRACE(static_cast<int>(then));
        ASSERT_NO_FATAL_FAILURE(begin());
        EXPECT_EQ(desk->check(at(17, 50, 0, 21)), "A 17:45");
        desk->program->acts.Snooze(desk->listed.at("A"), 4 * 1440);
        for (const char* status : {"", "AllDone", "AllDone"}) {
            desk->file.change("A", {{"status", Variant("AllDone")}});
            EXPECT_EQ(desk->check(desk->clock.time.addDays(1)), "");
            EXPECT_EQ(statusOf("A"), status) << "nobody writes for ever";
        }
        go(then);
        EXPECT_EQ(desk->check(at(17, 50, 0, 25)), "A 17:50");
        desk->program->acts.Dismiss(desk->listed.at("A"), DismissMode::This, true);
        desk->program.reset();
        EXPECT_EQ(desk->check(at(17, 51, 0, 25)), "");
        EXPECT_EQ(statusOf("A"), "AllDone");
    }
}

// Somebody else has finished it while this program was off, and may have told of it.
TEST_F(TakenBack, WhatAnotherProgramHasFinishedIsNotWhereNoClockWasWrong) {
    for (const bool wasWrong : {false, true}) {
        SCOPED_TRACE(wasWrong);
        ASSERT_NO_FATAL_FAILURE(begin());
        if (wasWrong) {
            desk->check(at(9, 0, 0, 25));
            desk->program.reset();
            desk->check(at(9, 1));
            desk->program.reset();
        }
        desk->file.change("A", {{"status", Variant("AllDone")}});
        EXPECT_EQ(desk->check(at(17, 50, 0, 21)), wasWrong ? "A 17:45" : "");
        EXPECT_EQ(statusOf("A"), wasWrong ? "" : "AllDone");
    }
}

}  // namespace
}  // namespace vl
