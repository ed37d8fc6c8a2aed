// The EXDATEs and RDATEs of an event, and the two clocks they are read with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "app/TimeZone.h"
#include "base/DateTime.h"

#include "RecurrenceTime.h"

namespace vl::recurrence {

/// From the wall clock of the series' zone to local time, remembering the stretch of time in which
/// neither zone's clocks change. For all-day events nothing is converted.
class LocalClock {
public:
    LocalClock(const TimeZone& zone, const TimeZone& local, bool allDay) noexcept
        : zone_(zone), local_(local) {
        if (allDay) {
            begin_ = -kFar;
            end_ = kFar;
        }
    }

    std::int64_t toLocal(std::int64_t wall) noexcept {
        look(wall);
        return wall + shift_;
    }
    /// What tells two moments of the series' zone apart; equal for a skipped time and the one it
    /// is moved to.
    std::int64_t toUtc(std::int64_t wall) noexcept {
        look(wall);
        return wall - offset_;
    }
    /// The stretch of wall time around what was converted last, and what local time adds there.
    std::int64_t stretchBegin() const noexcept { return begin_; }
    std::int64_t stretchEnd() const noexcept { return end_; }
    std::int64_t shift() const noexcept { return shift_; }

private:
    static constexpr std::int64_t kFar = std::int64_t{1} << 60;

    void look(std::int64_t wall) noexcept {
        if (wall < begin_ || wall >= end_) {
            findStretch(wall);
        }
    }
    void findStretch(std::int64_t wall) noexcept;

    const TimeZone& zone_;
    const TimeZone& local_;
    std::int64_t begin_ = 0;
    std::int64_t end_ = 0;
    std::int64_t offset_ = 0;
    std::int64_t shift_ = 0;
};

struct RecurrenceLists {
    std::vector<DateTime> exDates;
    std::vector<DateTime> rDates;
    std::vector<std::int64_t> exMoments;  ///< UTC seconds (all-day: midnights), sorted
    std::vector<std::int64_t> exDays;     ///< whole days of the series' zone, sorted
    std::vector<std::int64_t> added;      ///< local seconds of the RDATEs that are not excluded

    bool excludes(std::int64_t wall, LocalClock& clock) const noexcept {
        return (!exMoments.empty() &&
                std::binary_search(exMoments.begin(), exMoments.end(), clock.toUtc(wall))) ||
               (!exDays.empty() &&
                std::binary_search(exDays.begin(), exDays.end(), floorDiv(wall, kDaySeconds)));
    }
};

}  // namespace vl::recurrence
