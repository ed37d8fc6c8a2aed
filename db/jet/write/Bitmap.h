// Bits of a usage map.
#pragma once

#include <optional>

#include "Bytes.h"

namespace vl::jet {

inline bool bitOf(ByteView bitmap, std::size_t bit) {
    return (u8(bitmap, bit / 8) & (1U << (bit % 8))) != 0;
}

/// The lowest bit that is set; nothing when none is.
std::optional<std::size_t> lowestBit(ByteView bitmap);

/// The highest of the first `end` bits that is set.
std::optional<std::size_t> highestBit(ByteView bitmap, std::size_t end);

}  // namespace vl::jet
