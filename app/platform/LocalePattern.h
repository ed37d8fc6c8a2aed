// From the C library's time formats to ours.
#pragma once

#include <string>
#include <string_view>

namespace vl::platform {

/// The short form of a locale's time format (`T_FMT`, e.g. "%H:%M:%S"), in the letters of
/// `shortTimeText`: without the seconds and the separator before them, without the zone.
/// `twelveHours` (`T_FMT_AMPM`) is what "%r" stands for. Empty when there is no hour in it.
std::string shortPattern(std::string_view format, std::string_view twelveHours);

}  // namespace vl::platform
