// The check's question over all events, remembered from one check to the next.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ReplacedStarts.h"
#include "events/DueRule.h"
#include "events/GenCollection.h"
#include "events/Ledger.h"

namespace vl {

/// Knows of each event when the next reminder of it can become pending, so that a check in which
/// nothing has happened looks at no event, only at the list of them (half a millisecond for
/// 100,000); where something has, it takes over what differs from the list of the last one. An
/// event is looked at again when its time has come, when the ledger has changed about it, as long
/// as something of it is pending that is not listed, and when another object stands in the list
/// under its `GUID`: who changes an event's schedule or its row's words in place tells it by
/// `look`.
class DueBook {
public:
    struct Asked {
        DateTime from;
        DateTime to;
        DateTime now;
        DateTime since;  // not later than `from`: no check has seen what fell due from here on
        std::string_view database;
        const Ledger& ledger;
        const GenCollection* listed;  // the list of new reminders, by `GUID`; null: there is none
    };
    struct Found {
        std::shared_ptr<calEvent> event;
        Due due;
    };

    /// What is to be taken, and of the listed events what is due again, in the order of time.
    std::vector<Found> ask(const GenCollection& events, const Asked& asked);

    /// Of the last `ask`: events that stand in the list and were moved by the host since, with what
    /// is pending of them now.
    struct Moved {
        std::shared_ptr<calEvent> event;
        Due due;
        bool isElsewhere;  ///< what is listed is none of it any more: it is `due` from now on
    };
    const std::vector<Moved>& moved() const { return moved_; }

    /// The event is looked at in the next check.
    void look(std::string_view GUID);

    /// From when on reminders of the event may have been missed because of those that are pending:
    /// for `EventState::openSince`.
    DateTime openSince(const calEvent& event) const;

    /// The starts of a series that exceptions have taken over, as of the last `ask` or
    /// `learnReplaced`.
    std::span<const DateTime> replaced(const calEvent& event) const { return replaced_.of(event); }

    /// Learns them from `events` and the ledger without a question.
    void learnReplaced(const GenCollection& events, const Ledger& ledger,
                       std::string_view database);

    struct Left {
        SeriesName series;
        DateTime replaced;
    };
    /// Exceptions that were there in an earlier `ask` and are not any more.
    std::vector<Left> takeLeft();

private:
    static constexpr double kAlways = -std::numeric_limits<double>::infinity();

    struct Slot {
        std::shared_ptr<calEvent> event;
        std::uint64_t hash = 0;  // of the GUID
        DateTime next;           // nothing is pending before this; 0: never
        DateTime since;          // see `openSince`; 0: nothing is pending
        DateTime sinceOf;        // of a series: the wall time at which it began then
        bool look = true;
        bool firstMet = true;  // since the last check, or re-timed
        bool asked = false;    // in this run
        bool pending = false;  // at the last look
        bool quiet = false;    // listed then, and nothing of it was due again
    };

    // An exception that stands for an occurrence of its series.
    static bool replacesOne(const calEvent& event);
    // Of a series, the wall time at which it begins: by this one tells that the host has moved it.
    static DateTime startOf(const calEvent& event);

    void bring(const GenCollection& events, const Asked& asked);
    Slot slotFor(std::shared_ptr<calEvent> event, std::unordered_map<std::uint64_t, Slot>& before,
                 DateTime checked, DateTime now);
    void takeOver(Slot& slot, std::shared_ptr<calEvent> event);
    void lookAt(std::size_t place);
    void lookAtAll();
    std::vector<GenCollection::Place> toBeAsked(const Asked& asked, bool wentBack);
    bool isToBeAsked(const Slot& slot, const Asked& asked) const;
    void sleepUntilNext(std::size_t place);
    void wakeQuiet();
    bool haveLeft(const GenCollection& listed) const;
    void findReplaced(const Ledger& ledger, std::string_view database);
    void takeZone(const TimeZone& zone);
    void markChanged(const Asked& asked);
    DateTime sinceOf(const Slot& slot, const EventState* state, DateTime asked) const;
    void askOne(Slot& slot, const Asked& asked, std::vector<Found>& found);

    GenCollection events_;     // at the last question
    std::vector<Slot> slots_;  // by its places
    // The same: days before which a slot is surely not asked, for most of them later than now. Who
    // changes a slot puts `kAlways` there; the next question finds out anew.
    std::vector<double> quietUntil_;
    // Of events that are pending, too, and quiet: as long as they stay in the list. Some more than
    // once, and some that are not any more.
    std::vector<GenCollection::Place> quietListed_;
    GenCollection listed_;                                  // at the last question
    std::unordered_map<std::uint64_t, Slot> deleting_;      // not in it now, and may come back
    std::unordered_map<std::uint64_t, std::size_t> found_;  // slots of the last answer, by hash
    ReplacedStarts replaced_;
    std::vector<Left> left_;
    std::vector<Moved> moved_;
    std::uint64_t ledgerVersion_ = 0;
    std::uint64_t replacedVersion_ = 0;  // of the ledger
    DateTime lastNow_;                   // 0 before the first question
    DateTime lastFrom_;
    DateTime lastSince_;
    std::optional<TimeZone> zone_;  // the computer's, at the last question
    bool exceptionsChanged_ = true;
};

}  // namespace vl
