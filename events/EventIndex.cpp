#include "EventIndex.h"

#include <algorithm>
#include <limits>

#include "PlaceIn.h"
#include "base/Text.h"
#include "events/Ledger.h"
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

/// `Minutes` of an event's latest and earliest reminder.
struct Limits {
    explicit Limits(const calEvent& event) {
        forEachReminder(event, [&](std::int32_t minutes) {
            least = std::min(least, minutes);
            most = std::max(most, minutes);
        });
    }
    bool any() const { return least <= most; }

    std::int32_t least = std::numeric_limits<std::int32_t>::max();
    std::int32_t most = std::numeric_limits<std::int32_t>::min();
};

// A stored next reminder speaks for itself, and where a series has no instance near the window, for
// the reminders before it, too.
double aheadOfStored(const calEvent& event, const Limits& limits) {
    return std::max({0, event.RemindersMaxOffsetMin, limits.most}) * kMinute;
}

bool touches(double from, double to, const Window& window) {
    return from <= window.to.days() + kSlack && to >= window.from.days() - kSlack;
}

// The earliest reminder of the series not before `from`, or a time before it.
double nextReminderOf(const calEvent& event, const Limits& limits, DateTime from) {
    double next = kNever;
    DateTime start = event.NextInstance(from.addMinutes(limits.least).addSeconds(-1));
    for (int i = 0; !start.isZero(); start = event.NextInstance(start), ++i) {
        const double earliest = start.addMinutes(-std::int64_t{limits.most}).days();
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

// Whether the window begins in what is quiet: then it is known what comes first, at `to`.
bool beginsInside(double from, double to, const Window& window) {
    return window.from.days() >= from && window.from.days() < to - kSlack;
}

bool isInside(double from, double to, const Window& window) {
    return window.from.days() >= from && window.to.days() < to - kSlack;
}

}  // namespace

// What the event has now; a series' quiet times wait for a window.
void EventIndex::findOut(std::size_t i) {
    const calEvent& event = *events_[i];
    State& state = states_[i];
    state.reminders = state.starts = Kind::Series;
    reminders_[i] = starts_[i] = {};
    if (!event.RRULE.empty()) {
        if (event.IsException()) {
            state.starts = Kind::Near;
        }
        return;
    }
    const Limits limits(event);
    const double start = event.StartDateTime.days();
    state.starts = isPlain(start) ? Kind::Single : Kind::Near;
    starts_[i] = {start, start};
    state.reminders = isPlain(start) || !limits.any() ? Kind::Single : Kind::Near;
    reminders_[i] = limits.any()
                        ? Stretch{start - limits.most * kMinute, start - limits.least * kMinute}
                        : Stretch{kNever, -kNever};
    const double stored = event.NextReminder.days();
    if (stored != 0.0) {
        state.reminders = isPlain(stored) ? state.reminders : Kind::Near;
        reminders_[i].from = std::min(reminders_[i].from, stored - aheadOfStored(event, limits));
        reminders_[i].to = std::max(reminders_[i].to, stored);
    }
}

bool EventIndex::mayRemind(std::size_t i, const Window& window) {
    if (events_[i] == nullptr) {
        return false;
    }
    if (states_[i].reminders == Kind::Unknown) {
        findOut(i);
    }
    switch (states_[i].reminders) {
        case Kind::Near:
            return true;
        case Kind::Single:
            return states_[i].left || !isPlain(window) ||
                   touches(reminders_[i].from, reminders_[i].to, window);
        default:
            return states_[i].left || !isPlain(window) ||
                   (!isInside(reminders_[i].from, reminders_[i].to, window) &&
                    (beginsInside(reminders_[i].from, reminders_[i].to, window) ||
                     seriesMayRemind(i, window)));
    }
}

bool EventIndex::seriesMayRemind(std::size_t i, const Window& window) {
    const calEvent& event = *events_[i];
    const Limits limits(event);
    const double from = window.from.days();
    double to = limits.any() ? nextReminderOf(event, limits, window.from) : kNever;
    const double stored = event.NextReminder.days();
    if (stored != 0.0) {
        const double earliest = stored - aheadOfStored(event, limits);
        if (!isPlain(stored) || touches(earliest, stored, window)) {
            return true;
        }
        if (stored > from) {
            to = std::min(to, earliest);
        }
    }
    reminders_[i] = {from, to};
    return !isInside(from, to, window);
}

bool EventIndex::mayStart(std::size_t i, const Window& window) {
    if (events_[i] == nullptr) {
        return false;
    }
    if (states_[i].starts == Kind::Unknown) {
        findOut(i);
    }
    switch (states_[i].starts) {
        case Kind::Near:
            return true;
        case Kind::Single:
            return !isPlain(window) || touches(starts_[i].from, starts_[i].to, window);
        default:
            return !isPlain(window) || (!isInside(starts_[i].from, starts_[i].to, window) &&
                                        (beginsInside(starts_[i].from, starts_[i].to, window) ||
                                         seriesMayStart(i, window)));
    }
}

bool EventIndex::seriesMayStart(std::size_t i, const Window& window) {
    const DateTime next = events_[i]->NextInstance(window.from.addSeconds(-1));
    starts_[i] = {window.from.days(), next.isZero() ? kNever : next.days()};
    return !isInside(starts_[i].from, starts_[i].to, window);
}

calEvent* EventIndex::firstWithId(std::string_view id) {
    ids_.resize(events_.size());
    const auto wanted = static_cast<std::uint32_t>(guidHash(id));
    for (std::size_t i = 0; i < events_.size(); ++i) {
        calEvent* event = events_[i];
        if (event != nullptr && ids_[i] == 0) {
            ids_[i] = static_cast<std::uint32_t>(guidHash(event->id));
        }
        if (event != nullptr && ids_[i] == wanted && text::equalsNoCase(event->id, id)) {
            return event;
        }
    }
    return nullptr;
}

void EventIndex::noteListed(std::size_t i) {
    if (!states_[i].listed) {
        states_[i].listed = true;
        left_.push_back(static_cast<std::uint32_t>(i));
    }
}

void EventIndex::noteLeft(std::size_t i, bool left) {
    states_[i].left = left;
    if (left) {
        noteListed(i);
    }
}

void EventIndex::look(std::string_view GUID) {
    const std::size_t position = collection_.Position(GUID);
    ++version_;
    if (position > 0) {
        const std::size_t i = position - 1;
        states_[i].reminders = states_[i].starts = Kind::Unknown;
        if (!ids_.empty()) {
            ids_[i] = 0;
        }
        noteLeft(i, true);
    }
}

void EventIndex::forgetQueries(const GenCollection& collection) {
    bring(collection);
    for (const std::uint32_t i : left_) {
        if (events_[i] != nullptr) {
            forgetQuery(*events_[i]);
        }
        states_[i].left = states_[i].listed = false;
    }
    left_ = {};
}

bool isForgotten(const calEvent& event) {
    return event.InstanceStart.isZero() && event.iRemMinutes == calEvent::kNoReminder &&
           event.iRemMinutesNext == calEvent::kNoReminder;
}

void forgetQuery(calEvent& event) {
    event.InstanceStart = DateTime();
    event.iRemMinutes = calEvent::kNoReminder;
    event.iRemMinutesNext = calEvent::kNoReminder;
    event.dReminder = DateTime();
}

DateTime lastReminderOf(const calEvent& event) {
    DateTime last = event.StartDateTime;
    // Added dates make a series, too: an event with them alone goes on after its start.
    if (!event.RRULE.empty() || event.IsRepeating()) {
        last = DateTime(std::max(0.0, event.LastInstance().days()));
    }
    if (!(last > DateTime())) {
        return {};
    }
    const Limits limits(event);
    return limits.any() ? last.addMinutes(-std::int64_t{limits.least}) : last;
}

}  // namespace vl
