// Names in the settings file that more than one part of the window goes by.
#pragma once

namespace vl {

inline constexpr auto kRemindersSection = "Reminders";
inline constexpr auto kSnoozeKey = "Snooze";  ///< the offset that the next snooze offers

}  // namespace vl
