// What the record of the user's acts tells to those who clean up.
#pragma once

#include <vector>

#include "base/DateTime.h"
#include "events/LedgerState.h"

namespace vl {

/// Asked before an event counts as finished, told before a row is purged. Methods do not throw.
class EventHistory {
public:
    virtual ~EventHistory() = default;

    /// Whether the user has still to hear of the event, or to act on what was shown of it: it is
    /// snoozed, it was listed and not acted upon, another of its reminders fell due while one was
    /// listed, or `lastReminder`, its last reminder of all, lies in a time that no check has asked
    /// for.
    virtual bool isOpen(const calEvent& event, DateTime lastReminder, DateTime now) const = 0;

    /// The series does not occur at `start` (local time) any more, although the exception that
    /// says so is about to go.
    struct Replaced {
        SeriesName series;
        DateTime start;
    };
    virtual void keepReplaced(const std::vector<Replaced>& starts) = 0;
};

}  // namespace vl
