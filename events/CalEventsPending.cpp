// The check's question, and what is noted of its answer.
#include <unordered_map>

#include "DueBook.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/CalEvents.h"

namespace vl {

namespace {

// Where the host does not say which start an exception replaces, it is taken for the one that
// would have been shown together with it.
bool replacesUnknown(const calEvent& event) {
    return event.IsException() && !event.recurringEventId.empty() &&
           event.RExceptionStartTimeOrig.isZero();
}

}  // namespace

void CalEvents::UseLedger(Ledger& ledger, std::function<bool(std::string_view)> isListed) {
    ledger_ = &ledger;
    isListed_ = std::move(isListed);
    book_ = std::make_unique<DueBook>();
}

std::shared_ptr<GenCollection> CalEvents::pendingCol(DateTime FromTime, DateTime ToTime) {
    auto answer = std::make_shared<GenCollection>();
    if (!mCol) {
        return answer;
    }
    std::vector<DueBook::Found> found;
    attempt([&] {
        found = book_->ask(*mCol,
                           {FromTime, ToTime, clock_.now(), db_.DBFullName, *ledger_, isListed_});
    });
    keepLeft();
    std::unordered_map<std::string, const DueBook::Found*> series;  // by id
    for (const DueBook::Found& one : found) {
        recordDue(*one.event, one.due);
        answer->Add(Variant(one.event), one.event->GUID);
        if (!one.event->id.empty()) {
            series.emplace(text::foldCase(one.event->id), &one);
        }
    }
    for (const DueBook::Found& one : found) {
        if (replacesUnknown(*one.event)) {
            const auto master = series.find(text::foldCase(one.event->recurringEventId));
            if (master != series.end()) {
                answer->Remove(master->second->event->GUID);
                ledger_->keepReplaced(db_.DBFullName, one.event->recurringEventId,
                                      master->second->due.instance);
                book_->renewReplaced();
            }
        }
    }
    return answer;
}

// The row of an exception may be purged, or be read no more: its series must not ring instead.
void CalEvents::keepLeft() {
    for (const DueBook::Left& left : book_->takeLeft()) {
        ledger_->keepReplaced(db_.DBFullName, left.master, left.replaced);
    }
}

void CalEvents::NoteListed(const std::vector<std::shared_ptr<calEvent>>& taken) {
    const ErrScope scope;
    std::vector<Ledger::Change> changes;
    for (const auto& event : taken) {
        const DateTime time = event->RecordedReminderD();
        const DateTime start = event->InstanceStart;
        const DateTime since = book_->openSince(*event);
        changes.push_back({event->GUID, [event, time, start, since](EventState& state) {
                               OccurrenceState& entry = state.at(event->ToWall(start));
                               entry.end = event->ToWall(event->EndOf(start));
                               entry.listed = event->ToWall(time);
                               state.openSince = since;
                           }});
    }
    if (!changes.empty()) {
        ledger_->change(db_.DBFullName, "listed", changes);
    }
}

void CalEvents::LookAgain(std::string_view GUID) { book_->look(GUID, false); }

}  // namespace vl
