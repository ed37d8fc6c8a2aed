// What the ledger tells to those who clean up.
#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include "db/DBRemindUtils.h"
#include "events/EventHistory.h"
#include "events/Ledger.h"

namespace vl {

/// Whether the run that has checked last has asked for the event as it is now, as far as its stamp
/// tells: some minutes are left to a host whose clock is behind, and where that check lies ahead,
/// clocks were turned back and stamps tell nothing. 0: there was none, nothing is new.
bool isMetBefore(const calEvent& event, DateTime checked, DateTime now);

/// Whether the user has brought the event back after it was finished, its row says that it still
/// is, and it has something to be shown or acted upon: as long as it has, it is not finished.
bool isBroughtBack(const calEvent& event, const Ledger& ledger, std::string_view database,
                   DateTime now);

/// As in `events/ActRules.h`, by what the ledger knows.
bool isDoneByUser(const calEvent& event, const Ledger& ledger, std::string_view database,
                  DateTime now);

/// Both that it is made of must outlive it.
class LedgerHistory final : public EventHistory {
public:
    /// `isListed` tells which events stand in the list of new reminders: one of
    /// these can still be snoozed, wherever the host has moved it meanwhile.
    LedgerHistory(Ledger& ledger, const DBRemindUtils& db,
                  std::function<bool(std::string_view GUID)> isListed)
        : ledger_(ledger), db_(db), isListed_(std::move(isListed)) {}

    DateTime uncheckedSince;  ///< no check has asked for reminders from here on; 0: all were

    /// Whether a check has asked for the event as it is; one that no check has is open. None: all
    /// were.
    std::function<bool(const calEvent& event)> isMet;

    bool isOpen(const calEvent& event, DateTime lastReminder, DateTime now) const override;
    void keepReplaced(const std::vector<Replaced>& starts) override;

private:
    Ledger& ledger_;
    const DBRemindUtils& db_;
    std::function<bool(std::string_view)> isListed_;
};

}  // namespace vl
