// The check: finds the reminders that have fallen due and hands them to grids and delivery.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"
#include "events/LedgerHistory.h"
#include "notify/Acts.h"
#include "notify/ClockWatch.h"
#include "notify/ReminderScreen.h"
#include "notify/ReminderState.h"

namespace vl {

/// What the window's check timer runs. All methods are procedures: each step carries on after a
/// failing one, and the pending error is left as it was found.
class CheckCycle {
public:
    /// `reminders` is the set that the checks read and ask; `period` is the one behind the views.
    /// What was dealt with stands in `ledger`; `acts` writes what could not be written before.
    /// Everything handed in must outlive the cycle.
    CheckCycle(CalEvents& reminders, CalEvents& period, DBRemindUtils& db, const Clock& clock,
               ReminderState& state, ReminderScreen& screen, Ledger& ledger, Acts& acts);

    /// What the load handler reads: see `readAtStart`. What no check has asked for yet is open.
    void ReadAtStart();

    /// One check over the window from the last check to now plus `interval` (milliseconds), so
    /// that what falls due before the next tick is taken now. A call made while a check runs
    /// returns at once: a message box inside it lets timers tick.
    void Tick(int interval);

    /// What fell due from here on may not have been seen: the last check, or for the first of a run
    /// midnight, or the last known one that does not lie ahead, when that is earlier, at most 30
    /// days back. A check that could not read the file does not count. Where the computer's zone
    /// has changed since, it is the earlier of the same time and the same moment. Where a clock far
    /// ahead was put back, what nobody has asked for by it is not left out.
    DateTime UncheckedSince() const;

    /// Takes the events that the host marked as deleted out of grids and sets, and purges their
    /// rows. Does nothing while the file is as it was when it was last asked; rows that could not
    /// be purged wait for the next check.
    void DoRemoveDeleted();

    /// Removes every row of `GUID` from all three grids.
    void RemoveGUIDAll(std::string_view GUID);

private:
    void check(int interval);
    bool readSets();
    void adoptAll();
    void takeZone();
    void takeClock(bool isRead);
    void refillListed();
    DateTime lastAsked() const;
    void takeBackFrom(DateTime since);
    void noteAsked(bool isRead, DateTime since);
    void removeDealtWith();
    void changeDay();
    void removeEvent(const std::string& GUID);
    void purge();
    bool keepReplacedStarts();
    std::shared_ptr<GenCollection> askForDue(DateTime since, DateTime upTo);
    void takeIn(const GenCollection& due, std::string& message);
    void takeIn(const std::shared_ptr<calEvent>& event, std::string& message);
    void rebuildIndex();
    void notify(const std::string& message);
    void deliver(const std::string& title, const std::string& message);
    std::string title() const;
    void fillWithListed();
    bool refreshPeriod();
    void countWithoutStatus();

    CalEvents& reminders_;
    CalEvents& period_;
    DBRemindUtils& db_;
    const Clock& clock_;
    ReminderState& state_;
    ReminderScreen& screen_;
    Ledger& ledger_;
    Acts& acts_;
    LedgerHistory history_;
    std::optional<TimeZone> zone_;  // the computer's, at the last check
    std::optional<Noted> asked_;    // the end of the last check
    std::optional<Noted> unseen_;   // no check since then could read the file
    ClockWatch watch_;
    bool isInDoubt_ = false;  // acts lie ahead of the clock, perhaps since that is behind
    bool purgeWaits_ = false;
    std::uint64_t dealtVersion_ = 0;   // of the ledger, when the list was held against it
    std::uint64_t dealtList_ = 0;      // the stamp of the list then
    DBRemindUtils::Look deletedLook_;  // when the deleted rows were asked for
    DBRemindUtils::Look statusLook_;   // when the rows without a status were counted
    GenCollection lines_;  // by GUID, the `ValueList` each listed event was taken in with
};

}  // namespace vl
