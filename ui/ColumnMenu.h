// The menu of a grid's columns.
#pragma once

class QMenu;

namespace vl {

class Grid;

/// Adds an entry for each column, checked while it is shown, what the mouse does to headings (sort,
/// move), and an entry that puts all columns back as they were at first. The subject's cannot be
/// chosen: a row without it says nothing.
void fillColumnMenu(QMenu& menu, Grid& grid);

}  // namespace vl
