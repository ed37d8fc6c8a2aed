#include "ZoneRule.h"

#include <algorithm>

#include "base/DateTime.h"

namespace vl {

namespace {

constexpr std::int64_t kDay = 86'400;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

/// Reads from the front of the text; every method leaves what it did not understand.
struct ZoneRule::Reader {
    std::string_view rest;

    bool eat(char c) {
        if (rest.empty() || rest.front() != c) {
            return false;
        }
        rest.remove_prefix(1);
        return true;
    }

    std::optional<int> number() {
        if (rest.empty() || !isDigit(rest.front())) {
            return std::nullopt;
        }
        int n = 0;
        while (!rest.empty() && isDigit(rest.front()) && n < 10'000) {
            n = n * 10 + (rest.front() - '0');
            rest.remove_prefix(1);
        }
        return n;
    }

    bool name() {
        const std::string_view before = rest;
        if (eat('<')) {
            rest.remove_prefix(std::min(rest.find('>'), rest.size()));
            return eat('>');
        }
        while (!rest.empty() && isLetter(rest.front())) {
            rest.remove_prefix(1);
        }
        return before.size() - rest.size() >= 3;
    }

    /// [+-]hh[:mm[:ss]] in seconds.
    std::optional<std::int64_t> time() {
        const bool negative = eat('-');
        if (!negative) {
            eat('+');
        }
        const std::optional<int> hours = number();
        if (!hours) {
            return std::nullopt;
        }
        std::int64_t seconds = *hours * 3600LL;
        if (eat(':')) {
            seconds += number().value_or(0) * 60LL;
            if (eat(':')) {
                seconds += number().value_or(0);
            }
        }
        return negative ? -seconds : seconds;
    }

    std::optional<Day> day() {
        Day day;
        if (eat('M')) {
            const auto month = number();
            const bool dot = eat('.');
            const auto week = number();
            const bool secondDot = eat('.');
            const auto weekday = number();
            if (!dot || !secondDot || !month || !week || !weekday || *month < 1 || *month > 12 ||
                *week < 1 || *week > 5 || *weekday > 6) {
                return std::nullopt;
            }
            day.month = *month;
            day.week = *week;
            day.day = *weekday;
        } else {
            day.kind = eat('J') ? Day::Kind::DayWithoutLeapDay : Day::Kind::DayFromZero;
            const auto n = number();
            if (!n || *n > 366) {
                return std::nullopt;
            }
            day.day = *n;
        }
        if (eat('/')) {
            const auto at = time();
            if (!at) {
                return std::nullopt;
            }
            day.time = *at;
        }
        return day;
    }
};

std::optional<ZoneRule> ZoneRule::parse(std::string_view text) {
    Reader in{text};
    ZoneRule rule;
    if (!in.name()) {
        return std::nullopt;
    }
    const auto standard = in.time();
    if (!standard) {
        return std::nullopt;
    }
    rule.standard_ = -*standard;  // the text counts westwards
    if (in.rest.empty()) {
        return rule;
    }
    if (!in.name()) {
        return std::nullopt;
    }
    const auto summer = in.time();
    rule.summer_ = summer ? -*summer : rule.standard_ + 3600;
    const bool comma = in.eat(',');
    const auto begin = in.day();
    const bool secondComma = in.eat(',');
    const auto end = in.day();
    if (!comma || !begin || !secondComma || !end || !in.rest.empty()) {
        return std::nullopt;
    }
    rule.summerBegin_ = *begin;
    rule.summerEnd_ = *end;
    return rule;
}

std::int64_t ZoneRule::wallTime(const Day& day, int year) {
    const std::int64_t january = daysFromCivil(year, 1, 1);
    std::int64_t date = january + day.day;
    if (day.kind == Day::Kind::DayWithoutLeapDay) {
        const bool leap = daysFromCivil(year + 1, 1, 1) - january == 366;
        date = january + day.day - 1 + (leap && day.day >= 60 ? 1 : 0);
    } else if (day.kind == Day::Kind::NthWeekday) {
        const std::int64_t first = daysFromCivil(year, day.month, 1);
        const std::int64_t next = daysFromCivil(year, day.month + 1, 1);
        // Day 1 since 1899-12-30 was a Sunday, and all years here are later.
        const std::int64_t firstWeekday = (first + 6) % 7;
        date = first + (day.day - firstWeekday + 7) % 7 + 7LL * (day.week - 1);
        while (date >= next) {
            date -= 7;
        }
    }
    return date * kDay + day.time;
}

void ZoneRule::appendChanges(int from, int to, std::int64_t after,
                             std::vector<ClockChange>& changes) const {
    if (!summer_) {
        return;
    }
    const auto begin = static_cast<std::ptrdiff_t>(changes.size());
    for (int year = from; year <= to; ++year) {
        const ClockChange up{wallTime(summerBegin_, year) - standard_, *summer_};
        const ClockChange down{wallTime(summerEnd_, year) - *summer_, standard_};
        for (const ClockChange& change : {up, down}) {
            if (change.utc > after) {
                changes.push_back(change);
            }
        }
    }
    // Stable: summer time all year round ends and begins anew at one moment, in this order.
    std::stable_sort(changes.begin() + begin, changes.end(),
                     [](const ClockChange& a, const ClockChange& b) { return a.utc < b.utc; });
}

}  // namespace vl
