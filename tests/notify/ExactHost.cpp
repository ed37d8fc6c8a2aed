#include "ExactHost.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <utility>

#include "support/Events.h"

namespace vl::exact {

namespace {

constexpr const char* kHourly = "RRULE:FREQ=HOURLY;INTERVAL=5";

// As recurrence lines have it: "20261120T100000", of a day "20261120".
std::string stamp(DateTime time, bool isDay) {
    std::string digits;
    for (const char c : formatDateTime(time)) {
        if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
            digits += c;
        }
    }
    digits.resize(14, '0');
    return isDay ? digits.substr(0, 8) : digits.substr(0, 8) + "T" + digits.substr(8);
}

void addLine(calEvent& event, const std::string& line) {
    const std::string lines = event.recurrence;
    event.recurrence = lines.substr(0, lines.rfind(']')) + ",\"" + line + "\"]";
}

bool isSeries(const calEvent& event) { return !event.recurrence.empty(); }

}  // namespace

std::string ExactHost::reminders() {
    static constexpr std::array kMinutes = {0,   5,    10,   15,  30,  60,    120,
                                            300, 1440, 2880, -10, -60, -1500, 7 * 1440};
    std::string overrides;
    for (int n = 1 + dice_.below(3); n > 0; --n) {
        const int minutes = kMinutes.at(static_cast<std::size_t>(dice_.below(kMinutes.size())));
        overrides += std::string(overrides.empty() ? "" : ",") + R"({"method":"popup","minutes":)" +
                     std::to_string(minutes) + "}";
    }
    return R"({"useDefault":false,"overrides":[)" + overrides + "]}";
}

// Lines of a series of that event. All day none comes by the hour.
std::string ExactHost::rule(const calEvent& event) {
    const DateTime start = event.StartDateTime;
    const auto quoted = [](const std::string& text) { return "[\"" + text + "\"]"; };
    switch (dice_.below(10)) {
        case 0:
            return quoted("RRULE:FREQ=DAILY;COUNT=4");
        case 1:
            return quoted("RRULE:FREQ=WEEKLY");
        case 2:
            return quoted(event.IsAllDayEvent ? "RRULE:FREQ=DAILY" : kHourly);
        case 3:
            return quoted("RRULE:FREQ=DAILY;INTERVAL=2");
        case 4:
            return quoted("RRULE:FREQ=WEEKLY;BYDAY=MO,TH,SA");
        case 5:
            return quoted("RRULE:FREQ=DAILY;UNTIL=" + stamp(start.addDays(5), true) + "T235959Z");
        case 6:
            return quoted("RDATE;VALUE=DATE-TIME:" + stamp(start.addMinutes(600), false) + "," +
                          stamp(start.addDays(1), false));
        default:
            return quoted("RRULE:FREQ=DAILY");
    }
}

// Half an hour, mostly; of no length; longer than the distance to the next.
void ExactHost::setLength(calEvent& event) {
    static constexpr std::array kMinutes = {30, 30, 30, 0, 330, 1800};
    const int minutes = kMinutes.at(static_cast<std::size_t>(dice_.below(kMinutes.size())));
    event.EndDateTime = event.IsAllDayEvent ? event.StartDateTime.addDays(minutes / 900)
                                            : event.StartDateTime.addMinutes(minutes);
}

std::shared_ptr<calEvent> ExactHost::enter(const std::string& GUID, DateTime now) {
    const DateTime start = now.date().addMinutes(std::int64_t{15} * (dice_.below(4 * 96) - 96));
    const int kind = dice_.below(8);
    auto event =
        kind == 1 || kind == 7 ? test::allDay(GUID, start, {}) : test::single(GUID, start, {});
    if (kind > 1) {
        event->StartDateTime = event->StartDateTime.addDays(-dice_.below(3));
        event->recurrence = rule(*event);
        event->RecurrenceState = 1;
        if (kind == 2) {
            const char* zone = dice_.oneIn(2) ? "America/New_York" : "Asia/Tokyo";
            event->JSON = std::string(R"({"start":{"timeZone":")") + zone + "\"}}";
        }
        event->LoadRecurrence();
    }
    setLength(*event);
    event->reminders = reminders();
    event->SetRemindersCol();
    event->Modified = now;
    return event;
}

bool ExactHost::move(calEvent& event) {
    const std::int64_t length =
        event.EndDateTime.milliseconds() - event.StartDateTime.milliseconds();
    event.StartDateTime =
        event.IsAllDayEvent
            ? event.StartDateTime.addDays(dice_.below(3) - 1)
            : event.StartDateTime.addMinutes(std::int64_t{30} * (dice_.below(200) - 80));
    event.EndDateTime = DateTime::fromMilliseconds(event.StartDateTime.milliseconds() + length);
    return true;
}

bool ExactHost::turnAllDay(calEvent& event) {
    if (event.recurrence.str().find(kHourly) != std::string::npos) {
        return false;
    }
    event.IsAllDayEvent = !event.IsAllDayEvent;
    event.StartDateTime = event.IsAllDayEvent
                              ? event.StartDateTime.date()
                              : event.StartDateTime.addMinutes(std::int64_t{15} * dice_.below(96));
    setLength(event);
    return true;
}

bool ExactHost::turnSeries(calEvent& event) {
    const bool wasSeries = isSeries(event);
    event.recurrence = wasSeries ? std::string() : rule(event);
    event.RecurrenceState = wasSeries ? 0 : 1;
    event.LoadRecurrence();
    return true;
}

bool ExactHost::exclude(calEvent& event, DateTime now) {
    const DateTime next =
        event.IsRepeating() ? event.NextInstance(now.addMinutes(-600)) : DateTime();
    if (next.isZero()) {
        return false;
    }
    addLine(event, "EXDATE:" + stamp(event.ToWall(next), event.IsAllDayEvent));
    return true;
}

// What was excluded last is an occurrence again.
bool ExactHost::include(calEvent& event) const {
    std::string lines = event.recurrence;
    const std::size_t begin = lines.rfind(",\"EXDATE");
    if (begin == std::string::npos) {
        return false;
    }
    event.recurrence = lines.erase(begin, lines.find('"', begin + 2) + 1 - begin);
    return true;
}

bool ExactHost::addDate(calEvent& event, DateTime now) {
    if (!isSeries(event)) {
        return false;
    }
    const DateTime date = now.date().addMinutes(std::int64_t{15} * dice_.below(3 * 96));
    addLine(event, std::string("RDATE;VALUE=") + (event.IsAllDayEvent ? "DATE:" : "DATE-TIME:") +
                       stamp(date, event.IsAllDayEvent));
    return true;
}

bool ExactHost::change(calEvent& event, DateTime now) {
    const auto changeOne = [&] {
        switch (dice_.below(event.IsException() ? 4 : 10)) {
            case 0:
                return move(event);
            case 1:
                setLength(event);
                return true;
            case 2:
                event.Subject = event.GUID.str() + " at " + formatDateTime(now);
                return true;
            case 4:
                return turnAllDay(event);
            case 5:
                return turnSeries(event);
            case 6:
            case 7:
                return exclude(event, now);
            case 8:
                return include(event);
            case 9:
                return addDate(event, now);
            default:
                event.reminders = reminders();
                return true;
        }
    };
    event.Modified = now;
    event.status = std::string();
    return changeOne();
}

std::shared_ptr<calEvent> ExactHost::except(const std::string& GUID, const calEvent& series,
                                            DateTime now) {
    const DateTime next =
        series.IsRepeating() ? series.NextInstance(now.addMinutes(-300)) : DateTime();
    if (next.isZero()) {
        return nullptr;
    }
    auto event = test::single(GUID, next.addMinutes(std::int64_t{30} * (dice_.below(20) - 10)), {});
    event->RecurrenceState = 3;
    event->recurringEventId = series.id;
    event->RExceptionStartTimeOrig = next;
    event->ISRecurrenceExceptionDeleted = dice_.oneIn(5) ? 1 : 0;
    event->reminders = reminders();
    event->SetRemindersCol();
    event->Modified = now;
    return event;
}

std::string ExactHost::say(const calEvent& event) {
    std::string text = formatDateTime(event.StartDateTime) + " to " +
                       formatDateTime(event.EndDateTime) + (event.IsAllDayEvent ? " all day" : "") +
                       " " + event.recurrence.str();
    text += " " + event.reminders.str();
    if (event.IsException()) {
        text += " in place of " + formatDateTime(event.RExceptionStartTimeOrig);
    }
    return text + (event.ISRecurrenceExceptionDeleted != 0 ? " cancelled" : "") +
           (event.HasOwnZone() ? " " + event.JSON.str() : "");
}

}  // namespace vl::exact
