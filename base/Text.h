// Texts are UTF-8; lengths and cuts count UTF-16 units, as the database does.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vl::text {

/// Length in UTF-16 units: a character beyond U+FFFF counts two. Bytes that are no UTF-8 count one
/// each.
std::size_t utf16Length(std::string_view s) noexcept;

/// The first `units` UTF-16 units; a character that would be split is left out.
std::string_view leftUtf16(std::string_view s, std::size_t units) noexcept;

/// UTF-16 units to UTF-8. An unpaired surrogate becomes its own three bytes, so that nothing read
/// from a file is lost; `toUtf16` brings it back.
std::string fromUtf16(std::u16string_view units);

/// UTF-8 to UTF-16 units. A byte that belongs to no character becomes U+FFFD.
std::u16string toUtf16(std::string_view s);

/// Simple case folding, character by character (Unicode CaseFolding, statuses C and S).
char32_t foldCase(char32_t c) noexcept;
std::string foldCase(std::string_view s);

/// Without regard to case, by folded characters.
bool equalsNoCase(std::string_view a, std::string_view b) noexcept;
/// Negative, 0 or positive. Folded characters are compared by code point.
int compareNoCase(std::string_view a, std::string_view b) noexcept;
/// Where `part` begins in `s` without regard to case, from byte `from` on, and how many bytes of
/// `s` it takes there (folding may change a character's length).
struct Match {
    std::size_t at;
    std::size_t length;
};
std::optional<Match> findNoCase(std::string_view s, std::string_view part, std::size_t from = 0);
bool containsNoCase(std::string_view s, std::string_view part);

/// Every `what` (not empty) replaced by `with`; exact comparison.
std::string replaceAll(std::string_view s, std::string_view what, std::string_view with);
std::string replaceAllNoCase(std::string_view s, std::string_view what, std::string_view with);

/// Without blanks (U+0020 only) at both ends.
std::string_view trimBlanks(std::string_view s) noexcept;

/// The pieces between every occurrence of `delimiter`, empty ones too: one more than there are
/// delimiters. An empty delimiter gives the whole text.
std::vector<std::string_view> split(std::string_view s, std::string_view delimiter);

/// The number a text begins with, as a numeric literal is read: blanks are ignored wherever they
/// stand, reading stops at the first character that cannot continue a number, 0 when there is
/// none. A sign, a decimal point and an exponent (e or d) are understood, whatever the locale.
double leadingNumber(std::string_view s) noexcept;

/// The whole text as a number, blanks around it allowed; nothing else may stand there.
std::optional<double> number(std::string_view s) noexcept;

/// The shortest decimal text that reads back as the same value, without an exponent where that
/// stays readable: "0.5", "-3", "1E+20".
std::string fromNumber(double value);

/// Nearest whole number, halves to the even neighbour.
double roundHalfEven(double value) noexcept;

/// As `roundHalfEven`, into 32 bits. Throws `Error` (`ErrNo::Overflow`) when it does not fit.
std::int32_t toInt32(double value);

/// One character of UTF-8 from `at` on; moves `at` past it. A byte that belongs to no character
/// gives U+DC00 + byte, so that different damage stays different.
char32_t nextCharacter(std::string_view s, std::size_t& at) noexcept;
void appendCharacter(std::string& s, char32_t c);

}  // namespace vl::text
