#include "ui/HeldKey.h"

#include <QKeyEvent>

namespace vl {

HeldKey::HeldKey(QObject& watched) { watched.installEventFilter(this); }

bool HeldKey::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyRelease: {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            key_ = key.key();
            released_ = key.timestamp();
            break;
        }
        // Before a shortcut there is no press, only the question whether somebody wants the key.
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress: {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            repeat_ = key.isAutoRepeat() ||
                      (released_ != 0 && key.key() == key_ && key.timestamp() == released_);
            break;
        }
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vl
