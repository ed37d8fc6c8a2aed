// Showing and hiding: the window, the pop-up, the tray icon.
#include <QApplication>

#include "app/Sound.h"
#include "base/ErrorState.h"
#include "notify/TrayText.h"
#include "ui/QtText.h"
#include "ui/SystemHelpers.h"
#include "ui/frmDDE.h"

namespace vl {

// A dialog that is open keeps the keys: its window could do nothing with them.
void frmDDE::ShowNewReminders(std::string_view GUID) {
    if (!isActiveWindow()) {
        justCame_.setRemainingTime(parts_.keysRest);
    }
    showWindow();
    selectTab(kNewRemindersGrid);
    Grid& rows = controls_->grid(kNewRemindersGrid);
    rows.scrollToTop();
    SelectGUID(GUID);
    if (!bringDialogForward()) {
        rows.setFocus();
    }
}

bool frmDDE::bringDialogForward() {
    QWidget* open = QApplication::activeModalWidget();
    if (open == nullptr) {
        return false;
    }
    if (isMinimized()) {  // and the dialog with it
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
    open->raise();
    open->activateWindow();
    return true;
}

void frmDDE::showWindow() {
    place_.keep();
    if (!isVisible()) {
        focusRows();
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);  // a maximized one is maximized again
    show();
    raise();
    if (QApplication::activeModalWidget() == nullptr) {
        activateWindow();
    }
}

void frmDDE::hideWindow() {
    if (!parts_.hasTray()) {
        place_.minimize();
        return;
    }
    hide();
    if (place_.isToBeMadeAnew()) {
        destroy();
    }
}

void frmDDE::HideMe() {
    HidePopUp();
    hideWindow();
    SaveSettings();
}

void frmDDE::ShowHide() {
    if (bringDialogForward()) {
        return;
    }
    if (isWatched()) {
        hideWindow();
    } else {
        showWindow();
    }
}

void frmDDE::Unload() {
    if (exiting_) {
        return;
    }
    SaveSettings();
    keptColumns_.writeWhatWaits();
    removeSubclasses();
    exiting_ = true;
}

void frmDDE::Exit() {
    Unload();
    QCoreApplication::exit(0);
}

void frmDDE::ShowHelp() { help_.show(focusWidget(), isNewRemindersTab()); }

void frmDDE::SetOnTop() { setOnTop(*this, state.bOnTop); }

void frmDDE::ShowPopUp(const PopUpRequest& request) {
    const ErrScope scope;
    attempt([&] { popUp_.show(request, state.EvCol); });
}

void frmDDE::HidePopUp() {
    popUp_.hide();
    state.dLastShown = parts_.clock.now();
}

void frmDDE::MarkupHyperlinkClick(int tag) {
    const ErrScope scope;
    const std::string GUID = popUp_.GUIDOf(tag);
    if (!GUID.empty()) {
        if (!bringDialogForward()) {
            showWindow();
        }
        selectTab(kNewRemindersGrid);
        SelectGUID(GUID);
    }
    HidePopUp();
}

void frmDDE::ShowSystem(const std::string& title, const std::string& text, int timeoutMs) {
    tray_.balloon(qtText(title), qtText(text), balloonSeconds(timeoutMs));
}

void frmDDE::PlayReminderSound() {
    const ErrScope scope;
    attempt([&] { parts_.sound.play(); });
}

void frmDDE::SetIcon() {
    const bool anyNew = list(kNewRemindersGrid).rowCount() > 0;
    tray_.setNew(anyNew && (!TimerFlash.isActive() || flashOn_));
    GetIconText();
}

void frmDDE::SetFlashingIcon(bool on) { tray_.setNew(on); }

QString frmDDE::GetIconText() {
    QString text = qtText(iconText(tab(), lists_.rowCount(tab()),
                                   list(kNewRemindersGrid).rowCount(), IsWindowVisible()));
    tray_.setToolTip(text);
    return text;
}

bool frmDDE::GetHasFocus() const { return isVisible() && isActiveWindow(); }

bool frmDDE::IsWindowVisible() const { return isVisible(); }

int frmDDE::CheckInterval() const { return TimerCheck.interval(); }

void frmDDE::SetCheckInterval(int milliseconds) { TimerCheck.setInterval(milliseconds); }

void frmDDE::Tray_Click() {
    if (bringDialogForward()) {
        return;
    }
    switch (trayClick(state.bHasFocus, isVisible())) {
        case TrayClick::Hide:
            hideWindow();
            HidePopUp();
            break;
        case TrayClick::BringForward:
            showWindow();
            break;
        case TrayClick::Show:
            showWindow();
            HidePopUp();
            break;
    }
    state.bHasFocus = isVisible();
}

// Nobody has asked for the window: it is put within reach, not in front of what the user does.
void frmDDE::lookForTray() {
    if (parts_.hasTray()) {
        return;
    }
    trayMissing_ = true;
    if (!isVisible()) {
        place_.minimize();
    }
    sayTrayMissing();
}

// Once, when there is somebody to read it.
void frmDDE::sayTrayMissing() {
    if (trayMissing_ && isWatched()) {
        trayMissing_ = false;
        sayOnce(tr("This desktop shows no tray icons; the window is minimized instead of hidden"));
    }
}

}  // namespace vl
