// The load handler and the settings it reads; what it reads, `SaveSettings` writes.
#include <algorithm>

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>

#include "app/Placement.h"
#include "app/Settings.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Periods.h"
#include "notify/ReadAgain.h"
#include "notify/SchemaUpgrade.h"
#include "ui/HelpNumbers.h"
#include "ui/SettingNames.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kFlash = 500ms;
constexpr auto kUpdate = 1000ms;
constexpr auto kActions = 50ms;
// All columns are seen in it as wide as they want to be.
constexpr QSize kFirstSize(920, 480);
// A program that starts with the desktop is often there before the panel.
constexpr auto kTrayMayTake = 5s;

ScreenArea areaOf(const QRect& r) {
    return {double(r.left()), double(r.top()), double(r.width()), double(r.height())};
}

const char* flagText(bool flag) { return flag ? "-1" : "0"; }

}  // namespace

// In this order: each step finds what those before it have left. What the controls need of it waits
// for them (`furnish`).
void frmDDE::Load() {
    const ErrScope scope;
    for (const auto step :
         {&frmDDE::beginLoading, &frmDDE::placeWindow, &frmDDE::readSettings, &frmDDE::SetOnTop,
          &frmDDE::readPeriodSettings, &frmDDE::upgradeDatabase, &frmDDE::prepareActions,
          &frmDDE::showTray, &frmDDE::readEvents, &frmDDE::setCheckTimer, &frmDDE::readColumns,
          &frmDDE::startTimers, &frmDDE::SetIcon, &frmDDE::endLoading,
          &frmDDE::selectSavedPeriod}) {
        attempt([&] { (this->*step)(); });
    }
    UpdateUI();
    firstCheck_.start(0ms);
    trayWait_.start(kTrayMayTake);
}

int frmDDE::numberSetting(const char* key) const {
    constexpr double kMost = 2147483647.0;
    const double value = text::leadingNumber(parts_.settings.GetIni(kRemindersSection, key, 0));
    return static_cast<int>(text::roundHalfEven(std::clamp(value, -kMost, kMost)));
}

void frmDDE::beginLoading() {
    loading_ = true;
    helpNumber_ = kHelpMainWindow;
}

void frmDDE::endLoading() { loading_ = false; }

void frmDDE::placeWindow() {
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QScreen* first = QGuiApplication::primaryScreen();
    std::vector<ScreenArea> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.insert(screen == first ? screens.begin() : screens.end(),
                       areaOf(screen->availableGeometry()));
    }
    if (first != nullptr) {
        resize(kFirstSize.boundedTo(first->availableSize() - QSize(0, titleBar)));
    }
    const WindowPlacement place =
        readPlacement(parts_.settings, screens, first ? areaOf(first->geometry()) : ScreenArea(),
                      {double(width()), double(height())}, {0, static_cast<double>(titleBar)});
    move(place.left, place.top);
    resize(place.width.value_or(width()), place.height.value_or(height()));
}

void frmDDE::readSettings() {
    canSave_ = parts_.settings.CanSave();
    state_.bMuted = numberSetting("Muted") != 0;
    state_.bSilent = numberSetting("Silent") != 0;
    state_.sNotifType = parts_.settings.GetIni(kRemindersSection, "NotifType", "D");
    // Two older flags; where both are set, the later one holds.
    if (numberSetting("Popup") != 0) {
        state_.sNotifType = "P";
    }
    if (numberSetting("System") != 0) {
        state_.sNotifType = "S";
    }
    state_.bOnTop = numberSetting("OnTop") != 0;
}

void frmDDE::readPeriodSettings() {
    state_.sPeriod = parts_.settings.GetIni(kRemindersSection, "Period", "T");
    const std::string shown = parts_.settings.GetIni(kRemindersSection, "LastShown", "");
    state_.dLastShown = shown.empty() ? parts_.clock.now() : fromStoredText(shown);
    state_.DBVersion = numberSetting("DBVersion");
}

void frmDDE::upgradeDatabase() {
    state_.DBVersion = upgradeSchema(parts_.db, state_.DBVersion,
                                     [this] { parts_.reminders.RemoveAllDoneStatus(); });
}

void frmDDE::prepareActions() {
    state_.OneMin = 1.0 / 1440;
    state_.pendingActions = std::make_shared<GenCollection>();
}

void frmDDE::showTray() { tray_.show(); }

void frmDDE::readEvents() { check_.ReadAtStart(); }

void frmDDE::setCheckTimer() {
    TimerCheck.setInterval(parts_.DebugMode ? kCheckDebug : kCheckVisible);
}

// The rows are in their order before anybody sees them.
void frmDDE::readColumns() {
    keptColumns_.read();
    for (int i = 0; i < kGridCount; ++i) {
        const ColumnLayout layout = keptColumns_.layout(i, 0);
        listOf(i).sortBy(layout.sortedBy, layout.descending);
    }
}

void frmDDE::startTimers() {
    TimerFlash.setInterval(kFlash);
    TimerUpdate.setInterval(kUpdate);
    TimerActions.setInterval(kActions);
    for (QTimer* timer : {&TimerUpdate, &TimerCheck, &TimerFlash, &TimerActions}) {
        timer->start();
    }
}

void frmDDE::removeSubclasses() {
    for (Grid* each : grids_) {
        if (each != nullptr) {
            parts_.gridUtils.removeSubclass(*each);
        }
    }
}

void frmDDE::selectSavedPeriod() {
    const auto saved = periodIndex(state_.sPeriod);
    choosePeriod(periods()[saved.value_or(*periodIndex("T"))].code);
}

void frmDDE::SaveSettings() {
    const ErrScope scope;
    noteFrame();
    const bool asItIs = isNormal() || !normalGeometry().isValid();
    const QRect normal = asItIs ? geometry() : normalGeometry();
    // Of the frame, as `move` takes it: else the window would wander at every start.
    const QPoint corner = isNormal() ? pos() : normal.topLeft() - frame_;
    const std::pair<const char*, int> placement[] = {{"Left", corner.x()},
                                                     {"Top", corner.y()},
                                                     {"Width", normal.width()},
                                                     {"Height", normal.height()}};
    for (const auto& [key, value] : placement) {
        parts_.settings.SaveIni("Window", key, std::to_string(value));
    }
    const std::pair<const char*, std::string> values[] = {
        {"Muted", flagText(state_.bMuted)},
        {"Silent", flagText(state_.bSilent)},
        {"Popup", "0"},
        {"System", "0"},
        {"OnTop", flagText(state_.bOnTop)},
        {"NotifType", state_.sNotifType},
        {"Period", state_.sPeriod},
        {"LastShown", toStoredText(state_.dLastShown)},
        {"DBVersion", std::to_string(state_.DBVersion)},
    };
    for (const auto& [key, value] : values) {
        parts_.settings.SaveIni(kRemindersSection, key, value);
    }
}

}  // namespace vl
