// Three time zones by their rules, worked out here and not by the program.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vl::simulation {

/// Seconds since 1899-12-30, of UTC or of a wall clock.
using Seconds = std::int64_t;

constexpr Seconds kMinute = 60;
constexpr Seconds kHour = 3600;
constexpr Seconds kDay = 86400;

enum class Zone { Berlin, NewYork, Kolkata };
inline constexpr std::array kAllZones = {Zone::Berlin, Zone::NewYork, Zone::Kolkata};

/// As the system knows it: "Europe/Berlin".
const char* nameOf(Zone zone);

/// The program is in it from now on.
void useZone(Zone zone);

/// Midnight of a date.
Seconds dateOf(int year, int month, int day);
Seconds midnightOf(Seconds time);

Seconds toWall(Zone zone, Seconds utc);
/// A time that comes twice means the first; one that is skipped is moved forward by the gap.
Seconds toUtc(Zone zone, Seconds wall);

/// The same in the order of the wall clock: one that is skipped is the moment at which it is.
Seconds toUtcInOrder(Zone zone, Seconds wall);

/// From the clock of one zone to that of another.
inline Seconds between(Zone from, Zone to, Seconds wall) {
    return from == to ? wall : toWall(to, toUtc(from, wall));
}

}  // namespace vl::simulation
