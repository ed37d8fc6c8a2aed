// What the wheel has turned, until the window scrolls by it.
#pragma once

#include <QPoint>
#include <QPointer>

#include "notify/ReminderState.h"
#include "ui/Grid.h"
#include "ui/GridUtils.h"

namespace vl {

/// Turns of the wheel over one grid add up while they wait. The rotation stands in the state,
/// which must outlive the queue.
class WheelQueue {
public:
    explicit WheelQueue(ReminderState& state) : state_(state) {}

    /// What waits for another grid, or goes by another step, is scrolled first.
    void add(Grid& target, const WheelTurn& turn);
    /// Scrolls by all that waits.
    void scroll();

private:
    ReminderState& state_;
    QPointer<Grid> target_;
    QPoint pixels_;  // of devices that count in pixels
    QPoint rest_;    // less than a pixel, see `takeScroll`
    bool pages_ = false;
};

}  // namespace vl
