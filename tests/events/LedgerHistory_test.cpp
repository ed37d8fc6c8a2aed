// What the checks that there were tell of the clock.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "LedgerTest.h"
#include "events/LedgerHistory.h"

namespace vl {
namespace {

// Days after the 1st of November 2026, at noon.
DateTime noon(int day) { return DateTime::fromCivil(2026, 11, 1, 12, 0, 0).addDays(day); }

std::vector<DateTime> noons(const std::vector<int>& days) {
    std::vector<DateTime> all(days.size());
    std::transform(days.begin(), days.end(), all.begin(), noon);
    return all;
}

TEST(Checks, TellWhetherAClockWasPutBack) {
    const struct {
        std::vector<int> checks;
        int now;
        bool expected;
    } cases[] = {
        {{}, 5, false},         {{5}, 5, false},       {{1, 2, 5}, 6, false},
        {{1, 2, 5}, 4, true},   {{1, 20, 5}, 6, true}, {{1, 20, 5}, 30, true},
        {{1, 20, 21}, 3, true}, {{20, 1, 2}, 3, true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.checks) + " " + std::to_string(one.now));
        EXPECT_EQ(wasPutBack(noons(one.checks), noon(one.now)), one.expected);
    }
}

TEST(Checks, TellSinceWhenNobodyHasAskedWhereOneWasTooFarAhead) {
    const struct {
        std::vector<int> checks;
        int now;
        int expected;  // -1: 0
    } cases[] = {
        {{}, 5, -1},
        {{1, 2}, 5, -1},            // nothing lies ahead
        {{1, 2, 32}, 5, -1},        // that one has asked from the 2nd on
        {{1, 2, 60}, 5, 2},         // that one from the 30th on
        {{1, 2, 60}, 45, 2},        // in between nobody has
        {{60, 61}, 5, -1},          // nothing is known of before
        {{1, 2, 60, 61}, 60, -1},   // nor is it later than what was asked for
        {{1, 2, 60, 5}, 6, -1},     // it was right again, and has asked
        {{1, 2, 60, 5, 70}, 6, 5},  // and once more
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.checks) + " " + std::to_string(one.now));
        EXPECT_EQ(skippedSince(noons(one.checks), noon(one.now), 30),
                  one.expected < 0 ? DateTime() : noon(one.expected));
    }
}

class LedgerOpen : public test::LedgerTest {};

TEST_F(LedgerOpen, KnowsOfWhichEventsSomethingIsSnoozedListedOrWritten) {
    Ledger ledger(clock, path.string());
    put(ledger, "Snoozed", at(10, 0));
    ledger.change(kDb, "Listed", "listed",
                  [](EventState& state) { state.at(at(10, 0)).listed = at(9, 45); });
    ledger.change(kDb, "Hidden", "hide", [](EventState& state) {
        state.row["Hidden"] = {{"0"}, "1"};
    });
    ledger.change(kDb, "Handled", "this",
                  [](EventState& state) { state.at(at(10, 0)).handled = at(9, 45); });
    ledger.noteCheck(kDb, at(9, 0, 21));
    ledger.noteCheck(kDb, at(9, 0, 20));
    const Ledger again(clock, path.string());
    for (const Ledger* one : {static_cast<const Ledger*>(&ledger), &again}) {
        auto open = one->withOpen(kDb);
        std::sort(open.begin(), open.end());
        EXPECT_EQ(open, (std::vector<std::string>{"Hidden", "Listed", "Snoozed"}));
        EXPECT_TRUE(one->withOpen("/other.RemindDB").empty());
        EXPECT_EQ(one->checks(kDb), (std::vector{at(9, 0, 21), at(9, 0, 20)}));
        EXPECT_TRUE(one->checks("/other.RemindDB").empty());
    }
}

}  // namespace
}  // namespace vl
