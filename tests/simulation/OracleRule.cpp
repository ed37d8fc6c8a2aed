// The rule: what is dealt with, and what is asked for.
#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "Oracle.h"

namespace vl::simulation {

namespace {

// No offset of a reminder, and no event, is longer than this.
constexpr Seconds kReach = 3 * kDay;
// Nor has one that goes on, or is of today, been reminded of longer ago.
constexpr Seconds kLongest = 2 * kReach;
constexpr Seconds kLongestOff = 30 * kDay;
// Nor has any series begun before that, or ended.
constexpr Seconds kLongestSeries = 400 * kDay;

bool sameDay(Seconds a, Seconds b) { return midnightOf(a) == midnightOf(b); }

// What is met for the first time is also asked for reminders before that.
bool countsWhenMet(const Occurrence& one, Seconds reminder, Seconds now) {
    return sameDay(reminder, now) || one.end > now;
}

}  // namespace

// ---- times

Seconds Oracle::earlierOf(const Moment& moment) const {
    return std::min(moment.local, toWall(here_, moment.utc));
}

// Those that lie ahead were by a clock that was, and the one before them counts.
std::optional<Oracle::Moment> Oracle::lastReadBy(Seconds now) const {
    const auto last = std::find_if(reads_.rbegin(), reads_.rend(),
                                   [&](const Moment& one) { return earlierOf(one) <= now; });
    return last != reads_.rend() ? std::optional(*last) : std::nullopt;
}

// By a clock far ahead a start has asked for so many days only: of what is before them nobody has
// told, and it is asked for when that clock is put back.
std::optional<Seconds> Oracle::skippedSince(Seconds now, bool surely) const {
    const auto last = std::find_if(reads_.rbegin(), reads_.rend(),
                                   [&](const Moment& one) { return earlierOf(one) <= now; });
    if (last == reads_.rend() || last == reads_.rbegin()) {
        return std::nullopt;
    }
    const Moment& next = *std::prev(last);
    const Seconds asked = midnightOf(earlierOf(next)) - kLongestOff;
    const bool isSkipped = earlierOf(*last) < asked && (!surely || starts_.contains(next.utc));
    return isSkipped ? std::optional(std::max(earlierOf(*last), midnightOf(now) - kLongestOff))
                     : std::nullopt;
}

Seconds Oracle::askedFrom(Seconds now) const {
    Seconds from = midnightOf(now);
    if (lastCheck_) {
        from = earlierOf(*lastCheck_);
        from = from > now ? skippedSince(now, true).value_or(from) : from;
    } else if (const auto last = lastReadBy(now)) {
        from = std::min(from, std::max(earlierOf(*last), from - kLongestOff));
    }
    from = unseenSince_ ? std::min(from, earlierOf(*unseenSince_)) : from;
    return std::min(from, now);
}

// Of the checks of a day only the first is kept over a restart, by the clock of that place.
Seconds Oracle::mayAskFrom(Seconds now) const {
    const Seconds from = askedFrom(now);
    if (!isFirst_ && lastCheck_ && earlierOf(*lastCheck_) > now) {
        return std::min(from, skippedSince(now, false).value_or(from));
    }
    if (!isFirst_ || !lastRead_) {
        return from;
    }
    // A check that lies ahead was one of a wrong clock: since when nobody asked is not known.
    if (earlierOf(*lastRead_) > now) {
        return std::min(from, midnightOf(now) - kLongestOff);
    }
    return std::min(from, midnightOf(earlierOf(*lastRead_)) - (hasTravelled_ ? kDay : 0));
}

// Keys: what begins before is over by the clock here. Of an hour that this shows twice the second
// is, too.
Seconds Oracle::overBefore(const Plan& plan, Seconds now) const {
    const Seconds begun = now - plan.length;
    const Seconds first = plan.toOwn(begun, here_);
    const Seconds second = plan.toOwn(begun + 3 * kHour, here_) - 3 * kHour;
    const bool comesTwice = second > first && plan.toLocal(second, here_) == begun;
    return (comesTwice ? second : first) + 1;
}

// ---- what is dealt with

// Until a check has set it right, the same holds of it as then.
bool Oracle::isOfWrongClock(const Mark& mark) const {
    return mark.acted != kNone && mark.acted > latestAct(now_);
}

// An act later than this, in UTC, was by a clock that is ahead of the one that now says `now`: one
// that is a little off, or an hour that comes twice, is none.
Seconds Oracle::latestAct(Seconds now) const {
    const Seconds first = toUtc(here_, now);
    const Seconds second = toUtc(here_, now + 3 * kHour) - 3 * kHour;
    const bool comesTwice = second > first && toWall(here_, second) == now;
    return (comesTwice ? second : first) + 25 * kMinute;
}

// Of such an act only that counts which had fallen due by now; what is not over is not ended by it.
void Oracle::setRight(Event& event, Seconds now) const {
    const Seconds latest = latestAct(now);
    if (event.endedAt != kNone && event.endedAt > latest) {
        event.endedWas = event.endedWas
                             ? event.endedWas
                             : std::optional(std::pair(event.endedBefore, event.endedAt));
        event.endedBefore = std::min(event.endedBefore, overBefore(event.plan, now));
        event.endedAt = toUtc(here_, now);
    }
    for (auto& [key, mark] : event.marks) {
        if (mark.acted == kNone || mark.acted <= latest) {
            continue;
        }
        mark.was = mark.was ? mark.was : std::make_shared<const Mark>(mark);
        mark.acted = toUtc(here_, now);
        const Until dealtWith = std::max(mark.shown, untilOf(event.plan, now));
        mark.handled = std::min(mark.handled, dealtWith);
        mark.handledLast = std::min(mark.handledLast, dealtWith);
        mark.mayBeOver = mark.reminder == kNone;
        if (mark.snoozed != kNone && mark.reminder != kNone) {
            mark.snoozed = shownAgain(event, mark);
            // The row was perhaps from before a move: then it may come with what was missed since.
            const auto last = lastReminder(event.plan);
            mark.atLatest =
                !event.plan.isSeries() && key != event.plan.start && last ? *last : kNone;
        }
    }
}

// At the time of its reminder; by then it is put off to that moment, wherever the computer goes.
Seconds Oracle::shownAgain(const Event& event, const Mark& mark) const {
    return event.plan.zone ? mark.reminder : toUtc(here_, mark.reminder);
}

void Oracle::settle(const Event& event, Mark& mark) const {
    if (mark.was && mark.snoozed != kNone && mark.reminder != kNone) {
        mark.snoozed = shownAgain(event, mark);
    }
    mark.was.reset();
}

// Who acts on an event, or a clock that goes on as it does, says that it was ahead.
void Oracle::settleClock(Event& event) const {
    event.endedWas.reset();
    for (auto& [key, mark] : event.marks) {
        settle(event, mark);
    }
}

std::optional<Oracle::Turn> Oracle::look(const Check& check) {
    const Seconds moment = toUtc(here_, check.now);
    const Seconds step = looked_ ? moment - *looked_ : 0;
    const bool jumps = !looked_ || step > 25 * kMinute;
    looked_ = moment;
    jumped_ = jumped_ || jumps;
    goneOn_ = step < 0 ? 0 : goneOn_ + (jumps ? 0 : step);
    if (!check.readable) {
        return std::nullopt;
    }
    return Turn{check.now, std::exchange(jumped_, false), goneOn_ >= kHour};
}

// What was listed although it is dealt with leaves the list.
void Oracle::unlist(Event& event, Seconds key) const {
    const auto listed = event.open.find(key);
    const auto one = event.plan.occurrenceOf(key, here_);
    if (listed != event.open.end() && one &&
        isSettled(event, event.plan, *one, listed->second, true)) {
        event.open.erase(listed);
    }
}

// A clock that is set forward over an act that lay ahead of it was behind, and the act by a right
// one; one that comes to it step by step, or goes on for an hour, was ahead before.
void Oracle::turn(Event& event, const Turn& turn) const {
    const Seconds moment = toUtc(here_, turn.now);
    const auto asItWas = [&](Seconds acted) {
        return turn.jumped && acted <= moment + 5 * kMinute;
    };
    const auto isWrong = [&](Seconds acted) { return turn.stood || acted <= moment; };
    if (event.endedWas && asItWas(event.endedWas->second)) {
        std::tie(event.endedBefore, event.endedAt) = *event.endedWas;
        event.endedWas.reset();
    } else if (event.endedWas && isWrong(event.endedWas->second)) {
        event.endedWas.reset();
    }
    for (auto& [key, mark] : event.marks) {
        if (mark.was && asItWas(mark.was->acted)) {
            const auto was = mark.was;
            mark = *was;
            unlist(event, key);
        } else if (mark.was && isWrong(mark.was->acted)) {
            settle(event, mark);
        }
    }
    setRight(event, turn.now);
}

void Oracle::noteClock(const Turn& turned) {
    for (auto& [GUID, event] : events_) {
        turn(event, turned);
    }
}

Oracle::Until Oracle::handledBy(const Event& event, const Mark& mark, bool surely) const {
    const Until handled = surely ? mark.handledLast : mark.handled;
    return isOfWrongClock(mark) ? std::min(handled, std::max(mark.shown, untilOf(event.plan, now_)))
                                : handled;
}

Seconds Oracle::localSnooze(const Event& event, const Mark& mark) const {
    // As long as nobody knows which clock is right, the reminder comes as it is scheduled.
    if ((isOfWrongClock(mark) || mark.was) && mark.reminder != kNone) {
        return event.plan.zone ? toWall(here_, mark.reminder) : mark.reminder;
    }
    return toWall(here_, mark.snoozed);
}

// `surely`: the program knows of it.
bool Oracle::isReplaced(const Event& event, Seconds key, bool surely) const {
    return event.plan.isSeries() &&
           std::any_of(events_.begin(), events_.end(), [&](const auto& entry) {
               const Event& other = entry.second;
               return other.plan.replaces == key && other.plan.master == event.id &&
                      (!surely || (!other.isForgotten && (other.isKnown || other.goneIsKnown)));
           });
}

// Local. A single event has one snooze, wherever the host moves it.
std::optional<Seconds> Oracle::snoozeOf(const Event& event, Seconds key) const {
    std::optional<Seconds> snoozed;
    for (const auto& [start, mark] : event.marks) {
        if (mark.snoozed != kNone && (start == key || !event.plan.isSeries()) &&
            !isSnoozeSilenced(event, event.plan, start, mark, true)) {
            const Seconds time = localSnooze(event, mark);
            snoozed = std::max(snoozed.value_or(time), time);
        }
    }
    return snoozed;
}

std::optional<Seconds> Oracle::keySnoozedElsewhere(const Event& event, const Plan& plan,
                                                   Seconds next, bool surely) const {
    if (!plan.isSeries()) {
        return plan.cancelled ? std::nullopt : std::optional(plan.start);
    }
    const Seconds latest =
        next + *std::max_element(plan.reminders.begin(), plan.reminders.end()) * kMinute;
    const auto all = plan.occurrences(latest - kLongestSeries, latest, here_);
    const auto one = std::find_if(all.rbegin(), all.rend(), [&](const Occurrence& occurrence) {
        return !isReplaced(event, occurrence.key, surely);
    });
    return one == all.rend() ? std::nullopt : std::optional(one->key);
}

// What is before a snooze is superseded by it. A dismissed single event is silent for good, unless
// the host has written it since; of a series, what has begun to remind by then.
bool Oracle::isSilencedElsewhere(const Event& event, const Plan& plan, const Occurrence& one,
                                 Seconds time, bool surely) const {
    if (!event.word || (surely && !event.word->isKnown)) {
        return false;
    }
    const Word& word = *event.word;
    const Seconds modified =
        surely ? event.modified : std::min(event.modified, event.modifiedKnown);
    if (word.isSnooze()) {
        return time < word.next;
    }
    if (word.dismissed == 0) {
        return false;
    }
    const int first = *std::max_element(plan.reminders.begin(), plan.reminders.end());
    return plan.isSeries() ? one.start - first * kMinute <= word.dismissed
                           : time <= word.dismissed || modified <= word.dismissed;
}

// `surely`: it must not be shown. Else: it need not be.
bool Oracle::isSettled(const Event& event, const Plan& plan, const Occurrence& one, int minutes,
                       bool surely) const {
    const Seconds time = one.start - minutes * kMinute;
    const auto snoozed = snoozeOf(event, one.key);
    if ((snoozed && time < *snoozed) || isSilencedElsewhere(event, plan, one, time, surely)) {
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
    return mark.silent || untilOf(plan, time) <= handledBy(event, mark, surely) ||
           (mark.silentThroughStart && time <= one.start);
}

// ---- what is asked for

void Oracle::forEachReminder(const Event& event, const Plan& plan, Scope scope, bool surely,
                             const Visit& visit) const {
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
    for (const auto& since : {event.openSince, event.missedSince}) {
        from = since ? std::min(from, earlierOf(*since)) : from;
    }
    forEachReminder(event, plan, {from, check.upTo}, true,
                    [&](const Occurrence& one, int minutes, Seconds) {
                        event.may.insert({one.key, minutes});
                    });
    if (!event.stamp && !event.metAt && !event.hasTravelled && !isFirst_ && !event.isReactivated) {
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

std::optional<Seconds> Oracle::lastReminder(const Plan& plan) const {
    const auto key = plan.lastKey();
    const int last = *std::min_element(plan.reminders.begin(), plan.reminders.end());
    return key ? std::optional(plan.toLocal(*key, here_) - last * kMinute) : std::nullopt;
}

// Also of occurrences before the last one.
bool Oracle::isAnyAhead(const Event& event) const {
    bool isAny = false;
    forEachReminder(event, event.plan, {now_ + 1, lastReminder(event.plan).value_or(now_)}, false,
                    [&](const Occurrence&, int, Seconds) { isAny = true; });
    return isAny;
}

// What is finished is taken back, when a clock is turned back, if there is a reminder to come.
void Oracle::noteFinished(Event& event, Seconds now) const {
    const auto last = lastReminder(event.plan);
    if (last && *last < now - kDay && event.must.empty() && event.open.empty()) {
        event.mayBeFinished = true;
    } else if (last && *last > now) {
        event.mayBeFinished = false;
        event.isFinished = false;
    }
}

void Oracle::gatherMust(Event& event, const Check& check) const {
    Seconds from = askedFrom(check.now);
    if (event.mayBeFinished && lastReminder(event.plan) <= from) {
        return;
    }
    // Its row was there when the last check asked; that read goes by the seconds of stamps.
    if (event.missedSince && event.modified <= earlierOf(*event.missedSince)) {
        from = std::min(from, earlierOf(*event.missedSince));
    }
    event.missedSince.reset();
    forEachReminder(event, event.plan, {from, check.upTo}, false,
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

// Whatever its row shows, the event stands in the list for what of it has fallen due.
void Oracle::noteStanding(Event& event, Seconds upTo) const {
    for (const auto& [key, minutes] : event.may) {
        if (event.plan.toLocal(key, here_) - minutes * kMinute <= upTo) {
            event.stood.insert(key);
        }
    }
    if (const auto snoozed = snoozeOf(event, event.plan.start);
        snoozed && *snoozed <= upTo && !event.plan.isSeries()) {
        event.stood.insert(event.plan.start);
    }
}

}  // namespace vl::simulation
