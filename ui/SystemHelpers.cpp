#include "ui/SystemHelpers.h"

#include <algorithm>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace vl {

bool setOnTop(QWidget& window, bool on) {
    if (window.windowFlags().testFlag(Qt::WindowStaysOnTopHint) == on) {
        return true;
    }
    const Qt::WindowFlags flags = window.windowFlags().setFlag(Qt::WindowStaysOnTopHint, on);
    if (window.windowHandle() && QGuiApplication::platformName() == u"xcb") {
        // The documented way hides the window and makes a new one at another place.
        window.overrideWindowFlags(flags);
        window.windowHandle()->setFlag(Qt::WindowStaysOnTopHint, on);
    } else {
        const bool visible = window.isVisible();
        window.setWindowFlags(flags);
        window.setVisible(visible);
    }
    return window.windowFlags().testFlag(Qt::WindowStaysOnTopHint) == on;
}

int titleRoom(const QWidget& window) {
    constexpr int kOfTheFrame = 140;  // buttons and picture of the title bar
    const int wanted = window.fontMetrics().horizontalAdvance(window.windowTitle()) + kOfTheFrame;
    return std::min(wanted, window.screen()->availableSize().width() * 9 / 10);
}

bool mouseButtonDown(Qt::MouseButtons buttons) {
    return (buttons & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)) != Qt::NoButton;
}

bool mouseButtonDown() { return mouseButtonDown(QGuiApplication::mouseButtons()); }

bool controlKeyDown(std::uint16_t keyState) {
    constexpr unsigned kMask = 0x1000;
    return (keyState & kMask) != 0;
}

std::uint16_t controlKeyState(Qt::KeyboardModifiers modifiers) {
    constexpr std::uint16_t kDown = 0xFF80;
    return modifiers.testFlag(Qt::ControlModifier) ? kDown : std::uint16_t{0};
}

bool controlKeyDown() {
    return controlKeyDown(controlKeyState(QGuiApplication::queryKeyboardModifiers()));
}

void showHandCursor(QWidget& label) { label.setCursor(Qt::PointingHandCursor); }

}  // namespace vl
