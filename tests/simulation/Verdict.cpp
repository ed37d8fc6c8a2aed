// What the oracle says after a check.
#include <algorithm>
#include <sstream>
#include <utility>

#include "Oracle.h"
#include "base/Variant.h"

namespace vl::simulation {

namespace {

std::string text(Seconds time) { return formatDateTime(dateTime(time)); }

bool isTaken(const Check& check, const std::string& GUID) {
    return std::any_of(check.taken.begin(), check.taken.end(),
                       [&](const Listing& row) { return row.GUID == GUID; });
}

}  // namespace

// What was listed and not acted upon stands in the list, unless its reminder was dealt with by
// another program. By a clock that was put back by days it comes at its time, too.
bool Oracle::stands(const Event& event, Seconds key) const {
    const auto listed = event.open.find(key);
    const auto one = event.plan.occurrenceOf(key, here_);
    return listed != event.open.end() && one && !wentBack_ &&
           !isSettled(event, event.plan, *one, listed->second, false);
}

// Of what must be listed; what is to come again, since a clock was turned back, comes then.
const Oracle::Reminder* Oracle::firstDue(const Event& event, Seconds upTo) const {
    for (const Reminder& reminder : event.must) {
        const auto& [key, minutes] = reminder;
        if (stands(event, key) || event.plan.toLocal(key, here_) - minutes * kMinute <= upTo) {
            return &reminder;
        }
    }
    return nullptr;
}

bool Oracle::isSnoozeDue(const Event& event, Seconds upTo) const {
    std::optional<Seconds> elsewhere;  // it takes the place of ours
    if (event.word && event.word->speaks) {
        if (!event.word->isKnown) {
            return false;  // the row's word may be another one
        }
        if (event.word->isSnooze()) {
            elsewhere = keySnoozedElsewhere(event, event.plan, event.word->next, false);
        }
        if (elsewhere && event.word->next <= upTo) {
            return true;
        }
    }
    return std::any_of(event.marks.begin(), event.marks.end(), [&](const auto& entry) {
        const auto& [key, mark] = entry;
        const bool isOurs = !elsewhere || (event.plan.isSeries() && elsewhere != key);
        return mark.snoozed != kNone && !mark.wasTaken && isOurs &&
               !isSnoozeSilenced(event, event.plan, key, mark, false) &&
               std::max(localSnooze(event, mark), mark.atLatest) <= upTo &&
               (!event.plan.isSeries() ||
                (!isReplaced(event, key, false) && !event.plan.excluded.contains(key)));
    });
}

bool Oracle::mayShow(const Event& event, const Listing& row, Seconds upTo) const {
    // Also of a series that has no such occurrence any more.
    bool may = event.plan.isSeries() &&
               std::any_of(event.marks.begin(), event.marks.end(), [&](const auto& entry) {
                   return entry.second.snoozed != kNone &&
                          localSnooze(event, entry.second) <= upTo &&
                          event.plan.toLocal(entry.first, here_) == row.start &&
                          !isReplaced(event, entry.first, true);
               });
    event.forEachPlan([&](const Plan& plan) {
        const auto key = keyIn(plan, row.start);
        if (!key || isReplaced(event, *key, true)) {
            return;
        }
        for (const auto& word : {event.word, event.wordBefore}) {
            const bool isSaid = word && word->speaks && word->isSnooze() && word->next <= upTo;
            for (const bool surely : {false, true}) {
                // Of the first occurrence, where no reminder of any is as early.
                const auto said = keySnoozedElsewhere(event, plan, word->next, surely);
                may = may || (isSaid && said.value_or(plan.start) == key);
            }
        }
        const auto snoozed = snoozeOf(event, *key);
        const auto minutes = static_cast<int>((row.start - row.reminder) / kMinute);
        // What was listed is listed again after a restart, also when clocks were turned back; what
        // the host has moved since as what it is now, if it has stood in the list as that.
        const bool stands =
            !event.open.empty() &&
            std::none_of(event.open.begin(), event.open.end(), [&](const auto& entry) {
                return plan.occurrenceOf(entry.first, here_).has_value();
            });
        const auto mark = event.marks.find(*key);
        const bool isPerhapsOver = mark != event.marks.end() && mark->second.mayBeOver &&
                                   mark->second.snoozed != kNone && row.reminder <= upTo;
        may = may || event.open.contains(*key) || (snoozed && *snoozed <= upTo) ||
              (row.reminder <= upTo && event.may.contains({*key, minutes})) ||
              event.perhaps.contains({*key, minutes}) || isPerhapsOver ||
              (wentBack_ && event.stoodOnce.contains(*key)) ||
              (stands && (event.stood.contains(*key) || event.may.contains({*key, minutes})));
    });
    return may;
}

void Oracle::judgeTaken(const Check& check, const Listing& row, std::ostream& wrong) {
    Event& event = events_.at(row.GUID);
    ++decisions_;
    const bool mustKnow = event.goneIsKnown || (check.readable && !check.disturbed);
    const bool isGone = event.gone && mustKnow;
    if (event.gone && !mustKnow) {
        return;
    }
    if (isGone || event.isDone || !mayShow(event, row, check.upTo)) {
        wrong << "at " << text(check.now) << " " << event.id << " was listed for "
              << text(row.start) << ", reminder " << text(row.reminder)
              << (isGone         ? ": it is deleted"
                  : event.isDone ? ": it is done"
                                 : ": that has been dealt with, or was never due")
              << '\n';
    }
    // From now on it stands there until it is acted upon.
    const Seconds key = keyAt(event, row.start);
    const auto minutes = static_cast<int>((row.start - row.reminder) / kMinute);
    event.open[key] = minutes;
    event.ahead[key] = row.start - row.reminder;
    event.isReactivated = false;
    if (!event.listedSince) {
        event.listedSince = momentOf(std::min(mayAskFrom(check.now), row.reminder));
    }
    if (isLeft(event, event.plan, {key, minutes}, false)) {
        event.must.insert({key, minutes});
        event.isListedAsIs = true;
    }
}

void Oracle::judgeMissing(const Check& check, const Event& event, std::ostream& wrong) const {
    if (event.held.empty() || event.gone || event.isDone || event.isFinished) {
        return;
    }
    if (const Reminder* due = firstDue(event, check.upTo)) {
        const auto& [key, minutes] = *due;
        wrong << "at " << text(check.now) << " " << event.id
              << " is not listed, but has a reminder " << minutes << " minutes before "
              << text(event.plan.toLocal(key, here_)) << '\n';
    } else if (isSnoozeDue(event, check.upTo)) {
        wrong << "at " << text(check.now) << " " << event.id
              << " is not listed, but a snooze is due" << '\n';
    }
}

// Something of it has come since the last check, or comes before the next.
bool Oracle::mayBeHeard(const Event& event, Scope scope) const {
    const auto isIn = [&](Seconds time) { return time >= scope.from && time <= scope.to; };
    bool may = (event.word && isIn(event.word->next)) ||
               (event.wordBefore && isIn(event.wordBefore->next));
    for (const auto& [key, mark] : event.marks) {
        may = may || (mark.snoozed != kNone && isIn(localSnooze(event, mark)));
    }
    event.forEachPlan([&](const Plan& plan) {
        forEachReminder(event, plan, scope, true,
                        [&](const Occurrence&, int, Seconds) { may = true; });
    });
    return may;
}

// Once for all that is taken, and not again while nothing more of what is listed falls due.
void Oracle::judgeSound(const Check& check, std::ostream& wrong) const {
    const Seconds last = lastCheck_ ? earlierOf(*lastCheck_) : mayAskFrom(check.now);
    const Scope scope{std::min(last, check.now), check.upTo};
    const bool may =
        !check.taken.empty() || std::any_of(events_.begin(), events_.end(), [&](const auto& entry) {
            return !entry.second.goneIsKnown && mayBeHeard(entry.second, scope);
        });
    if (check.heard > 1 || (check.heard == 1 && !may) ||
        (check.heard == 0 && !check.taken.empty())) {
        wrong << "at " << text(check.now) << " the sound was played " << check.heard
              << " times, and " << check.taken.size() << " were listed\n";
    }
}

std::string Oracle::judge(const Check& check, const std::set<std::string>& listed) {
    now_ = check.now;
    turn_ = look(check);
    if (turn_) {
        noteClock(*turn_);
    }
    for (auto& [GUID, event] : events_) {
        if (event.gone || event.isDone) {
            continue;
        }
        settle(event);
        event.forEachPlan([&, &event = event](const Plan& plan) {
            if (check.readable || !event.held.empty() || event.mayBeHeld) {
                gatherMay(event, plan, check);
            }
        });
        if (event.isSure) {
            gatherMust(event, check);
        }
        if (listed.contains(GUID) && !event.open.empty()) {
            noteStanding(event, check.upTo);
        }
        decisions_ += 1 + event.must.size();
    }
    std::ostringstream wrong;
    for (const Listing& row : check.taken) {
        judgeTaken(check, row, wrong);
    }
    for (auto& [GUID, event] : events_) {
        if (!listed.contains(GUID)) {
            judgeMissing(check, event, wrong);
        } else if (std::exchange(event.leaves, false) && !isTaken(check, GUID)) {
            wrong << "at " << text(check.now) << " " << event.id
                  << " stands in the list, but another copy has dealt with it\n";
        }
    }
    judgeSound(check, wrong);
    read(check);
    return wrong.str();
}

}  // namespace vl::simulation
