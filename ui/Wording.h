// What the window says: how far away a moment is, days as people name them, captions.
//
// Pure functions of their arguments, in English as the rest of the program. Hours and minutes are
// written by `TimeText`, the user's short time format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/DateTime.h"
#include "base/ErrorState.h"

namespace vl {

using TimeText = std::function<std::string(DateTime)>;

enum class DueState : std::uint8_t { None, Ahead, Now, Past };

/// A moment seen from `now`. Counted in minute boundaries, so it changes only when the clock's
/// minute does: a reminder of 14:30 is `Now` from 14:30:00 through 14:30:59.
DueState dueState(DateTime due, DateTime now) noexcept;

/// "in 5 min", "in 1 h 20 min", "now", "2 h overdue", "3 days overdue"; empty for no date. From
/// three hours on only whole hours are said, from a day on only whole days.
std::string dueText(DateTime due, DateTime now);

/// The span an event occupies. For an all-day event both ends are midnight of a day, and the last
/// day belongs to it.
struct Span {
    DateTime start;
    DateTime end;
    bool allDay = false;
};

/// `Now` from the start of the event to its end.
DueState eventState(const Span& event, DateTime now) noexcept;

/// The same for an event, which is never overdue: "in 5 min", "now", "2 h ago"; an all-day event
/// goes by days: "tomorrow", "in 3 days", "today", "yesterday".
std::string eventDueText(const Span& event, DateTime now);

/// "Today", "Tomorrow", "Yesterday", "Mon 23 Nov", and with the year when it is another one.
std::string dayText(DateTime day, DateTime now);

/// Day and time ("Today 14:30"), the day alone without `withTime`; empty for no date.
std::string momentText(DateTime moment, bool withTime, DateTime now, const TimeText& time);

/// "Monday, 23 November 2026, 14:30", or without the time; empty for no date.
std::string fullMomentText(DateTime moment, bool withTime, const TimeText& time);

/// "15 minutes", "1 hour 30 minutes", "2 days"; "All day" or "3 days" for an all-day event.
std::string durationText(const Span& event);

/// Nothing in it can be seen.
bool isBlank(std::string_view text);

/// The subject of an event as a list, the toast or a dialog shows it: "(no subject)" for none.
std::string shownSubject(std::string_view subject);

/// The caption of a tab: its name, and its number of rows when it has any.
std::string tabCaption(std::string_view name, std::size_t rows);

/// Why the database cannot be read, for people: "Velmora.RemindDB is not there", "Velmora.RemindDB
/// is damaged (page 12)". `errorText` is the engine's, which begins with the file's full name.
/// Empty for no error.
std::string troubleText(std::string_view DBFullName, ErrNo number, std::string_view errorText);

/// "2 events are not shown: they have no status"; empty for none.
std::string withoutStatusText(int rows);

/// "The database is damaged: 2 events are missing, or parts of them"; empty for none.
std::string damagedText(int rows);

/// "2 changes wait until the database can be written"; empty for none.
std::string waitingText(int changes);

/// What stands at the end of the status line, whatever it says: what it is `about`, which may be
/// nothing, and that settings are lost.
std::string noticeText(std::string_view about, bool settingsAreSaved);

/// Why a grid is empty. `grid` is 0 new reminders, 1 all reminders, 2 events.
struct EmptyReason {
    int grid = 0;
    bool searching = false;         ///< rows are there, but none matches the search
    std::string_view trouble = {};  ///< why the database cannot be read, when it cannot
    std::string_view periodCode;
    std::string_view periodText;
    std::size_t leftOut = 0;  ///< rows of hidden events, which the period would have
};
std::string emptyText(const EmptyReason& reason);

}  // namespace vl
