// The set's two questions: which reminders fall due in a window, which events occur in a period.
#include <optional>
#include <utility>
#include <vector>

#include "AnswerMemo.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/CalEvents.h"
#include "events/DueRule.h"
#include "events/EventIndex.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

constexpr std::int32_t kNoReminder = calEvent::kNoReminder;
constexpr int kException = 3;

// The window in which an instance can have a reminder inside `window`: offsets count before the
// start, so both ends move by adding.
Window widened(const calEvent& event, Window window) {
    return {window.from.addMinutes(event.RemindersMinOffsetMin),
            window.to.addMinutes(event.RemindersMaxOffsetMin)};
}

std::vector<DateTime> instances(const calEvent& event, Window window) {
    if (event.RRULE.empty()) {
        return {event.StartDateTime};
    }
    return event.ICalRecEvents(window.from, window.to);
}

// Where a repeating event has no instance near the window, its stored next reminder speaks for the
// instance it was left with by the last query, `left`, or for itself.
std::vector<DateTime> instancesForReminders(const calEvent& event, Window window, DateTime left) {
    const Window around = widened(event, window);
    auto starts = instances(event, around);
    const Window stored{window.from, around.to};
    if (starts.empty() && !event.NextReminder.isZero() && stored.holds(event.NextReminder)) {
        starts.push_back(left.isZero() ? event.NextReminder : left);
    }
    return starts;
}

// The instance that a stored next reminder belongs to: the last one whose first reminder is not
// later than it.
DateTime instanceOfStored(const calEvent& event, const std::vector<DateTime>& starts) {
    if (event.RRULE.empty()) {
        return event.StartDateTime;
    }
    const DateTime latest = event.NextReminder.addMinutes(event.RemindersMaxOffsetMin);
    const DateTime start = event.PreviousInstance(latest.addSeconds(1));
    if (!start.isZero()) {
        return start;
    }
    return starts.empty() ? event.NextReminder : starts.front();
}

// Largest offset first: the earliest reminder of an instance is the one to record.
template <class Accept>
std::optional<Due> firstReminder(const calEvent& event, DateTime start, Accept&& accept) {
    if (!event.RemindersCol) {
        return std::nullopt;
    }
    for (std::size_t i = event.RemindersCol->Count(); i >= 1; --i) {
        const auto reminder = objectAt<clsReminder>(*event.RemindersCol, i);
        if (!reminder) {
            continue;
        }
        const DateTime time = start.addMinutes(-static_cast<std::int64_t>(reminder->Minutes));
        if (accept(time)) {
            const auto later = i > 1 ? objectAt<clsReminder>(*event.RemindersCol, i - 1) : nullptr;
            return Due{start, time, later ? later->Minutes : kNoReminder};
        }
    }
    return std::nullopt;
}

std::optional<Due> dueIn(const calEvent& event, Window window,
                         const std::vector<DateTime>& starts) {
    const DateTime stored = event.NextReminder;
    if (!stored.isZero() && window.holds(stored)) {
        const DateTime start = instanceOfStored(event, starts);
        const auto scheduled =
            firstReminder(event, start, [&](DateTime time) { return time == stored; });
        return scheduled ? scheduled : Due{start, stored, kNoReminder};
    }
    for (const DateTime start : starts) {
        if (const auto due =
                firstReminder(event, start, [&](DateTime time) { return window.holds(time); })) {
            return due;
        }
    }
    return std::nullopt;
}

// A cancelled occurrence of a series: it has none of its own, and the series does not take place
// then either.
bool isCancelled(const calEvent& event) { return event.ISRecurrenceExceptionDeleted != 0; }

/// The events a query found. A changed occurrence among them stands in the place of its series.
class Answer {
public:
    void take(const std::shared_ptr<calEvent>& event) { found_->Add(Variant(event), event->GUID); }

    /// Notes an event that is in the asked-for time, if it replaces an occurrence of a series.
    void noteException(const std::shared_ptr<calEvent>& event) {
        if (event->RecurrenceState == kException && !event->recurringEventId.empty()) {
            exceptions_.push_back(event);
        }
    }

    /// The events without the series that are replaced. Of an id that stands twice the first is
    /// the series, as where the database is asked for it (`EventByID`).
    std::shared_ptr<GenCollection> finish(EventIndex& index) {
        for (const auto& exception : exceptions_) {
            if (const calEvent* master = index.firstWithId(exception->recurringEventId)) {
                found_->Remove(master->GUID);
            }
        }
        return found_;
    }

private:
    std::shared_ptr<GenCollection> found_ = std::make_shared<GenCollection>();
    std::vector<std::shared_ptr<calEvent>> exceptions_;
};

}  // namespace

std::shared_ptr<GenCollection> CalEvents::RemindCol(DateTime FromTime, DateTime ToTime,
                                                    bool bPending, DateTime since) {
    const ErrScope scope;
    if (bPending) {
        return pendingCol(FromTime, ToTime, since);
    }
    separate();
    const Window window{FromTime, ToTime};
    const GenCollection held = mCol ? *mCol : GenCollection();
    Answer answer;
    const auto look = [&](calEvent& event, std::size_t i) {
        const DateTime left = event.InstanceStart;
        forgetQuery(event);
        const auto starts = instancesForReminders(event, window, left);
        if (const auto due = dueIn(event, window, starts)) {
            const auto found = objectAt<calEvent>(held, i + 1);
            if (!isCancelled(event)) {
                recordDue(event, *due);
                answer.take(found);
            }
            answer.noteException(found);
        }
    };
    index_->bring(held);
    const bool clean = index_->left().empty();
    remindedNow_ = 0;
    if (auto known = clean ? reminded_->recall(*index_, window, 0) : nullptr) {
        remindedNow_ = reminded_->id();
        return known;
    }
    for (std::size_t i = 0; i < index_->events().size(); ++i) {
        // Each event is a step of its own: one that fails does not keep the others from being
        // found.
        attempt([&] {
            if (index_->mayRemind(i, window)) {
                calEvent& event = *index_->events()[i];
                look(event, i);
                index_->noteLeft(i, !isForgotten(event));
            }
        });
    }
    auto found = answer.finish(*index_);
    if (clean) {
        reminded_->keep(*index_, window, 0, *found);
        remindedNow_ = reminded_->id();
    }
    return found;
}

std::shared_ptr<GenCollection> CalEvents::EventCol(DateTime FromDate, DateTime ToDate) {
    const ErrScope scope;
    separate();
    const Window period{FromDate, ToDate};
    const GenCollection held = mCol ? *mCol : GenCollection();
    Answer answer;
    const auto look = [&](const std::shared_ptr<calEvent>& event) {
        if (period.holds(event->StartDateTime)) {
            answer.noteException(event);
        }
        if (isCancelled(*event)) {
            return;
        }
        for (const DateTime start : instances(*event, period)) {
            if (period.holds(start)) {
                if (event->InstanceStart.isZero() || start < event->InstanceStart) {
                    event->InstanceStart = start;
                }
                answer.take(event);
            }
        }
    };
    index_->bring(held);
    const std::uint64_t before = std::exchange(remindedNow_, 0);
    if (auto known = before != 0 ? started_->recall(*index_, period, before) : nullptr) {
        return known;
    }
    for (std::size_t i = 0; i < index_->events().size(); ++i) {
        attempt([&] {
            if (index_->mayStart(i, period)) {
                index_->noteLeft(i, true);
                look(objectAt<calEvent>(held, i + 1));
            }
        });
    }
    auto found = answer.finish(*index_);
    if (before != 0) {
        started_->keep(*index_, period, before, *found);
    }
    return found;
}

}  // namespace vl
