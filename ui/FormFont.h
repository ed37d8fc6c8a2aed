// The font of a form's controls.
#pragma once

class QFont;
class QWidget;

namespace vl {

/// Gives every control of the form but the grids the font "Arial" (or what the desktop has in its
/// place) in the desktop's size, and makes the button whose caption is "&OK" the default one. The
/// text's colour stays the palette's, so that dark desktops are served.
void applyFormFont(QWidget& form);

/// The font that such a control gets.
QFont formFont(const QWidget& control);

/// The same for the program's tool tips. Called before there are windows it costs nothing.
void applyTipFont();

}  // namespace vl
