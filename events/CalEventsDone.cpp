// Events whose reminders are all past.
#include <algorithm>
#include <span>
#include <vector>

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

std::string allDoneStatement(std::span<const std::string> GUIDs) {
    std::string list;
    for (const std::string& GUID : GUIDs) {
        list += (list.empty() ? "\"" : ", \"") + text::replaceAll(GUID, "\"", "\"\"") + "\"";
    }
    return "UPDATE Reminders SET status = \"" + std::string(kAllDone) + "\" WHERE (GUID IN (" +
           list + "));";
}

// The first start on a long calendar finds thousands of them: a statement for each, with its
// waiting for the disk or for others, would take minutes. What cannot be written now is found
// again at the next start.
void writeAllDone(DBRemindUtils& db, std::span<const std::string> GUIDs) {
    constexpr std::size_t kAtOnce = 500;  // so many keys are looked up, more make a scan
    while (!GUIDs.empty()) {
        const auto some = GUIDs.first(std::min(kAtOnce, GUIDs.size()));
        db.Execute(allDoneStatement(some));
        if (db.LastError() != ErrNo::None) {
            return;
        }
        GUIDs = GUIDs.subspan(some.size());
    }
}

}  // namespace

void CalEvents::UpdateAllDone(EventHistory* history) {
    const ErrScope scope;
    const DateTime now = clock_.now();
    const GenCollection held = mCol ? *mCol : GenCollection();
    std::vector<std::string> GUIDs;
    std::vector<EventHistory::Replaced> replaced;
    for (const auto& [event, position] : held_.of(held)) {
        attempt([&, e = event] {
            if (!isAllDone(*e) && isFinished(*e, now, history)) {
                e->status = kAllDone;
                if (!e->GUID.empty()) {
                    GUIDs.push_back(e->GUID);
                }
                // It is read no more, and still stands for an occurrence of its series.
                if (e->IsException() && !e->RExceptionStartTimeOrig.isZero()) {
                    replaced.push_back({e->recurringEventId, e->RExceptionStartTimeOrig});
                }
            }
        });
    }
    if (history != nullptr) {
        history->keepReplaced(replaced);
    }
    writeAllDone(db_, GUIDs);
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
