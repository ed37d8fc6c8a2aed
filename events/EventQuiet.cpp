#include "EventQuiet.h"

#include <algorithm>
#include <limits>

#include "events/GenCollection.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

constexpr double kMinute = 1.0 / 1440;
// Comparisons of doubles go wrong by less than this; where it matters, the caller looks exactly.
constexpr double kSlack = 1.0 / 86'400'000;
constexpr double kNever = std::numeric_limits<double>::infinity();
// An occurrence may be reminded of long before the ones in front of it are.
constexpr int kMostOccurrences = 16;

// Below zero days do not grow with time.
bool isPlain(double days) { return days >= 0.0; }
bool isPlain(const Window& window) {
    return isPlain(window.from.days()) && isPlain(window.to.days());
}

template <class Visit>
void forEachReminder(const calEvent& event, Visit&& visit) {
    if (event.RemindersCol) {
        for (const Variant& item : *event.RemindersCol) {
            const auto* object = item.get<ObjectRef>();
            if (const auto* r =
                    object ? dynamic_cast<const clsReminder*>(object->get()) : nullptr) {
                visit(r->Minutes);
            }
        }
    }
}

const EventMemo& memoOf(const calEvent& event) {
    EventMemo& memo = event.memo;
    if (memo.reminders != event.RemindersCol.get() || memo.reminders == nullptr) {
        memo = EventMemo();
        memo.reminders = event.RemindersCol.get();
        memo.least = std::numeric_limits<std::int32_t>::max();
        memo.most = std::numeric_limits<std::int32_t>::min();
        forEachReminder(event, [&](std::int32_t minutes) {
            memo.least = std::min(memo.least, minutes);
            memo.most = std::max(memo.most, minutes);
        });
    }
    return memo;
}

bool hasReminders(const EventMemo& memo) { return memo.least <= memo.most; }

// A stored next reminder speaks for itself, and where a series has no instance near the window, for
// the reminders before it, too.
bool isStoredNear(const calEvent& event, const EventMemo& memo, const Window& window) {
    const double stored = event.NextReminder.days();
    if (stored == 0.0) {
        return false;
    }
    const double ahead = std::max({0, event.RemindersMaxOffsetMin, memo.most}) * kMinute;
    return !isPlain(stored) ||
           (stored >= window.from.days() - kSlack && stored <= window.to.days() + ahead + kSlack);
}

bool isSingleSilent(const calEvent& event, const EventMemo& memo, const Window& window) {
    const double start = event.StartDateTime.days();
    return !hasReminders(memo) ||
           (isPlain(start) && (start - memo.most * kMinute > window.to.days() + kSlack ||
                               start - memo.least * kMinute < window.from.days() - kSlack));
}

// The earliest reminder of the series not before `from`, or a time before it.
double nextReminderOf(const calEvent& event, const EventMemo& memo, DateTime from) {
    double next = kNever;
    DateTime start = event.NextInstance(from.addMinutes(memo.least).addSeconds(-1));
    for (int i = 0; !start.isZero(); start = event.NextInstance(start), ++i) {
        const double earliest = start.addMinutes(-std::int64_t{memo.most}).days();
        if (earliest >= next) {
            break;
        }
        if (i == kMostOccurrences) {
            return std::min(next, earliest);
        }
        forEachReminder(event, [&](std::int32_t minutes) {
            const DateTime time = start.addMinutes(-std::int64_t{minutes});
            if (time >= from) {
                next = std::min(next, time.days());
            }
        });
    }
    return next;
}

bool holds(double from, double before, const Window& window) {
    return window.from.days() >= from && window.to.days() < before - kSlack;
}

}  // namespace

bool surelySilent(const calEvent& event, const Window& window) {
    const EventMemo& memo = memoOf(event);
    if (!isPlain(window) || isStoredNear(event, memo, window)) {
        return false;
    }
    if (event.RRULE.empty()) {
        return isSingleSilent(event, memo, window);
    }
    if (!hasReminders(memo)) {
        return true;
    }
    if (!holds(memo.noReminderFrom, memo.noReminderBefore, window)) {
        event.memo.noReminderFrom = window.from.days();
        event.memo.noReminderBefore = nextReminderOf(event, memo, window.from);
    }
    return holds(memo.noReminderFrom, memo.noReminderBefore, window);
}

bool surelyAbsent(const calEvent& event, const Window& window) {
    if (!isPlain(window)) {
        return false;
    }
    if (event.RRULE.empty()) {
        const double start = event.StartDateTime.days();
        return isPlain(start) &&
               (start > window.to.days() + kSlack || start < window.from.days() - kSlack);
    }
    if (event.IsException()) {
        return false;
    }
    const EventMemo& memo = memoOf(event);
    if (!holds(memo.noStartFrom, memo.noStartBefore, window)) {
        const DateTime next = event.NextInstance(window.from.addSeconds(-1));
        event.memo.noStartFrom = window.from.days();
        event.memo.noStartBefore = next.isZero() ? kNever : next.days();
    }
    return holds(memo.noStartFrom, memo.noStartBefore, window);
}

DateTime lastReminderOf(const calEvent& event) {
    const EventMemo& memo = memoOf(event);
    DateTime last = event.StartDateTime;
    // Added dates make a series, too: an event with them alone goes on after its start.
    if (!event.RRULE.empty() || event.IsRepeating()) {
        if (memo.last < 0) {
            event.memo.last = std::max(0.0, event.LastInstance().days());
        }
        last = DateTime(memo.last);
    }
    if (!(last > DateTime())) {
        return {};
    }
    return hasReminders(memo) ? last.addMinutes(-std::int64_t{memo.least}) : last;
}

}  // namespace vl
