#include "notify/UpdateCycle.h"

#include "base/ErrorState.h"

namespace vl {

UpdateCycle::UpdateCycle(CheckCycle& check, const Clock& clock, ReminderState& state,
                         ReminderScreen& screen, bool debugMode)
    : check_(check), clock_(clock), state_(state), screen_(screen), debugMode_(debugMode) {}

void UpdateCycle::Tick() {
    const ErrScope scope;
    attempt([&] { screen_.ShowTime(); });
    renewDay();
    attempt([&] { state_.bHasFocus = screen_.GetHasFocus(); });
    if (screen_.IsWindowVisible()) {
        renewWindow();
    }
    retune();
}

void UpdateCycle::renewDay() {
    const DateTime today = clock_.today();
    if (today != state_.CurrentDate) {
        state_.CurrentDate = today;
        attempt([&] { screen_.DoPeriod(); });
    }
}

void UpdateCycle::renewWindow() {
    check_.DoRemoveDeleted();
    attempt([&] { screen_.UpdateUI(); });
    ++state_.UpdateCount;
    // Two tests on purpose: the count is back at 0 before it can pass 10, so the grids are
    // renewed by the checks and never from here.
    if (state_.UpdateCount >= 2 && state_.UpdateCount > 10) {
        attempt([&] { screen_.UpdateG1(); });
    }
    if (state_.UpdateCount == 10) {
        state_.UpdateCount = 0;
    }
}

void UpdateCycle::retune() {
    const int visible = debugMode_ ? kCheckDebug : kCheckVisible;
    const int wanted = screen_.IsWindowVisible() ? visible : kCheckHidden;
    if (screen_.CheckInterval() != wanted) {
        screen_.SetCheckInterval(wanted);
    }
}

}  // namespace vl
