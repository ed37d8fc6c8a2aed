#include "FixedValue.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "Bytes.h"
#include "Decimal.h"
#include "Value.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

[[noreturn]] void tooLarge(const std::string& what) {
    throw Error(ErrNo::Overflow, what + " does not fit");
}

std::int32_t wholeNumber(const Variant& value, std::int32_t least, std::int32_t most) {
    const std::int32_t n = value.toInt32();
    if (n < least || n > most) {
        tooLarge(std::to_string(n));
    }
    return n;
}

double finite(const Variant& value, double most) {
    const double n = value.toDouble();
    if (!(std::fabs(n) <= most)) {  // not a number, too
        tooLarge(text::fromNumber(n));
    }
    return n;
}

// Through text, since a double does not hold every value.
Decimal decimal(const Variant& value, unsigned decimals) {
    if (const auto* s = value.get<std::string>()) {
        return parseDecimal(text::trimBlanks(*s), decimals);
    }
    const bool whole = value.is<std::int32_t>() || value.is<std::int64_t>();
    return parseDecimal(whole ? value.toText() : text::fromNumber(value.toDouble()), decimals);
}

std::uint64_t money(const Variant& value) {
    const Decimal d = decimal(value, kMoneyDecimals);
    const std::uint64_t size = (std::uint64_t{d.words[1]} << 32) | d.words[0];
    const std::uint64_t most = (std::uint64_t{1} << 63) - (d.negative ? 0 : 1);
    if (d.words[2] != 0 || d.words[3] != 0 || size > most) {
        tooLarge(formatDecimal(d, kMoneyDecimals));
    }
    return d.negative ? 0 - size : size;
}

void putNumeric(const Column& column, const Variant& value, std::span<std::byte> field) {
    const Decimal d = decimal(value, column.scale);
    Decimal digits = d;
    digits.negative = false;
    if (!d.isZero() && formatDecimal(digits, 0).size() > column.precision) {
        tooLarge(formatDecimal(d, column.scale));
    }
    field[0] = d.negative ? std::byte{0x80} : std::byte{0};
    for (std::size_t i = 0; i < d.words.size(); ++i) {
        store(field, 1 + 4 * i, d.words[3 - i]);
    }
}

// The years from 100 to 9999. Damaged files hold others.
bool isStorable(DateTime date) noexcept {
    static const DateTime kFirst = DateTime::fromCivil(100, 1, 1);
    static const DateTime kBehindLast = DateTime::fromCivil(10000, 1, 1);
    return std::isfinite(date.days()) && !(date < kFirst) && date < kBehindLast;
}

// The same instant must always give the same bits: indexes and comparisons go by them. Only what is
// copied has those that somebody else gave it.
double dateBits(const Variant& value, Dates dates) {
    const DateTime date = value.toDateTime();
    if (!isStorable(date)) {
        tooLarge("a date of " + text::fromNumber(date.days()) + " days");
    }
    return dates == Dates::AsTheyAre ? date.days() : date.wholeSeconds().days();
}

void putText(const Variant& value, std::span<std::byte> field) {
    const std::u16string units = text::toUtf16(value.toText());
    const std::size_t room = field.size() / 2;
    if (units.size() > room) {
        tooLarge("a text of " + std::to_string(units.size()) + " characters");
    }
    for (std::size_t i = 0; i < room; ++i) {
        store(field, 2 * i, static_cast<std::uint16_t>(i < units.size() ? units[i] : u' '));
    }
}

}  // namespace

void encodeFixed(const Column& column, const Variant& value, std::span<std::byte> field,
                 Dates dates) {
    switch (column.type) {
        case ColumnType::Byte:
            store(field, 0, static_cast<std::uint8_t>(wholeNumber(value, 0, 255)));
            break;
        case ColumnType::Integer:
            store(field, 0, static_cast<std::uint16_t>(wholeNumber(value, -32768, 32767)));
            break;
        case ColumnType::Long:
            store(field, 0, static_cast<std::uint32_t>(value.toInt32()));
            break;
        case ColumnType::Money:
            store(field, 0, money(value));
            break;
        case ColumnType::Single:
            store(field, 0,
                  std::bit_cast<std::uint32_t>(static_cast<float>(finite(value, FLT_MAX))));
            break;
        case ColumnType::Double:
            store(field, 0, std::bit_cast<std::uint64_t>(finite(value, DBL_MAX)));
            break;
        case ColumnType::Date:
            store(field, 0, std::bit_cast<std::uint64_t>(dateBits(value, dates)));
            break;
        case ColumnType::Text:
            putText(value, field);
            break;
        case ColumnType::Guid: {
            const std::array<std::byte, 16> bytes = parseGuid(value.toText());
            std::copy(bytes.begin(), bytes.end(), field.begin());
            break;
        }
        default:
            assert(column.type == ColumnType::Numeric);
            putNumeric(column, value, field);
    }
}

}  // namespace vl::jet
