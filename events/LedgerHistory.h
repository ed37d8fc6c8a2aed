// What the ledger tells to those who clean up.
#pragma once

#include "db/DBRemindUtils.h"
#include "events/EventHistory.h"
#include "events/Ledger.h"

namespace vl {

/// Both that it is made of must outlive it.
class LedgerHistory final : public EventHistory {
public:
    LedgerHistory(Ledger& ledger, const DBRemindUtils& db) : ledger_(ledger), db_(db) {}

    DateTime uncheckedSince;  ///< no check has asked for reminders from here on; 0: all were

    bool isOpen(const calEvent& event, DateTime lastReminder) const override;
    void keepReplaced(std::string_view master, DateTime start) override;

private:
    Ledger& ledger_;
    const DBRemindUtils& db_;
};

}  // namespace vl
