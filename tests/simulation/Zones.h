// Two time zones by their rules, worked out here and not by the program.
#pragma once

#include <cstdint>

namespace vl::simulation {

/// Seconds since 1899-12-30, of UTC or of a wall clock.
using Seconds = std::int64_t;

constexpr Seconds kMinute = 60;
constexpr Seconds kHour = 3600;
constexpr Seconds kDay = 86400;

enum class Zone { Berlin, NewYork };

/// Midnight of a date.
Seconds dateOf(int year, int month, int day);
Seconds midnightOf(Seconds time);

Seconds toWall(Zone zone, Seconds utc);
/// A time that comes twice means the first; one that is skipped is moved forward by the gap.
Seconds toUtc(Zone zone, Seconds wall);

}  // namespace vl::simulation
