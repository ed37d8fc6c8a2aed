// The events read from the table `Reminders`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/Damage.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

class AnswerMemo;
class DueBook;
class EventHistory;
class EventIndex;
class FullRead;
class Ledger;
class SharedReminders;
struct ClockWord;

/// The set of events behind checks and views. Two of these live: one for the checks, one behind
/// the period views. Events are shared with who asks for them, and both queries write
/// `InstanceStart`, `iRemMinutes` and `iRemMinutesNext` into them, so these hold what the last
/// query left. Who changes an event of the set in place tells it by `LookAgain`.
///
/// The two sets hold the same events for the price of one (`Adopt`), and what either leaves in an
/// event is never seen in the other: the check's question gives copies, and a set that has adopted
/// its events makes them its own before it writes into them.
/// No method throws: each carries on after a failing step and leaves the pending error as it was.
class CalEvents {
public:
    /// `db` and `clock` must outlive the set. `defaultReminders` stands for the calendar's
    /// defaults: short texts parted by commas ("10m,1d").
    CalEvents(DBRemindUtils& db, const Clock& clock, std::string defaultReminders = {});
    ~CalEvents();
    CalEvents(const CalEvents&) = delete;
    CalEvents& operator=(const CalEvents&) = delete;

    /// Gives the list of new reminders, by `GUID`.
    using Listed = std::function<std::shared_ptr<const GenCollection>()>;

    /// What the user has dealt with, and which events stand in the list of new reminders: without
    /// it the check's question knows of no act. Both must outlive the set.
    ///
    /// From then on a full read takes back what is all done and has a reminder ahead, in its row,
    /// too, unless its user has marked it as done: the host may have moved it since and left the
    /// status alone, or the clock was ahead when it was finished. So it does with what its user has
    /// brought back, as long as that is open, whether or not the row can be written.
    void UseLedger(Ledger& ledger, Listed listed);

    /// From now on what has changed is found by a full read of `full`, which that set's next reload
    /// takes over while nobody has written the file: so in a check each row is decoded once,
    /// however many have changed. Both sets read the same file; `full` must outlive this one.
    void ReadWith(CalEvents& full) { full_ = &full; }

    /// Leaves out of the set what that full read has not found any more: its row has gone since, by
    /// whomever, or is finished. Reading what has changed leaves it in.
    void DropGone();

    std::shared_ptr<GenCollection> mCol;  // by GUID; absent until the first read
    DateTime dLastRead;                   // 0: never; local time at the end of the last read

    /// Adds the event under `sKey`; one that is already there stays.
    void Add(const std::shared_ptr<calEvent>& event, std::string_view sKey = {});

    /// Brings the set up to date. `Reload` starts from empty; otherwise only rows changed since
    /// the last read are fetched, and rows that stopped matching stay. `Dismissed` keeps only rows
    /// with (true) or without (false) a dismissed time.
    /// Returns 1 when the query gave at least one row, else 0; never a count.
    ///
    /// An event whose row is as it was keeps its object, without what queries left in it. While
    /// nobody has written the file since the last read that succeeded, there is nothing to ask for:
    /// the set then keeps what it has, at the cost of a look at the file.
    int ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed = {});
    /// Whether the last `ReadDB` came to its end. One that did not may have left the set without
    /// events that its file has.
    bool IsRead() const noexcept { return isRead_; }

    /// The next full read gives what was taken out of the set and stands in the file, although
    /// nobody has written that since.
    void ReadAnew() { source_ = Source(); }

    /// Rows that the last full read could not read, or not all of: the file is damaged. Their
    /// events are as they were before where the set held them, else without what cannot be read,
    /// else missing.
    std::size_t DamagedRows() const noexcept { return damage_.rows; }
    /// Whether the event is without some of its row's values: what it seems to be it may not be.
    bool IsReadInPart(std::string_view GUID) const;

    /// Makes the set hold what `full` holds after a full read, however it came to differ: what an
    /// incremental read has missed is added, what is not there any more leaves, and of what both
    /// hold the objects of `full` are shared. Costs nothing when nothing differs.
    void Adopt(const CalEvents& full);

    /// The query of a read: of what is not deleted, without what is all done and by `Dismissed` as
    /// above; since `dLastRead` only, when that is greater than 0.
    static std::string ReadStatement(bool IncludeAllDone, std::optional<bool> Dismissed,
                                     DateTime dLastRead);

    // ---- events whose reminders are all past (CalEventsDone.cpp)

    /// Gives the events that are finished the status "AllDone", in their rows, too. One is finished
    /// a day after its last reminder of all, unless something about it is still open; a series
    /// without an end never is. `history` knows what is open; without one the row alone says
    /// whether its event is snoozed. It is told which starts finished exceptions have taken over.
    void UpdateAllDone(EventHistory* history = nullptr);
    /// Takes the events with that status out of the set.
    void RemoveAllDone();
    /// Takes those out that have it in `other`.
    void RemoveAllDoneOf(const CalEvents& other);
    /// Empties that status in all rows.
    void RemoveAllDoneStatus();

    /// Copies the current row's columns into the properties of the same names; a column that the
    /// event does not know is passed over.
    static void FillEvent(const RecordSet& row, calEvent& event);

    /// The events with a reminder in [`FromTime`, `ToTime`], both ends included, by `GUID`, in the
    /// set's order. Each is left with the instance and the earliest due reminder of it. A stored
    /// `NextReminder` inside the window stands for its event's reminder.
    /// Cost: events plus occurrences inside the window, not those before it. Never null.
    ///
    /// `bPending` is the check's question: what is to be taken into the list of new reminders, and
    /// which of the listed events are due again, less what the user has dealt with. By time, in
    /// copies of the set's events. Where nothing has happened since the last such question no event
    /// is looked at (see `DueBook`). What fell due from `since` on counts, too, though no listed
    /// event is due again by it; 0: from `FromTime` on.
    std::shared_ptr<GenCollection> RemindCol(DateTime FromTime, DateTime ToTime,
                                             bool bPending = false, DateTime since = {});

    /// Notes in the ledger that these events were taken into the list of new reminders, each with
    /// the reminder that the question has left in it.
    void NoteListed(const std::vector<std::shared_ptr<calEvent>>& taken);

    /// Leaves in the event the reminder that the ledger says it is listed with, in the local times
    /// of now. False when it says none.
    bool RecordListed(calEvent& event) const;

    /// Notes in the ledger what the computer's clock says of the acts that lie ahead of it: see
    /// `takeClock`. True: of some it must be asked again with the next check, since which clock is
    /// right is not known yet.
    bool TakeClock(const ClockWord& clock);

    /// A clock that was wrong may have finished what stands in the list, or what no check has asked
    /// for: events whose last reminder lies later than that, local time. Reads take them back. 0:
    /// no clock was; only those with one ahead, or a snooze. See `FullRead::takeBack`.
    void TakeBackFrom(DateTime since) { takeBackFrom_ = since; }

    /// Works out anew which occurrences series have, for a computer whose zone has changed.
    void TakeZone(const TimeZone& here);

    /// For who changes an event of the set in place, whatever of it: the next check and the next
    /// views look at it again, and the next full read takes its row's word. An object that takes
    /// another one's place in `mCol` is looked at anyway.
    void LookAgain(std::string_view GUID);

    /// The starts of a series that exceptions have taken over, as of the last question for what is
    /// pending, or of `FindReplaced`; ascending.
    std::span<const DateTime> Replaced(const calEvent& event) const;

    /// For a set that holds a few events only and is asked no such question: reads from the file
    /// and the ledger what exceptions have taken over from its series. Costs a look at each row.
    void FindReplaced();

    /// The events that start in [`FromDate`, `ToDate`], both ends included, by `GUID`, each left
    /// with its earliest occurrence there unless an earlier one already stands in it. Never null.
    std::shared_ptr<GenCollection> EventCol(DateTime FromDate, DateTime ToDate);

    /// The event read afresh from the database, or null. The text is not escaped.
    std::shared_ptr<calEvent> EventByID(std::string_view id) const;
    std::shared_ptr<calEvent> EventByGUID(std::string_view GUID) const;

    /// "a || b || c" as "a (b)"; a text without the separator as it is.
    static std::string ReminderMSG(std::string_view message);

private:
    /// What a set was read from, and how.
    struct Source {
        DBRemindUtils::Look look;
        bool IncludeAllDone = false;
        std::optional<bool> Dismissed;
        bool full = false;                    // by a read that started from empty
        int result = 0;                       // of the read
        DateTime modified;                    // of the row that was written last
        std::weak_ptr<GenCollection> filled;  // the collection it filled
    };

    /// A full read for the next reload.
    struct Ahead {
        DBRemindUtils::Look look;
        std::shared_ptr<GenCollection> events;  // null: there is none
    };

    /// Events that are to be asked about though their rows say that they are all done, as of a
    /// version of the ledger; by `guidHash`.
    struct StillOpen {
        const Ledger* ledger = nullptr;
        std::string database;
        std::uint64_t version = 0;
        std::unordered_set<std::uint64_t> broughtBack;  // by their user, and not held
        std::unordered_set<std::uint64_t> all;          // and with something that is noted as open
    };

    struct DonePass;  // what the last look for finished events has found

    std::shared_ptr<GenCollection> pendingCol(DateTime FromTime, DateTime ToTime, DateTime since);
    void keepLeft();
    void noteMoved();
    void takeRowsWord(std::string_view GUID);
    void keepPassedOver();

    // Nothing that it could read has changed, and nothing has failed to be read since.
    bool isUnchanged(const Source& now) const;
    bool readAll(const std::string& statement, Source& source);
    std::shared_ptr<GenCollection> readTable(const std::string& statement, bool takesBack,
                                             const GenCollection& before);
    std::shared_ptr<GenCollection> readAhead();
    void takeChangedOf(const GenCollection& all, Source& source);
    bool readChanged(const std::string& statement, Source& source);
    DateTime takesBackFrom() const;
    bool isOpenAgain(const calEvent& event) const;
    void lookForStillOpen();
    void readPassedOverAnew();
    void writeTakenBack();
    bool readChangedDamaged(const std::string& statement, Source& source);
    void takeChanged(std::shared_ptr<calEvent> event);
    void separate();
    void carryLastReminders(const GenCollection& full) const;
    void lookForPast(DateTime now);
    void finish(std::span<calEvent* const> finished, EventHistory* history);
    std::shared_ptr<calEvent> readEvent(const std::function<void(calEvent&)>& fill) const;
    std::shared_ptr<calEvent> firstOf(const std::string& statement) const;
    DBRemindUtils& db_;
    const Clock& clock_;
    std::string defaultReminders_;
    std::unique_ptr<Ledger> noLedger_;  // as long as none is used
    Ledger* ledger_;
    Listed listed_;
    std::unique_ptr<DueBook> book_;
    bool isRead_ = false;
    Damage damage_;         // of the rows of the last full read
    Source source_;         // of the last read that succeeded
    bool adopted_ = false;  // another set may hold the events of `mCol`, too
    std::unique_ptr<EventIndex> index_;
    std::unique_ptr<DonePass> done_;
    std::unique_ptr<AnswerMemo> reminded_;
    std::unique_ptr<AnswerMemo> started_;
    std::uint64_t remindedNow_ = 0;  // the answer that the events show; 0: another one, or none
    std::unique_ptr<FullRead> fullRead_;
    std::unique_ptr<SharedReminders> reminders_;
    CalEvents* full_ = nullptr;  // see `ReadWith`
    Ahead ahead_;
    StillOpen stillOpen_;
    DateTime takeBackFrom_;                          // 0: now, and no clock was wrong
    std::vector<std::string> takenBack_;             // GUIDs; their rows do not say it yet
    std::unordered_set<std::uint64_t> writtenBack_;  // `guidHash` of those that have said it
};

}  // namespace vl
