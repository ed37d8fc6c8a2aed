#include "events/LedgerState.h"

#include <algorithm>

#include "base/Variant.h"
#include "model/calEvent.h"

namespace vl {

namespace {

template <class List>
auto place(List& occurrences, DateTime start) {
    return std::lower_bound(
        occurrences.begin(), occurrences.end(), start,
        [](const OccurrenceState& one, DateTime wanted) { return one.start < wanted; });
}

template <class List>
auto found(List& occurrences, DateTime start) {
    const auto at = place(occurrences, start);
    return at != occurrences.end() && at->start == start ? &*at : nullptr;
}

}  // namespace

bool ColumnNote::waits(const std::string& text) const {
    return text != after && std::find(before.begin(), before.end(), text) != before.end();
}

bool ColumnNote::knows(const std::string& text) const { return text == after || waits(text); }

OccurrenceState* EventState::find(DateTime start) { return found(occurrences, start); }

const OccurrenceState* EventState::find(DateTime start) const { return found(occurrences, start); }

OccurrenceState& EventState::at(DateTime start) {
    const auto where = place(occurrences, start);
    if (where != occurrences.end() && where->start == start) {
        return *where;
    }
    OccurrenceState fresh;
    fresh.start = start;
    return *occurrences.insert(where, fresh);
}

const ColumnNote* EventState::note(std::string_view column) const {
    const auto found = row.find(column);
    return found != row.end() ? &found->second : nullptr;
}

const OccurrenceState* EventState::listed() const {
    const auto last = std::find_if(occurrences.rbegin(), occurrences.rend(),
                                   [](const auto& one) { return !one.listed.isZero(); });
    return last != occurrences.rend() ? &*last : nullptr;
}

void EventState::tidy() {
    std::erase_if(occurrences, [](const OccurrenceState& one) { return !one.saysAnything(); });
    std::erase_if(doubted, [this](const auto& doubt) {
        return endedAt != doubt.first &&
               std::none_of(occurrences.begin(), occurrences.end(),
                            [&](const auto& one) { return one.acted == doubt.first; });
    });
}

std::string columnText(const calEvent& event, std::string_view column) {
    const Variant value = event.property(column);
    const auto* flag = value.get<bool>();
    return flag != nullptr ? Variant(value.toInt32()).toText() : value.toText();
}

// Both to the nearest second, which is what the file can hold.
Noted notedNow(DateTime local) { return {local.nearestSecond(), TimeZone::local().toUtc(local)}; }

DateTime earlierOf(const Noted& when, const TimeZone& here) {
    return when.utc.isZero() ? when.local : std::min(when.local, here.fromUtc(when.utc));
}

bool isLongAgo(DateTime when, DateTime now) { return when.addDays(kKeptDays) < now; }

SeriesName seriesOf(const calEvent& exception) {
    return {exception.recurringEventId, exception.VLBase};
}

DateTime startIn(const calEvent& series, const Noted& start, const TimeZone& here) {
    return series.HasOwnZone() && !start.utc.isZero() ? here.fromUtc(start.utc)
                                                      : here.fromUtc(here.toUtc(start.local));
}

bool rowSpeaks(const calEvent& event, const EventState* state) {
    for (const std::string_view column : kWordColumns) {
        const ColumnNote* note = state != nullptr ? state->note(column) : nullptr;
        if (note == nullptr || !note->knows(columnText(event, column))) {
            return true;
        }
    }
    return false;
}

}  // namespace vl
