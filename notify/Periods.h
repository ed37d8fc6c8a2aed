// The periods that the views offer.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "base/DateTime.h"
#include "events/GenCollection.h"

namespace vl {

/// A minute in days.
inline constexpr double kOneMin = 1.0 / 1440;

/// An entry of the period list: what the user reads, and the code that is kept in the settings.
struct Period {
    const char* text;
    const char* code;
};

/// All periods in the order of the list.
std::span<const Period> periods() noexcept;

/// Position in the list, from 0, of a code in any case; none when there is no such period.
std::optional<std::size_t> periodIndex(std::string_view code) noexcept;

/// The positions in that list, from 1, by code.
std::shared_ptr<GenCollection> listPositions();

/// Where the period of a code (in any case) stands in such positions; of a code that is none of
/// theirs that of "Today".
int listPosition(const GenCollection& positions, std::string_view code);

/// Start and end of a period, both inside it.
struct PeriodRange {
    DateTime from;
    DateTime to;
};

/// The range of a code (in any case) at the moment `now`. Days and weeks end at 23:59 of their
/// last day; the next 7, 14 and 30 days end at 00:00 of theirs, and the previous ones at 00:00 of
/// today, so that they leave today out. Weeks begin on Monday. A code that sets no range of its
/// own ("H", or an unknown one) has the current week. `OneMin` is the minute, in days, by which a
/// day ends before the next one.
PeriodRange periodRange(std::string_view code, DateTime now, double OneMin = kOneMin);

}  // namespace vl
