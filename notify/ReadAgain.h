// Reading a set again without losing it.
#pragma once

#include <functional>

namespace vl {

class CalEvents;
class EventHistory;

/// `ReadDB`, but while the file cannot be read to its end the set keeps what it has, and the failed
/// read does not count: the next one fetches what this one should have. (`ReadDB` itself empties a
/// set that it reloads, and notes the time of a read that failed.) True when the file was read.
/// Never throws.
bool readAgain(CalEvents& set, bool Reload, bool IncludeAllDone);

/// What the program does once when it starts: reads the events, marks what is finished as all done,
/// leaves that out, and reads what was changed meanwhile; both sets then hold the same. `whenRead`
/// is called while `period` still has what is finished. Never throws.
void readAtStart(CalEvents& reminders, CalEvents& period, EventHistory* history,
                 const std::function<void()>& whenRead);

}  // namespace vl
