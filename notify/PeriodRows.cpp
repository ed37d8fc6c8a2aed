#include "notify/PeriodRows.h"

#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Periods.h"
#include "notify/ReminderScreen.h"

namespace vl {

namespace {

RowOccurrence recorded(calEvent& event, DateTime start, DateTime reminder) {
    event.InstanceStart = start;
    event.dReminder = reminder;
    event.iRemMinutes = reminder.isZero()
                            ? calEvent::kNoReminder
                            : static_cast<std::int32_t>(minutesBetween(reminder, start));
    event.iRemMinutesNext = calEvent::kNoReminder;
    return {start, reminder};
}

void listFound(const GenCollection& found, std::string_view code, int grid, const TakeRow& take) {
    for (const Variant& item : found) {
        const auto event = objectIn<calEvent>(item);
        if (event && isListedIn(code, *event)) {
            take(event, recordedOccurrence(*event), grid);
        }
    }
}

}  // namespace

RowOccurrence recordedOccurrence(const calEvent& event) {
    const DateTime start = event.InstanceStart.isZero() ? event.StartDateTime : event.InstanceStart;
    return {start, event.RecordedReminderD()};
}

RowOccurrence nearestOccurrence(calEvent& event, DateTime now) {
    const ErrScope scope;
    DateTime start = event.StartDateTime;
    if (event.IsRepeating()) {
        attempt([&] {
            const DateTime next = event.NextInstance(now);
            start = next.isZero() ? event.LastInstance() : next;
        });
    }
    event.InstanceStart = start;
    DateTime reminder = event.NextReminderD(now);
    if (reminder.isZero() && event.RemindersCol && event.RemindersCol->Count() > 0) {
        reminder = event.LastReminderD();  // all are past
    }
    return recorded(event, start, reminder);
}

RowOccurrence snoozedOccurrence(calEvent& event, DateTime start) {
    return recorded(event, start, event.NextReminder);
}

bool isListedIn(std::string_view code, const calEvent& event) {
    return !event.Hidden && (!text::equalsNoCase(code, "Di") || event.Dismissed > DateTime());
}

void DoPeriodSS(CalEvents& events, std::string_view code, DateTime now, const TakeRow& take) {
    const PeriodRange range = periodRange(code, now);
    listFound(*events.RemindCol(range.from, range.to), code, kAllRemindersGrid, take);
    listFound(*events.EventCol(range.from, range.to), code, kEventsGrid, take);
}

void DoShowHidden(CalEvents& events, DateTime now, const TakeRow& take) {
    const GenCollection all = events.mCol ? *events.mCol : GenCollection();
    for (const Variant& item : all) {
        const auto event = objectIn<calEvent>(item);
        if (!event || !event->Hidden) {
            continue;
        }
        const RowOccurrence nearest = nearestOccurrence(*event, now);
        events.LookAgain(event->GUID);
        if (!nearest.reminder.isZero()) {
            take(event, nearest, kAllRemindersGrid);
        }
        take(event, nearest, kEventsGrid);
    }
}

void listPeriod(CalEvents& events, std::string_view code, DateTime now, const TakeRow& take) {
    if (text::equalsNoCase(code, "H")) {
        DoShowHidden(events, now, take);
    } else {
        DoPeriodSS(events, code, now, take);
    }
}

}  // namespace vl
