#include "notify/ClockWatch.h"

#include <utility>

#include "app/TimeZone.h"

namespace vl {

void ClockWatch::look(DateTime now) {
    const DateTime moment = TimeZone::local().toUtc(now);
    const bool goesBack = moment_ && moment < *moment_;
    const bool jumps = !moment_ || moment > moment_->addMinutes(kOffMinutes);
    if (goesBack) {
        goneOn_ = 0;
    } else if (!jumps) {
        goneOn_ += moment.milliseconds() - moment_->milliseconds();
    }
    turnedBack_ = turnedBack_ || goesBack;
    jumped_ = jumped_ || jumps;
    now_ = now;
    moment_ = moment;
}

ClockWord ClockWatch::take() {
    constexpr std::int64_t kHour = 3'600'000;
    return {now_, std::exchange(turnedBack_, false), std::exchange(jumped_, false),
            goneOn_ >= kHour};
}

}  // namespace vl
