#include "ui/WheelQueue.h"

#include <utility>

#include <QApplication>
#include <QScrollBar>

namespace vl {

namespace {

int perNotch(const QScrollBar& bar, bool pages) {
    return pages ? bar.pageStep() : QApplication::wheelScrollLines() * bar.singleStep();
}

}  // namespace

void WheelQueue::add(Grid& target, const WheelTurn& turn) {
    if (target_ != &target || pages_ != turn.pages) {
        scroll();
        rest_ = {};
    }
    target_ = &target;
    pages_ = turn.pages;
    if (turn.pixels.isNull()) {
        state_.iWheelRotationX += turn.rotation.x();
        state_.iWheelRotationY += turn.rotation.y();
    } else {
        pixels_ += turn.pixels;
    }
}

void WheelQueue::scroll() {
    const QPoint pixels = std::exchange(pixels_, QPoint());
    if (!target_) {
        return;
    }
    const int acrossNotch = perNotch(*target_->horizontalScrollBar(), pages_);
    const int downNotch = perNotch(*target_->verticalScrollBar(), pages_);
    const int x = pixels.x() + takeScroll(state_.iWheelRotationX, rest_.rx(), acrossNotch);
    const int y = pixels.y() + takeScroll(state_.iWheelRotationY, rest_.ry(), downNotch);
    target_->ScrollDown(-y, -x);
}

}  // namespace vl
