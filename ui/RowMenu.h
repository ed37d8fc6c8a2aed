// The menu of the rows.
#pragma once

class QMenu;

namespace vl {

class RowActs;
class WindowControls;

/// Fills it with what the buttons do, as they are captioned and enabled, and the columns for who
/// has no mouse. What is chosen is done by `acts`, to the rows that were noted when the menu
/// opened. All must outlive the menu.
void fillRowMenu(QMenu& menu, const WindowControls& controls, RowActs& acts);

}  // namespace vl
