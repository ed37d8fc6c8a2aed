#include "notify/Acts.h"

#include <algorithm>
#include <unordered_set>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr const char* kNextReminder = "NextReminder";
constexpr const char* kDismissed = "Dismissed";
constexpr const char* kHidden = "Hidden";
constexpr const char* kStatus = "status";
constexpr const char* kAllDone = "AllDone";

/// Who writes which column, and of which type it is.
struct Writer {
    const char* column;
    std::int64_t (calEvent::*save)(DBRemindUtils&) const;
    int type;
};
constexpr Writer kWriters[] = {
    {kNextReminder, &calEvent::SaveNextReminderDB, DBRemindUtils::kDateTime},
    {kDismissed, &calEvent::SaveDismissedDB, DBRemindUtils::kDateTime},
    {kHidden, &calEvent::SaveHiddenDB, DBRemindUtils::kYesNo},
    {kStatus, &calEvent::SaveStatusDB, DBRemindUtils::kText}};

std::shared_ptr<calEvent> heldBy(const std::shared_ptr<GenCollection>& set,
                                 const std::string& GUID) {
    return set && set->Exists(GUID) ? objectAt<calEvent>(*set, GUID) : nullptr;
}

// The statement named a column that the table has not (any more).
bool lacksColumn(const DBRemindUtils& db) {
    return db.LastError() == ErrNo::NotFound && fileExists(db.DBFullName);
}

// The row is written later: others hold the file, the disk does not answer or is not there.
bool passes(const DBRemindUtils& db) {
    const ErrNo error = db.LastError();
    return error == ErrNo::Locked || error == ErrNo::Io ||
           (error == ErrNo::NotFound && !fileExists(db.DBFullName));
}

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

const char* nameOf(DismissMode mode) {
    return mode == DismissMode::This          ? "this"
           : mode == DismissMode::AllButAfter ? "all but after"
                                              : "all";
}

// What was marked as done is the event's last occurrence; the host may have moved it since, or
// added others.
bool isStillDone(const calEvent& event, const EventState& state) {
    const DateTime last = event.IsRepeating() ? event.LastInstance() : event.StartDateTime;
    const OccurrenceState* one = state.find(event.ToWall(last));
    return one != nullptr && one->muted == Muted::ForEver;
}

// Whether that text is still to be written into the event's column.
bool isWanted(const calEvent& event, const EventState& state, std::string_view column) {
    const ColumnNote* note = state.note(column);
    return note != nullptr && note->waits(columnText(event, column)) &&
           (column != kStatus || note->after != kAllDone || isStillDone(event, state));
}

// Something of the event is still to come, beside the occurrence: it must go on being read.
bool anyLeft(const EventState* state, DateTime wallStart) {
    return state != nullptr &&
           std::any_of(state->occurrences.begin(), state->occurrences.end(),
                       [&](const OccurrenceState& one) {
                           return one.start != wallStart &&
                                  (!one.snoozed.isZero() || !one.listed.isZero());
                       });
}

}  // namespace

Acts::Acts(CalEvents& reminders, CalEvents& period, DBRemindUtils& db, const Clock& clock,
           Ledger& ledger, ReminderState& state)
    : reminders_(reminders),
      period_(period),
      db_(db),
      clock_(clock),
      ledger_(ledger),
      state_(state) {}

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
    return {event, start, clock_.now(), TimeZone::local()};
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

bool Acts::Snooze(const ActRow& row, std::int32_t minutes) {
    const ErrScope scope;
    if (minutes <= 0) {
        return false;
    }
    attempt([&] {
        const auto event = EventOf(row);
        calEvent wanted(*event);
        wanted.NextReminder = clock_.now().addMinutes(minutes);
        std::vector<std::string> columns{kNextReminder};
        bringBack(event, wanted, columns);
        const ActOn act = actOn(*event, row);
        apply(row, "snooze", wanted, columns,
              [&](EventState& state) { recordSnooze(state, act, wanted.NextReminder); });
    });
    LeaveNewList(row.event->GUID);
    return true;
}

void Acts::Dismiss(const ActRow& row, DismissMode mode, bool markDone) {
    const ErrScope scope;
    attempt([&] {
        const auto event = EventOf(row);
        const DateTime now = clock_.now();
        calEvent wanted(*event);
        wanted.Dismissed = now;
        std::vector<std::string> columns{kDismissed};
        const DateTime candidate = nextReminderAfter(*event, mode, now);
        if (now < candidate) {
            wanted.NextReminder = candidate;
            columns.emplace_back(kNextReminder);
        }
        // Only where nothing stands there: an old value stays.
        if (wanted.NextReminder.isZero() && event->IsRepeating()) {
            const DateTime next = firstReminderOfNext(*event);
            if (!next.isZero()) {
                wanted.NextReminder = next;
                columns.emplace_back(kNextReminder);
            }
        }
        const ActOn act = actOn(*event, row);
        // A row may still show a single event as it was before the host moved it.
        const bool isLast = event->IsRepeating() ? event->NextInstance(act.start).isZero()
                                                 : act.start == event->StartDateTime;
        if (markDone && isLast && !period_.IsReadInPart(event->GUID) &&
            !anyLeft(ledger_.find(db_.DBFullName, event->GUID), event->ToWall(act.start))) {
            wanted.status = kAllDone;
            columns.emplace_back(kStatus);
            // It is read no more, and still stands for an occurrence of its series.
            if (event->IsException() && !event->RExceptionStartTimeOrig.isZero()) {
                ledger_.keepReplaced(db_.DBFullName, event->recurringEventId,
                                     event->RExceptionStartTimeOrig);
            }
        }
        apply(row, markDone ? "done" : nameOf(mode), wanted, columns, [&](EventState& state) {
            recordDismiss(state, act, mode);
            if (markDone) {
                recordDone(state, act);
            }
        });
    });
    LeaveNewList(row.event->GUID);
}

void Acts::Reactivate(const ActRow& row) {
    const ErrScope scope;
    attempt([&] {
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
        calEvent wanted(*EventOf(row));
        wanted.Hidden = hidden;
        apply(row, hidden ? "hide" : "unhide", wanted, {kHidden}, [](EventState&) {});
    });
}

calEvent::Deletion Acts::DeleteItem(const ActRow& row) {
    const ErrScope scope;
    auto result = calEvent::Deletion::Failed;
    attempt([&] {
        const calEvent& event = *row.event;
        if (event.IsException() && !event.RExceptionStartTimeOrig.isZero()) {
            // No check may have seen it yet, and its row is the last that knows.
            ledger_.keepReplaced(db_.DBFullName, event.recurringEventId,
                                 event.RExceptionStartTimeOrig);
        }
        // Not acted upon: a deletion that fails leaves all as it was.
        ledger_.change(db_.DBFullName, event.GUID, "delete",
                       [](EventState& state) { state.deleting = true; });
        result = deleteNow(event);
        if (result == calEvent::Deletion::Waits) {
            enqueueDeletion(event);
            countWaiting();
        }
    });
    if (result != calEvent::Deletion::Failed) {
        leaveSets(row.event->GUID);
        LeaveNewList(row.event->GUID);
    }
    return result;
}

// The row goes when the host's item is gone: else the host would make it anew.
calEvent::Deletion Acts::deleteNow(const calEvent& event) {
    auto result = event.DeleteItem();
    if (result == calEvent::Deletion::Gone) {
        db_.DeleteDB(event.GUID);
        trouble_ = db_.LastErrorText();
        if (db_.LastError() != ErrNo::None) {
            result = passes(db_) ? calEvent::Deletion::Waits : calEvent::Deletion::Failed;
        }
    }
    if (result != calEvent::Deletion::Waits) {
        ledger_.change(db_.DBFullName, event.GUID, "deleted",
                       [](EventState& state) { state.deleting = false; });
    }
    return result;
}

// A host's file that is held by others is not tried for each of its items.
void Acts::deleteWaiting() {
    std::vector<std::string> held;
    std::erase_if(deletions_, [&](const Deletion& one) {
        if (std::find(held.begin(), held.end(), one.VLBase) != held.end()) {
            return false;
        }
        calEvent carrier;
        carrier.GUID = one.GUID;
        carrier.VLBase = one.VLBase;
        const bool waits = deleteNow(carrier) == calEvent::Deletion::Waits;
        if (waits) {
            held.push_back(one.VLBase);
        }
        return !waits;
    });
}

void Acts::enqueueDeletion(const calEvent& event) {
    const auto same = std::find_if(deletions_.begin(), deletions_.end(), [&](const Deletion& one) {
        return text::equalsNoCase(one.GUID, event.GUID);
    });
    if (same == deletions_.end()) {
        deletions_.push_back({event.GUID, event.VLBase});
    }
}

void Acts::countWaiting() { state_.waitingWrites = static_cast<int>(Waiting()); }

void Acts::leaveSets(const std::string& GUID) {
    for (CalEvents* set : {&period_, &reminders_}) {
        if (set->mCol) {
            set->mCol->Remove(GUID);
        }
    }
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
    };
    if (forget) {
        ledger_.forget(db_.DBFullName, event->GUID, name, change);
    } else {
        ledger_.change(db_.DBFullName, event->GUID, name, change);
    }
    for (const auto& object : objectsOf(row)) {
        for (const std::string& column : columns) {
            object->setProperty(column, wanted.property(column));
        }
    }
    noteChange(event->GUID);
    for (const std::string_view column : kStateColumns) {
        if (std::find(columns.begin(), columns.end(), column) != columns.end()) {
            enqueue({event->GUID, std::string(column), columnText(wanted, column)});
        }
    }
    WriteWaiting();
}

// Both columns by which the row speaks are noted with every act, so that it is silent after each.
void Acts::noteRow(EventState& state, const calEvent& before, const calEvent& wanted,
                   const std::vector<std::string>& columns) const {
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
            return write.column == column && text::equalsNoCase(write.GUID, before.GUID);
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

// A later act on the same column takes the place of the earlier, which nobody has seen.
void Acts::enqueue(Write write) {
    const auto same = std::find_if(waiting_.begin(), waiting_.end(), [&](const Write& other) {
        return other.column == write.column && text::equalsNoCase(other.GUID, write.GUID);
    });
    if (same != waiting_.end()) {
        same->text = write.text;
    } else {
        waiting_.push_back(std::move(write));
    }
}

bool Acts::write(const Write& write) {
    const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
    const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
    // Where another copy has acted since, its word is to stand there.
    const std::string& text = note != nullptr ? note->after : write.text;
    calEvent carrier;
    carrier.GUID = write.GUID;
    if (!attempt([&] { carrier.setProperty(write.column, Variant(text)); })) {
        return true;
    }
    for (const Writer& writer : kWriters) {
        if (write.column != writer.column) {
            continue;
        }
        (carrier.*writer.save)(db_);
        if (lacksColumn(db_) &&
            db_.AddField("Reminders", writer.column, writer.type) == ErrNo::None) {
            (carrier.*writer.save)(db_);
        }
    }
    trouble_ = db_.LastErrorText();
    return !passes(db_);
}

void Acts::WriteWaiting() {
    const ErrScope scope;
    attempt([&] {
        while (!waiting_.empty() && write(waiting_.front())) {
            waiting_.pop_front();
        }
    });
    attempt([&] { deleteWaiting(); });
    countWaiting();
}

void Acts::RestoreWaiting() {
    const ErrScope scope;
    // Another copy may have acted since on what still waits here.
    for (Write& write : waiting_) {
        const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
        const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
        if (note == nullptr || note->after == write.text) {
            continue;
        }
        for (const CalEvents* set : {&period_, &reminders_}) {
            const auto event = heldBy(set->mCol, write.GUID);
            if (event && columnText(*event, write.column) == write.text) {
                attempt([&] { event->setProperty(write.column, Variant(note->after)); });
            }
        }
        noteChange(write.GUID);
        write.text = note->after;
    }
    // Who has written something else meanwhile has the last word.
    std::erase_if(waiting_, [&](const Write& write) {
        const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
        for (const CalEvents* set : {&period_, &reminders_}) {
            const auto event = heldBy(set->mCol, write.GUID);
            const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
            if (event && note != nullptr && columnText(*event, write.column) != note->after &&
                !isWanted(*event, *known, write.column)) {
                return true;
            }
        }
        return false;
    });
    if (lookedAt_ != ledger_.version() && (reminders_.mCol || period_.mCol)) {
        attempt([&] { findLeftOver(); });
    }
    for (const Deletion& one : deletions_) {
        leaveSets(one.GUID);
    }
    for (const Write& write : waiting_) {
        for (const CalEvents* set : {&period_, &reminders_}) {
            if (const auto event = heldBy(set->mCol, write.GUID)) {
                attempt([&] { event->setProperty(write.column, Variant(write.text)); });
            }
        }
        noteChange(write.GUID);
    }
    countWaiting();
}

// What was noted and did not come to the row, by an earlier run, by another copy of the program or
// by a command. Of what was looked at only what has changed since is looked at again.
void Acts::findLeftOver() {
    std::optional<std::unordered_set<std::uint64_t>> changed;
    if (lookedAt_) {
        const auto hashes = ledger_.changedSince(*lookedAt_);
        changed.emplace(hashes.begin(), hashes.end());
    }
    lookedAt_ = ledger_.version();
    auto known = ledger_.all(db_.DBFullName);
    std::sort(known.begin(), known.end(),
              [](const auto& a, const auto& b) { return a.state.acted < b.state.acted; });
    for (const auto& one : known) {
        if (changed && !changed->contains(guidHash(one.GUID))) {
            continue;
        }
        auto event = heldBy(period_.mCol, one.GUID);
        event = event ? event : heldBy(reminders_.mCol, one.GUID);
        if (event && one.state.deleting) {
            enqueueDeletion(*event);
            continue;
        }
        for (const std::string_view name : kStateColumns) {
            if (event && isWanted(*event, one.state, name)) {
                enqueue({event->GUID, std::string(name), one.state.note(name)->after});
            }
        }
    }
}

}  // namespace vl
