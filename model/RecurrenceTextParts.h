// The parts of a recurrence as its lines give them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/TimeZone.h"

#include "RecurrenceTime.h"
#include "RuleParts.h"

namespace vl::recurrence {

/// An RRULE line.
struct RuleLine {
    RuleParts parts;
    std::string rejected;  ///< why it must not be used; empty: it may be
};

/// The values of an EXDATE or RDATE line.
struct DateLine {
    bool excludes = false;         ///< else they are added
    std::optional<TimeZone> zone;  ///< none: the series'
    bool dates = false;            ///< whole days, by VALUE=DATE
    std::vector<IcalTime> times;   ///< of a period its start
};

struct TextParts {
    std::vector<RuleLine> rules;
    std::vector<DateLine> dates;
};

}  // namespace vl::recurrence
