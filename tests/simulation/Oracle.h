// What must have been announced, and what must not: kept for each occurrence, from the rule alone.
#pragma once

#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Calendar.h"

namespace vl::simulation {

enum class Act { Snooze, DismissThis, DismissAllButAfter, DismissAll, Done, Reactivate };

/// A row that the program listed as new.
struct Listing {
    std::string GUID;
    Seconds start = 0;     ///< of the occurrence, local
    Seconds reminder = 0;  ///< local
};

/// One check as it was seen from outside.
struct Check {
    Seconds now = 0;
    Seconds upTo = 0;            ///< now and the interval
    bool readable = true;        ///< the file, all the while
    std::vector<Listing> taken;  ///< rows added to the new-reminders grid
};

/// Follows a history. Two answers are kept where the rule leaves the program room (a change may be
/// read by this check or by the next): what must be listed, and what may be.
class Oracle {
public:
    /// A program without a memory of what was dealt with only knows what falls due while it runs.
    explicit Oracle(bool remembers) : remembers_(remembers) {}

    // The host.
    void written(const std::string& GUID, const std::string& id, const Plan& plan);
    void deleted(const std::string& GUID);

    // The program.
    void started(Seconds now, bool readable);
    void checking(const Check& check);
    /// What is wrong after the check with what is `listed` (GUIDs); empty: nothing.
    std::string verdict(const Check& check, const std::set<std::string>& listed);

    // The user, on a row of the new-reminders grid.
    void acted(const Listing& row, Act act, Seconds now, Seconds until = 0);

    std::uint64_t decisions() const { return decisions_; }

private:
    static constexpr Seconds kNone = std::numeric_limits<Seconds>::min();

    /// What is known of one occurrence. Of two handled times the later one says what need not be
    /// shown, the earlier one what may.
    struct Mark {
        Seconds handled = kNone;
        Seconds handledAtLeast = kNone;
        Seconds snoozed = kNone;
        bool silentThroughStart = false;
        bool silent = false;
        bool ended = false;
    };
    using Reminder = std::pair<Seconds, Seconds>;  // key of the occurrence, time
    struct Event {
        std::string id;
        Plan plan;             // as the host has it
        Plan known;            // as the last full read found it
        bool changed = true;   // since then
        bool isKnown = false;  // to the program
        bool gone = false;
        bool goneIsKnown = false;
        bool done = false;      // all of it was marked as done
        Seconds metAt = kNone;  // it was met, or re-timed, by the end of the check then
        std::map<Seconds, Mark> marks;
        std::set<Reminder> must;
        std::set<Reminder> may;
        std::set<Seconds> open;  // occurrences listed and not acted upon
    };

    struct Scope {
        Seconds from;
        Seconds to;
    };
    bool isReplaced(const Event& event, const Occurrence& one, bool maybe) const;
    bool isSettled(const Event& event, const Occurrence& one, Seconds time, bool surely) const;
    template <class Visit>
    void forEachReminder(const Event& event, const Plan& plan, Scope scope, bool maybe,
                         Visit&& visit) const;
    static void lapse(Event& event);
    void gather(Event& event, const Check& check);
    void settle(Event& event);
    void read(const Check& check);
    bool isSnoozeDue(const Event& event, Seconds upTo) const;
    bool mayShow(const Event& event, const Listing& row, Seconds upTo) const;
    std::optional<Occurrence> occurrenceAt(const Event& event, Seconds start) const;

    std::map<std::string, Event> events_;
    Seconds from_ = kNone;     // the next check asks from here
    Seconds mayFrom_ = kNone;  // or from here
    Seconds lastCheck_ = kNone;
    bool remembers_;
    bool mayMeet_ = true;  // every event counts as newly met where that helps the program
    std::uint64_t decisions_ = 0;
};

}  // namespace vl::simulation
