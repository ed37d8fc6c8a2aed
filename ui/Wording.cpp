#include "ui/Wording.h"

#include <array>
#include <cstdlib>

#include "base/Text.h"

namespace vl {

namespace {

constexpr std::int64_t kHour = 60;
constexpr std::int64_t kDay = 24 * kHour;

constexpr std::array kDays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                           "Friday", "Saturday", "Sunday"};
constexpr std::array kMonths{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};

std::string_view dayName(DateTime d) { return kDays.at(static_cast<std::size_t>(d.weekday() - 1)); }
std::string_view monthName(int month) { return kMonths.at(static_cast<std::size_t>(month - 1)); }

std::string count(std::int64_t n, std::string_view unit) {
    return std::to_string(n) + ' ' + std::string(unit) + (n == 1 ? "" : "s");
}

// A length of time as short as it still says enough.
std::string distanceText(std::int64_t minutes) {
    if (minutes < kHour) {
        return std::to_string(minutes) + " min";
    }
    if (minutes >= kDay) {
        return count(minutes / kDay, "day");
    }
    std::string text = std::to_string(minutes / kHour) + " h";
    if (minutes < 3 * kHour && minutes % kHour != 0) {
        text += ' ' + std::to_string(minutes % kHour) + " min";
    }
    return text;
}

std::int64_t daysBetween(DateTime from, DateTime to) {
    return minutesBetween(from.date(), to.date()) / kDay;
}

std::string allDayText(const Span& event, DateTime now) {
    const std::int64_t toStart = daysBetween(now, event.start);
    if (toStart > 0) {
        return toStart == 1 ? "tomorrow" : "in " + count(toStart, "day");
    }
    if (eventState(event, now) == DueState::Now) {
        return "today";
    }
    return toStart == -1 ? "yesterday" : count(-toStart, "day") + " ago";
}

}  // namespace

DueState dueState(DateTime due, DateTime now) noexcept {
    if (due.isZero()) {
        return DueState::None;
    }
    const std::int64_t minutes = minutesBetween(now, due);
    return minutes == 0 ? DueState::Now : minutes > 0 ? DueState::Ahead : DueState::Past;
}

std::string dueText(DateTime due, DateTime now) {
    const std::int64_t minutes = minutesBetween(now, due);
    switch (dueState(due, now)) {
        case DueState::Ahead:
            return "in " + distanceText(minutes);
        case DueState::Now:
            return "now";
        case DueState::Past:
            return distanceText(-minutes) + " overdue";
        case DueState::None:
            break;
    }
    return {};
}

DueState eventState(const Span& event, DateTime now) noexcept {
    const DueState start = dueState(event.start, now);
    if (start != DueState::Past) {
        return start;
    }
    const DateTime end = event.allDay ? event.end.date().addDays(1) : event.end;
    return now < end || (event.allDay && now.date() == event.start.date()) ? DueState::Now
                                                                           : DueState::Past;
}

std::string eventDueText(const Span& event, DateTime now) {
    if (event.start.isZero()) {
        return {};
    }
    if (event.allDay) {
        return allDayText(event, now);
    }
    const std::int64_t minutes = minutesBetween(now, event.start);
    switch (eventState(event, now)) {
        case DueState::Ahead:
            return "in " + distanceText(minutes);
        case DueState::Now:
            return "now";
        default:
            return distanceText(-minutes) + " ago";
    }
}

std::string dayText(DateTime day, DateTime now) {
    switch (daysBetween(now, day)) {
        case 0:
            return "Today";
        case 1:
            return "Tomorrow";
        case -1:
            return "Yesterday";
        default:
            break;
    }
    const Civil date = day.civil();
    std::string text(dayName(day).substr(0, 3));
    text += ' ' + std::to_string(date.day) + ' ' + std::string(monthName(date.month).substr(0, 3));
    if (date.year != now.civil().year) {
        text += ' ' + std::to_string(date.year);
    }
    return text;
}

std::string momentText(DateTime moment, bool withTime, DateTime now, const TimeText& time) {
    if (moment.isZero()) {
        return {};
    }
    std::string text = dayText(moment, now);
    return withTime ? text + ' ' + time(moment) : text;
}

std::string fullMomentText(DateTime moment, bool withTime, const TimeText& time) {
    if (moment.isZero()) {
        return {};
    }
    const Civil date = moment.civil();
    std::string text(dayName(moment));
    text += ", " + std::to_string(date.day) + ' ' + std::string(monthName(date.month)) + ' ' +
            std::to_string(date.year);
    return withTime ? text + ", " + time(moment) : text;
}

std::string durationText(const Span& event) {
    if (event.allDay) {
        const std::int64_t days = daysBetween(event.start, event.end) + 1;
        return days <= 1 ? "All day" : count(days, "day");
    }
    const std::int64_t minutes = minutesBetween(event.start, event.end);
    if (minutes <= 0) {
        return {};
    }
    std::string text;
    const auto add = [&text](std::int64_t n, std::string_view unit) {
        if (n != 0) {
            text += (text.empty() ? "" : " ") + count(n, unit);
        }
    };
    add(minutes / kDay, "day");
    add(minutes % kDay / kHour, "hour");
    add(minutes % kHour, "minute");
    return text;
}

std::string tabCaption(std::string_view name, std::size_t rows) {
    return rows == 0 ? std::string(name) : std::string(name) + ": " + std::to_string(rows);
}

std::string emptyText(const EmptyReason& reason) {
    if (reason.searching) {
        return "Nothing matches the search";
    }
    if (reason.noDatabase) {
        return "No reminders database is open";
    }
    if (reason.grid == 0) {
        return "No new reminders";
    }
    const std::string what = reason.grid == 1 ? "reminders" : "events";
    if (text::equalsNoCase(reason.periodCode, "Di")) {
        return "No dismissed " + what;
    }
    if (text::equalsNoCase(reason.periodCode, "H")) {
        return "No hidden " + what;
    }
    return "No " + what + " in the period \"" + std::string(reason.periodText) + '"';
}

}  // namespace vl
