// Where the main window stands.
#pragma once

#include <QPoint>

class QWidget;

namespace vl {

class Settings;

/// Keeps place and size over restarts, over being hidden and over being an icon of the task bar.
class WindowPlace {
public:
    /// Both must outlive it.
    WindowPlace(QWidget& window, Settings& settings) : window_(window), settings_(settings) {}

    /// Puts the window where the settings say, in sight of a screen that is there.
    void read();
    /// Writes the place that it has in normal size, whatever it is just now.
    void save();

    /// Looks how wide the frame is, which is told in normal size only. For each time the window may
    /// have got another one.
    void note();
    /// For a window about to be shown again: the window manager would place it anew, unless it asks
    /// for its old place.
    void keep();
    /// Where it must not be hidden.
    void minimize();
    /// Whether the system's window is to be destroyed now that the window is hidden: that it was to
    /// be an icon would stay with it, and it would be one when it is shown again. Tells it once.
    bool isToBeMadeAnew();

private:
    bool isNormal() const;

    QWidget& window_;
    Settings& settings_;
    QPoint frame_;               // from the window's corner to its inside, when last seen
    bool wasMinimized_ = false;  // by the program, since it was last hidden
};

}  // namespace vl
