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
           allDay == other.allDay && everyDays == other.everyDays && count == other.count &&
           reminders == other.reminders && excluded == other.excluded &&
           cancelled == other.cancelled;
}

Plan Plan::asWrittenIn(Zone there, Zone here) const {
    Plan said = *this;
    // What the clocks here skip is later by as much.
    const auto meant = [&](Seconds key) { return toWall(*zone, toUtc(here, toLocal(key, there))); };
    if (zone) {
        said.start = meant(start);
        if (replaces) {
            said.replaces = meant(*replaces);
        }
    }
    return said;
}

std::vector<Occurrence> Plan::occurrences(Seconds from, Seconds to, Zone here) const {
    std::vector<Occurrence> found;
    const auto add = [&](Seconds key) {
        const Seconds local = toLocal(key, here);
        if (local >= from && local <= to && !excluded.contains(key)) {
            found.push_back({key, local, local + length});
        }
    };
    if (cancelled) {
        return found;
    }
    if (!isSeries()) {
        add(start);
        return found;
    }
    const Seconds step = everyDays * kDay;
    Seconds n = from - kDay > start ? (from - kDay - start) / step : 0;
    for (; start + n * step <= to + kDay && (count == 0 || n < count); ++n) {
        add(start + n * step);
    }
    return found;
}

std::optional<Occurrence> Plan::occurrenceOf(Seconds key, Zone here) const {
    const Seconds local = toLocal(key, here);
    const auto all = occurrences(local, local, here);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

std::optional<Seconds> Plan::lastKey() const {
    if (isSeries() && count == 0) {
        return std::nullopt;
    }
    for (int n = isSeries() ? count - 1 : 0; n >= 0; --n) {
        const Seconds key = start + n * everyDays * kDay;
        if (!excluded.contains(key) && !cancelled) {
            return key;
        }
    }
    return std::nullopt;
}

std::shared_ptr<calEvent> rowOf(const Plan& plan, const std::string& GUID, const std::string& id,
                                Seconds modified, Zone here) {
    auto row = std::make_shared<calEvent>();
    row->GUID = GUID;
    row->id = id;
    row->Subject = "Event " + id;
    const Seconds start = plan.toLocal(plan.start, here);
    row->StartDateTime = dateTime(start);
    row->EndDateTime = dateTime(start + plan.length - (plan.allDay ? kDay : 0));
    row->IsAllDayEvent = plan.allDay;
    row->Modified = dateTime(modified);
    row->recurrence = recurrenceOf(plan);
    row->RecurrenceState = plan.isSeries() ? 1 : plan.replaces ? 3 : 0;
    row->reminders = remindersOf(plan);
    if (plan.zone) {
        row->JSON = std::string(R"({"start":{"timeZone":")") + nameOf(*plan.zone) + R"("}})";
    }
    if (plan.replaces) {
        row->recurringEventId = plan.master;
        row->RExceptionStartTimeOrig = dateTime(plan.toLocal(*plan.replaces, here));
        row->ISRecurrenceExceptionDeleted = plan.cancelled ? 1 : 0;
    }
    return row;
}

}  // namespace vl::simulation
