#include "RecurrenceTime.h"

namespace vl::recurrence {

namespace {

/// `length` digits from `at` on, or -1.
int digits(std::string_view text, std::size_t at, std::size_t length) noexcept {
    int n = 0;
    for (std::size_t i = at; i < at + length; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return -1;
        }
        n = n * 10 + (text[i] - '0');
    }
    return n;
}

}  // namespace

std::optional<IcalTime> readTime(std::string_view text) noexcept {
    const bool utc = text.size() == 16 && (text[15] == 'Z' || text[15] == 'z');
    const bool hasTime = (text.size() == 15 || utc) && (text[8] == 'T' || text[8] == 't');
    if (text.size() != 8 && !hasTime) {
        return std::nullopt;
    }
    const int year = digits(text, 0, 4);
    const int month = digits(text, 4, 2);
    const int day = digits(text, 6, 2);
    if (year < 0 || month < 1 || month > 12 || day < 1 || day > 31) {
        return std::nullopt;
    }
    IcalTime time;
    time.day = daysFromCivil(year, month, day);
    if (day > 28 && civilFromDays(time.day).day != day) {
        return std::nullopt;
    }
    if (hasTime) {
        const int hour = digits(text, 9, 2);
        const int minute = digits(text, 11, 2);
        const int second = digits(text, 13, 2);
        if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) {
            return std::nullopt;
        }
        time.second = (hour * 60 + minute) * 60 + (second == 60 ? 59 : second);
        time.hasTime = true;
        time.utc = utc;
    }
    return time;
}

std::int64_t toSeconds(DateTime time) noexcept { return floorDiv(time.milliseconds() + 500, 1000); }

}  // namespace vl::recurrence
