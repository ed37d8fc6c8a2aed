// Events whose reminders are all past.
#include "EventQuiet.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/CalEvents.h"
#include "events/EventHistory.h"

namespace vl {

namespace {

constexpr std::string_view kAllDone = "AllDone";

bool isAllDone(const calEvent& event) { return text::equalsNoCase(event.status, kAllDone); }

// As long as the start that it stands for is ahead, an exception keeps its series from ringing.
bool replacesWhatIsAhead(const calEvent& event, DateTime now) {
    return event.IsException() && event.RExceptionStartTimeOrig > now;
}

// Where nobody keeps a history the row speaks: a next reminder later than the dismissal is a
// snooze that has not been acted upon.
bool isOpen(const calEvent& event, DateTime lastReminder, const EventHistory* history) {
    if (history != nullptr) {
        return history->isOpen(event, lastReminder);
    }
    return event.NextReminder > event.Dismissed;
}

bool isFinished(const calEvent& event, DateTime now, const EventHistory* history) {
    const DateTime last = lastReminderOf(event);
    return last > DateTime() && last < now.addDays(-1) && !replacesWhatIsAhead(event, now) &&
           !isOpen(event, last, history);
}

}  // namespace

void CalEvents::UpdateAllDone(const EventHistory* history) {
    const ErrScope scope;
    const DateTime now = clock_.now();
    const GenCollection held = mCol ? *mCol : GenCollection();
    for (const auto& [event, position] : held_.of(held)) {
        attempt([&, e = event] {
            if (!isAllDone(*e) && isFinished(*e, now, history)) {
                e->status = kAllDone;
                e->SaveStatusDB(db_);
            }
        });
    }
}

void CalEvents::RemoveAllDone() {
    const ErrScope scope;
    if (!mCol) {
        return;
    }
    const auto& held = held_.of(*mCol);
    for (std::size_t i = held.size(); i > 0; --i) {
        if (isAllDone(*held[i - 1].event)) {
            mCol->Remove(held[i - 1].position);
        }
    }
}

void CalEvents::RemoveAllDoneOf(const CalEvents& other) {
    const ErrScope scope;
    if (!mCol || !other.mCol) {
        return;
    }
    for (const auto& [event, position] : other.held_.of(*other.mCol)) {
        if (isAllDone(*event)) {
            mCol->Remove(event->GUID);
        }
    }
}

void CalEvents::RemoveAllDoneStatus() {
    db_.Execute(
        "UPDATE Reminders SET Reminders.status = \"\" WHERE (((Reminders.status)=\"AllDone\"));");
}

}  // namespace vl
