// The program without its window, started, ticked and ended like the real one.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Oracle.h"
#include "notify/CheckCycle.h"
#include "support/ManualClock.h"

namespace vl::simulation {

class Program {
public:
    /// Whether it keeps what was dealt with.
    static constexpr bool kRemembers = true;

    /// `folder` holds what outlives a run.
    Program(const std::string& database, const std::string& folder, test::ManualClock& clock);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The load handler's reads.
    void load();
    void tick(int interval);

    /// Rows added to the new-reminders grid since the last call.
    std::vector<Listing> takeNew();
    std::set<std::string> listed() const;
    /// The rows of the new-reminders grid as they were filled, by GUID.
    const std::map<std::string, Listing>& rows() const;

    /// What the user does to one of them.
    void snooze(const Listing& row, int minutes);
    void dismiss(const Listing& row, DismissMode mode, bool markDone);

private:
    class Screen;
    ActRow actRow(const Listing& row) const;

    DBRemindUtils db_;
    CalEvents reminders_;
    CalEvents period_;
    ReminderState state_;
    Ledger ledger_;
    Acts acts_;
    std::unique_ptr<Screen> screen_;
    CheckCycle cycle_;
};

}  // namespace vl::simulation
