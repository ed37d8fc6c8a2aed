// The sort order of texts: what each character adds to a key.
#pragma once

#include <array>
#include <cstdint>

namespace vl::jet {

/// What a UTF-16 unit means for a key. Source: docs/jet4.md, "Text keys".
struct CollationCode {
    enum class Class : std::uint8_t {
        Ignored,
        Plain,   ///< its inline code
        Accent,  ///< an inline code, and how the letter differs from its plain form
        Ext,     ///< an inline code and a kind of script
        Hidden,  ///< no inline code: noted at the key's end
        Mark,    ///< changes the accent of the letter before
    };
    Class kind = Class::Ignored;
    std::uint8_t script = 0;
    std::uint8_t inlineLength = 0;
    std::uint8_t extraLength = 0;
    std::array<std::uint8_t, 2> extra{};
    std::uint8_t single = 0;       ///< hidden code, or modifier of a mark
    std::uint32_t inlineCode = 0;  ///< a number of `inlineLength` bytes, first byte highest
};

/// Never throws. Surrogates too: each of the two halves has a code.
CollationCode collationCode(char16_t unit) noexcept;

/// A number for a character by itself: equal numbers for characters that texts do not tell apart,
/// and the numbers of letters ascend as texts of one letter do. Characters that add no letter of
/// their own (hyphens, marks) have numbers of their own, above all others.
std::uint64_t characterWeight(char32_t c) noexcept;

}  // namespace vl::jet
