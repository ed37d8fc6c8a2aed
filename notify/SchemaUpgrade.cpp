#include "notify/SchemaUpgrade.h"

#include <array>
#include <string_view>

#include "base/ErrorState.h"
#include "db/DBRemindUtils.h"

namespace vl {

namespace {

struct Step {
    int version;  // reached by it
    std::string_view table;
    std::string_view column;
    int type;
};

constexpr int kDismissed = 3;

constexpr std::array kSteps = {
    Step{1, "reminders", "id", DBRemindUtils::kText},
    Step{2, "Reminders", "NextReminder", DBRemindUtils::kDateTime},
    Step{kDismissed, "Reminders", "Dismissed", DBRemindUtils::kDateTime},
    Step{4, "Reminders", "Hidden", DBRemindUtils::kYesNo},
};

}  // namespace

int upgradeSchema(DBRemindUtils& db, int DBVersion,
                  const std::function<void()>& RemoveAllDoneStatus) {
    const ErrScope scope;
    for (const Step& step : kSteps) {
        if (DBVersion >= step.version) {
            continue;
        }
        if (db.AddField(step.table, step.column, step.type, 0, 0) == ErrNo::None) {
            DBVersion = step.version;
        }
        if (step.version == kDismissed) {
            attempt([&] { RemoveAllDoneStatus(); });
        }
    }
    return DBVersion;
}

}  // namespace vl
