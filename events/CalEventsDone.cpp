// Finished events: all their reminders are past and dealt with.
#include "DueBook.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/CalEvents.h"

namespace vl {

namespace {

constexpr const char* kAllDone = "AllDone";

bool isDone(const calEvent& event) { return text::equalsNoCase(event.status, kAllDone); }

// Added dates make a series, too, where there is no rule.
DateTime lastOccurrence(const calEvent& event) {
    const bool series = !event.RRULE.empty() || event.IsRepeating();
    return series ? event.LastInstance() : event.StartDateTime;
}

}  // namespace

bool CalEvents::isFinished(const calEvent& event, DateTime uncheckedSince,
                           const TimeZone& zone) const {
    const DateTime last = lastOccurrence(event);
    if (last <= DateTime()) {
        return false;
    }
    const DateTime lastReminder = last.addMinutes(event.LastReminder());
    const DateTime now = clock_.now();
    if (lastReminder >= now.addDays(-1) ||
        (!uncheckedSince.isZero() && lastReminder >= uncheckedSince) ||
        (event.IsException() && event.RExceptionStartTimeOrig >= now)) {
        return false;
    }
    const EventState* state = ledger_->find(db_.DBFullName, event.GUID);
    return !hasOpenReminder(event, {state, book_->replaced(event), zone});
}

void CalEvents::UpdateAllDone(DateTime uncheckedSince) {
    const ErrScope scope;
    const TimeZone zone = TimeZone::local();
    bool writable = true;
    for (const Variant& item : mCol ? *mCol : GenCollection()) {
        const auto event = objectIn<calEvent>(item);
        attempt([&] {
            if (event && !isDone(*event) && isFinished(*event, uncheckedSince, zone)) {
                event->status = kAllDone;
                if (writable) {
                    event->SaveStatusDB(db_);
                    // A file that takes no write takes none of the others either: the next day
                    // tries again.
                    writable = db_.LastError() == ErrNo::None;
                }
            }
        });
    }
}

void CalEvents::RemoveAllDone() {
    const ErrScope scope;
    for (const Variant& item : mCol ? *mCol : GenCollection()) {
        const auto event = objectIn<calEvent>(item);
        if (event && isDone(*event)) {
            mCol->Remove(event->GUID);
        }
    }
}

void CalEvents::RemoveAllDoneStatus() {
    const ErrScope scope;
    db_.Execute(
        "UPDATE Reminders SET Reminders.status = \"\" WHERE (((Reminders.status)=\"AllDone\"));");
}

}  // namespace vl
