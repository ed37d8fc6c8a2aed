#include "Bitmap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace vl::jet {

namespace {

// Most of a bitmap is empty: whole runs of it are passed at once.
constexpr std::size_t kRun = 64;
constexpr std::array<std::byte, kRun> kEmptyRun{};

}  // namespace

std::optional<std::size_t> lowestBit(ByteView bitmap) {
    for (std::size_t i = 0; i < bitmap.size(); ++i) {
        if (i % kRun == 0 && i + kRun <= bitmap.size() &&
            std::memcmp(&bitmap[i], kEmptyRun.data(), kRun) == 0) {
            i += kRun - 1;
        } else if (const unsigned bits = u8(bitmap, i); bits != 0) {
            return 8 * i + static_cast<std::size_t>(std::countr_zero(bits));
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> highestBit(ByteView bitmap, std::size_t end) {
    end = std::min(end, 8 * bitmap.size());
    if (end % 8 != 0) {
        const unsigned bits = u8(bitmap, end / 8) & ((1U << (end % 8)) - 1);
        if (bits != 0) {
            return end / 8 * 8 + static_cast<std::size_t>(std::bit_width(bits)) - 1;
        }
    }
    for (std::size_t i = end / 8; i > 0;) {
        if (i >= kRun && std::memcmp(&bitmap[i - kRun], kEmptyRun.data(), kRun) == 0) {
            i -= kRun;
        } else if (const unsigned bits = u8(bitmap, --i); bits != 0) {
            return 8 * i + static_cast<std::size_t>(std::bit_width(bits)) - 1;
        }
    }
    return std::nullopt;
}

}  // namespace vl::jet
