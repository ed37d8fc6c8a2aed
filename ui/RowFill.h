// Turns events into rows.
#pragma once

#include <memory>

#include "model/calEvent.h"
#include "notify/PeriodRows.h"
#include "ui/GridRow.h"

namespace vl {

/// A snapshot for `grid` (2: events, else reminders). `time` writes hours and minutes.
GridRow rowOf(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence, int grid,
              const TimeText& time);

/// Days in full, or with `now` as people name them.
DateWords wordsOf(const TimeText& time);
DateWords wordsOf(const TimeText& time, DateTime now);

}  // namespace vl
