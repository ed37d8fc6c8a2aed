// The wheel over a grid: asked for inside the message, done by the actions timer.
#include <utility>

#include <QApplication>
#include <QScrollBar>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

constexpr auto kMouseWheel = "MouseWheel";

int perNotch(const QScrollBar& bar, bool pages) {
    return pages ? bar.pageStep() : QApplication::wheelScrollLines() * bar.singleStep();
}

}  // namespace

void frmDDE::RequestMouseWheel(Grid& target, const WheelTurn& turn) {
    const ErrScope scope;
    attempt([&] {
        if (wheelTarget_ != &target || wheelPages_ != turn.pages) {
            MouseWheel();  // what waits for another grid is not added to this one
            wheelRest_ = {};
        }
        wheelTarget_ = &target;
        wheelPages_ = turn.pages;
        if (turn.pixels.isNull()) {
            state_.iWheelRotationX += turn.rotation.x();
            state_.iWheelRotationY += turn.rotation.y();
        } else {
            wheelPixels_ += turn.pixels;
        }
        state_.pendingActions->Add(kMouseWheel, kMouseWheel);
        if (!TimerActions.isActive()) {
            TimerActions.start();
            // The first one is not kept waiting; a hand on a touchpad would feel it.
            QMetaObject::invokeMethod(this, &frmDDE::TimerActions_Tick, Qt::QueuedConnection);
        }
    });
}

void frmDDE::TimerActions_Tick() {
    const ErrScope scope;
    if (state_.pendingActions->Count() == 0) {
        TimerActions.stop();
        return;
    }
    attempt([&] {
        if (text::equalsNoCase(state_.pendingActions->Item(1).toText(), kMouseWheel)) {
            MouseWheel();
        }
    });
    state_.pendingActions->Remove(1);
}

void frmDDE::MouseWheel() {
    const QPoint pixels = std::exchange(wheelPixels_, QPoint());
    if (!wheelTarget_) {
        return;
    }
    const int acrossNotch = perNotch(*wheelTarget_->horizontalScrollBar(), wheelPages_);
    const int downNotch = perNotch(*wheelTarget_->verticalScrollBar(), wheelPages_);
    const int x = pixels.x() + takeScroll(state_.iWheelRotationX, wheelRest_.rx(), acrossNotch);
    const int y = pixels.y() + takeScroll(state_.iWheelRotationY, wheelRest_.ry(), downNotch);
    wheelTarget_->ScrollDown(-y, -x);
}

}  // namespace vl
