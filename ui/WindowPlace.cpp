#include "ui/WindowPlace.h"

#include <string>
#include <utility>
#include <vector>

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <QWindow>

#include "app/Placement.h"
#include "app/Settings.h"

namespace vl {

namespace {

// All columns are seen in it as wide as they want to be.
constexpr QSize kFirstSize(920, 480);

ScreenArea areaOf(const QRect& r) {
    return {double(r.left()), double(r.top()), double(r.width()), double(r.height())};
}

}  // namespace

void WindowPlace::read() {
    const int titleBar = window_.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QScreen* first = QGuiApplication::primaryScreen();
    std::vector<ScreenArea> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.insert(screen == first ? screens.begin() : screens.end(),
                       areaOf(screen->availableGeometry()));
    }
    if (first != nullptr) {
        window_.resize(kFirstSize.boundedTo(first->availableSize() - QSize(0, titleBar)));
    }
    const WindowPlacement place = readPlacement(
        settings_, screens, first ? areaOf(first->geometry()) : ScreenArea(),
        {double(window_.width()), double(window_.height())}, {0, static_cast<double>(titleBar)});
    window_.move(place.left, place.top);
    window_.resize(place.width.value_or(window_.width()), place.height.value_or(window_.height()));
}

void WindowPlace::save() {
    note();
    const QRect before = window_.normalGeometry();
    const bool asItIs = isNormal() || !before.isValid();
    const QRect normal = asItIs ? window_.geometry() : before;
    // Of the frame, as `move` takes it: else the window would wander at every start.
    const QPoint corner = isNormal() ? window_.pos() : normal.topLeft() - frame_;
    const std::pair<const char*, int> values[] = {{"Left", corner.x()},
                                                  {"Top", corner.y()},
                                                  {"Width", normal.width()},
                                                  {"Height", normal.height()}};
    for (const auto& [key, value] : values) {
        settings_.SaveIni("Window", key, std::to_string(value));
    }
}

bool WindowPlace::isNormal() const {
    return !(window_.windowState() &
             (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

// What a maximized window tells of its frame is not what it has in normal size.
void WindowPlace::note() {
    if (window_.isVisible() && isNormal()) {
        frame_ = window_.geometry().topLeft() - window_.pos();
    }
}

void WindowPlace::keep() {
    QWindow* system = window_.windowHandle();
    if (!window_.isVisible() && system != nullptr) {
        system->setPosition(system->position());
    }
}

void WindowPlace::minimize() {
    wasMinimized_ = true;
    window_.showMinimized();
}

bool WindowPlace::isToBeMadeAnew() {
    return std::exchange(wasMinimized_, false) && QGuiApplication::platformName() == u"xcb";
}

}  // namespace vl
