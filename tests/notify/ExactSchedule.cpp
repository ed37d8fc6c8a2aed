#include "ExactSchedule.h"

#include "events/GenCollection.h"
#include "model/clsReminder.h"

namespace vl::exact {

std::vector<int> minutesOf(const calEvent& event) {
    std::vector<int> minutes;
    for (const Variant& item : *event.RemindersCol) {
        minutes.push_back(objectIn<clsReminder>(item)->Minutes);
    }
    return minutes;
}

bool isOver(const calEvent& event, DateTime start, DateTime now) {
    return event.EndOf(start) <= now;
}

bool hasNone(const calEvent& event) { return event.ISRecurrenceExceptionDeleted != 0; }

bool isOccurrence(const calEvent& event, DateTime start) {
    return !event.ICalRecEvents(start, start, 1).empty();
}

bool isScheduled(const calEvent& event, const Reminder& reminder) {
    const std::vector<int> minutes = minutesOf(event);
    return isOccurrence(event, reminder.start) &&
           std::any_of(minutes.begin(), minutes.end(),
                       [&](int m) { return reminder.start.addMinutes(-m) == reminder.time; });
}

bool isReplaced(const calEvent& event, const Replaced& replaced, DateTime start) {
    return event.IsRepeating() && replaced.contains(start);
}

bool isGone(const calEvent& event, const Replaced& replaced, DateTime start) {
    return isReplaced(event, replaced, start) || (event.IsRepeating() && event.IsExcluded(start));
}

bool isReTimed(const calEvent& before, const calEvent& event) {
    return before.StartDateTime != event.StartDateTime ||
           before.IsAllDayEvent != event.IsAllDayEvent || before.recurrence != event.recurrence ||
           before.reminders != event.reminders;
}

}  // namespace vl::exact
