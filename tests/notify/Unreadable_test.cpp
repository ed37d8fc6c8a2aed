// Checks while the file cannot be read, and after.
#include <gtest/gtest.h>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::single;

class Unreadable : public testing::Test {
protected:
    Unreadable() { desk.clock.time = at(8, 0); }

    struct Heard {
        std::string taken;
        int sounds = 0;
        int popUps = 0;
    };
    /// A check every ten seconds, both ends included.
    Heard checks(DateTime from, DateTime to) {
        Heard heard;
        for (DateTime when = from; when <= to; when = when.addSeconds(10)) {
            desk.program->screen.forget();
            heard.taken += desk.check(when);
            heard.sounds += static_cast<int>(desk.program->screen.count("PlayReminderSound"));
            heard.popUps += static_cast<int>(desk.program->screen.popUps.size());
        }
        return heard;
    }

    FileDesk desk;
};

// Taken a tick early it is found twice more, whether the file is there or not.
TEST_F(Unreadable, WhatIsListedMeanwhileIsHeardNoMoreThanWithTheFileThere) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(11, 0), {15}));
    desk.check(at(9, 0));
    desk.program->state.sNotifType = "P";
    const Heard there = checks(at(9, 40), at(10, 0));
    EXPECT_EQ(there.taken, "A 09:45");
    EXPECT_EQ(there.sounds, 3);
    EXPECT_EQ(there.popUps, 3);
    desk.takeFileAway();
    const Heard away = checks(at(10, 40), at(11, 0));
    EXPECT_EQ(away.taken, "B 10:45");
    EXPECT_EQ(away.sounds, 3);
    EXPECT_EQ(away.popUps, 3);
    desk.bringFileBack();
    const Heard back = checks(at(11, 0, 10), at(11, 10));
    EXPECT_EQ(back.taken, "");
    EXPECT_EQ(back.sounds, 0);
}

TEST_F(Unreadable, WhatFellDueUnseenComesWhenTheFileIsBack) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 0));
    desk.clock.time = at(9, 1);
    desk.put(single("B", at(23, 30), {20}));
    desk.takeFileAway();
    EXPECT_EQ(checks(at(9, 30), at(10, 0)).taken, "A 09:45");
    EXPECT_EQ(desk.check(at(23, 20)), "");
    EXPECT_EQ(desk.check(at(8, 0, 0, 21)), "");
    desk.bringFileBack();
    const Heard back = checks(at(8, 0, 10, 21), at(8, 10, 0, 21));
    EXPECT_EQ(back.taken, "B 23:10");
    EXPECT_EQ(back.sounds, 1) << "that was long ago";
}

// The window looks an event up when it is to be opened.
TEST_F(Unreadable, ALookUpThatFailsIsNoFailedCheck) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 0));
    desk.takeFileAway();
    EXPECT_EQ(desk.program->period.EventByGUID("A"), nullptr);
    desk.bringFileBack();
    EXPECT_NE(desk.program->db.ReadTrouble().number, ErrNo::None);
    EXPECT_EQ(desk.check(at(9, 10)), "");
    EXPECT_EQ(desk.program->cycle.UncheckedSince(), at(9, 10));
    EXPECT_EQ(desk.program->db.ReadTrouble().number, ErrNo::None) << "for the status line";
}

}  // namespace
}  // namespace vl
