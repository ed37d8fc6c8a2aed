#include "events/LedgerHistory.h"

#include <algorithm>
#include <vector>

#include "DueRule.h"
#include "app/TimeZone.h"

namespace vl {

bool isMetBefore(const calEvent& event, DateTime checked, DateTime now) {
    constexpr int kHostBehind = 10;
    return checked.isZero() ||
           (checked <= now && event.Modified < checked.addMinutes(-kHostBehind));
}

bool LedgerHistory::isOpen(const calEvent& event, DateTime lastReminder, DateTime now) const {
    if ((!uncheckedSince.isZero() && lastReminder >= uncheckedSince) || isListed_(event.GUID) ||
        (isMet && !isMet(event))) {
        return true;
    }
    const EventState* state = ledger_.find(db_.DBFullName, event.GUID);
    if (state != nullptr && state->newlyMet && !uncheckedSince.isZero()) {
        return true;  // an earlier run has left it so: no check has asked for it since
    }
    const TimeZone here = TimeZone::local();
    std::vector<DateTime> replaced;
    if (event.IsRepeating()) {
        for (const Noted& start : ledger_.replaced(db_.DBFullName, {event.id, event.VLBase})) {
            replaced.push_back(startIn(event, start, here));
        }
    }
    std::sort(replaced.begin(), replaced.end());
    return hasOpenReminder(event, {state, replaced, here}, now);
}

void LedgerHistory::keepReplaced(const std::vector<Replaced>& starts) {
    std::vector<Ledger::Replaced> all;
    for (const auto& [series, start] : starts) {
        if (!series.id.empty() && !start.isZero()) {
            all.push_back({series, {notedNow(start)}});
        }
    }
    ledger_.keepReplaced(db_.DBFullName, all);
}

}  // namespace vl
