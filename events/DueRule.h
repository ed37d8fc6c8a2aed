// Which reminder of an event is to be shown.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// A reminder: of which occurrence, when, and the offset of the scheduled one after it
/// (`calEvent::kNoReminder`: none, or it is a snoozed one). Local times.
struct Due {
    DateTime instance;
    DateTime time;
    std::int32_t next = calEvent::kNoReminder;
};

/// Leaves the reminder in the event, where rows and texts read it.
void recordDue(calEvent& event, const Due& due);

/// What the user has dealt with, and what else bears on one event.
struct DueFacts {
    const EventState* state = nullptr;
    std::span<const DateTime> replaced;  ///< starts that exceptions have taken over, ascending
    TimeZone zone;                       ///< the computer's
};

struct DueQuestion {
    DateTime from;  ///< both ends are included
    DateTime to;
    DateTime now;
    DateTime since;         ///< not later than `from`: what may be left from before it
    bool firstMet = false;  ///< or re-timed: earlier reminders of today and of what goes on count
};

struct DueAnswer {
    /// What the event is to be listed with: the earliest that is pending, but of an occurrence that
    /// is over only when none is pending that is not, and then of the latest.
    std::optional<Due> taken;
    /// The same among what lies in [`from`, `to`]: a listed event counts as due again.
    std::optional<Due> again;
    /// What may be left later begins here: `since` of the question, or before it where an event
    /// that was met has earlier reminders.
    DateTime since;
    /// Nothing else becomes pending before this, as far as event and ledger stay as they are; 0:
    /// never.
    DateTime next;
};

/// Scheduled reminders in the window, those that were listed and not acted upon, and snoozed ones
/// whose time has come; less those that are handled, muted, ended or whose occurrence an exception
/// has taken over. Costs some jumps into the series, however long it is and however long ago `from`
/// lies; and one step for each entry of `state`.
DueAnswer askDue(const calEvent& event, const DueFacts& facts, const DueQuestion& question);

/// Since when reminders of the event may not have been shown, local time, by what an earlier run
/// has noted: that holds for the event as that run knew it, one that was moved since has new times.
/// 0: nothing is noted.
DateTime notedOpenSince(const calEvent& event, const EventState* state);

/// Whether a snooze of the event, as it is now, has not been acted upon; a reminder that was
/// listed.
bool hasSnoozed(const calEvent& event, const DueFacts& facts, DateTime now);
bool hasListed(const calEvent& event, const DueFacts& facts, DateTime now);

/// Whether something of the event waits to be shown or acted upon: a snooze, a reminder that was
/// listed, or one that fell due while another was. Such an event is not finished.
bool hasOpenReminder(const calEvent& event, const DueFacts& facts, DateTime now);

}  // namespace vl
