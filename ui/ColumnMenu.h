// The menu that shows and hides the columns of a grid.
#pragma once

class QMenu;

namespace vl {

class Grid;

/// Adds an entry for each column, checked while it is shown, and one that puts all columns back as
/// they were at first. The subject's cannot be chosen: a row without it says nothing.
void fillColumnMenu(QMenu& menu, Grid& grid);

}  // namespace vl
