// The main window: period list, three grids, status line.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <QDeadlineTimer>
#include <QIcon>
#include <QTimer>
#include <QWidget>

#include "events/CalEvents.h"
#include "notify/Acts.h"
#include "notify/CheckCycle.h"
#include "notify/Maintenance.h"
#include "notify/ReminderScreen.h"
#include "notify/ReminderState.h"
#include "notify/UpdateCycle.h"
#include "ui/FieldAsker.h"
#include "ui/GridUtils.h"
#include "ui/KeptColumns.h"
#include "ui/MessageBoxes.h"
#include "ui/PopUp.h"
#include "ui/RowActs.h"
#include "ui/StatusText.h"
#include "ui/Tray.h"
#include "ui/TrayPictures.h"
#include "ui/WheelQueue.h"
#include "ui/WindowControls.h"
#include "ui/WindowHelp.h"
#include "ui/WindowLists.h"
#include "ui/WindowParts.h"
#include "ui/WindowPlace.h"

namespace vl {

/// Hidden at start and whenever the user closes it; the program ends by `mnuExit` only. Its
/// controls are made when it is first shown: most days it waits for hours, and what nobody sees
/// costs memory for nothing. What they show is in the lists and in the state, with or without them.
/// The window wires and shows; what is decided is decided below it. Slots and the screen's methods
/// are procedures: nothing is thrown out of them.
class frmDDE final : public QWidget, public ReminderScreen {
    Q_OBJECT

public:
    explicit frmDDE(const WindowParts& parts);
    ~frmDDE() override;

    // The public state, in its order: these, and then the identifiers of the grids' columns.
    const QIcon Pic1 = quietPicture();  ///< of the tray: nothing new
    const QIcon Pic2 = newPicture();    ///< new reminders wait
    ReminderState& state;

    /// The load handler: settings, period list, events, timers. The first check runs as soon as
    /// the event loop does. Call it once; the window stays hidden.
    void Load();
    /// Makes the controls and the rows that are not there yet, as a show does by itself. The window
    /// is loaded.
    void furnish();
    void setVisible(bool visible) override;

    /// Writes placement and settings, in the order of the settings' table.
    void SaveSettings();
    /// Closes the pop-up, hides the window and saves. Without a tray it is minimized instead.
    void HideMe();
    /// Closes the pop-up and notes when.
    void HidePopUp();
    /// Visible or not; saves nothing. While a dialog or box is open it brings that forward instead.
    void ShowHide();
    /// Saves and removes the wheel subclassing, once; from then on the window lets itself be
    /// closed.
    void Unload();
    bool isExiting() const { return exiting_; }
    /// Unloads, then ends the event loop.
    void Exit();
    /// The text of the tray's tooltip, which it also sets.
    QString GetIconText();
    /// Puts `bOnTop` into effect; window, place and focus stay.
    void SetOnTop();
    /// Makes the row current and visible in the grid of the selected tab.
    bool SelectGUID(std::string_view GUID);
    /// Notes that the grid is to be scrolled: done by the actions timer, outside of the message
    /// that reported the wheel. What is turned while a request waits is added to it.
    void RequestMouseWheel(Grid& target, const WheelTurn& turn);
    /// Scrolls the grid of the request by what was turned.
    void MouseWheel();

    /// Opens the page of the window's help number, at the place of the control that has the focus.
    void ShowHelp();
    void openHelp(int page) { help_.open(page); }
    /// Shows message boxes, which F1 tells about at that place of the window's page.
    MessageScreen& boxes(const char* helpPlace);
    /// Whoever asks for the window, or for another dialog, is first to answer the one that is open.
    /// False where none is.
    bool bringDialogForward();
    /// The window has come by itself a moment ago, see `WindowParts::keysRest`.
    bool hasJustCome() const { return !justCame_.hasExpired(); }
    /// In the status line, until another row is current.
    void sayOnce(const QString& notice);

    bool isNewRemindersTab() const { return tab() == kNewRemindersGrid; }
    /// The code of the period shown, without regard to case.
    bool isPeriod(std::string_view code) const;
    /// The rows of a grid, whether it has been made or not, as they were filled last: those of the
    /// period wait while nobody looks.
    GridList& listOf(int grid) { return lists_.of(grid); }
    const GridList& list(int grid) const { return lists_.of(grid); }
    GridList& selectedList() { return listOf(tab()); }
    /// Makes the rows that wait, as a show does by itself. Never from what a list says of itself:
    /// who else listens to it would be left with rows that are gone.
    void fillPeriod();
    /// What the user goes on with.
    void focusRows();
    /// Rows are taken out and put in again; the selected grid stays where it is scrolled to.
    void keepScrollPlace(const std::function<void()>& change);

    // ReminderScreen
    void AddItemR(const std::shared_ptr<calEvent>& event, int grid) override;
    void UpdateItemR(const std::shared_ptr<calEvent>& event, int grid) override;
    void RemoveGUID(std::string_view GUID, int grid) override;
    void FirstNewRowCurrent() override;
    void ShowNewReminders(std::string_view GUID) override;
    void ShowPopUp(const PopUpRequest& request) override;
    void ShowSystem(const std::string& title, const std::string& text, int timeoutMs) override;
    void PlayReminderSound() override;
    void DoPeriod() override;
    void SetIcon() override;
    void ShowTime() override;
    void UpdateUI() override;
    void UpdateG1() override;
    bool GetHasFocus() const override;
    bool IsWindowVisible() const override;
    int CheckInterval() const override;
    void SetCheckInterval(int milliseconds) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // building (frmDDE.cpp, frmDDEBuild.cpp, frmDDELoad.cpp)
    void wireTimers();
    void wireList(GridList& each);
    void wireTray();
    void makeControls();
    void wireControls();
    void wireGrid(Grid& each);
    void wireKeys();
    void subclassGrids();
    void removeSubclasses();
    void upgradeDatabase();
    void readColumns();
    void startTimers();
    void selectSavedPeriod();
    bool isFurnished() const { return controls_ != nullptr; }

    // timers
    void TimerCheck_Tick();
    void TimerUpdate_Tick();
    void TimerFlash_Tick();
    void TimerActions_Tick();

    // views (frmDDEViews.cpp)
    void cboPeriod_Changed(int index);
    void DoUD();
    void tabs_Changed();
    void txtSearch_Changed(const QString& search);
    void currentRowChanged();
    void followCurrentRow();
    void columnsChanged();
    void ShowPeriod();
    void choosePeriod(std::string code);
    void showPeriodAnew();
    int tab() const;
    void selectTab(int grid);
    void showStatus();
    void updateButtons();
    void wantFields();

    // menus (frmDDEMenus.cpp)
    void mnuTray_Opening();
    void mnuRefresh_Click();
    void mnuAbout_Click();
    void maintain(void (Maintenance::*flow)());
    void gridMenu(const QPoint& at);
    void changeSetting(const std::function<void(ReminderState&)>& change);

    // showing (frmDDEShow.cpp)
    bool isWatched() const { return isVisible() && !isMinimized(); }
    void showWindow();
    void hideWindow();
    void SetFlashingIcon(bool on);
    void Tray_Click();
    void MarkupHyperlinkClick(int tag);
    void lookForTray();
    void sayTrayMissing();

    WindowParts parts_;
    TimeText timeText_;
    Acts acts_;
    CheckCycle check_;
    UpdateCycle update_;
    Tray tray_;
    PopUp popUp_;
    RowActs rowActs_;
    WindowPlace place_;
    StatusText statusText_;
    WindowHelp help_;
    const char* boxHelp_ = "";  // the place that tells about the boxes of the command at work
    MessageBoxes boxes_;
    QTimer TimerCheck{this};
    QTimer TimerUpdate{this};
    QTimer TimerFlash{this};
    QTimer TimerActions{this};
    QTimer firstCheck_{this};   // once, as soon as the event loop runs
    QTimer firstAction_{this};  // once, for a request that comes after none
    QTimer trayWait_{this};     // once, when a tray should have come
    FieldAsker fields_;
    WindowLists lists_;
    KeptColumns keptColumns_;
    WheelQueue wheel_;
    std::unique_ptr<WindowControls> controls_;  // null until the window is first shown

    QDeadlineTimer justCame_;
    bool loading_ = false;
    bool exiting_ = false;
    bool flashOn_ = false;
    bool trayMissing_ = false;  // and the user has not been told yet
};

}  // namespace vl
