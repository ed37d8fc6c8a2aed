#include "PlainRule.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <set>

namespace vl::test {

namespace {

using namespace std::chrono;
using Freq = PlainRule::Freq;

constexpr std::int64_t kDay = 86'400;
const sys_days kOrigin = sys_days{year{1899} / 12 / 30};

year_month_day dateOf(std::int64_t day) { return year_month_day{kOrigin + std::chrono::days{day}}; }
std::int64_t dayOf(year_month_day date) { return (sys_days{date} - kOrigin).count(); }
int weekdayOfDay(std::int64_t day) {
    return static_cast<int>(weekday{kOrigin + std::chrono::days{day}}.iso_encoding()) - 1;
}
int yearNumber(std::int64_t day) { return int{dateOf(day).year()}; }

bool has(const std::vector<int>& values, int value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

std::int64_t weekOf(std::int64_t day, int weekStart) {
    while (weekdayOfDay(day) != weekStart) {
        --day;
    }
    return day;
}

/// The year a week belongs to is the one that holds four of its days; and its number there.
std::pair<int, int> weekNumber(std::int64_t day, int weekStart) {
    const std::int64_t begin = weekOf(day, weekStart);
    const int inYear = yearNumber(begin + 3);
    std::int64_t first = weekOf(dayOf(year{inYear} / 1 / 1), weekStart);
    if (yearNumber(first + 3) != inYear) {
        first += 7;
    }
    return {inYear, static_cast<int>((begin - first) / 7) + 1};
}

int weeksInYear(int number, int weekStart) {
    int most = 0;
    for (int d = 18; d <= 31; ++d) {
        const auto [inYear, week] = weekNumber(dayOf(year{number} / 12 / d), weekStart);
        most = inYear == number ? std::max(most, week) : most;
    }
    return most;
}

/// The rule with what it does not say taken from the start, and without what it may not say.
PlainRule completed(PlainRule r, std::int64_t start) {
    const std::int64_t day = start / kDay;
    const auto date = dateOf(day);
    if (r.freq != Freq::Yearly) {
        r.weeks.clear();
    }
    if (r.freq == Freq::Daily || r.freq == Freq::Weekly || r.freq == Freq::Monthly) {
        r.yearDays.clear();
    }
    if ((r.freq != Freq::Monthly && r.freq != Freq::Yearly) || !r.weeks.empty()) {
        for (auto& [number, weekday] : r.days) {
            number = 0;
        }
    }
    const bool noDay = r.yearDays.empty() && r.monthDays.empty() && r.days.empty();
    const int monthDay = static_cast<int>(unsigned{date.day()});
    const int month = static_cast<int>(unsigned{date.month()});
    if (r.freq == Freq::Yearly) {
        if (noDay && r.weeks.empty()) {
            r.monthDays = {monthDay};
            if (r.months.empty()) {
                r.months = {month};
            }
        } else if (noDay) {
            r.days = {{0, weekdayOfDay(day)}};
        } else if (!r.monthDays.empty() && r.months.empty() && r.weeks.empty() &&
                   r.yearDays.empty() && r.days.empty() && r.positions.empty()) {
            r.months = {month};
        }
    } else if (r.freq == Freq::Monthly && r.monthDays.empty() && r.days.empty()) {
        r.monthDays = {monthDay};
    } else if (r.freq == Freq::Weekly && r.days.empty()) {
        r.days = {{0, weekdayOfDay(day)}};
    }
    const int second = static_cast<int>(start % kDay);
    if (r.hours.empty() && r.freq >= Freq::Daily) {
        r.hours = {second / 3600};
    }
    if (r.minutes.empty() && r.freq >= Freq::Hourly) {
        r.minutes = {second / 60 % 60};
    }
    if (r.seconds.empty() && r.freq >= Freq::Minutely) {
        r.seconds = {second % 60};
    }
    return r;
}

bool weekdayFits(const PlainRule& r, std::int64_t day) {
    // Numbers count in the year for a yearly rule without months, else in the month.
    const bool inYear = r.freq == Freq::Yearly && r.months.empty();
    const auto key = [&](std::int64_t d) {
        return inYear ? yearNumber(d) * 12
                      : yearNumber(d) * 12 + static_cast<int>(unsigned{dateOf(d).month()});
    };
    return std::any_of(r.days.begin(), r.days.end(), [&](const auto& wanted) {
        if (wanted.second != weekdayOfDay(day)) {
            return false;
        }
        if (wanted.first == 0) {
            return true;
        }
        const int step = wanted.first > 0 ? -7 : 7;
        int number = 1;
        for (std::int64_t d = day + step; key(d) == key(day); d += step) {
            ++number;
        }
        return number == std::abs(wanted.first);
    });
}

bool dayFits(const PlainRule& r, std::int64_t day) {
    const auto date = dateOf(day);
    const auto endOfMonth = year_month_day_last{date.year(), month_day_last{date.month()}};
    const int monthDay = static_cast<int>(unsigned{date.day()});
    const int fromEnd = monthDay - static_cast<int>(unsigned{endOfMonth.day()}) - 1;
    const auto yearDay = static_cast<int>(day - dayOf(date.year() / 1 / 1)) + 1;
    const auto yearFromEnd = static_cast<int>(day - dayOf(date.year() / 12 / 31)) - 1;
    if (!r.months.empty() && !has(r.months, static_cast<int>(unsigned{date.month()}))) {
        return false;
    }
    if (!r.monthDays.empty() && !has(r.monthDays, monthDay) && !has(r.monthDays, fromEnd)) {
        return false;
    }
    if (!r.yearDays.empty() && !has(r.yearDays, yearDay) && !has(r.yearDays, yearFromEnd)) {
        return false;
    }
    if (!r.weeks.empty()) {
        const auto [inYear, week] = weekNumber(day, r.weekStart);
        if (!has(r.weeks, week) && !has(r.weeks, week - weeksInYear(inYear, r.weekStart) - 1)) {
            return false;
        }
    }
    return r.days.empty() || weekdayFits(r, day);
}

std::int64_t unitOf(Freq freq) {
    return freq == Freq::Secondly ? 1 : freq == Freq::Minutely ? 60 : 3600;
}

/// Period number of a moment.
std::int64_t periodOf(const PlainRule& r, std::int64_t moment) {
    const std::int64_t day = moment / kDay;
    switch (r.freq) {
        case Freq::Yearly:
            return r.weeks.empty() ? yearNumber(day) : weekNumber(day, r.weekStart).first;
        case Freq::Monthly:
            return yearNumber(day) * 12LL + static_cast<int>(unsigned{dateOf(day).month()});
        case Freq::Weekly:
            return (weekOf(day, r.weekStart) + 7000) / 7;
        case Freq::Daily:
            return day;
        default:
            return moment / unitOf(r.freq);
    }
}

/// Takes what BYSETPOS means out of a sorted set.
std::vector<std::int64_t> chosen(const PlainRule& r, const std::set<std::int64_t>& all) {
    if (r.positions.empty()) {
        return {all.begin(), all.end()};
    }
    const std::vector<std::int64_t> list(all.begin(), all.end());
    std::set<std::int64_t> taken;
    const auto size = static_cast<int>(list.size());
    for (const int p : r.positions) {
        const int index = p > 0 ? p - 1 : size + p;
        if (index >= 0 && index < size) {
            taken.insert(list[static_cast<std::size_t>(index)]);
        }
    }
    return {taken.begin(), taken.end()};
}

bool timeFits(const std::vector<int>& values, std::int64_t value) {
    return values.empty() || has(values, static_cast<int>(value));
}

bool secondFits(const PlainRule& r, std::int64_t moment) {
    return timeFits(r.hours, moment / 3600 % 24) && timeFits(r.minutes, moment / 60 % 60) &&
           timeFits(r.seconds, moment % 60);
}

/// All candidates by period, sorted; the first period whole, also before the start.
std::map<std::int64_t, std::set<std::int64_t>> candidates(const PlainRule& r, std::int64_t start,
                                                          std::int64_t end) {
    std::map<std::int64_t, std::set<std::int64_t>> periods;
    const std::int64_t origin = periodOf(r, start);
    const auto inRaster = [&](std::int64_t moment) {
        const std::int64_t p = periodOf(r, moment);
        return p >= origin && (p - origin) % r.interval == 0;
    };
    if (r.freq < Freq::Daily) {
        const std::int64_t unit = unitOf(r.freq);
        for (std::int64_t at = start / unit * unit; at <= end; at += unit * r.interval) {
            if (!dayFits(r, at / kDay)) {
                continue;
            }
            for (std::int64_t s = at; s < at + unit; ++s) {
                if (secondFits(r, s)) {
                    periods[periodOf(r, s)].insert(s);
                }
            }
        }
        return periods;
    }
    for (std::int64_t day = start / kDay - 380; day <= end / kDay + 380; ++day) {
        if (!inRaster(day * kDay) || !dayFits(r, day)) {
            continue;
        }
        auto& period = periods[periodOf(r, day * kDay)];
        for (const int h : r.hours) {
            for (const int m : r.minutes) {
                for (const int s : r.seconds) {
                    if (s < 60) {
                        period.insert(day * kDay + h * 3600LL + m * 60LL + s);
                    }
                }
            }
        }
    }
    return periods;
}

}  // namespace

std::vector<std::int64_t> PlainRule::expand(std::int64_t start, std::int64_t end) const {
    const PlainRule r = completed(*this, start);
    std::vector<std::int64_t> out;
    for (const auto& [number, period] : candidates(r, start, end)) {
        for (const std::int64_t moment : chosen(r, period)) {
            const bool counted = count != 0 && out.size() >= static_cast<std::size_t>(count);
            if (moment >= start && moment <= end && (until < 0 || moment <= until) && !counted) {
                out.push_back(moment);
            }
        }
    }
    return out;
}

std::int64_t PlainRule::horizon() const {
    switch (freq) {
        case Freq::Yearly:
            return 366 * kDay * (4LL + 3LL * interval);
        case Freq::Monthly:
            return 31 * kDay * (14LL + 8LL * interval);
        case Freq::Weekly:
            return 7 * kDay * (56LL + 4LL * interval);
        case Freq::Daily:
            return kDay * (370LL + 4LL * interval);
        case Freq::Hourly:
            return 3600 * (40LL + 8LL * interval);
        case Freq::Minutely:
            return 60 * (180LL + 9LL * interval);
        default:
            return 100 + 60LL * interval;
    }
}

// ---- Made up

namespace {

int between(std::mt19937& random, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
}
bool chance(std::mt19937& random, int percent) { return between(random, 0, 99) < percent; }

std::vector<int> list(std::mt19937& random, int most, int low, int high, bool negative) {
    std::vector<int> values;
    const int count = between(random, 1, most);
    for (int i = 0; i < count; ++i) {
        const int v = between(random, low, high);
        values.push_back(negative && chance(random, 35) ? -v : v);
    }
    return values;
}

}  // namespace

PlainRule PlainRule::random(std::mt19937& random) {
    PlainRule r;
    const int kind = between(random, 0, 99);
    r.freq = kind < 30   ? Freq::Yearly
             : kind < 55 ? Freq::Monthly
             : kind < 72 ? Freq::Weekly
             : kind < 86 ? Freq::Daily
             : kind < 94 ? Freq::Hourly
             : kind < 98 ? Freq::Minutely
                         : Freq::Secondly;
    r.interval = chance(random, 50) ? 1 : between(random, 1, chance(random, 80) ? 4 : 30);
    r.weekStart = chance(random, 60) ? 0 : between(random, 0, 6);
    const auto maybe = [&](int percent, std::vector<int>& values, int most, int low, int high,
                           bool negative) {
        if (chance(random, percent)) {
            values = list(random, most, low, high, negative);
        }
    };
    maybe(25, r.months, 4, 1, 12, false);
    maybe(25, r.monthDays, 4, 1, 31, true);
    maybe(10, r.yearDays, 5, 1, 366, true);
    maybe(r.freq == Freq::Yearly ? 18 : 4, r.weeks, 4, 1, 53, true);
    maybe(22, r.positions, 3, 1, chance(random, 80) ? 6 : 366, true);
    maybe(15, r.hours, 3, 0, 23, false);
    maybe(12, r.minutes, 3, 0, 59, false);
    maybe(10, r.seconds, 3, 0, 60, false);
    if (chance(random, 45)) {
        const int count = between(random, 1, 4);
        for (int i = 0; i < count; ++i) {
            const int most = r.freq == Freq::Yearly && chance(random, 50) ? 53 : 5;
            const int n = chance(random, 50) ? 0 : between(random, -most, most);
            r.days.emplace_back(n, between(random, 0, 6));
        }
    }
    if (chance(random, 25)) {
        r.count = between(random, 1, chance(random, 80) ? 20 : 300);
    }
    return r;
}

std::string PlainRule::text(std::mt19937& random, bool noise) const {
    static const char* const kFreqs[] = {"SECONDLY", "MINUTELY", "HOURLY", "DAILY",
                                         "WEEKLY",   "MONTHLY",  "YEARLY"};
    static const char* const kDays[] = {"MO", "TU", "WE", "TH", "FR", "SA", "SU"};
    std::vector<std::string> parts{std::string("FREQ=") + kFreqs[static_cast<int>(freq)]};
    const auto add = [&](const char* name, std::vector<std::string> values) {
        if (values.empty()) {
            return;
        }
        if (noise && chance(random, 40)) {
            values.push_back(values.front());
        }
        if (noise) {
            std::shuffle(values.begin(), values.end(), random);
        }
        std::string part = std::string(name) + '=';
        for (std::size_t i = 0; i < values.size(); ++i) {
            part += (i == 0 ? "" : noise && chance(random, 20) ? " , " : ",") + values[i];
        }
        parts.push_back(part);
    };
    const auto numbers = [](const std::vector<int>& values) {
        std::vector<std::string> texts;
        texts.reserve(values.size());
        for (const int v : values) {
            texts.push_back(std::to_string(v));
        }
        return texts;
    };
    std::vector<std::string> weekdays;
    for (const auto& [number, weekday] : days) {
        weekdays.push_back((number == 0 ? "" : std::to_string(number)) + kDays[weekday]);
    }
    if (interval != 1) {
        parts.push_back("INTERVAL=" + std::to_string(interval));
    }
    if (weekStart != 0) {
        parts.push_back(std::string("WKST=") + kDays[weekStart]);
    }
    if (count != 0) {
        parts.push_back("COUNT=" + std::to_string(count));
    }
    if (until >= 0) {
        const auto date = dateOf(until / kDay);
        char stamp[64];
        std::snprintf(stamp, sizeof stamp, "UNTIL=%04d%02u%02uT%02d%02d%02d", int{date.year()},
                      unsigned{date.month()}, unsigned{date.day()},
                      static_cast<int>(until % kDay / 3600), static_cast<int>(until % 3600 / 60),
                      static_cast<int>(until % 60));
        parts.emplace_back(stamp);
    }
    add("BYMONTH", numbers(months));
    add("BYMONTHDAY", numbers(monthDays));
    add("BYYEARDAY", numbers(yearDays));
    add("BYWEEKNO", numbers(weeks));
    add("BYDAY", weekdays);
    add("BYHOUR", numbers(hours));
    add("BYMINUTE", numbers(minutes));
    add("BYSECOND", numbers(seconds));
    add("BYSETPOS", numbers(positions));
    if (noise) {
        std::shuffle(parts.begin(), parts.end(), random);
    }
    std::string out;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        out += (i == 0 ? "" : noise && chance(random, 20) ? " ; ;" : ";") + parts[i];
    }
    if (noise && chance(random, 50)) {
        for (char& c : out) {
            c = c >= 'A' && c <= 'Z' && chance(random, 50) ? static_cast<char>(c + 32) : c;
        }
    }
    return out;
}

}  // namespace vl::test
