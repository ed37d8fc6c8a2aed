// The columns that the program adds to the host's table.
#pragma once

#include <functional>

namespace vl {

class DBRemindUtils;

/// Adds to `Reminders` what a host of an older version lacks. `DBVersion` is the version reached
/// so far, the result the one reached now: 4 when all is there. A step that failed is tried again
/// the next time, so no later one carries the version beyond it. `RemoveAllDoneStatus` runs after
/// the third step whether that one succeeded or not, unless the version is past it. Never throws.
int upgradeSchema(DBRemindUtils& db, int DBVersion,
                  const std::function<void()>& RemoveAllDoneStatus);

}  // namespace vl
