// An event as the ledger and its row see it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "events/ActRules.h"
#include "events/DueRule.h"

namespace vl {

/// A scheduled reminder: minutes before the start, and the offset of the later one after it.
struct Offset {
    std::int64_t minutes;
    std::int32_t next;
};
/// By minutes, ascending; of two at the same time one.
std::vector<Offset> offsetsOf(const calEvent& event);

/// Times and starts are local. The event and the facts must outlive the view.
class EventView {
public:
    /// `now`, where it matters what is over by it.
    EventView(const calEvent& event, const DueFacts& facts, std::optional<DateTime> now = {});

    const calEvent& event() const { return event_; }
    const EventState& state() const { return state_; }
    bool repeats() const { return repeats_; }

    bool isOver(DateTime start) const { return !over_ || start <= *over_; }
    /// Occurrences that begin from here on are not over.
    DateTime goesOn() const { return over_.value_or(DateTime()).addSeconds(1); }

    /// Whether a scheduled reminder of the occurrence is still to be shown.
    bool isOpen(DateTime start, DateTime time) const;

    /// Below this start every scheduled reminder is silent, but of spared occurrences.
    DateTime firstOpenStart() const;

    /// Scheduled reminders before this are superseded.
    DateTime supersededBefore() const { return says_.snoozed; }

    /// Given the start and the time of each snooze.
    template <class Visit>
    void forEachSnooze(Visit&& visit) const {
        const bool fromRow = rowSpeaks_ && !says_.snoozed.isZero();
        if (fromRow && !isGone(says_.occurrence)) {
            visit(says_.occurrence, says_.snoozed);
        }
        for (const OccurrenceState& one : state_.occurrences) {
            const DateTime start = startOf(one);
            const DateTime time = localSnooze(one);
            const bool silenced = rowSpeaks_ && isSilenced(event_, says_, start, time);
            if (!time.isZero() && !silenced && !isGone(start) &&
                !(fromRow && start == says_.occurrence)) {
                visit(start, time);
            }
        }
    }

    /// What was listed and not acted upon, where that occurrence still is one.
    template <class Visit>
    void forEachListed(Visit&& visit) const {
        for (const OccurrenceState& one : state_.occurrences) {
            if (one.listed.isZero()) {
                continue;
            }
            const DateTime start = startOf(one);
            const DateTime time = event_.FromMoment(one.listed);
            if (isThere(one) && isOpen(start, time)) {
                visit(start, time);
            }
        }
    }

    DateTime startOf(const OccurrenceState& one) const {
        return repeats_ ? event_.FromWall(one.start) : event_.StartDateTime;
    }

    /// Whether the event still has that occurrence: the host may have moved or excluded it since.
    bool isThere(const OccurrenceState& one) const;

    /// Whether an exception has taken that start over.
    bool isReplaced(DateTime start) const;

private:
    bool isGone(DateTime start) const;
    std::optional<DateTime> behind(DateTime acted) const;
    bool isHandled(const OccurrenceState& one, DateTime start, DateTime time) const;
    DateTime localSnooze(const OccurrenceState& one) const;
    DateTime snoozeOf(const OccurrenceState* entry) const;

    const calEvent& event_;
    const DueFacts& facts_;
    const EventState& state_;
    RowSays says_;
    std::optional<DateTime> over_;  // occurrences that begin up to here are over
    std::optional<DateTime> now_;   // where acts may be by a clock that was ahead
    DateTime latestAct_;            // then: in UTC, a later one was
    DateTime endedBefore_;          // as in the state, set right
    bool repeats_;
    bool rowSpeaks_ = false;
};

}  // namespace vl
