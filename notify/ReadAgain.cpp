#include "notify/ReadAgain.h"

#include "base/ErrorState.h"
#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"

namespace vl {

bool readAgain(CalEvents& set, const DBRemindUtils& db, bool Reload, bool IncludeAllDone) {
    const ErrScope scope;
    const auto held = set.mCol;
    const DateTime lastRead = set.dLastRead;
    attempt([&] { set.ReadDB(Reload, IncludeAllDone); });
    if (db.ReadTrouble().number == ErrNo::None) {
        return true;
    }
    set.mCol = held;
    set.dLastRead = lastRead;
    return false;
}

void readAtStart(CalEvents& reminders, CalEvents& period, const DBRemindUtils& db,
                 EventHistory* history) {
    readAgain(period, db, true, false);
    period.UpdateAllDone(history);
    period.RemoveAllDone();
    readAgain(period, db, false, false);
    reminders.Adopt(period);
}

}  // namespace vl
