// What must have been announced, and what must not: kept for each occurrence, from the rule alone.
#pragma once

#include <compare>
#include <functional>
#include <iosfwd>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Calendar.h"

namespace vl::simulation {

enum class Act { Snooze, DismissThis, DismissAllButAfter, DismissAll, Done };

/// A row that the program listed as new; local times.
struct Listing {
    std::string GUID;
    Seconds start = 0;     ///< of the occurrence
    Seconds reminder = 0;  ///< 0: the row shows none
};

/// One check as it was seen from outside.
struct Check {
    Seconds now = 0;
    Seconds upTo = 0;            ///< now and the interval
    bool readable = true;        ///< the file, all the while
    bool disturbed = false;      ///< the host wrote while the check ran
    int heard = 0;               ///< how often the sound was played
    std::vector<Listing> taken;  ///< rows added to the new-reminders grid
};

/// Follows a history. Two answers are kept where the rule leaves the program room (a change may be
/// read by this check or by the next): what must be listed, and what may be.
class Oracle {
public:
    explicit Oracle(Zone here) : here_(here) {}

    // The host. `modified` is what it stamps its row with.
    void written(const std::string& GUID, const std::string& id, const Plan& plan,
                 Seconds modified);
    void deleted(const std::string& GUID);

    // The machine.
    void travelled(Zone here);
    /// By so much. What was finished by a clock that was days ahead is read again only by the next
    /// check.
    void clockTurned(Seconds by);
    /// Said after it: the host's rows are as they were in `there`. A row holds local times, and
    /// nobody but the host could tell of which place: it means the same times of the clock here,
    /// and so the event is at another moment, as if the host had moved it. What is known of an
    /// occurrence goes by the clock of the event's own zone, so of such a one it is known no more;
    /// but a snooze stays. Nothing is newly met: the host has said nothing. What has fallen due
    /// since it was listed may be shown at its new time, although it was at another then.
    void keptAsWritten(Zone there);

    // The program. What it is asked about a check is said after it.
    void started(Seconds now, bool readable);
    /// Another copy of the program has checked, as `other` followed it: both go by one ledger.
    void checkedByOther(const Check& check, const Oracle& other);
    /// What was told before it was done in the other copy: it leaves the list here.
    /// A check that was killed may have listed what it may list, and the ledger know of it.
    void mayHaveListed(const Check& check);
    void wasActedByOther(const std::string& GUID);
    /// What rows say of their reminders: local times, 0: nothing.
    struct RowSays {
        Seconds next = 0;
        Seconds dismissed = 0;
        bool isThere = false;
        bool isAllDone = false;
    };
    /// The ledger was removed while no program ran: from the next start on each event is what its
    /// row says.
    void ledgerLost(const std::function<RowSays(const std::string& GUID)>& rowOf);
    /// What is wrong after the check with what is `listed` (GUIDs); empty: nothing.
    std::string judge(const Check& check, const std::set<std::string>& listed);

    /// The file can be read, and an act may have done so.
    void mayHaveRead();

    // The user, on a row of whichever grid.
    void acted(const Listing& row, Act act, Seconds now, Seconds until = 0);
    void reactivated(const std::string& GUID, Seconds now);
    void itemDeleted(const std::string& GUID);

    /// By another program, in the row: local times, 0: none. A next reminder later than the
    /// dismissal is a snooze, of the last occurrence whose first reminder is not later.
    void actedElsewhere(const std::string& GUID, Seconds next, Seconds dismissed);
    /// Whether there is such an occurrence.
    bool canSnoozeElsewhere(const std::string& GUID, Seconds next) const;

    std::uint64_t decisions() const { return decisions_; }

private:
    static constexpr Seconds kNone = std::numeric_limits<Seconds>::min();

    /// What has been dealt with, up to here. Times that clocks skip are one moment, and still come
    /// one after the other: then the time that the clock would show decides.
    struct Until {
        Seconds moment = kNone;  // as `Plan::toMoment`
        Seconds local = std::numeric_limits<Seconds>::max();
        auto operator<=>(const Until&) const = default;
    };
    /// What is known of one occurrence; times as `Plan::toMoment`. Of two handled times the
    /// later one says what need not be shown, the last one what may.
    struct Mark {
        Until handled;
        Until handledLast;
        Seconds snoozed = kNone;   // in UTC
        bool mayBeOver = false;    // since it was set right, but nobody knows of which reminder
        Seconds atLatest = kNone;  // local: when that must be shown at the latest, if set right
        Seconds acted = kNone;     // in UTC
        Seconds reminder = kNone;  // that the row showed
        Until shown;               // the same; if none, nothing
        bool wasTaken = false;     // by an exception that now is at another moment
        bool silentThroughStart = false;
        bool silent = false;
        bool ended = false;
        // As it was before it was set right, while the clock may as well be behind.
        std::shared_ptr<const Mark> was;
    };
    /// What another program has put into the row; it stays true after an act here.
    struct Word {
        Seconds next = 0;
        Seconds dismissed = 0;
        bool isKnown = false;  // a check has read it
        bool speaks = true;    // no act here has been made since
        bool isSnooze() const { return next > dismissed; }
    };
    /// A local time, and the moment that it was.
    struct Moment {
        Seconds local;
        Seconds utc;
    };
    /// Key of the occurrence, minutes before its start.
    using Reminder = std::pair<Seconds, int>;
    struct Event {
        std::string id;
        Plan plan;                  // as the host has it
        std::vector<Plan> held;     // what the program may know: none of it, or one of these
        std::vector<Plan> between;  // what it was meanwhile, before it was sure
        bool mayBeHeld = false;     // an act may have read `plan`
        bool isSure = false;        // it holds `plan`, and has held it since an earlier check
        bool hasTravelled = false;  // its row has other local times, which is no matter
        std::optional<Moment>
            listedSince;            // when it was first listed, asked from, since nothing waited
        bool isListedAsIs = false;  // by a reminder that the plan has
        std::optional<Moment> openSince;  // the same, once it is at another moment
        bool isReactivated = false;       // and has not been listed since: it is newly met
        bool isKnown = false;             // it has been sure at some time
        bool gone = false;                // by the host's will
        bool goneIsKnown = false;         // the program must know it
        bool isDone = false;              // all of it
        bool isDoneByRow = false;         // as far as that says
        bool isWritten = false;           // by the host, since the last act
        bool isElsewhere = false;         // its row means another moment than it did then
        std::optional<Seconds> doneRow;   // local: of a single event, what that said when done
        bool mayBeFinished = false;       // a day after its last reminder
        bool isFinished = false;          // and nobody knows better
        std::optional<Word> word;
        std::optional<Word> wordBefore;     // the program may still go by this one
        Seconds modified = 0;               // as the host says
        Seconds modifiedKnown = 0;          // as the program has read it
        std::optional<Seconds> stamp;       // written with this time, and not surely met since
        std::optional<Moment> missedSince;  // the last check asked from here, perhaps without it
        std::optional<Seconds> metAt;       // in or before the check then
        Seconds metBelow = kNone;  // UTC: a snooze that an act has ended silenced what is earlier
        std::map<Seconds, Mark> marks;
        Seconds endedAt = kNone;      // in UTC; by the act then
        Seconds endedBefore = kNone;  // keys before it are ended, but for those in
        std::optional<std::pair<Seconds, Seconds>> endedWas;  // both, as `Mark::was`
        std::set<Seconds> spared;
        std::set<Reminder> must;
        std::set<Reminder> may;
        std::set<Seconds> stoodOnce;  // the same, before an act
        std::set<Seconds>
            stood;  // moved by the host while it was listed: keys that it has had since
        std::map<Seconds, int> open;       // listed and not acted upon: by key, with which reminder
        std::map<Seconds, Seconds> ahead;  // how long before the start that was, to the second
        std::set<Reminder> perhaps;        // the same, in a check that was killed
        std::set<Seconds> byOther;         // of these, what another copy has listed
        bool leaves = false;               // the list, since another copy has dealt with it
        bool isForgotten = false;          // the ledger that knew what it replaced is gone

        template <class Visit>
        void forEachPlan(Visit&& visit) const {
            for (const Plan& one : held) {
                visit(one);
            }
            for (const Plan& one : between) {
                visit(one);
            }
            if (!isSure) {
                visit(plan);
            }
        }
    };

    struct Scope {
        Seconds from;
        Seconds to;
    };
    Moment momentOf(Seconds local) const { return {local, toUtc(here_, local)}; }
    Seconds earlierOf(const Moment& moment) const;
    std::optional<Moment> lastReadBy(Seconds now) const;
    std::optional<Seconds> skippedSince(Seconds now, bool surely) const;
    Seconds askedFrom(Seconds now) const;
    Seconds mayAskFrom(Seconds now) const;
    Seconds overBefore(const Plan& plan, Seconds now) const;
    std::optional<Seconds> keySnoozedElsewhere(const Event& event, const Plan& plan, Seconds next,
                                               bool surely) const;
    bool isSilencedElsewhere(const Event& event, const Plan& plan, const Occurrence& one,
                             Seconds time, bool surely) const;
    void takeOverWord(Event& event) const;
    void endWord(Event& event, Seconds key, Seconds now) const;
    bool isSnoozeSilenced(const Event& event, const Plan& plan, Seconds key, const Mark& mark,
                          bool surely) const;
    bool isOfWrongClock(const Mark& mark) const;
    Seconds latestAct(Seconds now) const;
    void setRight(Event& event, Seconds now) const;
    Seconds shownAgain(const Event& event, const Mark& mark) const;
    void settle(const Event& event, Mark& mark) const;
    void settleClock(Event& event) const;
    /// What a check sees of the clock: since the last one that could read the file.
    struct Turn {
        Seconds now;
        bool jumped;
        bool stood;
    };
    std::optional<Turn> look(const Check& check);
    void unlist(Event& event, Seconds key) const;
    void turn(Event& event, const Turn& turn) const;
    void noteClock(const Turn& turn);
    Until handledBy(const Event& event, const Mark& mark, bool surely) const;
    static void leaveClock(Mark& mark);
    Until untilOf(const Plan& plan, Seconds local) const {
        return {plan.toMoment(local, here_), local};
    }
    Seconds localSnooze(const Event& event, const Mark& mark) const;
    bool isReplaced(const Event& event, Seconds key, bool surely) const;
    std::optional<Seconds> snoozeOf(const Event& event, Seconds key) const;
    bool isSettled(const Event& event, const Plan& plan, const Occurrence& one, int minutes,
                   bool surely) const;
    using Visit = std::function<void(const Occurrence&, int minutes, Seconds time)>;
    void forEachReminder(const Event& event, const Plan& plan, Scope scope, bool surely,
                         const Visit& visit) const;
    void gatherMay(Event& event, const Plan& plan, const Check& check) const;
    void gatherMust(Event& event, const Check& check) const;
    bool isLeft(const Event& event, const Plan& plan, const Reminder& reminder, bool surely) const;
    void settle(Event& event) const;
    std::optional<Seconds> lastReminder(const Plan& plan) const;
    bool isAnyAhead(const Event& event) const;
    void noteFinished(Event& event, Seconds now) const;
    void noteStanding(Event& event, Seconds upTo) const;
    void read(const Check& check);
    bool stands(const Event& event, Seconds key) const;
    const Reminder* firstDue(const Event& event, Seconds upTo) const;
    bool isSnoozeDue(const Event& event, Seconds upTo) const;
    std::optional<Seconds> keyIn(const Plan& plan, Seconds start) const;
    Seconds keyAt(const Event& event, Seconds start) const;
    bool mayShow(const Event& event, const Listing& row, Seconds upTo) const;
    void judgeTaken(const Check& check, const Listing& row, std::ostream& wrong);
    bool mayBeHeard(const Event& event, Scope scope) const;
    void judgeSound(const Check& check, std::ostream& wrong) const;
    void judgeMissing(const Check& check, const Event& event, std::ostream& wrong) const;
    void endEarlier(Event& event, Seconds key, Seconds now) const;
    void noteDone(Event& event, const Plan& plan) const;

    std::map<std::string, Event> events_;
    Zone here_;
    Seconds now_ = 0;                    // at the last check or act
    std::optional<Moment> lastCheck_;    // of this run
    std::optional<Moment> lastRead_;     // check that could read the file, of any run
    std::vector<Moment> reads_;          // all of these
    std::set<Seconds> starts_;           // UTC: the first of each run
    std::optional<Moment> unseenSince_;  // no check of this run since then could
    bool isFirst_ = true;                // none of this run could yet
    std::optional<Turn> turn_;           // by the last check
    std::optional<Seconds> looked_;      // UTC, by the last check of this run
    bool jumped_ = false;                // the clock, since the last that could read
    Seconds goneOn_ = 0;                 // since it was turned back, without what it jumped over
    bool wentBack_ = false;              // the clock, by days
    bool hasTravelled_ = false;          // since the last that could
    std::uint64_t decisions_ = 0;
};

}  // namespace vl::simulation
