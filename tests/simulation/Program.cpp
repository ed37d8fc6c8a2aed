#include "Program.h"

#include "base/Text.h"

namespace vl::simulation {

/// Keeps the rows of the new-reminders grid, and asks for the views as the window does.
class Program::Screen final : public ReminderScreen {
public:
    Screen(CalEvents& period, const Clock& clock) : period_(period), clock_(clock) {}

    void AddItemR(const std::shared_ptr<calEvent>& event, int grid) override {
        if (grid == kNewRemindersGrid) {
            const Listing row{event->GUID, seconds(event->InstanceStart),
                              seconds(event->RecordedReminderD())};
            rows[event->GUID] = row;
            added.push_back(row);
        }
    }
    void UpdateItemR(const std::shared_ptr<calEvent>& event, int grid) override {
        if (grid == kNewRemindersGrid) {
            rows[event->GUID] = {event->GUID, seconds(event->InstanceStart),
                                 seconds(event->RecordedReminderD())};
        }
    }
    void RemoveGUID(std::string_view GUID, int grid) override {
        if (grid == kNewRemindersGrid) {
            std::erase_if(rows,
                          [&](const auto& row) { return text::equalsNoCase(row.first, GUID); });
        }
    }
    void FirstNewRowCurrent() override {}
    void ShowNewReminders(std::string_view) override {}
    void ShowPopUp(const PopUpRequest&) override {}
    void ShowSystem(const std::string&, const std::string&, int) override {}
    void PlayReminderSound() override { ++sounds; }
    void DoPeriod() override {
        const DateTime today = clock_.today();
        period_.RemindCol(today, today.addDays(7));
        period_.EventCol(today, today.addDays(7));
    }
    void SetIcon() override {}
    void ShowTime() override {}
    void UpdateUI() override {}
    void UpdateG1() override {}
    bool GetHasFocus() const override { return false; }
    bool IsWindowVisible() const override { return false; }
    int CheckInterval() const override { return 10000; }
    void SetCheckInterval(int) override {}

    std::map<std::string, Listing> rows;
    std::vector<Listing> added;
    int sounds = 0;

private:
    CalEvents& period_;
    const Clock& clock_;
};

Program::Program(const std::string& database, const std::string& folder, const Clock& clock)
    : reminders_(db_, clock),
      period_(db_, clock),
      ledger_(clock, folder + "/VLReminders.ledger"),
      acts_(reminders_, period_, db_, clock, ledger_, state_),
      screen_(std::make_unique<Screen>(period_, clock)),
      cycle_(reminders_, period_, db_, clock, state_, *screen_, ledger_, acts_) {
    db_.DBFullName = database;
    db_.Patience = std::chrono::milliseconds(0);  // nobody lets go while it waits
    state_.sNotifType = "T";
}

Program::~Program() = default;

void Program::load() { cycle_.ReadAtStart(); }

void Program::tick(int interval) { cycle_.Tick(interval); }

std::vector<Listing> Program::takeNew() { return std::exchange(screen_->added, {}); }

int Program::takeSounds() { return std::exchange(screen_->sounds, 0); }

std::set<std::string> Program::listed() const {
    std::set<std::string> GUIDs;
    for (std::size_t i = 1; i <= state_.NewReminders->Count(); ++i) {
        if (const auto event = objectAt<calEvent>(*state_.NewReminders, i)) {
            GUIDs.insert(event->GUID);
        }
    }
    return GUIDs;
}

const std::map<std::string, Listing>& Program::rows() const { return screen_->rows; }

bool Program::shows(const std::string& GUID) const {
    return period_.mCol && period_.mCol->Exists(GUID);
}

Seconds Program::startShown(const std::string& GUID) const {
    return seconds(objectAt<calEvent>(*period_.mCol, GUID)->StartDateTime);
}

ActRow Program::actRow(const Listing& row) const {
    auto event = objectAt<calEvent>(*state_.NewReminders, row.GUID);
    event = event ? event : objectAt<calEvent>(*period_.mCol, row.GUID);
    return {event, dateTime(row.start), dateTime(row.reminder)};
}

void Program::snooze(const Listing& row, int minutes) {
    acts_.Snooze(actRow(row), minutes);
    screen_->RemoveGUID(row.GUID, kNewRemindersGrid);
}

void Program::dismiss(const Listing& row, DismissMode mode, bool markDone) {
    acts_.Dismiss(actRow(row), mode, markDone);
    screen_->RemoveGUID(row.GUID, kNewRemindersGrid);
}

void Program::reactivate(const Listing& row) { acts_.Reactivate(actRow(row)); }

void Program::hide(const Listing& row) { acts_.Hide(actRow(row)); }

bool Program::deleteItem(const Listing& row) {
    const bool isOff = acts_.DeleteItem(actRow(row)) != calEvent::Deletion::Failed;
    if (isOff) {
        screen_->RemoveGUID(row.GUID, kNewRemindersGrid);
    }
    return isOff;
}

}  // namespace vl::simulation
