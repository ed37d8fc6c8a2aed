#include "base/DateTime.h"

#include <cmath>

namespace vl {

namespace {

constexpr std::int64_t kDayMs = 86'400'000;
constexpr std::int64_t kMinuteMs = 60'000;
// 1899-12-30 counted from 0000-03-01, the origin that makes a leap day the last of its year.
constexpr std::int64_t kEpochShift = 693'899;
constexpr std::int64_t kDaysIn400Years = 146'097;

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) noexcept {
    return a / b - ((a % b != 0 && (a % b < 0) != (b < 0)) ? 1 : 0);
}

}  // namespace

std::int64_t daysFromCivil(std::int64_t year, int month, int day) noexcept {
    year += floorDiv(month - 1, 12);
    const std::int64_t m = month - 1 - 12 * floorDiv(month - 1, 12);  // 0 = January
    const std::int64_t y = year - (m < 2 ? 1 : 0);
    const std::int64_t cycle = floorDiv(y, 400);
    const std::int64_t yearOfCycle = y - cycle * 400;
    const std::int64_t dayOfYear = (153 * ((m + 10) % 12) + 2) / 5 + day - 1;
    const std::int64_t dayOfCycle =
        yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 + dayOfYear;
    return cycle * kDaysIn400Years + dayOfCycle - kEpochShift;
}

Civil civilFromDays(std::int64_t days) noexcept {
    const std::int64_t z = days + kEpochShift;
    const std::int64_t cycle = floorDiv(z, kDaysIn400Years);
    const std::int64_t doc = z - cycle * kDaysIn400Years;
    const std::int64_t yoc = (doc - doc / 1460 + doc / 36524 - doc / 146096) / 365;
    const std::int64_t doy = doc - (365 * yoc + yoc / 4 - yoc / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;  // 0 = March
    Civil c;
    c.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    c.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    c.year = static_cast<int>(yoc + cycle * 400 + (c.month <= 2 ? 1 : 0));
    return c;
}

DateTime DateTime::fromCivil(int year, int month, int day, int hour, int minute, int second) {
    return fromMilliseconds(daysFromCivil(year, month, day) * kDayMs +
                            ((hour * 60LL + minute) * 60 + second) * 1000);
}

DateTime DateTime::fromMilliseconds(std::int64_t sinceEpoch) {
    const std::int64_t day = floorDiv(sinceEpoch, kDayMs);
    const auto time = static_cast<double>(sinceEpoch - day * kDayMs) / static_cast<double>(kDayMs);
    const auto whole = static_cast<double>(day);
    return DateTime(day < 0 ? whole - time : whole + time);
}

std::int64_t DateTime::milliseconds() const noexcept {
    constexpr double kLimit = 1.0e7;     // days; far past the year 9999
    if (days_ >= 1 && days_ < kLimit) {  // nearly all, and each comparison comes by here
        const auto whole = static_cast<std::int64_t>(days_);
        const double rest = days_ - static_cast<double>(whole);
        // What 52 bits leave of a day is half a millisecond, or clear of it.
        // NOLINTNEXTLINE(bugprone-incorrect-roundings)
        return whole * kDayMs + static_cast<std::int64_t>(rest * kDayMs + 0.5);
    }
    if (std::isnan(days_)) {
        return 0;
    }
    const double bounded = std::fmin(std::fmax(days_, -kLimit), kLimit);
    const double day = std::trunc(bounded);
    const double time = std::fabs(bounded - day);
    return static_cast<std::int64_t>(day) * kDayMs + std::llround(time * kDayMs);
}

Civil DateTime::civil() const noexcept {
    const std::int64_t ms = milliseconds();
    const std::int64_t day = floorDiv(ms, kDayMs);
    const auto rest = static_cast<int>(ms - day * kDayMs);
    Civil c = civilFromDays(day);
    c.millisecond = rest % 1000;
    c.second = rest / 1000 % 60;
    c.minute = rest / 60'000 % 60;
    c.hour = rest / 3'600'000;
    return c;
}

bool DateTime::hasTime() const noexcept { return milliseconds() % kDayMs != 0; }

DateTime DateTime::date() const noexcept {
    return DateTime(static_cast<double>(floorDiv(milliseconds(), kDayMs)));
}

int DateTime::weekday() const noexcept {
    // 1899-12-30 was a Saturday.
    const std::int64_t n = floorDiv(milliseconds(), kDayMs) + 5;
    return static_cast<int>(n - 7 * floorDiv(n, 7)) + 1;
}

DateTime DateTime::addDays(std::int64_t n) const noexcept {
    return fromMilliseconds(milliseconds() + n * kDayMs);
}

DateTime DateTime::addMinutes(std::int64_t n) const noexcept {
    return fromMilliseconds(milliseconds() + n * kMinuteMs);
}

DateTime DateTime::addSeconds(std::int64_t n) const noexcept {
    return fromMilliseconds(milliseconds() + n * 1000);
}

DateTime DateTime::wholeSeconds() const noexcept {
    return fromMilliseconds(floorDiv(milliseconds(), 1000) * 1000);
}

DateTime DateTime::nearestSecond() const noexcept {
    const std::int64_t ms = milliseconds();
    const bool stays = ms % 1000 == 0 && !std::isnan(days_);
    return stays ? *this : fromMilliseconds(floorDiv(ms + 500, 1000) * 1000);
}

std::int64_t minutesBetween(DateTime from, DateTime to) noexcept {
    return floorDiv(to.milliseconds(), kMinuteMs) - floorDiv(from.milliseconds(), kMinuteMs);
}

}  // namespace vl
