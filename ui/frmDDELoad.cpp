// The load handler, and what it reads is written.
#include <chrono>
#include <functional>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "notify/Periods.h"
#include "notify/SchemaUpgrade.h"
#include "ui/HelpNumbers.h"
#include "ui/KeptState.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kFlash = 500ms;
constexpr auto kUpdate = 1000ms;
constexpr auto kActions = 50ms;
// A program that starts with the desktop is often there before the panel.
constexpr auto kTrayMayTake = 5s;

}  // namespace

// In this order: each step finds what those before it have left. What the controls need of it waits
// for them (`furnish`).
void frmDDE::Load() {
    const ErrScope scope;
    const std::function<void()> steps[] = {
        [this] {
            loading_ = true;
            help_.number = kHelpMainWindow;
        },
        [this] { place_.read(); },
        [this] { statusText_.lookWhetherSaved(); },
        [this] { readNotifying(parts_.settings, state); },
        [this] { SetOnTop(); },
        [this] { readPeriod(parts_.settings, parts_.clock.now(), state); },
        [this] { upgradeDatabase(); },
        [this] { state.OneMin = kOneMin; },
        [this] { state.pendingActions = std::make_shared<GenCollection>(); },
        [this] { state.ListIndexCol = listPositions(); },
        [this] { tray_.show(); },
        [this] { check_.ReadAtStart(); },
        [this] { TimerCheck.setInterval(parts_.DebugMode ? kCheckDebug : kCheckVisible); },
        [this] { readColumns(); },
        [this] { startTimers(); },
        [this] { SetIcon(); },
        [this] { loading_ = false; },
        [this] { selectSavedPeriod(); },
    };
    for (const auto& step : steps) {
        attempt(step);
    }
    UpdateUI();
    firstCheck_.start(0ms);
    trayWait_.start(kTrayMayTake);
}

void frmDDE::upgradeDatabase() {
    state.DBVersion = upgradeSchema(parts_.db, state.DBVersion,
                                    [this] { parts_.reminders.RemoveAllDoneStatus(); });
}

// The rows are in their order before anybody sees them.
void frmDDE::readColumns() {
    keptColumns_.read();
    for (const auto& each : lists_.all()) {
        const ColumnLayout layout = keptColumns_.layout(each->grid(), 0);
        each->sortBy(layout.sortedBy, layout.descending);
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

void frmDDE::selectSavedPeriod() {
    choosePeriod(state.ListIndexCol->Key(listPosition(*state.ListIndexCol, state.sPeriod)));
}

void frmDDE::SaveSettings() {
    const ErrScope scope;
    place_.save();
    writeState(parts_.settings, state);
}

}  // namespace vl
