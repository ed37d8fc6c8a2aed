// Turns events into rows.
#pragma once

#include <memory>

#include "model/calEvent.h"
#include "notify/PeriodRows.h"
#include "ui/GridRow.h"

namespace vl {

/// A snapshot for `grid` (2: events, else reminders). `time` writes hours and minutes. What is
/// listed as new is still to be dealt with, whatever was dismissed before.
GridRow rowOf(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence, int grid,
              const TimeText& time);

/// What has become of the reminder of a row that is not listed as new.
void tellDue(GridRow& row, const RowDue& due);

/// What the status line and the dialogs say of the event's occurrence at `start`: its `SBMessage`,
/// begun by what stands for a subject where it has none.
QString eventLine(const calEvent& event, DateTime start, const DateWords& words);

/// Days in full, or with `now` as people name them.
DateWords wordsOf(const TimeText& time);
DateWords wordsOf(const TimeText& time, DateTime now);

}  // namespace vl
