// What the user does, here or in another program.
#include <algorithm>

#include "Oracle.h"

namespace vl::simulation {

// Of what begins before it and is over, but is not snoozed, nothing comes any more.
void Oracle::endEarlier(Event& event, Seconds key, Seconds now) const {
    const Seconds limit = std::min(key, overBefore(event.plan, now));
    for (const auto& [start, mark] : event.marks) {
        if (start < limit) {
            event.spared.erase(start);
        }
        if (start < limit && mark.snoozed != kNone) {
            event.spared.insert(start);
        }
    }
    if (limit > event.endedBefore) {
        event.endedBefore = limit;
        event.endedAt = toUtc(here_, now);
    }
    std::erase_if(event.open, [&](const auto& entry) {
        return entry.first < limit && !event.spared.contains(entry.first);
    });
}

void Oracle::actedElsewhere(const std::string& GUID, Seconds next, Seconds dismissed) {
    Event& event = events_.at(GUID);
    if (event.word && event.word->isKnown) {
        event.wordBefore = event.word;
    }
    event.word = Word{next, dismissed};
    event.isDone = event.isDone && !event.word->isSnooze();
}

bool Oracle::canSnoozeElsewhere(const std::string& GUID, Seconds next) const {
    const Event& event = events_.at(GUID);
    return keySnoozedElsewhere(event, event.plan, next, false).has_value();
}

// From the act on the row does not speak any more: its snooze is one of ours, and what it has
// silenced stays so.
void Oracle::takeOverWord(Event& event) const {
    if (!event.word || !event.word->isKnown || !event.word->speaks) {
        return;
    }
    const Plan& plan = event.held.empty() ? event.plan : event.held.front();
    for (auto& [key, mark] : event.marks) {
        if (isSnoozeSilenced(event, plan, key, mark, true)) {
            mark.snoozed = kNone;
        }
    }
    if (event.word->isSnooze()) {
        if (const auto key = keySnoozedElsewhere(event, plan, event.word->next, true)) {
            event.marks[*key].snoozed = toUtc(here_, event.word->next);
            // What has come already was perhaps shown as of an occurrence that is replaced by now.
            event.marks[*key].wasTaken = event.word->next <= now_;
        }
    }
    event.word->speaks = false;
}

// Who dismisses an event elsewhere has dismissed what was snoozed here.
bool Oracle::isSnoozeSilenced(const Event& event, const Plan& plan, Seconds key, const Mark& mark,
                              bool surely) const {
    const Seconds start = plan.isSeries() ? plan.toLocal(key, here_) : plan.start;
    return mark.snoozed != kNone && event.word && event.word->speaks && !event.word->isSnooze() &&
           isSilencedElsewhere(event, plan, {key, start, start + plan.length},
                               localSnooze(event, mark), surely);
}

// An act on what another program has snoozed takes the place of that: it supersedes nothing more.
void Oracle::endWord(Event& event, Seconds key, Seconds now) const {
    if (!event.word || !event.word->isKnown || !event.word->isSnooze()) {
        return;
    }
    const bool isSeries = event.plan.isSeries();
    const Plan& plan = event.held.empty() ? event.plan : event.held.front();
    if (isSeries && keySnoozedElsewhere(event, plan, event.word->next, true) != key) {
        return;
    }
    event.word->next = std::min(event.word->next, now);
    if (!isSeries || event.word->next <= event.word->dismissed) {
        event.word.reset();
    }
}

void Oracle::acted(const Listing& row, Act act, Seconds now, Seconds until) {
    now_ = now;
    Event& event = events_.at(row.GUID);
    setRight(event, now);
    settleClock(event);
    takeOverWord(event);
    event.perhaps.clear();
    event.stoodOnce.merge(event.stood);
    event.stood.clear();
    const Seconds key = keyAt(event, row.start);
    endWord(event, key, now);
    std::optional<Seconds> shown;
    if (const auto listed = event.open.find(key); listed != event.open.end()) {
        const auto exactly = event.ahead.find(key);
        const bool isSnooze =
            exactly != event.ahead.end() && exactly->second / kMinute == listed->second;
        shown = row.start - (isSnooze ? exactly->second : listed->second * kMinute);
    }
    // In a view the row of any reminder may be acted upon.
    const bool isDue = row.reminder != 0 && row.reminder <= now;
    const auto reminded = shown || !isDue ? shown : std::optional(row.reminder);
    const Until own = untilOf(event.plan, now);
    const Until handled = shown ? std::max(own, untilOf(event.plan, *shown)) : own;
    if (event.plan.isSeries()) {
        endEarlier(event, key, now);
    } else {
        // What a snooze has silenced that an act on a row from before a move ends, may be shown.
        if (const auto snoozed = snoozeOf(event, key); snoozed && key != event.plan.start) {
            const Seconds start = event.plan.toLocal(event.plan.start, here_);
            for (const int minutes : event.plan.reminders) {
                if (start - minutes * kMinute < std::min(*snoozed, now)) {
                    event.may.insert({event.plan.start, minutes});
                }
            }
        }
        for (auto& [start, mark] : event.marks) {
            event.metBelow = std::max(event.metBelow, mark.snoozed);
            mark.snoozed = kNone;
        }
        event.open.clear();
        // Who acts on a row from before a move has not seen what has fallen due since.
        for (const auto& [start, minutes] : event.must) {
            if (start != key && event.plan.toLocal(start, here_) - minutes * kMinute <= now) {
                event.open[start] = minutes;
            }
        }
    }
    Mark& mark = event.marks[key];
    mark.snoozed = act == Act::Snooze ? toUtc(here_, until) : kNone;
    mark.atLatest = kNone;
    mark.mayBeOver = false;
    mark.wasTaken = false;
    mark.acted = toUtc(here_, now);
    mark.reminder = reminded ? event.plan.toMoment(*reminded, here_) : mark.reminder;
    mark.shown = reminded ? untilOf(event.plan, *reminded) : mark.shown;
    const bool early = mark.handledLast > own && mark.handledLast.moment <= own.moment + kMinute;
    mark.handledLast = early ? std::max(mark.handledLast, handled) : handled;
    mark.handled = std::max(mark.handled, handled);
    mark.silentThroughStart |= act == Act::DismissAllButAfter;
    mark.silent |= act == Act::DismissAll || act == Act::Done;
    event.open.erase(key);
    settle(event);
    // Where nothing waits any more, what the host gives it later brings nothing of before back.
    if (event.isSure && event.must.empty() && event.may.empty() && event.open.empty()) {
        event.listedSince.reset();
        event.openSince.reset();
    }
    const bool isLast = event.plan.lastKey() == key;
    const bool isSnoozed = std::any_of(event.marks.begin(), event.marks.end(),
                                       [](const auto& one) { return one.second.snoozed != kNone; });
    event.isWritten = false;
    event.isElsewhere = false;
    const bool isDone = act == Act::Done && isLast && event.must.empty() && event.open.empty() &&
                        !isSnoozed && !isAnyAhead(event);
    event.isDone = isDone || (event.isDone && act != Act::Snooze);
    if (isDone && !event.plan.isSeries()) {
        event.doneRow = row.start;
    }
}

void Oracle::reactivated(const std::string& GUID, Seconds now) {
    Event& event = events_.at(GUID);
    if (event.isListedAsIs) {
        event.missedSince.reset();  // what has been missed was listed then
    }
    event.marks.clear();
    event.word.reset();
    event.wordBefore.reset();
    event.mayBeFinished = false;
    event.metBelow = kNone;
    event.endedBefore = kNone;
    event.endedAt = kNone;
    event.endedWas.reset();
    event.spared.clear();
    event.must.clear();
    event.open.clear();
    event.isDone = false;
    event.isReactivated = true;
    event.stamp = now;
    event.metAt = now;
}

void Oracle::itemDeleted(const std::string& GUID) {
    deleted(GUID);
    events_.at(GUID).goneIsKnown = true;
}

}  // namespace vl::simulation
