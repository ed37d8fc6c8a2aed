#include "events/RowDue.h"

#include <algorithm>
#include <optional>

#include "EventView.h"

namespace vl {

namespace {

/// The snoozes that bear on a row.
struct Snoozes {
    bool toTime = false;         // one of the event is to the row's very time
    std::optional<DateTime> of;  // that of the row's occurrence
};

Snoozes snoozesOf(const EventView& view, const RowAsked& asked) {
    Snoozes found;
    view.forEachSnooze([&](DateTime start, DateTime time) {
        found.toTime = found.toTime || time == asked.reminder;
        if (start == asked.start && (!found.of || time < *found.of)) {
            found.of = time;
        }
    });
    return found;
}

// A snooze that was dealt with stays in the event's row, and in the lists, also after the host has
// moved the event to where its reminders come again.
std::optional<DateTime> earliestOpen(const EventView& view, DateTime start) {
    const std::vector<Offset> offsets = offsetsOf(view.event());
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) {
        const DateTime time = start.addMinutes(-offset->minutes);
        if (view.isOpen(start, time)) {
            return time;
        }
    }
    return std::nullopt;
}

bool saysNothing(const calEvent& event, const RowAsked& asked) {
    return asked.state == nullptr && asked.replaced.empty() &&
           !RowWord{event.NextReminder, event.Dismissed}.saysAnything();
}

}  // namespace

RowDue askRow(const calEvent& event, const RowAsked& asked) {
    if (asked.reminder.isZero() || saysNothing(event, asked)) {
        return {asked.reminder};
    }
    const DueFacts facts{asked.state, asked.replaced, asked.zone};
    const EventView view(event, facts, asked.now);
    const Snoozes snoozes = snoozesOf(view, asked);
    const bool scheduled = isScheduled(event, asked.start, asked.reminder);
    if (snoozes.toTime || (scheduled && view.isOpen(asked.start, asked.reminder))) {
        return {asked.reminder};
    }
    if (snoozes.of) {
        return {*snoozes.of, Fate::Snoozed};
    }
    if (!scheduled) {
        if (const auto next = earliestOpen(view, asked.start)) {
            return {*next};
        }
    }
    return {asked.reminder, view.isReplaced(asked.start) ? Fate::Moved : Fate::DealtWith};
}

}  // namespace vl
