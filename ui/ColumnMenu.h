// The menu of a grid's columns.
#pragma once

class QMenu;
class QPoint;

namespace vl {

class Grid;

/// Adds an entry for each column, checked while it is shown, what the mouse does to headings (sort,
/// move, size), and an entry that puts all columns back as they were at first. The subject's cannot
/// be chosen: a row without it says nothing. Every entry has a letter of its own.
void fillColumnMenu(QMenu& menu, Grid& grid);

/// Opens it as the menu of the grid's headings, at a place on the screen; back when it is closed.
void showColumnMenu(Grid& grid, const QPoint& at);

}  // namespace vl
