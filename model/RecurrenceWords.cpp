// A rule as people say it. What few people would say in one breath gets a general phrase instead of
// a wrong one.
#include <array>
#include <bit>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/ErrorState.h"

#include "MonthDays.h"
#include "Recurrence.h"
#include "RecurrenceLines.h"
#include "RecurrenceLists.h"
#include "Rule.h"

namespace vl {

using namespace recurrence;

namespace {

constexpr std::array<const char*, 7> kUnits{"second", "minute", "hour", "day",
                                            "week",   "month",  "year"};
constexpr std::array<const char*, 7> kWeekdays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                               "Friday", "Saturday", "Sunday"};
constexpr std::array<const char*, 12> kMonths{"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};
constexpr std::uint8_t kWorkdays = 0x1F;
constexpr std::uint8_t kWeekend = 0x60;
constexpr std::uint8_t kAllDays = 0x7F;

using Words = std::vector<std::string>;

/// "a", "a and b", "a, b and c".
std::string joined(const Words& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? " and " : ", ";
        text += words[i];
    }
    return text;
}

std::string ordinal(int n) {
    const int tens = n % 100;
    const int ones = tens >= 11 && tens <= 13 ? 0 : n % 10;
    return std::to_string(n) + (ones == 1 ? "st" : ones == 2 ? "nd" : ones == 3 ? "rd" : "th");
}

/// "the 3rd Friday", "the last day", "the 2nd to last day".
std::string place(int n, const std::string& what) {
    if (n > 0) {
        return "the " + ordinal(n) + (what.empty() ? "" : " " + what);
    }
    const std::string name = what.empty() ? "day" : what;
    return n == -1 ? "the last " + name : "the " + ordinal(-n) + " to last " + name;
}

std::string date(std::int64_t day) {
    const Civil c = civilFromDays(day);
    return std::to_string(c.day) + ' ' + kMonths.at(static_cast<std::size_t>(c.month - 1)) + ' ' +
           std::to_string(c.year);
}

/// The values whose bits are set, from the smallest on.
template <class Say>
Words eachBit(std::uint64_t mask, Say&& say) {
    Words words;
    for (; mask != 0; mask &= mask - 1) {
        words.push_back(say(std::countr_zero(mask)));
    }
    return words;
}

Words weekdayNames(std::uint64_t mask) {
    return eachBit(mask, [](int day) { return kWeekdays.at(static_cast<std::size_t>(day)); });
}

Words monthNames(std::uint64_t mask) {
    return eachBit(mask, [](int m) { return kMonths.at(static_cast<std::size_t>(m - 1)); });
}

/// Puts one rule in words: "Every", its period, its days, its times.
class RuleWords {
public:
    RuleWords(RuleParts parts, std::int64_t start, bool allDay)
        : parts_(std::move(parts)),
          day_(civilFromDays(floorDiv(start, kDaySeconds))),
          start_(start) {
        if (allDay) {
            parts_.hours = 0;
            parts_.minutes = 0;
            parts_.seconds = 0;
        }
        // A rule by the day on some weekdays is one by the week.
        if (parts_.frequency == Frequency::Daily && parts_.interval == 1 && parts_.hasWeekdays()) {
            parts_.frequency = Frequency::Weekly;
        }
        if (parts_.frequency < Frequency::Monthly) {
            for (const NumberedDay& numbered : parts_.numberedDays) {
                parts_.weekdays =
                    static_cast<std::uint8_t>(parts_.weekdays | 1U << numbered.weekday);
            }
            parts_.numberedDays.clear();
        }
    }

    std::string text() const {
        const std::optional<std::string> days = daysText();
        const std::optional<std::string> times = timesText();
        if (!days || !times) {
            return every() + ", at times chosen by its rule";
        }
        return *days + *times;
    }

private:
    std::string every() const {
        const std::string unit = kUnits.at(static_cast<std::size_t>(parts_.frequency));
        return parts_.interval == 1 ? "Every " + unit
                                    : "Every " + std::to_string(parts_.interval) + ' ' + unit + 's';
    }

    /// Period and days; none when they are too many to say.
    std::optional<std::string> daysText() const {
        if (!parts_.yearDays.empty() || !parts_.weeks.empty()) {
            return std::nullopt;
        }
        switch (parts_.frequency) {
            case Frequency::Yearly:
                return yearly();
            case Frequency::Monthly:
                return monthly();
            case Frequency::Weekly:
                return weekly();
            default:
                if (parts_.hasWeekdays() || parts_.hasMonthDays() || !parts_.positions.empty()) {
                    return std::nullopt;
                }
                return every() + inMonths();
        }
    }

    std::string inMonths() const {
        return parts_.months == 0 ? "" : " in " + joined(monthNames(parts_.months));
    }

    std::optional<std::string> weekly() const {
        if (parts_.hasMonthDays() || !parts_.positions.empty()) {
            return std::nullopt;
        }
        const std::uint8_t own =
            static_cast<std::uint8_t>(1U << weekdayOf(floorDiv(start_, kDaySeconds)));
        const std::uint8_t days = parts_.weekdays != 0 ? parts_.weekdays : own;
        if (parts_.interval == 1 && days == kAllDays) {
            return "Every day" + inMonths();
        }
        if (parts_.interval == 1 && days == kWorkdays) {
            return "Every weekday" + inMonths();
        }
        const std::string names = days == kWorkdays ? "weekdays" : joined(weekdayNames(days));
        return every() + " on " + names + inMonths();
    }

    /// "weekday", "weekend day", "day" or one weekday's name; empty for other sets.
    static std::string setName(std::uint8_t days) {
        switch (days) {
            case kWorkdays:
                return "weekday";
            case kWeekend:
                return "weekend day";
            case kAllDays:
                return "day";
            default:
                return std::popcount(days) == 1
                           ? kWeekdays.at(static_cast<std::size_t>(std::countr_zero(days)))
                           : std::string();
        }
    }

    /// Days that are named by their place in a month: "the 3rd Thursday and the last Friday".
    std::optional<Words> places() const {
        Words words;
        if (!parts_.positions.empty()) {
            const std::string name = setName(parts_.weekdays);
            if (name.empty() || !parts_.numberedDays.empty() || parts_.hasMonthDays()) {
                return std::nullopt;
            }
            for (const int position : parts_.positions) {
                words.push_back(place(position, name));
            }
            return words;
        }
        if (parts_.hasWeekdays()) {
            if (parts_.weekdays != 0 || parts_.hasMonthDays()) {
                return std::nullopt;
            }
            for (const NumberedDay& numbered : parts_.numberedDays) {
                words.push_back(place(numbered.number, kWeekdays.at(numbered.weekday)));
            }
            return words;
        }
        const std::uint32_t own = parts_.hasMonthDays() ? 0 : 1U << day_.day;
        words = eachBit(parts_.monthDays | own, [](int n) { return place(n, ""); });
        for (int n = 31; n > 0; --n) {
            if ((parts_.monthDaysBack >> n & 1) != 0) {
                words.push_back(place(-n, ""));
            }
        }
        return words;
    }

    std::optional<std::string> monthly() const {
        if (parts_.positions.empty() && parts_.weekdays != 0 && parts_.numberedDays.empty() &&
            !parts_.hasMonthDays()) {
            return every() + " on every " + joined(weekdayNames(parts_.weekdays)) + inMonths();
        }
        const std::optional<Words> days = places();
        if (!days) {
            return std::nullopt;
        }
        return every() + " on " + joined(*days) + inMonths();
    }

    std::optional<std::string> yearly() const {
        const bool weekdays = parts_.hasWeekdays();
        if (parts_.months == 0 && weekdays) {
            return std::nullopt;  // counted in the year
        }
        const std::uint32_t months = parts_.months != 0 ? parts_.months : 1U << day_.month;
        if (!weekdays && parts_.positions.empty() && parts_.monthDaysBack == 0) {
            const std::uint32_t days = parts_.hasMonthDays() ? parts_.monthDays : 1U << day_.day;
            return every() + " on " +
                   joined(eachBit(days, [](int d) { return std::to_string(d); })) + ' ' +
                   joined(monthNames(months));
        }
        const std::optional<Words> days = places();
        if (!days || !parts_.positions.empty()) {
            return std::nullopt;
        }
        return every() + " on " + joined(*days) + " of " + joined(monthNames(months));
    }

    /// " at 09:00 and 17:00", or nothing when the times are the start's.
    std::optional<std::string> timesText() const {
        if (parts_.hours == 0 && parts_.minutes == 0 && parts_.seconds == 0) {
            return std::string();
        }
        const std::int64_t second = floorMod(start_, kDaySeconds);
        const std::uint64_t hours = parts_.hours != 0 ? parts_.hours : 1U << (second / 3600);
        const std::uint64_t minutes =
            parts_.minutes != 0 ? parts_.minutes : std::uint64_t{1} << (second / 60 % 60);
        constexpr int kMost = 6;
        if (parts_.frequency < Frequency::Daily || parts_.seconds != 0 || second % 60 != 0 ||
            std::popcount(hours) * std::popcount(minutes) > kMost) {
            return std::nullopt;
        }
        Words times;
        const auto twoDigits = [](int n) {
            return std::string(n < 10 ? "0" : "") + std::to_string(n);
        };
        for (const std::string& hour : eachBit(hours, twoDigits)) {
            for (const std::string& minute : eachBit(minutes, twoDigits)) {
                times.push_back(std::string(hour).append(1, ':').append(minute));
            }
        }
        return " at " + joined(times);
    }

    RuleParts parts_;
    Civil day_;
    std::int64_t start_;
};

}  // namespace

std::string Recurrence::inWords(std::string_view RRULE) const {
    std::string words;
    std::size_t usable = 0;
    Pieces texts{RRULE, '\n'};
    for (std::string_view text; usable < rules_.size() && texts.next(text);) {
        try {
            const RuleParts parts = readRule(text);
            if (allDay_ && parts.frequency < Frequency::Daily) {
                continue;  // was rejected when it was loaded
            }
            words += words.empty() ? "" : "; ";
            words += RuleWords(parts, rules_[usable++].start, allDay_).text();
            if (parts.count != 0) {
                words +=
                    ", " + std::to_string(parts.count) + (parts.count == 1 ? " time" : " times");
            }
            if (parts.until) {
                const bool moment = parts.until->utc && !(allDay_ && parts.until->second == 0);
                const std::int64_t wall =
                    moment ? zone_.fromUtc(parts.until->seconds()) : parts.until->seconds();
                words +=
                    (parts.count != 0 ? ", until " : " until ") + date(floorDiv(wall, kDaySeconds));
            }
        } catch (const Error&) {
            continue;  // was rejected, and traced, when it was loaded
        }
    }
    const std::size_t added = RDates().size();
    if (added != 0) {
        words += words.empty() ? "On its start and on " : ", and on ";
        words += std::to_string(added) + (added == 1 ? " more date" : " more dates");
    }
    return words;
}

}  // namespace vl
