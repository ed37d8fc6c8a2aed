// An RRULE as it is written: the parts and their values, before anything is made of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "RecurrenceTime.h"

namespace vl::recurrence {

enum class Frequency : std::uint8_t { Secondly, Minutely, Hourly, Daily, Weekly, Monthly, Yearly };

/// -1FR, 2MO. Weekdays count from Monday = 0.
struct NumberedDay {
    std::int8_t number;
    std::uint8_t weekday;
};

/// Lists are masks where their values fit: bit v stands for the value v. A part that is absent is
/// an empty list; one that is given has at least one value.
struct RuleParts {
    Frequency frequency = Frequency::Daily;
    std::uint8_t weekStart = 0;
    std::uint8_t weekdays = 0;  ///< those without a number
    std::uint16_t months = 0;
    std::uint32_t interval = 1;
    std::uint32_t count = 0;  ///< 0: none
    std::uint32_t monthDays = 0;
    std::uint32_t monthDaysBack = 0;  ///< bit v: the v-th day from the end
    std::uint32_t hours = 0;
    std::uint64_t minutes = 0;
    std::uint64_t seconds = 0;
    std::optional<IcalTime> until;
    std::vector<NumberedDay> numberedDays;
    std::vector<std::int16_t> yearDays;
    std::vector<std::int16_t> weeks;
    std::vector<std::int16_t> positions;

    bool hasWeekdays() const noexcept { return weekdays != 0 || !numberedDays.empty(); }
    bool hasMonthDays() const noexcept { return (monthDays | monthDaysBack) != 0; }
};

/// Reads the value of an RRULE. Numbers too large for their type become the largest.
/// Throws `Error` (`ErrNo::Syntax`) when the rule must be rejected: no or an unknown FREQ, a part
/// without "=", a value that its part does not allow, another calendar, or an unknown part that
/// begins with BY, since ignoring a limit would make instances nobody asked for. Other unknown
/// parts are ignored. Source: RFC 5545, 3.3.10.
RuleParts readRule(std::string_view text);

}  // namespace vl::recurrence
