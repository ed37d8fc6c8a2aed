#include "ui/Wording.h"

#include <array>
#include <cstdlib>

#include "app/Files.h"
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

std::string inBrackets(std::string_view s) {
    return s.empty() ? std::string() : " (" + std::string(s) + ')';
}

// What stands behind the colon at `place`; all of it when there is none.
std::string_view behind(std::string_view s, std::size_t place) {
    return place == std::string_view::npos ? s : s.substr(place + 2);
}

// "page 12" out of ", page 12: ...", as the engine names a damaged page.
std::string_view damagedPage(std::string_view what) {
    constexpr std::string_view kBefore = ", ";
    return what.starts_with(", page ")
               ? what.substr(kBefore.size(), what.find(':') - kBefore.size())
               : std::string_view();
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

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

std::string shownSubject(std::string_view subject) {
    return isBlank(subject) ? "(no subject)" : std::string(subject);
}

std::string tabCaption(std::string_view name, std::size_t rows) {
    return rows == 0 ? std::string(name) : std::string(name) + ": " + std::to_string(rows);
}

std::string troubleText(std::string_view DBFullName, ErrNo number, std::string_view errorText) {
    if (number == ErrNo::None) {
        return {};
    }
    if (DBFullName.empty()) {
        return "No folder of a reminders database was named at the start";
    }
    const std::string name = fileNameOf(DBFullName);
    const bool named = errorText.starts_with(DBFullName);
    const std::string_view what = named ? errorText.substr(DBFullName.size()) : errorText;
    switch (number) {
        case ErrNo::NotFound:
            if (named && what.starts_with(": cannot open")) {
                return name + " is not there";
            }
            break;
        case ErrNo::Format:
            if (named && what.starts_with(": ")) {
                return name + ' ' + std::string(what.substr(2));
            }
            break;
        case ErrNo::Corrupt:
            return name + " is damaged" + inBrackets(damagedPage(what));
        case ErrNo::Locked:
            return named && what.starts_with(": is ")
                       ? name + std::string(what.substr(1))
                       : name + " is in use by another program" +
                             inBrackets(behind(what, what.rfind(": ")));
        case ErrNo::Io:
            return name + " cannot be read" + inBrackets(behind(what, what.rfind(": ")));
        default:
            break;
    }
    return name + " cannot be read" + inBrackets(behind(what, what.find(": ")));
}

std::string withoutStatusText(int rows) {
    if (rows <= 0) {
        return {};
    }
    return rows == 1 ? "1 event is not shown: it has no status"
                     : std::to_string(rows) + " events are not shown: they have no status";
}

std::string damagedText(int rows) {
    if (rows <= 0) {
        return {};
    }
    return rows == 1 ? "The database is damaged: one event is missing, or a part of it"
                     : "The database is damaged: " + std::to_string(rows) +
                           " events are missing, or parts of them";
}

std::string waitingText(int changes) {
    if (changes <= 0) {
        return {};
    }
    return changes == 1
               ? "1 change waits until the database can be written"
               : std::to_string(changes) + " changes wait until the database can be written";
}

std::string noticeText(std::string_view about, bool settingsAreSaved) {
    std::string text(about);
    if (!settingsAreSaved) {
        text += text.empty() ? "Settings cannot be saved" : "; settings cannot be saved";
    }
    return text;
}

std::string emptyText(const EmptyReason& reason) {
    if (reason.searching) {
        return "Nothing matches the search";
    }
    if (!reason.trouble.empty()) {
        return std::string(reason.trouble);
    }
    if (reason.grid == 0) {
        return "No new reminders";
    }
    const std::string what = reason.grid == 1 ? "reminders" : "events";
    if (text::equalsNoCase(reason.periodCode, "H")) {
        return "No hidden " + what;
    }
    const std::string hidden =
        reason.leftOut > 0 ? " (" + std::to_string(reason.leftOut) + " hidden)" : std::string();
    if (text::equalsNoCase(reason.periodCode, "Di")) {
        return "No dismissed " + what + hidden;
    }
    return "No " + what + " in the period \"" + std::string(reason.periodText) + '"' + hidden;
}

}  // namespace vl
