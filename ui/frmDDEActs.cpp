// What the buttons do to rows. Rows are copied before anything is asked: while a box is open
// checks go on and refill the grids.
#include <utility>

#include <QApplication>

#include "base/ErrorState.h"
#include "notify/Acts.h"
#include "notify/SnoozeText.h"
#include "ui/QtText.h"
#include "ui/frmDDE.h"
#include "ui/frmDismiss.h"
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

DismissMode modeOf(frmDismiss::Choice choice) {
    switch (choice) {
        case frmDismiss::Choice::After:
            return DismissMode::AllButAfter;
        case frmDismiss::Choice::All:
            return DismissMode::All;
        default:
            return DismissMode::This;
    }
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

RowChoice frmDDE::choice() const {
    RowChoice made;
    made.tab = tab();
    made.rows = actRows(selectedList().selectedRows());
    if (const GridRow* row = selectedList().currentRow()) {
        made.current = actRow(*row);
    }
    made.dismisses = state_.bIsDismiss;
    made.hides = !isPeriod("H");
    return made;
}

void frmDDE::noteMenuChoice() { menuChoice_ = choice(); }

RowChoice frmDDE::menuChoice() {
    const std::optional<RowChoice> noted = std::exchange(menuChoice_, std::nullopt);
    return noted ? *noted : choice();
}

DialogParts frmDDE::dialogParts() {
    return {parts_.settings, parts_.clock, state_.bOnTop, [this](int page) { openHelp(page); }};
}

bool frmDDE::isNewRemindersTab() const { return tab() == kNewRemindersGrid; }

void frmDDE::butSnooze_Click() {
    const ErrScope scope;
    attempt([&] { snoozeOrHide(choice()); });
}

void frmDDE::snoozeOrHide(const RowChoice& of) {
    of.tab == kNewRemindersGrid ? doSnooze(of) : doHide(of);
}

void frmDDE::doSnooze(const RowChoice& of) {
    if (!of.current || bringDialogForward()) {
        return;
    }
    const int from = of.tab;
    const ActRow row = *of.current;
    const std::string GUID = row.event->GUID;
    frmSnooze dialog(dialogParts(), this);
    dialog.sTitle = snoozeTitle(shownSubject(row.event->Summary()));
    dialog.ShowModal();
    const auto minutes = snoozeMinutes(dialog.sSnooze);
    if (dialog.bCancel || !snoozeTime(dialog.sSnooze, parts_.clock.now()) ||
        !acts_.Snooze(row, *minutes)) {
        return;
    }
    const std::string neighbour = listOf(from).neighbourOf(GUID);
    RemoveGUID(GUID, kNewRemindersGrid);
    RemoveGUID(GUID, kAllRemindersGrid);
    attempt([&] {
        const auto event = acts_.EventOf(row);
        snoozedOccurrence(*event, row.InstanceStart);
        AddItemR(event, kAllRemindersGrid);
    });
    if (!neighbour.empty()) {
        listOf(from).SelectGUID(neighbour);
    }
    leaveEmptyList(from);
}

// The last new reminder was dealt with: there is nothing left to look at.
void frmDDE::leaveEmptyList(int tab) {
    if (tab == kNewRemindersGrid && list(kNewRemindersGrid).rowCount() == 0) {
        HideMe();
    }
    UpdateUI();
    SetIcon();
}

void frmDDE::doHide(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Hide(row, of.hides);
        }
    }
    for (const int index : {kAllRemindersGrid, kEventsGrid}) {
        listOf(index).RemoveGUIDs(GUIDsOf(of.rows));
    }
    UpdateUI();
}

void frmDDE::butDismiss_Click() {
    const ErrScope scope;
    attempt([&] {
        if (!state_.bIsDismiss) {
            reactivate(choice());
        } else if (QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier)) {
            chooseDismiss(choice());
        } else {
            dismiss(choice());
        }
    });
}

void frmDDE::openAsked() {
    if (!hasJustCome()) {
        butOpen_Click();
    }
}

void frmDDE::dismissAsked(bool choose) {
    const ErrScope scope;
    if (state_.bIsDismiss && !hasJustCome()) {
        attempt([&] { choose ? chooseDismiss(choice()) : dismiss(choice()); });
    }
}

void frmDDE::dismissChosen(bool choose) {
    const ErrScope scope;
    attempt([&] {
        const RowChoice of = menuChoice();
        if (of.dismisses) {
            choose ? chooseDismiss(of) : dismiss(of);
        }
    });
}

void frmDDE::dismiss(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Dismiss(row, DismissMode::This);
        }
    }
    leaveGrids(of.rows, of.tab);
}

void frmDDE::chooseDismiss(const RowChoice& of) {
    if (bringDialogForward()) {
        return;
    }
    std::vector<ActRow> handled;
    QStringList kept;
    bool deleted = false;
    for (const ActRow& row : of.rows) {
        frmDismiss dialog(dialogParts(), this);
        fillDismiss(dialog, row);
        dialog.ShowModal();
        if (exiting_) {
            break;
        }
        if (dialog.bCancel) {
            continue;
        }
        if (dialog.choice() == frmDismiss::Choice::DeleteItem) {
            // What has to wait for the host counts as deleted: it is done as soon as it can be.
            if (acts_.DeleteItem(row) == calEvent::Deletion::Failed) {
                kept << qtText(shownSubject(row.event->Summary()));
                continue;
            }
            deleted = true;
        } else {
            acts_.Dismiss(row, modeOf(dialog.choice()), dialog.markDone());
        }
        handled.push_back(row);
    }
    leaveGrids(handled, of.tab);
    if (deleted) {
        focusRows();
        ShowPopUp({"Items deleted...",
                   "Items were deleted. Opened grids and calendars may need to be refreshed", 5000,
                   false, 250, 100, 100});
    }
    if (!kept.isEmpty()) {  // at last: a notice goes when another row becomes current
        sayOnce(kept.size() == 1 ? tr("%1 could not be deleted").arg(kept.front())
                                 : tr("%1 items could not be deleted").arg(kept.size()));
    }
}

void frmDDE::fillDismiss(frmDismiss& dialog, const ActRow& row) {
    const DateTime now = parts_.clock.now();
    const auto event = acts_.EventOf(row);
    const DateTime next = row.reminder.isZero() ? event->NextReminderD(now) : row.reminder;
    dialog.sNext = next.isZero() ? "No reminder ahead."
                                 : "Reminder " + momentText(next, true, now, timeText_) + ".";
    const std::string subject = event->Summary();
    // It begins with the subject, where there is one.
    dialog.sEvent = (isBlank(subject) ? shownSubject(subject) + ", " : std::string()) +
                    event->SBMessage(row.InstanceStart, wordsOf(timeText_, now));
}

// Out of the lists first, all at once: thousands of rows would take minutes one by one.
void frmDDE::removeFromAll(const std::vector<ActRow>& rows) {
    for (const auto& each : lists_) {
        each->RemoveGUIDs(GUIDsOf(rows));
    }
    for (const ActRow& row : rows) {
        check_.RemoveGUIDAll(row.event->GUID);
    }
}

// Off all lists. The views then take in again, dimmed, what they list of dismissed events: at
// once, so that no row is seen to go and come back.
void frmDDE::leaveGrids(const std::vector<ActRow>& rows, int tab) {
    if (rows.empty()) {
        return;
    }
    state_.curEvent.reset();
    selectedGrid().keepScrollPlace([&] {
        removeFromAll(rows);
        DoPeriod();
    });
    leaveEmptyList(tab);
}

void frmDDE::reactivate(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Reactivate(row);
        }
    }
    state_.curEvent.reset();
    if (isPeriod("Di")) {
        removeFromAll(of.rows);
    }
    DoPeriod();
}

}  // namespace vl
