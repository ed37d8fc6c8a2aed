// The main window's way to the help.
#pragma once

#include <functional>

#include <QString>

#include "ui/WindowParts.h"

class QWidget;

namespace vl {

/// Opens the page of a help number, at a place on it where there is something to say about that.
class WindowHelp {
public:
    /// What `parts` holds must outlive it. `say` tells the user why there is no help.
    WindowHelp(const WindowParts& parts, std::function<void(const QString&)> say);

    /// The window's own help number.
    int number = 0;

    /// Tells about the control that has the focus, null for none. `snoozes`: what `butSnooze` does
    /// just now.
    void show(const QWidget* control, bool snoozes) const;
    /// `place` is one of HelpNumbers.h.
    void open(int page, const char* place = "") const;

private:
    WindowParts parts_;
    std::function<void(const QString&)> say_;
};

}  // namespace vl
