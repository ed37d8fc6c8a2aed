// What a period lists, and which occurrence of its event each row stands for.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "events/CalEvents.h"
#include "model/calEvent.h"
#include "notify/Periods.h"
#include "notify/ReminderScreen.h"
#include "notify/RowOccurrence.h"

namespace vl {

/// What the last query left in the event; where it left no instance, the event's own start.
RowOccurrence recordedOccurrence(const calEvent& event);

/// For a list that no query made: the next occurrence after `now`, else the last one, with its
/// next reminder, else its latest. Leaves that occurrence in the event, as a query does.
RowOccurrence nearestOccurrence(calEvent& event, DateTime now);

/// For an event that was just snoozed: its next reminder, of the occurrence at `start`. Leaves that
/// occurrence in the event, as a query does.
RowOccurrence snoozedOccurrence(calEvent& event, DateTime start);

/// The `GUID`s of the hidden events of a set, each under itself, in the order of the set.
std::shared_ptr<GenCollection> hiddenGUIDs(const CalEvents& events);

/// Whether the period with this code lists the event: as hidden what is hidden, else nothing that
/// is, and as dismissed only what was. `hidden` are the `hiddenGUIDs`.
bool isListedIn(std::string_view code, const calEvent& event, const GenCollection& hidden);

/// What is asked of a set.
struct PeriodView {
    std::string_view code;
    PeriodRange range;
    DateTime now;
    const GenCollection& hidden;  ///< `hiddenGUIDs`
};

/// How many rows are left out because their events are hidden, by grid.
using LeftOut = std::array<std::size_t, kGridCount>;

/// Given each row of a period, of `kAllRemindersGrid` or `kEventsGrid`. Who takes it copies what he
/// shows, since a later question changes what is in the event.
using TakeRow = std::function<void(const std::shared_ptr<calEvent>& event,
                                   const RowOccurrence& occurrence, int grid)>;

/// What has a reminder in the period's range, then what occurs there, in the order of the set. An
/// event of which the first question has left an earlier start in the set shows that one.
LeftOut DoPeriodSS(CalEvents& events, const PeriodView& view, const TakeRow& take);

/// The hidden events, each at its next occurrence, else its last; as reminders those that have any.
void DoShowHidden(CalEvents& events, const PeriodView& view, const TakeRow& take);

/// What the view lists: one of both.
LeftOut listPeriod(CalEvents& events, const PeriodView& view, const TakeRow& take);

}  // namespace vl
