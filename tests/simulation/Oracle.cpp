#include "Oracle.h"

#include <algorithm>
#include <sstream>

#include "base/Variant.h"

namespace vl::simulation {

namespace {

// Histories are shorter than this, and so are offsets.
constexpr Seconds kFar = 60 * kDay;

std::string text(Seconds time) { return formatDateTime(dateTime(time)); }

}  // namespace

void Oracle::written(const std::string& GUID, const std::string& id, const Plan& plan) {
    Event& event = events_[GUID];
    if (event.gone) {
        return;
    }
    const bool retimed = event.id.empty() || !event.plan.sameTimes(plan);
    event.id = id;
    event.plan = plan;
    if (!retimed) {
        return;
    }
    event.changed = true;
    event.done = false;
    if (!plan.isSeries()) {
        event.must.clear();
    }
}

// What was dealt with was the event at the time that the program knew. A snooze stays.
void Oracle::lapse(Event& event) {
    if (!event.plan.isSeries() && !event.plan.sameTimes(event.known)) {
        for (auto& [key, mark] : event.marks) {
            mark = {kNone, kNone, mark.snoozed, false, false, false};
        }
    }
}

void Oracle::deleted(const std::string& GUID) {
    Event& event = events_[GUID];
    event.gone = true;
    event.must.clear();
}

void Oracle::started(Seconds now, bool readable) {
    for (auto& [GUID, event] : events_) {
        event.changed |= !readable;
        event.isKnown = readable;
        if (readable && event.changed) {
            lapse(event);
            event.known = event.plan;
            event.changed = false;
        }
        event.metAt = kNone;
    }
    // What was added since the last run is no different from what was there before.
    mayMeet_ = true;
    from_ = midnightOf(now);
    mayFrom_ = from_;
    if (!remembers_) {
        for (auto& [GUID, event] : events_) {
            event.must.clear();
            event.may.clear();
            event.open.clear();
        }
        return;
    }
    if (lastCheck_ != kNone && lastCheck_ < from_) {
        from_ = std::max(lastCheck_, now - 30 * kDay);
    }
    if (lastCheck_ != kNone) {
        // Which check of a day was the last is not always kept, only that there was one.
        mayFrom_ = std::min(mayFrom_, midnightOf(lastCheck_));
    }
}

bool Oracle::isReplaced(const Event& event, const Occurrence& one, bool maybe) const {
    return std::any_of(events_.begin(), events_.end(), [&](const auto& entry) {
        const Event& other = entry.second;
        // Before it is read nobody knows of it; then it stays known.
        const bool knows = maybe ? other.isKnown && !other.changed : true;
        return other.plan.replaces && other.plan.master == event.id && knows &&
               *other.plan.replaces == one.start;
    });
}

// `surely`: it must not be shown. Else: it need not be.
bool Oracle::isSettled(const Event& event, const Occurrence& one, Seconds time, bool surely) const {
    const auto found = event.marks.find(one.key);
    if (found == event.marks.end()) {
        return false;
    }
    const Mark& mark = found->second;
    const Seconds handled = surely ? mark.handledAtLeast : mark.handled;
    return mark.silent || mark.ended || (handled != kNone && time <= handled) ||
           (mark.silentThroughStart && time <= one.start) ||
           (mark.snoozed != kNone && time < mark.snoozed);
}

template <class Visit>
void Oracle::forEachReminder(const Event& event, const Plan& plan, Scope scope, bool maybe,
                             Visit&& visit) const {
    for (const Occurrence& one : plan.occurrences(scope.from - kFar, scope.to + kFar)) {
        if (plan.isSeries() && isReplaced(event, one, maybe)) {
            continue;
        }
        for (const int minutes : plan.reminders) {
            const Seconds time = one.start - minutes * kMinute;
            if (time >= scope.from && time <= scope.to && !isSettled(event, one, time, maybe)) {
                visit(one, time);
            }
        }
    }
}

// What the check asks for, of what it knows.
void Oracle::gather(Event& event, const Check& check) {
    const Seconds from = std::min(from_, check.now);
    const Seconds mayFrom = std::min(mayFrom_, check.now);
    if (event.isKnown) {
        forEachReminder(event, event.known, {mayFrom, check.upTo}, true,
                        [&](const Occurrence& one, Seconds time) {
                            event.may.insert({one.key, time});
                        });
    }
    if (event.isKnown && !event.changed) {
        forEachReminder(event, event.known, {from, check.upTo}, false,
                        [&](const Occurrence& one, Seconds time) {
                            event.must.insert({one.key, time});
                        });
    }
    const auto isOfToday = [&](Seconds time, Seconds now) {
        return midnightOf(time) == midnightOf(now);
    };
    if (remembers_ && event.isKnown && (event.metAt != kNone || mayMeet_)) {
        const Scope scope{check.now - kFar, check.upTo};
        forEachReminder(event, event.known, scope, true, [&](const Occurrence& one, Seconds time) {
            if (isOfToday(time, check.now) || one.end > check.now || isOfToday(time, event.metAt) ||
                one.end > event.metAt) {
                event.may.insert({one.key, time});
            }
        });
        if (!event.changed && event.metAt != kNone) {
            forEachReminder(event, event.known, scope, false,
                            [&](const Occurrence& one, Seconds time) {
                                if ((isOfToday(time, check.now) || one.end > check.now) &&
                                    (isOfToday(time, event.metAt) || one.end > event.metAt)) {
                                    event.must.insert({one.key, time});
                                }
                            });
        }
        event.metAt = kNone;
    }
    if (event.changed && check.readable) {
        Event fresh = event;
        lapse(fresh);
        forEachReminder(
            fresh, fresh.plan, {check.now - kFar, check.upTo}, true,
            [&](const Occurrence& one, Seconds time) {
                if (isOfToday(time, check.now) || one.end > check.now || time >= mayFrom) {
                    event.may.insert({one.key, time});
                }
            });
    }
}

void Oracle::checking(const Check& check) {
    for (auto& [GUID, event] : events_) {
        if (!event.gone && !event.done) {
            settle(event);
            gather(event, check);
            decisions_ += 1 + event.must.size();
        }
    }
}

bool Oracle::isSnoozeDue(const Event& event, Seconds upTo) const {
    return std::any_of(event.marks.begin(), event.marks.end(), [&](const auto& entry) {
        if (entry.second.snoozed == kNone || entry.second.snoozed > upTo) {
            return false;
        }
        const auto all = event.plan.occurrences(from_ - 2 * kFar, from_ + 2 * kFar);
        return std::any_of(all.begin(), all.end(), [&](const Occurrence& one) {
            return one.key == entry.first &&
                   !(event.plan.isSeries() && isReplaced(event, one, false));
        });
    });
}

// A single event has one, also where a row shows it as it was before the host moved it.
std::optional<Occurrence> Oracle::occurrenceAt(const Event& event, Seconds start) const {
    if (!event.plan.isSeries()) {
        const auto one = event.plan.occurrences(0, kFar * 1000);
        return one.empty() ? std::nullopt : std::optional(one.front());
    }
    for (const Plan* plan : {&event.plan, &event.known}) {
        for (const Occurrence& one : plan->occurrences(start, start)) {
            return one;
        }
    }
    return std::nullopt;
}

bool Oracle::mayShow(const Event& event, const Listing& row, Seconds upTo) const {
    const auto one = occurrenceAt(event, row.start);
    const auto mark = one ? event.marks.find(one->key) : event.marks.end();
    if (mark != event.marks.end() && mark->second.snoozed != kNone &&
        mark->second.snoozed <= upTo) {
        return true;
    }
    if (!one) {
        return false;
    }
    return event.may.contains({one->key, row.reminder}) || event.open.contains(one->key);
}

std::string Oracle::verdict(const Check& check, const std::set<std::string>& listed) {
    std::ostringstream wrong;
    for (const Listing& row : check.taken) {
        ++decisions_;
        Event& event = events_.at(row.GUID);
        if (event.gone && !event.goneIsKnown && !check.readable) {
            continue;  // deleted where the program could not look
        }
        if (event.gone || event.done || !mayShow(event, row, check.upTo)) {
            wrong << "at " << text(check.now) << " " << event.id << " was listed for "
                  << text(row.start) << ", reminder " << text(row.reminder)
                  << (event.gone   ? ": it is deleted"
                      : event.done ? ": it is done"
                                   : ": that has been dealt with, or was never due")
                  << '\n';
        }
        if (const auto one = occurrenceAt(event, row.start)) {
            event.open.insert(one->key);
        }
    }
    for (auto& [GUID, event] : events_) {
        const bool due = !event.must.empty() ||
                         (event.isKnown && !event.changed && isSnoozeDue(event, check.upTo));
        if (!event.gone && !event.done && event.isKnown && due && !listed.contains(GUID)) {
            wrong << "at " << text(check.now) << " " << event.id << " is not listed, but ";
            if (event.must.empty()) {
                wrong << "a snooze is due\n";
            } else {
                wrong << "has a reminder at " << text(event.must.begin()->second) << '\n';
            }
        }
    }
    read(check);
    return wrong.str();
}

// By the end of a check the program knows what the host has.
void Oracle::read(const Check& check) {
    from_ = mayFrom_ = check.now;
    mayMeet_ = false;
    lastCheck_ = check.now;
    if (!check.readable) {
        return;
    }
    for (auto& [GUID, event] : events_) {
        event.goneIsKnown = event.gone;
        if (event.changed && !event.gone) {
            lapse(event);
            event.known = event.plan;
            event.isKnown = true;
            event.changed = false;
            event.metAt = check.now;
        }
        settle(event);
    }
}

// Takes out what no plan has any more, and what was dealt with or replaced.
void Oracle::settle(Event& event) {
    const auto clear = [&](std::set<Reminder>& reminders, bool surely) {
        std::set<Reminder> left;
        forEachReminder(event, event.plan, {from_ - kFar, from_ + kFar}, surely,
                        [&](const Occurrence& one, Seconds time) {
                            if (reminders.contains({one.key, time})) {
                                left.insert({one.key, time});
                            }
                        });
        reminders = std::move(left);
    };
    clear(event.must, false);
    clear(event.may, true);
    const auto all = event.plan.occurrences(from_ - 2 * kFar, from_ + 2 * kFar);
    std::erase_if(event.marks, [&](const auto& entry) {
        return std::none_of(all.begin(), all.end(), [&](const Occurrence& one) {
            return one.key == entry.first &&
                   !(event.plan.isSeries() && isReplaced(event, one, true));
        });
    });
}

void Oracle::acted(const Listing& row, Act act, Seconds now, Seconds until) {
    Event& event = events_.at(row.GUID);
    if (act == Act::Reactivate) {
        event.marks.clear();
        event.must.clear();
        event.open.clear();
        event.done = false;
        event.metAt = now;
        return;
    }
    const auto one = occurrenceAt(event, row.start);
    if (!one) {
        return;
    }
    Mark& mark = event.marks[one->key];
    mark.snoozed = act == Act::Snooze ? until : kNone;
    // A row may still show a single event as it was before it was moved: what is dealt with is
    // that, and not what it is now.
    if (event.plan.isSeries() || event.known.occurrences(row.start, row.start).size() == 1) {
        const Seconds handled = std::max(now, row.reminder);
        mark.handled = mark.handled == kNone ? handled : std::max(mark.handled, handled);
        mark.handledAtLeast = handled;
        mark.silentThroughStart |= act == Act::DismissAllButAfter;
        mark.silent |= act == Act::DismissAll || act == Act::Done;
    }
    event.open.erase(one->key);
    // Who deals with a moved event's old row has been told of it: what was due by then need not
    // come.
    std::erase_if(event.must, [&](const Reminder& reminder) {
        return reminder.first == one->key && reminder.second <= now;
    });
    if (event.plan.isSeries()) {
        for (const Occurrence& earlier : event.plan.occurrences(now - kFar, one->start - 1)) {
            if (earlier.end <= now && event.marks[earlier.key].snoozed == kNone) {
                event.marks[earlier.key].ended = true;
                event.open.erase(earlier.key);
            }
        }
    }
    const Seconds before = from_;
    settle(event);
    from_ = before;
    const auto last = event.plan.last();
    const bool isLast = last && last->start == one->start;
    event.done = act == Act::Done && isLast && event.must.empty() && event.open.empty() &&
                 !isSnoozeDue(event, std::numeric_limits<Seconds>::max());
}

}  // namespace vl::simulation
