// Numbers mixed into one, for hashes that live no longer than the process.
#pragma once

#include <cstdint>

namespace vl {

/// The golden ratio in 64 bits: odd, and its bits follow no pattern.
inline constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15U;

/// `word` mixed into all bits of `hash`. One-to-one in each of both, since a multiplication by an
/// odd constant and a shift are: two sequences that differ in one word never meet.
constexpr std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) noexcept {
    hash = (hash ^ word) * kGolden;
    return hash ^ (hash >> 32);
}

}  // namespace vl
