#include "MonthDays.h"

namespace vl::recurrence {

namespace {

/// Seven weekday bits, turned so that bit i stands for the i-th day after one that is `weekday`.
constexpr std::uint32_t turned(std::uint32_t weekdays, int weekday) noexcept {
    return ((weekdays | weekdays << 7) >> weekday) & 0x7F;
}

/// `length` (up to 32) bits from `begin` on.
std::uint32_t cut(const YearMask& mask, int begin, int length) noexcept {
    const auto word = static_cast<std::size_t>(begin / 64);
    const int shift = begin % 64;
    std::uint64_t bits = mask[word] >> shift;
    if (shift > 32 && word + 1 < mask.size()) {
        bits |= mask[word + 1] << (64 - shift);
    }
    return static_cast<std::uint32_t>(bits & ((std::uint64_t{1} << length) - 1));
}

/// The numbered weekdays of a month: a number from the front means seven days of which each weekday
/// occurs once, and so does a number from the back.
std::uint32_t numberedMask(const Rule& rule, const Month& month, int firstWeekday) noexcept {
    std::uint64_t mask = 0;
    int at = 0;
    for (std::uint64_t rest = rule.numberedFront; rest != 0; rest >>= 7, at += 7) {
        const auto days = static_cast<std::uint32_t>(rest & 0x7F);
        mask |= std::uint64_t{turned(days, firstWeekday)} << at;
    }
    const int lastWeekday = (firstWeekday + month.length) % 7;  // of the day after the last
    at = month.length;
    for (std::uint64_t rest = rule.numberedBack; rest != 0; rest >>= 7) {
        at -= 7;
        const std::uint64_t days = turned(static_cast<std::uint32_t>(rest & 0x7F), lastWeekday);
        mask |= at >= 0 ? days << at : days >> -at;
    }
    return static_cast<std::uint32_t>(mask);
}

std::uint32_t numberedInYearMask(const Rule& rule, const Month& month) noexcept {
    const std::int64_t begin = daysFromCivil(month.year, 1, 1);
    const std::int64_t end = daysFromCivil(month.year + 1, 1, 1);
    std::uint32_t mask = 0;
    for (const NumberedDay& numbered : rule.extras->numberedInYear) {
        const int weekday = numbered.weekday;
        const std::int64_t day =
            numbered.number > 0
                ? begin + (weekday - weekdayOf(begin) + 7) % 7 + 7LL * (numbered.number - 1)
                : end - 1 - (weekdayOf(end - 1) - weekday + 7) % 7 + 7LL * (numbered.number + 1);
        const std::int64_t index = day - month.firstDay;
        if (index >= 0 && index < month.length && day >= begin && day < end) {
            mask |= 1U << index;
        }
    }
    return mask;
}

std::uint32_t weekdayMask(const Rule& rule, const Month& month) noexcept {
    constexpr std::uint64_t kEveryWeek = 0x10204081;  // bits 0, 7, 14, 21, 28
    const int firstWeekday = weekdayOf(month.firstDay);
    auto mask = static_cast<std::uint32_t>(turned(rule.weekdays, firstWeekday) * kEveryWeek);
    if ((rule.numberedFront | rule.numberedBack) != 0) {
        mask |= numberedMask(rule, month, firstWeekday);
    }
    if (rule.extras && !rule.extras->numberedInYear.empty()) {
        mask |= numberedInYearMask(rule, month);
    }
    return mask;
}

}  // namespace

Month Month::of(std::int64_t day) noexcept {
    const Civil civil = civilFromDays(day);
    return {civil.year, day - civil.day + 1, civil.month, monthLength(civil.year, civil.month)};
}

Month Month::at(std::int64_t index) noexcept {
    const std::int64_t year = floorDiv(index, 12);
    const int month = static_cast<int>(index - 12 * year) + 1;
    return {year, daysFromCivil(year, month, 1), month, monthLength(year, month)};
}

void Month::next() noexcept {
    firstDay += length;
    year += month == 12 ? 1 : 0;
    month = month == 12 ? 1 : month + 1;
    length = monthLength(year, month);
}

std::uint32_t monthMask(const Rule& rule, const Month& month) noexcept {
    if ((rule.months >> month.month & 1) == 0) {
        return 0;
    }
    std::uint32_t mask = (1U << month.length) - 1;
    if (rule.hasMonthDays()) {
        mask &= rule.monthDays | rule.monthDaysBack >> (31 - month.length);
    }
    if (rule.hasWeekdays) {
        mask &= weekdayMask(rule, month);
    }
    if (rule.extras && rule.extras->hasYearDays) {
        const auto before = static_cast<int>(month.firstDay - daysFromCivil(month.year, 1, 1));
        const int missing = isLeap(month.year) ? 0 : 1;
        mask &= cut(rule.extras->yearDays, before, month.length) |
                cut(rule.extras->yearDaysBack, before + missing, month.length);
    }
    return mask;
}

void DayFilter::look(const Month& month) noexcept {
    month_ = month;
    mask_ = monthMask(rule_, month_);
    ++steps;
}

bool DayFilter::allows(std::int64_t day) noexcept {
    std::int64_t index = day - month_.firstDay;
    if (index < 0 || index >= month_.length) {
        look(Month::of(day));
        index = day - month_.firstDay;
    }
    return (mask_ >> index & 1) != 0;
}

std::int64_t DayFilter::next(std::int64_t day) noexcept {
    if (allows(day)) {
        return day;
    }
    std::uint32_t rest = mask_ & (~0U << (day - month_.firstDay));
    // The calendar repeats after 400 years.
    for (int months = 0; rest == 0; ++months) {
        Month month = month_;
        month.next();
        if (months > 4800 || month.firstDay > kLastDay) {
            return kNoDay;
        }
        look(month);
        rest = mask_;
    }
    return month_.firstDay + std::countr_zero(rest);
}

}  // namespace vl::recurrence
