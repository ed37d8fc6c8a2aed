// Sets of pages, by which a table knows its own.
#pragma once

#include <vector>

#include "DataPage.h"

namespace vl::jet {

// Where the bits begin in the row of a map that has them itself, and on a bitmap page.
inline constexpr std::size_t kInlineBitmapAt = 5;
inline constexpr std::size_t kBitmapAt = 4;
inline constexpr std::size_t kPagesPerBitmap = (kPageSize - kBitmapAt) * 8;

/// What a page past the file's end is in a map: the map of free pages may hold such.
enum class Beyond { Damage, Ignored };

/// The pages of the usage map at `pointer`, ascending. Inline maps and those that refer to bitmap
/// pages. Throws `Error` (`ErrNo::Corrupt`), also for a page past the
/// file's end unless these are ignored.
/// Source: docs/jet4.md, "Usage map".
std::vector<PageNo> readUsageMap(PageFile& file, RowPointer pointer,
                                 Beyond beyond = Beyond::Damage);

/// The bitmap pages that the map refers to.
std::vector<PageNo> bitmapPages(PageFile& file, RowPointer pointer);

}  // namespace vl::jet
