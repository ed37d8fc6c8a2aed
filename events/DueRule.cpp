#include "DueRule.h"

#include <algorithm>
#include <vector>

#include "events/ActRules.h"
#include "events/GenCollection.h"
#include "model/clsReminder.h"

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

/// A scheduled reminder: minutes before the start, and the offset of the later one after it.
struct Offset {
    std::int64_t minutes;
    std::int32_t next;
};

std::vector<Offset> offsetsOf(const calEvent& event) {
    std::vector<Offset> offsets;
    std::int32_t next = calEvent::kNoReminder;
    for (const Variant& item : event.RemindersCol ? *event.RemindersCol : GenCollection()) {
        if (const auto reminder = objectIn<clsReminder>(item)) {
            // Ascending: of two at the same time the first tells what comes after both.
            if (offsets.empty() || offsets.back().minutes != reminder->Minutes) {
                offsets.push_back({reminder->Minutes, next});
            }
            next = reminder->Minutes;
        }
    }
    return offsets;
}

/// The event as the ledger and its row see it.
class EventView {
public:
    /// `now`, where it matters what is over by it.
    EventView(const calEvent& event, const DueFacts& facts, std::optional<DateTime> now = {})
        : event_(event),
          facts_(facts),
          state_(facts.state != nullptr ? *facts.state : nothing()),
          repeats_(event.IsRepeating()) {
        if (now) {
            const std::int64_t length = event.EndOf(event.StartDateTime).milliseconds() -
                                        event.StartDateTime.milliseconds();
            over_ = DateTime::fromMilliseconds(now->milliseconds() - length);
            latestAct_ = facts.zone.toUtc(*now).addDays(1);
        }
        const RowWord live{event.NextReminder, event.Dismissed};
        rowSpeaks_ = live.saysAnything() && rowSpeaks(event, facts.state);
        const RowWord& word = rowSpeaks_ ? live : state_.word;
        if (word.saysAnything()) {
            says_ = rowSays(event, word, facts.replaced);
        }
    }

    const calEvent& event() const { return event_; }
    const EventState& state() const { return state_; }
    bool repeats() const { return repeats_; }

    bool isOver(DateTime start) const { return !over_ || start <= *over_; }
    /// Occurrences that begin from here on are not over.
    DateTime goesOn() const { return over_.value_or(DateTime()).addSeconds(1); }

    /// Whether a scheduled reminder of the occurrence is still to be shown.
    bool isOpen(DateTime start, DateTime time) const {
        if (isReplaced(start) || time < says_.snoozed || isSilenced(event_, says_, start, time)) {
            return false;
        }
        if (state_.occurrences.empty() && state_.endedBefore.isZero()) {
            return true;
        }
        const DateTime wall = event_.ToWall(start);
        const OccurrenceState* entry = state_.find(wall);
        const DateTime snoozed = snoozeOf(entry);
        if (!snoozed.isZero() && time < snoozed) {
            return false;
        }
        const bool spared = entry != nullptr && (entry->spared || !entry->snoozed.isZero());
        // Ended with others was only what was over, by a clock that may have been ahead.
        if (wall < state_.endedBefore && isOver(start) && !spared) {
            return false;
        }
        if (entry == nullptr) {
            return true;
        }
        return event_.ToMoment(time) > handledThrough(*entry) && entry->muted != Muted::ForEver &&
               (entry->muted != Muted::ThroughStart || time > start);
    }

    /// Below this start every scheduled reminder is silent, but of spared occurrences.
    DateTime firstOpenStart() const {
        DateTime first = event_.FromWall(state_.endedBefore);
        if (over_) {
            first = std::min(first, goesOn());
        }
        if (!says_.silentThrough.isZero()) {
            first = std::max(
                first, says_.silentThrough.addMinutes(event_.RemindersMaxOffsetMin).addSeconds(1));
        }
        return first;
    }

    /// Scheduled reminders before this are superseded.
    DateTime supersededBefore() const { return says_.snoozed; }

    template <class Visit>
    void forEachSnooze(Visit&& visit) const {
        const bool fromRow = rowSpeaks_ && !says_.snoozed.isZero();
        if (fromRow && !isGone(says_.occurrence)) {
            visit(says_.occurrence, says_.snoozed);
        }
        for (const OccurrenceState& one : state_.occurrences) {
            const DateTime start = startOf(one);
            const DateTime time = localSnooze(one);
            const bool silenced = rowSpeaks_ && isSilenced(event_, says_, start, time);
            if (!time.isZero() && !silenced && !isGone(start) &&
                !(fromRow && start == says_.occurrence)) {
                visit(start, time);
            }
        }
    }

    /// What was listed and not acted upon, where that occurrence still is one.
    template <class Visit>
    void forEachListed(Visit&& visit) const {
        for (const OccurrenceState& one : state_.occurrences) {
            if (one.listed.isZero()) {
                continue;
            }
            const DateTime start = startOf(one);
            const DateTime time = event_.FromMoment(one.listed);
            if (isThere(one) && isOpen(start, time)) {
                visit(start, time);
            }
        }
    }

    DateTime startOf(const OccurrenceState& one) const {
        return repeats_ ? event_.FromWall(one.start) : event_.StartDateTime;
    }

    /// Whether the event still has that occurrence: the host may have moved or excluded it since.
    bool isThere(const OccurrenceState& one) const {
        const DateTime start = startOf(one);
        return repeats_ ? !event_.ICalRecEvents(start, start, 1).empty()
                        : one.start == event_.ToWall(start);
    }

private:
    static const EventState& nothing() {
        static const EventState state;
        return state;
    }

    bool isReplaced(DateTime start) const {
        return std::binary_search(facts_.replaced.begin(), facts_.replaced.end(), start);
    }

    // A snooze stays when the series is re-timed; only who takes its occurrence away ends it.
    bool isGone(DateTime start) const {
        return repeats_ && (isReplaced(start) || event_.IsExcluded(start));
    }

    // By a clock that was more than a day ahead: nothing that it said of the time holds.
    bool isOfWrongClock(const OccurrenceState& one) const {
        return latestAct_ && one.acted > *latestAct_;
    }

    // Of such an act only which reminder it was on.
    DateTime handledThrough(const OccurrenceState& one) const {
        return isOfWrongClock(one) ? std::min(one.handled, one.reminder) : one.handled;
    }

    DateTime localSnooze(const OccurrenceState& one) const {
        if (one.snoozed.isZero()) {
            return {};
        }
        // Nobody knows what was meant: the reminder is shown again.
        return isOfWrongClock(one) && !one.reminder.isZero() ? event_.FromMoment(one.reminder)
                                                             : facts_.zone.fromUtc(one.snoozed);
    }

    // Of a single event also one that was made before the host moved it.
    DateTime snoozeOf(const OccurrenceState* entry) const {
        if (repeats_) {
            return entry != nullptr ? localSnooze(*entry) : DateTime();
        }
        DateTime latest;
        for (const OccurrenceState& one : state_.occurrences) {
            latest = std::max(latest, localSnooze(one));
        }
        return latest;
    }

    const calEvent& event_;
    const DueFacts& facts_;
    const EventState& state_;
    RowSays says_;
    std::optional<DateTime> over_;       // occurrences that begin up to here are over
    std::optional<DateTime> latestAct_;  // UTC
    bool repeats_;
    bool rowSpeaks_ = false;
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
    const bool isNoted = event.IsRepeating() ? state->openOf.isZero() || state->openOf == wall
                                             : state->find(wall) != nullptr;
    return isNoted ? event.FromMoment(state->openSince) : DateTime();
}

bool hasOpenReminder(const calEvent& event, const DueFacts& facts, DateTime now) {
    const EventView view(event, facts);
    bool open = false;
    const auto found = [&](DateTime, DateTime) { open = true; };
    view.forEachSnooze(found);
    view.forEachListed(found);
    const DateTime since = notedOpenSince(event, facts.state);
    return open || (!since.isZero() && askDue(event, facts, {now, now, now, since}).taken);
}

}  // namespace vl
