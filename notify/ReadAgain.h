// Reading a set again without losing it.
#pragma once

namespace vl {

class CalEvents;
class DBRemindUtils;

/// `ReadDB`, but while the file cannot be read the set keeps what it has, and the failed read does
/// not count: the next one fetches what this one should have. (`ReadDB` itself empties a set that
/// it reloads, and notes the time of a read that failed.) True when the file was read. Never
/// throws.
bool readAgain(CalEvents& set, const DBRemindUtils& db, bool Reload, bool IncludeAllDone);

}  // namespace vl
