// What host, program and user do, for the rule.
#include <algorithm>

#include "ExactRule.h"
#include "app/TimeZone.h"

namespace vl::exact {

void ExactRule::entered(const calEvent& event) {
    isMet_ = isGivenLater_ = true;
    writtenAt_ = event.Modified;
}

void ExactRule::written(const calEvent& before, const calEvent& event) {
    writtenAt_ = event.Modified;
    if (isReTimed(before, event)) {
        isMet_ = true;
        isGivenLater_ = true;
    }
    // Whether what waited waits on, where the host has moved the series or made it one, either.
    if (before.IsRepeating() != event.IsRepeating() ||
        (event.IsRepeating() && before.StartDateTime != event.StartDateTime)) {
        asked_.clear();
    }
}

void ExactRule::ended() {
    row_.reset();
    ++run_;
    isFirst_ = true;
}

void ExactRule::taken(const calEvent& event, const Reminder& reminder) {
    row_ = reminder;
    Dealt& dealt = dealt_[event.ToWall(reminder.start)];
    dealt.listed = reminder.time;
    dealt.listedIn = run_;
    dealt.wasAway = false;
}

bool ExactRule::isAnyLeft(const calEvent& event, const Replaced& replaced, DateTime now) const {
    if (hasNone(event)) {
        return false;
    }
    const auto found = candidates(event, replaced, now.addDays(kLongAgo), now);
    bool isAny = std::any_of(found.begin(), found.end(),
                             [](const Candidate& one) { return one.standing == Standing::Open; });
    forEachScheduled(event, now.addSeconds(1), now.addDays(kLongAgo), [&](const Reminder& one) {
        isAny = isAny || standingOf(event, replaced, one, now) == Standing::Open;
    });
    return isAny;
}

// ---- acts

// In a single event there is one occurrence: an act on it is one on what it was before the host
// moved it. But who acts on a row from before a move has not seen what is scheduled since.
void ExactRule::endOld(const calEvent& event, DateTime start) {
    const bool isOldRow = !isOccurrence(event, start);
    for (auto& [key, dealt] : dealt_) {
        if (event.IsRepeating()) {
            dealt.listedIn = isOldRow ? run_ : dealt.listedIn;
            continue;
        }
        dealt.snoozed = DateTime();
        const bool isUnseen = isOldRow && isThere(event, key) &&
                              isScheduled(event, {event.StartDateTime, dealt.listed});
        dealt.listed = isUnseen ? dealt.listed : DateTime();
    }
}

// Every earlier occurrence that is over, unless it is snoozed.
void ExactRule::endEarlier(const calEvent& event, DateTime start, DateTime now) {
    if (!event.IsRepeating()) {
        return;
    }
    const std::int64_t length =
        event.EndOf(event.StartDateTime).milliseconds() - event.StartDateTime.milliseconds();
    const DateTime over = DateTime::fromMilliseconds(now.milliseconds() - length).addSeconds(1);
    endedBefore_ = std::max(endedBefore_, event.ToWall(std::min(start, over)));
    for (const DateTime one : event.ICalRecEvents(start.addDays(-kLongAgo), start.addSeconds(-1))) {
        if (!isOver(event, one, now)) {
            break;
        }
        const DateTime key = event.ToWall(one);
        if (snoozeOf(event, key).isZero()) {
            ended_.insert(key);
            spared_.erase(key);
            dealt_[key].listed = DateTime();
        } else {
            spared_.insert(key);
        }
    }
}

void ExactRule::acted(const calEvent& event, Act act, DateTime start, DateTime now,
                      DateTime until) {
    row_.reset();
    if (act == Act::Reactivate) {  // everything is forgotten
        const int run = run_;
        *this = ExactRule();
        run_ = run;
        isMet_ = isGivenLater_ = true;
        return;
    }
    const DateTime key = event.ToWall(start);
    const DateTime listed = dealt_[key].listed;
    endOld(event, start);
    endEarlier(event, start, now);
    Dealt& dealt = dealt_[key];
    // The list may have taken it a little before its time.
    dealt.handled = std::max({dealt.handled, now, listed});
    dealt.snoozed = dealt.listed = DateTime();
    if (act == Act::Snooze) {
        const TimeZone zone = TimeZone::local();
        dealt.snoozed = zone.fromUtc(zone.toUtc(until));  // what clocks skip is later by the gap
    } else if (act == Act::AllButAfter && dealt.muted == Muted::No) {
        dealt.muted = Muted::ThroughStart;
    } else if (act == Act::All || act == Act::Done) {
        dealt.muted = Muted::ForEver;
    }
}

}  // namespace vl::exact
