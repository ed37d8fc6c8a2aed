// What was done by a clock that seems to have been ahead of the one of now.
#pragma once

#include <optional>

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// By no more is a right clock off: less than zones differ by.
inline constexpr int kOffMinutes = 25;

/// Acts later than this, in UTC, were by a clock that is ahead of the one that now says `now`
/// (local): by more than a clock that is a little off, or an hour that comes twice.
DateTime latestAct(DateTime now, const TimeZone& here);

/// Whether an act on the event is later than that, or in doubt.
bool isActedAfter(const EventState& state, DateTime latest);

/// What a check sees of the computer's clock. From what it says alone nobody can tell whether it is
/// behind or has been ahead before: only one that goes on from there was ahead before, and one that
/// is set forward was behind. A sleep looks the same as that.
struct ClockWord {
    DateTime now;             ///< local
    bool turnedBack = false;  ///< since the last check, or none saw it before
    /// Since the last check, forward by more than a right clock is off; or none saw it before.
    bool jumped = false;
    bool stood = false;  ///< it has gone on for an hour since it was turned back
};

/// Whether `takeClock` would change anything.
bool bearsOn(const ClockWord& clock, const EventState& state, const TimeZone& here);

/// Acts that lie ahead of the clock come into doubt (`EventState::doubted`). Of those that were:
/// what the clock has come to step by step, or still lies ahead after an hour, is set right; what
/// it has jumped over is again what it was, and what was listed against it is none any more.
void takeClock(EventState& state, const calEvent& event, const ClockWord& clock,
               const TimeZone& here);

/// The same for good, for an event that is acted upon at `now` (local), whatever was in doubt.
void setRight(EventState& state, const calEvent& event, DateTime now, const TimeZone& here);

/// By which clock an act on the event was wrong, if it was: what this one showed when it was first
/// seen to be behind the act. `latest` as `latestAct(now)`.
std::optional<Noted> behind(const EventState& state, DateTime acted, DateTime now, DateTime latest,
                            const TimeZone& here);

// Of a wrong act no more holds than what had fallen due by `seen` (local, see `startIn`): what
// comes later comes at its time, a snooze, of which nobody knows what time was meant, is over, and
// what is not over is not ended.

/// As `OccurrenceState::handled`.
DateTime handledRight(const OccurrenceState& one, const calEvent& event, DateTime seen);
/// As `OccurrenceState::snoozed`.
DateTime snoozedRight(const OccurrenceState& one, const calEvent& event, const TimeZone& here);
/// As `EventState::endedBefore`.
DateTime endedRight(const EventState& state, const calEvent& event, DateTime seen);

/// Occurrences of the event that begin before this, on the wall clock of its zone, are over.
DateTime overBefore(const calEvent& event, DateTime now);

}  // namespace vl
