// The tray icon's tooltip.
#pragma once

#include <cstddef>
#include <string>

namespace vl {

/// What `GetIconText` says: the rows of the selected tab, the new reminders when there are any,
/// and how to bring the window up while it is not visible. Lines are parted by CR LF. `tab` is the
/// index of the selected tab, `rows` its grid's rows, `newRows` those of the new-reminders grid.
std::string iconText(int tab, std::size_t rows, std::size_t newRows, bool visible);

}  // namespace vl
