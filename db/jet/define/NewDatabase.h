// A whole new database.
#pragma once

#include <vector>

#include "db/jet/Types.h"

namespace vl::jet {

/// The content of a file without any table of a user's, the same as the engine makes but for the
/// dates in its catalog. Source: docs/jet4.md, "A new file".
std::vector<std::byte> newDatabase();

}  // namespace vl::jet
