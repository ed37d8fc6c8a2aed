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
           (state.newlyMet || std::any_of(state.occurrences.begin(), state.occurrences.end(),
                                          [](const auto& one) { return !one.snoozed.isZero(); }));
}

}  // namespace

bool isWanted(const calEvent& event, const EventState& state, std::string_view column) {
    const ColumnNote* note = state.note(column);
    const bool isWord = column == kNextReminder || column == kDismissed;
    return note != nullptr && note->waits(columnText(event, column)) &&
           !(isWord && rowSpeaks(event, &state)) &&
           (column != kStatus || note->after != kAllDone || isLastMuted(event, state));
}

// Of what was looked at only what has changed since is looked at again.
void Acts::findLeftOver() {
    std::optional<std::unordered_set<std::uint64_t>> changed;
    std::unordered_set<std::uint64_t> byOthers;
    if (lookedAt_) {
        const auto hashes = ledger_.changedSince(*lookedAt_);
        changed.emplace(hashes.begin(), hashes.end());
        const auto others = ledger_.actedByOthersSince(*lookedAt_);
        byOthers.insert(others.begin(), others.end());
    }
    lookedAt_ = ledger_.version();
    auto known = ledger_.all(db_.DBFullName);
    std::sort(known.begin(), known.end(),
              [](const auto& a, const auto& b) { return a.state.acted < b.state.acted; });
    if (!changed) {
        absent_.clear();
    }
    for (const auto& one : known) {
        const std::uint64_t hash = guidHash(one.GUID);
        if (changed && !changed->contains(hash)) {
            continue;
        }
        auto event = held(one.GUID);
        if (!event) {
            absent_.insert(one.GUID);
            // Its row may still say that it is all done.
            event = isToComeBack(one.state) ? period_.EventByGUID(one.GUID) : nullptr;
        }
        if (event) {
            if (byOthers.contains(hash)) {
                lookAtRowOf(event, one.state);
            }
            takeUpLeftOver(event, one.state, kStateColumns);
        }
    }
}

// An event that was taken back has what was noted of it while it was all done. What its status is
// to be, whoever has taken it back has said.
void Acts::findLeftOverOfAbsent() {
    if (absent_.empty() || !period_.mCol || period_.mCol->Stamp() == absentFrom_) {
        return;
    }
    absentFrom_ = period_.mCol->Stamp();
    std::erase_if(absent_, [this](const std::string& GUID) {
        const auto event = held(GUID);
        const EventState* known = ledger_.find(db_.DBFullName, GUID);
        if (event && known != nullptr) {
            takeUpLeftOver(event, *known, kColumnsButStatus);
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
        if (isWanted(*event, known, name)) {
            enqueue(event->GUID, name, known.note(name)->after);
        }
    }
}

}  // namespace vl
