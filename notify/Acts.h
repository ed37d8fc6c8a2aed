// What the user does to a reminder: snooze, dismiss, mark as done, reactivate, hide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/ActRules.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"
#include "model/calEvent.h"
#include "notify/ReminderState.h"

namespace vl {

/// The row an act is on, as it was filled. Copy it before a dialog is shown: while a box is open
/// checks go on, and change what the events hold.
struct ActRow {
    std::shared_ptr<calEvent> event;  ///< of the row; never null
    DateTime InstanceStart;           ///< of the occurrence the row shows
    DateTime reminder;                ///< the time of its reminder; 0 in a row that shows none
};

/// Each act is noted in the ledger and on the disk before the event's row is written; it is set at
/// once in every object that holds the event (of both sets, of the list of new reminders, of the
/// row) and works on the row's own occurrence, which it first restores in them. The act holds
/// whatever becomes of the row: one that cannot be written now is written later. An act on an event
/// that has left the sets is done all the same.
///
/// Rows, tray and window are the caller's: these take the event off the list of new reminders and
/// out of its index (`LeaveNewList`), nothing else.
///
/// No method throws, and the pending error stays as it was.
class Acts {
public:
    /// What is handed in must outlive the acts. `period` is where an event is looked up first.
    Acts(CalEvents& reminders, CalEvents& period, DBRemindUtils& db, const Clock& clock,
         Ledger& ledger, ReminderState& state);

    /// While it lives, acts are only noted and set in the events; when the last such scope ends
    /// they are in the ledger, by one flush, and then in the rows, those that get the same value by
    /// one statement. For the rows of one command: nothing may wait for the user in it, and nothing
    /// is deleted.
    class Together {
    public:
        explicit Together(Acts& acts);
        ~Together();
        Together(const Together&) = delete;
        Together& operator=(const Together&) = delete;

    private:
        Acts& acts_;
        std::optional<Ledger::Together> ledger_;
    };

    /// Shown again `minutes` from now, not from the reminder. False, and nothing is done, unless
    /// `minutes` is greater than 0.
    bool Snooze(const ActRow& shown, std::int32_t minutes);

    /// `markDone`: none of the occurrence's reminders comes any more, and an event without a later
    /// occurrence becomes "AllDone".
    void Dismiss(const ActRow& shown, DismissMode mode, bool markDone = false);

    /// Its reminders come again as if the event had just been met.
    void Reactivate(const ActRow& row);

    /// Hidden from the views; its reminders still come.
    void Hide(const ActRow& row, bool hidden = true);

    /// Deletes the item in the host's file, then its row. The event leaves both sets at once. Where
    /// the host's file is held by others (`Waits`) the act stands in the ledger and is done later;
    /// `Failed`: it cannot be done, and the event stays; one that has waited comes back.
    calEvent::Deletion DeleteItem(const ActRow& row);

    /// The event under a row's `GUID` as the sets hold it now, else the row's own: what the
    /// captions of a dialog are taken from, with the row's occurrence in it. Never null.
    std::shared_ptr<calEvent> EventOf(const ActRow& row);

    /// Takes the event off the list of new reminders.
    void LeaveNewList(std::string_view GUID);

    /// Writes what waits, in the order of the acts, up to the first write that has to wait on.
    /// What has waited before is held against the rows as they are now: both sets are brought up
    /// to date. Deletions wait for their host's file and hold up nothing else. Checks call it;
    /// costs nothing when nothing waits.
    void WriteWaiting();

    /// Puts what waits into the events of both sets again, after these were read: their rows do
    /// not have it yet. Also finds what an earlier run, another copy of the program or a command
    /// has noted and not written.
    void RestoreWaiting();

    /// Columns that wait to be written and items that wait to be deleted, for the status line (also
    /// in the state).
    std::size_t Waiting() const noexcept { return waiting_.size() + deletions_.size(); }
    /// Why the last write failed, in the engine's words; empty when it did not.
    const std::string& Trouble() const noexcept { return trouble_; }

private:
    /// A column of a row that is to hold `text`.
    struct Write {
        std::string GUID;
        std::string column;
        std::string text;
        std::uint64_t hash;  ///< `guidHash`

        bool isOf(std::string_view otherColumn, std::string_view otherGUID,
                  std::uint64_t otherHash) const;
    };
    struct Deletion {
        std::string GUID;
        std::string VLBase;
    };
    using Objects = std::vector<std::shared_ptr<calEvent>>;

    Objects objectsOf(const ActRow& row) const;
    Objects heldObjects(const std::string& GUID) const;
    void setIn(const Objects& objects, std::string_view column, const Variant& value);
    void takeActsOfOthers(const ActRow& row);
    void lookAtRow(const EventState& known, const Objects& objects);
    std::shared_ptr<calEvent> rowOf(const std::string& GUID);
    void bringBack(const std::shared_ptr<calEvent>& event, calEvent& wanted,
                   std::vector<std::string>& columns);
    ActOn actOn(const calEvent& event, const ActRow& row) const;
    ActRow ofItsSnooze(const ActRow& row) const;
    bool isLast(const calEvent& event, DateTime start);
    bool endsWith(const ActOn& act);
    void apply(const ActRow& row, const char* name, const calEvent& wanted,
               const std::vector<std::string>& columns,
               const std::function<void(EventState&)>& edit, bool forget = false);
    void keepReplacedOf(const calEvent& series);
    void noteChange(const std::string& GUID);
    void noteRow(EventState& state, const calEvent& before, const calEvent& wanted,
                 const std::vector<std::string>& columns) const;
    void enqueue(const std::string& GUID, std::string_view column, const std::string& text);
    const std::string& wantedText(const Write& write) const;
    bool lookAgain();
    bool writeNext();
    bool write(const Write& first, std::span<const std::string> alike);
    calEvent::Deletion deleteNow(const calEvent& event);
    void deleteWaiting();
    void enqueueDeletion(const calEvent& event);
    void countWaiting();
    void noteWaiting();
    void leaveSets(const std::string& GUID);
    void findLeftOver();
    std::optional<std::unordered_set<std::uint64_t>> allDoneAmong(
        std::span<const std::string> GUIDs);
    void findLeftOverOfAbsent();
    std::shared_ptr<calEvent> held(const std::string& GUID) const;
    bool isStillDone(const calEvent& event, const EventState& known) const;
    bool isWanted(const calEvent& event, const EventState& known, std::string_view column) const;
    bool isWantedNow(const calEvent& event, const EventState& known, std::string_view column);
    void lookAtRowOf(const std::shared_ptr<calEvent>& event, const EventState& known);
    void takeUpLeftOver(const std::shared_ptr<calEvent>& event, const EventState& known,
                        std::span<const std::string_view> columns);

    CalEvents& reminders_;
    CalEvents& period_;
    DBRemindUtils& db_;
    const Clock& clock_;
    Ledger& ledger_;
    ReminderState& state_;
    std::deque<Write> waiting_;
    std::deque<Deletion> deletions_;
    std::unordered_set<std::string> notedWaiting_;  // GUIDs of rows that the ledger says wait
    int together_ = 0;                              // scopes of `Together`
    bool hadToWait_ = false;                        // something of what waits, since an earlier try
    bool isHeld_ = false;  // a row could not be read, in this look at what waits, or this act
    std::string trouble_;
    // The ledger's version, when left-overs were looked for.
    std::optional<std::uint64_t> lookedAt_;
    // Whose events were in no set then, and may come back; true: their rows said "AllDone".
    std::unordered_map<std::string, bool> absent_;
    std::uint64_t absentFrom_ = 0;  // the stamp of the list that they were looked for in last
};

}  // namespace vl
