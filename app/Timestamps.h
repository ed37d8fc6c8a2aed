// Timestamps of the event's JSON form (RFC 3339).
#pragma once

#include <string>
#include <string_view>

#include "base/DateTime.h"

namespace vl {

/// The date-time of an RFC 3339 timestamp ("2024-05-01T10:00:00+02:00", "2024-05-01T08:00:00.25Z")
/// or date ("2024-05-01"); an empty text is 0.
///
/// With `toLocal` the instant as local time; without it the time as it is written, whatever
/// offset follows: nothing is shifted, so that an all-day event keeps its day. A date alone, or a
/// time without an offset, is taken as written in both cases. Small "t" and "z" are understood,
/// and a blank for the "T"; fractions of a second are dropped, since no date-time of an event has
/// any; second 60 counts as 59.
/// Throws `Error` for anything else (`ErrNo::Syntax`, naming the text and the place), and for an
/// instant that in local time lies before the year 0 or after 9999 (`ErrNo::Overflow`).
DateTime parseTimestamp(std::string_view text, bool toLocal);

/// The RFC 3339 text of a date-time, in whole seconds; 0 gives an empty text.
/// With `asLocal` the local time with its offset ("2024-05-01T10:00:00+02:00"): one that the
/// clocks skip moves forward, one that comes twice is the first. Without it the time as it stands,
/// with "Z". Never throws.
std::string formatTimestamp(DateTime dateTime, bool asLocal);

/// "GMT+" and the offset of a local timestamp; empty for one in UTC ("Z"). Looks at characters 21
/// and 22 and at the last two alone, never at the sign: five hours west is labelled "GMT+05:00"
/// too. A label, nothing to compute with. Never throws.
std::string zoneLabel(std::string_view timestamp);

/// What stands before a "T" behind the sixth character; without one the text as it is.
std::string datePart(std::string_view text);

}  // namespace vl
