#include "ui/GridUtils.h"

#include <utility>

#include <QAbstractScrollArea>
#include <QGuiApplication>
#include <QWheelEvent>

namespace vl {

WheelTurn wheelTurn(const QWheelEvent& event) {
    WheelTurn turn;
    turn.rotation = event.angleDelta();
    // Under X11 drivers put what they like there.
    if (QGuiApplication::platformName() != u"xcb") {
        turn.pixels = event.pixelDelta();
    }
    turn.pages = (event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != Qt::NoModifier;
    return turn;
}

int takeScroll(int& rotation, int& rest, int perNotch) {
    const int notch = QWheelEvent::DefaultDeltasPerStep;
    rest += std::exchange(rotation, 0) * perNotch;
    const int pixels = rest / notch;
    rest %= notch;
    return pixels;
}

GridUtils::GridUtils(bool DebugMode, QObject* parent) : QObject(parent), DebugMode_(DebugMode) {}

GridUtils::~GridUtils() = default;

void GridUtils::subclass(QAbstractScrollArea& grid, Receiver receiver) {
    if (DebugMode_) {
        return;
    }
    QObject* viewport = grid.viewport();
    if (!grids_.contains(viewport)) {
        viewport->installEventFilter(this);
        connect(viewport, &QObject::destroyed, this, [this](QObject* gone) { grids_.erase(gone); });
    }
    grids_.insert_or_assign(viewport, Subclassed{&grid, std::move(receiver)});
}

void GridUtils::removeSubclass(QAbstractScrollArea& grid) {
    QObject* viewport = grid.viewport();
    if (grids_.erase(viewport) > 0) {
        viewport->removeEventFilter(this);
        disconnect(viewport, &QObject::destroyed, this, nullptr);
    }
}

bool GridUtils::eventFilter(QObject* watched, QEvent* event) {
    const auto found = event->type() == QEvent::Wheel ? grids_.find(watched) : grids_.end();
    if (found == grids_.end()) {
        return QObject::eventFilter(watched, event);
    }
    found->second.receiver(*found->second.grid, wheelTurn(static_cast<QWheelEvent&>(*event)));
    event->accept();
    return true;
}

}  // namespace vl
