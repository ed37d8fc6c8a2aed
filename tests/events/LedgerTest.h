// A ledger in a folder of its own, and a clock.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "events/Ledger.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl::test {

class LedgerTest : public testing::Test {
protected:
    static constexpr const char* kDb = "/data/Velmora.RemindDB";

    static DateTime at(int hour, int minute, int day = 20) {
        return DateTime::fromCivil(2026, 11, day, hour, minute);
    }
    static void snooze(EventState& state, DateTime start, DateTime until) {
        OccurrenceState& one = state.at(start);
        one.end = start.addMinutes(30);
        one.handled = start.addMinutes(-15);
        one.snoozed = until;
        state.acted = start.addMinutes(-15);
        state.row["NextReminder"] = {{"1899-12-30"}, "2026-11-20 14:15:00"};
    }
    void put(Ledger& ledger, const char* GUID, DateTime start) {
        ledger.change(kDb, GUID, "snooze", [&](EventState& state) { snooze(state, start, start); });
    }
    // A start compacts the file.
    void ledgerStarts(DateTime when) {
        clock.time = when;
        const Ledger started(clock, path.string());
    }
    std::size_t lines() const {
        const std::string all = readFile(path);
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), '\n'));
    }

    TempFolder folder;
    std::filesystem::path path = folder / "VLReminders.ledger";
    ManualClock clock{at(14, 0)};
};

}  // namespace vl::test
