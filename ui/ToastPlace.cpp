#include "ui/ToastPlace.h"

#include <algorithm>

#include <QGuiApplication>
#include <QScreen>

namespace vl {

namespace {

constexpr int kFromEdge = 10;  // from the edges of the screen, and from the icon

bool holds(const ToastScreen& screen, const QRect& icon) {
    return !icon.isEmpty() && screen.whole.contains(icon.center());
}

const ToastScreen& screenOf(const QRect& icon, std::span<const ToastScreen> screens) {
    const auto holdsIcon = [&icon](const ToastScreen& s) { return holds(s, icon); };
    const auto hasPanel = [](const ToastScreen& s) { return s.whole != s.available; };
    auto found = std::find_if(screens.begin(), screens.end(), holdsIcon);
    if (found == screens.end()) {
        found = std::find_if(screens.begin(), screens.end(), hasPanel);
    }
    return found == screens.end() ? screens.front() : *found;
}

Qt::Corner cornerOf(const QRect& icon, const ToastScreen& screen) {
    bool right = true;
    bool bottom = true;
    if (holds(screen, icon)) {
        right = icon.center().x() >= screen.whole.center().x();
        bottom = icon.center().y() >= screen.whole.center().y();
    } else {
        const QRect& free = screen.available;
        right = free.left() - screen.whole.left() <= screen.whole.right() - free.right();
        bottom = free.top() - screen.whole.top() <= screen.whole.bottom() - free.bottom();
    }
    if (right) {
        return bottom ? Qt::BottomRightCorner : Qt::TopRightCorner;
    }
    return bottom ? Qt::BottomLeftCorner : Qt::TopLeftCorner;
}

// A desktop of several screens may count its panels as room for windows.
void stayOffTheIcon(const QRect& icon, const ToastScreen& screen, QRect& room) {
    const int most = screen.whole.height() / 4;
    if (icon.top() > screen.whole.bottom() - most) {
        room.setBottom(std::min(room.bottom(), icon.top() - 1 - kFromEdge));
    } else if (icon.bottom() < screen.whole.top() + most) {
        room.setTop(std::max(room.top(), icon.bottom() + 1 + kFromEdge));
    }
}

}  // namespace

std::vector<ToastScreen> toastScreens() {
    std::vector<ToastScreen> screens;
    const QScreen* first = QGuiApplication::primaryScreen();
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.insert(screen == first ? screens.begin() : screens.end(),
                       ToastScreen{screen->geometry(), screen->availableGeometry()});
    }
    if (screens.empty()) {  // all are unplugged just now
        screens.push_back({QRect(0, 0, 640, 480), QRect(0, 0, 640, 480)});
    }
    return screens;
}

ToastPlace toastPlace(const QRect& icon, std::span<const ToastScreen> screens) {
    const ToastScreen& screen = screenOf(icon, screens);
    ToastPlace place{screen.available.adjusted(kFromEdge, kFromEdge, -kFromEdge, -kFromEdge),
                     cornerOf(icon, screen)};
    if (holds(screen, icon)) {
        stayOffTheIcon(icon, screen, place.room);
    }
    return place;
}

}  // namespace vl
