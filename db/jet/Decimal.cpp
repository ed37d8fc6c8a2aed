#include "Decimal.h"

#include <algorithm>

#include "base/ErrorState.h"

namespace vl::jet {

namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// Divides by ten, gives the remainder.
unsigned divideByTen(std::array<std::uint32_t, 4>& words) noexcept {
    std::uint64_t rest = 0;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        const std::uint64_t part = (rest << 32) | *word;
        *word = static_cast<std::uint32_t>(part / 10);
        rest = part % 10;
    }
    return static_cast<unsigned>(rest);
}

// False when the result takes more than 128 bits.
bool multiplyAndAdd(std::array<std::uint32_t, 4>& words, unsigned factor, unsigned more) noexcept {
    std::uint64_t carry = more;
    for (std::uint32_t& word : words) {
        const std::uint64_t part = std::uint64_t{word} * factor + carry;
        word = static_cast<std::uint32_t>(part);
        carry = part >> 32;
    }
    return carry == 0;
}

/// A literal in pieces: its digits without the point, and where the point stands among them.
struct Literal {
    bool negative = false;
    std::string digits;
    long point = 0;
};

Literal readLiteral(std::string_view text) {
    const auto fail = [&] {
        throw Error(ErrNo::TypeMismatch, "\"" + std::string(text) + "\" is no number");
    };
    constexpr long kLargestExponent = 9999;
    Literal literal;
    std::size_t at = 0;
    const auto sign = [&] {
        const bool minus = at < text.size() && text[at] == '-';
        if (minus || (at < text.size() && text[at] == '+')) {
            ++at;
        }
        return minus;
    };
    literal.negative = sign();
    bool point = false;
    for (; at < text.size() && (isDigit(text[at]) || (text[at] == '.' && !point)); ++at) {
        if (text[at] == '.') {
            point = true;
        } else {
            literal.digits += text[at];
            literal.point += point ? 0 : 1;
        }
    }
    if (literal.digits.empty()) {
        fail();
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        const bool minus = sign();
        long exponent = 0;
        const std::size_t from = at;
        for (; at < text.size() && isDigit(text[at]); ++at) {
            exponent = std::min(exponent * 10 + (text[at] - '0'), kLargestExponent);
        }
        if (at == from) {
            fail();
        }
        literal.point += minus ? -exponent : exponent;
    }
    if (at != text.size()) {
        fail();
    }
    return literal;
}

// Whether the digits from `from` on, read as a fraction, round the number before them up.
bool roundsUp(const std::string& digits, std::size_t from, bool odd) noexcept {
    if (from >= digits.size() || digits[from] != '5') {
        return from < digits.size() && digits[from] > '5';
    }
    const bool more = digits.find_first_not_of('0', from + 1) != std::string::npos;
    return more || odd;
}

}  // namespace

bool Decimal::isZero() const noexcept {
    return std::all_of(words.begin(), words.end(), [](std::uint32_t w) { return w == 0; });
}

std::string formatDecimal(Decimal value, unsigned decimals) {
    const bool minus = value.negative && !value.isZero();
    std::string reversed;
    while (!value.isZero() || reversed.size() <= decimals) {
        reversed += static_cast<char>('0' + divideByTen(value.words));
    }
    if (decimals > 0) {
        reversed.insert(decimals, 1, '.');
    }
    if (minus) {
        reversed += '-';
    }
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

Decimal parseDecimal(std::string_view text, unsigned decimals) {
    const Literal literal = readLiteral(text);
    Decimal value;
    value.negative = literal.negative;
    const long wanted = literal.point + static_cast<long>(decimals);  // digits before the cut
    const auto fail = [&] {
        throw Error(ErrNo::Overflow, "\"" + std::string(text) + "\" is too large");
    };
    for (long i = 0; i < wanted; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const unsigned digit =
            at < literal.digits.size() ? static_cast<unsigned>(literal.digits[at] - '0') : 0;
        if (!multiplyAndAdd(value.words, 10, digit)) {
            fail();
        }
    }
    if (wanted >= 0 &&
        roundsUp(literal.digits, static_cast<std::size_t>(wanted), (value.words[0] & 1U) != 0) &&
        !multiplyAndAdd(value.words, 1, 1)) {
        fail();
    }
    value.negative = value.negative && !value.isZero();
    return value;
}

}  // namespace vl::jet
