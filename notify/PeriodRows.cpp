#include "notify/PeriodRows.h"

#include "base/ErrorState.h"
#include "base/Text.h"

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

// A row each: `Exists` would walk the list where it is short.
bool isAmong(const GenCollection& hidden, const calEvent& event) {
    return hidden.Position(event.GUID) > 0;
}

bool isShownAs(std::string_view code, const calEvent& event) {
    return !text::equalsNoCase(code, "Di") || event.Dismissed > DateTime();
}

// Tells how many were left out as hidden.
std::size_t listFound(const GenCollection& found, const PeriodView& view, int grid,
                      const TakeRow& take) {
    std::size_t leftOut = 0;
    for (const Variant& item : found) {
        const auto event = objectIn<calEvent>(item);
        if (!event || !isShownAs(view.code, *event)) {
            continue;
        }
        if (isAmong(view.hidden, *event)) {
            ++leftOut;
        } else {
            take(event, recordedOccurrence(*event), grid);
        }
    }
    return leftOut;
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

std::shared_ptr<GenCollection> hiddenGUIDs(const CalEvents& events) {
    auto hidden = std::make_shared<GenCollection>();
    if (!events.mCol) {
        return hidden;
    }
    for (const Variant& item : *events.mCol) {
        const auto event = objectIn<calEvent>(item);
        if (event && event->Hidden) {
            hidden->Add(event->GUID.str(), event->GUID);
        }
    }
    return hidden;
}

bool isListedIn(std::string_view code, const calEvent& event, const GenCollection& hidden) {
    return isAmong(hidden, event) == text::equalsNoCase(code, "H") && isShownAs(code, event);
}

LeftOut DoPeriodSS(CalEvents& events, const PeriodView& view, const TakeRow& take) {
    const auto& [from, to] = view.range;
    LeftOut leftOut{};
    leftOut[kAllRemindersGrid] =
        listFound(*events.RemindCol(from, to), view, kAllRemindersGrid, take);
    leftOut[kEventsGrid] = listFound(*events.EventCol(from, to), view, kEventsGrid, take);
    return leftOut;
}

void DoShowHidden(CalEvents& events, const PeriodView& view, const TakeRow& take) {
    for (const Variant& GUID : view.hidden) {
        const auto event = events.mCol ? objectAt<calEvent>(*events.mCol, GUID.toText()) : nullptr;
        if (!event) {
            continue;
        }
        const RowOccurrence nearest = nearestOccurrence(*event, view.now);
        events.LookAgain(event->GUID);
        if (!nearest.reminder.isZero()) {
            take(event, nearest, kAllRemindersGrid);
        }
        take(event, nearest, kEventsGrid);
    }
}

LeftOut listPeriod(CalEvents& events, const PeriodView& view, const TakeRow& take) {
    if (!text::equalsNoCase(view.code, "H")) {
        return DoPeriodSS(events, view, take);
    }
    DoShowHidden(events, view, take);
    return {};
}

}  // namespace vl
