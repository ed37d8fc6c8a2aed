#include "ui/PopUp.h"

#include <chrono>

#include <QTimer>

#include "notify/PopUpMarkup.h"
#include "ui/FormFont.h"
#include "ui/QtText.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kIconMayTake = 500ms;

}  // namespace

void PopUp::show(const PopUpRequest& request, const std::shared_ptr<GenCollection>& EvCol) {
    ToastContent content;
    content.title = qtText(request.title);
    content.text = qtText(request.sContent);
    content.links = readToastMarkup(qtText(popUpMarkup(*EvCol)));
    shown_ = EvCol;
    content.bold = request.Bold;
    content.width = request.iWidth;
    content.opacity = request.Opacity / 100.0;
    if (request.ShowDelay >= 0) {
        content.delay = std::chrono::milliseconds(request.ShowDelay);
    }
    const QRect icon = tray_.geometry();
    toast().present(content, icon);
    if (icon.isEmpty()) {  // at the start, no panel may have taken it in yet
        QTimer::singleShot(kIconMayTake, toast_.get(),
                           [this] { toast_->moveNextTo(tray_.geometry()); });
    }
}

Toast& PopUp::toast() {
    if (toast_ == nullptr) {
        toast_ = std::make_unique<Toast>(picture_);
        applyFormFont(*toast_);
        connect(toast_.get(), &Toast::linkClicked, this, &PopUp::linkClicked);
        connect(toast_.get(), &Toast::closed, this, &PopUp::closed);
    }
    return *toast_;
}

void PopUp::hide() {
    if (toast_ != nullptr) {
        toast_->hide();
    }
}

std::string PopUp::GUIDOf(int tag) const { return shown_ ? shown_->Key(tag) : std::string(); }

}  // namespace vl
