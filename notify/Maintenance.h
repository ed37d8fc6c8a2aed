// The commands that clean the database up.
#pragma once

#include <chrono>

#include "db/DBRemindUtils.h"
#include "db/jet/OpenOptions.h"
#include "events/CalEvents.h"
#include "notify/CheckCycle.h"
#include "notify/MessageScreen.h"
#include "notify/ReminderScreen.h"
#include "notify/ReminderState.h"

namespace vl {

/// Each asks before it removes anything and is a procedure: carries on after failing steps.
class Maintenance {
public:
    /// What is handed in must outlive this.
    Maintenance(DBRemindUtils& db, CalEvents& reminders, CalEvents& period, CheckCycle& check,
                const ReminderState& state, ReminderScreen& screen, MessageScreen& boxes)
        : db_(db),
          reminders_(reminders),
          period_(period),
          check_(check),
          state_(state),
          screen_(screen),
          boxes_(boxes) {}

    /// The longest waiting of a command for others who have the file, in one statement.
    std::chrono::milliseconds Patience = jet::OpenOptions().patience;

    /// Removes the events of host databases that are not found any more, says how many. While the
    /// file cannot be read it says so: then nobody knows whether there are any.
    void CleanUp();
    /// Empties the table; the host can fill it again.
    void DeleteAll();

private:
    struct Waste {
        std::int64_t events = 0;
        std::size_t files = 0;  ///< that are gone
    };

    Waste findWaste();
    void readAndShow();
    void forgetRemoved();

    DBRemindUtils& db_;
    CalEvents& reminders_;
    CalEvents& period_;
    CheckCycle& check_;
    const ReminderState& state_;
    ReminderScreen& screen_;
    MessageScreen& boxes_;
};

}  // namespace vl
