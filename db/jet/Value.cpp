#include "Value.h"

#include <cmath>

#include "Bytes.h"
#include "Decimal.h"
#include "TableDefinition.h"
#include "TextCode.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// Where in the bytes each pair of digits of a GUID's text stands: the first three groups are
// numbers, the last two bytes as they are.
constexpr std::array<std::size_t, 16> kGuidOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};

bool dashBefore(std::size_t pair) noexcept {
    return pair == 4 || pair == 6 || pair == 8 || pair == 10;
}

int hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char upper = static_cast<char>(c & ~0x20);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

Variant moneyFrom(ByteView bytes) {
    const auto raw = static_cast<std::int64_t>(u64(bytes, 0));
    const std::uint64_t size = raw < 0 ? 0 - u64(bytes, 0) : u64(bytes, 0);
    Decimal value;
    value.words[0] = static_cast<std::uint32_t>(size);
    value.words[1] = static_cast<std::uint32_t>(size >> 32);
    value.negative = raw < 0;
    return formatDecimal(value, kMoneyDecimals);
}

// A sign byte, then the words with the most significant first.
Variant numericFrom(ByteView bytes, unsigned scale) {
    Decimal value;
    value.negative = (u8(bytes, 0) & 0x80) != 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value.words[3 - i] = u32(bytes, 1 + 4 * i);
    }
    return formatDecimal(value, scale);
}

void checkSize(const Column& column, ByteView bytes, const Origin& origin) {
    const std::size_t size = sizeOf(column.type);
    if (size != 0 && bytes.size() != size) {
        origin.corrupt("the value of column \"" + column.name + "\" has " +
                       std::to_string(bytes.size()) + " bytes");
    }
}

}  // namespace

std::string formatGuid(ByteView bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out = "{";
    for (std::size_t i = 0; i < 16; ++i) {
        if (dashBefore(i)) {
            out += '-';
        }
        const unsigned b = u8(bytes, kGuidOrder[i]);
        out += kDigits[b >> 4];
        out += kDigits[b & 15];
    }
    return out + "}";
}

std::array<std::byte, 16> parseGuid(std::string_view text) {
    const auto fail = [&] {
        throw Error(ErrNo::TypeMismatch, "\"" + std::string(text) + "\" is no GUID");
    };
    std::string_view rest = text;
    if (rest.size() == 38 && rest.front() == '{' && rest.back() == '}') {
        rest = rest.substr(1, 36);
    }
    if (rest.size() != 36) {
        fail();
    }
    std::array<std::byte, 16> bytes{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (dashBefore(i) && rest[at++] != '-') {
            fail();
        }
        const int high = hexDigit(rest[at]);
        const int low = hexDigit(rest[at + 1]);
        if (high < 0 || low < 0) {
            fail();
        }
        bytes[kGuidOrder[i]] = static_cast<std::byte>(high * 16 + low);
        at += 2;
    }
    return bytes;
}

std::int32_t longFrom(const Column& column, ByteView bytes, const Origin& origin) {
    checkSize(column, bytes, origin);
    return static_cast<std::int32_t>(u32(bytes, 0));
}

DateTime dateFrom(const Column& column, ByteView bytes, const Origin& origin) {
    checkSize(column, bytes, origin);
    const double days = f64(bytes, 0);
    if (!std::isfinite(days)) {
        origin.corrupt("a date of column \"" + column.name + "\" is no number");
    }
    return DateTime(days);
}

Variant decodeValue(const Column& column, ByteView bytes, const Origin& origin) {
    checkSize(column, bytes, origin);
    switch (column.type) {
        case ColumnType::Byte:
            return std::int32_t{u8(bytes, 0)};
        case ColumnType::Integer:
            return std::int32_t{static_cast<std::int16_t>(u16(bytes, 0))};
        case ColumnType::Long:
        case ColumnType::Complex:
            return static_cast<std::int32_t>(u32(bytes, 0));
        case ColumnType::Money:
            return moneyFrom(bytes);
        case ColumnType::Single:
            return static_cast<double>(f32(bytes, 0));
        case ColumnType::Double:
            return f64(bytes, 0);
        case ColumnType::Date:
            return dateFrom(column, bytes, origin);
        case ColumnType::Text:
        case ColumnType::Memo:
            return decodeText(bytes, origin);
        case ColumnType::Guid:
            return formatGuid(bytes);
        case ColumnType::Numeric:
            return numericFrom(bytes, column.scale);
        default:
            return Bytes(bytes.begin(), bytes.end());
    }
}

}  // namespace vl::jet
