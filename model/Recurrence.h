// When an event repeats: the instances that follow from its start and its recurrence lines.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/TimeZone.h"
#include "base/DateTime.h"

namespace vl {

class RecurrenceText;

namespace recurrence {
struct Rule;
struct RecurrenceLists;
}  // namespace recurrence

/// A set of rules and dates, ready to be asked. The instances are
///
///     ({start} + the instances of every RRULE + RDATEs) - EXDATEs
///
/// The start is always one of them, whether it matches a rule or not; COUNT counts what matches.
/// Rules are expanded on the wall clock of the series' zone, and every instance is then brought to
/// local time; a time that clocks skip is moved forward by the gap and counts, one that comes twice
/// means the first. Instances of an all-day event are dates, in no zone. Source: RFC 5545, 3.8.5.
///
/// Never changes after `load`, and copies share what is large: every method may be called from
/// several threads. Times are local, whole seconds (others are rounded), up to the year 9999.
/// No method throws but for lack of memory. Every call ends soon: it costs what the window holds,
/// not what lies before it, and a rule that never matches is given up after one cycle of the
/// calendar.
class Recurrence {
public:
    struct Source {
        std::string lines;  ///< JSON text of an array of content lines, or the lines themselves
        DateTime start;     ///< of the event, local time
        bool allDay = false;
        std::string zone;  ///< the series' zone by its IANA name; empty or unknown: the local one
        /// The start in UTC where it is known: of a local time that comes twice it tells which one
        /// is meant. Heeded while it means `start`.
        DateTime utc = {};
    };

    /// One instance, no start: what an event without a start has.
    Recurrence();
    Recurrence(const Recurrence&);
    Recurrence(Recurrence&&) noexcept;
    Recurrence& operator=(const Recurrence&);
    Recurrence& operator=(Recurrence&&) noexcept;
    ~Recurrence();

    /// Lines and values that cannot be read are skipped, and so is a rule that must be rejected
    /// (the trace says why). Costs about a microsecond; a large COUNT is turned into an end here,
    /// at up to some milliseconds. `RRULE`, when given, gets the value of the RRULE line, also of a
    /// rejected one; several are joined by a line break. The text is the caller's to keep.
    static Recurrence load(const Source& source, const TimeZone& local,
                           std::string* RRULE = nullptr);
    /// The same of lines that have been read; `source.lines` is not looked at.
    static Recurrence load(const Source& source, const RecurrenceText& text, const TimeZone& local);

    /// As the lines give them, sorted, in local time. A date on a timed event is that midnight.
    const std::vector<DateTime>& ExDates() const noexcept;
    const std::vector<DateTime>& RDates() const noexcept;

    /// There was an RRULE that must not be used. It adds nothing; everything else holds.
    bool rejected() const noexcept { return rejected_; }

    /// A usable RRULE, or an RDATE.
    bool repeats() const noexcept;

    /// Whether an EXDATE takes the instance at `local` away. Looks at nothing else: there may be
    /// none.
    bool excludes(DateTime local) const;

    /// The instances in [`from`, `to`], both ends included, ascending, the first `max` of them.
    std::vector<DateTime> between(DateTime from, DateTime to,
                                  std::size_t max = std::numeric_limits<std::size_t>::max()) const;

    /// The same into a vector of the caller's, which is emptied first: what asks often allocates
    /// nothing.
    void between(DateTime from, DateTime to, std::size_t max, std::vector<DateTime>& out) const;

    /// The first instance after `after`, and the last one before `before`; 0: none.
    DateTime next(DateTime after) const;
    DateTime previous(DateTime before) const;

    /// The last instance of all; 0 when a rule has neither COUNT nor UNTIL, and when no instance
    /// is left.
    DateTime last() const;

    /// A local time on the wall clock of the series' zone, and back. An instance keeps its wall
    /// time wherever the computer is.
    DateTime toWall(DateTime local) const;
    DateTime fromWall(DateTime wall) const;
    /// False: its wall clock is the computer's.
    bool hasOwnZone() const { return !allDay_ && !zone_.same(local_); }

    /// "Every 2 weeks on Monday and Friday until 3 March 2027"; empty when there is no usable rule
    /// and no added date. `RRULE` is the text that `load` gave.
    std::string inWords(std::string_view RRULE) const;

    /// Periods and months that this thread has looked at so far: what tests hold to a bound.
    static std::uint64_t workDone() noexcept;

private:
    class Reader;

    /// The last instance up to `end`, or 0.
    DateTime lastUpTo(std::int64_t end) const;
    bool endless() const noexcept;

    std::vector<recurrence::Rule> rules_;                       // without the rejected
    std::shared_ptr<const recurrence::RecurrenceLists> lists_;  // null: no EXDATE and no RDATE
    TimeZone zone_;
    TimeZone local_;
    std::int64_t start_ = 0;     // local, seconds
    std::int64_t earliest_ = 0;  // no instance lies outside these two, local
    std::int64_t latest_ = 0;
    bool allDay_ = false;
    bool rejected_ = false;
    bool startKept_ = false;  // no EXDATE names it, and there is one
};

}  // namespace vl
