// The columns that the program adds to the host's table.
#pragma once

#include <functional>

namespace vl {

class DBRemindUtils;

/// Adds to `Reminders` what a host of an older version lacks, in four steps. `DBVersion` is the
/// version reached so far: a step runs when it is below the step's number, and becomes that number
/// when the step succeeds. The result is the one reached now. So a step that failed is tried again
/// the next time unless a later one succeeded; a column that an act has to write is then added by
/// the act (`Acts`). `RemoveAllDoneStatus` runs after the third step whether that one
/// succeeded or not, unless the version is past it. Never throws.
int upgradeSchema(DBRemindUtils& db, int DBVersion,
                  const std::function<void()>& RemoveAllDoneStatus);

}  // namespace vl
