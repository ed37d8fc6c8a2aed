// What checks and delivery ask of the screen. The window does it; tests record it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vl {

class calEvent;

/// The three grids, in the order of their tabs.
inline constexpr int kNewRemindersGrid = 0;
inline constexpr int kAllRemindersGrid = 1;
inline constexpr int kEventsGrid = 2;
inline constexpr int kGridCount = 3;

/// The pop-up's arguments as the check gives them.
struct PopUpRequest {
    std::string title;
    std::string sContent;         // a text of its own, or empty: the reminders of `EvCol`
    std::int32_t ShowDelay = -1;  // milliseconds; negative: stays until closed
    bool Bold = false;
    int iWidth = 300;
    int ContentHeight = 100;
    int Opacity = 100;  // percent
};

/// Methods are procedures: they carry on after failing steps, and nothing is thrown out of them.
class ReminderScreen {
public:
    virtual ~ReminderScreen() = default;

    /// Adds the event's row, or replaces the row its `GUID` already has in that grid. The row
    /// copies what it shows.
    virtual void AddItemR(const std::shared_ptr<calEvent>& event, int grid) = 0;
    /// As `AddItemR`, but only when the event has a row there.
    virtual void UpdateItemR(const std::shared_ptr<calEvent>& event, int grid) = 0;
    /// Removes every row of `GUID` (without regard to case) from one grid.
    virtual void RemoveGUID(std::string_view GUID, int grid) = 0;

    /// Makes the first row of the new-reminders grid current.
    virtual void FirstNewRowCurrent() = 0;
    /// Shows the window in the foreground with the focus, on its first tab, the first row in view
    /// and the row of `GUID` selected.
    virtual void ShowNewReminders(std::string_view GUID) = 0;
    virtual void ShowPopUp(const PopUpRequest& request) = 0;
    /// A balloon on the tray icon.
    virtual void ShowSystem(const std::string& title, const std::string& text, int timeoutMs) = 0;
    virtual void PlayReminderSound() = 0;

    /// Refills the period grids.
    virtual void DoPeriod() = 0;
    /// Tray picture and tooltip from the state of the grids.
    virtual void SetIcon() = 0;
    /// The clock of the window.
    virtual void ShowTime() = 0;
    /// Buttons, captions and status line.
    virtual void UpdateUI() = 0;
    /// Renews what the grids show.
    virtual void UpdateG1() = 0;
    /// Visible and the foreground window of the desktop.
    virtual bool GetHasFocus() const = 0;
    virtual bool IsWindowVisible() const = 0;
    /// The interval of the checks, in milliseconds. Setting it starts the wait anew, so it is
    /// only set to another value.
    virtual int CheckInterval() const = 0;
    virtual void SetCheckInterval(int milliseconds) = 0;
};

}  // namespace vl
