// The rule that a zone's clocks follow for good, as zone files carry it in their last line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "ZoneTable.h"

namespace vl {

/// "CET-1CEST,M3.5.0,M10.5.0/3": a winter offset, a summer offset, and when each begins.
/// Source: POSIX, "Environment Variables", TZ; RFC 8536, 3.3.1, for hours below 0 and above 24.
class ZoneRule {
public:
    /// None when the text is no such rule.
    static std::optional<ZoneRule> parse(std::string_view text);

    /// Adds the changes of the years `from` to `to` that lie after `after` (UTC seconds).
    void appendChanges(int from, int to, std::int64_t after,
                       std::vector<ClockChange>& changes) const;

private:
    struct Day {
        enum class Kind { NthWeekday, DayWithoutLeapDay, DayFromZero } kind = Kind::NthWeekday;
        int month = 1;
        int week = 1;  // 5: the last
        int day = 0;   // weekday from Sunday = 0, or day of the year
        std::int64_t time = 7200;
    };
    struct Reader;

    static std::int64_t wallTime(const Day& day, int year);

    std::int64_t standard_ = 0;
    std::optional<std::int64_t> summer_;
    Day summerBegin_;
    Day summerEnd_;
};

}  // namespace vl
