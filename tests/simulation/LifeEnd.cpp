// What the rows say in the end.
#include <string>

#include "Life.h"
#include "base/Variant.h"

namespace vl::simulation {

// 0: none.
Seconds Life::inRow(const std::string& GUID, const char* column) {
    const Variant value = file_.value(GUID, column).value_or(Variant());
    const auto* date = value.get<DateTime>();
    return date != nullptr ? seconds(*date) : 0;
}

// When everybody has let go of the file, its rows say what the acts said.
void Life::finish() {
    hold(false);
    hide(false);
    setProtected(false);
    wait(2 * kInterval);
    host_.forEach([&](const Host::Kept& kept) {
        const auto said = said_.find(kept.GUID);
        if (!kept.gone && said != said_.end()) {
            compareRow(kept, said->second);
        }
    });
}

void Life::compareRow(const Host::Kept& kept, const Said& said) {
    const auto compare = [&](const char* column, const std::optional<Seconds>& wanted) {
        const Seconds there = inRow(kept.GUID, column);
        if (wanted && there != *wanted) {
            outcome_.wrong += "at the end " + kept.id + " has " + column + " " +
                              formatDateTime(dateTime(there)) + ", not " +
                              formatDateTime(dateTime(*wanted)) + "\n";
        }
    };
    compare("NextReminder", said.next);
    compare("Dismissed", said.dismissed);
    if (said.hidden && program_->shows(kept.GUID) &&
        file_.value(kept.GUID, "Hidden") != Variant(true)) {
        outcome_.wrong += "at the end " + kept.id + " is not hidden\n";
    }
}

}  // namespace vl::simulation
