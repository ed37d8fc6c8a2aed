#include "ui/HeldKey.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>

namespace vl {

HeldKey::HeldKey() {
    goFirst();
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &HeldKey::goFirst);
}

// What serves screen readers takes keys away and sends them again, and may have come later.
void HeldKey::goFirst() {
    qGuiApp->removeEventFilter(this);
    qGuiApp->installEventFilter(this);
}

bool HeldKey::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyRelease: {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (key.timestamp() != 0) {
                key_ = key.key();
                released_ = key.timestamp();
            }
            break;
        }
        // Before a shortcut there is no press, only the question whether somebody wants the key.
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress: {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            const bool sameKey = key.key() == key_;
            if (key.timestamp() != 0) {
                timedRepeat_ = sameKey && key.timestamp() == released_;
            }
            repeat_ = key.isAutoRepeat() || (sameKey && timedRepeat_);
            break;
        }
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vl
