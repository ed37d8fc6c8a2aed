#include "RuleParts.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

#include "base/ErrorState.h"

#include "RecurrenceLines.h"

namespace vl::recurrence {

namespace {

[[noreturn]] void reject(std::string_view part, const char* expected) {
    throw Error(ErrNo::Syntax, "recurrence rule: \"" + std::string(part.substr(0, 80)) +
                                   "\" where " + expected + " was expected");
}

constexpr std::array<std::string_view, 7> kFrequencies{"SECONDLY", "MINUTELY", "HOURLY", "DAILY",
                                                       "WEEKLY",   "MONTHLY",  "YEARLY"};
constexpr std::array<std::string_view, 7> kWeekdays{"MO", "TU", "WE", "TH", "FR", "SA", "SU"};

/// The place of a word in a list, in either case; the list's size when it is not there.
template <class Words>
std::size_t placeIn(const Words& words, std::string_view word) {
    return static_cast<std::size_t>(
        std::find_if(words.begin(), words.end(),
                     [&](std::string_view known) { return equalsUpper(word, known); }) -
        words.begin());
}

/// Digits with at most one plus before them.
std::uint32_t readNumber(std::string_view text, std::string_view part) {
    const std::string_view number = text.starts_with('+') ? text.substr(1) : text;
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t n = 0;
    for (const char c : number) {
        if (c < '0' || c > '9') {
            reject(part, "a number");
        }
        n = std::min(n * 10 + static_cast<std::uint64_t>(c - '0'), kMost);
    }
    if (number.empty()) {
        reject(part, "a number");
    }
    return static_cast<std::uint32_t>(n);
}

/// A number from `low` to `high`, negative only when `low` is: then 0 is not allowed.
int readSigned(std::string_view text, int low, int high, std::string_view part) {
    const bool negative = low < 0 && text.starts_with('-');
    if (negative && text.starts_with("-+")) {
        reject(part, "one sign");
    }
    const std::uint32_t n = readNumber(negative ? text.substr(1) : text, part);
    const auto limit = static_cast<std::uint32_t>(negative ? -low : high);
    if (n > limit || (n == 0 && low != 0)) {
        reject(part, "a value in its range");
    }
    return negative ? -static_cast<int>(n) : static_cast<int>(n);
}

template <class Handle>
void forEachValue(std::string_view list, Handle&& handle) {
    Pieces values{list, ','};
    for (std::string_view value; values.next(value);) {
        handle(value);
    }
}

template <class Mask>
Mask readMask(std::string_view list, int low, int high, std::string_view part) {
    Mask mask = 0;
    forEachValue(list, [&](std::string_view value) {
        mask = static_cast<Mask>(mask | Mask{1} << readSigned(value, low, high, part));
    });
    return mask;
}

void readList(std::string_view list, int most, std::string_view part,
              std::vector<std::int16_t>& values) {
    values.clear();
    forEachValue(list, [&](std::string_view value) {
        values.push_back(static_cast<std::int16_t>(readSigned(value, -most, most, part)));
    });
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

std::uint8_t readWeekday(std::string_view text, std::string_view part) {
    const std::size_t day = placeIn(kWeekdays, text);
    if (day == kWeekdays.size()) {
        reject(part, "a weekday");
    }
    return static_cast<std::uint8_t>(day);
}

void readMonthDays(std::string_view list, std::string_view part, RuleParts& rule) {
    rule.monthDays = 0;
    rule.monthDaysBack = 0;
    forEachValue(list, [&](std::string_view value) {
        const int day = readSigned(value, -31, 31, part);
        (day > 0 ? rule.monthDays : rule.monthDaysBack) |= 1U << (day > 0 ? day : -day);
    });
}

void readWeekdays(std::string_view list, std::string_view part, RuleParts& rule) {
    rule.weekdays = 0;
    rule.numberedDays.clear();
    forEachValue(list, [&](std::string_view value) {
        const std::size_t split = value.size() < 2 ? 0 : value.size() - 2;
        const std::uint8_t weekday = readWeekday(value.substr(split), part);
        const std::string_view number = trimmed(value.substr(0, split));
        if (number.empty()) {
            rule.weekdays = static_cast<std::uint8_t>(rule.weekdays | 1U << weekday);
        } else {
            const int n = readSigned(number, -53, 53, part);
            rule.numberedDays.push_back({static_cast<std::int8_t>(n), weekday});
        }
    });
}

struct Part {
    std::string_view name;
    void (*read)(std::string_view value, std::string_view part, RuleParts& rule);
};

constexpr std::array<Part, 17> kParts{{
    {"FREQ",
     [](std::string_view v, std::string_view part, RuleParts& rule) {
         const std::size_t place = placeIn(kFrequencies, v);
         if (place == kFrequencies.size()) {
             reject(part, "SECONDLY to YEARLY");
         }
         rule.frequency = static_cast<Frequency>(place);
     }},
    {"BYDAY", readWeekdays},
    {"INTERVAL",
     [](std::string_view v, std::string_view part, RuleParts& rule) {
         rule.interval = std::max(readNumber(v, part), 1U);  // 0 is read as 1
     }},
    {"UNTIL",
     [](std::string_view v, std::string_view part, RuleParts& rule) {
         rule.until = readTime(v);
         if (!rule.until) {
             reject(part, "a date");
         }
     }},
    {"COUNT",
     [](std::string_view v, std::string_view part, RuleParts& rule) {
         rule.count = readNumber(v, part);
         if (rule.count == 0) {
             reject(part, "a number from 1");
         }
     }},
    {"WKST", [](std::string_view v, std::string_view part,
                RuleParts& rule) { rule.weekStart = readWeekday(v, part); }},
    {"BYMONTH", [](std::string_view v, std::string_view part,
                   RuleParts& rule) { rule.months = readMask<std::uint16_t>(v, 1, 12, part); }},
    {"BYMONTHDAY", readMonthDays},
    {"BYHOUR", [](std::string_view v, std::string_view part,
                  RuleParts& rule) { rule.hours = readMask<std::uint32_t>(v, 0, 23, part); }},
    {"BYMINUTE", [](std::string_view v, std::string_view part,
                    RuleParts& rule) { rule.minutes = readMask<std::uint64_t>(v, 0, 59, part); }},
    {"BYSECOND", [](std::string_view v, std::string_view part,
                    RuleParts& rule) { rule.seconds = readMask<std::uint64_t>(v, 0, 60, part); }},
    {"BYSETPOS", [](std::string_view v, std::string_view part,
                    RuleParts& rule) { readList(v, 366, part, rule.positions); }},
    {"BYYEARDAY", [](std::string_view v, std::string_view part,
                     RuleParts& rule) { readList(v, 366, part, rule.yearDays); }},
    {"BYWEEKNO", [](std::string_view v, std::string_view part,
                    RuleParts& rule) { readList(v, 53, part, rule.weeks); }},
    {"RSCALE",
     [](std::string_view v, std::string_view part, RuleParts&) {
         if (!equalsUpper(v, "GREGORIAN")) {
             reject(part, "GREGORIAN");
         }
     }},
    // What the one calendar leaves out stays left out.
    {"SKIP", [](std::string_view, std::string_view, RuleParts&) {}},
    {"DTSTART", [](std::string_view, std::string_view, RuleParts&) {}},
}};

void readPart(std::string_view part, RuleParts& rule, bool& hasFrequency) {
    const std::size_t equals = part.find('=');
    if (equals == std::string_view::npos) {
        reject(part, "NAME=VALUE");
    }
    const std::string_view name = trimmed(part.substr(0, equals));
    const std::string_view value = trimmed(part.substr(equals + 1));
    const bool isFrequency = equalsUpper(name, "FREQ");
    hasFrequency = hasFrequency || isFrequency;
    if (value.empty() && !isFrequency) {
        return;  // an empty value means that the part is absent
    }
    const auto known = std::find_if(kParts.begin(), kParts.end(),
                                    [&](const Part& p) { return equalsUpper(name, p.name); });
    if (known != kParts.end()) {
        known->read(value, part, rule);
    } else if (equalsUpper(name.substr(0, 2), "BY")) {
        reject(part, "a known BY part");
    }
}

}  // namespace

RuleParts readRule(std::string_view text) {
    RuleParts rule;
    bool hasFrequency = false;
    Pieces parts{text, ';'};
    for (std::string_view part; parts.next(part);) {
        if (!part.empty()) {
            readPart(part, rule, hasFrequency);
        }
    }
    if (!hasFrequency) {
        reject(text, "FREQ=");
    }
    return rule;
}

}  // namespace vl::recurrence
