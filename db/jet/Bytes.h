// Numbers in bytes: everything in a Jet 4 file outside index keys is little-endian.
#pragma once

#include <bit>
#include <cassert>
#include <cstdint>

#include "db/jet/Types.h"

namespace vl::jet {

/// The unsigned number at `at`. The caller has checked that it lies inside.
template <class T>
constexpr T load(ByteView bytes, std::size_t at) noexcept {
    assert(at + sizeof(T) <= bytes.size());
    T value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        value = static_cast<T>(value | (static_cast<T>(bytes[at + i]) << (8 * i)));
    }
    return value;
}

inline std::uint8_t u8(ByteView b, std::size_t at) noexcept { return load<std::uint8_t>(b, at); }
inline std::uint16_t u16(ByteView b, std::size_t at) noexcept { return load<std::uint16_t>(b, at); }
inline std::uint32_t u32(ByteView b, std::size_t at) noexcept { return load<std::uint32_t>(b, at); }
inline std::uint64_t u64(ByteView b, std::size_t at) noexcept { return load<std::uint64_t>(b, at); }
inline float f32(ByteView b, std::size_t at) noexcept { return std::bit_cast<float>(u32(b, at)); }
inline double f64(ByteView b, std::size_t at) noexcept { return std::bit_cast<double>(u64(b, at)); }

template <class T>
constexpr void store(std::span<std::byte> bytes, std::size_t at, T value) noexcept {
    assert(at + sizeof(T) <= bytes.size());
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        bytes[at + i] = static_cast<std::byte>(value >> (8 * i));
    }
}

}  // namespace vl::jet
