// Walks the instances of one rule from any moment on, without looking at those before it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <vector>

#include "MonthDays.h"
#include "Rule.h"

namespace vl::recurrence {

/// Some days of a period: bit i of `mask` is the i-th after `firstDay`.
struct DayChunk {
    std::int64_t firstDay;
    std::uint32_t mask;
};

/// Gives the instances in [lower, upper] to a sink, ascending. The sink returns false to stop.
///
///     bool days(DayChunk)          days in the bounds with all their times (`Rule::timeAt`), when
///                                  there is one time a day, or when `Sink::kWholeDays`
///     bool moment(std::int64_t)    one instance
///
/// Cost: the periods between the bounds that a day limit does not let it jump over. A rule that
/// stops matching is given up after a whole cycle of the calendar without a match.
template <class Sink>
class RuleWalk {
public:
    RuleWalk(const Rule& rule, Sink& sink) : rule_(rule), sink_(sink) {}

    void run(std::int64_t lower, std::int64_t upper) {
        lower_ = std::max(lower, rule_.start);
        upper_ = std::min(upper, rule_.end);
        if (rule_.neverMatches || lower_ > upper_) {
            return;
        }
        lowDay_ = floorDiv(lower_, kDaySeconds);
        highDay_ = floorDiv(upper_, kDaySeconds);
        startDay_ = floorDiv(rule_.start, kDaySeconds);
        switch (rule_.frequency) {
            case Frequency::Yearly:
                if (rule_.extras && (rule_.extras->weeks | rule_.extras->weeksBack) != 0) {
                    weekYears();
                } else {
                    years();
                }
                break;
            case Frequency::Monthly:
                months();
                break;
            case Frequency::Weekly:
                weeks();
                break;
            case Frequency::Daily:
                rule_.interval == 1 && rule_.limited && !hasTimes() ? everyDay() : days();
                break;
            default:
                raster();
        }
    }

    std::uint64_t steps = 0;  ///< periods and months looked at

private:
    static constexpr std::size_t kMostChunks = 53;

    bool hasTimes() const { return rule_.extras && !rule_.extras->times.empty(); }

    /// The first period, not below 0, of those `each` apart from `origin` that can reach `at`.
    static std::int64_t firstPeriod(std::int64_t at, std::int64_t origin, std::int64_t each) {
        return std::max<std::int64_t>(0, ceilDiv(at - origin, each));
    }

    // ---- Giving out

    template <class Give>
    bool forTimes(Give&& give) const {
        if (hasTimes()) {
            return std::all_of(rule_.extras->times.begin(), rule_.extras->times.end(), give);
        }
        for (std::uint64_t h = rule_.hours; h != 0; h &= h - 1) {
            for (std::uint64_t m = rule_.minutes; m != 0; m &= m - 1) {
                for (std::uint64_t s = rule_.seconds; s != 0; s &= s - 1) {
                    const int minute = std::countr_zero(h) * 60 + std::countr_zero(m);
                    if (!give(minute * 60 + std::countr_zero(s))) {
                        return false;
                    }
                }
            }
        }
        return true;
    }

    bool giveMoment(std::int64_t moment) {
        return moment < lower_ || (moment <= upper_ && sink_.moment(moment));
    }

    bool giveTimes(std::int64_t at) {
        return forTimes([&](std::int32_t time) { return giveMoment(at + time); });
    }

    /// Days of `chunk` from `from` to `to`.
    static std::uint32_t cutDays(const DayChunk& chunk, std::int64_t from, std::int64_t to) {
        std::uint32_t mask = chunk.mask;
        const std::int64_t skip = from - chunk.firstDay;
        if (skip > 0) {
            mask &= skip > 31 ? 0 : ~0U << skip;
        }
        const std::int64_t last = to - chunk.firstDay;
        if (last < 31) {
            mask &= last < 0 ? 0 : (2U << last) - 1;
        }
        return mask;
    }

    bool giveDays(const DayChunk& chunk) {
        if (rule_.timesPerPeriod == 1) {
            const std::uint32_t mask = cutDays(chunk, ceilDiv(lower_ - rule_.time, kDaySeconds),
                                               floorDiv(upper_ - rule_.time, kDaySeconds));
            return mask == 0 || sink_.days(DayChunk{chunk.firstDay, mask});
        }
        std::uint32_t mask = cutDays(chunk, lowDay_, highDay_);
        if constexpr (Sink::kWholeDays) {
            if (mask != 0 && chunk.firstDay > lowDay_ && chunk.firstDay + 31 < highDay_) {
                return sink_.days(DayChunk{chunk.firstDay, mask});
            }
        }
        for (; mask != 0; mask &= mask - 1) {
            if (!giveTimes((chunk.firstDay + std::countr_zero(mask)) * kDaySeconds)) {
                return false;
            }
        }
        return true;
    }

    /// The places BYSETPOS means among `count` instances, ascending.
    void choosePlaces(std::int64_t count) {
        places_.clear();
        for (const int position : rule_.extras->positions) {
            const std::int64_t place = position > 0 ? position - 1 : count + position;
            if (place >= 0 && place < count) {
                places_.push_back(place);
            }
        }
        std::sort(places_.begin(), places_.end());
        places_.erase(std::unique(places_.begin(), places_.end()), places_.end());
    }

    /// The days of a whole period, of which BYSETPOS takes some instances. False: the sink has had
    /// enough. `matched` tells whether the period has any instance.
    bool givePeriod(const DayChunk* chunks, std::size_t size, bool& matched) {
        std::int64_t days = 0;
        for (std::size_t i = 0; i < size; ++i) {
            days += std::popcount(chunks[i].mask);
        }
        const std::int64_t times = rule_.timesPerPeriod;
        choosePlaces(days * times);
        matched = !places_.empty();
        std::size_t chunk = 0;
        std::int64_t before = 0;  // days in the chunks before it
        for (const std::int64_t place : places_) {
            const std::int64_t day = place / times;
            while (day >= before + std::popcount(chunks[chunk].mask)) {
                before += std::popcount(chunks[chunk++].mask);
            }
            const int bit = nthBit(chunks[chunk].mask, static_cast<std::uint32_t>(day - before));
            const std::int32_t time = rule_.timeAt(static_cast<std::uint32_t>(place % times));
            if (!giveMoment((chunks[chunk].firstDay + bit) * kDaySeconds + time)) {
                return false;
            }
        }
        return true;
    }

    /// One period of one chunk.
    bool giveWhole(const DayChunk& chunk, bool& matched) {
        if (rule_.hasPositions()) {
            return givePeriod(&chunk, 1, matched);
        }
        matched = chunk.mask != 0;
        return giveDays(chunk);
    }

    // ---- Periods

    void months() {
        const Month startMonth = Month::of(startDay_);
        const Month lowMonth = Month::of(lowDay_);
        const std::int64_t origin = startMonth.year * 12 + startMonth.month - 1;
        const std::int64_t low = lowMonth.year * 12 + lowMonth.month - 1;
        std::int64_t index = origin + firstPeriod(low, origin, rule_.interval) * rule_.interval;
        for (int misses = 0; misses <= 4800; ++misses, index += rule_.interval) {
            ++steps;
            if ((rule_.months >> (index % 12 + 1) & 1) == 0) {
                continue;
            }
            const Month month = Month::at(index);
            bool matched = false;
            if (month.firstDay > highDay_ ||
                !giveWhole({month.firstDay, monthMask(rule_, month)}, matched)) {
                return;
            }
            misses = matched ? 0 : misses;
        }
    }

    /// The months of a year that can hold days; false when the sink has had enough.
    bool year(std::int64_t number, bool& matched) {
        std::array<DayChunk, kMostChunks> chunks;
        std::size_t size = 0;
        for (std::uint32_t m = rule_.months; m != 0; m &= m - 1) {
            ++steps;
            const int index = std::countr_zero(m);
            const Month month{number, daysFromCivil(number, index, 1), index,
                              monthLength(number, index)};
            const DayChunk chunk{month.firstDay, monthMask(rule_, month)};
            if (rule_.hasPositions()) {
                chunks[size++] = chunk;
                continue;
            }
            matched = matched || chunk.mask != 0;
            if (chunk.firstDay > highDay_ || !giveDays(chunk)) {
                return false;
            }
        }
        return size == 0 || givePeriod(chunks.data(), size, matched);
    }

    void years() {
        const std::int64_t origin = civilFromDays(startDay_).year;
        const std::int64_t low = civilFromDays(lowDay_).year;
        const std::int64_t high = civilFromDays(highDay_).year;
        std::int64_t number = origin + firstPeriod(low, origin, rule_.interval) * rule_.interval;
        for (int misses = 0; misses <= 400 && number <= high; ++misses) {
            ++steps;
            bool matched = false;
            if (!year(number, matched)) {
                return;
            }
            misses = matched ? 0 : misses;
            number += rule_.interval;
        }
    }

    std::int64_t weekBegin(std::int64_t day) const {
        return day - (weekdayOf(day) - rule_.weekStart + 7) % 7;
    }

    /// BYDAY as bits from the first day of the week on.
    std::uint32_t weekMask() const {
        const std::uint32_t days = rule_.hasWeekdays ? rule_.weekdays : 0x7F;
        return ((days | days << 7) >> rule_.weekStart) & 0x7F;
    }

    /// The days of a week that the day limits allow.
    std::uint32_t limitedWeek(std::int64_t first, std::uint32_t mask, DayFilter& filter) const {
        std::uint32_t allowed = 0;
        for (std::uint32_t rest = mask; rest != 0; rest &= rest - 1) {
            const int day = std::countr_zero(rest);
            allowed |= (filter.allows(first + day) ? 1U : 0U) << day;
        }
        return allowed;
    }

    void weeks() {
        const std::int64_t origin = weekBegin(startDay_);
        const std::int64_t each = 7 * static_cast<std::int64_t>(rule_.interval);
        const std::uint32_t mask = weekMask();
        DayFilter filter(rule_);
        std::int64_t first = origin + firstPeriod(lowDay_ - 6, origin, each) * each;
        for (int misses = 0; misses <= 20'871 && first <= highDay_; ++misses) {
            ++steps;
            const std::uint32_t days = rule_.limited ? limitedWeek(first, mask, filter) : mask;
            bool matched = false;
            if (days != 0 && !giveWhole({first, days}, matched)) {
                break;
            }
            misses = matched ? 0 : misses;
            first += each;
            if (days == 0) {
                const std::int64_t next = filter.next(first);
                first = origin + firstPeriod(next - 6, origin, each) * each;
            }
        }
        steps += filter.steps;
    }

    /// The first day of week 1, the week that holds 4 January.
    std::int64_t firstWeek(std::int64_t year) const { return weekBegin(daysFromCivil(year, 1, 4)); }

    void weekYears() {
        DayFilter filter(rule_);
        const auto weekYearOf = [&](std::int64_t day) {
            const std::int64_t year = civilFromDays(day).year;
            return day < firstWeek(year) ? year - 1 : day >= firstWeek(year + 1) ? year + 1 : year;
        };
        const std::int64_t origin = weekYearOf(startDay_);
        const std::int64_t low = weekYearOf(lowDay_);
        std::int64_t number = origin + firstPeriod(low, origin, rule_.interval) * rule_.interval;
        for (int misses = 0; misses <= 400; ++misses, number += rule_.interval) {
            ++steps;
            bool matched = false;
            if (number > 10'000 || firstWeek(number) > highDay_ ||
                !weekYear(number, filter, matched)) {
                break;
            }
            misses = matched ? 0 : misses;
        }
        steps += filter.steps;
    }

    bool weekYear(std::int64_t number, DayFilter& filter, bool& matched) {
        const std::int64_t begin = firstWeek(number);
        const auto count = static_cast<int>((firstWeek(number + 1) - begin) / 7);
        std::uint64_t weeks = rule_.extras->weeks;
        for (std::uint64_t back = rule_.extras->weeksBack; back != 0; back &= back - 1) {
            const int week = count + 1 - std::countr_zero(back);
            weeks |= week >= 1 ? std::uint64_t{1} << week : 0;
        }
        weeks &= (std::uint64_t{2} << count) - 1;
        std::array<DayChunk, kMostChunks> chunks;
        std::size_t size = 0;
        for (; weeks != 0; weeks &= weeks - 1) {
            ++steps;
            const std::int64_t first = begin + std::int64_t{7} * (std::countr_zero(weeks) - 1);
            const DayChunk chunk{first, limitedWeek(first, weekMask(), filter)};
            if (rule_.hasPositions()) {
                chunks[size++] = chunk;
                continue;
            }
            matched = matched || chunk.mask != 0;
            if (first > highDay_ || !giveDays(chunk)) {
                return false;
            }
        }
        return size == 0 || givePeriod(chunks.data(), size, matched);
    }

    /// DAILY with limits and without an interval: a month at a time.
    void everyDay() {
        Month month = Month::of(lowDay_);
        for (int misses = 0; misses <= 4800 && month.firstDay <= highDay_; ++misses) {
            ++steps;
            const std::uint32_t mask = monthMask(rule_, month);
            if (mask != 0) {
                misses = 0;
                if (!giveDays({month.firstDay, mask})) {
                    return;
                }
            }
            month.next();
        }
    }

    void days() {
        const std::int64_t each = rule_.interval;
        DayFilter filter(rule_);
        std::int64_t day = startDay_ + firstPeriod(lowDay_, startDay_, each) * each;
        for (int misses = 0; misses <= 146'097 && day <= highDay_; ++misses) {
            ++steps;
            if (rule_.limited) {
                const std::int64_t next = filter.next(day);
                if (next > day) {
                    day = startDay_ + firstPeriod(next, startDay_, each) * each;
                    continue;
                }
            }
            misses = 0;
            if (hasTimes() ? !giveTimes(day * kDaySeconds) : !giveDays({day, 1})) {
                break;
            }
            day += each;
        }
        steps += filter.steps;
    }

    // ---- Hours, minutes, seconds

    /// The first moment not before `at` that the limits allow, as far as they can tell at once:
    /// a moment that comes back unchanged is allowed.
    std::int64_t nextAllowed(std::int64_t at, DayFilter& filter) const {
        const RuleExtras& limits = *rule_.extras;
        const std::int64_t day = floorDiv(at, kDaySeconds);
        const std::int64_t midnight = day * kDaySeconds;
        if (rule_.limited) {
            const std::int64_t next = filter.next(day);
            if (next > day) {
                return next == DayFilter::kNoDay ? kLastMoment + 1 : next * kDaySeconds;
            }
        }
        const auto second = static_cast<int>(at - midnight);
        const std::uint32_t hours = limits.hours >> (second / 3600);
        if ((hours & 1) == 0) {
            return hours == 0 ? midnight + kDaySeconds
                              : midnight + (second / 3600 + std::countr_zero(hours)) * 3600LL;
        }
        const std::uint64_t minutes = limits.minutes >> (second / 60 % 60);
        if ((minutes & 1) == 0) {
            const std::int64_t hour = at - second % 3600;
            return minutes == 0 ? hour + 3600
                                : hour + (second / 60 % 60 + std::countr_zero(minutes)) * 60LL;
        }
        const std::uint64_t seconds = limits.seconds >> (second % 60);
        if ((seconds & 1) == 0) {
            return seconds == 0 ? at - second % 60 + 60 : at + std::countr_zero(seconds);
        }
        return at;
    }

    /// After how many seconds a raster meets the same days and times again: no match in so long
    /// means none ever.
    static std::int64_t rasterCycle(std::int64_t each) {
        constexpr std::int64_t kCalendar = std::int64_t{146'097} * kDaySeconds;
        constexpr std::int64_t kAll = 26;  // more of them than there are years
        return std::min(each / std::gcd(each, kCalendar), kAll) * kCalendar;
    }

    void raster() {
        const std::int64_t unit = rule_.unit();
        const std::int64_t each = unit * rule_.interval;
        const std::int64_t origin = floorDiv(rule_.start, unit) * unit;
        DayFilter filter(rule_);
        std::int64_t at = origin + firstPeriod(lower_ - unit + 1, origin, each) * each;
        const std::int64_t cycle = rasterCycle(each);
        std::int64_t giveUp = at + cycle;
        while (at <= std::min(upper_, giveUp)) {
            ++steps;
            const std::int64_t allowed = nextAllowed(at, filter);
            if (allowed > at) {
                at = origin + firstPeriod(allowed, origin, each) * each;
                continue;
            }
            if (rule_.timesPerPeriod == 1 ? !giveMoment(at + rule_.time) : !giveTimes(at)) {
                break;
            }
            at += each;
            giveUp = at + cycle;
        }
        steps += filter.steps;
    }

    const Rule& rule_;
    Sink& sink_;
    std::int64_t lower_ = 0;
    std::int64_t upper_ = 0;
    std::int64_t lowDay_ = 0;
    std::int64_t highDay_ = 0;
    std::int64_t startDay_ = 0;
    std::vector<std::int64_t> places_;
};

}  // namespace vl::recurrence
