// A screen that writes down what it is asked for.
#pragma once

#include <string>
#include <vector>

#include "model/calEvent.h"
#include "notify/ReminderScreen.h"

namespace vl::test {

class RecordingScreen : public ReminderScreen {
public:
    void AddItemR(const std::shared_ptr<calEvent>& event, int grid) override {
        note("AddItemR " + event->Summary() + " " + std::to_string(grid));
    }
    void UpdateItemR(const std::shared_ptr<calEvent>& event, int grid) override {
        note("UpdateItemR " + event->Summary() + " " + std::to_string(grid));
    }
    void RemoveGUID(std::string_view GUID, int grid) override {
        note("RemoveGUID " + std::string(GUID) + " " + std::to_string(grid));
    }
    void FirstNewRowCurrent() override { note("FirstNewRowCurrent"); }
    void ShowNewReminders(std::string_view GUID) override {
        note("ShowNewReminders " + std::string(GUID));
    }
    void ShowPopUp(const PopUpRequest& request) override {
        popUps.push_back(request);
        note("ShowPopUp " + request.title);
    }
    void ShowSystem(const std::string& title, const std::string& text, int timeoutMs) override {
        balloons.push_back({title, text, timeoutMs});
        note("ShowSystem " + title);
    }
    void PlayReminderSound() override { note("PlayReminderSound"); }
    void DoPeriod() override { note("DoPeriod"); }
    void SetIcon() override { note("SetIcon"); }
    void ShowTime() override { note("ShowTime"); }
    void UpdateUI() override { note("UpdateUI"); }
    void UpdateG1() override { note("UpdateG1"); }
    bool GetHasFocus() const override { return hasFocus; }
    bool IsWindowVisible() const override { return visible; }
    int CheckInterval() const override { return interval; }
    void SetCheckInterval(int milliseconds) override {
        interval = milliseconds;
        note("SetCheckInterval " + std::to_string(milliseconds));
    }

    /// How often something that begins like this was asked for.
    std::size_t count(const std::string& beginning) const {
        std::size_t n = 0;
        for (const std::string& call : calls) {
            n += call.starts_with(beginning) ? 1U : 0U;
        }
        return n;
    }
    void forget() {
        calls.clear();
        popUps.clear();
        balloons.clear();
    }

    std::vector<std::string> calls;
    std::vector<PopUpRequest> popUps;
    struct Balloon {
        std::string title;
        std::string text;
        int timeoutMs = 0;
    };
    std::vector<Balloon> balloons;
    bool visible = false;
    bool hasFocus = false;
    int interval = 10000;

protected:
    virtual void note(const std::string& call) { calls.push_back(call); }
};

}  // namespace vl::test
