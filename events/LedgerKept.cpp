#include "LedgerKept.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

#include "base/ErrorState.h"
#include "base/Variant.h"

namespace vl::ledger {

namespace {

// Times on the clocks of two zones, or on one clock and in UTC, differ by less.
constexpr int kDaysBetweenClocks = 2;

DateTime overFrom(const OccurrenceState& one) { return std::max(one.start, one.end); }

// Of several that are listed the last one alone is shown.
bool isWanted(const EventState& state, const OccurrenceState& one) {
    return !one.snoozed.isZero() || &one == state.listed();
}

bool isKept(const EventState& state, const OccurrenceState& one, DateTime now) {
    return isWanted(state, one) || !isLongAgo(overFrom(one), now);
}

void dropOccurrences(EventState& state, DateTime now) {
    state.openSince = openSinceAt(state, now);
    std::vector<OccurrenceState> kept;
    std::copy_if(state.occurrences.begin(), state.occurrences.end(), std::back_inserter(kept),
                 [&](const OccurrenceState& one) { return isKept(state, one, now); });
    state.occurrences = std::move(kept);
}

DateTime written(const EventState& state, std::string_view column) {
    DateTime time;
    if (const ColumnNote* note = state.note(column)) {
        attempt([&] { time = parseDateTime(note->after); });
    }
    return time;
}

// Without what is known of it the row would speak, and of a snooze that is long dealt with.
bool rowWouldSnooze(const EventState& state) {
    return written(state, "NextReminder") > written(state, "Dismissed") ||
           state.word.NextReminder > state.word.Dismissed;
}

// An event's part beside its occurrences.
bool isOver(const EventState& state, DateTime now) {
    return !state.waits && !state.deleting && state.occurrences.empty() &&
           isLongAgo(state.acted, now) && isLongAgo(written(state, "NextReminder"), now) &&
           !rowWouldSnooze(state);
}

/// The occurrences of a database that can come back when nothing is known any more of the starts
/// that exceptions have taken over.
class Waiting {
public:
    void take(const Entry& entry) {
        for (const OccurrenceState& one : entry.state.occurrences) {
            if (isWanted(entry.state, one)) {
                Of& of = databases_[entry.database];
                of.starts.push_back(one.start);
                // While a series is listed, what falls due of it waits for its turn.
                const bool hides = !entry.state.openOf.isZero() && !one.listed.isZero();
                if (hides && (of.listed.isZero() || one.start < of.listed)) {
                    of.listed = one.start;
                }
            }
        }
    }
    void settle() {
        for (auto& [database, of] : databases_) {
            std::sort(of.starts.begin(), of.starts.end());
        }
    }
    bool needs(const std::string& database, DateTime replaced) const {
        const auto found = databases_.find(database);
        if (found == databases_.end()) {
            return false;
        }
        const auto& [starts, listed] = found->second;
        const auto near =
            std::lower_bound(starts.begin(), starts.end(), replaced.addDays(-kDaysBetweenClocks));
        return (near != starts.end() && *near <= replaced.addDays(kDaysBetweenClocks)) ||
               (!listed.isZero() && listed <= replaced.addDays(kDaysBetweenClocks));
    }

private:
    struct Of {
        std::vector<DateTime> starts;
        DateTime listed;  // the first
    };
    std::map<std::string, Of> databases_;
};

// What has left an event that is still there. True when something has.
bool keepWhatLeftOf(EventState& fresh, const EventState& known, DateTime now) {
    bool anything = false;
    for (const OccurrenceState& was : known.occurrences) {
        if (isKept(known, was, now) || fresh.find(was.start) != nullptr) {
            continue;
        }
        OccurrenceState one = was;
        one.listed = DateTime();
        one.spared = false;
        if (one.saysAnything()) {
            fresh.at(one.start) = one;
            anything = true;
        }
    }
    return anything;
}

}  // namespace

// Behind a row of the list others wait for their turn, however long; where none stands there,
// nothing does.
DateTime openSinceAt(const EventState& state, DateTime now) {
    DateTime open = state.openSince;
    if (open.isZero()) {
        return open;
    }
    if (state.listed() == nullptr) {
        open = std::max(open, now.addDays(kDaysBetweenClocks - kKeptDays));
    }
    for (const OccurrenceState& one : state.occurrences) {
        if (!isKept(state, one, now)) {
            open = std::max(open, overFrom(one).addDays(kDaysBetweenClocks));
        }
    }
    return open;
}

std::string keptLines(const Content& content, DateTime now) {
    std::string lines;
    Waiting waiting;
    for (const auto& [key, entry] : content.events) {
        Entry kept = entry;
        dropOccurrences(kept.state, now);
        if (!isOver(kept.state, now)) {
            lines += lineEnd(eventLine(kept, {}, true, "kept", kept.state.acted));
            waiting.take(kept);
        }
    }
    waiting.settle();
    for (const auto& [database, checks] : content.checked) {
        for (const Noted& check : checks) {
            lines += lineEnd(checkLine(database, check));
        }
    }
    for (const auto& [key, starts] : content.replaced) {
        const auto& [database, series] = content.masters.at(key);
        for (const Noted& start : starts) {
            if (!isLongAgo(start.local, now) || waiting.needs(database, start.local)) {
                lines += lineEnd(replacedLine(database, series, start));
            }
        }
    }
    for (const std::string& line : content.foreign) {
        lines += lineEnd(line);
    }
    return lines;
}

std::unordered_set<std::string> keepWhatLeft(Content& fresh, const Content& known, DateTime now) {
    // Who has written the file may have gone by a clock that was a little ahead.
    const DateTime latest = now.addDays(kDaysBetweenClocks);
    std::unordered_set<std::string> more;
    for (const auto& [key, entry] : known.events) {
        const auto there = fresh.events.find(key);
        if (there != fresh.events.end()) {
            // Who has reactivated it since wants nothing of it to be known.
            if (!there->second.state.newlyMet &&
                keepWhatLeftOf(there->second.state, entry.state, latest)) {
                more.insert(key);
            }
            continue;
        }
        EventState left = entry.state;
        dropOccurrences(left, latest);
        if (isOver(left, latest)) {
            fresh.events.emplace(key, entry);
            more.insert(key);
        }
    }
    for (const auto& [key, starts] : known.replaced) {
        for (const Noted& start : starts) {
            if (isLongAgo(start.local, latest)) {
                fresh.masters.emplace(key, known.masters.at(key));
                fresh.replaced[key].insert(start);
            }
        }
    }
    return more;
}

}  // namespace vl::ledger
