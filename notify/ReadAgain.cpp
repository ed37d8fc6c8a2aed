#include "notify/ReadAgain.h"

#include "base/ErrorState.h"
#include "events/CalEvents.h"

namespace vl {

bool readAgain(CalEvents& set, bool Reload, bool IncludeAllDone) {
    const ErrScope scope;
    const auto held = set.mCol;
    const DateTime lastRead = set.dLastRead;
    attempt([&] { set.ReadDB(Reload, IncludeAllDone); });
    if (set.IsRead()) {
        return true;
    }
    set.mCol = held;
    set.dLastRead = lastRead;
    return false;
}

void readAtStart(CalEvents& reminders, CalEvents& period, EventHistory* history,
                 const std::function<void()>& whenRead) {
    readAgain(period, true, false);
    whenRead();
    period.UpdateAllDone(history);
    period.RemoveAllDone();
    readAgain(period, false, false);
    reminders.Adopt(period);
}

}  // namespace vl
