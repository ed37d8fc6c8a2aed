// The menu of a grid's columns.
#pragma once

class QMenu;

namespace vl {

class Grid;

/// Adds an entry for each column, checked while it is shown, what the mouse does to headings (sort,
/// move, size), and an entry that puts all columns back as they were at first. The subject's cannot
/// be chosen: a row without it says nothing. Every entry has a letter of its own.
void fillColumnMenu(QMenu& menu, Grid& grid);

}  // namespace vl
