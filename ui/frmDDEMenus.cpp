// Menus of the window, and the entries that are commands of their own.
#include <algorithm>

#include <QItemSelectionModel>
#include <QMenu>
#include <QPushButton>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "notify/About.h"
#include "notify/OpenGUID.h"
#include "ui/ColumnMenu.h"
#include "ui/HelpNumbers.h"
#include "ui/MenuLook.h"
#include "ui/QtText.h"
#include "ui/SplitButton.h"
#include "ui/frmDDE.h"

namespace vl {

MessageScreen& frmDDE::boxes(const char* helpPlace) {
    boxHelp_ = helpPlace;
    return parts_.boxes != nullptr ? *parts_.boxes : static_cast<MessageScreen&>(boxes_);
}

void frmDDE::mnuAbout_Click() {
    if (bringDialogForward()) {
        return;
    }
    const ErrScope scope;
    attempt([&] { boxes(kHelpTray).ShowBox(aboutBox(parts_.Version, state_.DBVersion)); });
}

Maintenance frmDDE::maintenance() {
    return {parts_.db, parts_.reminders, parts_.period, check_, state_, *this, boxes(kHelpCleanUp)};
}

void frmDDE::mnuCleanUp_Click() { maintain(&Maintenance::CleanUp); }

void frmDDE::mnuDeleteAll_Click() { maintain(&Maintenance::DeleteAll); }

void frmDDE::maintain(void (Maintenance::*flow)()) {
    if (bringDialogForward()) {
        return;
    }
    const ErrScope scope;
    attempt([&] {
        Maintenance at = maintenance();
        (at.*flow)();
    });
    UpdateUI();
    SetIcon();
    focusRows();
}

void frmDDE::butOpen_Click() {
    const ErrScope scope;
    attempt([&] { open(choice()); });
}

void frmDDE::open(const RowChoice& of) {
    if (!of.current || bringDialogForward()) {
        return;
    }
    const std::string GUID = of.current->event->GUID;  // the box lets ticks refill the grid
    const HostHelper host{programFolder(), parts_.startProgram, parts_.DebugMode};
    const bool started = OpenGUID(parts_.period, GUID, host, boxes(kHelpTrouble));
    parts_.db.CloseDB();
    if (!started) {
        sayOnce(tr("VelmoraClipper.exe could not be started; it belongs beside this program"));
    }
}

void frmDDE::gridMenu(const QPoint& at) {
    noteMenuChoice();
    QMenu menu(this);
    menu.setObjectName("mnuGrid");
    fillGridMenu(menu);
    applyMenuLook(menu);
    menu.exec(at);
}

// What the buttons do, and the columns for who has no mouse.
void frmDDE::fillGridMenu(QMenu& menu) {
    const auto add = [this, &menu](const char* name, const QString& text, const QAbstractButton* as,
                                   void (frmDDE::*chosen)(const RowChoice&)) {
        QAction* action = menu.addAction(text, this, [this, chosen] {
            const ErrScope scope;
            attempt([&] { (this->*chosen)(menuChoice()); });
        });
        action->setObjectName(name);
        action->setEnabled(as->isEnabled());
        return action;
    };
    menu.setDefaultAction(add("mnuOpen", tr("&Open"), butOpen, &frmDDE::open));
    menu.addSeparator();
    add("mnuSnooze", butSnooze->text(), butSnooze, &frmDDE::snoozeOrHide);
    if (state_.bIsDismiss) {
        fillDismissMenu(menu, *butDismiss);
    } else {
        add("mnuReactivate", butDismiss->text(), butDismiss, &frmDDE::reactivate);
    }
    menu.addSeparator();
    QMenu* columns = menu.addMenu(tr("&Columns"));
    columns->setObjectName("mnuColumns");
    fillColumnMenu(*columns, selectedGrid());
}

void frmDDE::updateButtons() {
    const bool anySelected = selectedList().selection().hasSelection();
    updateDismiss(anySelected);
    if (isFurnished()) {
        updateSnooze(anySelected);
        butOpen->setEnabled(selectedList().currentRow() != nullptr);
    }
}

void frmDDE::updateSnooze(bool anySelected) {
    if (isNewRemindersTab()) {
        butSnooze->setText(tr("&Snooze..."));
        butSnooze->setToolTip(tr("Be reminded of the current row again later"));
        butSnooze->setEnabled(selectedList().currentRow() != nullptr);
    } else {
        const bool hidden = isPeriod("H");
        butSnooze->setText(hidden ? tr("Un&hide") : tr("&Hide"));
        butSnooze->setToolTip(
            hidden ? tr("List the selected events in the other views again")
                   : tr("List the selected events in the view \"Hidden\" only; they still remind"));
        butSnooze->setEnabled(anySelected);
    }
}

// Only rows that are shown as dismissed can be reactivated; a mixed choice is dismissed.
void frmDDE::updateDismiss(bool anySelected) {
    bool allDismissed = anySelected && !isNewRemindersTab();
    if (allDismissed) {
        const std::vector<GridRow> rows = selectedList().selectedRows();
        allDismissed = std::all_of(rows.begin(), rows.end(),
                                   [](const GridRow& row) { return row.dismissed > DateTime(); });
    }
    state_.bIsDismiss = !allDismissed;
    if (!isFurnished()) {
        return;
    }
    butDismiss->setText(allDismissed ? tr("&Reactivate") : tr("&Dismiss..."));
    butDismiss->setToolTip(
        allDismissed
            ? tr("Click to cancel dismiss action. Reminders will be re-enabled for this event")
            : tr("Click to dismiss reminders for this event"));
    butDismiss->setSplit(!allDismissed);
    butDismiss->setEnabled(anySelected);
}

}  // namespace vl
