#include "RecurrenceLists.h"

namespace vl::recurrence {

void LocalClock::findStretch(std::int64_t wall) noexcept {
    const auto moved = [](std::int64_t moment, std::int64_t by) {
        return std::clamp(moment, -kFar, kFar) + by;
    };
    const TimeZone::Stretch zone = zone_.wallStretch(wall);
    const TimeZone::Stretch local = local_.utcStretch(wall - zone.offset);
    offset_ = zone.offset;
    shift_ = local.offset - zone.offset;
    begin_ = std::max(moved(zone.begin, 0), moved(local.begin, zone.offset));
    end_ = std::min(moved(zone.end, 0), moved(local.end, zone.offset));
}

}  // namespace vl::recurrence
