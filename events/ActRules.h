// What an act of the user changes in what is known of an event.
#pragma once

#include <span>

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "events/DueRule.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

enum class DismissMode {
    This,         ///< this reminder
    AllButAfter,  ///< all reminders except those after the event
    All,
};

/// An act is on one occurrence of one event: `start`, local time.
struct ActOn {
    const calEvent& event;
    DateTime start;
    DateTime now;
    TimeZone zone;                            ///< the computer's
    std::span<const DateTime> replaced = {};  ///< starts that exceptions have taken over, ascending
    DateTime reminder = {};                   ///< local; that the row shows; 0: none
};

/// What the row says, while it speaks: see `rowSpeaks`.
struct RowSays {
    DateTime snoozed;        ///< it is to be shown at this time; 0: no
    DateTime occurrence;     ///< local start of the occurrence that this belongs to
    DateTime silentThrough;  ///< else it was dismissed at this time; 0: no
};
/// Local times. A next reminder later than the dismissal is a snooze of the last occurrence whose
/// first reminder is not later; what exceptions have `replaced` is no occurrence.
RowSays rowSays(const calEvent& event, const RowWord& word, std::span<const DateTime> replaced);

/// Whether a reminder, or a snooze, of the occurrence that begins at `start` is dismissed by what
/// the row says: of a single event all, unless the host has written it since; of a series what had
/// begun to remind by then. Local times.
bool isSilenced(const calEvent& event, const RowSays& says, DateTime start, DateTime time);

/// Whether a reminder of the occurrence that begins at `start` comes at `time` by the event's
/// schedule. Local times.
bool isScheduled(const calEvent& event, DateTime start, DateTime time);

/// Whether something of the event is still to come, or to be acted upon, also for who has not asked
/// for it since `since`, local time, or meets it for the first time: the host may have given it
/// reminders that are past.
bool anyLeft(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since);

/// Whether the event's user has marked it as done here, as far as it is still as it was then: the
/// host has not moved its last occurrence since, nor added others, nor given new reminders to any.
bool isMarkedDone(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since);

/// The same, or in another program, whose dismissal is not older than what the host has written.
bool isDoneByUser(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since);

/// The entry of the occurrence that begins at `start`, local time, made when there is none; it says
/// when the occurrence is over and its last reminder has come.
OccurrenceState& entryOf(EventState& state, const calEvent& event, DateTime start);

// Each of these handles the occurrence's reminders up to now (or up to the reminder it was listed
// with, where the list took it early), ends what is earlier and over, and takes over what the row
// said, since from now on the row does not speak any more.

/// Until `until` (local) its scheduled reminders are silent, then it is shown.
void recordSnooze(EventState& state, const ActOn& act, DateTime until);
void recordDismiss(EventState& state, const ActOn& act, DismissMode mode);
/// None of the occurrence's reminders will be shown any more.
void recordDone(EventState& state, const ActOn& act);

/// Where nothing waits any more after the act and the notes on the row, the next run need not ask
/// from the time since which reminders waited: by others that the host gives the event later, what
/// was dealt with would come back.
void closeOpen(EventState& state, const ActOn& act);

/// Whether something of the event is still to come, or to be acted upon, once the occurrence is
/// done.
bool anyLeftWhenDone(const EventState* known, const ActOn& act);

}  // namespace vl
