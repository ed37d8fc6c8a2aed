// The events read from the table `Reminders`.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

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
    std::shared_ptr<GenCollection> RemindCol(DateTime FromTime, DateTime ToTime) const;

    /// The events that start in [`FromDate`, `ToDate`], both ends included, by `GUID`, each left
    /// with its earliest occurrence there unless an earlier one already stands in it. Never null.
    std::shared_ptr<GenCollection> EventCol(DateTime FromDate, DateTime ToDate) const;

    /// The event read afresh from the database, or null. The text is not escaped.
    std::shared_ptr<calEvent> EventByID(std::string_view id) const;
    std::shared_ptr<calEvent> EventByGUID(std::string_view GUID) const;

    /// "a || b || c" as "a (b)"; a text without the separator as it is.
    static std::string ReminderMSG(std::string_view message);

private:
    std::shared_ptr<calEvent> readEvent(const RowReader& row) const;
    std::shared_ptr<calEvent> firstOf(const std::string& statement) const;
    template <class Step>
    void forEachHeld(Step&& step) const;  // every event that takes place

    DBRemindUtils& db_;
    const Clock& clock_;
    std::string defaultReminders_;
};

}  // namespace vl
