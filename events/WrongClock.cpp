#include "events/WrongClock.h"

#include <algorithm>

namespace vl {

DateTime latestAct(DateTime now, const TimeZone& here) {
    constexpr int kOffMinutes = 25;  // less than zones differ by
    constexpr int kAfterAnyChange = 180;
    const DateTime first = here.toUtc(now);
    const DateTime second =
        here.toUtc(now.addMinutes(kAfterAnyChange)).addMinutes(-kAfterAnyChange);
    const bool comesTwice = second > first && here.fromUtc(second) == now;
    return (comesTwice ? second : first).addMinutes(kOffMinutes);
}

bool isActedAfter(const EventState& state, DateTime latest) {
    return state.endedAt > latest ||
           std::any_of(state.occurrences.begin(), state.occurrences.end(),
                       [&](const OccurrenceState& one) { return one.acted > latest; });
}

DateTime overBefore(const calEvent& event, DateTime now) {
    const std::int64_t length =
        event.EndOf(event.StartDateTime).milliseconds() - event.StartDateTime.milliseconds();
    return event.ToWall(DateTime::fromMilliseconds(now.milliseconds() - length)).addSeconds(1);
}

void setRight(EventState& state, const calEvent& event, DateTime now, const TimeZone& here) {
    const DateTime latest = latestAct(now, here);
    const DateTime moment = here.toUtc(now);
    if (state.endedAt > latest) {
        state.endedBefore = std::min(state.endedBefore, overBefore(event, now));
        state.endedAt = moment;
    }
    for (OccurrenceState& one : state.occurrences) {
        if (one.acted <= latest) {
            continue;
        }
        one.acted = moment;
        one.handled = std::min(one.handled, std::max(one.reminder, event.ToMoment(now)));
        if (!one.snoozed.isZero() && !one.reminder.isZero()) {
            one.snoozed = here.toUtc(event.FromMoment(one.reminder));
        }
    }
    state.acted = std::min(state.acted, now);
    state.tidy();
}

}  // namespace vl
