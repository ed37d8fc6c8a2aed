#include "Oracle.h"

#include <algorithm>

namespace vl::simulation {

namespace {

// No offset of a reminder, and no event, is longer than this.
constexpr Seconds kReach = 3 * kDay;
// Nor has one that goes on, or is of today, been reminded of longer ago.
constexpr Seconds kLongest = 2 * kReach;
constexpr Seconds kLongestOff = 30 * kDay;

bool sameDay(Seconds a, Seconds b) { return midnightOf(a) == midnightOf(b); }

// What is met for the first time is also asked for reminders before that.
bool countsWhenMet(const Occurrence& one, Seconds reminder, Seconds now) {
    return sameDay(reminder, now) || one.end > now;
}

}  // namespace

// ---- what the host does

void Oracle::written(const std::string& GUID, const std::string& id, const Plan& plan,
                     Seconds modified) {
    Event& event = events_[GUID];
    if (event.gone) {
        return;
    }
    const bool isNew = event.id.empty();
    const bool retimed = isNew || !event.plan.sameTimes(plan);
    if (retimed) {
        event.stamp = modified;
        event.metBelow = kNone;
    }
    if (!isNew && !event.isSure) {
        event.between.push_back(event.plan);
    }
    // Its status is the host's again.
    event.isSure = event.isSure && !retimed && !event.isDone;
    event.isDone = false;
    event.mayBeDone = false;
    event.id = id;
    event.plan = plan;
}

void Oracle::deleted(const std::string& GUID) {
    events_.at(GUID).gone = true;
    events_.at(GUID).must.clear();
}

void Oracle::travelled(Zone here) {
    here_ = here;
    hasTravelled_ = true;
    for (auto& [GUID, event] : events_) {
        event.hasTravelled = event.plan.zone.has_value();
    }
}

void Oracle::keptAsWritten(Zone there) {
    for (auto& [GUID, event] : events_) {
        for (auto& [key, mark] : event.marks) {
            mark.wasTaken = mark.wasTaken || isReplaced(event, key, false);
        }
    }
    for (auto& [GUID, event] : events_) {
        if (event.goneIsKnown) {
            continue;  // what it replaced was noted there
        }
        event.plan = event.plan.asWrittenIn(there, here_);
        for (std::vector<Plan>* plans : {&event.held, &event.between}) {
            for (Plan& one : *plans) {
                one = one.asWrittenIn(there, here_);
            }
        }
        event.openSince = event.listedSince;
        if (event.plan.zone) {
            event.metAt.reset();  // it may have been asked for already, as what it was then
        }
        // A single event's row stands in the list for what it is now.
        for (const auto& [key, minutes] : event.open) {
            if (!event.plan.isSeries()) {
                event.may.insert({event.plan.start, minutes});
            }
        }
    }
}

// ---- what the program knows

void Oracle::started(Seconds now, bool readable) {
    for (auto& [GUID, event] : events_) {
        event.isSure = readable;
        event.held = readable ? std::vector{event.plan} : std::vector<Plan>();
        event.isKnown |= readable;
        event.between.clear();
        // By its stamp the program tells what it has not met before.
        const bool isNewer = event.stamp && lastRead_ && *event.stamp >= earlierOf(*lastRead_);
        event.metAt = readable && isNewer ? std::optional(now) : std::nullopt;
        event.stamp = isNewer ? event.stamp : std::nullopt;
    }
    lastCheck_.reset();
    unseenSince_.reset();
    isFirst_ = true;
}

void Oracle::read(const Check& check) {
    const Seconds from = askedFrom(check.now);
    lastCheck_ = momentOf(check.now);
    if (!check.readable) {
        unseenSince_ = unseenSince_ ? unseenSince_ : momentOf(from);
        return;
    }
    lastRead_ = lastCheck_;
    unseenSince_.reset();
    isFirst_ = false;
    hasTravelled_ = false;
    for (auto& [GUID, event] : events_) {
        if (check.disturbed) {
            // Which of the two it has read, only the next check shows.
            if (!event.isSure) {
                event.held.push_back(event.plan);
            }
            continue;
        }
        event.goneIsKnown = event.gone;
        event.hasTravelled = false;
        if (event.isSure && !event.metAt) {
            event.stamp.reset();
        }
        if (!event.isSure) {
            event.held = {event.plan};
            event.between.clear();
            event.isSure = true;
            event.isKnown = true;
            event.metAt = event.stamp ? std::optional(check.now) : event.metAt;
        }
    }
}

// ---- times

Seconds Oracle::earlierOf(const Moment& moment) const {
    return std::min(moment.local, toWall(here_, moment.utc));
}

Seconds Oracle::askedFrom(Seconds now) const {
    Seconds from = midnightOf(now);
    if (lastCheck_) {
        from = earlierOf(*lastCheck_);
    } else if (lastRead_) {
        from = std::min(from, std::max(earlierOf(*lastRead_), from - kLongestOff));
    }
    from = unseenSince_ ? std::min(from, earlierOf(*unseenSince_)) : from;
    return std::min(from, now);
}

// Of the checks of a day only the first is kept over a restart, by the clock of that place.
Seconds Oracle::mayAskFrom(Seconds now) const {
    const Seconds from = askedFrom(now);
    if (!isFirst_ || !lastRead_) {
        return from;
    }
    return std::min(from, midnightOf(earlierOf(*lastRead_)) - (hasTravelled_ ? kDay : 0));
}

// ---- what is dealt with

// `surely`: the program knows of it.
bool Oracle::isReplaced(const Event& event, Seconds key, bool surely) const {
    return event.plan.isSeries() &&
           std::any_of(events_.begin(), events_.end(), [&](const auto& entry) {
               const Event& other = entry.second;
               return other.plan.replaces == key && other.plan.master == event.id &&
                      (!surely || other.isKnown || other.goneIsKnown);
           });
}

// Local. A single event has one snooze, wherever the host moves it.
std::optional<Seconds> Oracle::snoozeOf(const Event& event, Seconds key) const {
    Seconds snoozed = kNone;
    for (const auto& [start, mark] : event.marks) {
        if (start == key || !event.plan.isSeries()) {
            snoozed = std::max(snoozed, mark.snoozed);
        }
    }
    return snoozed == kNone ? std::nullopt : std::optional(toWall(here_, snoozed));
}

// `surely`: it must not be shown. Else: it need not be.
bool Oracle::isSettled(const Event& event, const Plan& plan, const Occurrence& one, int minutes,
                       bool surely) const {
    const Seconds time = one.start - minutes * kMinute;
    const auto snoozed = snoozeOf(event, one.key);
    if (snoozed && time < *snoozed) {
        return true;
    }
    // A clock that was ahead ended what now is not over.
    const bool isOver = one.start + plan.length <= now_;
    if (one.key < event.endedBefore && isOver && !event.spared.contains(one.key)) {
        return true;
    }
    const auto found = event.marks.find(one.key);
    if (found == event.marks.end()) {
        return false;
    }
    const Mark& mark = found->second;
    const Seconds handled = surely ? mark.handledLast : mark.handled;
    return mark.silent || (handled != kNone && plan.toMoment(time, here_) <= handled) ||
           (mark.silentThroughStart && time <= one.start);
}

// ---- what is asked for

template <class Visit>
void Oracle::forEachReminder(const Event& event, const Plan& plan, Scope scope, bool surely,
                             Visit&& visit) const {
    for (const Occurrence& one : plan.occurrences(scope.from - kReach, scope.to + kReach, here_)) {
        if (isReplaced(event, one.key, surely)) {
            continue;
        }
        for (const int minutes : plan.reminders) {
            const Seconds time = one.start - minutes * kMinute;
            if (time >= scope.from && time <= scope.to &&
                !isSettled(event, plan, one, minutes, surely)) {
                visit(one, minutes, time);
            }
        }
    }
}

void Oracle::gatherMay(Event& event, const Plan& plan, const Check& check) const {
    Seconds from = mayAskFrom(check.now);
    if (event.openSince) {
        from = std::min(from, earlierOf(*event.openSince));
    }
    forEachReminder(event, plan, {from, check.upTo}, true,
                    [&](const Occurrence& one, int minutes, Seconds) {
                        event.may.insert({one.key, minutes});
                    });
    if (!event.stamp && !event.metAt && !event.hasTravelled && !isFirst_) {
        return;
    }
    forEachReminder(event, plan, {check.now - kLongest, check.upTo}, true,
                    [&](const Occurrence& one, int minutes, Seconds time) {
                        if (countsWhenMet(one, time, check.now) ||
                            (event.metAt && countsWhenMet(one, time, *event.metAt))) {
                            event.may.insert({one.key, minutes});
                        }
                    });
}

void Oracle::gatherMust(Event& event, const Check& check) const {
    forEachReminder(event, event.plan, {askedFrom(check.now), check.upTo}, false,
                    [&](const Occurrence& one, int minutes, Seconds) {
                        event.must.insert({one.key, minutes});
                    });
    if (event.metAt) {
        forEachReminder(event, event.plan, {check.now - kLongest, check.upTo}, false,
                        [&](const Occurrence& one, int minutes, Seconds time) {
                            // What was silent when it was met is not asked for later.
                            if (countsWhenMet(one, time, check.now) &&
                                countsWhenMet(one, time, *event.metAt) &&
                                toUtc(here_, time) >= event.metBelow) {
                                event.must.insert({one.key, minutes});
                            }
                        });
        event.metAt.reset();
        event.stamp.reset();
    }
}

bool Oracle::isLeft(const Event& event, const Plan& plan, const Reminder& reminder,
                    bool surely) const {
    const auto& [key, minutes] = reminder;
    const auto one = plan.occurrenceOf(key, here_);
    return one && !isReplaced(event, key, surely) &&
           std::find(plan.reminders.begin(), plan.reminders.end(), minutes) !=
               plan.reminders.end() &&
           !isSettled(event, plan, *one, minutes, surely);
}

// Takes out what no plan has any more, and what was dealt with or replaced.
void Oracle::settle(Event& event) const {
    std::erase_if(event.must, [&](const Reminder& reminder) {
        return !isLeft(event, event.plan, reminder, false);
    });
    std::erase_if(event.may, [&](const Reminder& reminder) {
        bool left = false;
        event.forEachPlan(
            [&](const Plan& plan) { left = left || isLeft(event, plan, reminder, true); });
        return !left;
    });
}

// ---- what the user does

// Of what begins before it and is over, but is not snoozed, nothing comes any more.
void Oracle::endEarlier(Event& event, Seconds key, Seconds now) const {
    const Seconds over = event.plan.toOwn(now - event.plan.length, here_) + 1;
    const Seconds limit = std::min(key, over);
    for (const auto& [start, mark] : event.marks) {
        if (start < limit) {
            event.spared.erase(start);
        }
        if (start < limit && mark.snoozed != kNone) {
            event.spared.insert(start);
        }
    }
    event.endedBefore = std::max(event.endedBefore, limit);
    std::erase_if(event.open, [&](const auto& entry) {
        return entry.first < limit && !event.spared.contains(entry.first);
    });
}

void Oracle::acted(const Listing& row, Act act, Seconds now, Seconds until) {
    now_ = now;
    Event& event = events_.at(row.GUID);
    const Seconds key = keyAt(event, row.start);
    Seconds handled = now;
    if (const auto listed = event.open.find(key); listed != event.open.end()) {
        handled = std::max(handled, row.start - listed->second * kMinute);
    }
    handled = event.plan.toMoment(handled, here_);
    if (event.plan.isSeries()) {
        endEarlier(event, key, now);
    } else {
        for (auto& [start, mark] : event.marks) {
            event.metBelow = std::max(event.metBelow, mark.snoozed);
            mark.snoozed = kNone;
        }
        event.open.clear();
    }
    Mark& mark = event.marks[key];
    mark.snoozed = act == Act::Snooze ? toUtc(here_, until) : kNone;
    mark.wasTaken = false;
    const Seconds own = event.plan.toMoment(now, here_);
    const bool early = mark.handledLast > own && mark.handledLast <= own + kMinute;
    mark.handledLast = early ? std::max(mark.handledLast, handled) : handled;
    mark.handled = std::max(mark.handled, handled);
    mark.silentThroughStart |= act == Act::DismissAllButAfter;
    mark.silent |= act == Act::DismissAll || act == Act::Done;
    event.open.erase(key);
    settle(event);
    event.mayBeDone = act == Act::Done && !event.isSure;
    const bool isLast = event.plan.lastKey() == key;
    const bool isSnoozed = std::any_of(event.marks.begin(), event.marks.end(),
                                       [](const auto& one) { return one.second.snoozed != kNone; });
    event.isDone =
        act == Act::Done && isLast && event.must.empty() && event.open.empty() && !isSnoozed;
}

void Oracle::reactivated(const std::string& GUID, Seconds now) {
    Event& event = events_.at(GUID);
    event.marks.clear();
    event.metBelow = kNone;
    event.endedBefore = kNone;
    event.spared.clear();
    event.must.clear();
    event.open.clear();
    event.isDone = false;
    event.mayBeDone = false;
    event.stamp = now;
    event.metAt = now;
}

void Oracle::itemDeleted(const std::string& GUID) {
    deleted(GUID);
    events_.at(GUID).goneIsKnown = true;
}

// ---- which occurrence a row is on

std::optional<Seconds> Oracle::keyIn(const Plan& plan, Seconds start) const {
    const auto at = plan.occurrences(start, start, here_);
    return at.empty() ? std::nullopt : std::optional(at.front().key);
}

Seconds Oracle::keyAt(const Event& event, Seconds start) const {
    std::optional<Seconds> key = keyIn(event.plan, start);
    event.forEachPlan([&](const Plan& plan) { key = key ? key : keyIn(plan, start); });
    return key ? *key : event.plan.toOwn(start, here_);
}

// ---- the verdict

// Of what must be listed; what is to come again, since a clock was turned back, comes then.
const Oracle::Reminder* Oracle::firstDue(const Event& event, Seconds upTo) const {
    for (const Reminder& reminder : event.must) {
        const auto& [key, minutes] = reminder;
        if (event.open.contains(key) ||
            event.plan.toLocal(key, here_) - minutes * kMinute <= upTo) {
            return &reminder;
        }
    }
    return nullptr;
}

bool Oracle::isSnoozeDue(const Event& event, Seconds upTo) const {
    return std::any_of(event.marks.begin(), event.marks.end(), [&](const auto& entry) {
        const auto& [key, mark] = entry;
        return mark.snoozed != kNone && !mark.wasTaken && toWall(here_, mark.snoozed) <= upTo &&
               (!event.plan.isSeries() ||
                (!isReplaced(event, key, false) && !event.plan.excluded.contains(key)));
    });
}

bool Oracle::mayShow(const Event& event, const Listing& row, Seconds upTo) const {
    // Also of a series that has no such occurrence any more.
    bool may = event.plan.isSeries() &&
               std::any_of(event.marks.begin(), event.marks.end(), [&](const auto& entry) {
                   return entry.second.snoozed != kNone &&
                          toWall(here_, entry.second.snoozed) <= upTo &&
                          event.plan.toLocal(entry.first, here_) == row.start &&
                          !isReplaced(event, entry.first, true);
               });
    event.forEachPlan([&](const Plan& plan) {
        const auto key = keyIn(plan, row.start);
        if (!key || isReplaced(event, *key, true)) {
            return;
        }
        const auto snoozed = snoozeOf(event, *key);
        const auto minutes = static_cast<int>((row.start - row.reminder) / kMinute);
        // What was listed is listed again after a restart, also when clocks were turned back.
        may = may || event.open.contains(*key) || (snoozed && *snoozed <= upTo) ||
              (row.reminder <= upTo && event.may.contains({*key, minutes}));
    });
    return may;
}

}  // namespace vl::simulation
