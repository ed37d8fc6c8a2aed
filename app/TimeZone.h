// The clocks of the world: from a zone's wall clock to UTC and back.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "base/DateTime.h"

namespace vl {

class ZoneTable;

/// A time zone: which offset from UTC its clocks keep at which moment.
///
/// Seconds count from 1899-12-30 00:00, on the wall clock or in UTC. Offsets are known from 1890
/// on; earlier moments take the first one. Far in the future the rule of the zone goes on.
///
/// A value, cheap to copy: all copies share one table that never changes after it was made, so
/// every method may be called from any thread. No conversion throws; one costs a binary search
/// over some hundred entries. Who converts many neighbouring moments keeps a `Stretch`.
class TimeZone {
public:
    /// The system's zone as it is now; the environment variable TZ goes before it. A later change
    /// is seen by the next call, not by a zone already made. The first call for a zone asks the C
    /// library some ten thousand times (10 ms), later ones only whether it is still the same
    /// (20 us).
    static TimeZone local();

    static TimeZone utc();

    /// A zone of the system's zone database by its exact name ("Europe/Berlin"); none when it has
    /// no such name. Labels ("GMT+05:00") and Windows names are no names of it. The first call for
    /// a name reads its file, later ones find it by name.
    static std::optional<TimeZone> named(std::string_view ianaName);

    /// A wall time that is skipped when clocks go forward is moved forward by what they skip; one
    /// that comes twice means the first.
    std::int64_t toUtc(std::int64_t wallSeconds) const noexcept;
    std::int64_t fromUtc(std::int64_t utcSeconds) const noexcept;

    /// To the nearest second.
    DateTime toUtc(DateTime wall) const noexcept;
    DateTime fromUtc(DateTime utc) const noexcept;

    /// The moments from `begin` up to, not with, `end`, for which the offset is the same: local
    /// minus UTC, in seconds.
    struct Stretch {
        std::int64_t begin = 0;
        std::int64_t end = 0;
        std::int64_t offset = 0;
        bool holds(std::int64_t moment) const noexcept { return begin <= moment && moment < end; }
    };
    /// The stretch around a moment, of the wall clock or of UTC. `toUtc(wall)` is
    /// `wall - wallStretch(wall).offset`.
    Stretch wallStretch(std::int64_t wallSeconds) const noexcept;
    Stretch utcStretch(std::int64_t utcSeconds) const noexcept;

    /// True when both share one table. Two zones that merely agree are not the same.
    bool same(const TimeZone& other) const noexcept { return table_ == other.table_; }

private:
    explicit TimeZone(std::shared_ptr<const ZoneTable> table) : table_(std::move(table)) {}

    std::shared_ptr<const ZoneTable> table_;
};

}  // namespace vl
