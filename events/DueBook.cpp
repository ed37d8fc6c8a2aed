#include "DueBook.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

bool isOccurrence(const calEvent& event, DateTime wall) {
    const DateTime start = event.FromWall(wall);
    return event.IsRepeating() ? !event.ICalRecEvents(start, start, 1).empty()
                               : wall == event.ToWall(event.StartDateTime);
}

// Under a start that it had before the host moved it, and under none that it has.
bool isListedElsewhere(const calEvent& event, const EventState* state) {
    if (state == nullptr) {
        return false;
    }
    bool isListed = false;
    for (const OccurrenceState& one : state->occurrences) {
        if (!one.listed.isZero() && isOccurrence(event, one.start)) {
            return false;
        }
        isListed = isListed || !one.listed.isZero();
    }
    return isListed;
}

// The next run would not know since when, a moment, reminders of the event as it is now may be
// left: the host has moved the series, or given it earlier ones, while it was listed.
bool isNotedOtherwise(const EventState* state, DateTime start, DateTime since) {
    return state != nullptr && !state->openSince.isZero() &&
           (state->openOf != start || state->openSince > since);
}

// Its user wants it to count as newly met, and it has not been listed since.
bool isReactivated(const EventState* state) { return state != nullptr && state->newlyMet; }

// Most times are far off, which the plain numbers tell: `DateTime` compares whole milliseconds, and
// below 0 days run the other way.
bool isLater(double days, DateTime now) {
    constexpr double kSecond = 1.0 / 86400;
    return now.days() >= 0 && days > now.days() + kSecond;
}

bool hasCome(DateTime time, DateTime now) { return !isLater(time.days(), now) && time <= now; }

// Without a GUID there is no row to act on: it would be listed and heard anew for ever.
bool hasSomethingToSay(const calEvent* event) {
    return event != nullptr && !event->GUID.empty() && event->ISRecurrenceExceptionDeleted == 0 &&
           !text::equalsNoCase(event->status, "AllDone");
}

}  // namespace

void DueBook::markChanged(const Asked& asked) {
    // Times that have been asked for can come again.
    const bool turnedBack = asked.now < lastNow_;
    const auto changes = asked.ledger.changedSince(ledgerVersion_);
    const std::unordered_set<std::uint64_t> changed(changes.begin(), changes.end());
    if (!turnedBack && changed.empty()) {
        return;
    }
    if (turnedBack) {
        lookAtAll();
    }
    for (std::size_t i = 0; i < slots_.size() && !changed.empty(); ++i) {
        Slot& slot = slots_[i];
        if (slot.event && changed.contains(slot.hash)) {
            lookAt(i);
            const EventState* state = asked.ledger.find(asked.database, slot.event->GUID);
            const bool forgotten = state == nullptr || isReactivated(state);
            slot.firstMet = slot.firstMet || forgotten;
            slot.since = forgotten ? DateTime() : slot.since;
        }
    }
}

// From when on reminders of the event may be left.
DateTime DueBook::sinceOf(const Slot& slot, const EventState* state, DateTime asked) const {
    const calEvent& event = *slot.event;
    // A series that the host has moved since has other times.
    const bool isMoved = slot.sinceOf != startOf(event);
    const DateTime since = slot.since.isZero() || isMoved ? asked : std::min(slot.since, asked);
    const DateTime noted = slot.asked ? DateTime() : notedOpenSince(event, state);
    return noted.isZero() ? since : std::min(since, noted);
}

void DueBook::askOne(Slot& slot, const Asked& asked, std::vector<Found>& found) {
    const calEvent& event = *slot.event;
    const EventState* state = asked.ledger.find(asked.database, event.GUID);
    if (state != nullptr && state->deleting) {
        return;
    }
    const DateTime since = sinceOf(slot, state, asked.since);
    const bool firstMet = slot.firstMet || (!slot.asked && isReactivated(state));
    const DueQuestion question{asked.from, asked.to, asked.now, since, firstMet};
    const DueFacts facts{state, replaced_.of(event), *zone_};
    const DueAnswer answer = askDue(event, facts, question);
    const bool pending = answer.taken.has_value();
    slot.since = pending ? answer.since : DateTime();
    slot.sinceOf = startOf(event);
    slot.next = answer.next;
    slot.look = false;
    slot.firstMet = false;
    slot.asked = true;
    const bool listed = pending && asked.listed != nullptr && asked.listed->Exists(event.GUID);
    const bool isElsewhere = listed && isListedElsewhere(event, state);
    if (isElsewhere ||
        (listed && isNotedOtherwise(state, startOf(event), event.ToMoment(answer.since)))) {
        moved_.push_back({slot.event, *answer.taken, isElsewhere});
    }
    const auto& due = listed ? answer.again : answer.taken;
    slot.pending = pending;
    slot.quiet = listed && !due;
    if (due) {
        found.push_back({slot.event, *due});
    }
}

// In another zone a moment has another local time: of what is known of them nothing holds.
void DueBook::takeZone(const TimeZone& zone) {
    if (zone_ && !zone_->same(zone)) {
        exceptionsChanged_ = true;
        lookAtAll();
    }
    zone_ = zone;
}

// A listed event of which nothing was due in an earlier window has nothing in this one either, as
// long as it stays listed and its next time has not come.
bool DueBook::isToBeAsked(const Slot& slot, const Asked& asked) const {
    const bool itsTime = !slot.next.isZero() && hasCome(slot.next, asked.to);
    if (!slot.look && !slot.pending && !itsTime) {
        return false;
    }
    if (!hasSomethingToSay(slot.event.get())) {
        return false;
    }
    return slot.look || itsTime || !slot.quiet || asked.listed == nullptr ||
           !asked.listed->Exists(slot.event->GUID);
}

// Its slot is not fetched before. Of one that is quiet because it is listed, that holds only as
// long as it stays in the list.
void DueBook::sleepUntilNext(std::size_t place) {
    const Slot& slot = slots_[place];
    const bool isQuiet = slot.quiet && hasSomethingToSay(slot.event.get());
    if (slot.look || (slot.pending && !isQuiet)) {
        return;
    }
    quietUntil_[place] = slot.next.isZero() ? kNever : slot.next.days();
    if (slot.pending) {
        quietListed_.push_back(static_cast<GenCollection::Place>(place));
    }
}

void DueBook::wakeQuiet() {
    for (const GenCollection::Place place : quietListed_) {
        if (place < quietUntil_.size()) {
            quietUntil_[place] = kAlways;
        }
    }
    quietListed_.clear();
}

// Whether an event was in the list at the last question and is not any more.
bool DueBook::haveLeft(const GenCollection& listed) const {
    if (listed.Stamp() == listed_.Stamp()) {
        return false;
    }
    for (const auto place : listed_.PlacesThatDiffer(listed)) {
        if (place >= listed_.PlaceCount()) {
            break;
        }
        const auto event = objectIn<calEvent>(listed_.AtPlace(place));
        if (event && !listed.Exists(event->GUID)) {
            return true;
        }
    }
    return false;
}

// In the order of the list.
std::vector<GenCollection::Place> DueBook::toBeAsked(const Asked& asked, bool wentBack) {
    const GenCollection listed = asked.listed != nullptr ? *asked.listed : GenCollection();
    if (wentBack || haveLeft(listed) || quietListed_.size() > slots_.size()) {
        wakeQuiet();
    }
    listed_ = listed;
    std::vector<GenCollection::Place> places;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (isLater(quietUntil_[i], asked.to)) {
            continue;  // most of them: their slots are not even fetched
        }
        Slot& slot = slots_[i];
        slot.quiet = slot.quiet && !wentBack;
        if (isToBeAsked(slot, asked)) {
            places.push_back(static_cast<GenCollection::Place>(i));
        } else {
            sleepUntilNext(i);
        }
    }
    const auto before = [this](GenCollection::Place a, GenCollection::Place b) {
        return events_.PositionOfPlace(a) < events_.PositionOfPlace(b);
    };
    if (!std::is_sorted(places.begin(), places.end(), before)) {
        std::sort(places.begin(), places.end(), before);
    }
    return places;
}

std::vector<DueBook::Found> DueBook::ask(const GenCollection& events, const Asked& asked) {
    // Who is reactivated has missed nothing; but what this question is the first to see has.
    markChanged(asked);
    ledgerVersion_ = asked.ledger.version();
    if (events.Stamp() != events_.Stamp()) {
        bring(events, asked);
    }
    takeZone(TimeZone::local());
    if (exceptionsChanged_ || replacedVersion_ != asked.ledger.replacedVersion()) {
        replacedVersion_ = asked.ledger.replacedVersion();
        findReplaced(asked.ledger, asked.database);
        exceptionsChanged_ = false;
    }
    lastNow_ = asked.now;
    const bool wentBack = asked.from < lastFrom_;
    lastFrom_ = asked.from;
    lastSince_ = std::min(asked.since, asked.from);
    std::vector<Found> found;
    found_.clear();
    moved_.clear();
    for (const GenCollection::Place place : toBeAsked(asked, wentBack)) {
        const std::size_t before = found.size() + moved_.size();
        quietUntil_[place] = kAlways;
        attempt([&] { askOne(slots_[place], asked, found); });
        if (found.size() + moved_.size() > before) {
            found_[slots_[place].hash] = place;
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Found& a, const Found& b) { return a.due.time < b.due.time; });
    return found;
}

void DueBook::look(std::string_view GUID) {
    const std::uint64_t hash = guidHash(GUID);
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].hash == hash) {
            lookAt(i);
        }
    }
}

void DueBook::lookAt(std::size_t place) {
    slots_[place].look = true;
    quietUntil_[place] = kAlways;
}

void DueBook::lookAtAll() {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        lookAt(i);
    }
}

DateTime DueBook::openSince(const calEvent& event) const {
    const auto found = found_.find(guidHash(event.GUID));
    return found != found_.end() ? event.ToMoment(slots_[found->second].since) : DateTime();
}

std::vector<DueBook::Left> DueBook::takeLeft() { return std::exchange(left_, {}); }

}  // namespace vl
