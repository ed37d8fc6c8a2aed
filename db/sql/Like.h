// Texts against patterns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Lexer.h"

namespace vl::sql {

/// A pattern of LIKE: `*` any characters, `?` one character, `#` one digit, `[a-z]` one of a list
/// or range, `[!a-z]` one that is not, `[]` nothing; all without regard to case. In a list a
/// hyphen at either end and an exclamation mark that is not first stand for themselves, so `[*]`
/// is a star. Blanks at the end count, unlike in a comparison.
class LikePattern {
public:
    /// Throws `Error` (`ErrNo::Syntax`, naming `at`) for a list without end or a range that runs
    /// backwards.
    LikePattern(std::string_view pattern, Position at);

    /// Time is at most text times pattern, whatever the pattern.
    bool matches(std::string_view text) const;

private:
    enum class Kind { Character, AnyOne, Digit, List, Star };
    struct Range {
        char32_t from;
        char32_t to;
    };
    struct Element {
        Kind kind;
        char32_t character = 0;  // folded
        bool negated = false;
        std::vector<Range> ranges = {};  // folded
    };

    std::size_t addList(const std::u32string& pattern, std::size_t from, Position at);
    static bool matchesOne(const Element& element, char32_t folded) noexcept;

    std::vector<Element> elements_;
};

}  // namespace vl::sql
