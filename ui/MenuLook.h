// How the program's menus look.
#pragma once

class QMenu;

namespace vl {

/// Gives the menu and its submenus the font of the forms, and boxes that can be seen on a dark
/// desktop. For each time the menu is to open: the desktop may have changed.
void applyMenuLook(QMenu& menu);

}  // namespace vl
