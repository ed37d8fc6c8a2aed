#include "events/WrongClock.h"

#include <algorithm>

namespace vl {

namespace {

// A clock that is set right may come to a little before what was done by the one that was right
// before: no two are right to the minute.
constexpr int kDriftMinutes = 5;

template <class Visit>
void forEachAct(const EventState& state, Visit&& visit) {
    visit(state.endedAt);
    for (const OccurrenceState& one : state.occurrences) {
        visit(one.acted);
    }
}

bool isFresh(const EventState& state, DateTime acted, DateTime latest) {
    return acted > latest && !state.doubted.contains(acted);
}

enum class Ruling { InDoubt, AsItWas, Wrong };

Ruling rulingOn(DateTime acted, const ClockWord& clock, DateTime moment) {
    if (clock.jumped && acted <= moment.addMinutes(kDriftMinutes)) {
        return Ruling::AsItWas;
    }
    return clock.stood || acted <= moment ? Ruling::Wrong : Ruling::InDoubt;
}

// What was listed by the clock that was behind, since the act on it was in doubt.
void endListing(EventState& state, const calEvent& event, const ClockWord& clock,
                const TimeZone& here) {
    const auto isOf = [&](DateTime acted) {
        return state.doubted.contains(acted) &&
               rulingOn(acted, clock, here.toUtc(clock.now)) == Ruling::AsItWas;
    };
    const DateTime ended = isOf(state.endedAt)
                               ? std::min(state.endedBefore, overBefore(event, clock.now))
                               : DateTime();
    for (OccurrenceState& one : state.occurrences) {
        const bool isEnded = one.start < ended && !one.spared && one.snoozed.isZero();
        const bool isPutOff =
            !one.snoozed.isZero() && event.FromMoment(one.listed) < here.fromUtc(one.snoozed);
        if (isEnded || (isOf(one.acted) && (one.listed <= one.handled || isPutOff))) {
            one.listed = DateTime();
        }
    }
}

// `seenBy` gives what the clock showed that an act was ahead of; none: it was right.
template <class SeenBy>
void setActsRight(EventState& state, const calEvent& event, const TimeZone& here,
                  const SeenBy& seenBy) {
    if (const std::optional<Noted> seen = seenBy(state.endedAt)) {
        state.endedBefore = endedRight(state, event, startIn(event, *seen, here));
        state.endedAt = seen->utc;
    }
    for (OccurrenceState& one : state.occurrences) {
        if (const std::optional<Noted> seen = seenBy(one.acted)) {
            one.handled = handledRight(one, event, startIn(event, *seen, here));
            one.snoozed = snoozedRight(one, event, here);
            one.acted = seen->utc;
            state.acted = std::min(state.acted, seen->local);
        }
    }
}

}  // namespace

DateTime latestAct(DateTime now, const TimeZone& here) {
    constexpr int kAfterAnyChange = 180;
    const DateTime first = here.toUtc(now);
    const DateTime second =
        here.toUtc(now.addMinutes(kAfterAnyChange)).addMinutes(-kAfterAnyChange);
    const bool comesTwice = second > first && here.fromUtc(second) == now;
    return (comesTwice ? second : first).addMinutes(kOffMinutes);
}

bool isActedAfter(const EventState& state, DateTime latest) {
    bool isAfter = !state.doubted.empty();
    forEachAct(state, [&](DateTime acted) { isAfter = isAfter || acted > latest; });
    return isAfter;
}

bool bearsOn(const ClockWord& clock, const EventState& state, const TimeZone& here) {
    const DateTime moment = here.toUtc(clock.now);
    const DateTime latest = latestAct(clock.now, here);
    bool bears = false;
    forEachAct(state, [&](DateTime acted) { bears = bears || isFresh(state, acted, latest); });
    return bears || std::any_of(state.doubted.begin(), state.doubted.end(), [&](const auto& one) {
               return one.second.utc > latest ||
                      rulingOn(one.first, clock, moment) != Ruling::InDoubt;
           });
}

void takeClock(EventState& state, const calEvent& event, const ClockWord& clock,
               const TimeZone& here) {
    const DateTime moment = here.toUtc(clock.now);
    const DateTime latest = latestAct(clock.now, here);
    endListing(state, event, clock, here);
    auto& doubted = state.doubted;
    std::erase_if(doubted, [&](const auto& one) {
        return rulingOn(one.first, clock, moment) == Ruling::AsItWas;
    });
    setActsRight(state, event, here, [&](DateTime acted) -> std::optional<Noted> {
        const auto found = doubted.find(acted);
        const bool isWrong =
            found != doubted.end() && rulingOn(acted, clock, moment) == Ruling::Wrong;
        return isWrong ? std::optional(found->second) : std::nullopt;
    });
    for (auto& [acted, seen] : doubted) {
        seen = seen.utc > latest ? Noted{clock.now, moment} : seen;
    }
    forEachAct(state, [&](DateTime acted) {
        if (isFresh(state, acted, latest)) {
            doubted[acted] = {clock.now, moment};
        }
    });
    state.tidy();
}

void setRight(EventState& state, const calEvent& event, DateTime now, const TimeZone& here) {
    const DateTime latest = latestAct(now, here);
    setActsRight(state, event, here,
                 [&](DateTime acted) { return behind(state, acted, now, latest, here); });
    state.tidy();
}

std::optional<Noted> behind(const EventState& state, DateTime acted, DateTime now, DateTime latest,
                            const TimeZone& here) {
    const auto found = state.doubted.find(acted);
    // It may have been put back once more since.
    if (found != state.doubted.end() && found->second.utc <= latest) {
        return found->second;
    }
    const bool isBehind = found != state.doubted.end() || acted > latest;
    return isBehind ? std::optional(Noted{now, here.toUtc(now)}) : std::nullopt;
}

DateTime handledRight(const OccurrenceState& one, const calEvent& event, DateTime seen) {
    return std::min(one.handled, std::max(one.reminder, event.ToMoment(seen)));
}

DateTime snoozedRight(const OccurrenceState& one, const calEvent& event, const TimeZone& here) {
    return one.snoozed.isZero() || one.reminder.isZero()
               ? one.snoozed
               : here.toUtc(event.FromMoment(one.reminder));
}

DateTime endedRight(const EventState& state, const calEvent& event, DateTime seen) {
    return std::min(state.endedBefore, overBefore(event, seen));
}

DateTime overBefore(const calEvent& event, DateTime now) {
    const std::int64_t length =
        event.EndOf(event.StartDateTime).milliseconds() - event.StartDateTime.milliseconds();
    return event.ToWall(DateTime::fromMilliseconds(now.milliseconds() - length)).addSeconds(1);
}

}  // namespace vl
