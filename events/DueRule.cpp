#include "events/DueRule.h"

#include <algorithm>
#include <vector>

#include "EventView.h"

namespace vl {

namespace {

/// Something pending, and whether its occurrence is over.
struct Candidate {
    Due due;
    bool over = false;
};

// Of two candidates the one to be shown.
bool goesBefore(const Candidate& a, const Candidate& b) {
    if (a.over != b.over) {
        return !a.over;
    }
    if (a.over && a.due.instance != b.due.instance) {
        return a.due.instance > b.due.instance;
    }
    return a.due.time != b.due.time ? a.due.time < b.due.time : a.due.instance < b.due.instance;
}

class Best {
public:
    void offer(const Candidate& candidate) {
        if (!best_ || goesBefore(candidate, *best_)) {
            best_ = candidate;
        }
    }
    std::optional<Due> due() const { return best_ ? std::optional(best_->due) : std::nullopt; }

private:
    std::optional<Candidate> best_;
};

/// One pass over what can be pending.
class Search {
public:
    Search(const EventView& view, const std::vector<Offset>& offsets, const DueQuestion& question)
        : view_(view), event_(view.event()), offsets_(offsets), question_(question) {
        firstOpenStart_ = view.firstOpenStart();
        since_ = std::min(question.since, question.from);
    }

    /// Scheduled ones from `earliest` on; with `firstMet` of what is not over also those before.
    void scheduled(DateTime earliest, bool firstMet) {
        earliest = std::max(earliest, view_.supersededBefore());
        for (const Offset& offset : offsets_) {
            if (view_.repeats()) {
                ofSeries(offset, earliest, firstMet);
            } else {
                offer(event_.StartDateTime, offset, earliest, firstMet);
            }
        }
        if (view_.repeats()) {
            ofSpared(earliest);
        }
    }

    /// Those whose time has come; with `earliest` not before it.
    void snoozed(std::optional<DateTime> earliest = {}) {
        view_.forEachSnooze([&](DateTime start, DateTime time) {
            if (time > question_.to) {
                noteNext(time);
            } else if (!earliest || time >= *earliest) {
                best_.offer({{start, time, calEvent::kNoReminder}, isOver(start)});
            }
        });
    }

    void listed() {
        view_.forEachListed([&](DateTime start, DateTime time) {
            best_.offer({{start, time, nextAfter(start, time)}, isOver(start)});
        });
    }

    std::optional<Due> best() const { return best_.due(); }
    DateTime next() const { return next_; }
    /// Not later than any scheduled reminder that is pending.
    DateTime since() const { return since_; }

private:
    bool isOver(DateTime start) const { return view_.isOver(start); }

    std::int32_t nextAfter(DateTime start, DateTime time) const {
        for (const Offset& offset : offsets_) {
            if (start.addMinutes(-offset.minutes) == time) {
                return offset.next;
            }
        }
        return calEvent::kNoReminder;
    }

    void noteNext(DateTime time) {
        if (time > question_.to && (next_.isZero() || time < next_)) {
            next_ = time;
        }
    }

    bool offer(DateTime start, const Offset& offset, DateTime earliest, bool firstMet) {
        const DateTime time = start.addMinutes(-offset.minutes);
        noteNext(time);
        const bool asked = time >= earliest || (firstMet && !isOver(start));
        if (time > question_.to || !asked || !view_.isOpen(start, time)) {
            return false;
        }
        since_ = std::min(since_, time);
        best_.offer({{start, time, offset.next}, isOver(start)});
        return true;
    }

    // The first that is not over, and the last that is: no others can be the one to show. What
    // is passed over on the way are single entries of the ledger, not long stretches.
    void ofSeries(const Offset& offset, DateTime earliest, bool firstMet) {
        const DateTime latest = question_.to.addMinutes(offset.minutes);
        const DateTime lowest = std::max(earliest.addMinutes(offset.minutes), firstOpenStart_);
        const DateTime goesOn = view_.goesOn();
        DateTime begin = std::max(goesOn, firstMet ? firstOpenStart_ : lowest);
        while (begin <= latest) {
            const auto found = event_.ICalRecEvents(begin, latest, 1);
            if (found.empty() || offer(found.front(), offset, earliest, firstMet)) {
                break;
            }
            begin = found.front().addSeconds(1);
        }
        DateTime before = std::min(latest.addSeconds(1), goesOn);
        while (lowest < before) {
            const DateTime start = event_.PreviousInstance(before);
            if (start.isZero() || start < lowest || offer(start, offset, earliest, firstMet)) {
                break;
            }
            before = start;
        }
        const DateTime following = event_.NextInstance(latest);
        if (!following.isZero()) {
            noteNext(following.addMinutes(-offset.minutes));
        }
    }

    // A snoozed occurrence is not ended with those around it, nor is one that was snoozed then.
    void ofSpared(DateTime earliest) {
        for (const OccurrenceState& one : view_.state().occurrences) {
            const DateTime start = view_.startOf(one);
            if ((one.snoozed.isZero() && !one.spared) || start >= firstOpenStart_ ||
                !view_.isThere(one)) {
                continue;
            }
            for (const Offset& offset : offsets_) {
                offer(start, offset, earliest, false);
            }
        }
    }

    const EventView& view_;
    const calEvent& event_;
    const std::vector<Offset>& offsets_;
    const DueQuestion& question_;
    DateTime firstOpenStart_;
    Best best_;
    DateTime next_;
    DateTime since_;
};

// A single event that stands in a list, perhaps as it was before the host moved it: it can still be
// acted upon where another copy of the program has not seen that yet, or has left its row standing.
bool mayStandInAList(const calEvent& event, const EventState* state, DateTime now) {
    const OccurrenceState* one = state != nullptr ? state->listed() : nullptr;
    return one != nullptr && !event.IsRepeating() &&
           !isLongAgo(std::max(one->start, one->end), now);
}

bool isAnySnoozed(const EventView& view) {
    bool any = false;
    view.forEachSnooze([&](DateTime, DateTime) { any = true; });
    return any;
}

bool isAnyListed(const EventView& view) {
    bool any = false;
    view.forEachListed([&](DateTime, DateTime) { any = true; });
    return any;
}

}  // namespace

void recordDue(calEvent& event, const Due& due) {
    event.InstanceStart = due.instance;
    event.iRemMinutes = static_cast<std::int32_t>(minutesBetween(due.time, due.instance));
    event.iRemMinutesNext = due.next;
    event.dReminder = due.time;
}

DueAnswer askDue(const calEvent& event, const DueFacts& facts, const DueQuestion& question) {
    const EventView view(event, facts, question.now);
    const std::vector<Offset> offsets = offsetsOf(event);
    DueAnswer answer;
    Search all(view, offsets, question);
    DateTime earliest = std::min(question.since, question.from);
    if (question.firstMet) {
        earliest = std::min(earliest, question.now.date());
    }
    all.scheduled(earliest, question.firstMet);
    all.snoozed();
    all.listed();
    answer.taken = all.best();
    answer.next = all.next();
    answer.since = all.since();
    if (answer.taken) {
        Search again(view, offsets, question);
        again.scheduled(question.from, false);
        again.snoozed(question.from);
        answer.again = again.best();
    }
    return answer;
}

DateTime notedOpenSince(const calEvent& event, const EventState* state) {
    if (state == nullptr || state->openSince.isZero()) {
        return {};
    }
    const DateTime wall = event.ToWall(event.StartDateTime);
    const bool isNoted = event.IsRepeating() ? state->openOf == wall : state->find(wall) != nullptr;
    return isNoted ? event.FromMoment(state->openSince) : DateTime();
}

bool hasSnoozed(const calEvent& event, const DueFacts& facts, DateTime now) {
    return isAnySnoozed(EventView(event, facts, now));
}

bool hasListed(const calEvent& event, const DueFacts& facts, DateTime now) {
    return isAnyListed(EventView(event, facts, now));
}

bool hasOpenReminder(const calEvent& event, const DueFacts& facts, DateTime now) {
    if (mayStandInAList(event, facts.state, now)) {
        return true;
    }
    const EventView view(event, facts, now);
    const DateTime since = notedOpenSince(event, facts.state);
    return isAnySnoozed(view) || isAnyListed(view) ||
           (!since.isZero() && askDue(event, facts, {now, now, now, since}).taken);
}

}  // namespace vl
