// What was noted and did not come to the row, by an earlier run, by another copy of the program or
// by a command.
#include <algorithm>
#include <unordered_set>

#include "ActParts.h"
#include "base/ErrorState.h"
#include "notify/Acts.h"

namespace vl {

namespace {

constexpr std::string_view kColumnsButStatus[] = {kNextReminder, kDismissed, kHidden};

// The last act was to have a finished event shown again: there are few of these.
bool isToComeBack(const EventState& state) {
    const ColumnNote* status = state.note(kStatus);
    return status != nullptr && status->after != kAllDone &&
           (state.newlyMet || state.listed() != nullptr ||
            std::any_of(state.occurrences.begin(), state.occurrences.end(),
                        [](const auto& one) { return !one.snoozed.isZero(); }));
}

bool isSnoozedElsewhere(const calEvent& event, const EventState& state) {
    return event.NextReminder > event.Dismissed && rowSpeaks(event, &state);
}

}  // namespace

bool Acts::isStillDone(const calEvent& event, const EventState& known) const {
    const auto replaced = reminders_.Replaced(event);
    const DateTime now = clock_.now();
    const DateTime since = ledger_.lastCheckBy(db_.DBFullName, now);
    return isMarkedDone(event, {&known, replaced, TimeZone::local()}, now, since) &&
           !isSnoozedElsewhere(event, known);
}

// Whether the text noted for it is still to be written into the event's column. Where another
// program has put a word of its own into the row, ours is none any more, although a column may be
// as it was.
bool Acts::isWanted(const calEvent& event, const EventState& known, std::string_view column) const {
    const ColumnNote* note = known.note(column);
    const bool isWord = column == kNextReminder || column == kDismissed;
    return note != nullptr && note->waits(columnText(event, column)) &&
           !(isWord && rowSpeaks(event, &known)) &&
           (column != kStatus || note->after != kAllDone || isStillDone(event, known));
}

// An event that the host has moved, perhaps in the second of the last read, is not done any more.
// One that a read has taken back shows a status that its row may not have.
bool Acts::isWantedNow(const calEvent& event, const EventState& known, std::string_view column) {
    const bool isWantedOfIt = isWanted(event, known, column);
    const ColumnNote* note = known.note(column);
    const bool mayBeTakenBack = column == kStatus && note != nullptr && note->after != kAllDone;
    if (!isWantedOfIt && !mayBeTakenBack) {
        return false;
    }
    const auto row = column == kStatus ? rowOf(event.GUID) : nullptr;
    return row ? isWanted(*row, known, column) : isWantedOfIt;
}

// Of these the ones whose rows say that they are all done, by `guidHash`. None: nobody can tell
// now.
std::optional<std::unordered_set<std::uint64_t>> Acts::allDoneAmong(
    std::span<const std::string> GUIDs) {
    std::unordered_set<std::uint64_t> found;
    while (!GUIDs.empty()) {
        std::string list;
        const auto some = GUIDs.first(std::min(DBRemindUtils::kKeysAtOnce, GUIDs.size()));
        for (const std::string& GUID : some) {
            list += (list.empty() ? "" : ", ") + DBRemindUtils::ToSQLText(GUID);
        }
        const auto rows = db_.OpenRS(
            "SELECT GUID FROM Reminders WHERE Status=" + DBRemindUtils::ToSQLText(kAllDone) +
            " AND GUID IN (" + list + ")");
        if (!rows || !rows->isOpen()) {
            isHeld_ = passes(db_);
            return isHeld_ ? std::nullopt : std::optional(found);
        }
        for (; !rows->EOF_(); rows->MoveNext()) {
            found.insert(guidHash(rows->value("GUID").toText()));
        }
        GUIDs = GUIDs.subspan(some.size());
    }
    return found;
}

// Of what was looked at only what has changed since is looked at again; where rows could not be
// read, everything from then on.
void Acts::findLeftOver() {
    const auto before = lookedAt_;
    std::optional<std::unordered_set<std::uint64_t>> changed;
    std::unordered_set<std::uint64_t> byOthers;
    if (lookedAt_) {
        const auto hashes = ledger_.changedSince(*lookedAt_);
        changed.emplace(hashes.begin(), hashes.end());
        const auto others = ledger_.actedByOthersSince(*lookedAt_);
        byOthers.insert(others.begin(), others.end());
    } else {
        absent_.clear();
    }
    lookedAt_ = ledger_.version();
    auto known = ledger_.all(db_.DBFullName);
    std::erase_if(
        known, [&](const auto& one) { return changed && !changed->contains(guidHash(one.GUID)); });
    std::sort(known.begin(), known.end(),
              [](const auto& a, const auto& b) { return a.state.acted < b.state.acted; });
    std::vector<std::string> away;
    for (const auto& one : known) {
        if (one.state.note(kStatus) != nullptr && !held(one.GUID)) {
            away.push_back(one.GUID);
        }
    }
    const auto allDone = allDoneAmong(away);
    for (const auto& one : known) {
        const std::uint64_t hash = guidHash(one.GUID);
        auto event = held(one.GUID);
        if (!event) {
            absent_[one.GUID] = allDone && allDone->contains(hash);
            event = isToComeBack(one.state) ? rowOf(one.GUID) : nullptr;
        }
        if (event) {
            if (one.state.waits && !changed) {
                notedWaiting_.insert(one.GUID);
            }
            if (byOthers.contains(hash)) {
                lookAtRowOf(event, one.state);
            }
            takeUpLeftOver(event, one.state, kStateColumns);
        }
    }
    if (isHeld_) {
        lookedAt_ = before;
    }
}

// An event that is there again has what was noted of it while it was away. What the status is to be
// of one that was all done, whoever has taken it back has said.
void Acts::findLeftOverOfAbsent() {
    if (absent_.empty() || !period_.mCol || period_.mCol->Stamp() == absentFrom_) {
        return;
    }
    absentFrom_ = period_.mCol->Stamp();
    std::erase_if(absent_, [this](const auto& one) {
        const auto event = held(one.first);
        const EventState* known = ledger_.find(db_.DBFullName, one.first);
        if (event && known != nullptr) {
            const bool wasAllDone = one.second;
            const std::span<const std::string_view> columns(kStateColumns);
            takeUpLeftOver(event, *known, wasAllDone ? kColumnsButStatus : columns);
        }
        return event || known == nullptr;
    });
}

std::shared_ptr<calEvent> Acts::held(const std::string& GUID) const {
    const auto event = heldBy(period_.mCol, GUID);
    return event ? event : heldBy(reminders_.mCol, GUID);
}

void Acts::lookAtRowOf(const std::shared_ptr<calEvent>& event, const EventState& known) {
    if (known.row.empty()) {
        return;
    }
    Objects objects{event};
    if (const auto other = heldBy(reminders_.mCol, event->GUID); other && other != event) {
        objects.push_back(other);
    }
    lookAtRow(known, objects);
}

void Acts::takeUpLeftOver(const std::shared_ptr<calEvent>& event, const EventState& known,
                          std::span<const std::string_view> columns) {
    if (known.deleting) {
        enqueueDeletion(*event);
        return;
    }
    for (const std::string_view name : columns) {
        if (isWantedNow(*event, known, name)) {
            enqueue(event->GUID, name, known.note(name)->after);
        }
    }
}

}  // namespace vl
