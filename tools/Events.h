// The events of a reminders database, and how commands show what a question found among them.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "Command.h"
#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"

namespace vl::tools {

/// Reads what the window would: everything that is neither deleted nor all done, of the file that
/// the first word names; see `defaultReminders` for the rest. Throws `Error` when the file cannot
/// be read.
class EventsOfFile {
public:
    EventsOfFile(const Arguments& arguments, DateTime now);

private:
    class Moment final : public Clock {
    public:
        explicit Moment(DateTime now) : now_(now) {}
        DateTime now() const override { return now_; }

    private:
        DateTime now_;
    };

    DBRemindUtils db_;
    Moment clock_;

public:
    CalEvents set;
};

using EventList = std::vector<std::shared_ptr<calEvent>>;

EventList listOf(const GenCollection& found);

enum class Columns {
    Reminders,  ///< the occurrence that a query left in each event, and the reminder of it
    Events,     ///< the occurrence and its end
};

/// One line an event, in their order; see `Format.h` for both forms.
void writeEvents(const EventList& events, Columns columns, bool json, std::ostream& out);

}  // namespace vl::tools
