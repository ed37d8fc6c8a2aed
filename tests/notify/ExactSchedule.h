// When an event's reminders come by its schedule.
#pragma once

#include <algorithm>
#include <set>
#include <vector>

#include "base/DateTime.h"
#include "model/calEvent.h"

namespace vl::exact {

/// A reminder of the occurrence that begins at `start`. Local times.
struct Reminder {
    DateTime start;
    DateTime time;
    // NOLINTNEXTLINE(modernize-use-nullptr): the compiler's own comparison with 0
    friend auto operator<=>(const Reminder&, const Reminder&) = default;
};

/// Starts that exceptions have taken over from a series, local.
using Replaced = std::set<DateTime>;

/// Days: no reminder is longer before its occurrence, or after it; no event is longer.
inline constexpr int kReach = 12;
/// Days: nothing that was over for longer is asked for.
inline constexpr int kLongAgo = 45;

/// Of its reminders, before the start.
std::vector<int> minutesOf(const calEvent& event);

bool isOver(const calEvent& event, DateTime start, DateTime now);

/// An exception that is cancelled has no occurrence at all.
bool hasNone(const calEvent& event);

bool isOccurrence(const calEvent& event, DateTime start);

bool isScheduled(const calEvent& event, const Reminder& reminder);

/// An exception takes an occurrence's place, for good.
bool isReplaced(const calEvent& event, const Replaced& replaced, DateTime start);

/// What a snooze belongs to may be re-timed; only an exception or an EXDATE takes it away.
bool isGone(const calEvent& event, const Replaced& replaced, DateTime start);

/// Whether the host has given it other reminder times: another subject or another end is none.
bool isReTimed(const calEvent& before, const calEvent& event);

/// Scheduled reminders in [`from`, `to`].
template <class Visit>
void forEachScheduled(const calEvent& event, DateTime from, DateTime to, Visit&& visit) {
    const std::vector<int> minutes = minutesOf(event);
    if (minutes.empty() || hasNone(event)) {
        return;
    }
    const auto [last, first] = std::minmax_element(minutes.begin(), minutes.end());
    for (const DateTime start :
         event.ICalRecEvents(from.addMinutes(*last), to.addMinutes(*first))) {
        for (const int m : minutes) {
            const Reminder reminder{start, start.addMinutes(-m)};
            if (reminder.time >= from && reminder.time <= to) {
                visit(reminder);
            }
        }
    }
}

}  // namespace vl::exact
