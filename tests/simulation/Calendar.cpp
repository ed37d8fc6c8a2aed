#include "Calendar.h"

#include <cstdio>

namespace vl::simulation {

namespace {

std::string icalTime(Seconds wall) {
    const Civil c = dateTime(wall).civil();
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02d", c.year, c.month, c.day, c.hour,
                  c.minute, c.second);
    return text;
}

std::string recurrenceOf(const Plan& plan) {
    if (!plan.isSeries()) {
        return {};
    }
    std::string rule = plan.everyDays % 7 == 0
                           ? "FREQ=WEEKLY;INTERVAL=" + std::to_string(plan.everyDays / 7)
                           : "FREQ=DAILY;INTERVAL=" + std::to_string(plan.everyDays);
    if (plan.count > 0) {
        rule += ";COUNT=" + std::to_string(plan.count);
    }
    std::string lines = "[\"RRULE:" + rule + '"';
    for (const Seconds excluded : plan.excluded) {
        lines += ",\"EXDATE:" + icalTime(excluded) + '"';
    }
    return lines + "]";
}

std::string remindersOf(const Plan& plan) {
    std::string overrides;
    for (const int minutes : plan.reminders) {
        overrides += (overrides.empty() ? "" : ",") +
                     (R"({"method":"popup","minutes":)" + std::to_string(minutes) + "}");
    }
    return R"({"useDefault":false,"overrides":[)" + overrides + "]}";
}

}  // namespace

DateTime dateTime(Seconds seconds) { return DateTime::fromMilliseconds(seconds * 1000); }
Seconds seconds(DateTime time) { return time.milliseconds() / 1000; }

bool Plan::sameTimes(const Plan& other) const {
    return start == other.start && length == other.length && zone == other.zone &&
           everyDays == other.everyDays && count == other.count && reminders == other.reminders &&
           excluded == other.excluded && cancelled == other.cancelled;
}

std::vector<Occurrence> Plan::occurrences(Seconds from, Seconds to) const {
    std::vector<Occurrence> found;
    const auto add = [&](Seconds key, Seconds wall) {
        const Seconds local = toWall(kHere, toUtc(zone, wall));
        if (local >= from && local <= to && !excluded.contains(wall)) {
            found.push_back({key, local, local + length});
        }
    };
    if (cancelled) {
        return found;
    }
    if (!isSeries()) {
        add(0, start);
        return found;
    }
    const Seconds step = everyDays * kDay;
    Seconds n = from - kDay > start ? (from - kDay - start) / step : 0;
    for (; start + n * step <= to + kDay && (count == 0 || n < count); ++n) {
        add(start + n * step, start + n * step);
    }
    return found;
}

std::optional<Occurrence> Plan::last() const {
    if (isSeries() && count == 0) {
        return std::nullopt;
    }
    const auto all = occurrences(0, start + (isSeries() ? count * everyDays : 1) * kDay + 2 * kDay);
    return all.empty() ? std::nullopt : std::optional(all.back());
}

std::shared_ptr<calEvent> rowOf(const Plan& plan, const std::string& GUID, const std::string& id,
                                Seconds modified) {
    auto row = std::make_shared<calEvent>();
    row->GUID = GUID;
    row->id = id;
    row->Subject = "Event " + id;
    row->StartDateTime = dateTime(toWall(kHere, toUtc(plan.zone, plan.start)));
    row->EndDateTime = dateTime(seconds(row->StartDateTime) + plan.length);
    row->Modified = dateTime(modified);
    row->recurrence = recurrenceOf(plan);
    row->RecurrenceState = plan.isSeries() ? 1 : plan.replaces ? 3 : 0;
    row->reminders = remindersOf(plan);
    if (plan.zone != kHere) {
        row->JSON = R"({"start":{"timeZone":"America/New_York"}})";
    }
    if (plan.replaces) {
        row->recurringEventId = plan.master;
        row->RExceptionStartTimeOrig = dateTime(*plan.replaces);
        row->ISRecurrenceExceptionDeleted = plan.cancelled ? 1 : 0;
    }
    return row;
}

}  // namespace vl::simulation
