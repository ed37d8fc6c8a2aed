// Message boxes on the screen.
#pragma once

#include <functional>
#include <utility>

#include "notify/MessageScreen.h"

class QWidget;

namespace vl {

/// Shows boxes over `owner`, which must outlive this. A hidden owner does not hide its boxes. A box
/// blocks the owner alone. F1 calls `showHelp` and leaves the box open.
class MessageBoxes final : public MessageScreen {
public:
    explicit MessageBoxes(QWidget& owner, std::function<void()> showHelp = {})
        : owner_(owner), showHelp_(std::move(showHelp)) {}

    BoxAnswer ShowBox(const BoxRequest& box) override;

private:
    QWidget& owner_;
    std::function<void()> showHelp_;
};

}  // namespace vl
