#include "notify/Acts.h"

#include <algorithm>

#include "ActParts.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

Acts::Acts(CalEvents& reminders, CalEvents& period, DBRemindUtils& db, const Clock& clock,
           Ledger& ledger, ReminderState& state)
    : reminders_(reminders),
      period_(period),
      db_(db),
      clock_(clock),
      ledger_(ledger),
      state_(state) {}

Acts::Together::Together(Acts& acts) : acts_(acts) {
    ledger_.emplace(acts_.ledger_);
    acts_.isHeld_ = acts_.isHeld_ && acts_.together_ > 0;
    ++acts_.together_;
}

// The ledger first, as with each act alone.
Acts::Together::~Together() {
    ledger_.reset();
    if (--acts_.together_ == 0) {
        acts_.WriteWaiting();
    }
}

Acts::Objects Acts::objectsOf(const ActRow& row) const {
    const std::string& GUID = row.event->GUID;
    Objects objects;
    const auto add = [&](const std::shared_ptr<calEvent>& event) {
        if (event && std::find(objects.begin(), objects.end(), event) == objects.end()) {
            objects.push_back(event);
        }
    };
    add(heldBy(period_.mCol, GUID));
    add(heldBy(reminders_.mCol, GUID));
    add(row.event);
    add(heldBy(state_.NewReminders, GUID));
    if (state_.curEvent && text::equalsNoCase(state_.curEvent->GUID, GUID)) {
        add(state_.curEvent);
    }
    return objects;
}

std::shared_ptr<calEvent> Acts::EventOf(const ActRow& row) {
    const ErrScope scope;
    const Objects objects = objectsOf(row);
    for (const auto& event : objects) {
        event->InstanceStart = row.InstanceStart;
        event->dReminder = row.reminder;
        event->iRemMinutes =
            row.reminder.isZero()
                ? calEvent::kNoReminder
                : static_cast<std::int32_t>(minutesBetween(row.reminder, row.InstanceStart));
    }
    noteChange(row.event->GUID);
    return objects.front();
}

void Acts::noteChange(const std::string& GUID) {
    for (CalEvents* set : {&period_, &reminders_}) {
        set->LookAgain(GUID);
    }
}

ActOn Acts::actOn(const calEvent& event, const ActRow& row) const {
    const DateTime start = row.InstanceStart.isZero() ? event.StartDateTime : row.InstanceStart;
    return {event,       start, clock_.now(), TimeZone::local(), reminders_.Replaced(event),
            row.reminder};
}

// A view has put a snooze to an occurrence by the columns of the row alone. Which one was snoozed
// the ledger knows.
ActRow Acts::ofItsSnooze(const ActRow& row) const {
    const calEvent& event = *row.event;
    const EventState* known = ledger_.find(db_.DBFullName, event.GUID);
    if (known == nullptr || row.reminder.isZero() || !event.IsRepeating() ||
        isScheduled(event, row.InstanceStart, row.reminder)) {
        return row;
    }
    const DateTime moment = TimeZone::local().toUtc(row.reminder);
    const OccurrenceState* own = known->find(event.ToWall(row.InstanceStart));
    const auto snoozed =
        std::find_if(known->occurrences.begin(), known->occurrences.end(),
                     [&](const OccurrenceState& one) { return one.snoozed == moment; });
    ActRow found = row;
    if ((own == nullptr || own->snoozed != moment) && snoozed != known->occurrences.end()) {
        found.InstanceStart = event.FromWall(snoozed->start);
    }
    return found;
}

// An event that is to be shown again is not all done, though a view may still have it from before,
// and the checks have it no more.
void Acts::bringBack(const std::shared_ptr<calEvent>& event, calEvent& wanted,
                     std::vector<std::string>& columns) {
    if (text::equalsNoCase(event->status, kAllDone)) {
        wanted.status.clear();
        columns.emplace_back(kStatus);
        reminders_.Add(event, event->GUID);
    }
}

bool Acts::Snooze(const ActRow& shown, std::int32_t minutes) {
    const ErrScope scope;
    if (minutes <= 0) {
        return false;
    }
    attempt([&] {
        takeActsOfOthers(shown);
        const ActRow row = ofItsSnooze(shown);
        const auto event = EventOf(row);
        calEvent wanted(*event);
        wanted.NextReminder = clock_.now().addMinutes(minutes);
        std::vector<std::string> columns{kNextReminder};
        bringBack(event, wanted, columns);
        const ActOn act = actOn(*event, row);
        apply(row, "snooze", wanted, columns,
              [&](EventState& state) { recordSnooze(state, act, wanted.NextReminder); });
    });
    LeaveNewList(shown.event->GUID);
    return true;
}

void Acts::Reactivate(const ActRow& row) {
    const ErrScope scope;
    attempt([&] {
        takeActsOfOthers(row);
        const auto event = EventOf(row);
        calEvent wanted(*event);
        wanted.NextReminder = DateTime();
        wanted.Dismissed = DateTime();
        std::vector<std::string> columns{kNextReminder, kDismissed};
        bringBack(event, wanted, columns);
        const DateTime now = clock_.now();
        const auto meetAgain = [&](EventState& state) {
            state.acted = now;
            state.newlyMet = true;
        };
        apply(row, "reactivate", wanted, columns, meetAgain, true);
    });
}

void Acts::Hide(const ActRow& row, bool hidden) {
    const ErrScope scope;
    attempt([&] {
        takeActsOfOthers(row);
        calEvent wanted(*EventOf(row));
        wanted.Hidden = hidden;
        // Without a time the ledger would take it for one of long ago, and drop it at a restart.
        const DateTime now = clock_.now();
        apply(row, hidden ? "hide" : "unhide", wanted, {kHidden},
              [&](EventState& state) { state.acted = now; });
    });
}

void Acts::LeaveNewList(std::string_view GUID) {
    const ErrScope scope;
    for (GenCollection* list : {state_.NewReminders.get(), state_.LastEventsReminded.get()}) {
        list->Remove(GUID);
    }
}

// The ledger first: from the moment it stands there, the row follows, now or later.
void Acts::apply(const ActRow& row, const char* name, const calEvent& wanted,
                 const std::vector<std::string>& columns,
                 const std::function<void(EventState&)>& edit, bool forget) {
    const auto event = EventOf(row);
    const auto change = [&](EventState& state) {
        edit(state);
        noteRow(state, *event, wanted, columns);
        closeOpen(state, actOn(*event, row));
    };
    if (forget) {
        ledger_.forget(db_.DBFullName, event->GUID, name, change);
    } else {
        ledger_.change(db_.DBFullName, event->GUID, name, change);
    }
    const Objects objects = objectsOf(row);
    for (const std::string& column : columns) {
        setIn(objects, column, wanted.property(column));
    }
    noteChange(event->GUID);
    for (const std::string_view column : kStateColumns) {
        if (std::find(columns.begin(), columns.end(), column) != columns.end()) {
            enqueue(event->GUID, column, columnText(wanted, column));
        }
    }
    WriteWaiting();
}

// Both columns by which the row speaks are noted with every act, so that it is silent after each.
void Acts::noteRow(EventState& state, const calEvent& before, const calEvent& wanted,
                   const std::vector<std::string>& columns) const {
    const std::uint64_t hash = guidHash(before.GUID);
    const bool hideOnly = columns.size() == 1 && columns.front() == kHidden;
    for (const std::string_view name : kStateColumns) {
        const std::string column(name);
        const bool speaks = column == kNextReminder || column == kDismissed;
        const bool written = std::find(columns.begin(), columns.end(), column) != columns.end();
        if (!written && (!speaks || hideOnly)) {
            continue;
        }
        ColumnNote& note = state.row[column];
        const std::string text = columnText(before, column);
        const bool waits = std::any_of(waiting_.begin(), waiting_.end(), [&](const Write& write) {
            return write.isOf(column, before.GUID, hash);
        });
        if (!waits) {
            note.before.clear();
        } else if (note.after != text) {
            note.before.push_back(note.after);
        }
        if (std::find(note.before.begin(), note.before.end(), text) == note.before.end()) {
            note.before.push_back(text);
        }
        note.after = columnText(wanted, column);
    }
}

}  // namespace vl
