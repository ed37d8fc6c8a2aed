// The two sets and the check over them as the program has them, and a screen that shows nothing.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "base/Clock.h"
#include "notify/CheckCycle.h"

namespace vl::bench {

inline const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

class TurnedClock final : public Clock {
public:
    DateTime now() const override { return time; }
    DateTime time = kNow;
};

/// Asks what the window asks for its views, and shows nothing.
class Views final : public ReminderScreen {
public:
    explicit Views(CalEvents& period) : period_(period) {}
    void AddItemR(const std::shared_ptr<calEvent>&, int) override { ++listed; }
    void UpdateItemR(const std::shared_ptr<calEvent>&, int) override {}
    void RemoveGUID(std::string_view, int) override {}
    void FirstNewRowCurrent() override {}
    void ShowNewReminders(std::string_view) override {}
    void ShowPopUp(const PopUpRequest&) override {}
    void ShowSystem(const std::string&, const std::string&, int) override {}
    void PlayReminderSound() override {}
    void DoPeriod() override {
        if (!shows) {
            return;
        }
        const DateTime today = kNow.date();
        shown = period_.RemindCol(today, today.addMinutes(1439))->Count() +
                period_.EventCol(today, today.addMinutes(1439))->Count();
    }
    void SetIcon() override {}
    void ShowTime() override {}
    void UpdateUI() override {}
    void UpdateG1() override {}
    bool GetHasFocus() const override { return false; }
    bool IsWindowVisible() const override { return true; }
    int CheckInterval() const override { return 10000; }
    void SetCheckInterval(int) override {}

    bool shows = true;
    std::size_t listed = 0;
    std::size_t shown = 0;

private:
    CalEvents& period_;
};

/// The two sets and the check over them, as the program has them.
struct Program {
    Program(const std::string& path, const std::filesystem::path& folder)
        : ledger(clock, (folder / "VLReminders.ledger").string()) {
        db.DBFullName = path;
        state.sNotifType = "T";
    }
    void tick() {
        clock.time = clock.time.addSeconds(10);
        cycle.Tick(10000);
    }

    TurnedClock clock;
    DBRemindUtils db;
    CalEvents reminders{db, clock};
    CalEvents period{db, clock};
    ReminderState state;
    Views screen{period};
    Ledger ledger;
    Acts acts{reminders, period, db, clock, ledger, state};
    CheckCycle cycle{reminders, period, db, clock, state, screen, ledger, acts};
};

}  // namespace vl::bench
