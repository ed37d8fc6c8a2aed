// A date and time of day as the database keeps it.
#pragma once

#include <compare>
#include <cstdint>

namespace vl {

/// The parts of a date-time; month and day count from 1.
struct Civil {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    friend bool operator==(const Civil&, const Civil&) = default;
};

/// Days since 1899-12-30 as a double, the fraction being the time of day; exactly 0 means "no
/// date". Below zero the fraction still counts forward from the day: -1.25 is 1899-12-29 06:00.
/// Arithmetic and comparison go through whole milliseconds, so 09:30 plus thirty minutes equals
/// 10:00 although the doubles differ in their last bit.
class DateTime {
public:
    constexpr DateTime() = default;
    constexpr explicit DateTime(double days) : days_(days) {}

    /// Parts are taken as they are (31 February is 3 March).
    static DateTime fromCivil(int year, int month, int day, int hour = 0, int minute = 0,
                              int second = 0);
    static DateTime fromMilliseconds(std::int64_t sinceEpoch);

    /// The stored value, bit for bit.
    constexpr double days() const noexcept { return days_; }
    /// Milliseconds since 1899-12-30 00:00, rounded to the nearest; values out of all range
    /// (not a number, beyond the year 30000) give the nearest that can be said.
    std::int64_t milliseconds() const noexcept;
    Civil civil() const noexcept;

    constexpr bool isZero() const noexcept { return days_ == 0.0; }
    /// False for midnight sharp, and for no date at all.
    bool hasTime() const noexcept;
    /// Midnight of the same day.
    DateTime date() const noexcept;
    /// 1 = Monday .. 7 = Sunday.
    int weekday() const noexcept;

    DateTime addDays(std::int64_t n) const noexcept;
    DateTime addMinutes(std::int64_t n) const noexcept;
    DateTime addSeconds(std::int64_t n) const noexcept;
    /// Without the part below a second: what the database can hold, and what clocks give.
    DateTime wholeSeconds() const noexcept;
    /// Half a second counts up; a time without parts stays as it is, bit for bit.
    DateTime nearestSecond() const noexcept;

    friend std::strong_ordering operator<=>(DateTime a, DateTime b) noexcept {
        return a.milliseconds() <=> b.milliseconds();
    }
    friend bool operator==(DateTime a, DateTime b) noexcept {
        return a.milliseconds() == b.milliseconds();
    }

private:
    double days_ = 0.0;
};

/// Minute boundaries crossed on the way from `from` to `to`; negative when `to` is earlier. From
/// 09:30:59 to 10:00:00 it is 30.
std::int64_t minutesBetween(DateTime from, DateTime to) noexcept;

/// Days from 1899-12-30 to a date of the Gregorian calendar, and back (any year).
std::int64_t daysFromCivil(std::int64_t year, int month, int day) noexcept;
Civil civilFromDays(std::int64_t days) noexcept;

}  // namespace vl
