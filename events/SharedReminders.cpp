#include "SharedReminders.h"

#include <functional>

namespace vl {

namespace {

// Who writes them all differently has little to share.
constexpr std::size_t kMost = 1000;

}  // namespace

void SharedReminders::set(calEvent& event, std::string_view defaultReminders) {
    const char* const block = event.reminders.view().data();
    Recent& recent = recent_[std::hash<const void*>()(block) / sizeof(void*) % recent_.size()];
    if (recent.known.list == nullptr || !recent.reminders.sharesWith(event.reminders) ||
        recent.minutes != event.ReminderMinutesBeforeStart) {
        recent = {event.reminders, event.ReminderMinutesBeforeStart, find(event, defaultReminders)};
    }
    event.RemindersCol = recent.known.list;
    event.RemindersMinOffsetMin = recent.known.least;
    event.RemindersMaxOffsetMin = recent.known.most;
}

const SharedReminders::Known& SharedReminders::find(calEvent& event,
                                                    std::string_view defaultReminders) {
    const std::string key =
        event.reminders + "\n" + std::to_string(event.ReminderMinutesBeforeStart);
    const auto found = known_.find(key);
    if (found != known_.end()) {
        return found->second;
    }
    event.SetRemindersCol(defaultReminders);
    if (known_.size() >= kMost) {
        known_.clear();
    }
    return known_
        .emplace(key, Known{event.RemindersCol, event.RemindersMinOffsetMin,
                            event.RemindersMaxOffsetMin})
        .first->second;
}

}  // namespace vl
