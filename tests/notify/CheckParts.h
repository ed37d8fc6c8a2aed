// The check with all that it works on, wired as the program does it.
#pragma once

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "RecordingScreen.h"
#include "notify/Acts.h"
#include "notify/CheckCycle.h"
#include "support/ManualClock.h"

namespace vl::test {

/// What the program holds while it runs, and forgets when it ends.
template <class Screen = RecordingScreen>
struct CheckParts {
    /// With a ledger in memory.
    explicit CheckParts(const ManualClock& clock) : now(clock), ledger(clock) {}
    /// `forScreen` makes the screen.
    template <class... ForScreen>
    CheckParts(const ManualClock& clock, const std::string& ledgerPath, ForScreen&&... forScreen)
        : now(clock), screen(std::forward<ForScreen>(forScreen)...), ledger(clock, ledgerPath) {}

    /// The ledger goes by another clock.
    CheckParts(const ManualClock& clock, const ManualClock& ledgerClock,
               const std::string& ledgerPath)
        : now(clock), ledger(ledgerClock, ledgerPath) {}

    const ManualClock& now;
    DBRemindUtils db;
    CalEvents reminders{db, now};
    CalEvents period{db, now};
    ReminderState state;
    Screen screen;
    Ledger ledger;
    Acts acts{reminders, period, db, now, ledger, state};
    CheckCycle cycle{reminders, period, db, now, state, screen, ledger, acts};
};

/// A test of the check under a clock that stands at `start`.
struct TurnedClock {
    ManualClock clock;
};
class CheckTest : public testing::Test, protected TurnedClock, protected CheckParts<> {
protected:
    explicit CheckTest(DateTime start) : TurnedClock{ManualClock(start)}, CheckParts<>(clock) {}
};

}  // namespace vl::test
