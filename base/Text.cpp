#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/ErrorState.h"

namespace vl::text {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kBrokenByte = 0xDC00;  // plus the byte: 0xDC80 .. 0xDCFF

constexpr bool isBrokenByte(char32_t c) noexcept { return c >= 0xDC80 && c <= 0xDCFF; }
constexpr bool isBlank(char c) noexcept { return c == ' ' || c == '\t'; }
constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

std::size_t sequenceLength(unsigned char lead) noexcept {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

std::size_t unitsOf(char32_t c) noexcept { return c > 0xFFFF ? 2 : 1; }

}  // namespace

char32_t nextCharacter(std::string_view s, std::size_t& at) noexcept {
    const auto lead = static_cast<unsigned char>(s[at]);
    const std::size_t length = sequenceLength(lead);
    const auto broken = [&] {
        ++at;
        return kBrokenByte + lead;
    };
    if (length == 1) {
        ++at;
        return lead;
    }
    if (length == 0 || at + length > s.size()) {
        return broken();
    }
    char32_t c = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(s[at + i]);
        if ((next & 0xC0U) != 0x80U) {
            return broken();
        }
        c = (c << 6) | (next & 0x3FU);
    }
    static constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    if (c < kSmallest[length] || c > 0x10FFFF) {
        return broken();
    }
    at += length;
    return c;
}

void appendCharacter(std::string& s, char32_t c) {
    const auto put = [&](char32_t byte) { s.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

std::size_t utf16Length(std::string_view s) noexcept {
    std::size_t units = 0;
    for (std::size_t at = 0; at < s.size();) {
        units += unitsOf(nextCharacter(s, at));
    }
    return units;
}

std::string_view leftUtf16(std::string_view s, std::size_t units) noexcept {
    std::size_t at = 0;
    while (at < s.size()) {
        std::size_t next = at;
        const std::size_t taken = unitsOf(nextCharacter(s, next));
        if (taken > units) {
            break;
        }
        units -= taken;
        at = next;
    }
    return s.substr(0, at);
}

std::string fromUtf16(std::u16string_view units) {
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        const bool high = c >= 0xD800 && c <= 0xDBFF;
        if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00U);
            ++i;
        }
        appendCharacter(out, c);
    }
    return out;
}

std::u16string toUtf16(std::string_view s) {
    std::u16string out;
    out.reserve(s.size());
    for (std::size_t at = 0; at < s.size();) {
        const std::size_t start = at;
        char32_t c = nextCharacter(s, at);
        if (at - start == 1 && isBrokenByte(c)) {
            c = kReplacement;
        }
        if (c > 0xFFFF) {
            c -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
    }
    return out;
}

std::string foldCase(std::string_view s) {
    std::string out;
    out.reserve(s.size());
    for (std::size_t at = 0; at < s.size();) {
        const std::size_t start = at;
        const char32_t c = nextCharacter(s, at);
        if (at - start == 1) {
            out.push_back(c < 0x80 ? static_cast<char>(foldCase(c)) : s[start]);
        } else {
            appendCharacter(out, foldCase(c));
        }
    }
    return out;
}

int compareNoCase(std::string_view a, std::string_view b) noexcept {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t x = foldCase(nextCharacter(a, i));
        const char32_t y = foldCase(nextCharacter(b, j));
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    if (i < a.size()) {
        return 1;
    }
    return j < b.size() ? -1 : 0;
}

bool equalsNoCase(std::string_view a, std::string_view b) noexcept {
    const auto folded = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
    const std::size_t both = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < both; ++i) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if (x >= 0x80 || y >= 0x80) {
            return compareNoCase(a.substr(i), b.substr(i)) == 0;
        }
        if (folded(x) != folded(y)) {
            return false;
        }
    }
    return a.size() == b.size();
}

std::optional<Match> findNoCase(std::string_view s, std::string_view part, std::size_t from) {
    for (std::size_t start = from; start <= s.size();) {
        std::size_t i = start;
        std::size_t j = 0;
        while (j < part.size() && i < s.size()) {
            std::size_t in = i;
            std::size_t jn = j;
            if (foldCase(nextCharacter(s, in)) != foldCase(nextCharacter(part, jn))) {
                break;
            }
            i = in;
            j = jn;
        }
        if (j == part.size()) {
            return Match{start, i - start};
        }
        if (start == s.size()) {
            break;
        }
        nextCharacter(s, start);
    }
    return std::nullopt;
}

bool containsNoCase(std::string_view s, std::string_view part) {
    return findNoCase(s, part).has_value();
}

std::string replaceAll(std::string_view s, std::string_view what, std::string_view with) {
    std::string out;
    std::size_t at = 0;
    while (true) {
        const std::size_t hit = what.empty() ? std::string_view::npos : s.find(what, at);
        if (hit == std::string_view::npos) {
            return out.append(s.substr(at));
        }
        out.append(s.substr(at, hit - at)).append(with);
        at = hit + what.size();
    }
}

std::string replaceAllNoCase(std::string_view s, std::string_view what, std::string_view with) {
    std::string out;
    std::size_t at = 0;
    while (const auto hit = what.empty() ? std::nullopt : findNoCase(s, what, at)) {
        out.append(s.substr(at, hit->at - at)).append(with);
        at = hit->at + hit->length;
    }
    return out.append(s.substr(at));
}

std::string_view trimBlanks(std::string_view s) noexcept {
    while (!s.empty() && s.front() == ' ') {
        s.remove_prefix(1);
    }
    while (!s.empty() && s.back() == ' ') {
        s.remove_suffix(1);
    }
    return s;
}

std::vector<std::string_view> split(std::string_view s, std::string_view delimiter) {
    std::vector<std::string_view> pieces;
    std::size_t at = 0;
    while (true) {
        const std::size_t hit = delimiter.empty() ? std::string_view::npos : s.find(delimiter, at);
        if (hit == std::string_view::npos) {
            pieces.push_back(s.substr(at));
            return pieces;
        }
        pieces.push_back(s.substr(at, hit - at));
        at = hit + delimiter.size();
    }
}

double leadingNumber(std::string_view s) noexcept {
    std::string digits;  // what has been read, in the form from_chars takes
    bool point = false;
    bool exponent = false;
    bool any = false;
    for (const char c : s) {
        if (isBlank(c) || c == '\n' || c == '\r') {
            continue;
        }
        const bool start = digits.empty() || (exponent && digits.back() == 'e');
        if (isDigit(c)) {
            any = true;
            digits.push_back(c);
        } else if ((c == '+' || c == '-') && start) {
            digits.push_back(c);
        } else if (c == '.' && !point && !exponent) {
            point = true;
            digits.push_back(c);
        } else if ((c == 'e' || c == 'E' || c == 'd' || c == 'D') && any && !exponent) {
            exponent = true;
            digits.push_back('e');
        } else {
            break;
        }
    }
    if (!any) {
        return 0.0;
    }
    const char* first = digits.data();
    const char* last = first + digits.size();
    if (*first == '+') {
        ++first;  // from_chars knows no plus sign in front
    }
    double value = 0.0;
    const auto result = std::from_chars(first, last, value);  // an exponent cut short is left out
    if (result.ec == std::errc::result_out_of_range) {
        const bool tiny = digits.find("e-") != std::string::npos;
        value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
        return *first == '-' ? -value : value;
    }
    return value;
}

std::optional<double> number(std::string_view s) noexcept {
    while (!s.empty() && isBlank(s.front())) {
        s.remove_prefix(1);
    }
    while (!s.empty() && isBlank(s.back())) {
        s.remove_suffix(1);
    }
    if (!s.empty() && s.front() == '+') {
        s.remove_prefix(1);
        if (!s.empty() && s.front() == '-') {
            return std::nullopt;
        }
    }
    // from_chars reads "inf" and "nan" as well; a number begins with a digit, point or minus.
    if (s.empty() || !(isDigit(s.front()) || s.front() == '.' || s.front() == '-') ||
        (s.front() == '-' && (s.size() < 2 || !(isDigit(s[1]) || s[1] == '.')))) {
        return std::nullopt;
    }
    double value = 0.0;
    const auto result = std::from_chars(s.data(), s.data() + s.size(), value);
    if (result.ec != std::errc() || result.ptr != s.data() + s.size()) {
        return std::nullopt;
    }
    return value;
}

std::string fromNumber(double value) {
    std::array<char, 64> buffer{};
    const double size = std::fabs(value);
    const bool plain = value == 0.0 || (size >= 1e-5 && size < 1e15);
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value == 0.0 ? 0.0 : value,
                      plain ? std::chars_format::fixed : std::chars_format::scientific)
            .ptr;
    std::string out(buffer.data(), end);
    for (char& c : out) {
        if (c == 'e') {
            c = 'E';
        }
    }
    return out;
}

double roundHalfEven(double value) noexcept {
    const double below = std::floor(value);
    const double rest = value - below;
    if (rest < 0.5) {
        return below;
    }
    if (rest > 0.5) {
        return below + 1.0;
    }
    return std::fmod(below, 2.0) == 0.0 ? below : below + 1.0;
}

std::int32_t toInt32(double value) {
    const double rounded = roundHalfEven(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0)) {
        throw Error(ErrNo::Overflow, fromNumber(value) + " does not fit into 32 bits");
    }
    return static_cast<std::int32_t>(rounded);
}

}  // namespace vl::text
