// What was noted of an event that is away for a while, and did not come to its row before.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::single;

class LeftOver : public testing::Test {
protected:
    void change(FileDesk& desk, const char* status) {
        const Variant value = status != nullptr ? Variant(status) : Variant(Null{});
        desk.file.change("A", {{"status", value}, {"Modified", Variant(desk.clock.time)}});
    }
    /// Marked as done while nobody can write; then the program ends, and the file is there again.
    void markAsDone(FileDesk& desk) {
        desk.put(single("A", at(8, 0), {15}));
        desk.put(single("B", at(20, 0), {15}));
        ASSERT_EQ(desk.check(at(9, 0)), "A 07:45");
        desk.takeFileAway();
        desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This, true);
        desk.program.reset();
        desk.bringFileBack();
        ASSERT_EQ(desk.file.value("A", "status"), Variant(""));
    }
};

// Who takes back what was all done has said what its status is to be; of others the act is the last
// word.
TEST_F(LeftOver, WhatWasDoneIsWrittenWhenTheEventIsThereAgainUnlessItsHostHasTakenItBack) {
    struct Case {
        const char* what;
        std::function<void(FileDesk&)> takeAway;
        std::function<void(FileDesk&)> bringBack;
        const char* status;
    };
    const auto enter = [](FileDesk& desk) { desk.put(single("A", at(8, 0), {15})); };
    const Case cases[] = {
        {"taken back", [&](FileDesk& desk) { change(desk, "AllDone"); },
         [&](FileDesk& desk) { change(desk, ""); }, ""},
        {"without a status", [&](FileDesk& desk) { change(desk, nullptr); },
         [&](FileDesk& desk) { change(desk, ""); }, "AllDone"},
        {"entered anew", [](FileDesk& desk) { desk.file.remove("A"); }, enter, "AllDone"},
        {"deleted, and entered anew",
         [](FileDesk& desk) {
             desk.file.change("A", {{"Deleted", Variant(true)}});
         },
         [&](FileDesk& desk) {
             desk.file.remove("A");
             enter(desk);
         },
         "AllDone"},
    };
    for (const Case& c : cases) {
        for (const bool isAwayForLong : {false, true}) {
            SCOPED_TRACE(std::string(c.what) + (isAwayForLong ? ", for long" : ""));
            FileDesk desk;
            ASSERT_NO_FATAL_FAILURE(markAsDone(desk));
            c.takeAway(desk);
            EXPECT_EQ(desk.check(at(9, 1)), "");
            for (int minute = 2; isAwayForLong && minute < 6; ++minute) {
                desk.file.change("B", {{"Modified", Variant(at(9, minute))}});
                EXPECT_EQ(desk.check(at(9, minute)), "");
            }
            desk.clock.time = at(9, 10);
            c.bringBack(desk);
            for (const int minute : {11, 12, 13}) {
                EXPECT_EQ(desk.check(at(9, minute)), "");
            }
            EXPECT_EQ(desk.file.value("A", "status"), Variant(c.status));
            EXPECT_EQ(desk.file.value("A", "Dismissed"), Variant(at(9, 0)));
            EXPECT_EQ(desk.program->state.waitingWrites, 0);
        }
    }
}

// What was done was done to the time that it had.
TEST_F(LeftOver, WhatIsEnteredAnewAtAnotherTimeIsNotDone) {
    for (const bool isToday : {true, false}) {
        SCOPED_TRACE(isToday);
        FileDesk desk;
        ASSERT_NO_FATAL_FAILURE(markAsDone(desk));
        desk.file.remove("A");
        EXPECT_EQ(desk.check(at(9, 1)), "");
        desk.clock.time = at(9, 2);
        desk.put(single("A", isToday ? at(8, 30) : at(10, 0, 0, 21), {15}));
        EXPECT_EQ(desk.check(at(9, 3)), isToday ? "A 08:15" : "");
        EXPECT_EQ(desk.file.value("A", "status"), Variant(""));
        EXPECT_EQ(desk.check(at(9, 4)), "");
        EXPECT_EQ(desk.file.value("A", "status"), Variant(""));
        EXPECT_EQ(desk.check(at(9, 45, 0, 21)).find("A") == std::string::npos, isToday);
    }
}

}  // namespace
}  // namespace vl
