// The wheel over a grid: asked for inside the message, done by the actions timer.
#include "base/ErrorState.h"
#include "base/Text.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

constexpr auto kMouseWheel = "MouseWheel";

}  // namespace

void frmDDE::RequestMouseWheel(Grid& target, const WheelTurn& turn) {
    const ErrScope scope;
    attempt([&] {
        wheel_.add(target, turn);
        state.pendingActions->Add(kMouseWheel, kMouseWheel);
        if (!TimerActions.isActive()) {
            TimerActions.start();
            // The first one is not kept waiting; a hand on a touchpad would feel it.
            firstAction_.start(0);
        }
    });
}

void frmDDE::TimerActions_Tick() {
    const ErrScope scope;
    if (state.pendingActions->Count() == 0) {
        TimerActions.stop();
        return;
    }
    attempt([&] {
        if (text::equalsNoCase(state.pendingActions->Item(1).toText(), kMouseWheel)) {
            MouseWheel();
        }
    });
    state.pendingActions->Remove(1);
}

void frmDDE::MouseWheel() { wheel_.scroll(); }

}  // namespace vl
