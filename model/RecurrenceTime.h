// Dates and times as content lines write them, and whole seconds as the engine counts them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/DateTime.h"

namespace vl::recurrence {

inline constexpr std::int64_t kDaySeconds = 86'400;
/// 9999-12-31T23:59:59. No instance lies after it.
inline constexpr std::int64_t kLastDay = 2'958'465;
inline constexpr std::int64_t kLastMoment = kLastDay * kDaySeconds + kDaySeconds - 1;
/// 1800-01-01: a start before it makes no rule instances.
inline constexpr std::int64_t kFirstMoment = -36'522 * kDaySeconds;

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) noexcept {
    return a / b - ((a % b != 0 && (a % b < 0) != (b < 0)) ? 1 : 0);
}
constexpr std::int64_t floorMod(std::int64_t a, std::int64_t b) noexcept {
    return a - floorDiv(a, b) * b;
}
constexpr std::int64_t ceilDiv(std::int64_t a, std::int64_t b) noexcept { return -floorDiv(-a, b); }

/// 0 = Monday .. 6 = Sunday. Day 0 was a Saturday.
constexpr int weekdayOf(std::int64_t day) noexcept {
    return static_cast<int>(floorMod(day + 5, 7));
}

/// YYYYMMDD, YYYYMMDDTHHMMSS or YYYYMMDDTHHMMSSZ.
struct IcalTime {
    std::int64_t day = 0;
    std::int32_t second = 0;  ///< of the day
    bool hasTime = false;
    bool utc = false;

    std::int64_t seconds() const noexcept { return day * kDaySeconds + second; }
};

/// None unless all of the text is one of the three forms and a date that exists. A leap second
/// (60) is read as the second before it.
std::optional<IcalTime> readTime(std::string_view text) noexcept;

/// Seconds since 1899-12-30, to the nearest.
std::int64_t toSeconds(DateTime time) noexcept;
/// The same value as `DateTime::fromMilliseconds` makes.
inline DateTime fromSeconds(std::int64_t seconds) noexcept {
    const std::int64_t day = floorDiv(seconds, kDaySeconds);
    const double time = static_cast<double>(seconds - day * kDaySeconds) / 86'400.0;
    const auto whole = static_cast<double>(day);
    return DateTime(day < 0 ? whole - time : whole + time);
}

}  // namespace vl::recurrence
