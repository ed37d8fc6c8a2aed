// What others write into the row of an event.
#include <gtest/gtest.h>

#include "Desk.h"

namespace vl {
namespace {

using test::at;
using test::Desk;
using test::series;
using test::single;

class PendingRow : public testing::Test {
protected:
    Desk desk;
};

TEST_F(PendingRow, ARowThatAnotherProgramHasChangedSpeaks) {
    desk.put(single("A", at(10, 0), {30, 15}));
    desk.run(at(9, 30));
    desk.dismiss("A", DismissMode::All);
    desk.change("A", [](calEvent& e) { e.NextReminder = at(11, 0); });
    EXPECT_EQ(desk.run(at(11, 0)), "A 20 10:00 (20 11:00)") << "it was snoozed elsewhere";
    desk.dismiss("A");
    EXPECT_EQ(desk.run(at(12, 0)), "");
}

// It supersedes nothing more once an act here has taken its place, as its first or as a later one.
TEST_F(PendingRow, WhatAnotherProgramHasSnoozedEndsWithAnActHere) {
    for (const bool repeats : {false, true}) {
        for (const bool snoozes : {false, true}) {
            SCOPED_TRACE(std::string(repeats ? "series" : "single") +
                         (snoozes ? ", snoozed" : ", dismissed"));
            Desk fresh;
            fresh.put(repeats ? series("A", at(15, 0), "FREQ=WEEKLY", {330, 15})
                              : single("A", at(15, 0), {330, 15}));
            EXPECT_EQ(fresh.run(at(9, 30)), "A 20 15:00 (20 09:30)");
            fresh.change("A", [](calEvent& e) { e.NextReminder = at(20, 0, 0, 21); });
            EXPECT_EQ(fresh.check(at(9, 31)), "");
            if (snoozes) {
                fresh.snooze("A", 10);
                EXPECT_EQ(fresh.run(at(9, 41)), "A 20 15:00 (20 09:41)");
            }
            fresh.dismiss("A");
            fresh.start();
            EXPECT_EQ(fresh.run(at(14, 45), 60), "A 20 15:00 (20 14:45)");
            fresh.dismiss("A");
            EXPECT_EQ(fresh.run(at(21, 0, 0, 21), 60), "");
        }
    }
}

TEST_F(PendingRow, WhatTheRowSaysOfAnEventWithoutALedger) {
    struct Case {
        const char* what;
        bool repeats;
        DateTime next;
        DateTime dismissed;
        DateTime modified;
        const char* taken;  // from 9:00 to noon of the next day, not acted upon
    };
    static const Case cases[] = {
        {"nothing", false, {}, {}, {}, "A 20 10:00 (20 09:30)"},
        {"dismissed", false, {}, at(9, 10), at(8, 0), ""},
        {"dismissed, then changed by the host",
         false,
         {},
         at(9, 10),
         at(9, 11),
         "A 20 10:00 (20 09:30)"},
        {"dismissed, an old next reminder", false, at(9, 10), at(9, 10), at(8, 0), ""},
        {"snoozed", false, at(9, 40), {}, {}, "A 20 10:00 (20 09:40)"},
        {"dismissed, the next one noted", false, at(9, 45), at(9, 31), at(8, 0),
         "A 20 10:00 (20 09:45)"},
        {"series, dismissed before", true, {}, at(9, 31, 0, 19), {}, "A 20 10:00 (20 09:30)"},
        {"series, dismissed today", true, {}, at(9, 31), {}, "A 21 10:00 (21 09:30)"},
        {"series, the next instance's noted",
         true,
         at(9, 30, 0, 21),
         at(9, 31),
         {},
         "A 21 10:00 (21 09:30)"},
        {"series, snoozed over a reminder",
         true,
         at(9, 50),
         at(9, 31, 0, 19),
         {},
         "A 20 10:00 (20 09:50)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Desk fresh;
        const auto e = c.repeats ? series("A", at(10, 0, 0, 16), "FREQ=DAILY", {30, 15})
                                 : single("A", at(10, 0), {30, 15});
        e->NextReminder = c.next;
        e->Dismissed = c.dismissed;
        e->Modified = c.modified;
        fresh.put(e);
        fresh.clock.time = c.dismissed > at(9, 0) ? c.dismissed : at(9, 0);
        EXPECT_EQ(fresh.run(at(12, 0, 0, 21), 60), c.taken);
    }
}

TEST_F(PendingRow, AHostThatClearsBothColumnsSaysNothing) {
    desk.put(single("A", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("A", 30);
    desk.change("A", [](calEvent& e) {
        e.NextReminder = DateTime();
        e.Dismissed = DateTime();
    });
    EXPECT_EQ(desk.run(at(10, 10)), "");
    EXPECT_EQ(desk.run(at(10, 15)), "A 20 10:00 (20 10:15)");
}

TEST_F(PendingRow, WhatIsDismissedElsewhereIsNoMoreSnoozedHere) {
    for (const bool repeats : {false, true}) {
        SCOPED_TRACE(repeats);
        Desk fresh;
        fresh.put(repeats ? series("A", at(10, 0), "FREQ=DAILY", {15})
                          : single("A", at(10, 0), {15}));
        fresh.run(at(9, 45));
        fresh.snooze("A", 60);
        fresh.change("A", [](calEvent& e) {
            e.NextReminder = DateTime();
            e.Dismissed = at(9, 50);
        });
        EXPECT_EQ(fresh.run(at(12, 0), 60), "");
        fresh.start();
        EXPECT_EQ(fresh.run(at(9, 45, 0, 21), 60), repeats ? "A 21 10:00 (21 09:45)" : "");
    }
}

TEST_F(PendingRow, WhatWasListedIsNoneAnyMoreOnceItIsSnoozedElsewhere) {
    for (const bool repeats : {false, true}) {
        SCOPED_TRACE(repeats);
        Desk fresh;
        fresh.put(repeats ? series("A", at(10, 0), "FREQ=DAILY", {15})
                          : single("A", at(10, 0), {15}));
        EXPECT_EQ(fresh.run(at(9, 45)), "A 20 10:00 (20 09:45)");
        fresh.change("A", [](calEvent& e) { e.NextReminder = at(10, 30); });
        fresh.start();
        EXPECT_EQ(fresh.check(at(10, 0)), "");
        EXPECT_EQ(fresh.check(at(10, 30)), "A 20 10:00 (20 10:30)");
    }
}

TEST_F(PendingRow, ASnoozeInTheRowIsOfAnOccurrenceThatNoExceptionHasReplaced) {
    const auto master = series("M", at(10, 0, 0, 19), "FREQ=DAILY", {15});
    master->NextReminder = at(11, 0);
    auto exception = single("X", at(16, 0), {15});
    exception->RecurrenceState = 3;
    exception->recurringEventId = master->id;
    exception->RExceptionStartTimeOrig = at(10, 0);
    desk.put(master);
    desk.put(exception);
    EXPECT_EQ(desk.run(at(11, 0)), "M 19 10:00 (20 11:00)");
    desk.snooze("M", 30);
    EXPECT_EQ(desk.run(at(11, 30)), "M 19 10:00 (20 11:30)");
}

}  // namespace
}  // namespace vl
