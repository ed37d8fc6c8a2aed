// What a period lists, and which occurrence of its event each row stands for.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "events/CalEvents.h"
#include "model/calEvent.h"

namespace vl {

/// The occurrence of an event that a row stands for.
struct RowOccurrence {
    DateTime start;
    DateTime reminder;  ///< 0 when the row shows none
};

/// What the last query left in the event; where it left no instance, the event's own start.
RowOccurrence recordedOccurrence(const calEvent& event);

/// For a list that no query made: the next occurrence after `now`, else the last one, with its
/// next reminder, else its latest. Leaves that occurrence in the event, as a query does.
RowOccurrence nearestOccurrence(calEvent& event, DateTime now);

/// For an event that was just snoozed: its next reminder, of the occurrence at `start`. Leaves that
/// occurrence in the event, as a query does.
RowOccurrence snoozedOccurrence(calEvent& event, DateTime start);

/// Whether the period with this code lists the event: no hidden one, and as dismissed only what
/// was.
bool isListedIn(std::string_view code, const calEvent& event);

/// Given each row of a period, of `kAllRemindersGrid` or `kEventsGrid`. Who takes it copies what he
/// shows, since a later question changes what is in the event.
using TakeRow = std::function<void(const std::shared_ptr<calEvent>& event,
                                   const RowOccurrence& occurrence, int grid)>;

/// What has a reminder in the period's range, then what occurs there, in the order of the set. An
/// event of which the first question has left an earlier start in the set shows that one.
void DoPeriodSS(CalEvents& events, std::string_view code, DateTime now, const TakeRow& take);

/// The hidden events, each at its next occurrence, else its last; as reminders those that have any.
void DoShowHidden(CalEvents& events, DateTime now, const TakeRow& take);

/// What the period with this code lists: one of both.
void listPeriod(CalEvents& events, std::string_view code, DateTime now, const TakeRow& take);

}  // namespace vl
