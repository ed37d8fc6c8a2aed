// What a dismissal writes, and whether it ends its event.
#include "ActParts.h"
#include "base/ErrorState.h"
#include "notify/Acts.h"

namespace vl {

namespace {

DateTime firstReminderOfNext(const calEvent& event) {
    const DateTime next = event.NextInstance(event.InstanceStart);
    return next > event.InstanceStart ? next.addMinutes(event.FirstReminder()) : DateTime();
}

DateTime nextReminderAfter(const calEvent& event, DismissMode mode, DateTime now) {
    switch (mode) {
        case DismissMode::This:
            return event.NextReminderD(now);
        case DismissMode::AllButAfter:
            return event.FirstReminderAfterEventStart();
        case DismissMode::All:
            break;
    }
    return {};
}

// In the row; the columns that are written.
std::vector<std::string> dismissIn(calEvent& wanted, const calEvent& event, DismissMode mode,
                                   DateTime now) {
    wanted.Dismissed = now;
    std::vector<std::string> columns{kDismissed};
    const auto setNext = [&](DateTime next) {
        wanted.NextReminder = next;
        columns.emplace_back(kNextReminder);
    };
    const DateTime candidate = nextReminderAfter(event, mode, now);
    if (now < candidate) {
        setNext(candidate);
    }
    // Only where nothing stands there: an old value stays.
    if (wanted.NextReminder.isZero() && event.IsRepeating()) {
        const DateTime next = firstReminderOfNext(event);
        if (!next.isZero()) {
            setNext(next);
        }
    }
    return columns;
}

const char* nameOf(DismissMode mode) {
    return mode == DismissMode::This          ? "this"
           : mode == DismissMode::AllButAfter ? "all but after"
                                              : "all";
}

}  // namespace

// Nothing of the event is to come after the occurrence. A row may still show it as it was before
// the host moved it, and the host may have moved it in this moment.
bool Acts::isLast(const calEvent& event, DateTime start) {
    const auto now = rowOf(event.GUID);
    const bool isThere = now && !now->StartDateTime.isZero();
    if (isThere && now->StartDateTime != event.StartDateTime) {
        return false;
    }
    const calEvent& current = isThere ? *now : event;
    return current.IsRepeating() ? current.NextInstance(start).isZero()
                                 : start == current.StartDateTime;
}

// Once the occurrence is done, nothing of its event is left.
bool Acts::endsWith(const ActOn& act) {
    const std::string& GUID = act.event.GUID;
    return isLast(act.event, act.start) && !period_.IsReadInPart(GUID) &&
           !anyLeftWhenDone(ledger_.find(db_.DBFullName, GUID), act);
}

// Who asks later whether the series is still done may not know its exceptions.
void Acts::keepReplacedOf(const calEvent& series) {
    Ledger::Replaced replaced{{series.id, series.VLBase}, {}};
    for (const DateTime start : reminders_.Replaced(series)) {
        replaced.starts.push_back(notedNow(start));
    }
    if (!replaced.starts.empty()) {
        ledger_.keepReplaced(db_.DBFullName, std::vector{std::move(replaced)});
    }
}

void Acts::Dismiss(const ActRow& shown, DismissMode mode, bool markDone) {
    const ErrScope scope;
    attempt([&] {
        takeActsOfOthers(shown);
        const ActRow row = ofItsSnooze(shown);
        const auto event = EventOf(row);
        calEvent wanted(*event);
        std::vector<std::string> columns = dismissIn(wanted, *event, mode, clock_.now());
        const ActOn act = actOn(*event, row);
        if (markDone && endsWith(act)) {
            wanted.status = kAllDone;
            columns.emplace_back(kStatus);
            keepReplacedOf(*event);
        }
        // Its row may go, or be read no more: what it stands for in its series is dealt with.
        if (event->IsException() && !event->RExceptionStartTimeOrig.isZero()) {
            ledger_.keepReplaced(db_.DBFullName, seriesOf(*event), event->RExceptionStartTimeOrig);
        }
        apply(row, markDone ? "done" : nameOf(mode), wanted, columns, [&](EventState& state) {
            recordDismiss(state, act, mode);
            if (markDone) {
                recordDone(state, act);
            }
        });
    });
    LeaveNewList(shown.event->GUID);
}

}  // namespace vl
