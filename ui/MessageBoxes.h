// Message boxes on the screen.
#pragma once

#include "notify/MessageScreen.h"

class QWidget;

namespace vl {

/// Shows boxes over `owner`, which must outlive this. A hidden owner does not hide its boxes.
class MessageBoxes final : public MessageScreen {
public:
    explicit MessageBoxes(QWidget& owner) : owner_(owner) {}

    BoxAnswer ShowBox(const BoxRequest& box) override;

private:
    QWidget& owner_;
};

}  // namespace vl
