#include "notify/CheckCycle.h"

#include <algorithm>

#include "app/platform/Memory.h"
#include "base/ErrorState.h"
#include "notify/ReadAgain.h"

namespace vl {

namespace {

// Days that the program can have been off without missing a reminder.
constexpr int kLongestOff = 30;

/// Sets a flag for the time of a scope.
class Raised {
public:
    explicit Raised(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

}  // namespace

CheckCycle::CheckCycle(CalEvents& reminders, CalEvents& period, DBRemindUtils& db,
                       const Clock& clock, ReminderState& state, ReminderScreen& screen,
                       Ledger& ledger, Acts& acts)
    : reminders_(reminders),
      period_(period),
      db_(db),
      clock_(clock),
      state_(state),
      screen_(screen),
      ledger_(ledger),
      acts_(acts),
      history_(ledger, db,
               [&state](std::string_view GUID) { return state.NewReminders->Exists(GUID); }) {
    reminders_.UseLedger(ledger_, [&state] { return state.LastEventsReminded; });
    period_.UseLedger(ledger_, {});
    reminders_.ReadWith(period_);
}

void CheckCycle::ReadAtStart() {
    // However long ago the last check was: so far ahead the clock may be wrong for once, and what
    // is finished is read no more.
    const DateTime last = ledger_.lastCheck(db_.DBFullName);
    takeBackFrom(UncheckedSince());
    history_.uncheckedSince = last.isZero() ? UncheckedSince() : std::min(UncheckedSince(), last);
    history_.isMet = [last, now = clock_.now()](const calEvent& event) {
        return isMetBefore(event, last, now);
    };
    // What an earlier run could not write is found while its event is there: it may be finished.
    readAtStart(reminders_, period_, &history_, [this] { acts_.RestoreWaiting(); });
    history_.uncheckedSince = DateTime();
    history_.isMet = [this](const calEvent& event) {
        return reminders_.mCol && objectAt<calEvent>(*reminders_.mCol, event.GUID).get() == &event;
    };
}

void CheckCycle::Tick(int interval) {
    const ErrScope scope;
    if (state_.bInTimerCheck) {
        return;
    }
    const bool isFirst = state_.dLastUpdated.isZero();
    {
        const Raised running(state_.bInTimerCheck);
        check(interval);
    }
    attempt([&] { screen_.SetIcon(); });
    attempt([&] { db_.CloseDB(); });
    if (isFirst) {  // what the start has needed is no use to a program that waits
        platform::giveBackMemory();
    }
}

void CheckCycle::check(int interval) {
    const DateTime since = UncheckedSince();
    takeBackFrom(since);
    bool isRead = readSets();
    const DateTime upTo = clock_.now().addSeconds(interval / 1000);
    const auto due = askForDue(since, upTo);
    if (due->Count() > 0) {
        std::string message;
        takeIn(*due, message);
        attempt([&] { screen_.FirstNewRowCurrent(); });
        rebuildIndex();
        notify(message);
    }
    changeDay();
    isRead = refreshPeriod() && isRead;
    // Now, not the upper bound: what was taken early is found once more, and heard again. But
    // never later than what was asked for: the machine may have slept inside the check.
    state_.dLastUpdated = std::min(clock_.now(), upTo);
    noteAsked(isRead, since);
}

// By a clock that was wrong an event may be finished that nobody has asked for. Where none was, who
// says that it is all done is somebody else, who may have told of it.
void CheckCycle::takeBackFrom(DateTime since) {
    const bool wasWrong = wasPutBack(ledger_.checks(db_.DBFullName), clock_.now());
    for (CalEvents* set : {&period_, &reminders_}) {
        set->TakeBackFrom(wasWrong ? since : DateTime());
    }
}

// What nobody could read is still to be asked for. Without a database there is nothing to read.
void CheckCycle::noteAsked(bool isRead, DateTime since) {
    asked_ = notedNow(state_.dLastUpdated);
    if (isRead || db_.DBFullName.empty()) {
        unseen_.reset();
        ledger_.noteCheck(db_.DBFullName, state_.dLastUpdated);
    } else if (!unseen_) {
        unseen_ = notedNow(since);
    }
}

// True when the file could be read.
bool CheckCycle::readSets() {
    ledger_.ReadAgain();
    if (purgeWaits_) {
        deletedLook_ = DBRemindUtils::Look();
    }
    DoRemoveDeleted();
    if (period_.dLastRead > clock_.now()) {
        adoptAll();  // what a clock that was ahead has finished may be to come, or be asked for
    }
    takeZone();
    const bool isRead = readAgain(reminders_, false, false);
    if (isRead) {
        reminders_.DropGone();
    }
    takeClock(isRead);
    acts_.RestoreWaiting();
    acts_.WriteWaiting();
    removeDealtWith();
    return isRead;
}

// The question since the last read would pass some over.
void CheckCycle::adoptAll() {
    if (readAgain(period_, true, false)) {
        reminders_.Adopt(period_);
    }
}

// In another zone the host writes local times anew, and stamps them with local times: the question
// since the last read would pass them over.
void CheckCycle::takeZone() {
    const TimeZone here = TimeZone::local();
    if (zone_ && !zone_->same(here)) {
        adoptAll();
        period_.TakeZone(here);
        reminders_.TakeZone(here);
        refillListed();
    }
    zone_ = here;
}

// The clock may have been put right while the program was off, too.
void CheckCycle::takeClock(bool isRead) {
    watch_.look(clock_.now());
    if (!isRead && !db_.DBFullName.empty()) {
        return;
    }
    const ClockWord clock = watch_.take();
    if (clock.turnedBack || isInDoubt_) {
        isInDoubt_ = reminders_.TakeClock(clock);
    }
}

DateTime CheckCycle::UncheckedSince() const {
    const DateTime last = lastAsked();
    const DateTime since = unseen_ ? std::min(last, earlierOf(*unseen_, TimeZone::local())) : last;
    const DateTime now = clock_.now();
    if (since <= now) {
        return since;
    }
    const DateTime skipped = skippedSince(ledger_.checks(db_.DBFullName), now, kLongestOff);
    return skipped.isZero() ? since : std::max(skipped, clock_.today().addDays(-kLongestOff));
}

DateTime CheckCycle::lastAsked() const {
    if (!state_.dLastUpdated.isZero()) {
        return asked_ && asked_->local == state_.dLastUpdated
                   ? earlierOf(*asked_, TimeZone::local())
                   : state_.dLastUpdated;
    }
    const DateTime today = clock_.today();
    const DateTime last = ledger_.lastCheckBy(db_.DBFullName, clock_.now());
    return last.isZero() ? today : std::min(today, std::max(last, today.addDays(-kLongestOff)));
}

// What another copy of the program, or a command, has dealt with leaves the list here, too.
void CheckCycle::removeDealtWith() {
    if (dealtVersion_ == ledger_.version() && dealtList_ == state_.NewReminders->Stamp()) {
        return;
    }
    dealtVersion_ = ledger_.version();
    for (const Variant& item : *state_.NewReminders) {
        const auto event = objectIn<calEvent>(item);
        const EventState* known = event ? ledger_.find(db_.DBFullName, event->GUID) : nullptr;
        if (known != nullptr && known->listed() == nullptr) {
            attempt([&] { screen_.RemoveGUID(event->GUID, kNewRemindersGrid); });
            acts_.LeaveNewList(event->GUID);
        }
    }
    dealtList_ = state_.NewReminders->Stamp();
}

std::shared_ptr<GenCollection> CheckCycle::askForDue(DateTime since, DateTime upTo) {
    // Not from `since` on: while the file cannot be read what is listed would be heard every time.
    state_.dLastUpdated = lastAsked();
    // A clock turned back leaves the last check ahead of now.
    const DateTime from = std::min(state_.dLastUpdated, clock_.now());
    auto due = std::make_shared<GenCollection>();
    attempt([&] { due = reminders_.RemindCol(from, upTo, true, since); });
    return due;
}

bool CheckCycle::refreshPeriod() {
    const bool isRead = readAgain(period_, true, false);
    if (isRead) {
        reminders_.Adopt(period_);
        acts_.RestoreWaiting();
        countWithoutStatus();
        state_.damagedRows = static_cast<int>(period_.DamagedRows());
    }
    if (period_.mCol && period_.mCol->Count() > 0) {
        attempt([&] { screen_.DoPeriod(); });
    }
    return isRead;
}

// The query wants a status, and a null is none: nobody would see such rows.
void CheckCycle::countWithoutStatus() {
    const DBRemindUtils::Look look = db_.TakeLook();
    if (look.same(statusLook_)) {
        return;
    }
    attempt([&] {
        const auto rows = db_.OpenRSAgain(
            "SELECT COUNT(*) AS Missed FROM Reminders WHERE Deleted=0 AND Status is Null");
        state_.rowsWithoutStatus = rows->EOF_() ? 0 : rows->value("Missed").toInt32();
    });
    statusLook_ = look;
}

// The day stays that of the first check: from the next day on this is done with every check.
void CheckCycle::changeDay() {
    if (state_.CheckDay.isZero()) {
        state_.CheckDay = clock_.today();
    }
    if (clock_.today() != state_.CheckDay) {
        // What the host has moved meanwhile is not finished: the set is of the last check.
        // What is new in it, the next check asks for first.
        readAgain(period_, true, false);
        acts_.RestoreWaiting();
        attempt([&] { period_.UpdateAllDone(&history_); });
        attempt([&] { reminders_.RemoveAllDoneOf(period_); });
    }
}

}  // namespace vl
