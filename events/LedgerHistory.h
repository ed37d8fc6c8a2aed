// What the ledger tells to those who clean up.
#pragma once

#include <functional>
#include <span>
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

/// Whether an event whose row says that it is all done has something to be shown or acted upon all
/// the same, by what is noted: its user has brought it back after it was finished, or has snoozed
/// it; or, with `wasPutBack`, it stands in the list, or an act of his has not come to its row, and
/// a clock that was wrong has finished it before that could be written. A dismissal elsewhere ends
/// that.
bool isStillOpen(const calEvent& event, const Ledger& ledger, std::string_view database,
                 DateTime now, bool wasPutBack);

/// Whether a clock was wrong in one of the `checks` (see `Ledger::checks`), or in that which says
/// `now`: it was put back since. What was finished meanwhile may not have been asked for.
bool wasPutBack(std::span<const DateTime> checks, DateTime now);

/// The last check that does not lie ahead of `now`, where the one after it asked for so many days
/// only, and not from there on: the program was off for longer, or started by a clock far ahead.
/// 0: it is not so.
DateTime skippedSince(std::span<const DateTime> checks, DateTime now, int days);

/// Whether a check that met it now would list it: the host has written it since the last one, and
/// it has reminders of today, or goes on, that nobody has dealt with.
bool isMetAnew(const calEvent& event, const Ledger& ledger, std::string_view database,
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
