#include "Like.h"

#include <gmock/gmock.h>

#include "Memory.h"

namespace vl::sql {
namespace {

TEST(SqlLike, Matches) {
    struct Case {
        const char* text;
        const char* pattern;
        bool matches;
    };
    static constexpr Case cases[] = {
        {"", "", true},
        {"a", "", false},
        {"", "*", true},
        {"", "?", false},
        {"", "[]", true},
        {"abc", "abc", true},
        {"ABC", "abc", true},
        {"\xC3\x84rger", "\xC3\xA4*", true},  // capital and small a with diaeresis
        {"abc", "ab", false},
        {"abc ", "abc", false},  // blanks at the end count here
        {"abc", "a*", true},
        {"abc", "*c", true},
        {"abc", "*b*", true},
        {"abc", "*d*", false},
        {"abc", "a**c", true},
        {"abc", "a?c", true},
        {"ac", "a?c", false},
        {"a\xF0\x9F\x94\x94"
         "c",
         "a?c", true},  // a bell is one character
        {"a1c", "a#c", true},
        {"axc", "a#c", false},
        {"12.5", "##.#", true},
        {"b", "[a-c]", true},
        {"B", "[a-c]", true},
        {"d", "[a-c]", false},
        {"d", "[!a-c]", true},
        {"B", "[!a-c]", false},
        {"", "[!a-c]", false},
        {"x", "[abx]", true},
        {"x", "[a-cx-z]", true},
        {"-", "[-a]", true},
        {"-", "[a-]", true},
        {"b", "[a-]", false},
        {"!", "[!]", true},
        {"!", "[a!]", true},
        {"!", "!", true},
        {"*", "[*]", true},
        {"a", "[*]", false},
        {"?", "[?]", true},
        {"#", "[#]", true},
        {"[", "[[]", true},
        {"]", "]", true},
        {"a]", "[a]]", true},
        {"%", "%", true},  // no wildcard here
        {"x", "%", false},
        {"_", "_", true},
        {"x", "_", false},
        {"a\nb", "a?b", true},
        {"mississippi", "*iss*ip*i", true},
        {"mississippi", "*iss*iss*iss*", false},
        {"aab", "*ab", true},
        {"abcabd", "*ab[d]", true},
        {"\xEF\xBC\xA1", "a", true},     // a wide letter
        {"caf\xC3\xA9", "cafe", false},  // accents count
        {"\xC3\xA9", "[a-f]", true},     // and lie between letters
        {"\xC3\xA9", "[a-e]", false},    // but behind their own
        {"Stra\xC3\x9F"
         "e",
         "strasse", false},  // one character is never two
        {"co-op", "co-op", true},
        {"co-op", "coop", false},
        {"co-op", "co?op", true},
        {"\xEF\xBC\x91", "#", true},  // a wide digit
        {"\xC2\xB2", "#", true},      // a raised one: no comparison tells it from 2
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " LIKE " << c.pattern);
        EXPECT_EQ(LikePattern(c.pattern, {}).matches(c.text), c.matches);
    }
}

TEST(SqlLike, RefusesWhatIsNoPattern) {
    for (const char* pattern : {"[", "a[b", "[z-a]", "[!z-a]", "[]["}) {
        SCOPED_TRACE(pattern);
        const auto error = test::caught([&] { LikePattern(pattern, {3, 7}); });
        EXPECT_EQ(error.number, ErrNo::Syntax);
        EXPECT_THAT(error.text, testing::StartsWith("line 3, column 7: "));
    }
}

// A matcher that tries every star again would need longer than the universe has.
TEST(SqlLike, ManyStarsAreNotSlow) {
    std::string pattern;
    for (int i = 0; i < 50; ++i) {
        pattern += "*a";
    }
    pattern += "*b";
    EXPECT_FALSE(LikePattern(pattern, {}).matches(std::string(10'000, 'a')));
}

}  // namespace
}  // namespace vl::sql
