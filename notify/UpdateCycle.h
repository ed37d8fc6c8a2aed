// The update tick: keeps clock, day, focus and the checks' interval current.
#pragma once

#include "base/Clock.h"
#include "notify/CheckCycle.h"
#include "notify/ReminderScreen.h"
#include "notify/ReminderState.h"

namespace vl {

/// Milliseconds between checks.
inline constexpr int kCheckVisible = 10000;
inline constexpr int kCheckHidden = 20000;
inline constexpr int kCheckDebug = 2000;

/// What the window's update timer runs, once a second while the window is visible and with each
/// check while it is hidden. A procedure: carries on after failing steps.
class UpdateCycle {
public:
    /// `debugMode` shortens the checks' interval. What is handed in must outlive the cycle.
    UpdateCycle(CheckCycle& check, const Clock& clock, ReminderState& state, ReminderScreen& screen,
                bool debugMode);

    void Tick();

private:
    void renewDay();
    void renewWindow();
    void retune();

    CheckCycle& check_;
    const Clock& clock_;
    ReminderState& state_;
    ReminderScreen& screen_;
    bool debugMode_;
};

}  // namespace vl
