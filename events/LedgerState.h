// What the user has dealt with, event by event and occurrence by occurrence.
#pragma once

#include <compare>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/TimeZone.h"
#include "base/DateTime.h"

namespace vl {

class calEvent;

/// A time on the computer's clock, and the moment that it was there.
struct Noted {
    DateTime local;
    DateTime utc;  ///< 0: not known
    // NOLINTNEXTLINE(modernize-use-nullptr): the compiler's own comparison with 0
    friend auto operator<=>(const Noted&, const Noted&) = default;
};

/// A series, as its exceptions name it. Two of the host's databases may hold the same calendar, so
/// an id may stand twice.
struct SeriesName {
    std::string id = {};
    std::string VLBase = {};  ///< the host's database that it is in; empty: not known
};
/// That of an exception's series: both are in one database.
SeriesName seriesOf(const calEvent& exception);

/// `local`, as the computer's clock shows it now.
Noted notedNow(DateTime local);
/// The earlier of the same time and the same moment on the clock of `here`.
DateTime earlierOf(const Noted& when, const TimeZone& here);

/// For so many days the ledger knows of what is over.
inline constexpr int kKeptDays = 90;
/// Whether `when` is so long ago, as seen from `now`, that nobody needs to know of it any more.
bool isLongAgo(DateTime when, DateTime now);

/// On disk by name; see `Ledger`.
enum class Muted { No, ThroughStart, ForEver };

/// One occurrence of an event. It is known by its start on the wall clock of the event's zone
/// (`calEvent::ToWall`), its reminders by their moments (`calEvent::ToMoment`): so they are the
/// same wherever the computer is. 0: none.
struct OccurrenceState {
    DateTime start;    ///< by this it is known
    DateTime end;      ///< when it is over and its last reminder has come, on the same clock
    DateTime handled;  ///< reminders up to this moment, included, are dealt with
    DateTime snoozed;  ///< in UTC
    Muted muted = Muted::No;
    DateTime listed;      ///< the moment of the reminder it was listed with; 0 after an act on it
    bool spared = false;  ///< it was snoozed when those around it were ended
    DateTime acted;       ///< in UTC; when the last act on it was
    DateTime reminder;    ///< the moment of the reminder that this act was on; 0: it showed none
    /// The local start in the row, when it was muted for ever; 0 where the event has no zone of its
    /// own, for which `start` says it.
    DateTime local;

    /// False: the same as if there were no entry.
    bool saysAnything() const {
        return !handled.isZero() || !snoozed.isZero() || muted != Muted::No || !listed.isZero();
    }
    friend bool operator==(const OccurrenceState&, const OccurrenceState&) = default;
};

/// A column of the event's row that an act has set: the texts that may stand there.
struct ColumnNote {
    std::vector<std::string> before;  ///< more than one while earlier writes still wait
    std::string after;
    /// The row shows what it did before the act: the write has not come through.
    bool waits(const std::string& text) const;
    /// The row shows something that we know of.
    bool knows(const std::string& text) const;
    friend bool operator==(const ColumnNote&, const ColumnNote&) = default;
};

/// What another program has put into the row: the two columns, and nothing else, tell it.
struct RowWord {
    DateTime NextReminder;
    DateTime Dismissed;
    bool saysAnything() const { return !NextReminder.isZero() || !Dismissed.isZero(); }
    friend bool operator==(const RowWord&, const RowWord&) = default;
};

struct EventState {
    std::vector<OccurrenceState> occurrences;  ///< by start
    /// Wall time: occurrences that begin before it are ended, unless they are spared.
    DateTime endedBefore;
    DateTime endedAt;  ///< in UTC; when the act was that ended them; 0: not known
    /// A moment: what fell due from here on may not have been shown, since another reminder of the
    /// event stood in the list.
    DateTime openSince;
    /// Of a series: the wall time at which it began then. One that the host has moved since has
    /// other times.
    DateTime openOf;
    DateTime acted;  ///< local; when the last act was
    /// Acts that lie ahead of a clock, by their moments, and what that showed when it was first
    /// seen to be behind them. Which of the two clocks is right is not known yet; until
    /// then the acts stand as they were made, and hold as if they were wrong.
    std::map<DateTime, Noted> doubted;
    /// It counts as newly met until it is listed: what came before its user reactivated it is
    /// asked for again, also by the next run.
    bool newlyMet = false;
    RowWord word;  ///< what the row said before the first act took the word from it
    std::map<std::string, ColumnNote, std::less<>> row;
    /// What an act has put into the row could not be written yet: however old, it is not dropped.
    bool waits = false;
    /// The user has deleted the item, and the host's file could not be written yet.
    bool deleting = false;

    /// Null when no act has written the column.
    const ColumnNote* note(std::string_view column) const;
    OccurrenceState* find(DateTime start);
    const OccurrenceState* find(DateTime start) const;
    /// The entry of that start, made when there is none.
    OccurrenceState& at(DateTime start);
    /// The occurrence whose reminder stands in the list, null when none does: the last of those
    /// that are noted as listed. An earlier one may be left from before a restart.
    const OccurrenceState* listed() const;
    /// Removes the entries that say nothing, and doubts about acts that are none any more.
    void tidy();

    friend bool operator==(const EventState&, const EventState&) = default;
};

/// The columns that acts write, in the order in which they are written.
inline constexpr std::string_view kStateColumns[] = {"NextReminder", "Dismissed", "Hidden",
                                                     "status"};
/// Those of them by which a row speaks.
inline constexpr std::string_view kWordColumns[] = {"NextReminder", "Dismissed"};

/// A state column of the event as its note writes it.
std::string columnText(const calEvent& event, std::string_view column);

/// Where an occurrence of `series` that began then begins on the computer's clock as it is now:
/// at the same moment where the series has a zone of its own, else at the same time.
DateTime startIn(const calEvent& series, const Noted& start, const TimeZone& here);

/// Whether the row speaks for itself: it shows what no act of ours has put there.
bool rowSpeaks(const calEvent& event, const EventState* state);

}  // namespace vl
