#include "ExactRule.h"

#include <algorithm>

namespace vl::exact {

namespace {

// What is not over comes by time; where all are over, those of the latest occurrence do. Of two at
// one time, of occurrences that overlap, the rule says not which.
std::vector<Reminder> firstOf(const calEvent& event, const std::vector<Reminder>& pending,
                              DateTime now) {
    std::vector<Reminder> first;
    for (const bool over : {false, true}) {
        for (const Reminder& one : pending) {
            if (isOver(event, one.start, now) != over) {
                continue;
            }
            const auto goesBefore = [&](const Reminder& other) {
                return over && one.start != other.start ? one.start > other.start
                                                        : one.time < other.time;
            };
            if (first.empty() || goesBefore(first.front())) {
                first = {one};
            } else if (one.time == first.front().time && (!over || one == first.front())) {
                first.push_back(one);
            }
        }
        if (!first.empty()) {
            break;
        }
    }
    return first;
}

}  // namespace

bool Answer::allows(const std::optional<Reminder>& taken) const {
    const auto isIn = [&](const std::vector<Reminder>& ones) {
        return taken ? std::find(ones.begin(), ones.end(), *taken) != ones.end() : ones.empty();
    };
    return isIn(first) || (taken && isIn(orFirst));
}

// ---- what is dealt with

DateTime ExactRule::startOf(const calEvent& event, DateTime key) const {
    return event.IsRepeating() ? event.FromWall(key) : event.StartDateTime;
}

// A single event that was moved has another start, which nothing was done to but a snooze.
bool ExactRule::isThere(const calEvent& event, DateTime key) const {
    return event.IsRepeating() ? isOccurrence(event, event.FromWall(key))
                               : key == event.ToWall(event.StartDateTime);
}

// In a single event the snooze follows the event when the host moves it.
DateTime ExactRule::snoozeOf(const calEvent& event, DateTime key) const {
    DateTime snoozed;
    for (const auto& [start, dealt] : dealt_) {
        if (start == key || !event.IsRepeating()) {
            snoozed = std::max(snoozed, dealt.snoozed);
        }
    }
    return snoozed;
}

bool ExactRule::isDealtWith(const calEvent& event, const Replaced& replaced,
                            const Reminder& reminder) const {
    const DateTime key = event.ToWall(reminder.start);
    const DateTime snoozed = snoozeOf(event, key);
    const bool isSuperseded = !snoozed.isZero() && reminder.time < snoozed;
    const auto found = dealt_.find(key);
    const Dealt dealt = found != dealt_.end() ? found->second : Dealt();
    const bool isHandled = !dealt.handled.isZero() && reminder.time <= dealt.handled;
    const bool isMuted = dealt.muted == Muted::ForEver ||
                         (dealt.muted == Muted::ThroughStart && reminder.time <= reminder.start);
    return isReplaced(event, replaced, reminder.start) || isSuperseded || isHandled || isMuted;
}

ExactRule::Standing ExactRule::standingOf(const calEvent& event, const Replaced& replaced,
                                          const Reminder& reminder, DateTime now) const {
    return isDealtWith(event, replaced, reminder) ? Standing::Settled
                                                  : endedOf(event, reminder, now);
}

// An act on a later occurrence has ended what there was and was over.
ExactRule::Standing ExactRule::endedOf(const calEvent& event, const Reminder& reminder,
                                       DateTime now) const {
    const DateTime key = event.ToWall(reminder.start);
    const bool over = isOver(event, reminder.start, now);
    if (ended_.contains(key)) {
        // Whether it is ended when the host makes it longer, or it is snoozed afterwards: either.
        return over && snoozeOf(event, key).isZero() ? Standing::Settled : Standing::Either;
    }
    // What the host has put before that occurrence later, as if it had been over: either.
    return key < endedBefore_ && over && !spared_.contains(key) ? Standing::Either : Standing::Open;
}

// ---- what a check asks for

// What lies in the window; of an event that is met or re-timed also what is of today, or of an
// occurrence that is not over.
void ExactRule::askFor(const calEvent& event, const Replaced& replaced, const Check& check) {
    for (std::set<Reminder>* ones : {&asked_, &either_}) {
        std::erase_if(*ones, [&](const Reminder& one) {
            return !isScheduled(event, one) || isDealtWith(event, replaced, one);
        });
    }
    const DateTime earliest = isMet_ ? check.from.addDays(-kReach) : check.from;
    forEachScheduled(event, earliest, check.to, [&](const Reminder& one) {
        const bool counts = one.time >= check.from || one.time >= check.now.date() ||
                            !isOver(event, one.start, check.now);
        if (counts && !isDealtWith(event, replaced, one)) {  // what is ended may go on again
            asked_.insert(one);
        }
    });
}

// What fell due and waits, snoozes whose time has come, and what was listed in an earlier run.
std::vector<ExactRule::Candidate> ExactRule::candidates(const calEvent& event,
                                                        const Replaced& replaced, DateTime to,
                                                        DateTime now) const {
    std::vector<Candidate> found;
    const auto add = [&](const Reminder& one, Standing standing) {
        if (standing != Standing::Settled) {
            found.push_back({one, standing});
        }
    };
    for (const Reminder& one : asked_) {
        if (isScheduled(event, one)) {
            add(one, standingOf(event, replaced, one, now));
        }
    }
    for (const Reminder& one : either_) {
        if (!asked_.contains(one) && isScheduled(event, one) &&
            standingOf(event, replaced, one, now) != Standing::Settled) {
            add(one, Standing::Either);
        }
    }
    // The host has moved what was listed, and then taken away what the row stood for since: either.
    for (const Reminder& one : stoodFor_) {
        if (isOccurrence(event, one.start) && !isScheduled(event, one) &&
            standingOf(event, replaced, one, now) != Standing::Settled) {
            add(one, Standing::Either);
        }
    }
    for (const auto& [key, dealt] : dealt_) {
        const DateTime start = startOf(event, key);
        if (!dealt.snoozed.isZero() && dealt.snoozed <= to && !isGone(event, replaced, start)) {
            add({start, dealt.snoozed}, Standing::Open);
        }
        if (!dealt.listed.isZero() && isThere(event, key)) {
            // The host has taken away that reminder, in this run, or the occurrence for a while:
            // either.
            const Reminder one{start, dealt.listed};
            const bool isSure =
                !dealt.wasAway && (dealt.listedIn < run_ || isScheduled(event, one));
            const Standing standing = standingOf(event, replaced, one, now);
            add(one, standing == Standing::Open && !isSure ? Standing::Either : standing);
        }
    }
    return found;
}

// Reminders that the host gives an event of which something is pending, for times since then that
// are neither of today nor of what goes on: either. So it is where the program was off: it need
// not know of more than the first check of a day.
void ExactRule::askForGivenLater(const calEvent& event, const Check& check) {
    if (isGivenLater_) {
        const DateTime since =
            openSince_.isZero() ? check.mayFrom : std::min(check.mayFrom, openSince_);
        forEachScheduled(event, since, check.from,
                         [&](const Reminder& one) { either_.insert(one); });
    }
}

// Of what the host has written shortly before, a program that starts knows not what was changed:
// whether it counts as re-timed when it was only made longer, either.
void ExactRule::askForTouched(const calEvent& event, const Check& check) {
    constexpr int kShortly = 10;
    if (!isFirst_ || writtenAt_ < check.mayFrom.addMinutes(-kShortly)) {
        return;
    }
    forEachScheduled(event, check.from.addDays(-kReach), check.from, [&](const Reminder& one) {
        if (!isOver(event, one.start, check.now)) {
            either_.insert(one);
        }
    });
}

void ExactRule::noteAway(const calEvent& event) {
    for (auto& [key, dealt] : dealt_) {
        dealt.wasAway = dealt.wasAway || (event.IsRepeating() && !isThere(event, key));
    }
}

void ExactRule::noteStood(const calEvent& event, const Answer& answer) {
    if (row_ && !isThere(event, event.ToWall(row_->start))) {
        stoodFor_.insert(answer.first.begin(), answer.first.end());
        stoodFor_.insert(answer.orFirst.begin(), answer.orFirst.end());
    }
}

void ExactRule::noteOpen(const std::vector<Candidate>& found, const Check& check) {
    if (found.empty()) {
        openSince_ = DateTime();
        isGivenLater_ = false;
        return;
    }
    openSince_ = openSince_.isZero() ? check.mayFrom : std::min(openSince_, check.mayFrom);
    for (const Candidate& one : found) {
        openSince_ = std::min(openSince_, one.reminder.time);
    }
}

// Each of those of which the rule does not say whether they are pending may be, or may not.
Answer ExactRule::answerOf(const calEvent& event, const std::vector<Candidate>& found,
                           const Check& check) {
    Answer answer;
    std::vector<Reminder> sure;
    for (const auto& [reminder, standing] : found) {
        const bool isSure = standing == Standing::Open;
        if (isSure) {
            sure.push_back(reminder);
        }
        answer.isDueAgain = answer.isDueAgain || (isSure && reminder.time >= check.from);
        answer.mayBeDueAgain = answer.mayBeDueAgain || reminder.time >= check.from;
    }
    answer.first = firstOf(event, sure, check.now);
    for (const auto& [reminder, standing] : found) {
        if (standing == Standing::Either) {
            std::vector<Reminder> with = answer.first;
            with.push_back(reminder);
            const auto first = firstOf(event, with, check.now);
            if (std::find(first.begin(), first.end(), reminder) != first.end()) {
                answer.orFirst.push_back(reminder);
            }
        }
    }
    return answer;
}

Answer ExactRule::ask(const calEvent& event, const Replaced& replaced, const Check& check) {
    if (hasNone(event)) {
        return {};
    }
    askFor(event, replaced, check);
    isMet_ = false;
    noteAway(event);
    askForGivenLater(event, check);
    askForTouched(event, check);
    isFirst_ = false;
    const std::vector<Candidate> found = candidates(event, replaced, check.to, check.now);
    noteOpen(found, check);
    Answer answer = answerOf(event, found, check);
    noteStood(event, answer);
    return answer;
}

}  // namespace vl::exact
