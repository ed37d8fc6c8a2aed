// Keys and wheel that a control gets, and somebody else is to know of.
#pragma once

#include <functional>

#include "ui/GridUtils.h"

class QAbstractButton;
class QWidget;

namespace vl {

/// Calls `told` whenever the control has dealt with one of its own shortcuts, as a tab bar does
/// with its tabs' letters.
void watchShortcuts(QWidget& control, std::function<void()> told);

/// Hands on the wheel over a control that the user is not at: it is meant for what scrolls. Nor
/// does the wheel give the control the focus any more.
void handOnWheel(QWidget& control, std::function<void(const WheelTurn&)> turned);

/// Its underlined letter clicks the button at once, and once however long it is held. Qt waits a
/// tenth of a second, and clicks what the button has become meanwhile.
void clickAtOnce(QAbstractButton& button);

}  // namespace vl
