// The window's pop-up.
#pragma once

#include <memory>
#include <string>

#include <QIcon>
#include <QObject>

#include "events/GenCollection.h"
#include "notify/ReminderScreen.h"
#include "ui/Toast.h"
#include "ui/Tray.h"

namespace vl {

/// A toast next to the tray icon, made when there is first something to say.
class PopUp final : public QObject {
    Q_OBJECT

public:
    /// `picture` stands in the toast. `tray` must outlive it.
    PopUp(const QIcon& picture, const Tray& tray) : picture_(picture), tray_(tray) {}

    /// Shows the reminders of `EvCol` (see `ReminderState`), each as a link whose tag is its
    /// position from 1, or the request's own text.
    void show(const PopUpRequest& request, const std::shared_ptr<GenCollection>& EvCol);
    void hide();
    bool isShown() const { return toast_ != nullptr && toast_->isVisible(); }

    /// What the link stands for, whatever later checks took in without showing it; empty for none.
    std::string GUIDOf(int tag) const;

signals:
    void linkClicked(int tag);
    /// By the user, or because its time is over.
    void closed();

private:
    Toast& toast();

    const QIcon picture_;
    const Tray& tray_;
    std::unique_ptr<Toast> toast_;
    std::shared_ptr<GenCollection> shown_;
};

}  // namespace vl
