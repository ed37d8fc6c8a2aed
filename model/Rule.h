// A recurrence rule as it is walked: masks, and everything missing filled in from the start.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

#include "RuleParts.h"

namespace vl::recurrence {

/// Bit `i` is the i-th day of a year, from 0.
using YearMask = std::array<std::uint64_t, 6>;

/// What few rules have.
struct RuleExtras {
    std::vector<std::int16_t> positions;      ///< BYSETPOS, where it needs the whole period
    std::vector<std::int32_t> times;          ///< of day or in the period, when BYSETPOS chose them
    std::vector<NumberedDay> numberedInYear;  ///< 20MO of a year
    YearMask yearDays{};                      ///< bit i: day i + 1 of the year
    YearMask yearDaysBack{};  ///< bit i: the day that is the (366 - i)-th from the end
    std::uint64_t weeks = 0;  ///< BYWEEKNO, bit v: week v
    std::uint64_t weeksBack = 0;
    bool hasYearDays = false;
    // Limits of rules by the hour, minute or second.
    std::uint32_t hours = 0;
    std::uint64_t minutes = 0;
    std::uint64_t seconds = 0;
};

/// Wall clock of the event's zone throughout, in seconds since 1899-12-30. Never changes after
/// `compileRule`, copies share the extras.
struct Rule {
    std::int64_t start = 0;
    std::int64_t end = kLastMoment;  ///< last moment an instance may lie at; from UNTIL and COUNT
    std::uint32_t interval = 1;
    Frequency frequency = Frequency::Daily;
    std::uint8_t weekStart = 0;
    std::uint8_t weekdays = 0;  ///< BYDAY without numbers, bit 0 = Monday
    bool hasWeekdays = false;   ///< any BYDAY
    bool limited = false;       ///< a period's days depend on the calendar, not on its number alone
    bool endless = true;        ///< neither COUNT nor UNTIL
    bool neverMatches = false;  ///< known at load
    std::uint16_t months = 0;   ///< bit 1 = January
    std::uint32_t monthDays = 0;      ///< bit i: day i + 1
    std::uint32_t monthDaysBack = 0;  ///< bit i: the day that is the (31 - i)-th from the end
    std::uint64_t numberedFront = 0;  ///< seven bits a number: bit 7 * (n - 1) + weekday
    std::uint64_t numberedBack = 0;
    // Times in a period. Units that the frequency counts by itself have bit 0 alone.
    std::uint32_t hours = 1;
    std::uint64_t minutes = 1;
    std::uint64_t seconds = 1;
    std::uint32_t timesPerPeriod = 1;  ///< a day's, or an hour's or minute's when it counts those
    std::int32_t time = 0;             ///< the first of them
    std::shared_ptr<const RuleExtras> extras;

    bool subDaily() const noexcept { return frequency < Frequency::Daily; }
    bool hasMonthDays() const noexcept { return (monthDays | monthDaysBack) != 0; }
    bool hasPositions() const noexcept { return extras && !extras->positions.empty(); }
    /// Seconds in the unit of a frequency up to DAILY.
    std::int64_t unit() const noexcept;
    /// The `i`-th time of a period, from 0.
    std::int32_t timeAt(std::uint32_t i) const noexcept;
};

/// Makes a rule walkable: drops what its frequency does not know, fills in what is missing from
/// `start`, and finds out cheaply whether it can match at all. COUNT is left to `endByCount`.
/// Throws `Error` (`ErrNo::Syntax`) for a rule by the hour or shorter on an all-day event.
Rule compileRule(RuleParts parts, std::int64_t start, bool allDay);

/// The moment of the `count`-th instance, or the end of time when there are fewer.
/// Cost: about one step per period at worst, far less where every period has as many.
std::int64_t endByCount(const Rule& rule, std::uint32_t count);

/// The index of the `n`-th set bit, from 0; `n` less than the number of set bits.
inline int nthBit(std::uint64_t mask, std::uint32_t n) noexcept {
    for (; n > 0; --n) {
        mask &= mask - 1;
    }
    return std::countr_zero(mask);
}

}  // namespace vl::recurrence
