// The events read from the table `Reminders`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

class DueBook;
class Ledger;
class RowReader;

/// The set of events behind checks and views. Two of these live: one for the checks, one behind
/// the period views. Events are shared with who asks for them, and both queries write
/// `InstanceStart`, `iRemMinutes` and `iRemMinutesNext` into them, so these hold what the last
/// query left.
/// No method throws: each carries on after a failing step and leaves the pending error as it was.
class CalEvents {
public:
    /// `db` and `clock` must outlive the set. `defaultReminders` stands for the calendar's
    /// defaults: short texts parted by commas ("10m,1d").
    CalEvents(DBRemindUtils& db, const Clock& clock, std::string defaultReminders = {});
    ~CalEvents();
    CalEvents(const CalEvents&) = delete;
    CalEvents& operator=(const CalEvents&) = delete;

    /// What the user has dealt with, and which events stand in the list of new reminders: without
    /// it the check's question knows of no act. Both must outlive the set.
    void UseLedger(Ledger& ledger, std::function<bool(std::string_view GUID)> isListed);

    std::shared_ptr<GenCollection> mCol;  // by GUID; absent until the first read
    DateTime dLastRead;                   // 0: never; local time at the end of the last read

    /// Adds the event under `sKey`; one that is already there stays.
    void Add(const std::shared_ptr<calEvent>& event, std::string_view sKey = {});

    /// Brings the set up to date. `Reload` starts from empty; otherwise only rows changed since
    /// the last read are fetched, and rows that stopped matching stay. `Dismissed` keeps only rows
    /// with (true) or without (false) a dismissed time.
    /// Returns 1 when the query gave at least one row, else 0; never a count.
    int ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed = {});

    /// The query of a read: of what is not deleted, without what is all done and by `Dismissed` as
    /// above; since `dLastRead` only, when that is greater than 0.
    static std::string ReadStatement(bool IncludeAllDone, std::optional<bool> Dismissed,
                                     DateTime dLastRead);

    /// Copies the current row's columns into the properties of the same names; a column that the
    /// event does not know is passed over.
    static void FillEvent(const RecordSet& row, calEvent& event);

    /// The events with a reminder in [`FromTime`, `ToTime`], both ends included, by `GUID`, in the
    /// set's order. Each is left with the instance and the earliest due reminder of it. A stored
    /// `NextReminder` inside the window stands for its event's reminder.
    /// Cost: events plus occurrences inside the window, not those before it. Never null.
    ///
    /// `bPending` is the check's question: what is to be taken into the list of new reminders, and
    /// which of the listed events are due again, less what the user has dealt with. By time. Where
    /// nothing has happened since the last such question no event is looked at (see `DueBook`).
    std::shared_ptr<GenCollection> RemindCol(DateTime FromTime, DateTime ToTime,
                                             bool bPending = false);

    /// Notes in the ledger that these events were taken into the list of new reminders, each with
    /// the reminder that the question has left in it.
    void NoteListed(const std::vector<std::shared_ptr<calEvent>>& taken);

    /// The next check looks at the event again: for who changes a schedule, or `NextReminder` and
    /// `Dismissed`, in an object of the set. An object that takes another one's place in `mCol` is
    /// looked at anyway.
    void LookAgain(std::string_view GUID);

    /// The events that start in [`FromDate`, `ToDate`], both ends included, by `GUID`, each left
    /// with its earliest occurrence there unless an earlier one already stands in it. Never null.
    std::shared_ptr<GenCollection> EventCol(DateTime FromDate, DateTime ToDate) const;

    /// The event read afresh from the database, or null. The text is not escaped.
    std::shared_ptr<calEvent> EventByID(std::string_view id) const;
    std::shared_ptr<calEvent> EventByGUID(std::string_view GUID) const;

    /// "a || b || c" as "a (b)"; a text without the separator as it is.
    static std::string ReminderMSG(std::string_view message);

private:
    std::shared_ptr<GenCollection> pendingCol(DateTime FromTime, DateTime ToTime);
    void keepLeft();
    std::shared_ptr<calEvent> readEvent(const RowReader& row) const;
    std::shared_ptr<calEvent> firstOf(const std::string& statement) const;
    template <class Step>
    void forEachHeld(Step&& step) const;  // every event that takes place

    DBRemindUtils& db_;
    const Clock& clock_;
    std::string defaultReminders_;
    std::unique_ptr<Ledger> noLedger_;  // as long as none is used
    Ledger* ledger_;
    std::function<bool(std::string_view)> isListed_;
    std::unique_ptr<DueBook> book_;
};

}  // namespace vl
