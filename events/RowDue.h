// When the reminder that a row of a list shows will come, if it will.
#pragma once

#include <cstdint>
#include <span>

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// What a row shows, and what bears on it. Local times.
struct RowAsked {
    DateTime start;     ///< of its occurrence
    DateTime reminder;  ///< 0 when it shows none
    DateTime now;
    const EventState* state = nullptr;        ///< as the ledger has it
    std::span<const DateTime> replaced = {};  ///< starts that exceptions have taken over, ascending
    TimeZone zone;                            ///< the computer's
};

enum class Fate : std::uint8_t {
    Comes,      ///< or has come, and nobody has dealt with it
    Snoozed,    ///< it comes when it was snoozed to
    DealtWith,  ///< it will not come any more
    Moved,      ///< to where an exception has put its occurrence
};

struct RowDue {
    /// That of the row's reminder. Another one when it was snoozed, or when the row shows what was
    /// dealt with while others of the occurrence are still to come.
    DateTime time;
    Fate fate = Fate::Comes;
};

/// The lists answer by the event's schedule and by its stored next reminder, which stays in the row
/// after an act on it: neither tells what has become of the reminder they show. This goes by what a
/// check would do. Costs nothing for an event that nobody has acted on.
RowDue askRow(const calEvent& event, const RowAsked& asked);

}  // namespace vl
