// Events whose reminders are all past.
#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "DonePass.h"
#include "FullRead.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/ActRules.h"
#include "events/CalEvents.h"
#include "events/EventHistory.h"
#include "events/EventIndex.h"
#include "events/Ledger.h"
#include "events/LedgerHistory.h"

namespace vl {

namespace {

constexpr std::string_view kAllDone = "AllDone";

bool isAllDone(const calEvent& event) { return text::equalsNoCase(event.status, kAllDone); }

// As long as the start that it stands for is ahead, an exception keeps its series from ringing.
bool replacesWhatIsAhead(const calEvent& event, DateTime now) {
    return event.IsException() && event.RExceptionStartTimeOrig > now;
}

// Where nobody keeps a history the row speaks: a next reminder later than the dismissal is a
// snooze that has not been acted upon.
bool isOpen(const calEvent& event, DateTime lastReminder, DateTime now,
            const EventHistory* history) {
    if (history != nullptr) {
        return history->isOpen(event, lastReminder, now);
    }
    return event.NextReminder > event.Dismissed;
}

// A full day after its last reminder.
bool isPast(DateTime last, DateTime now) { return last > DateTime() && last < now.addDays(-1); }

bool isFinished(const calEvent& event, DateTime now, const EventHistory* history) {
    const DateTime last = lastReminderOf(event);
    return isPast(last, now) && !replacesWhatIsAhead(event, now) &&
           !isOpen(event, last, now, history);
}

// The first start on a long calendar finds thousands of them: a statement for each, with its
// waiting for the disk or for others, would take minutes. What cannot be written now is found
// again at the next start. True when all is written.
bool writeStatus(DBRemindUtils& db, std::string_view status, std::span<const std::string> GUIDs) {
    calEvent carrier;
    carrier.status = status;
    while (!GUIDs.empty()) {
        const auto some = GUIDs.first(std::min(DBRemindUtils::kKeysAtOnce, GUIDs.size()));
        carrier.SaveStatusDB(db, some);
        if (db.LastError() != ErrNo::None) {
            return false;
        }
        GUIDs = GUIDs.subspan(some.size());
    }
    return true;
}

}  // namespace

void CalEvents::UpdateAllDone(EventHistory* history) {
    const ErrScope scope;
    if (!mCol) {
        return;
    }
    const GenCollection held = *mCol;
    const DateTime now = clock_.now();
    index_->bring(held);
    const auto events = index_->events();
    DonePass& pass = *done_;
    if (pass.version != index_->version() || isPast(pass.nextLast, now)) {
        lookForPast(now);
    }
    std::vector<calEvent*> finished;
    for (const std::size_t i : pass.past) {
        attempt([&] {
            if (!isAllDone(*events[i]) && !IsReadInPart(events[i]->GUID) &&
                isFinished(*events[i], now, history)) {
                finished.push_back(events[i]);
            }
        });
    }
    finish(finished, history);
}

void CalEvents::finish(std::span<calEvent* const> finished, EventHistory* history) {
    std::vector<std::string> GUIDs;
    std::vector<EventHistory::Replaced> replaced;
    for (calEvent* event : finished) {
        event->status = kAllDone;
        writtenBack_.erase(guidHash(event->GUID));
        index_->look(event->GUID);
        fullRead_->look(*event);
        if (!event->GUID.empty()) {
            GUIDs.push_back(event->GUID);
        }
        // It is read no more, and still stands for an occurrence of its series.
        if (event->IsException() && !event->RExceptionStartTimeOrig.isZero()) {
            replaced.push_back({seriesOf(*event), event->RExceptionStartTimeOrig});
        }
    }
    if (history != nullptr) {
        history->keepReplaced(replaced);
    }
    writeStatus(db_, kAllDone, GUIDs);
}

// What their user has brought back, and was passed over, is asked about again when an act has been
// on it; what else is open was read before it was listed or snoozed.
void CalEvents::lookForStillOpen() {
    if (ledger_ == noLedger_.get()) {
        return;
    }
    StillOpen& known = stillOpen_;
    const bool isSame = known.ledger == ledger_ && known.database == db_.DBFullName;
    const std::uint64_t version = ledger_->version();
    if (isSame && known.version == version) {
        return;
    }
    const auto changed =
        isSame ? ledger_->changedSince(known.version) : std::vector<std::uint64_t>();
    const auto before = std::exchange(known, StillOpen{ledger_, db_.DBFullName, version, {}, {}});
    for (const std::string& GUID : ledger_->broughtBack(db_.DBFullName)) {
        known.all.insert(guidHash(GUID));
        if (!mCol || !mCol->Exists(GUID)) {
            known.broughtBack.insert(guidHash(GUID));
        }
    }
    for (const std::string& GUID : ledger_->withOpen(db_.DBFullName)) {
        known.all.insert(guidHash(GUID));
    }
    const bool isOn = std::any_of(changed.begin(), changed.end(), [&](std::uint64_t hash) {
        return known.broughtBack.contains(hash) || before.broughtBack.contains(hash);
    });
    if (!isSame || isOn) {
        readPassedOverAnew();
    }
}

// Also of what a full read has passed over.
void CalEvents::readPassedOverAnew() {
    source_ = Source();
    ahead_ = Ahead();
    fullRead_->forgetPassedOver();
}

DateTime CalEvents::takesBackFrom() const {
    const DateTime now = clock_.now();
    return takeBackFrom_.isZero() ? now : std::min(now, takeBackFrom_);
}

bool CalEvents::isOpenAgain(const calEvent& event) const {
    const DateTime now = clock_.now();
    if (event.ISRecurrenceExceptionDeleted != 0) {
        return false;
    }
    if (isStillOpen(event, *ledger_, db_.DBFullName, now, !takeBackFrom_.isZero())) {
        return true;
    }
    const DateTime last = lastReminderOf(event);
    const bool goesOn = last > takesBackFrom() ||
                        (last.isZero() && event.IsRepeating() && !event.NextInstance(now).isZero());
    return (goesOn || isMetAnew(event, *ledger_, db_.DBFullName, now)) &&
           !isDoneByUser(event, *ledger_, db_.DBFullName, now);
}

// What cannot be written now is tried again with the next reload, as long as the set has it so: its
// row may say something else by then, and be passed over. Until then the set has it alone; also of
// what somebody else has finished again since, whose word would go against ours for ever.
void CalEvents::writeTakenBack() {
    std::erase_if(takenBack_, [this](const std::string& GUID) {
        const auto event = mCol ? objectAt<calEvent>(*mCol, GUID) : nullptr;
        return !event || isAllDone(*event) || writtenBack_.contains(guidHash(GUID));
    });
    if (!takenBack_.empty() && writeStatus(db_, "", takenBack_)) {
        for (const std::string& GUID : std::exchange(takenBack_, {})) {
            writtenBack_.insert(guidHash(GUID));
        }
    }
}

// Which events have nothing more to come, and when that will be true of the next one.
void CalEvents::lookForPast(DateTime now) {
    DonePass& pass = *done_;
    pass.version = index_->version();
    pass.nextLast = DateTime();
    pass.past.clear();
    for (std::size_t i = 0; i < index_->events().size(); ++i) {
        const calEvent* event = index_->events()[i];
        if (event == nullptr || isAllDone(*event)) {
            continue;
        }
        attempt([&] {
            const DateTime last = lastReminderOf(*event);
            if (isPast(last, now)) {
                pass.past.push_back(i);
            } else if (last > DateTime() && (pass.nextLast.isZero() || last < pass.nextLast)) {
                pass.nextLast = last;
            }
        });
    }
}

void CalEvents::RemoveAllDone() {
    const ErrScope scope;
    if (!mCol) {
        return;
    }
    index_->bring(*mCol);
    const auto events = index_->events();
    for (std::size_t i = events.size(); i > 0; --i) {
        if (events[i - 1] != nullptr && isAllDone(*events[i - 1])) {
            mCol->Remove(i);
        }
    }
}

void CalEvents::RemoveAllDoneOf(const CalEvents& other) {
    const ErrScope scope;
    if (!mCol || !other.mCol) {
        return;
    }
    EventIndex& index = *other.index_;
    index.bring(*other.mCol);
    if (done_->otherVersion == index.version() && done_->ownStamp == mCol->Stamp()) {
        return;
    }
    for (const calEvent* event : index.events()) {
        if (event != nullptr && isAllDone(*event)) {
            mCol->Remove(event->GUID);
        }
    }
    done_->otherVersion = index.version();
    done_->ownStamp = mCol->Stamp();
}

void CalEvents::RemoveAllDoneStatus() {
    db_.Execute(
        "UPDATE Reminders SET Reminders.status = \"\" WHERE (((Reminders.status)=\"AllDone\"));");
}

}  // namespace vl
