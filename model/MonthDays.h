// Which days of a month the day parts of a rule allow.
#pragma once

#include <cstdint>

#include "Rule.h"

namespace vl::recurrence {

constexpr bool isLeap(std::int64_t year) noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int monthLength(std::int64_t year, int month) noexcept {
    return month == 2 ? (isLeap(year) ? 29 : 28) : 30 + ((month + (month >> 3)) & 1);
}

/// A month of the calendar; `month` counts from 1.
struct Month {
    std::int64_t year = 0;
    std::int64_t firstDay = 0;
    int month = 1;
    int length = 31;

    static Month of(std::int64_t day) noexcept;
    /// The `index`-th month since January of the year 0.
    static Month at(std::int64_t index) noexcept;
    void next() noexcept;
};

/// Bit i: day i + 1 of the month satisfies every day part of the rule.
std::uint32_t monthMask(const Rule& rule, const Month& month) noexcept;

/// Asks about single days of a rule, remembering the month it looked at last.
class DayFilter {
public:
    static constexpr std::int64_t kNoDay = INT64_MAX / 4;

    explicit DayFilter(const Rule& rule) noexcept : rule_(rule) {}

    bool allows(std::int64_t day) noexcept;
    /// The first day from `day` on that the rule allows; `kNoDay` when there is none.
    std::int64_t next(std::int64_t day) noexcept;

    std::uint64_t steps = 0;  ///< months looked at

private:
    void look(const Month& month) noexcept;

    const Rule& rule_;
    Month month_{0, 1, 1, 0};  // no day lies in it
    std::uint32_t mask_ = 0;
};

}  // namespace vl::recurrence
