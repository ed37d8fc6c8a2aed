#include "PlainQueries.h"

#include <algorithm>
#include <ostream>

#include "base/Text.h"
#include "events/GenCollection.h"
#include "model/clsReminder.h"

namespace vl::test {

namespace {

bool within(DateTime d, DateTime from, DateTime to) { return d >= from && d <= to; }

std::vector<std::int32_t> minutesOf(const calEvent& event) {
    std::vector<std::int32_t> minutes;
    for (std::size_t i = 1; event.RemindersCol && i <= event.RemindersCol->Count(); ++i) {
        minutes.push_back(objectAt<clsReminder>(*event.RemindersCol, i)->Minutes);
    }
    return minutes;
}

// Takes the series of changed occurrences out again: what a database gives first for the id.
void takeOut(std::vector<Answered>& found, const Events& events, const Events& exceptions) {
    for (const auto& exception : exceptions) {
        const auto master = std::find_if(events.begin(), events.end(), [&](const auto& event) {
            return text::equalsNoCase(event->id, exception->recurringEventId);
        });
        if (master != events.end()) {
            std::erase_if(found, [&](const Answered& a) { return a.GUID == (*master)->GUID; });
        }
    }
}

bool replacesOne(const calEvent& event) {
    return event.RecurrenceState == 3 && !event.recurringEventId.empty();
}

struct Hit {
    DateTime instance;
    DateTime time;
    std::int32_t next;
};

// From the largest offset down, so that the earliest time is met first.
bool firstIn(const calEvent& event, DateTime start, DateTime from, DateTime to, Hit& hit) {
    const auto minutes = minutesOf(event);
    for (std::size_t i = minutes.size(); i-- > 0;) {
        const DateTime time = start.addMinutes(-std::int64_t{minutes[i]});
        if (within(time, from, to)) {
            hit = {start, time, i > 0 ? minutes[i - 1] : -100000};
            return true;
        }
    }
    return false;
}

bool dueOf(calEvent& event, DateTime from, DateTime to, Hit& hit) {
    const DateTime left = event.InstanceStart;
    event.InstanceStart = DateTime();
    const DateTime winEnd = to.addMinutes(event.RemindersMaxOffsetMin);
    const DateTime winStart = from.addMinutes(event.RemindersMinOffsetMin);
    std::vector<DateTime> starts;
    if (event.RRULE.empty()) {
        starts = {event.StartDateTime};
    } else {
        starts = event.ICalRecEvents(winStart, winEnd);
        if (starts.empty() && !event.NextReminder.isZero() &&
            within(event.NextReminder, from, winEnd)) {
            starts = {left.isZero() ? event.NextReminder : left};
        }
    }
    if (!event.NextReminder.isZero() && within(event.NextReminder, from, to)) {
        // It stands for the reminder of the last instance that had begun to ring.
        DateTime owner = event.StartDateTime;
        if (!event.RRULE.empty()) {
            owner = event.PreviousInstance(
                event.NextReminder.addMinutes(event.RemindersMaxOffsetMin).addSeconds(1));
            if (owner.isZero()) {
                owner = starts.empty() ? event.NextReminder : starts.front();
            }
        }
        if (!firstIn(event, owner, event.NextReminder, event.NextReminder, hit)) {
            hit = {owner, event.NextReminder, -100000};
        }
        return true;
    }
    return std::any_of(starts.begin(), starts.end(),
                       [&](DateTime start) { return firstIn(event, start, from, to, hit); });
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Answered& a) {
    return out << a.GUID << " instance " << formatDateTime(a.InstanceStart) << " reminder "
               << formatDateTime(a.reminder) << " minutes " << a.iRemMinutes << " next "
               << a.iRemMinutesNext;
}

std::vector<Answered> plainRemindCol(const Events& events, DateTime FromTime, DateTime ToTime) {
    std::vector<Answered> found;
    Events exceptions;
    for (const auto& event : events) {
        Hit hit;
        if (dueOf(*event, FromTime, ToTime, hit)) {
            if (event->ISRecurrenceExceptionDeleted == 0) {
                event->InstanceStart = hit.instance;
                found.push_back({event->GUID, hit.instance, hit.time,
                                 static_cast<std::int32_t>(minutesBetween(hit.time, hit.instance)),
                                 hit.next});
            }
            if (replacesOne(*event)) {
                exceptions.push_back(event);
            }
        }
    }
    takeOut(found, events, exceptions);
    return found;
}

std::vector<Answered> plainEventCol(const Events& events, DateTime FromDate, DateTime ToDate) {
    std::vector<Answered> found;
    Events exceptions;
    for (const auto& event : events) {
        if (replacesOne(*event) && within(event->StartDateTime, FromDate, ToDate)) {
            exceptions.push_back(event);
        }
        if (event->ISRecurrenceExceptionDeleted != 0) {
            continue;
        }
        const std::vector<DateTime> starts = event->RRULE.empty()
                                                 ? std::vector<DateTime>{event->StartDateTime}
                                                 : event->ICalRecEvents(FromDate, ToDate);
        bool held = false;
        for (const DateTime start : starts) {
            if (within(start, FromDate, ToDate)) {
                held = true;
                if (event->InstanceStart.isZero() || start < event->InstanceStart) {
                    event->InstanceStart = start;
                }
            }
        }
        if (held) {
            found.push_back({event->GUID, event->InstanceStart, {}, 0, 0});
        }
    }
    takeOut(found, events, exceptions);
    return found;
}

}  // namespace vl::test
