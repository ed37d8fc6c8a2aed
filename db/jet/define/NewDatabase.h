// A whole new database.
#pragma once

#include <functional>
#include <vector>

#include "db/jet/Types.h"

namespace vl::jet {

class Database;

/// The content of a file without any table of a user's, the same as the engine makes but for the
/// dates in its catalog, after `fill` has changed it. Source: docs/jet4.md, "A new file".
std::vector<std::byte> newDatabase(const std::function<void(Database&)>& fill = {});

}  // namespace vl::jet
