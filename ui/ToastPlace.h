// Where on the desktop the pop-up stands.
#pragma once

#include <span>
#include <vector>

#include <QRect>

namespace vl {

struct ToastScreen {
    QRect whole;
    QRect available;  ///< without what the desktop says that its panels take
};

/// The screens of the desktop, the primary one first. Never empty.
std::vector<ToastScreen> toastScreens();

struct ToastPlace {
    QRect room;  ///< on one screen, away from its edges, its panels and the icon
    Qt::Corner corner = Qt::BottomRightCorner;
};

/// The corner next to the tray, on the tray's screen. `icon` is where the tray icon is, or the
/// pointer was when it was clicked. Where that is not known, empty or on no screen, the tray is
/// taken to be in the panel: on the first screen that a panel takes something of, at that edge;
/// and where none is seen either, below on the right of the first one.
/// `screens` must not be empty.
ToastPlace toastPlace(const QRect& icon, std::span<const ToastScreen> screens);

}  // namespace vl
