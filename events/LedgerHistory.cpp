#include "events/LedgerHistory.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "app/TimeZone.h"
#include "events/ActRules.h"
#include "events/DueRule.h"

namespace vl {

namespace {

// Local times, ascending.
std::vector<DateTime> replacedOf(const calEvent& event, const Ledger& ledger,
                                 std::string_view database, const TimeZone& here) {
    std::vector<DateTime> replaced;
    if (event.IsRepeating()) {
        for (const Noted& start : ledger.replaced(database, {event.id, event.VLBase})) {
            replaced.push_back(startIn(event, start, here));
        }
    }
    std::sort(replaced.begin(), replaced.end());
    return replaced;
}

bool isAnyUnwritten(const calEvent& event, const EventState& state) {
    return std::any_of(std::begin(kStateColumns), std::end(kStateColumns), [&](auto column) {
        const ColumnNote* note = state.note(column);
        return note != nullptr && note->waits(columnText(event, column));
    });
}

}  // namespace

bool isMetBefore(const calEvent& event, DateTime checked, DateTime now) {
    constexpr int kHostBehind = 10;
    return checked.isZero() ||
           (checked <= now && event.Modified < checked.addMinutes(-kHostBehind));
}

bool isStillOpen(const calEvent& event, const Ledger& ledger, std::string_view database,
                 DateTime now, bool wasPutBack) {
    const EventState* state = ledger.find(database, event.GUID);
    if (state == nullptr) {
        return false;
    }
    const TimeZone here = TimeZone::local();
    const auto replaced = replacedOf(event, ledger, database, here);
    const DueFacts facts{state, replaced, here};
    const ColumnNote* status = state->note("status");
    const bool isBroughtBack = status != nullptr && status->waits(columnText(event, "status"));
    if (!isBroughtBack) {
        const bool isListed = hasListed(event, facts, now) &&
                              !isDoneByUser(event, facts, now, ledger.lastCheckBy(database, now));
        return hasSnoozed(event, facts, now) ||
               (wasPutBack && (isListed || isAnyUnwritten(event, *state)));
    }
    // Of one that was reactivated also what the next check would find, being the first to meet it.
    return hasOpenReminder(event, facts, now) ||
           (state->newlyMet && askDue(event, facts, {now, now, now, now, true}).taken);
}

bool isMetAnew(const calEvent& event, const Ledger& ledger, std::string_view database,
               DateTime now) {
    if (isMetBefore(event, ledger.lastCheck(database), now)) {
        return false;
    }
    const TimeZone here = TimeZone::local();
    const auto replaced = replacedOf(event, ledger, database, here);
    const DueFacts facts{ledger.find(database, event.GUID), replaced, here};
    const auto taken = askDue(event, facts, {now, now, now, now, true}).taken;
    return taken && (taken->time.date() == now.date() || event.EndOf(taken->instance) > now);
}

bool isDoneByUser(const calEvent& event, const Ledger& ledger, std::string_view database,
                  DateTime now) {
    const TimeZone here = TimeZone::local();
    const auto replaced = replacedOf(event, ledger, database, here);
    return isDoneByUser(event, {ledger.find(database, event.GUID), replaced, here}, now,
                        ledger.lastCheckBy(database, now));
}

bool wasPutBack(std::span<const DateTime> checks, DateTime now) {
    return !std::is_sorted(checks.begin(), checks.end()) ||
           (!checks.empty() && checks.back() > now);
}

DateTime skippedSince(std::span<const DateTime> checks, DateTime now, int days) {
    const auto next = std::find_if(checks.rbegin(), checks.rend(), [&](DateTime check) {
                          return check <= now;
                      }).base();
    if (next == checks.begin() || next == checks.end()) {
        return {};
    }
    const DateTime last = *std::prev(next);
    return last < next->date().addDays(-days) ? last : DateTime();
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
    const auto replaced = replacedOf(event, ledger_, db_.DBFullName, here);
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
