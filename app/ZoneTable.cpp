#include "ZoneTable.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "base/DateTime.h"

namespace vl {

namespace {

constexpr std::int64_t kDay = 86'400;

std::int64_t yearBegin(std::int64_t year) { return daysFromCivil(year, 1, 1) * kDay; }

std::int64_t floorDay(std::int64_t seconds) {
    return seconds >= 0 ? seconds / kDay : -((-seconds + kDay - 1) / kDay);
}

/// The year among the last 28 of the table that has the same days as `year`.
std::int64_t twinYear(std::int64_t year) {
    const std::int64_t begin = daysFromCivil(year, 1, 1);
    const std::int64_t length = daysFromCivil(year + 1, 1, 1) - begin;
    for (std::int64_t twin = kLastZoneYear; twin > kLastZoneYear - 28; --twin) {
        const std::int64_t twinBegin = daysFromCivil(twin, 1, 1);
        if ((begin - twinBegin) % 7 == 0 && daysFromCivil(twin + 1, 1, 1) - twinBegin == length) {
            return twin;
        }
    }
    return kLastZoneYear;
}

}  // namespace

ZoneTable::ZoneTable(const std::vector<ClockChange>& changes) {
    assert(!changes.empty());
    constexpr std::int64_t kBeginning = std::numeric_limits<std::int64_t>::min();
    utc_.push_back({kBeginning, changes.front().offset});
    wall_.push_back({kBeginning, changes.front().offset});
    for (const ClockChange& change : changes) {
        const std::int64_t before = utc_.back().offset;
        if (change.offset == before) {
            continue;
        }
        utc_.push_back({change.utc, change.offset});
        // Skipped times and the first of two are both read with the offset before the change.
        const std::int64_t wall = change.utc + std::max(before, change.offset);
        wall_.push_back({std::max(wall, wall_.back().begin), change.offset});
    }
}

TimeZone::Stretch ZoneTable::find(const std::vector<Entry>& entries, std::int64_t moment) noexcept {
    static const std::int64_t tableEnd = yearBegin(kLastZoneYear + 1);
    std::int64_t shift = 0;
    std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    std::int64_t highest = tableEnd;
    if (moment >= tableEnd) {
        const int year = civilFromDays(floorDay(moment)).year;
        const std::int64_t twin = twinYear(year);
        lowest = yearBegin(twin);
        highest = yearBegin(twin + 1);
        shift = yearBegin(year) - lowest;
        moment -= shift;
    }
    const auto next =
        std::upper_bound(entries.begin() + 1, entries.end(), moment,
                         [](std::int64_t m, const Entry& entry) { return m < entry.begin; });
    const Entry& entry = *(next - 1);
    return {std::max(entry.begin, lowest) + shift,
            (next == entries.end() ? highest : std::min(next->begin, highest)) + shift,
            entry.offset};
}

TimeZone::Stretch ZoneTable::utcStretch(std::int64_t utc) const noexcept { return find(utc_, utc); }

TimeZone::Stretch ZoneTable::wallStretch(std::int64_t wall) const noexcept {
    return find(wall_, wall);
}

}  // namespace vl
