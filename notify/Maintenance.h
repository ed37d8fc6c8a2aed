// The commands that clean the database up.
#pragma once

#include "db/DBRemindUtils.h"
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

    /// Removes the events of host databases that are not found any more, says how many.
    void CleanUp();
    /// Empties the table; the host can fill it again.
    void DeleteAll();

private:
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
