// Two copies of the program over one ledger, of which one runs for months: what the other drops
// when it starts.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "LedgerTest.h"

namespace vl {
namespace {

class LedgerCopies : public test::LedgerTest {
protected:
    /// Months go by, and another copy starts.
    void otherStartsMonthsLater(Ledger& ledger) {
        clock.time = clock.time.addDays(100);
        ledger.noteCheck(kDb, clock.now());
        ledgerStarts(clock.time);
    }

    const DateTime old = at(10, 0);
    const SeriesName kWeekly{"weekly"};
};

TEST_F(LedgerCopies, WhatAnotherDropsIsKnownUntilTheRunEnds) {
    Ledger ledger(clock, path.string());
    ledger.change(kDb, "{Series}", "this", [&](EventState& state) {
        state.at(old).handled = old;
        state.at(old.addDays(1)).muted = Muted::ForEver;
        state.at(old.addDays(1)).spared = true;
        state.at(old.addDays(60)).handled = old.addDays(60);
        state.row["NextReminder"].after = "2027-11-20 09:45:00";
        state.acted = old;
    });
    ledger.change(kDb, "{Single}", "this", [&](EventState& state) {
        state.at(old).handled = old;
        state.acted = old;
    });
    ledger.keepReplaced(kDb, kWeekly, old);
    ledger.keepReplaced(kDb, kWeekly, old.addDays(60));
    otherStartsMonthsLater(ledger);
    {
        const Ledger third(clock, path.string());
        ASSERT_EQ(third.find(kDb, "{Series}")->occurrences.size(), 1U);
        ASSERT_FALSE(third.find(kDb, "{Single}"));
        ASSERT_EQ(third.replaced(kDb, kWeekly).size(), 1U);
    }
    const std::uint64_t replacedVersion = ledger.replacedVersion();
    for (const bool isReadTwice : {false, true}) {
        SCOPED_TRACE(isReadTwice);
        ledger.ReadAgain();
        const EventState* series = ledger.find(kDb, "{Series}");
        ASSERT_TRUE(series);
        ASSERT_EQ(series->occurrences.size(), 3U);
        EXPECT_EQ(series->find(old)->handled, old);
        EXPECT_EQ(series->find(old.addDays(1))->muted, Muted::ForEver);
        EXPECT_FALSE(series->find(old.addDays(1))->spared) << "it was ended, too";
        ASSERT_TRUE(ledger.find(kDb, "{Single}"));
        EXPECT_EQ(ledger.find(kDb, "{Single}")->find(old)->handled, old);
        EXPECT_EQ(ledger.replaced(kDb, kWeekly).size(), 2U);
        EXPECT_EQ(ledger.replacedVersion(), replacedVersion) << "nothing has changed";
        Ledger other(clock, path.string());
        put(other, "{Other}", clock.now());
    }
}

// A start goes by its clock, but at most by a day after the last check.
TEST_F(LedgerCopies, SoIsWhatAnotherDropsByAClockThatIsADayAhead) {
    Ledger ledger(clock, path.string());
    ledger.change(kDb, "{A}", "this", [&](EventState& state) {
        state.at(old).handled = old;
        state.acted = old;
    });
    clock.time = old.addDays(90);
    ledger.noteCheck(kDb, clock.now());
    ledgerStarts(old.addDays(91));
    clock.time = old.addDays(90);
    ASSERT_FALSE(Ledger(clock, path.string()).find(kDb, "{A}"));
    ledger.ReadAgain();
    ASSERT_TRUE(ledger.find(kDb, "{A}"));
    EXPECT_EQ(ledger.find(kDb, "{A}")->find(old)->handled, old);
}

// A time since when reminders may be waiting must not stand in the file without what was dealt with
// after it.
TEST_F(LedgerCopies, WhatItWritesThenSaysAllThatItKnows) {
    Ledger ledger(clock, path.string());
    ledger.change(kDb, "{A}", "this", [&](EventState& state) {
        state.at(old).handled = old;
        state.openSince = old.addDays(-1);
        state.row["NextReminder"].after = "2027-11-20 09:45:00";
        state.acted = old;
    });
    otherStartsMonthsLater(ledger);
    for (const int daysLater : {0, 1}) {
        SCOPED_TRACE(daysLater);
        ledger.change(kDb, "{A}", "listed", [&](EventState& state) {
            state.at(clock.now()).listed = clock.now().addDays(daysLater);
            state.openSince = old.addDays(-1);
        });
        const Ledger next(clock, path.string());
        ASSERT_TRUE(next.find(kDb, "{A}"));
        EXPECT_GT(next.find(kDb, "{A}")->openSince, old);
    }
}

TEST_F(LedgerCopies, WhatTheOtherHasEndedDoesNotComeBack) {
    struct Case {
        const char* what;
        std::function<void(OccurrenceState&)> before;
        std::function<void(Ledger&)> act;
    };
    const auto ends = [&](Ledger& other) {
        other.change(kDb, "{A}", "this", [&](EventState& state) {
            state.at(old) = OccurrenceState{};
            state.at(old).start = old;
            state.acted = clock.now();
        });
    };
    const Case cases[] = {
        {"a snooze", [&](OccurrenceState& one) { one.snoozed = old.addDays(300); }, ends},
        {"a row of the list", [&](OccurrenceState& one) { one.listed = old; }, ends},
        {"everything, reactivated", [&](OccurrenceState& one) { one.handled = old; },
         [&](Ledger& other) {
             other.forget(kDb, "{A}", "reactivate", [&](EventState& state) {
                 state.acted = clock.now();
                 state.newlyMet = true;
             });
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::filesystem::remove(path);
        clock.time = at(14, 0);
        Ledger ledger(clock, path.string());
        ledger.change(kDb, "{A}", "test", [&](EventState& state) {
            c.before(state.at(old));
            state.acted = old;
        });
        clock.time = clock.time.addDays(100);
        ledger.noteCheck(kDb, clock.now());
        {
            Ledger other(clock, path.string());
            c.act(other);
        }
        ledger.ReadAgain();
        ASSERT_TRUE(ledger.find(kDb, "{A}"));
        EXPECT_TRUE(ledger.find(kDb, "{A}")->occurrences.empty());
    }
}

// The other has dropped earlier ones that stood in the list; of those the last alone is shown.
TEST_F(LedgerCopies, OfWhatHasLeftNothingIsListed) {
    Ledger ledger(clock, path.string());
    ledger.change(kDb, "{A}", "listed", [&](EventState& state) {
        for (const int days : {0, 1, 2}) {
            state.at(old.addDays(days)).listed = old.addDays(days);
        }
        state.at(old).handled = old;
        state.acted = old;
    });
    otherStartsMonthsLater(ledger);
    {
        Ledger other(clock, path.string());
        other.change(kDb, "{A}", "this", [&](EventState& state) {
            state.at(old.addDays(2)).listed = DateTime();
            state.at(old.addDays(2)).handled = clock.now();
        });
    }
    ledger.ReadAgain();
    const EventState* state = ledger.find(kDb, "{A}");
    ASSERT_TRUE(state);
    EXPECT_FALSE(state->listed());
    ASSERT_TRUE(state->find(old));
    EXPECT_EQ(state->find(old)->handled, old);
}

TEST_F(LedgerCopies, ALedgerThatIsNotOfLongAgoIsWhatTheFileSays) {
    Ledger ledger(clock, path.string());
    put(ledger, "{A}", old);
    ledger.change(kDb, "{B}", "this", [&](EventState& state) { state.at(old).handled = old; });
    ledger.keepReplaced(kDb, kWeekly, old);
    clock.time = clock.time.addDays(60);
    test::writeFile(path, "{\"of\":\"another\"}\n");
    ledger.ReadAgain();
    EXPECT_FALSE(ledger.find(kDb, "{A}"));
    EXPECT_FALSE(ledger.find(kDb, "{B}"));
    EXPECT_TRUE(ledger.replaced(kDb, kWeekly).empty());
}

// ---- checks

TEST_F(LedgerCopies, BehindChecksThatLieAheadTheOneBeforeThemIsStillKnown) {
    Ledger ledger(clock, path.string());
    for (const int day : {18, 20, 25, 26}) {
        ledger.noteCheck(kDb, at(9, 0, day));
    }
    ledgerStarts(at(14, 0, 26));
    Ledger again(clock, path.string());
    EXPECT_EQ(again.lastCheck(kDb), at(9, 0, 26));
    EXPECT_EQ(again.lastCheckBy(kDb, at(9, 0, 26)), at(9, 0, 26));
    EXPECT_EQ(again.lastCheckBy(kDb, at(8, 59, 26)), at(9, 0, 25));
    EXPECT_EQ(again.lastCheckBy(kDb, at(8, 0, 23)), at(9, 0, 20));
    EXPECT_TRUE(again.lastCheckBy(kDb, at(8, 0, 18)).isZero());
    EXPECT_TRUE(again.lastCheckBy("/other.RemindDB", at(9, 0, 26)).isZero());
    // The clock is right again.
    again.noteCheck(kDb, at(8, 0, 23));
    const Ledger third(clock, path.string());
    for (const Ledger* one : {&static_cast<const Ledger&>(again), &third}) {
        EXPECT_EQ(one->lastCheck(kDb), at(8, 0, 23));
        EXPECT_EQ(one->lastCheckBy(kDb, at(9, 0, 27)), at(8, 0, 23));
    }
}

TEST_F(LedgerCopies, ChecksOfSomeWeeksAreKept) {
    Ledger ledger(clock, path.string());
    for (int day = 0; day < 400; ++day) {
        ledger.noteCheck(kDb, at(9, 0).addDays(day));
    }
    ledgerStarts(at(14, 0).addDays(400));
    EXPECT_EQ(lines(), 31U);
    const Ledger again(clock, path.string());
    EXPECT_EQ(again.lastCheck(kDb), at(9, 0).addDays(399));
    EXPECT_EQ(again.lastCheckBy(kDb, at(9, 0).addDays(370)), at(9, 0).addDays(370));
    EXPECT_TRUE(again.lastCheckBy(kDb, at(9, 0).addDays(368)).isZero());
}

}  // namespace
}  // namespace vl
