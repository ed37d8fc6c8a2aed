// A usage map while `Space` changes it.
#pragma once

#include "Bytes.h"
#include "Space.h"
#include "UsageMap.h"

namespace vl::jet {

inline constexpr PageNo kMostPages = 524288;  ///< of a file: 2 GiB

/// A map as it is now.
struct Space::Map {
    Page page;
    ByteView row;
    bool inlined = true;
    PageNo first = 0;       // of an inline map
    std::size_t count = 0;  // bits of an inline map, or bitmap pages it can refer to

    std::size_t at() const { return static_cast<std::size_t>(row.data() - page.bytes().data()); }
    ByteView bits() const { return row.subspan(kInlineBitmapAt); }
    bool inRange(PageNo number) const { return number >= first && number - first < count; }
    PageNo bitmapOf(std::size_t range) const { return range < count ? u32(row, 1 + 4 * range) : 0; }
};

/// A bitmap page with this in all of its bytes.
Page::Bytes bitmapPage(std::byte fill);

}  // namespace vl::jet
