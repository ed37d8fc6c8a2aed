// The main window: period list, three grids, status line.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QDeadlineTimer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include "events/CalEvents.h"
#include "notify/Acts.h"
#include "notify/CheckCycle.h"
#include "notify/Maintenance.h"
#include "notify/ReminderScreen.h"
#include "notify/ReminderState.h"
#include "notify/UpdateCycle.h"
#include "ui/DialogParts.h"
#include "ui/FieldAsker.h"
#include "ui/Grid.h"
#include "ui/GridList.h"
#include "ui/GridUtils.h"
#include "ui/KeptColumns.h"
#include "ui/MessageBoxes.h"
#include "ui/RowChoice.h"
#include "ui/RowFill.h"
#include "ui/Toast.h"
#include "ui/Tray.h"
#include "ui/TrayPictures.h"
#include "ui/WheelQueue.h"
#include "ui/WindowParts.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTabWidget;

namespace vl {

class SplitButton;
class StatusLine;
class UpDown;
class frmDismiss;

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
    bool isNewRemindersTab() const;
    /// The rows of a grid, whether it has been made or not. Those of the period are made now, where
    /// they have waited for somebody who looks.
    const GridList& list(int grid);

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
    // what happens
    void TimerCheck_Tick();
    void TimerUpdate_Tick();
    void TimerFlash_Tick();
    void TimerActions_Tick();
    void cboPeriod_Changed(int index);
    void DoUD();
    void tabs_Changed();
    void txtSearch_Changed(const QString& search);
    void currentRowChanged();
    void Tray_Click();
    void mnuTray_Opening();
    void MarkupHyperlinkClick(int tag);
    void mnuRefresh_Click();
    void mnuAbout_Click();
    void mnuCleanUp_Click();
    void mnuDeleteAll_Click();
    void butOpen_Click();
    void butSnooze_Click();
    void butDismiss_Click();
    void lookForTray();
    void sayTrayMissing();

    // building (frmDDE.cpp, frmDDEBuild.cpp)
    void wireTimers();
    void wireList(GridList& each);
    void wireTray();
    bool isFurnished() const { return furnished_; }
    void makeControls();
    void build();
    void buildGrids();
    void layOutControls();
    void wireControls();
    void wireGrid(Grid& each);
    void wireKeys();
    void fillPeriods();
    void setTabFont();
    void initGrids();
    void layOut();
    void applyFont();
    void subclassGrids();
    Toast& popUp();

    // the load handler's steps (frmDDELoad.cpp)
    void beginLoading();
    void placeWindow();
    void readSettings();
    void readPeriodSettings();
    void upgradeDatabase();
    void prepareActions();
    void showTray();
    void readEvents();
    void setCheckTimer();
    void readColumns();
    void startTimers();
    void endLoading();
    void selectSavedPeriod();
    void removeSubclasses();
    int numberSetting(const char* key) const;  // of the section "Reminders"; 0 when not there

    // columns (frmDDEColumns.cpp)
    void columnsChanged();
    void saveColumns();
    void saveColumnsThatWait();
    static void headingMenu(Grid& of, const QPoint& at);

    // acts on rows (frmDDEActs.cpp)
    RowChoice choice() const;
    RowChoice menuChoice();
    void noteMenuChoice();
    DialogParts dialogParts();
    void snoozeOrHide(const RowChoice& of);
    void doSnooze(const RowChoice& of);
    void doHide(const RowChoice& of);
    void openAsked();
    void dismissAsked(bool choose);
    void dismissChosen(bool choose);
    void dismiss(const RowChoice& of);
    void chooseDismiss(const RowChoice& of);
    void fillDismiss(frmDismiss& dialog, const ActRow& row);
    void reactivate(const RowChoice& of);
    void removeFromAll(const std::vector<ActRow>& rows);
    void leaveGrids(const std::vector<ActRow>& rows, int tab);
    void leaveEmptyList(int tab);

    // menus (frmDDEMenus.cpp)
    MessageScreen& boxes(const char* helpPlace);
    Maintenance maintenance();
    void maintain(void (Maintenance::*flow)());
    void open(const RowChoice& of);
    void gridMenu(const QPoint& at);
    void fillGridMenu(QMenu& menu);
    void updateButtons();
    void updateSnooze(bool anySelected);
    void updateDismiss(bool anySelected);

    // views (frmDDEViews.cpp)
    bool isPeriod(std::string_view code) const;
    int tab() const;
    void ShowPeriod();
    void choosePeriod(std::string code);
    void showPeriodAnew();
    bool isWatched() const;
    GridList& selectedList();
    const GridList& selectedList() const { return listOf(tab()); }
    // Only where `isFurnished`.
    Grid& grid(int index) const { return *grids_[static_cast<std::size_t>(index)]; }
    Grid& selectedGrid() const { return grid(tab()); }
    void focusRows();
    void selectTab(int grid);
    void showCaptions();
    void showEmptyTexts();
    void showStatus();
    void sayOnce(const QString& notice);
    QString rowStatus() const;
    std::string currentGUID() const;
    std::string troubleText() const;
    QString notice() const;

    // rows (frmDDERows.cpp)
    DateTime beginPeriod();
    void countPeriod();
    void fillPeriod();
    void fillLists();
    bool waits(int grid) const;
    std::size_t rowsOfTab() const;
    GridRow rowFor(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence,
                   int grid, const TimeZone& here) const;
    // As they were filled last.
    GridList& listOf(int grid) { return *lists_[static_cast<std::size_t>(grid)]; }
    const GridList& listOf(int grid) const { return *lists_[static_cast<std::size_t>(grid)]; }

    // names of fields (frmDDEFields.cpp)
    std::vector<std::shared_ptr<calEvent>> listedEvents() const;
    bool showsFields() const;
    void wantFields();
    void showFields();

    // help (frmDDEHelp.cpp)
    void openHelp(int page, const char* place = "");

    // showing (frmDDEShow.cpp)
    bool bringDialogForward();
    bool hasJustCome() const;
    void showWindow();
    void hideWindow();
    void minimize();
    void keepPlace();
    bool isNormal() const;
    void noteFrame();
    void SetFlashingIcon(bool on);
    void changeSetting(const std::function<void(ReminderState&)>& change);

    WindowParts parts_;
    ReminderState& state_;
    TrayPictures pictures_;  // Pic1, Pic2
    Acts acts_;
    CheckCycle check_;
    UpdateCycle update_;
    Tray tray_;
    std::unique_ptr<Toast> popup_;  // made when there is something to say
    QTimer TimerCheck{this};
    QTimer TimerUpdate{this};
    QTimer TimerFlash{this};
    QTimer TimerActions{this};
    QTimer firstCheck_{this};   // once, as soon as the event loop runs
    QTimer trayWait_{this};     // once, when a tray should have come
    QTimer saveColumns_{this};  // once, when columns have come to rest
    FieldAsker fields_;
    TimeText timeText_;
    std::array<std::unique_ptr<GridList>, kGridCount> lists_;
    bool periodWaits_ = false;  // the lists are not what the period lists now
    std::array<std::size_t, kGridCount> waitingRows_{};  // how many rows it lists then
    KeptColumns keptColumns_;
    WheelQueue wheel_;

    // The controls: null until the window is first shown.
    QLabel* lblPeriod = nullptr;
    QComboBox* cboPeriod = nullptr;
    UpDown* UpDown1 = nullptr;
    QLineEdit* txtSearch = nullptr;
    QLabel* lblTime = nullptr;
    QTabWidget* tabs = nullptr;
    StatusLine* status_ = nullptr;
    QPushButton* butSnooze = nullptr;
    SplitButton* butDismiss = nullptr;
    QPushButton* butOpen = nullptr;
    QPushButton* butMenu = nullptr;
    QPushButton* butHide = nullptr;
    std::array<Grid*, kGridCount> grids_{};

    std::optional<RowChoice> menuChoice_;  // what the menu is about that was opened last
    QDeadlineTimer justCame_;              // see `hasJustCome`
    QStringList captions_;                 // of the tabs, without counts
    QPoint frame_;  // from the window's corner to its inside, when last seen in normal size
    int helpNumber_ = 0;
    bool canSave_ = true;  // the settings file could be written when last looked at
    bool furnished_ = false;
    bool loading_ = false;
    bool exiting_ = false;
    bool flashOn_ = false;
    std::shared_ptr<GenCollection> shownEvCol_;  // what the links of the toast stand for
    bool wasMinimized_ = false;                  // by the program, since it was last hidden
    bool trayMissing_ = false;                   // and the user has not been told yet
    // What the status line says instead of the current row, until another one is current than when
    // it was said.
    QString notice_;
    std::string noticeRow_;
    // Where the help tells about the boxes of the command that is at work.
    const char* boxHelp_ = "";
    MessageBoxes boxes_{*this, [this] { openHelp(helpNumber_, boxHelp_); }};
};

}  // namespace vl
