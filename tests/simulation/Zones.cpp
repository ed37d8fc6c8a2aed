#include "Zones.h"

#include <cstdlib>
#include <ctime>

#include "base/DateTime.h"

namespace vl::simulation {

namespace {

constexpr Seconds kBerlinWinter = kHour;
constexpr Seconds kNewYorkWinter = -5 * kHour;
constexpr Seconds kKolkata = 5 * kHour + 30 * kMinute;

int yearOf(Seconds time) { return civilFromDays(midnightOf(time) / kDay).year; }

// 0 = Saturday was day 0, so Sundays are the days that leave 1.
bool isSunday(Seconds midnight) { return midnight / kDay % 7 == 1; }

Seconds sundayFrom(Seconds midnight) {
    while (!isSunday(midnight)) {
        midnight += kDay;
    }
    return midnight;
}

Seconds lastSundayOf(int year, int month) { return sundayFrom(dateOf(year, month, 25)); }

struct Summer {
    Seconds begin;  // UTC
    Seconds end;
};

Summer summerOf(Zone zone, int year) {
    if (zone == Zone::Kolkata) {
        return {0, 0};
    }
    if (zone == Zone::Berlin) {
        return {lastSundayOf(year, 3) + kHour, lastSundayOf(year, 10) + kHour};
    }
    return {sundayFrom(dateOf(year, 3, 8)) + 7 * kHour,
            sundayFrom(dateOf(year, 11, 1)) + 6 * kHour};
}

Seconds winterOffset(Zone zone) {
    return zone == Zone::Berlin ? kBerlinWinter : zone == Zone::NewYork ? kNewYorkWinter : kKolkata;
}

}  // namespace

const char* nameOf(Zone zone) {
    return zone == Zone::Berlin    ? "Europe/Berlin"
           : zone == Zone::NewYork ? "America/New_York"
                                   : "Asia/Kolkata";
}

void useZone(Zone zone) {
    setenv("TZ", nameOf(zone), 1);
    tzset();
}

Seconds dateOf(int year, int month, int day) { return daysFromCivil(year, month, day) * kDay; }

Seconds midnightOf(Seconds time) { return time - time % kDay; }

Seconds toWall(Zone zone, Seconds utc) {
    const Summer summer = summerOf(zone, yearOf(utc));
    return utc + winterOffset(zone) + (utc >= summer.begin && utc < summer.end ? kHour : 0);
}

Seconds toUtc(Zone zone, Seconds wall) {
    const Seconds first = wall - winterOffset(zone) - kHour;  // by the clock of the summer
    return toWall(zone, first) == wall ? first : wall - winterOffset(zone);
}

Seconds toUtcInOrder(Zone zone, Seconds wall) {
    Seconds moment = toUtc(zone, wall);
    while (toWall(zone, moment) > wall && toWall(zone, moment - 1) > wall) {
        --moment;
    }
    return moment;
}

}  // namespace vl::simulation
