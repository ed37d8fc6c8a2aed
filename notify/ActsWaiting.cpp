// What acts write into rows: now, or when the file can be written again.
#include <algorithm>

#include "ActParts.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Acts.h"
#include "notify/ReadAgain.h"

namespace vl {

namespace {

/// Who writes which column, and of which type it is.
struct Writer {
    const char* column;
    std::int64_t (calEvent::*save)(DBRemindUtils&, std::span<const std::string>) const;
    int type;
};
constexpr Writer kWriters[] = {
    {kNextReminder, &calEvent::SaveNextReminderDB, DBRemindUtils::kDateTime},
    {kDismissed, &calEvent::SaveDismissedDB, DBRemindUtils::kDateTime},
    {kHidden, &calEvent::SaveHiddenDB, DBRemindUtils::kYesNo},
    {kStatus, &calEvent::SaveStatusDB, DBRemindUtils::kText}};

// The statement named a column that the table has not (any more).
bool lacksColumn(const DBRemindUtils& db) {
    return db.LastError() == ErrNo::NotFound && fileExists(db.DBFullName);
}

}  // namespace

void Acts::countWaiting() { state_.waitingWrites = static_cast<int>(Waiting()); }

// Whoever shows the event again, or hides it: the views ask the list.
void Acts::setIn(const Objects& objects, std::string_view column, const Variant& value) {
    for (const auto& object : objects) {
        attempt([&] { object->setProperty(column, value); });
    }
    if (column == kHidden && !objects.empty()) {
        const calEvent& event = *objects.front();
        if (!event.Hidden) {
            state_.HiddenGUIDColR->Remove(event.GUID);
        } else {
            state_.HiddenGUIDColR->Add(event.GUID.str(), event.GUID);
        }
    }
}

Acts::Objects Acts::heldObjects(const std::string& GUID) const {
    Objects objects;
    for (const CalEvents* set : {&period_, &reminders_}) {
        if (auto event = heldBy(set->mCol, GUID)) {
            objects.push_back(std::move(event));
        }
    }
    return objects;
}

void Acts::leaveSets(const std::string& GUID) {
    for (CalEvents* set : {&period_, &reminders_}) {
        if (set->mCol) {
            set->mCol->Remove(GUID);
        }
    }
}

bool Acts::Write::isOf(std::string_view otherColumn, std::string_view otherGUID,
                       std::uint64_t otherHash) const {
    return hash == otherHash && column == otherColumn && text::equalsNoCase(GUID, otherGUID);
}

// Another copy may have acted on the event since its row was read: what that has noted stands
// there by now, or will.
void Acts::takeActsOfOthers(const ActRow& row) {
    isHeld_ = isHeld_ && together_ > 0;
    ledger_.ReadAgain();
    const std::string& GUID = row.event->GUID;
    const EventState* known = ledger_.find(db_.DBFullName, GUID);
    if (known == nullptr || known->row.empty()) {
        return;
    }
    const Objects objects = objectsOf(row);
    const auto changed = ledger_.actedByOthersSince(lookedAt_.value_or(0));
    if (std::find(changed.begin(), changed.end(), guidHash(GUID)) != changed.end()) {
        lookAtRow(*known, objects);
    }
    for (const std::string_view column : kStateColumns) {
        if (isWantedNow(*objects.front(), *known, column)) {
            const std::string& text = known->note(column)->after;
            setIn(objects, column, Variant(text));
            enqueue(GUID, column, text);
            hadToWait_ = true;
        }
    }
}

// As it is in the file; null where there is none, or nobody can read it now. Each would wait for
// whoever has the file: after one that did in vain the others are not tried.
std::shared_ptr<calEvent> Acts::rowOf(const std::string& GUID) {
    if (isHeld_) {
        return nullptr;
    }
    auto row = period_.EventByGUID(GUID);
    isHeld_ = !row && passes(db_);
    return row;
}

// Since it was read the row may have been written by several acts of another copy, or by another
// program after one: only the row can tell. Where nobody can read it, what was noted is likelier
// than what is held, and perhaps waits.
void Acts::lookAtRow(const EventState& known, const Objects& objects) {
    const std::string& GUID = objects.front()->GUID;
    const auto row = rowOf(GUID);
    for (const std::string_view column : kStateColumns) {
        const ColumnNote* note = known.note(column);
        if (row) {
            setIn(objects, column, row->property(column));
        } else if (note != nullptr &&
                   (note->after != kAllDone || isStillDone(*objects.front(), known))) {
            setIn(objects, column, Variant(note->after));
            enqueue(GUID, column, note->after);
            hadToWait_ = true;
        }
    }
    noteChange(GUID);
}

// A later act on the same column takes the place of the earlier, which nobody has seen.
void Acts::enqueue(const std::string& GUID, std::string_view column, const std::string& text) {
    const std::uint64_t hash = guidHash(GUID);
    const auto same = std::find_if(waiting_.begin(), waiting_.end(), [&](const Write& other) {
        return other.isOf(column, GUID, hash);
    });
    if (same != waiting_.end()) {
        same->text = text;
    } else {
        waiting_.push_back({GUID, std::string(column), text, hash});
    }
}

// Where another copy has acted since, its word is to stand there.
const std::string& Acts::wantedText(const Write& write) const {
    const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
    const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
    return note != nullptr ? note->after : write.text;
}

// False when it has to wait. `alike` are the rows that get the same; the first is among them.
bool Acts::write(const Write& first, std::span<const std::string> alike) {
    calEvent carrier;
    carrier.GUID = first.GUID;
    if (!attempt([&] { carrier.setProperty(first.column, Variant(wantedText(first))); })) {
        return true;
    }
    for (const Writer& writer : kWriters) {
        if (first.column != writer.column) {
            continue;
        }
        (carrier.*writer.save)(db_, alike);
        if (lacksColumn(db_) &&
            db_.AddField("Reminders", writer.column, writer.type) == ErrNo::None) {
            (carrier.*writer.save)(db_, alike);
        }
    }
    trouble_ = db_.LastErrorText();
    return !passes(db_);
}

// The first that waits, and with it those that get the same value: many rows dismissed at once
// would each wait for the disk. A statement that fails for one of them takes none with it.
bool Acts::writeNext() {
    const Write first = waiting_.front();
    const auto isAlike = [&, text = wantedText(first)](const Write& one) {
        return one.column == first.column && !one.GUID.empty() && wantedText(one) == text;
    };
    std::vector<std::string> GUIDs;
    for (const Write& one : waiting_) {
        if (GUIDs.size() < DBRemindUtils::kKeysAtOnce && isAlike(one)) {
            GUIDs.push_back(one.GUID);
        }
    }
    if (GUIDs.size() > 1) {
        if (!write(first, GUIDs)) {
            return false;
        }
        if (db_.LastError() == ErrNo::None) {
            std::size_t left = GUIDs.size();  // in the order in which they were collected
            std::erase_if(waiting_,
                          [&](const Write& one) { return left > 0 && isAlike(one) && left-- > 0; });
            return true;
        }
    }
    if (!write(first, {})) {
        return false;
    }
    waiting_.pop_front();
    return true;
}

// Another program may have written a row meanwhile, which leaves its stamp as it is: the question
// for what has changed would pass it over. False where nobody can read for now: nor can anybody
// write then.
bool Acts::lookAgain() {
    if (readAgain(period_, true, false)) {
        reminders_.Adopt(period_);
        RestoreWaiting();
        return true;
    }
    trouble_ = db_.LastErrorText();
    return !passes(db_);
}

void Acts::WriteWaiting() {
    const ErrScope scope;
    if (together_ > 0) {
        return;
    }
    if (!hadToWait_ || waiting_.empty() || lookAgain()) {
        attempt([&] {
            while (!waiting_.empty() && writeNext()) {
            }
        });
    }
    hadToWait_ = !waiting_.empty();
    attempt([&] { deleteWaiting(); });
    countWaiting();
    attempt([&] { noteWaiting(); });
}

// A row may have to wait for longer than the ledger keeps what was dealt with.
void Acts::noteWaiting() {
    if (waiting_.empty() && notedWaiting_.empty()) {
        return;
    }
    std::vector<Ledger::Change> changes;
    const auto note = [&](const std::string& GUID, bool waits) {
        const EventState* known = ledger_.find(db_.DBFullName, GUID);
        if (known != nullptr && known->waits != waits) {
            changes.push_back({GUID, [waits](EventState& state) { state.waits = waits; }});
        }
    };
    std::unordered_set<std::string> waiting;
    for (const Write& write : waiting_) {
        if (waiting.insert(write.GUID).second) {
            note(write.GUID, true);
        }
    }
    for (const std::string& GUID : notedWaiting_) {
        if (!waiting.contains(GUID)) {
            note(GUID, false);
        }
    }
    notedWaiting_ = std::move(waiting);
    if (!changes.empty()) {
        ledger_.change(db_.DBFullName, "waits", changes);
    }
}

void Acts::RestoreWaiting() {
    const ErrScope scope;
    isHeld_ = false;
    // Another copy may have acted since on what still waits here.
    for (Write& write : waiting_) {
        const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
        const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
        if (note == nullptr || note->after == write.text) {
            continue;
        }
        Objects objects = heldObjects(write.GUID);
        std::erase_if(objects, [&write](const auto& event) {
            return columnText(*event, write.column) != write.text;
        });
        setIn(objects, write.column, Variant(note->after));
        noteChange(write.GUID);
        write.text = note->after;
    }
    // Who has written something else meanwhile has the last word.
    std::erase_if(waiting_, [&](const Write& write) {
        const EventState* known = ledger_.find(db_.DBFullName, write.GUID);
        const ColumnNote* note = known != nullptr ? known->note(write.column) : nullptr;
        const Objects objects = heldObjects(write.GUID);
        return note != nullptr &&
               std::any_of(objects.begin(), objects.end(), [&](const auto& event) {
                   return columnText(*event, write.column) != note->after &&
                          !isWanted(*event, *known, write.column);
               });
    });
    if (lookedAt_ != ledger_.version() && (reminders_.mCol || period_.mCol)) {
        attempt([&] { findLeftOver(); });
    }
    attempt([&] { findLeftOverOfAbsent(); });
    for (const Deletion& one : deletions_) {
        leaveSets(one.GUID);
    }
    for (const Write& write : waiting_) {
        setIn(heldObjects(write.GUID), write.column, Variant(write.text));
        noteChange(write.GUID);
    }
    countWaiting();
}

}  // namespace vl
