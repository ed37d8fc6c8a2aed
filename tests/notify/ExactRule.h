// Which reminder of an event a check must take, and what an act does: the rule alone.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <vector>

#include "ExactSchedule.h"
#include "base/DateTime.h"
#include "model/calEvent.h"

namespace vl::exact {

enum class Act { Snooze, This, AllButAfter, All, Done, Reactivate };

/// What a check asks for lies in [`from`, `to`].
struct Check {
    DateTime from;
    DateTime to;
    DateTime now;
    DateTime mayFrom;  ///< the program need not know better since when nobody has checked
};

/// What a check does with an event.
struct Answer {
    std::vector<Reminder> first;    ///< one of these is taken; empty: none
    std::vector<Reminder> orFirst;  ///< or one of these: whether they count the rule leaves open
    bool isDueAgain = false;        ///< something pending lies in the window
    bool mayBeDueAgain = false;

    bool allows(const std::optional<Reminder>& taken) const;
};

/// What the rule knows of one event, told in order what host, program and user do. `event` is
/// always the event as its row is now.
class ExactRule {
public:
    /// The host has entered the event.
    void entered(const calEvent& event);
    /// The host has written it: it was `before`.
    void written(const calEvent& before, const calEvent& event);
    /// The program has ended, and the list with it.
    void ended();

    Answer ask(const calEvent& event, const Replaced& replaced, const Check& check);
    /// A check has taken this into the list.
    void taken(const calEvent& event, const Reminder& reminder);

    /// An act on the occurrence that begins, or began, at `start`. `until`: of a snooze.
    void acted(const calEvent& event, Act act, DateTime start, DateTime now, DateTime until);

    /// Whether something of the event waits or is still to come, by what the last check knew.
    bool isAnyLeft(const calEvent& event, const Replaced& replaced, DateTime now) const;

    bool isListed() const { return row_.has_value(); }
    /// What the list shows; only while it does.
    const Reminder& row() const { return *row_; }

private:
    enum class Muted { No, ThroughStart, ForEver };
    /// What was dealt with of one occurrence. 0: not.
    struct Dealt {
        DateTime handled;      // its reminders through this time
        DateTime snoozed;      // it comes at this time
        DateTime listed;       // by this reminder, and nobody has acted on it
        int listedIn = 0;      // this run of the program
        bool wasAway = false;  // the host has had that occurrence away since
        Muted muted = Muted::No;
    };
    /// Of a reminder: `Open` it is pending once it is asked for, `Settled` it is not; `Either`: the
    /// rule does not say.
    enum class Standing { Open, Either, Settled };
    struct Candidate {
        Reminder reminder;
        Standing standing;
    };

    Standing standingOf(const calEvent& event, const Replaced& replaced, const Reminder& reminder,
                        DateTime now) const;
    bool isDealtWith(const calEvent& event, const Replaced& replaced,
                     const Reminder& reminder) const;
    Standing endedOf(const calEvent& event, const Reminder& reminder, DateTime now) const;
    DateTime snoozeOf(const calEvent& event, DateTime key) const;
    DateTime startOf(const calEvent& event, DateTime key) const;
    bool isThere(const calEvent& event, DateTime key) const;

    void askFor(const calEvent& event, const Replaced& replaced, const Check& check);
    std::vector<Candidate> candidates(const calEvent& event, const Replaced& replaced, DateTime to,
                                      DateTime now) const;
    static Answer answerOf(const calEvent& event, const std::vector<Candidate>& found,
                           const Check& check);
    void askForGivenLater(const calEvent& event, const Check& check);
    void askForTouched(const calEvent& event, const Check& check);
    void noteAway(const calEvent& event);
    void noteStood(const calEvent& event, const Answer& answer);
    void noteOpen(const std::vector<Candidate>& found, const Check& check);

    void endOld(const calEvent& event, DateTime start);
    void endEarlier(const calEvent& event, DateTime start, DateTime now);

    // By the start on the wall clock of the event's zone.
    std::map<DateTime, Dealt> dealt_;
    std::set<DateTime> ended_;     // with an act on a later one
    std::set<DateTime> spared_;    // from that, as they were snoozed
    DateTime endedBefore_;         // acts have ended what there was before this, and was over
    std::set<Reminder> asked_;     // fell due in some check, and may be pending
    std::set<Reminder> either_;    // the same, and the rule does not say whether they did
    std::set<Reminder> stoodFor_;  // the row stood for these when its own occurrence was gone
    bool isMet_ = false;           // for the first time, or re-timed, since the last check
    // Since when something has been pending all the time; 0: nothing is.
    DateTime openSince_;
    bool isGivenLater_ = false;  // the host has given other reminders since
    DateTime writtenAt_;
    int run_ = 0;
    bool isFirst_ = false;  // the program has just been started
    std::optional<Reminder> row_;
};

}  // namespace vl::exact
