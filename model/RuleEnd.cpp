#include <unordered_map>

#include "RuleWalk.h"

namespace vl::recurrence {

namespace {

/// Counts down to one instance and notes where it lies.
struct Countdown {
    static constexpr bool kWholeDays = true;

    bool days(DayChunk chunk) {
        const std::uint64_t times = rule.timesPerPeriod;
        const auto count = static_cast<std::uint64_t>(std::popcount(chunk.mask)) * times;
        if (count < left) {
            left -= count;
            return true;
        }
        const int day = nthBit(chunk.mask, static_cast<std::uint32_t>((left - 1) / times));
        const std::int32_t time = rule.timeAt(static_cast<std::uint32_t>((left - 1) % times));
        end = (chunk.firstDay + day) * kDaySeconds + time;
        left = 0;
        return false;
    }

    bool moment(std::int64_t at) {
        end = at;
        return --left > 0;
    }

    const Rule& rule;
    std::uint64_t left;
    std::int64_t end = kLastMoment;
};

/// Length of a period in seconds where all are alike, else 0: no day or time limits.
std::int64_t evenPeriod(const Rule& rule) {
    const std::int64_t interval = rule.interval;
    if (rule.limited || rule.hasPositions() || rule.frequency > Frequency::Weekly) {
        return 0;
    }
    if (rule.subDaily()) {
        const RuleExtras& limits = *rule.extras;
        const bool free = std::popcount(limits.hours) == 24 &&
                          std::popcount(limits.minutes) == 60 &&
                          std::popcount(limits.seconds) == 60;
        return free ? interval * rule.unit() : 0;
    }
    return interval * kDaySeconds * (rule.frequency == Frequency::Weekly ? 7 : 1);
}

std::uint64_t countBetween(const Rule& rule, std::int64_t from, std::int64_t to) {
    constexpr std::uint64_t kMany = UINT64_MAX;
    Countdown counted{rule, kMany};
    RuleWalk<Countdown>(rule, counted).run(from, to);
    return kMany - counted.left;
}

/// The `left`-th instance from `from` on.
std::int64_t walkTo(const Rule& rule, std::int64_t from, std::uint64_t left) {
    Countdown countdown{rule, left};
    RuleWalk<Countdown>(rule, countdown).run(from, kLastMoment);
    return countdown.left == 0 ? countdown.end : kLastMoment;
}

/// All periods but the first, which the start may cut, hold as many instances: jumps over them.
std::int64_t evenEnd(const Rule& rule, std::int64_t period, std::uint64_t left) {
    const std::int64_t second = rule.start + period;  // somewhere in the second period
    const std::int64_t third = second + period;
    const std::uint64_t each = countBetween(rule, second, third - 1);
    if (each == 0 || left <= each) {
        return walkTo(rule, rule.start, left);
    }
    // Any stretch as long as a period holds `each`: from the start on, too.
    const std::uint64_t whole = (left - 1) / each;
    if (whole > static_cast<std::uint64_t>((kLastMoment - rule.start) / period)) {
        return kLastMoment;
    }
    return walkTo(rule, rule.start + static_cast<std::int64_t>(whole) * period,
                  left - whole * each);
}

/// Day by day, with what was counted for a day whose raster begins at the same time of day.
std::int64_t limitedEnd(const Rule& rule, std::uint64_t left) {
    const std::int64_t each = rule.unit() * rule.interval;
    std::unordered_map<std::int64_t, std::uint64_t> known;
    DayFilter filter(rule);
    std::int64_t from = rule.start;
    for (;;) {
        const std::int64_t day = filter.next(floorDiv(from, kDaySeconds));
        if (day > kLastDay) {
            return kLastMoment;
        }
        const std::int64_t midnight = day * kDaySeconds;
        const bool whole = midnight > rule.start;
        const std::int64_t rest = floorMod(rule.start - midnight, each);
        const auto found = whole ? known.find(rest) : known.end();
        std::uint64_t count = 0;
        if (found != known.end()) {
            count = found->second;
        } else {
            count = countBetween(rule, midnight, midnight + kDaySeconds - 1);
            if (whole) {
                known.emplace(rest, count);
            }
        }
        if (count >= left) {
            return walkTo(rule, midnight, left);
        }
        left -= count;
        from = midnight + kDaySeconds;
    }
}

}  // namespace

std::int64_t endByCount(const Rule& rule, std::uint32_t count) {
    constexpr std::uint32_t kFew = 64;
    if (count > kFew) {
        if (const std::int64_t period = evenPeriod(rule); period != 0) {
            return evenEnd(rule, period, count);
        }
        if (rule.subDaily() && rule.unit() * rule.interval < kDaySeconds) {
            return limitedEnd(rule, count);
        }
    }
    return walkTo(rule, rule.start, count);
}

}  // namespace vl::recurrence
