// Turns events into rows.
#pragma once

#include <memory>

#include "model/calEvent.h"
#include "ui/GridRow.h"

namespace vl {

/// The occurrence of an event that a row stands for.
struct RowOccurrence {
    DateTime start;
    DateTime reminder;  ///< 0 when the row shows none
};

/// What the last query left in the event; where it left no instance, the event's own start.
RowOccurrence recordedOccurrence(const calEvent& event);

/// For a list that no query made: the next occurrence after `now`, else the last one, with its
/// next reminder, else its first. Leaves that occurrence in the event, as a query does.
RowOccurrence nearestOccurrence(calEvent& event, DateTime now);

/// For an event that was just snoozed: its next reminder, of the occurrence at `start`. Leaves that
/// occurrence in the event, as a query does.
RowOccurrence snoozedOccurrence(calEvent& event, DateTime start);

/// A snapshot for `grid` (2: events, else reminders). `time` writes hours and minutes.
GridRow rowOf(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence, int grid,
              const TimeText& time);

/// Days in full, or with `now` as people name them.
DateWords wordsOf(const TimeText& time);
DateWords wordsOf(const TimeText& time, DateTime now);

}  // namespace vl
