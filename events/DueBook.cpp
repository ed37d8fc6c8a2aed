#include "DueBook.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

// An exception that stands for an occurrence of its series.
bool replacesOne(const calEvent& event) {
    return event.IsException() && !event.recurringEventId.empty() &&
           !event.RExceptionStartTimeOrig.isZero();
}

// Whether the host has given it other reminder times.
bool reTimed(const calEvent& before, const calEvent& now) {
    return before.StartDateTime != now.StartDateTime || before.IsAllDayEvent != now.IsAllDayEvent ||
           before.recurrence != now.recurrence || before.reminders != now.reminders ||
           before.ReminderMinutesBeforeStart != now.ReminderMinutesBeforeStart ||
           before.ISRecurrenceExceptionDeleted != now.ISRecurrenceExceptionDeleted;
}

bool isDone(const calEvent& event) { return text::equalsNoCase(event.status, "AllDone"); }

}  // namespace

bool DueBook::same(const GenCollection& events) const {
    if (events.Count() != slots_.size()) {
        return false;
    }
    auto slot = slots_.begin();
    for (const Variant& item : events) {
        const auto* object = item.get<ObjectRef>();
        if (object == nullptr || object->get() != slot->event.get()) {
            return false;
        }
        ++slot;
    }
    return true;
}

// Takes over what is in the list now, with what is known of the events that were there before.
// What is there at the first question of a run has been met by an earlier run, unless the host has
// touched it since.
void DueBook::bring(const GenCollection& events, const Asked& asked) {
    const bool starting = lastNow_.isZero();
    const DateTime checked = asked.ledger.lastCheck(asked.database);

    std::unordered_map<std::uint64_t, Slot> before;
    before.reserve(slots_.size());
    for (Slot& slot : slots_) {
        before.emplace(slot.hash, std::move(slot));
    }
    slots_.clear();
    slots_.reserve(events.Count());
    for (const Variant& item : events) {
        auto event = objectIn<calEvent>(item);
        Slot slot;
        // What is no event has a place, too, so that both lists run side by side.
        slot.hash = event ? guidHash(event->GUID) : 0;
        slot.firstMet = !starting || (event && !checked.isZero() && event->Modified >= checked);
        const auto known = before.find(slot.hash);
        if (event && known != before.end() && known->second.event) {
            const auto old = known->second.event;
            slot = std::move(known->second);
            before.erase(known);
            if (old != event) {
                slot.look = true;
                slot.firstMet = slot.firstMet || reTimed(*old, *event);
                exceptionsChanged_ = exceptionsChanged_ || replacesOne(*old);
            }
        }
        if (event && slot.event != event) {
            exceptionsChanged_ = exceptionsChanged_ || replacesOne(*event);
        }
        slot.event = std::move(event);
        slots_.push_back(std::move(slot));
    }
    for (const auto& [hash, slot] : before) {
        if (slot.event && replacesOne(*slot.event)) {
            exceptionsChanged_ = true;
            left_.push_back({slot.event->recurringEventId, slot.event->RExceptionStartTimeOrig});
        }
    }
}

void DueBook::findReplaced(const Ledger& ledger, std::string_view database) {
    Starts starts;
    for (const Slot& slot : slots_) {
        if (slot.event && replacesOne(*slot.event)) {
            starts[text::foldCase(slot.event->recurringEventId)].push_back(
                slot.event->RExceptionStartTimeOrig);
        }
    }
    for (const auto& [master, kept] : ledger.allReplaced(database)) {
        auto& list = starts[text::foldCase(master)];
        list.insert(list.end(), kept.begin(), kept.end());
    }
    for (const Left& left : left_) {
        starts[text::foldCase(left.master)].push_back(left.replaced);
    }
    for (auto& [master, list] : starts) {
        std::sort(list.begin(), list.end());
        list.erase(std::unique(list.begin(), list.end()), list.end());
    }
    if (starts != replaced_) {
        for (Slot& slot : slots_) {
            if (slot.event && slot.event->IsRepeating()) {
                const std::string id = text::foldCase(slot.event->id);
                const auto before = replaced_.find(id);
                const auto now = starts.find(id);
                const bool none = before == replaced_.end() && now == starts.end();
                slot.look =
                    slot.look || !(none || (before != replaced_.end() && now != starts.end() &&
                                            before->second == now->second));
            }
        }
        replaced_ = std::move(starts);
    }
}

void DueBook::markChanged(const Asked& asked) {
    // Times that have been asked for can come again.
    const bool turnedBack = asked.now < lastNow_;
    const auto changes = asked.ledger.changedSince(ledgerVersion_);
    const std::unordered_set<std::uint64_t> changed(changes.begin(), changes.end());
    if (!turnedBack && changed.empty()) {
        return;
    }
    for (Slot& slot : slots_) {
        slot.look = slot.look || turnedBack;
        if (slot.event && changed.contains(slot.hash)) {
            slot.look = true;
            const EventState* state = asked.ledger.find(asked.database, slot.event->GUID);
            const bool forgotten =
                state == nullptr || (state->occurrences.empty() && state->endedBefore.isZero());
            slot.firstMet = slot.firstMet || forgotten;
        }
    }
}

void DueBook::askOne(Slot& slot, const Asked& asked, const TimeZone& zone,
                     std::vector<Found>& found) {
    const calEvent& event = *slot.event;
    const EventState* state = asked.ledger.find(asked.database, event.GUID);
    if (state != nullptr && state->deleting) {
        return;
    }
    DateTime since = slot.since.isZero() ? asked.from : std::min(slot.since, asked.from);
    if (!slot.asked && state != nullptr && !state->openSince.isZero()) {
        since = std::min(since, event.FromWall(state->openSince));
    }
    const DueQuestion question{asked.from, asked.to, asked.now, since, slot.firstMet};
    const DueFacts facts{state, replaced(event), zone};
    const DueAnswer answer = askDue(event, facts, question);
    const bool pending = answer.taken.has_value();
    slot.since = pending ? since : DateTime();
    slot.next = answer.next;
    slot.look = pending;
    slot.firstMet = false;
    slot.asked = true;
    const auto& due =
        pending && asked.isListed && asked.isListed(event.GUID) ? answer.again : answer.taken;
    if (due) {
        found.push_back({slot.event, *due});
    }
}

std::vector<DueBook::Found> DueBook::ask(const GenCollection& events, const Asked& asked) {
    if (!same(events)) {
        bring(events, asked);
    }
    if (exceptionsChanged_) {
        findReplaced(asked.ledger, asked.database);
        exceptionsChanged_ = false;
    }
    markChanged(asked);
    ledgerVersion_ = asked.ledger.version();
    lastNow_ = asked.now;
    const TimeZone zone = TimeZone::local();
    std::vector<Found> found;
    for (Slot& slot : slots_) {
        const bool itsTime = !slot.next.isZero() && slot.next <= asked.to;
        if ((slot.look || itsTime) && slot.event && slot.event->ISRecurrenceExceptionDeleted == 0 &&
            !isDone(*slot.event)) {
            attempt([&] { askOne(slot, asked, zone, found); });
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Found& a, const Found& b) { return a.due.time < b.due.time; });
    return found;
}

void DueBook::look(std::string_view GUID, bool firstMet) {
    const std::uint64_t hash = guidHash(GUID);
    for (Slot& slot : slots_) {
        if (slot.hash == hash) {
            slot.look = true;
            slot.firstMet = slot.firstMet || firstMet;
        }
    }
}

DateTime DueBook::openSince(const calEvent& event) const {
    const auto slot = std::find_if(slots_.begin(), slots_.end(),
                                   [&](const Slot& one) { return one.event.get() == &event; });
    return slot != slots_.end() ? event.ToWall(slot->since) : DateTime();
}

const std::vector<DateTime>& DueBook::replaced(const calEvent& event) const {
    static const std::vector<DateTime> none;
    if (replaced_.empty() || event.id.empty()) {
        return none;
    }
    const auto found = replaced_.find(text::foldCase(event.id));
    return found != replaced_.end() ? found->second : none;
}

std::vector<DueBook::Left> DueBook::takeLeft() { return std::exchange(left_, {}); }

}  // namespace vl
