// From the C library's time formats to ours.
#pragma once

#include <string>
#include <string_view>

namespace vl::platform {

/// The short form of a locale's time format (`T_FMT`, e.g. "%H:%M:%S"), in the letters of
/// `shortTimeText`: without the seconds and the separator before them, without the zone.
/// `twelveHours` (`T_FMT_AMPM`) is what "%r" stands for. Empty when there is no hour in it.
std::string shortPattern(std::string_view format, std::string_view twelveHours);

/// A `strftime` pattern of a date with its day of the week, made of a locale's date format
/// (`D_FMT`): a year of two digits becomes one of four. "Mon 23 Nov 2026" where the locale has no
/// form of its own: in the C locale, whose two digits thrice nobody can tell apart.
std::string datePattern(std::string_view format);

/// The same for a short date of Windows ("dd.MM.yy"), in its letters.
std::string fullYearPattern(std::string_view format);

}  // namespace vl::platform
