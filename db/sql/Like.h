// Texts against patterns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Lexer.h"

namespace vl::sql {

/// A pattern of LIKE: `*` any characters, `?` one character, `#` one digit, `[a-z]` one of a list
/// or range, `[!a-z]` one that is not, `[]` nothing. Characters are the same, and lie in a range,
/// as in a comparison of texts: case and width make no difference, and `[a-z]` holds accented
/// letters. But each stands for itself here: an sz is not two letters, hyphens are looked for and
/// blanks at the end count. In a list a hyphen at either end and an exclamation mark that is not
/// first stand for themselves, so `[*]` is a star.
class LikePattern {
public:
    /// Throws `Error` (`ErrNo::Syntax`, naming `at`) for a list without end or a range that runs
    /// backwards.
    LikePattern(std::string_view pattern, Position at);

    /// Time is at most text times pattern, whatever the pattern.
    bool matches(std::string_view text) const;

private:
    enum class Kind { Character, AnyOne, List, Star };
    /// By `jet::characterWeight`.
    using Weight = std::uint64_t;
    struct Range {
        Weight from;
        Weight to;
    };
    struct Element {
        Kind kind;
        Weight character = 0;
        bool negated = false;
        std::vector<Range> ranges = {};
    };

    std::size_t addList(const std::u32string& pattern, std::size_t from, Position at);
    static bool matchesOne(const Element& element, Weight c) noexcept;

    std::vector<Element> elements_;
};

}  // namespace vl::sql
