// Dates and times as people, and the settings file, write them.
#pragma once

#include <string>
#include <string_view>

#include "base/DateTime.h"
#include "base/Variant.h"

namespace vl {

// No function here throws; what cannot be said is an empty text or 0.

/// The decimal text of the whole part of days times 10000, so to 8.64 seconds: how the settings
/// file keeps a date-time. 1899-12-30 12:00 is "5000".
std::string toStoredText(DateTime d);
/// The number a text begins with, divided by 10000; 0 when there is none.
DateTime fromStoredText(std::string_view text);

/// The user's short time format: h, hh (12 hours), H, HH (24), m, mm, s, ss, t, tt (AM or PM);
/// anything else stands for itself, in single quotes these letters too. Asked of the system once
/// a run. Empty when it has none; then times are written in the system's own short form.
const std::string& shortTimeFormat();

/// The time of day in the user's short time format, or in `pattern`.
std::string shortTimeText(DateTime d);
std::string shortTimeText(DateTime d, std::string_view pattern);

/// Day of the week, date and short time in the user's order and language: "Mo 23.11.2026, 14:30",
/// "Mon 11/23/2026, 2:30 PM"; "Mon 23 Nov 2026, 14:30" where no language is set. Without the time
/// at midnight; empty for 0.
std::string displayText(DateTime d);

/// The smaller (larger) of two values compared as texts, without regard to case: "900" is larger
/// than "1000", so this is never the way to compare numbers or dates. Equal texts: the first.
/// `Empty` when one of them has no text form.
Variant smallerOf(const Variant& a, const Variant& b);
Variant largerOf(const Variant& a, const Variant& b);

}  // namespace vl
