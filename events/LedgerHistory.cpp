#include "events/LedgerHistory.h"

#include "DueRule.h"
#include "app/TimeZone.h"

namespace vl {

bool LedgerHistory::isOpen(const calEvent& event, DateTime lastReminder) const {
    if ((!uncheckedSince.isZero() && lastReminder >= uncheckedSince) || isListed_(event.GUID)) {
        return true;
    }
    const EventState* state = ledger_.find(db_.DBFullName, event.GUID);
    const auto replaced = ledger_.replaced(db_.DBFullName, event.id);
    return hasOpenReminder(event, {state, replaced, TimeZone::local()});
}

void LedgerHistory::keepReplaced(std::string_view master, DateTime start) {
    ledger_.keepReplaced(db_.DBFullName, master, start);
}

}  // namespace vl
