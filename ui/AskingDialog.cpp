#include "ui/AskingDialog.h"

#include <chrono>
#include <utility>

#include "app/Settings.h"
#include "base/ErrorState.h"
#include "ui/SettingNames.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kUpdate = 1s;

}  // namespace

AskingDialog::AskingDialog(DialogParts parts, QWidget* parent)
    : QDialog(parent), parts_(std::move(parts)) {
    TimerUpdate.setObjectName("TimerUpdate");
    TimerUpdate.setInterval(kUpdate);
}

AskingDialog::~AskingDialog() {
    if (!loaded_) {
        return;
    }
    const ErrScope scope;
    attempt([&] { parts_.settings.SaveIni(kRemindersSection, kSnoozeKey, sSnooze); });
}

void AskingDialog::ShowModal() {
    const ErrScope scope;
    attempt([&] {
        loading = loaded_ = true;
        bCancel = true;  // until it is left by another way: the program may end meanwhile
        load();
        loading = false;
        exec();
    });
    TimerUpdate.stop();
}

void AskingDialog::settle() {
    adjustWindow(*this, parts_.bOnTop);
    TimerUpdate.start();
}

void AskingDialog::answer() {
    bCancel = false;
    HideMe();
}

void AskingDialog::butCancel_Click() {
    bCancel = true;
    HideMe();
}

void AskingDialog::reject() { butCancel_Click(); }

void AskingDialog::HideMe() { done(bCancel ? Rejected : Accepted); }

}  // namespace vl
