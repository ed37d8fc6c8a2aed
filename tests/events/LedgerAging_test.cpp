// What leaves the ledger, and what stays.
#include <gtest/gtest.h>

#include <filesystem>

#include "LedgerTest.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

using LedgerAging = test::LedgerTest;

TEST_F(LedgerAging, EntriesLeaveNinetyDaysAfterTheirOccurrenceIsOver) {
    struct Case {
        const char* what;
        int daysAgo;
        bool snoozed;
        bool kept;
    };
    static constexpr Case cases[] = {
        {"89 days", 89, false, true},
        {"91 days", 91, false, false},
        {"91 days, but snoozed", 91, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            const DateTime start = at(10, 0).addDays(-c.daysAgo);
            ledger.change(kDb, "{A}", "test", [&](EventState& state) {
                state.at(start).handled = start;
                state.at(start).end = start.addMinutes(30);
                state.at(start).snoozed = c.snoozed ? at(15, 0) : DateTime();
                state.acted = start;
            });
        }
        const Ledger compacted(clock, path.string());
        const Ledger again(clock, path.string());
        EXPECT_EQ(again.find(kDb, "{A}") != nullptr, c.kept);
    }
}

TEST_F(LedgerAging, WhatTheRowCouldStillSayOutlivesItsOccurrences) {
    {
        Ledger ledger(clock, path.string());
        ledger.change(kDb, "{A}", "this", [&](EventState& state) {
            snooze(state, at(10, 0).addDays(-100), DateTime());
            state.row["NextReminder"].after = "2026-11-27 09:45:00";
        });
    }
    { const Ledger compacted(clock, path.string()); }
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{A}")->occurrences.empty());
    EXPECT_EQ(again.find(kDb, "{A}")->note("NextReminder")->after, "2026-11-27 09:45:00");
}

TEST_F(LedgerAging, AnEventStaysAsLongAsItsRowWouldBringASnoozeBack) {
    struct Case {
        const char* what;
        const char* NextReminder;
        const char* Dismissed;
        RowWord said;
        bool kept;
    };
    const DateTime old = at(10, 0).addDays(-100);
    const Case cases[] = {
        {"dismissed after its snooze", "2026-08-12 10:15:00", "2026-08-12 10:16:00", {}, false},
        {"dismissed before its snooze", "2026-08-12 10:15:00", "2026-08-12 10:05:00", {}, true},
        {"snoozed and not dismissed", "2026-08-12 10:15:00", "1899-12-30", {}, true},
        {"reactivated", "1899-12-30", "1899-12-30", {}, false},
        {"a snooze of another program",
         "2026-08-12 10:15:00",
         "2026-08-12 10:16:00",
         {old, DateTime()},
         true},
        {"a dismissal of another program",
         "2026-08-12 10:15:00",
         "2026-08-12 10:16:00",
         {DateTime(), old},
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            ledger.change(kDb, "{A}", "this", [&](EventState& state) {
                state.at(old).handled = old;
                state.acted = old;
                state.row["NextReminder"] = {{"1899-12-30"}, c.NextReminder};
                state.row["Dismissed"] = {{"1899-12-30"}, c.Dismissed};
                state.word = c.said;
            });
        }
        ledgerStarts(at(10, 0));
        const Ledger again(clock, path.string());
        ASSERT_EQ(again.find(kDb, "{A}") != nullptr, c.kept);
        EXPECT_TRUE(!c.kept || again.find(kDb, "{A}")->occurrences.empty());
    }
}

TEST_F(LedgerAging, AnEventStaysAsLongAsItsRowWaits) {
    for (const bool waits : {false, true}) {
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            ledger.change(kDb, "{A}", "hide", [&](EventState& state) {
                state.acted = at(10, 0).addDays(-200);
                state.row["Hidden"] = {{"0"}, "-1"};
                state.waits = waits;
            });
        }
        ledgerStarts(at(10, 0));
        const Ledger again(clock, path.string());
        EXPECT_EQ(again.find(kDb, "{A}") != nullptr, waits);
    }
}

TEST_F(LedgerAging, WhatStandsInTheListStaysAndOfSeveralTheLast) {
    {
        Ledger ledger(clock, path.string());
        ledger.change(kDb, "{A}", "listed", [&](EventState& state) {
            for (const int daysAgo : {200, 150, 120}) {
                const DateTime start = at(10, 0).addDays(-daysAgo);
                state.at(start).handled = start;
                state.at(start).listed = daysAgo > 120 ? start : DateTime();
            }
        });
    }
    ledgerStarts(at(10, 0));
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    ASSERT_EQ(again.find(kDb, "{A}")->occurrences.size(), 1U);
    EXPECT_EQ(again.find(kDb, "{A}")->listed()->start, at(10, 0).addDays(-150));
}

TEST_F(LedgerAging, NothingThatHasLeftCanBeAskedForAgain) {
    const DateTime dealtWith = at(10, 0).addDays(-120);
    for (const bool isListed : {true, false}) {
        SCOPED_TRACE(isListed);
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            ledger.change(kDb, "{A}", "this", [&](EventState& state) {
                state.at(dealtWith).handled = dealtWith;
                state.at(dealtWith).end = dealtWith.addMinutes(30);
                state.at(at(10, 0)).handled = at(9, 45);
                state.at(at(10, 0)).listed = isListed ? at(9, 50) : DateTime();
                state.openSince = dealtWith.addMinutes(-15);
            });
            ledger.change(kDb, "{B}", "this", [&](EventState& state) {
                state.at(at(10, 0)).handled = at(9, 45);
                state.openSince = at(9, 45);
            });
        }
        ledgerStarts(at(10, 0));
        const Ledger again(clock, path.string());
        ASSERT_TRUE(again.find(kDb, "{A}") && again.find(kDb, "{B}"));
        const DateTime since = again.find(kDb, "{A}")->openSince;
        EXPECT_GT(since, dealtWith.addMinutes(30));
        EXPECT_EQ(since <= dealtWith.addDays(3), isListed) << "what came later waits behind a row";
        EXPECT_GE(since, at(10, 0).addDays(isListed ? -118 : -88)) << "on whatever clock";
        EXPECT_LT(since, at(10, 0).addDays(-80));
        EXPECT_EQ(again.find(kDb, "{B}")->openSince, at(9, 45)) << "it is of today";
    }
}

TEST_F(LedgerAging, ARunThatAddsToAnEventBringsNothingBackThatItsStartHasDropped) {
    const DateTime dealtWith = at(10, 0).addDays(-120);
    {
        Ledger ledger(clock, path.string());
        ledger.change(kDb, "{A}", "this", [&](EventState& state) {
            state.at(dealtWith).handled = dealtWith;
            state.openSince = dealtWith.addMinutes(-15);
            state.acted = at(9, 0);
        });
    }
    {
        Ledger started(clock, path.string());
        started.change(kDb, "{A}", "listed",
                       [](EventState& state) { state.at(at(10, 0)).listed = at(9, 45); });
    }
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_FALSE(again.find(kDb, "{A}")->find(dealtWith));
    EXPECT_GT(again.find(kDb, "{A}")->openSince, dealtWith);
}

TEST_F(LedgerAging, NothingIsForgottenWhileItRuns) {
    Ledger ledger(clock, path.string());
    put(ledger, "{A}", at(10, 0));
    ledger.change(kDb, "{A}", "this",
                  [](EventState& state) { state.at(at(10, 0)).snoozed = DateTime(); });
    clock.time = clock.time.addDays(100);
    for (int i = 0; i < 600; ++i) {
        put(ledger, "{B}", at(10, 0).addDays(i % 5));
    }
    EXPECT_LT(lines(), 400U) << "it has written its file anew";
    clock.time = clock.time.addDays(-100);
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{A}")->find(at(10, 0)));
}

TEST_F(LedgerAging, AReplacedStartStaysAsLongAsWhatItHasEnded) {
    struct Case {
        const char* what;
        int daysAgo;  // the occurrence
        bool snoozed;
        bool ofSeries;
        bool kept;
    };
    static constexpr Case cases[] = {
        {"nothing was known of it", 400, false, true, false},
        {"snoozed", 120, true, true, true},
        {"snoozed, by another clock a day before", 121, true, true, true},
        {"snoozed, by another clock a day after", 119, true, true, true},
        {"another one is snoozed", 150, true, true, false},
        {"listed", 120, false, true, true},
        {"listed, by another clock a day after", 119, false, true, true},
        {"one before it is listed", 150, false, true, true},
        {"one after it is listed", 100, false, true, false},
        {"a single event before it is listed", 150, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            ledger.keepReplaced(kDb, {"master"}, at(10, 0).addDays(-120));
            ledger.change(kDb, "{A}", "test", [&](EventState& state) {
                const DateTime start = at(10, 0).addDays(-c.daysAgo);
                state.at(start).handled = start;
                if (c.daysAgo < 400) {
                    (c.snoozed ? state.at(start).snoozed : state.at(start).listed) = start;
                }
                state.openOf = c.ofSeries ? start : DateTime();
            });
        }
        ledgerStarts(at(10, 0));
        EXPECT_EQ(Ledger(clock, path.string()).replaced(kDb, {"master"}).size(), c.kept ? 1U : 0U);
    }
}

TEST_F(LedgerAging, AReplacedStartWaitsForTheFirstRowOfItsOwnDatabase) {
    struct Case {
        const char* what;
        int daysAgo[2];  // the rows of two series
        const char* database;
        bool kept;
    };
    static constexpr Case cases[] = {
        {"the first is before it", {150, 100}, kDb, true},
        {"the second is before it", {100, 150}, kDb, true},
        {"both come after it", {100, 110}, kDb, false},
        {"of another database", {150, 150}, "/other.RemindDB", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove(path);
        {
            Ledger ledger(clock, path.string());
            ledger.keepReplaced(kDb, {"master"}, at(10, 0).addDays(-120));
            for (const int i : {0, 1}) {
                const DateTime start = at(10, 0).addDays(-c.daysAgo[i]);
                ledger.change(c.database, i == 0 ? "{A}" : "{B}", "test", [&](EventState& state) {
                    state.at(start).listed = start;
                    state.openOf = start;
                });
            }
        }
        ledgerStarts(at(10, 0));
        EXPECT_EQ(Ledger(clock, path.string()).replaced(kDb, {"master"}).size(), c.kept ? 1U : 0U);
    }
}

TEST_F(LedgerAging, AClockThatIsFarAheadForOnceDropsNothing) {
    {
        Ledger ledger(clock, path.string());
        put(ledger, "{A}", at(10, 0));
        ledger.change(kDb, "{A}", "this",
                      [](EventState& state) { state.at(at(10, 0)).snoozed = DateTime(); });
        ledger.noteCheck(kDb, clock.now());
    }
    clock.time = clock.time.addDays(1000);
    { const Ledger ahead(clock, path.string()); }
    clock.time = clock.time.addDays(-1000);
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{A}")->find(at(10, 0)));
}

// Beside a time since when reminders may be waiting stands what has been dealt with since.
TEST_F(LedgerAging, AFileThatIsRemovedIsWrittenAnewWithWhatIsOld) {
    Ledger ledger(clock, path.string());
    put(ledger, "{A}", at(10, 0));
    ledger.change(kDb, "{A}", "this",
                  [](EventState& state) { state.at(at(10, 0)).snoozed = DateTime(); });
    clock.time = clock.time.addDays(100);
    ledger.noteCheck(kDb, clock.now());
    fs::remove(path);
    ledger.ReadAgain();
    clock.time = clock.time.addDays(-100);
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{A}")->find(at(10, 0)));
}

TEST_F(LedgerAging, ManyReplacedStartsAreNoReasonToWriteTheFileAnewEachTime) {
    Ledger ledger(clock, path.string());
    std::vector<Noted> starts;
    for (int i = 0; i < 600; ++i) {
        starts.push_back(notedNow(at(10, 0).addDays(i)));
    }
    ledger.keepReplaced(kDb, {{{"master"}, starts}});
    ASSERT_EQ(lines(), 600U);
    put(ledger, "{A}", at(10, 0));
    put(ledger, "{A}", at(11, 0));
    EXPECT_EQ(lines(), 602U);
}

TEST_F(LedgerAging, KeepsTheStartsThatExceptionsHaveTakenOver) {
    {
        Ledger ledger(clock, path.string());
        ledger.keepReplaced(kDb, {"Master"}, at(10, 0, 27));
        ledger.keepReplaced(kDb, {"master"}, at(10, 0, 27));
        ledger.keepReplaced(kDb, {"master"}, at(10, 0).addDays(-80));
        EXPECT_EQ(lines(), 2U);
        ledger.keepReplaced(kDb, {"master", "C:\\Work.vldb"}, at(10, 0, 28));
        ledger.keepReplaced(kDb, {"MASTER", "c:\\work.vldb"}, at(10, 0, 28));
        EXPECT_EQ(lines(), 3U);
    }
    ledgerStarts(at(10, 0).addDays(20));
    const Ledger again(clock, path.string());
    const std::vector<Noted> ofAny{notedNow(at(10, 0, 27))};
    EXPECT_EQ(again.replaced(kDb, {"MASTER"}), ofAny);
    EXPECT_EQ(again.replaced(kDb, {"MASTER", "C:\\Home.vldb"}), ofAny);
    EXPECT_EQ(again.replaced(kDb, {"MASTER", "C:\\WORK.vldb"}),
              (std::vector<Noted>{ofAny[0], notedNow(at(10, 0, 28))}));
    EXPECT_TRUE(again.replaced(kDb, {"other"}).empty());
    EXPECT_EQ(again.allReplaced(kDb).size(), 2U);
}

TEST_F(LedgerAging, ManyStartsAreKeptAtOnceAndOldOnesOnlyWhereTheirRowsGo) {
    Ledger ledger(clock, path.string());
    const std::vector<Ledger::Replaced> all = {
        {{"a"}, {notedNow(at(10, 0, 27)), notedNow(at(10, 0).addDays(-200))}},
        {{"b"}, {notedNow(at(10, 0, 28))}}};
    ledger.keepRecentlyReplaced(kDb, all);
    EXPECT_EQ(lines(), 2U);
    const std::uint64_t version = ledger.replacedVersion();
    ledger.keepRecentlyReplaced(kDb, all);
    EXPECT_EQ(lines(), 2U);
    EXPECT_EQ(ledger.replacedVersion(), version);
    Ledger other(clock, path.string());
    other.keepReplaced(kDb, {"a"}, at(10, 0, 29));
    ledger.ReadAgain();
    EXPECT_NE(ledger.replacedVersion(), version) << "what another copy has kept";
    EXPECT_EQ(ledger.replaced(kDb, {"a"}).size(), 2U);
    ledger.keepReplaced(kDb, all);
    EXPECT_EQ(lines(), 4U);
    EXPECT_EQ(ledger.replaced(kDb, {"a"}).size(), 3U);
}

}  // namespace
}  // namespace vl
