// How the computer's clock goes from check to check.
#pragma once

#include <cstdint>
#include <optional>

#include "base/DateTime.h"
#include "events/WrongClock.h"

namespace vl {

/// Tells a clock that goes on from one that is turned back or jumps forward. Zones, and hours that
/// come twice or not at all, are no matter.
class ClockWatch {
public:
    /// What a check sees, local; to be told of each.
    void look(DateTime now);

    /// What was seen since the last `take`, put together.
    ClockWord take();

private:
    DateTime now_;
    std::optional<DateTime> moment_;  // UTC, of the last look
    bool turnedBack_ = true;
    bool jumped_ = false;
    std::int64_t goneOn_ = 0;  // milliseconds since it was turned back, without what it has skipped
};

}  // namespace vl
