// The wheel of the mouse over a grid: caught there, handed to the window.
#pragma once

#include <functional>
#include <map>

#include <QObject>
#include <QPoint>

class QAbstractScrollArea;
class QWheelEvent;

namespace vl {

/// What one wheel message reports; both are positive away from the user and to the left.
struct WheelTurn {
    QPoint rotation;     ///< eighths of a degree, 120 a notch; touchpads and fine wheels give less
    QPoint pixels;       ///< where the device counts in pixels, else null; stands for `rotation`
    bool pages = false;  ///< with Ctrl or Shift: a page for each notch
};
WheelTurn wheelTurn(const QWheelEvent& event);

/// Takes the whole pixels out of a `rotation` of which each notch moves by `perNotch` pixels. What
/// is left of a pixel waits in `rest`, so that a slow turn adds up exactly to what a fast one
/// gives.
int takeScroll(int& rotation, int& rest, int perNotch);

/// The grid helper: one for the program. It must live as long as a grid is subclassed, or longer.
class GridUtils final : public QObject {
    Q_OBJECT

public:
    using Receiver = std::function<void(QAbstractScrollArea& grid, const WheelTurn& turn)>;

    /// With `DebugMode` no grid is ever subclassed: each scrolls in its own way.
    explicit GridUtils(bool DebugMode = false, QObject* parent = nullptr);
    ~GridUtils() override;

    /// From now on the grid's wheel messages, vertical and horizontal, go to `receiver` and not to
    /// the grid. All other messages go where they went. A second call replaces the receiver.
    void subclass(QAbstractScrollArea& grid, Receiver receiver);
    /// Gives the grid its wheel messages back.
    void removeSubclass(QAbstractScrollArea& grid);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Subclassed {
        QAbstractScrollArea* grid;
        Receiver receiver;
    };

    bool DebugMode_;
    std::map<const QObject*, Subclassed> grids_;  // by viewport, which is who gets the messages
};

}  // namespace vl
