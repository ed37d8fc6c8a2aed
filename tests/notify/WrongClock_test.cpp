// A clock that is far off for a while: what it makes the program do is undone, or was not done.
#include <gtest/gtest.h>

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

// The events of months without the program go a start later, or the day after.
TEST_F(WrongClock, AfterMonthsWithoutTheProgramWhatIsPastIsFinishedTheDayAfter) {
    desk.put(single("A", day(2026, 11, 21, 18), {15}));
    desk.check(at(9, 0));
    EXPECT_EQ(restart(day(2027, 11, 20)), "");
    EXPECT_EQ(statusOf("A"), "");
    desk.check(day(2027, 11, 21));
    EXPECT_EQ(statusOf("A"), "AllDone");
}

}  // namespace
}  // namespace vl
