// When an event surely has nothing to say, without looking at its occurrences.
#pragma once

#include "model/calEvent.h"

namespace vl {

/// Both ends are inside.
struct Window {
    DateTime from;
    DateTime to;
    bool holds(DateTime d) const { return d >= from && d <= to; }
};

// Each of these costs a few comparisons once the event has been asked about such a window before;
// what it finds out it keeps in the event's memo. False: who wants to know has to look.

/// No reminder of the event, by its schedule or by its stored next reminder, can lie in the window.
bool surelySilent(const calEvent& event, const Window& window);

/// No occurrence can start in the window.
bool surelyAbsent(const calEvent& event, const Window& window);

/// When the last reminder of all comes; 0 for a series without an end, and without a start.
DateTime lastReminderOf(const calEvent& event);

}  // namespace vl
