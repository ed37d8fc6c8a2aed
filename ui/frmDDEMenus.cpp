// Menus of the window, and what their entries do.
#include <QMenu>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "notify/About.h"
#include "notify/ReadAgain.h"
#include "ui/HelpNumbers.h"
#include "ui/MenuLook.h"
#include "ui/RowMenu.h"
#include "ui/frmDDE.h"

namespace vl {

MessageScreen& frmDDE::boxes(const char* helpPlace) {
    boxHelp_ = helpPlace;
    return parts_.boxes != nullptr ? *parts_.boxes : static_cast<MessageScreen&>(boxes_);
}

void frmDDE::mnuTray_Opening() {
    if (state.bHasFocus) {
        raise();
    }
    GetIconText();
}

void frmDDE::changeSetting(const std::function<void(ReminderState&)>& change) {
    change(state);
    SaveSettings();
}

void frmDDE::mnuAbout_Click() {
    if (bringDialogForward()) {
        return;
    }
    const ErrScope scope;
    attempt([&] { boxes(kHelpTray).ShowBox(aboutBox(parts_.Version, state.DBVersion)); });
}

void frmDDE::maintain(void (Maintenance::*flow)()) {
    if (bringDialogForward()) {
        return;
    }
    const ErrScope scope;
    attempt([&] {
        Maintenance at{parts_.db, parts_.reminders,   parts_.period, check_, state,
                       *this,     boxes(kHelpCleanUp)};
        (at.*flow)();
    });
    UpdateUI();
    SetIcon();
    focusRows();
}

void frmDDE::mnuRefresh_Click() {
    const ErrScope scope;
    statusText_.lookWhetherSaved();
    for (CalEvents* set : {&parts_.reminders, &parts_.period}) {
        readAgain(*set, true, true);
    }
    state.damagedRows = static_cast<int>(parts_.period.DamagedRows());
    // Rows do not have yet what waits to be written.
    acts_.RestoreWaiting();
    acts_.WriteWaiting();
    fields_.Doubt();
    showPeriodAnew();
}

void frmDDE::gridMenu(const QPoint& at) {
    rowActs_.noteMenuChoice();
    QMenu menu(this);
    menu.setObjectName("mnuGrid");
    fillRowMenu(menu, *controls_, rowActs_);
    applyMenuLook(menu);
    menu.exec(at);
}

}  // namespace vl
