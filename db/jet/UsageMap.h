// Sets of pages, by which a table knows its own.
#pragma once

#include <vector>

#include "DataPage.h"

namespace vl::jet {

/// The pages of the usage map at `pointer`, ascending. Inline maps and those that refer to bitmap
/// pages. Throws `Error` (`ErrNo::Corrupt`), also for a page past the file's end.
/// Source: docs/jet4.md, "Usage map".
std::vector<PageNo> readUsageMap(PageFile& file, RowPointer pointer);

}  // namespace vl::jet
