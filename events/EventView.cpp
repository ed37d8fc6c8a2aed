#include "EventView.h"

#include <algorithm>

#include "base/Text.h"
#include "events/GenCollection.h"
#include "events/WrongClock.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

const EventState& nothing() {
    static const EventState state;
    return state;
}

// Marked as done, and the row says the time that it said then: after a journey that is another
// moment, but nobody has moved it.
bool isDoneWhereItWas(const calEvent& event, const EventState& state) {
    const ColumnNote* status = state.note("status");
    return status != nullptr && text::equalsNoCase(status->after, "AllDone") &&
           std::any_of(state.occurrences.begin(), state.occurrences.end(), [&](const auto& one) {
               return one.muted == Muted::ForEver && one.local == event.StartDateTime;
           });
}

}  // namespace

std::vector<Offset> offsetsOf(const calEvent& event) {
    std::vector<Offset> offsets;
    std::int32_t next = calEvent::kNoReminder;
    for (const Variant& item : event.RemindersCol ? *event.RemindersCol : GenCollection()) {
        if (const auto reminder = objectIn<clsReminder>(item)) {
            // Ascending: of two at the same time the first tells what comes after both.
            if (offsets.empty() || offsets.back().minutes != reminder->Minutes) {
                offsets.push_back({reminder->Minutes, next});
            }
            next = reminder->Minutes;
        }
    }
    return offsets;
}

EventView::EventView(const calEvent& event, const DueFacts& facts, std::optional<DateTime> now)
    : event_(event),
      facts_(facts),
      state_(facts.state != nullptr ? *facts.state : nothing()),
      repeats_(event.IsRepeating()) {
    if (now) {
        const std::int64_t length =
            event.EndOf(event.StartDateTime).milliseconds() - event.StartDateTime.milliseconds();
        over_ = DateTime::fromMilliseconds(now->milliseconds() - length);
    }
    endedBefore_ = state_.endedBefore;
    if (now && isActedAfter(state_, {})) {
        now_ = now;
        latestAct_ = latestAct(*now, facts.zone);
        if (const auto seen = behind(state_.endedAt)) {
            endedBefore_ = endedRight(state_, event, *seen);
        }
    }
    const RowWord live{event.NextReminder, event.Dismissed};
    rowSpeaks_ = live.saysAnything() && rowSpeaks(event, facts.state);
    const RowWord& word = rowSpeaks_ ? live : state_.word;
    if (word.saysAnything()) {
        says_ = rowSays(event, word, facts.replaced);
    }
}

bool EventView::isOpen(DateTime start, DateTime time) const {
    if (isReplaced(start) || time < says_.snoozed || isSilenced(event_, says_, start, time)) {
        return false;
    }
    if (state_.occurrences.empty() && endedBefore_.isZero()) {
        return true;
    }
    if (!repeats_ && isDoneWhereItWas(event_, state_)) {
        return false;
    }
    const DateTime wall = event_.ToWall(start);
    const OccurrenceState* entry = state_.find(wall);
    const DateTime snoozed = snoozeOf(entry);
    if (!snoozed.isZero() && time < snoozed) {
        return false;
    }
    const bool spared = entry != nullptr && (entry->spared || !entry->snoozed.isZero());
    // Ended with others was only what was over, by a clock that may have been ahead.
    if (wall < endedBefore_ && isOver(start) && !spared) {
        return false;
    }
    if (entry == nullptr) {
        return true;
    }
    return !isHandled(*entry, start, time) && entry->muted != Muted::ForEver &&
           (entry->muted != Muted::ThroughStart || time > start);
}

DateTime EventView::firstOpenStart() const {
    DateTime first = event_.FromWall(endedBefore_);
    if (over_) {
        first = std::min(first, goesOn());
    }
    if (!says_.silentThrough.isZero()) {
        first = std::max(
            first, says_.silentThrough.addMinutes(event_.RemindersMaxOffsetMin).addSeconds(1));
    }
    return first;
}

bool EventView::isThere(const OccurrenceState& one) const {
    const DateTime start = startOf(one);
    return repeats_ ? !event_.ICalRecEvents(start, start, 1).empty()
                    : one.start == event_.ToWall(start);
}

bool EventView::isReplaced(DateTime start) const {
    return std::binary_search(facts_.replaced.begin(), facts_.replaced.end(), start);
}

// A snooze stays when the series is re-timed; only who takes its occurrence away ends it.
bool EventView::isGone(DateTime start) const {
    return repeats_ && (isReplaced(start) || event_.IsExcluded(start));
}

std::optional<DateTime> EventView::behind(DateTime acted) const {
    const auto seen =
        now_ ? vl::behind(state_, acted, *now_, latestAct_, facts_.zone) : std::nullopt;
    return seen ? std::optional(startIn(event_, *seen, facts_.zone)) : std::nullopt;
}

// All times that clocks skip are one moment, and so is the end of them. Who has acted before it on
// the first of them, which the list took early, has dealt with none of the others.
bool EventView::isHandled(const OccurrenceState& one, DateTime start, DateTime time) const {
    const auto seen = behind(one.acted);
    const DateTime through = seen ? handledRight(one, event_, *seen) : one.handled;
    const DateTime acted = seen ? event_.ToMoment(*seen) : one.acted;
    const DateTime moment = event_.ToMoment(time);
    if (moment != through || acted.isZero() || acted >= through) {
        return moment <= through;
    }
    const std::vector<Offset> offsets = offsetsOf(event_);
    return std::none_of(offsets.begin(), offsets.end(), [&](const Offset& offset) {
        const DateTime other = start.addMinutes(-offset.minutes);
        return other < time && event_.ToMoment(other) == moment;
    });
}

DateTime EventView::localSnooze(const OccurrenceState& one) const {
    if (one.snoozed.isZero()) {
        return {};
    }
    return facts_.zone.fromUtc(behind(one.acted) ? snoozedRight(one, event_, facts_.zone)
                                                 : one.snoozed);
}

// Of a single event also one that was made before the host moved it.
DateTime EventView::snoozeOf(const OccurrenceState* entry) const {
    if (repeats_) {
        return entry != nullptr ? localSnooze(*entry) : DateTime();
    }
    DateTime latest;
    for (const OccurrenceState& one : state_.occurrences) {
        latest = std::max(latest, localSnooze(one));
    }
    return latest;
}

}  // namespace vl
