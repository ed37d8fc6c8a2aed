// How the book follows the list of events.
#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DueBook.h"
#include "events/LedgerHistory.h"

namespace vl {

namespace {

// Whether the host has given it other reminder times.
bool reTimed(const calEvent& before, const calEvent& now) {
    return before.StartDateTime != now.StartDateTime || before.IsAllDayEvent != now.IsAllDayEvent ||
           before.recurrence != now.recurrence || before.reminders != now.reminders ||
           before.ReminderMinutesBeforeStart != now.ReminderMinutesBeforeStart ||
           before.ISRecurrenceExceptionDeleted != now.ISRecurrenceExceptionDeleted;
}

// Whether what exceptions have taken over from the one it is the same for the other.
bool isSameSeries(const calEvent& before, const calEvent& now) {
    return before.IsRepeating() && now.IsRepeating() && before.id == now.id &&
           before.VLBase == now.VLBase && before.HasOwnZone() == now.HasOwnZone();
}

}  // namespace

DateTime DueBook::startOf(const calEvent& event) {
    return event.IsRepeating() ? event.ToWall(event.StartDateTime) : DateTime();
}

// Takes over what is in the list now, with what is known of the events that were there before.
// What is there at the first question of a run has been met by an earlier run, unless the host has
// touched it since.
void DueBook::bring(const GenCollection& events, const Asked& asked) {
    const DateTime checked = asked.ledger.lastCheck(asked.database);
    const auto places = events.PlacesThatDiffer(events_);
    slots_.resize(std::max(slots_.size(), events.PlaceCount()));
    quietUntil_.resize(slots_.size(), kAlways);
    std::unordered_map<std::uint64_t, Slot> before = std::exchange(deleting_, {});
    std::vector<GenCollection::Place> strangers;
    for (const auto place : places) {
        auto event = place < events.PlaceCount() ? objectIn<calEvent>(events.AtPlace(place))
                                                 : std::shared_ptr<calEvent>();
        Slot& slot = slots_[place];
        quietUntil_[place] = kAlways;
        // Most have another object in the same place.
        if (slot.event && event && slot.hash == guidHash(event->GUID)) {
            takeOver(slot, std::move(event));
            continue;
        }
        if (slot.event) {
            before.emplace(slot.hash, std::move(slot));
        }
        slot = Slot();
        if (event) {
            strangers.push_back(place);
        }
    }
    slots_.resize(events.PlaceCount());
    quietUntil_.resize(events.PlaceCount());
    for (const auto place : strangers) {
        slots_[place] =
            slotFor(objectIn<calEvent>(events.AtPlace(place)), before, checked, asked.now);
    }
    for (auto& [hash, slot] : before) {
        if (replacesOne(*slot.event)) {
            exceptionsChanged_ = true;
            left_.push_back({seriesOf(*slot.event), slot.event->RExceptionStartTimeOrig});
        }
        // A deletion that fails leaves the event as it was: nothing of it is met for the first
        // time, and nothing that falls due meanwhile is lost.
        const EventState* state = asked.ledger.find(asked.database, slot.event->GUID);
        if (state != nullptr && state->deleting) {
            slot.since = slot.since.isZero() ? asked.since : slot.since;
            deleting_.emplace(hash, std::move(slot));
        }
    }
    events_ = events;
}

// The slot of an event that stands in a place where it did not stand.
DueBook::Slot DueBook::slotFor(std::shared_ptr<calEvent> event,
                               std::unordered_map<std::uint64_t, Slot>& before, DateTime checked,
                               DateTime now) {
    Slot slot;
    slot.hash = guidHash(event->GUID);
    if (const auto known = before.find(slot.hash); known != before.end()) {
        slot = std::move(known->second);
        before.erase(known);
        slot.look = true;
    } else {
        const bool starting = lastNow_.isZero();
        slot.firstMet = !starting || !isMetBefore(*event, checked, now);
    }
    takeOver(slot, std::move(event));
    return slot;
}

// What is known of another object of the same event goes over to this one.
void DueBook::takeOver(Slot& slot, std::shared_ptr<calEvent> event) {
    const auto was = std::exchange(slot.event, std::move(event));
    const calEvent& now = *slot.event;
    const bool isNew = !was || (was != slot.event && reTimed(*was, now));
    if (was && was != slot.event) {
        slot.look = true;
        slot.firstMet = slot.firstMet || isNew;
        if (!now.IsRepeating() && was->StartDateTime != now.StartDateTime) {
            slot.since = DateTime();  // that was of the times it had
        }
        exceptionsChanged_ = exceptionsChanged_ || replacesOne(*was);
    }
    if (was != slot.event) {
        // Another series may be one of which the ledger knows.
        exceptionsChanged_ = exceptionsChanged_ || replacesOne(now) ||
                             (now.IsRepeating() && !(was && isSameSeries(*was, now)));
    }
    const bool starting = lastNow_.isZero();
    if (!starting && isNew && !now.Modified.isZero() && now.Modified <= lastFrom_) {
        // It was there before the last question, which its read has missed: to the second.
        const bool isMoved = slot.sinceOf != startOf(now);
        slot.since = isMoved || slot.since.isZero() ? lastSince_ : std::min(slot.since, lastSince_);
        slot.sinceOf = startOf(now);
    }
}

}  // namespace vl
