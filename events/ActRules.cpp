#include "events/ActRules.h"

#include <algorithm>

#include "EventIndex.h"
#include "events/GenCollection.h"
#include "events/WrongClock.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

// The last occurrence whose first reminder is not later than `time`; where there is none, the
// event's own start.
DateTime occurrenceAt(const calEvent& event, DateTime time, std::span<const DateTime> replaced) {
    if (!event.IsRepeating()) {
        return event.StartDateTime;
    }
    const DateTime latest = time.addMinutes(event.RemindersMaxOffsetMin);
    DateTime start = event.PreviousInstance(latest.addSeconds(1));
    while (!start.isZero() && std::binary_search(replaced.begin(), replaced.end(), start)) {
        start = event.PreviousInstance(start);
    }
    return start.isZero() ? event.StartDateTime : start;
}

// What the row has said so far is kept: after the act it shows what the act has put there.
void takeOverRow(EventState& state, const ActOn& act) {
    if (!rowSpeaks(act.event, &state)) {
        return;
    }
    const RowWord word{act.event.NextReminder, act.event.Dismissed};
    if (!word.saysAnything()) {
        return;
    }
    const RowSays says = rowSays(act.event, word, act.replaced);
    if (!says.snoozed.isZero()) {
        entryOf(state, act.event, says.occurrence).snoozed = act.zone.toUtc(says.snoozed);
    }
    for (OccurrenceState& one : state.occurrences) {
        if (!one.snoozed.isZero() && isSilenced(act.event, says, act.event.FromWall(one.start),
                                                act.zone.fromUtc(one.snoozed))) {
            one.snoozed = DateTime();
        }
    }
    state.word = word;
}

// An act on what the row had snoozed takes that snooze's place; what was superseded up to now stays
// so.
void endSnoozeOfRow(EventState& state, const ActOn& act) {
    const RowSays says = rowSays(act.event, state.word, act.replaced);
    if (says.snoozed.isZero() || (act.event.IsRepeating() && says.occurrence != act.start)) {
        return;
    }
    state.word.NextReminder = std::min(says.snoozed, act.now);
    if (!act.event.IsRepeating() || state.word.NextReminder <= state.word.Dismissed) {
        state.word = RowWord();
    }
}

// The row of a series that the host has moved since was listed for what it is now, too; but where
// the host has taken that reminder away meanwhile, nobody wants to see it.
void endOldListing(EventState& state, const ActOn& act) {
    if (!act.event.ICalRecEvents(act.start, act.start, 1).empty()) {
        return;
    }
    for (OccurrenceState& one : state.occurrences) {
        const DateTime time = act.event.FromMoment(one.listed);
        if (!one.listed.isZero() && !isScheduled(act.event, act.event.FromWall(one.start), time)) {
            one.listed = DateTime();
        }
    }
}

// A single event's occurrence is one, also under a start that it had before the host moved it. Who
// acts on a row from before a move has not seen what is scheduled since; a snooze was the row's
// own. What is yet to come, after a journey west, comes at its time.
void endOldEntries(EventState& state, const ActOn& act) {
    if (act.event.IsRepeating()) {
        endOldListing(state, act);
        return;
    }
    const DateTime moved = act.event.ToWall(act.event.StartDateTime);
    for (OccurrenceState& one : state.occurrences) {
        one.snoozed = DateTime();
        const DateTime time = act.event.FromMoment(one.listed);
        if (one.start != moved || !isScheduled(act.event, act.event.StartDateTime, time) ||
            time > act.now) {
            one.listed = DateTime();
        }
    }
}

// What begins before the occurrence and is over by now.
void endEarlier(EventState& state, const ActOn& act) {
    if (!act.event.IsRepeating()) {
        return;
    }
    const DateTime limit = std::min(act.event.ToWall(act.start), overBefore(act.event, act.now));
    if (limit > state.endedBefore) {
        state.endedBefore = limit;
        state.endedAt = act.zone.toUtc(act.now);
    }
    for (OccurrenceState& one : state.occurrences) {
        if (one.start < limit) {
            one.spared = !one.snoozed.isZero();
            one.listed = one.spared ? one.listed : DateTime();
        }
    }
}

// The list takes a reminder a little before its time, and in an hour that comes twice the second
// pass shows an earlier time than an act in the first: what was dealt with then stays so. What lies
// ahead otherwise is still to come: the computer was farther east, or its clock was wrong.
bool isStillHandled(const OccurrenceState& entry, const ActOn& act) {
    const DateTime now = act.event.ToMoment(act.now);
    const bool early = entry.handled <= now.addMinutes(1);
    const bool secondPass = act.zone.fromUtc(entry.acted) > act.now;
    return entry.handled > now && (early || secondPass);
}

OccurrenceState& begin(EventState& state, const ActOn& act) {
    setRight(state, act.event, act.now, act.zone);
    takeOverRow(state, act);
    endSnoozeOfRow(state, act);
    const DateTime start = act.event.ToWall(act.start);
    const OccurrenceState* known = state.find(start);
    const DateTime listed = known != nullptr ? known->listed : DateTime();
    endOldEntries(state, act);
    endEarlier(state, act);
    state.acted = act.now;
    OccurrenceState& entry = entryOf(state, act.event, act.start);
    const DateTime now = act.event.ToMoment(act.now);
    const DateTime acted = act.zone.toUtc(act.now);
    const bool stays = isStillHandled(entry, act);
    entry.handled = std::max(stays ? entry.handled : now, listed);
    entry.snoozed = DateTime();
    entry.listed = DateTime();
    entry.acted = std::max(entry.acted, acted);
    if (!listed.isZero()) {
        entry.reminder = listed;
    } else if (!act.reminder.isZero() && act.reminder <= act.now) {
        entry.reminder = act.event.ToMoment(act.reminder);
    }
    return entry;
}

// Whether its last occurrence, where it is now, is muted for ever.
bool isLastMuted(const calEvent& event, const EventState& state) {
    const DateTime last = event.IsRepeating() ? event.LastInstance() : event.StartDateTime;
    const DateTime wall = event.ToWall(last);
    // Where its row says what it said, nobody has moved it, whatever that means after a journey.
    const auto isMarked = [&](const OccurrenceState& one) {
        const bool isSameRow = !event.IsRepeating() && one.local == event.StartDateTime;
        return one.muted == Muted::ForEver && (one.start == wall || isSameRow);
    };
    return std::any_of(state.occurrences.begin(), state.occurrences.end(), isMarked);
}

// Whether all reminders before those of its last occurrence had come by then: a dismissal in the
// row of a series is of what had, and only with the last one is the series done.
bool wasLastLeft(const calEvent& event, DateTime then) {
    if (!event.IsRepeating()) {
        return true;
    }
    const DateTime last = event.LastInstance();
    const DateTime before = last.isZero() ? DateTime() : event.PreviousInstance(last);
    return !last.isZero() && (before.isZero() || before.addMinutes(event.LastReminder()) <= then);
}

void muteForEver(OccurrenceState& entry, const ActOn& act) {
    entry.muted = Muted::ForEver;
    entry.local = act.event.HasOwnZone() ? act.start : DateTime();
}

}  // namespace

bool isSilenced(const calEvent& event, const RowSays& says, DateTime start, DateTime time) {
    const DateTime through = says.silentThrough;
    if (through.isZero()) {
        return false;
    }
    if (event.IsRepeating()) {
        return start.addMinutes(-std::int64_t{event.RemindersMaxOffsetMin}) <= through;
    }
    return time <= through || event.Modified <= through;
}

RowSays rowSays(const calEvent& event, const RowWord& word, std::span<const DateTime> replaced) {
    RowSays says;
    if (word.NextReminder > word.Dismissed) {
        says.snoozed = word.NextReminder;
        says.occurrence = occurrenceAt(event, word.NextReminder, replaced);
    } else {
        says.silentThrough = word.Dismissed;
    }
    return says;
}

bool isScheduled(const calEvent& event, DateTime start, DateTime time) {
    const auto isAt = [&](auto&& same) {
        for (const Variant& item : event.RemindersCol ? *event.RemindersCol : GenCollection()) {
            const auto reminder = objectIn<clsReminder>(item);
            if (reminder && same(start.addMinutes(-reminder->Minutes))) {
                return true;
            }
        }
        return false;
    };
    // A time that clocks skip is noted as the moment at which they do.
    return isAt([&](DateTime one) { return one == time; }) ||
           (event.HasOwnZone() && isAt([&, moment = event.ToMoment(time)](DateTime one) {
                return event.ToMoment(one) == moment;
            }));
}

bool anyLeft(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since) {
    const DateTime from = since.isZero() ? now : std::min(now, since);
    const DateTime end = std::max(now, lastReminderOf(event));
    return hasOpenReminder(event, facts, now) ||
           askDue(event, facts, {from, end, now, from, true}).taken;
}

bool isMarkedDone(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since) {
    const ColumnNote* status = facts.state != nullptr ? facts.state->note("status") : nullptr;
    return status != nullptr && status->after == "AllDone" && isLastMuted(event, *facts.state) &&
           !anyLeft(event, facts, now, since);
}

bool isDoneByUser(const calEvent& event, const DueFacts& facts, DateTime now, DateTime since) {
    return isMarkedDone(event, facts, now, since) ||
           (rowSpeaks(event, facts.state) && !event.Dismissed.isZero() &&
            event.Modified <= event.Dismissed && wasLastLeft(event, event.Dismissed));
}

OccurrenceState& entryOf(EventState& state, const calEvent& event, DateTime start) {
    OccurrenceState& entry = state.at(event.ToWall(start));
    const DateTime last = start.addMinutes(event.LastReminder());
    entry.end = event.ToWall(std::max(event.EndOf(start), last));
    return entry;
}

void recordSnooze(EventState& state, const ActOn& act, DateTime until) {
    OccurrenceState& entry = begin(state, act);
    entry.snoozed = act.zone.toUtc(until);
    // Also what of a single event was listed since the host has moved it.
    for (OccurrenceState& one : state.occurrences) {
        if (!act.event.IsRepeating() && !one.listed.isZero() &&
            act.event.FromMoment(one.listed) < until) {
            entry.reminder = entry.reminder.isZero() ? one.listed : entry.reminder;
            one.listed = DateTime();
        }
    }
}

void recordDismiss(EventState& state, const ActOn& act, DismissMode mode) {
    OccurrenceState& entry = begin(state, act);
    if (mode == DismissMode::All) {
        muteForEver(entry, act);
    } else if (mode == DismissMode::AllButAfter && entry.muted == Muted::No) {
        entry.muted = Muted::ThroughStart;
    }
}

void recordDone(EventState& state, const ActOn& act) { muteForEver(begin(state, act), act); }

void closeOpen(EventState& state, const ActOn& act) {
    const DueFacts facts{&state, act.replaced, act.zone};
    const DateTime since = notedOpenSince(act.event, &state);
    if (!since.isZero() && !askDue(act.event, facts, {act.now, act.now, act.now, since}).taken) {
        state.openSince = state.openOf = DateTime();
    }
}

bool anyLeftWhenDone(const EventState* known, const ActOn& act) {
    EventState after = known != nullptr ? *known : EventState();
    recordDone(after, act);
    for (const std::string_view column : kWordColumns) {
        after.row[std::string(column)].after = columnText(act.event, column);
    }
    const DueFacts facts{&after, act.replaced, act.zone};
    return anyLeft(act.event, facts, act.now, act.now);
}

}  // namespace vl
