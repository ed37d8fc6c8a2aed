// What was done while the computer's clock was ahead, once it is seen to be right again.
#pragma once

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// Acts later than this, in UTC, were by a clock that is ahead of the one that now says `now`
/// (local): by more than a clock that is a little off, or an hour that comes twice.
DateTime latestAct(DateTime now, const TimeZone& here);

/// Whether an act on the event is later than that.
bool isActedAfter(const EventState& state, DateTime latest);

/// Of such an act no more holds than what had fallen due by now: what comes later comes at its
/// time, a snooze, of which nobody knows what time was meant, is over, and what is not over is not
/// ended.
/// `now` is local.
void setRight(EventState& state, const calEvent& event, DateTime now, const TimeZone& here);

/// Occurrences of the event that begin before this, on the wall clock of its zone, are over.
DateTime overBefore(const calEvent& event, DateTime now);

}  // namespace vl
