// The program without its window, started, ticked and ended like the real one.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Oracle.h"
#include "notify/CheckCycle.h"

namespace vl::simulation {

class Program {
public:
    /// `folder` holds what outlives a run.
    Program(const std::string& database, const std::string& folder, const Clock& clock);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The load handler's reads.
    void load();
    void tick(int interval);

    /// Rows added to the new-reminders grid since the last call.
    std::vector<Listing> takeNew();
    /// How often the reminder sound was played since the last call.
    int takeSounds();
    std::set<std::string> listed() const;
    /// The rows of the new-reminders grid as they were filled, by GUID.
    const std::map<std::string, Listing>& rows() const;

    /// Whether the views show the event.
    bool shows(const std::string& GUID) const;
    /// As what they show it: where it begins. It must be shown.
    Seconds startShown(const std::string& GUID) const;

    /// What the user does to one of them, or to a row of a view.
    void snooze(const Listing& row, int minutes);
    void dismiss(const Listing& row, DismissMode mode, bool markDone);
    void reactivate(const Listing& row);
    void hide(const Listing& row);
    /// Whether the event is off the list, and stays so.
    bool deleteItem(const Listing& row);

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
