#include <algorithm>
#include <numeric>
#include <utility>

#include "base/DateTime.h"
#include "base/ErrorState.h"

#include "MonthDays.h"
#include "Rule.h"

namespace vl::recurrence {

namespace {

constexpr std::uint16_t kAllMonths = 0x1FFE;
constexpr std::uint32_t kAllHours = 0xFF'FFFF;
constexpr std::uint64_t kAllSixty = 0xFFF'FFFF'FFFF'FFFF;

/// Parts that the frequency does not know are as if they were not there.
void dropForbidden(RuleParts& parts, bool allDay) {
    const Frequency f = parts.frequency;
    if (f != Frequency::Yearly) {
        parts.weeks.clear();
    }
    if (f == Frequency::Daily || f == Frequency::Weekly || f == Frequency::Monthly) {
        parts.yearDays.clear();
    }
    if ((f != Frequency::Monthly && f != Frequency::Yearly) || !parts.weeks.empty()) {
        for (const NumberedDay& day : parts.numberedDays) {
            parts.weekdays = static_cast<std::uint8_t>(parts.weekdays | 1U << day.weekday);
        }
        parts.numberedDays.clear();
    }
    if (allDay) {
        parts.hours = 0;
        parts.minutes = 0;
        parts.seconds = 0;
    }
}

/// Days that no part names are the start's.
void fillDays(RuleParts& parts, std::int64_t startDay) {
    const Civil civil = civilFromDays(startDay);
    const bool weekdays = parts.hasWeekdays();
    const bool days = parts.hasMonthDays() || !parts.yearDays.empty() || weekdays;
    const auto dayBit = 1U << civil.day;
    const auto monthBit = static_cast<std::uint16_t>(1U << civil.month);
    const auto weekdayBit = static_cast<std::uint8_t>(1U << weekdayOf(startDay));
    switch (parts.frequency) {
        case Frequency::Yearly:
            if (!parts.weeks.empty()) {
                parts.weekdays = days ? parts.weekdays : weekdayBit;
            } else if (!days) {
                parts.monthDays = dayBit;
                parts.months = parts.months == 0 ? monthBit : parts.months;
            } else if (parts.months == 0 && parts.yearDays.empty() && !weekdays &&
                       parts.positions.empty()) {
                // BYMONTHDAY and nothing else: services write birthdays so.
                parts.months = monthBit;
            }
            break;
        case Frequency::Monthly:
            if (!days) {
                parts.monthDays = dayBit;
            }
            break;
        case Frequency::Weekly:
            if (!weekdays) {
                parts.weekdays = weekdayBit;
            }
            break;
        default:
            break;
    }
}

/// The day lists into the rule's masks.
void setDays(const RuleParts& parts, Rule& rule, RuleExtras& extras) {
    rule.months = parts.months == 0 ? kAllMonths : parts.months;
    rule.monthDays = parts.monthDays >> 1;
    for (int v = 1; v <= 31; ++v) {
        rule.monthDaysBack |= (parts.monthDaysBack >> v & 1) << (31 - v);
    }
    rule.weekdays = parts.weekdays;
    rule.hasWeekdays = parts.hasWeekdays();
    const bool inYear = parts.frequency == Frequency::Yearly && parts.months == 0;
    for (const NumberedDay& day : parts.numberedDays) {
        const int n = day.number < 0 ? -day.number : day.number;
        if (inYear) {
            extras.numberedInYear.push_back(day);
        } else if (n <= 5) {
            (day.number > 0 ? rule.numberedFront : rule.numberedBack) |=
                std::uint64_t{1} << (7 * (n - 1) + day.weekday);
        }
    }
    for (const int v : parts.yearDays) {
        const auto bit = static_cast<std::size_t>(v > 0 ? v - 1 : 366 + v);
        (v > 0 ? extras.yearDays : extras.yearDaysBack).at(bit / 64) |= std::uint64_t{1}
                                                                        << (bit % 64);
        extras.hasYearDays = true;
    }
    for (const int v : parts.weeks) {
        (v > 0 ? extras.weeks : extras.weeksBack) |= std::uint64_t{1} << (v > 0 ? v : -v);
    }
    rule.limited = rule.months != kAllMonths || rule.hasMonthDays() || extras.hasYearDays ||
                   (rule.hasWeekdays && parts.frequency != Frequency::Weekly);
}

/// Times that a period expands to, and limits on periods shorter than a day.
void setTimes(const RuleParts& parts, Rule& rule, RuleExtras& extras, bool& hasExtras) {
    const auto second = static_cast<std::uint32_t>(floorMod(rule.start, kDaySeconds));
    const std::uint64_t seconds = parts.seconds & kAllSixty;  // a leap second yields nothing
    const bool noSecond = parts.seconds != 0 && seconds == 0;
    rule.neverMatches = noSecond;
    const Frequency f = parts.frequency;
    if (f >= Frequency::Daily) {
        rule.hours = parts.hours != 0 ? parts.hours : 1U << (second / 3600);
    }
    if (f >= Frequency::Hourly) {
        rule.minutes = parts.minutes != 0 ? parts.minutes : std::uint64_t{1} << (second / 60 % 60);
    }
    if (f >= Frequency::Minutely) {
        rule.seconds = seconds != 0 ? seconds : std::uint64_t{1} << (second % 60);
    }
    if (f < Frequency::Daily) {
        hasExtras = true;
        extras.hours = parts.hours != 0 ? parts.hours : kAllHours;
        extras.minutes = f < Frequency::Hourly && parts.minutes != 0 ? parts.minutes : kAllSixty;
        extras.seconds = f < Frequency::Minutely && seconds != 0 ? seconds : kAllSixty;
    }
    rule.timesPerPeriod = static_cast<std::uint32_t>(
        std::popcount(rule.hours) * std::popcount(rule.minutes) * std::popcount(rule.seconds));
    rule.time = rule.timeAt(0);
}

/// Where BYSETPOS chooses among times only, the chosen times replace it.
void setPositions(RuleParts& parts, Rule& rule, RuleExtras& extras) {
    if (parts.frequency > Frequency::Daily) {
        extras.positions = std::move(parts.positions);
        return;
    }
    const auto count = static_cast<int>(rule.timesPerPeriod);
    for (const int position : parts.positions) {
        const int index = position > 0 ? position - 1 : count + position;
        if (index >= 0 && index < count) {
            extras.times.push_back(rule.timeAt(static_cast<std::uint32_t>(index)));
        }
    }
    std::sort(extras.times.begin(), extras.times.end());
    extras.times.erase(std::unique(extras.times.begin(), extras.times.end()), extras.times.end());
    rule.timesPerPeriod = static_cast<std::uint32_t>(extras.times.size());
    rule.neverMatches = rule.neverMatches || extras.times.empty();
    rule.time = extras.times.empty() ? 0 : extras.times.front();
}

/// A month of the rule has a day of the rule.
bool monthDaysExist(const Rule& rule) {
    for (int month = 1; month <= 12; ++month) {
        const int length = monthLength(2000, month);
        const std::uint32_t days = rule.monthDays | rule.monthDaysBack >> (31 - length);
        if ((rule.months >> month & 1) != 0 && (days & ((1U << length) - 1)) != 0) {
            return true;
        }
    }
    return false;
}

/// Every so many months always meets the same months of the year.
std::uint16_t reachableMonths(const Rule& rule) {
    const auto step = static_cast<int>(std::gcd(rule.interval, 12U));
    const int month = civilFromDays(floorDiv(rule.start, kDaySeconds)).month;
    std::uint32_t reached = 0;
    for (int m = 1; m <= 12; ++m) {
        reached |= ((m - month) % step == 0 ? 1U : 0U) << m;
    }
    return static_cast<std::uint16_t>(rule.months & reached);
}

/// The times of day (with BYDAY, of the week) that a rule by the hour, minute or second meets
/// repeat with a common step; at least one of them lies within the limits.
bool timesReachable(const Rule& rule, const RuleExtras& extras) {
    const std::int64_t unit = rule.unit();
    const std::int64_t span = rule.hasWeekdays ? 7 * kDaySeconds : kDaySeconds;
    const std::int64_t step = std::gcd(rule.interval * unit, span);
    const std::int64_t rest = floorMod(floorDiv(rule.start, unit) * unit, step);
    // From every allowed minute (hour) the next moment of the raster must lie inside it.
    const std::int64_t slot = std::max<std::int64_t>(unit, 60);
    for (std::int64_t at = 0; at < span; at += slot) {
        if ((rule.hasWeekdays && (rule.weekdays >> weekdayOf(at / kDaySeconds) & 1) == 0) ||
            (extras.hours >> (at / 3600 % 24) & 1) == 0 ||
            (extras.minutes >> (at / 60 % 60) & 1) == 0) {
            continue;
        }
        for (std::int64_t s = floorMod(rest - at, step); s < slot; s += step) {
            if (unit == 3600 || (extras.seconds >> (s % 60) & 1) != 0) {
                return true;
            }
        }
    }
    return false;
}

bool canMatch(Rule& rule, const RuleExtras& extras) {
    const std::uint64_t numbered = rule.numberedFront | rule.numberedBack;
    if (rule.hasWeekdays && rule.weekdays == 0 && numbered == 0 && extras.numberedInYear.empty()) {
        return false;  // only numbers that no month reaches
    }
    if (rule.hasMonthDays() && !monthDaysExist(rule)) {
        return false;
    }
    if (rule.frequency == Frequency::Monthly) {
        rule.months = reachableMonths(rule);
        if (!monthDaysExist(rule) && rule.hasMonthDays()) {
            return false;
        }
    }
    if (rule.frequency == Frequency::Daily && rule.hasWeekdays && rule.interval % 7 == 0) {
        return (rule.weekdays >> weekdayOf(floorDiv(rule.start, kDaySeconds)) & 1) != 0;
    }
    if (rule.frequency == Frequency::Weekly && !extras.positions.empty()) {
        const auto most = static_cast<int>(rule.timesPerPeriod) * std::popcount(rule.weekdays);
        return std::any_of(extras.positions.begin(), extras.positions.end(),
                           [&](int p) { return p <= most && p >= -most; });
    }
    return rule.months != 0 && (!rule.subDaily() || timesReachable(rule, extras));
}

}  // namespace

std::int64_t Rule::unit() const noexcept {
    switch (frequency) {
        case Frequency::Secondly:
            return 1;
        case Frequency::Minutely:
            return 60;
        case Frequency::Hourly:
            return 3600;
        default:
            return kDaySeconds;
    }
}

std::int32_t Rule::timeAt(std::uint32_t i) const noexcept {
    if (extras && !extras->times.empty()) {
        return extras->times[i];
    }
    const auto secondCount = static_cast<std::uint32_t>(std::popcount(seconds));
    const auto minuteCount = static_cast<std::uint32_t>(std::popcount(minutes));
    const int second = nthBit(seconds, i % secondCount);
    const int minute = nthBit(minutes, i / secondCount % minuteCount);
    const int hour = nthBit(hours, i / secondCount / minuteCount);
    return (hour * 60 + minute) * 60 + second;
}

Rule compileRule(RuleParts parts, std::int64_t start, bool allDay) {
    if (allDay && parts.frequency < Frequency::Daily) {
        throw Error(ErrNo::Syntax,
                    "recurrence rule: FREQ of an all-day event where DAILY or longer was expected");
    }
    Rule rule;
    rule.start = start;
    rule.frequency = parts.frequency;
    rule.interval = parts.interval;
    rule.weekStart = parts.weekStart;
    rule.endless = parts.count == 0 && !parts.until;
    dropForbidden(parts, allDay);
    fillDays(parts, floorDiv(start, kDaySeconds));
    RuleExtras extras;
    const bool positions = !parts.positions.empty();
    setDays(parts, rule, extras);
    bool hasExtras = positions || extras.hasYearDays || (extras.weeks | extras.weeksBack) != 0 ||
                     !extras.numberedInYear.empty();
    setTimes(parts, rule, extras, hasExtras);
    if (positions) {
        setPositions(parts, rule, extras);
    }
    rule.neverMatches = rule.neverMatches || start < kFirstMoment || !canMatch(rule, extras);
    if (hasExtras) {
        rule.extras = std::make_shared<const RuleExtras>(std::move(extras));
    }
    return rule;
}

}  // namespace vl::recurrence
