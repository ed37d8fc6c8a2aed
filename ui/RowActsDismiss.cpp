// Dismissing and reactivating rows, and the dialog that asks how.
#include <QApplication>

#include "base/ErrorState.h"
#include "ui/QtText.h"
#include "ui/RowActs.h"
#include "ui/RowFill.h"
#include "ui/frmDDE.h"
#include "ui/frmDismiss.h"

namespace vl {

namespace {

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

}  // namespace

void RowActs::butDismiss_Click() {
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

void RowActs::dismissAsked(bool choose) {
    const ErrScope scope;
    if (state_.bIsDismiss && !window_.hasJustCome()) {
        attempt([&] { choose ? chooseDismiss(choice()) : dismiss(choice()); });
    }
}

void RowActs::dismissChosen(bool choose) {
    const ErrScope scope;
    attempt([&] {
        const RowChoice of = menuChoice();
        if (of.dismisses) {
            choose ? chooseDismiss(of) : dismiss(of);
        }
    });
}

void RowActs::dismiss(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Dismiss(row, DismissMode::This);
        }
    }
    leaveGrids(of.rows, of.tab);
}

void RowActs::chooseDismiss(const RowChoice& of) {
    if (window_.bringDialogForward()) {
        return;
    }
    std::vector<ActRow> handled;
    QStringList kept;
    bool deleted = false;
    for (const ActRow& row : of.rows) {
        frmDismiss dialog(dialogParts(), &window_);
        fillDismiss(dialog, row);
        dialog.ShowModal();
        if (window_.isExiting()) {
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
        window_.focusRows();
        window_.ShowPopUp(
            {"Items deleted...",
             "Items were deleted. Opened grids and calendars may need to be refreshed", 5000, false,
             250, 100, 100});
    }
    if (!kept.isEmpty()) {  // at last: a notice goes when another row becomes current
        window_.sayOnce(kept.size() == 1 ? tr("%1 could not be deleted").arg(kept.front())
                                         : tr("%1 items could not be deleted").arg(kept.size()));
    }
}

void RowActs::fillDismiss(frmDismiss& dialog, const ActRow& row) {
    const DateTime now = parts_.clock.now();
    const auto event = acts_.EventOf(row);
    const DateTime next = row.reminder.isZero() ? event->NextReminderD(now) : row.reminder;
    dialog.sNext = next.isZero() ? "No reminder ahead."
                                 : "Reminder " + momentText(next, true, now, time_) + ".";
    dialog.sEvent = plainText(eventLine(*event, row.InstanceStart, wordsOf(time_, now)));
}

// Out of the lists first, where many rows go at once.
void RowActs::removeFromAll(const std::vector<ActRow>& rows) {
    for (int grid = 0; grid < kGridCount; ++grid) {
        removeFrom(grid, rows);
    }
    for (const ActRow& row : rows) {
        check_.RemoveGUIDAll(row.event->GUID);
    }
}

// Off all lists. The views then take in again, dimmed, what they list of dismissed events: at
// once, so that no row is seen to go and come back.
void RowActs::leaveGrids(const std::vector<ActRow>& rows, int tab) {
    if (rows.empty()) {
        return;
    }
    state_.releaseCurrent();
    window_.keepScrollPlace([&] {
        removeFromAll(rows);
        window_.DoPeriod();
    });
    leaveEmptyList(tab);
}

void RowActs::reactivate(const RowChoice& of) {
    {
        const Acts::Together together(acts_);
        for (const ActRow& row : of.rows) {
            acts_.Reactivate(row);
        }
    }
    state_.releaseCurrent();
    if (window_.isPeriod("Di")) {
        removeFromAll(of.rows);
    }
    window_.DoPeriod();
}

}  // namespace vl
