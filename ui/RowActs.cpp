#include "ui/RowActs.h"

#include <algorithm>
#include <utility>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "notify/OpenGUID.h"
#include "notify/SnoozeText.h"
#include "ui/HelpNumbers.h"
#include "ui/frmDDE.h"
#include "ui/frmSnooze.h"

namespace vl {

namespace {

ActRow actRow(const GridRow& row) { return {row.event, row.span.start, row.reminder}; }

std::vector<ActRow> actRows(const std::vector<GridRow>& rows) {
    std::vector<ActRow> asked;
    asked.reserve(rows.size());
    for (const GridRow& row : rows) {
        asked.push_back(actRow(row));
    }
    return asked;
}

std::vector<std::string> GUIDsOf(const std::vector<ActRow>& rows) {
    std::vector<std::string> GUIDs;
    GUIDs.reserve(rows.size());
    for (const ActRow& row : rows) {
        GUIDs.push_back(row.event->GUID);
    }
    return GUIDs;
}

}  // namespace

RowActs::RowActs(frmDDE& window, const WindowParts& parts, TimeText time, Acts& acts,
                 CheckCycle& check)
    : window_(window),
      parts_(parts),
      state_(parts.state),
      acts_(acts),
      check_(check),
      time_(std::move(time)) {}

RowChoice RowActs::choice() const {
    const GridList& list = window_.selectedList();
    RowChoice made;
    made.tab = list.grid();
    made.rows = actRows(list.selectedRows());
    if (state_.curEvent) {
        made.current = {state_.curEvent, state_.curReminder.start, state_.curReminder.reminder};
    }
    made.dismisses = state_.bIsDismiss;
    made.hides = !window_.isPeriod("H");
    return made;
}

void RowActs::noteMenuChoice() { menuChoice_ = choice(); }

RowChoice RowActs::menuChoice() {
    const std::optional<RowChoice> noted = std::exchange(menuChoice_, std::nullopt);
    return noted ? *noted : choice();
}

ActsOffered RowActs::offered() const {
    const GridList& list = window_.selectedList();
    ActsOffered offered;
    offered.snoozes = window_.isNewRemindersTab();
    offered.hides = !window_.isPeriod("H");
    offered.anySelected = list.selection().hasSelection();
    offered.anyCurrent = state_.curEvent != nullptr;
    if (offered.anySelected && !offered.snoozes) {
        const std::vector<GridRow> rows = list.selectedRows();
        offered.dismisses = !std::all_of(rows.begin(), rows.end(), [](const GridRow& row) {
            return row.dismissed > DateTime();
        });
    }
    return offered;
}

DialogParts RowActs::dialogParts() {
    return {parts_.settings, parts_.clock, state_.bOnTop,
            [this](int page) { window_.openHelp(page); }};
}

void RowActs::butSnooze_Click() {
    const ErrScope scope;
    attempt([&] { snoozeOrHide(choice()); });
}

void RowActs::snoozeOrHide(const RowChoice& of) {
    of.tab == kNewRemindersGrid ? doSnooze(of) : doHide(of);
}

void RowActs::doSnooze(const RowChoice& of) {
    if (!of.current || window_.bringDialogForward()) {
        return;
    }
    const int from = of.tab;
    const ActRow row = *of.current;
    const std::string GUID = row.event->GUID;
    frmSnooze dialog(dialogParts(), &window_);
    dialog.sTitle = snoozeTitle(shownSubject(row.event->Summary()));
    dialog.ShowModal();
    const auto minutes = snoozeMinutes(dialog.sSnooze);
    if (dialog.bCancel || !snoozeTime(dialog.sSnooze, parts_.clock.now()) ||
        !acts_.Snooze(row, *minutes)) {
        return;
    }
    const std::string neighbour = window_.listOf(from).neighbourOf(GUID);
    window_.RemoveGUID(GUID, kNewRemindersGrid);
    window_.RemoveGUID(GUID, kAllRemindersGrid);
    attempt([&] {
        const auto event = acts_.EventOf(row);
        snoozedOccurrence(*event, row.InstanceStart);
        window_.AddItemR(event, kAllRemindersGrid);
    });
    if (!neighbour.empty()) {
        window_.listOf(from).SelectGUID(neighbour);
    }
    leaveEmptyList(from);
}

// All at once: thousands of rows would take minutes one by one.
void RowActs::removeFrom(int grid, const std::vector<ActRow>& rows) {
    window_.listOf(grid).RemoveGUIDs(GUIDsOf(rows));
}

// The last new reminder was dealt with: there is nothing left to look at.
void RowActs::leaveEmptyList(int tab) {
    if (tab == kNewRemindersGrid && window_.list(kNewRemindersGrid).rowCount() == 0) {
        window_.HideMe();
    }
    window_.UpdateUI();
    window_.SetIcon();
}

void RowActs::doHide(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Hide(row, of.hides);
        }
    }
    removeFrom(kAllRemindersGrid, of.rows);
    removeFrom(kEventsGrid, of.rows);
    window_.DoPeriod();  // where nothing is left it tells how many are hidden
}

void RowActs::openAsked() {
    if (!window_.hasJustCome()) {
        butOpen_Click();
    }
}

void RowActs::butOpen_Click() {
    const ErrScope scope;
    attempt([&] { open(choice()); });
}

void RowActs::open(const RowChoice& of) {
    if (!of.current || window_.bringDialogForward()) {
        return;
    }
    const std::string GUID = of.current->event->GUID;  // the box lets ticks refill the grid
    const HostHelper host{programFolder(), parts_.startProgram, parts_.DebugMode};
    const bool started = OpenGUID(parts_.period, GUID, host, window_.boxes(kHelpTrouble));
    parts_.db.CloseDB();
    if (!started) {
        window_.sayOnce(
            tr("VelmoraClipper.exe could not be started; it belongs beside this program"));
    }
}

}  // namespace vl
