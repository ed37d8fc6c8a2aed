#include "ui/SplitButton.h"

#include <algorithm>

#include <QKeyEvent>
#include <QPushButton>

#include "ui/MenuLook.h"

namespace vl {

SplitButton::SplitButton(QWidget* parent) : QToolButton(parent) {
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    setFocusPolicy(Qt::StrongFocus);
    menu_.setObjectName("mnuDismiss");
    fillDismissMenu(menu_, *this);
    connect(&menu_, &QMenu::aboutToShow, this, [this] {
        applyMenuLook(menu_);
        emit menuOpening();
    });
    setSplit(true);
}

void SplitButton::setSplit(bool split) {
    if (split != (menu() != nullptr)) {
        setMenu(split ? &menu_ : nullptr);
        setPopupMode(split ? MenuButtonPopup : DelayedPopup);
    }
}

// As large as the plain buttons that it stands among.
QSize SplitButton::sizeHint() const {
    QPushButton plain(text());
    plain.setFont(font());
    return QToolButton::sizeHint().expandedTo(plain.sizeHint());
}

void SplitButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Down && menu() != nullptr) {
        showMenu();
    } else {
        QToolButton::keyPressEvent(event);
    }
}

void fillDismissMenu(QMenu& menu, SplitButton& button) {
    const auto add = [&](const char* name, const QString& text, void (SplitButton::*chosen)()) {
        QAction* action = menu.addAction(text, &button, chosen);
        action->setObjectName(name);
        action->setEnabled(button.isEnabled());
    };
    add("mnuDismissThis", QObject::tr("Dismiss &this reminder"), &SplitButton::quickChosen);
    add("mnuDismissChoose", QObject::tr("&Dismiss..."), &SplitButton::chooseChosen);
}

}  // namespace vl
