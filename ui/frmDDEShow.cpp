// Showing and hiding: the window, the pop-up, the tray icon; and what the menu does.
#include <QApplication>
#include <QWindow>

#include "app/Settings.h"
#include "app/Sound.h"
#include "base/ErrorState.h"
#include "notify/PopUpMarkup.h"
#include "notify/ReadAgain.h"
#include "notify/TrayText.h"
#include "ui/FormFont.h"
#include "ui/QtText.h"
#include "ui/SystemHelpers.h"
#include "ui/frmDDE.h"

namespace vl {

namespace {

constexpr auto kIconMayTake = std::chrono::milliseconds(500);

}  // namespace

// A dialog that is open keeps the keys: its window could do nothing with them.
void frmDDE::ShowNewReminders(std::string_view GUID) {
    if (!isActiveWindow()) {
        justCame_.setRemainingTime(parts_.keysRest);
    }
    showWindow();
    selectTab(kNewRemindersGrid);
    grid(kNewRemindersGrid).scrollToTop();
    SelectGUID(GUID);
    if (!bringDialogForward()) {
        grid(kNewRemindersGrid).setFocus();
    }
}

// Whoever asks for the window, or for another dialog, is first to answer the one that is open.
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

bool frmDDE::hasJustCome() const { return !justCame_.hasExpired(); }

void frmDDE::showWindow() {
    keepPlace();
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
        minimize();
        return;
    }
    hide();
    if (wasMinimized_ && QGuiApplication::platformName() == u"xcb") {
        // That it was to be an icon stays with the system's window, which would be one when it is
        // shown again. The next one knows nothing of it.
        destroy();
    }
    wasMinimized_ = false;
}

void frmDDE::minimize() {
    wasMinimized_ = true;
    showMinimized();
}

// A window shown again is placed anew by the window manager, unless it asks for its old place.
void frmDDE::keepPlace() {
    if (!isVisible() && windowHandle()) {
        windowHandle()->setPosition(windowHandle()->position());
    }
}

bool frmDDE::isNormal() const {
    return !(windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

// What a maximized window tells of its frame is not what it has in normal size.
void frmDDE::noteFrame() {
    if (isVisible() && isNormal()) {
        frame_ = geometry().topLeft() - pos();
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
    if (isVisible() && !isMinimized()) {
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
    saveColumnsThatWait();
    removeSubclasses();
    exiting_ = true;
}

void frmDDE::Exit() {
    Unload();
    QCoreApplication::exit(0);
}

void frmDDE::SetOnTop() { setOnTop(*this, state_.bOnTop); }

void frmDDE::ShowPopUp(const PopUpRequest& request) {
    const ErrScope scope;
    attempt([&] {
        ToastContent content;
        content.title = qtText(request.title);
        content.text = qtText(request.sContent);
        content.links = readToastMarkup(qtText(popUpMarkup(*state_.EvCol)));
        shownEvCol_ = state_.EvCol;
        content.bold = request.Bold;
        content.width = request.iWidth;
        content.opacity = request.Opacity / 100.0;
        if (request.ShowDelay >= 0) {
            content.delay = std::chrono::milliseconds(request.ShowDelay);
        }
        const QRect icon = tray_.geometry();
        popUp().present(content, icon);
        if (icon.isEmpty()) {  // at the start, no panel may have taken it in yet
            QTimer::singleShot(kIconMayTake, popup_.get(),
                               [this] { popup_->moveNextTo(tray_.geometry()); });
        }
    });
}

Toast& frmDDE::popUp() {
    if (popup_ == nullptr) {
        popup_ = std::make_unique<Toast>(pictures_.Pic2);
        applyFormFont(*popup_);
        connect(popup_.get(), &Toast::linkClicked, this, &frmDDE::MarkupHyperlinkClick);
        connect(popup_.get(), &Toast::closed, this, &frmDDE::HidePopUp);
    }
    return *popup_;
}

void frmDDE::HidePopUp() {
    if (popup_ != nullptr) {
        popup_->hide();
    }
    state_.dLastShown = parts_.clock.now();
}

void frmDDE::MarkupHyperlinkClick(int tag) {
    const ErrScope scope;
    // What the toast shows, not what a later check took in without showing it.
    const std::string GUID = shownEvCol_ ? shownEvCol_->Key(tag) : std::string();
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
    QString text =
        qtText(iconText(tab(), rowsOfTab(), list(kNewRemindersGrid).rowCount(), IsWindowVisible()));
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
    switch (trayClick(state_.bHasFocus, isVisible())) {
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
    state_.bHasFocus = isVisible();
}

void frmDDE::mnuTray_Opening() {
    if (state_.bHasFocus) {
        raise();
    }
    GetIconText();
}

void frmDDE::changeSetting(const std::function<void(ReminderState&)>& change) {
    change(state_);
    SaveSettings();
}

void frmDDE::mnuRefresh_Click() {
    const ErrScope scope;
    canSave_ = parts_.settings.CanSave();
    for (CalEvents* set : {&parts_.reminders, &parts_.period}) {
        readAgain(*set, true, true);
    }
    state_.damagedRows = static_cast<int>(parts_.period.DamagedRows());
    // Rows do not have yet what waits to be written.
    acts_.RestoreWaiting();
    acts_.WriteWaiting();
    fields_.Doubt();
    showPeriodAnew();
}

// Nobody has asked for the window: it is put within reach, not in front of what the user does.
void frmDDE::lookForTray() {
    if (parts_.hasTray()) {
        return;
    }
    trayMissing_ = true;
    if (!isVisible()) {
        minimize();
    }
    sayTrayMissing();
}

// Once, when there is somebody to read it.
void frmDDE::sayTrayMissing() {
    if (trayMissing_ && isVisible() && !isMinimized()) {
        trayMissing_ = false;
        sayOnce(tr("This desktop shows no tray icons; the window is minimized instead of hidden"));
    }
}

}  // namespace vl
