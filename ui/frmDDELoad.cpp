// The load handler and the settings it reads; what it reads, `SaveSettings` writes.
#include <algorithm>

#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QTabWidget>

#include "app/Settings.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Periods.h"
#include "ui/FormFont.h"
#include "ui/QtText.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kWindow = "Window";
constexpr auto kReminders = "Reminders";
constexpr auto kFlash = 500ms;
constexpr auto kUpdate = 1000ms;
constexpr QSize kFirstSize(760, 440);
// A program that starts with the desktop is often there before the panel.
constexpr auto kTrayMayTake = 5s;

const char* flagText(bool flag) { return flag ? "-1" : "0"; }

}  // namespace

void frmDDE::Load() {
    const ErrScope scope;
    loading_ = true;
    for (const auto step :
         {&frmDDE::placeWindow, &frmDDE::readSettings, &frmDDE::SetOnTop, &frmDDE::rememberCaptions,
          &frmDDE::readPeriodSettings, &frmDDE::fillPeriods, &frmDDE::readEvents,
          &frmDDE::startTimers, &frmDDE::SetIcon}) {
        attempt([&] { (this->*step)(); });
    }
    applyFormFont(*this);
    applyFormFont(popup_);
    loading_ = false;
    selectSavedPeriod();
    UpdateUI();
    QTimer::singleShot(0, this, &frmDDE::TimerCheck_Tick);
    QTimer::singleShot(kTrayMayTake, this, &frmDDE::lookForTray);
}

double frmDDE::setting(const char* section, const char* key, double byDefault) const {
    return text::leadingNumber(
        parts_.settings.GetIni(section, key, Variant(text::fromNumber(byDefault))));
}

void frmDDE::placeWindow() {
    const QScreen& screen = *QGuiApplication::primaryScreen();
    const QSize all = screen.availableVirtualSize();
    const QSize frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight));
    resize(kFirstSize.boundedTo(screen.availableSize() - frame));
    const auto savedWidth = static_cast<int>(setting(kWindow, "Width", 0));
    const auto savedHeight = static_cast<int>(setting(kWindow, "Height", 0));
    resize(savedWidth > 0 ? savedWidth : width(), savedHeight > 0 ? savedHeight : height());
    // The smaller of value and bound first: a window larger than the screen begins at its edge.
    const auto onScreen = [](double value, int bound) {
        return static_cast<int>(std::max(std::min(value, static_cast<double>(bound)), 0.0));
    };
    const QSize room = all - size() - frame;
    const double left = setting(kWindow, "Left", all.width() / 2.0);
    const double top = setting(kWindow, "Top", all.height() / 2.0);
    move(onScreen(left, room.width()), onScreen(top, room.height()));
}

void frmDDE::readSettings() {
    state_.bMuted = setting(kReminders, "Muted", 0) != 0;
    state_.bSilent = setting(kReminders, "Silent", 0) != 0;
    state_.sNotifType = parts_.settings.GetIni(kReminders, "NotifType", "D");
    // Two older flags; where both are set, the later one holds.
    if (setting(kReminders, "Popup", 0) != 0) {
        state_.sNotifType = "P";
    }
    if (setting(kReminders, "System", 0) != 0) {
        state_.sNotifType = "S";
    }
    state_.bOnTop = setting(kReminders, "OnTop", 0) != 0;
}

void frmDDE::rememberCaptions() {
    for (int i = 0; i < tabs->count(); ++i) {
        captions_ << tabs->tabText(i);
    }
}

void frmDDE::readPeriodSettings() {
    state_.sPeriod = parts_.settings.GetIni(kReminders, "Period", "T");
    const std::string shown = parts_.settings.GetIni(kReminders, "LastShown", "");
    state_.dLastShown = shown.empty() ? parts_.clock.now() : fromStoredText(shown);
    state_.DBVersion = static_cast<int>(setting(kReminders, "DBVersion", 0));
}

void frmDDE::fillPeriods() {
    for (const Period& period : periods()) {
        cboPeriod->addItem(tr(period.text), QString(period.code));
    }
    cboPeriod->setCurrentIndex(-1);
    tray_.show();
}

void frmDDE::readEvents() {
    for (CalEvents* set : {&parts_.reminders, &parts_.period}) {
        set->ReadDB(true, false);
    }
}

void frmDDE::startTimers() {
    TimerCheck.setInterval(parts_.DebugMode ? kCheckDebug : kCheckVisible);
    for (Grid* each : grids_) {
        each->InitGrid();
    }
    TimerFlash.setInterval(kFlash);
    TimerUpdate.setInterval(kUpdate);
    for (QTimer* timer : {&TimerUpdate, &TimerCheck, &TimerFlash}) {
        timer->start();
    }
}

void frmDDE::selectSavedPeriod() {
    const auto saved = periodIndex(state_.sPeriod);
    cboPeriod->setCurrentIndex(static_cast<int>(saved.value_or(*periodIndex("T"))));
}

void frmDDE::SaveSettings() {
    const ErrScope scope;
    const QRect normal = isMinimized() || isMaximized() ? normalGeometry() : geometry();
    const QPoint corner = isMinimized() || isMaximized() ? normal.topLeft() : pos();
    const std::pair<const char*, int> placement[] = {{"Left", corner.x()},
                                                     {"Top", corner.y()},
                                                     {"Width", normal.width()},
                                                     {"Height", normal.height()}};
    for (const auto& [key, value] : placement) {
        parts_.settings.SaveIni(kWindow, key, std::to_string(value));
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
        parts_.settings.SaveIni(kReminders, key, value);
    }
}

}  // namespace vl
