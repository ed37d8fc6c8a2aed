// The check's question, and what is noted of its answer.
#include <algorithm>

#include "DueBook.h"
#include "FullRead.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/ActRules.h"
#include "events/CalEvents.h"
#include "events/EventIndex.h"
#include "events/FileTrouble.h"
#include "events/WrongClock.h"

namespace vl {

namespace {

// Where the host does not say which start an exception replaces, it is taken for the one of its day
// that would have been shown together with it.
bool replacesUnknown(const calEvent& event) {
    return event.IsException() && !event.recurringEventId.empty() &&
           event.RExceptionStartTimeOrig.isZero();
}

// Not what its user has put off, or has seen in the list: that was shown before.
bool wouldBeShownWith(const calEvent& exception, const calEvent& series, const Due& due,
                      const EventState* state) {
    const OccurrenceState* one =
        state != nullptr ? state->find(series.ToWall(due.instance)) : nullptr;
    const bool isNew = one == nullptr || (one->snoozed.isZero() && one->listed.isZero());
    return isNew && due.instance.date() == exception.StartDateTime.date() &&
           isScheduled(series, due.instance, due.time);
}

bool isOf(const calEvent& event, const SeriesName& series, bool anyBase) {
    return text::equalsNoCase(event.id, series.id) &&
           (anyBase || text::equalsNoCase(event.VLBase, series.VLBase));
}

// The exception's series among what was found: that in its own host's database, or where that has
// none, any with the id. Null when it was not found.
const DueBook::Found* masterAmong(const std::vector<DueBook::Found>& found,
                                  const calEvent& exception, const GenCollection& events) {
    const SeriesName series = seriesOf(exception);
    const auto among = [&](bool anyBase) -> const DueBook::Found* {
        const auto master = std::find_if(
            found.begin(), found.end(),
            [&](const DueBook::Found& one) { return isOf(*one.event, series, anyBase); });
        return master != found.end() ? &*master : nullptr;
    };
    const DueBook::Found* other = among(true);
    if (other == nullptr) {
        return nullptr;
    }
    if (const auto* own = among(false)) {
        return own;
    }
    for (const Variant& item : events) {
        const auto event = objectIn<calEvent>(item);
        if (event && isOf(*event, series, false)) {
            return nullptr;
        }
    }
    return other;
}

// It stands in the list with the reminder of that time.
void recordListed(EventState& state, const calEvent& event, DateTime start, DateTime time) {
    OccurrenceState& entry = entryOf(state, event, start);
    entry.listed = event.ToMoment(time);
    state.newlyMet = false;
}

// What fell due from `since` on, a moment, may not have been shown.
void recordOpen(EventState& state, const calEvent& event, DateTime since) {
    state.openSince = since;
    state.openOf = event.IsRepeating() ? event.ToWall(event.StartDateTime) : DateTime();
}

}  // namespace

void CalEvents::UseLedger(Ledger& ledger, Listed listed) {
    ledger_ = &ledger;
    listed_ = std::move(listed);
    book_ = std::make_unique<DueBook>();
}

std::shared_ptr<GenCollection> CalEvents::pendingCol(DateTime FromTime, DateTime ToTime,
                                                     DateTime since) {
    auto answer = std::make_shared<GenCollection>();
    if (!mCol) {
        return answer;
    }
    std::vector<DueBook::Found> found;
    const auto listed = listed_ ? listed_() : nullptr;
    attempt([&] {
        found = book_->ask(*mCol, {FromTime, ToTime, clock_.now(),
                                   since.isZero() ? FromTime : std::min(since, FromTime),
                                   db_.DBFullName, *ledger_, listed.get()});
    });
    keepLeft();
    noteMoved();
    for (const DueBook::Found& one : found) {
        // In a copy: what the views' questions leave in the set's own is none of the list's.
        const auto copy = std::make_shared<calEvent>(*one.event);
        recordDue(*copy, one.due);
        answer->Add(Variant(copy), copy->GUID);
    }
    for (const DueBook::Found& one : found) {
        if (replacesUnknown(*one.event)) {
            const auto* master = masterAmong(found, *one.event, *mCol);
            if (master == nullptr) {
                continue;
            }
            const calEvent& event = *master->event;
            if (wouldBeShownWith(*one.event, event, master->due,
                                 ledger_->find(db_.DBFullName, event.GUID))) {
                answer->Remove(event.GUID);
                ledger_->keepReplaced(db_.DBFullName, seriesOf(*one.event), master->due.instance);
            }
        }
    }
    return answer;
}

// The row of an exception may be purged, or be read no more: its series must not ring instead.
void CalEvents::keepLeft() {
    std::vector<Ledger::Replaced> replaced;
    for (const DueBook::Left& left : book_->takeLeft()) {
        replaced.push_back({left.series, {notedNow(left.replaced)}});
    }
    ledger_->keepReplaced(db_.DBFullName, replaced);
}

// What is shown after a restart is the event as it is now.
void CalEvents::noteMoved() {
    std::vector<Ledger::Change> changes;
    for (const DueBook::Moved& one : book_->moved()) {
        const DateTime since = book_->openSince(*one.event);
        changes.push_back({one.event->GUID, [one, since](EventState& state) {
                               recordOpen(state, *one.event, since);
                               if (one.isElsewhere) {
                                   for (OccurrenceState& entry : state.occurrences) {
                                       entry.listed = DateTime();
                                   }
                                   recordListed(state, *one.event, one.due.instance, one.due.time);
                               }
                           }});
    }
    if (!changes.empty()) {
        ledger_->change(db_.DBFullName, "moved", changes);
    }
}

// Who has finished or deleted an exception may be another program, before a check has seen it.
void CalEvents::keepPassedOver() {
    std::vector<Ledger::Replaced> replaced;
    for (auto& one : fullRead_->takePassedOver()) {
        replaced.push_back({std::move(one.series), {notedNow(one.start)}});
    }
    ledger_->keepRecentlyReplaced(db_.DBFullName, std::move(replaced));
}

void CalEvents::NoteListed(const std::vector<std::shared_ptr<calEvent>>& taken) {
    const ErrScope scope;
    std::vector<Ledger::Change> changes;
    for (const auto& event : taken) {
        const DateTime time = event->RecordedReminderD();
        const DateTime start = event->InstanceStart;
        const DateTime since = book_->openSince(*event);
        changes.push_back({event->GUID, [event, time, start, since](EventState& state) {
                               recordListed(state, *event, start, time);
                               recordOpen(state, *event, since);
                           }});
        if (const auto own = mCol ? objectAt<calEvent>(*mCol, event->GUID) : nullptr) {
            own->dLastReminder = time;
        }
    }
    if (!changes.empty()) {
        ledger_->change(db_.DBFullName, "listed", changes);
    }
}

bool CalEvents::TakeClock(const ClockWord& clock) {
    const ErrScope scope;
    const TimeZone here = TimeZone::local();
    std::vector<Ledger::Change> changes;
    bool isInDoubt = false;
    for (const std::string& GUID :
         ledger_->actedAfter(db_.DBFullName, latestAct(clock.now, here))) {
        if (!bearsOn(clock, *ledger_->find(db_.DBFullName, GUID), here)) {
            isInDoubt = true;
            continue;
        }
        auto event = mCol ? objectAt<calEvent>(*mCol, GUID) : nullptr;
        // By a clock that was ahead it may be finished, and is taken back only when it was set
        // right.
        event = event ? event : EventByGUID(GUID);
        isInDoubt = isInDoubt || (!event && passes(db_));
        if (event) {
            changes.push_back({GUID, [&, event](EventState& state) {
                                   takeClock(state, *event, clock, here);
                                   isInDoubt = isInDoubt || !state.doubted.empty();
                               }});
        }
    }
    if (!changes.empty()) {
        ledger_->change(db_.DBFullName, "clock", changes);
    }
    return isInDoubt;
}

bool CalEvents::RecordListed(calEvent& event) const {
    const EventState* state = ledger_->find(db_.DBFullName, event.GUID);
    const OccurrenceState* one = state != nullptr ? state->listed() : nullptr;
    if (one == nullptr) {
        return false;
    }
    recordDue(event, {event.FromWall(one->start), event.FromMoment(one->listed)});
    return true;
}

std::span<const DateTime> CalEvents::Replaced(const calEvent& event) const {
    return book_->replaced(event);
}

void CalEvents::LookAgain(std::string_view GUID) {
    book_->look(GUID);
    index_->look(GUID);
    takeRowsWord(GUID);
}

void CalEvents::takeRowsWord(std::string_view GUID) {
    if (const auto event = mCol ? objectAt<calEvent>(*mCol, GUID) : nullptr) {
        fullRead_->look(*event);
    } else {
        fullRead_->lookAtAll();  // it may be an object that the set had
    }
}

}  // namespace vl
