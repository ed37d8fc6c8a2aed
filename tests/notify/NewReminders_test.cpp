// The host gives an event that was dealt with other reminders, alone or with its whole calendar.
#include <gtest/gtest.h>

#include <functional>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

void dismiss(FileDesk& desk) { desk.program->acts.Dismiss(desk.listed.at("S"), DismissMode::This); }

TEST(NewReminders, OfWhatIsOverAndWasDealtWithComeNoMore) {
    struct Case {
        const char* what;
        std::function<std::shared_ptr<calEvent>(int minutes)> meeting;
    };
    const Case cases[] = {
        {"weekly",
         [](int minutes) { return series("S", at(10, 0, 0, 13), "FREQ=WEEKLY", {minutes}); }},
        {"once, with a reminder weeks later, so that it is not finished",
         [](int minutes) {
             return single("S", at(10, 0), {minutes, -20 * 1440});
         }},
    };
    for (const Case& c : cases) {
        for (const bool restarts : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.what << ' ' << restarts);
            FileDesk desk;
            desk.clock.time = at(8, 0);
            desk.put(c.meeting(15));
            ASSERT_EQ(desk.check(at(8, 1)), "");
            EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
            dismiss(desk);
            EXPECT_EQ(desk.check(at(11, 0)), "");
            EXPECT_EQ(desk.check(at(9, 0, 0, 24)), "");
            desk.put(c.meeting(10));
            EXPECT_EQ(desk.check(at(9, 1, 0, 24)), "");
            if (restarts) {
                desk.program.reset();
            }
            EXPECT_EQ(desk.check(at(8, 0, 0, 25)), "");
        }
    }
}

TEST(NewReminders, OfWhatWaitedBehindAnotherStillCome) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        FileDesk desk;
        desk.clock.time = at(8, 0);
        const auto meeting = [](int minutes) {
            return series("S", at(10, 0), "FREQ=HOURLY;COUNT=3", {minutes});
        };
        desk.put(meeting(15));
        ASSERT_EQ(desk.check(at(8, 1)), "");
        EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
        EXPECT_EQ(desk.check(at(10, 46)), "") << "the second waits behind the first";
        dismiss(desk);
        desk.clock.time = at(10, 46, 20);
        desk.put(meeting(14));
        if (restarts) {
            desk.program.reset();
        }
        EXPECT_EQ(desk.check(at(10, 47)), "S 10:46");
        dismiss(desk);
        EXPECT_EQ(desk.check(at(11, 45)), "");
        EXPECT_EQ(desk.check(at(11, 46)), "S 11:46");
    }
}

// Three days before, by which two occurrences ahead should have reminded.
TEST(NewReminders, OfWhatIsAheadComeOnceTheListedOneIsDealtWith) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        FileDesk desk;
        desk.clock.time = at(8, 0);
        const auto meeting = [](int minutes) {
            return series("S", at(10, 0), "FREQ=DAILY;COUNT=3", {minutes});
        };
        desk.put(meeting(15));
        EXPECT_EQ(desk.check(at(9, 45)), "S 09:45");
        desk.clock.time = at(10, 30);
        desk.put(meeting(3 * 1440));
        EXPECT_EQ(desk.check(at(10, 30)), "") << "listed";
        EXPECT_EQ(desk.check(at(0, 10, 0, 21)), "");
        if (restarts) {
            desk.program.reset();
            EXPECT_EQ(desk.check(at(0, 20, 0, 21)), "S 10:00");
        } else {
            dismiss(desk);
            EXPECT_EQ(desk.check(at(0, 20, 0, 21)), "S 10:00");
        }
        EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 21));
        dismiss(desk);
        EXPECT_EQ(desk.check(at(0, 30, 0, 21)), "S 10:00");
        EXPECT_EQ(desk.listed.at("S").InstanceStart, at(10, 0, 0, 22));
    }
}

}  // namespace
}  // namespace vl
