// Money and numeric values: whole numbers with a decimal point, never rounded through a double.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vl::jet {

/// A number of up to 128 bits and a sign.
struct Decimal {
    /// Least significant first.
    std::array<std::uint32_t, 4> words{};
    bool negative = false;

    bool isZero() const noexcept;
    friend bool operator==(const Decimal&, const Decimal&) = default;
};

/// "-12.50" for -1250 with two decimals: always as many as `decimals` says. Zero has no sign.
std::string formatDecimal(Decimal value, unsigned decimals);

/// The value times 10^`decimals`, rounded to whole, halves to even. `text` may have a sign, a
/// decimal point and an exponent. Throws `Error`: `ErrNo::TypeMismatch` when it is no number,
/// `ErrNo::Overflow` when the result takes more than 128 bits.
Decimal parseDecimal(std::string_view text, unsigned decimals);

}  // namespace vl::jet
