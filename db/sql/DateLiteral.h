// What stands between the signs of a date.
#pragma once

#include <optional>
#include <string_view>

#include "base/DateTime.h"

namespace vl::sql {

/// A date, a time of day, or both with a blank (or "T") between; blanks around it allowed. Dates
/// are "2026-11-20" or, month first, "11/20/2026" (with "-" too); years have four digits. Times are
/// "14:30", "14:30:05", or up to 12 o'clock with AM or PM behind: "2:30 PM", "2 pm". A time alone
/// is of the day 0. Nothing for anything else, and for dates that do not exist.
std::optional<DateTime> dateLiteral(std::string_view text);

}  // namespace vl::sql
