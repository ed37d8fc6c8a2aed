// The changes of one zone's clocks, ready to be searched.
#pragma once

#include <cstdint>
#include <vector>

#include "app/TimeZone.h"

namespace vl {

/// From `utc` on (seconds since 1899-12-30) the zone keeps `offset`.
struct ClockChange {
    std::int64_t utc;
    std::int64_t offset;
};

/// The years whose changes are written out. Later ones are looked up in the last 28 of these: in a
/// row of 28 years without a skipped leap day every kind of year (day of the week it begins with,
/// leap or not) occurs, and by then every zone's clocks follow a rule that depends on that only.
inline constexpr int kFirstZoneYear = 1890;
inline constexpr int kLastZoneYear = 2128;

class ZoneTable {
public:
    /// `changes` ascending, at least one; the first one's offset also holds before it.
    explicit ZoneTable(const std::vector<ClockChange>& changes);

    TimeZone::Stretch utcStretch(std::int64_t utc) const noexcept;
    TimeZone::Stretch wallStretch(std::int64_t wall) const noexcept;

private:
    struct Entry {
        std::int64_t begin;
        std::int64_t offset;
    };
    static TimeZone::Stretch find(const std::vector<Entry>& entries, std::int64_t moment) noexcept;

    std::vector<Entry> utc_;
    std::vector<Entry> wall_;
};

}  // namespace vl
