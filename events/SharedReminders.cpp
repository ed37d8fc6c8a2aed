#include "SharedReminders.h"

namespace vl {

namespace {

// Who writes them all differently has little to share.
constexpr std::size_t kMost = 1000;

}  // namespace

void SharedReminders::set(calEvent& event, std::string_view defaultReminders) {
    const std::string key =
        event.reminders + "\n" + std::to_string(event.ReminderMinutesBeforeStart);
    const auto found = known_.find(key);
    if (found != known_.end()) {
        event.RemindersCol = found->second.list;
        event.RemindersMinOffsetMin = found->second.least;
        event.RemindersMaxOffsetMin = found->second.most;
        return;
    }
    event.SetRemindersCol(defaultReminders);
    if (known_.size() >= kMost) {
        known_.clear();
    }
    known_.emplace(
        key, Known{event.RemindersCol, event.RemindersMinOffsetMin, event.RemindersMaxOffsetMin});
}

}  // namespace vl
