// What a column takes: the last step before a value is written.
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "Value.h"
#include "base/Text.h"
#include "db/jet/FixedValue.h"

namespace vl::sql {

namespace {

using jet::ColumnType;

[[noreturn]] void failFor(ErrNo number, const jet::Column& column, Position at,
                          const std::string& text) {
    fail(number, at, "column " + column.name + ": " + text);
}

double number(const jet::Column& column, const Variant& value, Position at) {
    try {
        return value.toDouble();
    } catch (const Error& e) {
        failFor(e.number(), column, at, std::string("expected a number, ") + e.what());
    }
}

Variant wholeBetween(const jet::Column& column, const Variant& value, Position at,
                     std::int32_t least, std::int32_t most) {
    const double rounded = text::roundHalfEven(number(column, value, at));
    if (!(rounded >= least && rounded <= most)) {
        failFor(ErrNo::Overflow, column, at,
                text::fromNumber(rounded) + " is not between " + std::to_string(least) + " and " +
                    std::to_string(most));
    }
    return static_cast<std::int32_t>(rounded);
}

Variant real(const jet::Column& column, const Variant& value, Position at) {
    const double wanted = number(column, value, at);
    const double most = column.type == ColumnType::Single
                            ? static_cast<double>(std::numeric_limits<float>::max())
                            : std::numeric_limits<double>::max();
    if (std::fabs(wanted) > most) {
        failFor(ErrNo::Overflow, column, at, text::fromNumber(wanted) + " does not fit");
    }
    return wanted;
}

Variant flag(const jet::Column& column, const Variant& value, Position at) {
    try {
        return value.toBool();
    } catch (const Error& e) {
        failFor(e.number(), column, at, std::string("expected True or False, ") + e.what());
    }
}

Variant date(const jet::Column& column, const Variant& value, Position at) {
    static const DateTime kFirst = DateTime::fromCivil(100, 1, 1);
    static const DateTime kEnd = DateTime::fromCivil(10'000, 1, 1);
    try {
        const DateTime d = value.toDateTime();
        if (d < kFirst || d >= kEnd) {
            throw Error(ErrNo::Overflow, "the date is not between the years 100 and 9999");
        }
        return d;
    } catch (const Error& e) {
        failFor(e.number(), column, at, std::string("expected a date, ") + e.what());
    }
}

Variant text(const jet::Column& column, const Variant& value, Position at) {
    std::string content = textOf(value, at);
    const std::size_t units = text::utf16Length(content);
    const std::size_t most = column.length / 2U;  // the column counts bytes
    if (column.type == ColumnType::Text && units > most) {
        failFor(ErrNo::Overflow, column, at,
                "a text of " + std::to_string(units) + " characters, expected at most " +
                    std::to_string(most));
    }
    return content;
}

// Decimal columns take decimal texts without an exponent; a text that is one already stays exact.
Variant decimal(const jet::Column& column, const Variant& value, Position at) {
    if (const auto* given = value.get<std::string>()) {
        number(column, value, at);
        if (given->find_first_of("eE") == std::string::npos) {
            return std::string(text::trimBlanks(*given));
        }
    }
    constexpr double kMost = 1.0e29;  // a numeric column has 28 digits
    const double wanted = number(column, value, at);
    if (!(std::fabs(wanted) < kMost)) {
        failFor(ErrNo::Overflow, column, at, text::fromNumber(wanted) + " does not fit");
    }
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), wanted,
                                   std::chars_format::fixed)
                         .ptr;
    return std::string(buffer.data(), end);
}

Variant bytes(const jet::Column& column, const Variant& value, Position at) {
    const auto* given = value.get<Bytes>();
    if (given == nullptr) {
        failFor(ErrNo::TypeMismatch, column, at, "expected bytes");
    }
    if (column.type == ColumnType::Binary && given->size() > column.length) {
        failFor(ErrNo::Overflow, column, at,
                std::to_string(given->size()) + " bytes, expected at most " +
                    std::to_string(column.length));
    }
    return value;
}

// What only the file's own form of it tells: whether all digits fit, and whether it is a GUID.
Variant storable(const jet::Column& column, Variant value, Position at) {
    std::array<std::byte, 17> field{};  // the longest of them, a numeric's
    try {
        jet::encodeFixed(column, value, field);
    } catch (const Error& e) {
        failFor(e.number(), column, at, e.what());
    }
    return value;
}

}  // namespace

Variant convertFor(const jet::Column& column, const Variant& value, Position at) {
    if (value.isNull()) {  // yes/no columns have no null
        return column.type == ColumnType::Boolean ? Variant(false) : value;
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return flag(column, value, at);
        case ColumnType::Byte:
            return wholeBetween(column, value, at, 0, 255);
        case ColumnType::Integer:
            return wholeBetween(column, value, at, std::numeric_limits<std::int16_t>::min(),
                                std::numeric_limits<std::int16_t>::max());
        case ColumnType::Long:
            return wholeBetween(column, value, at, std::numeric_limits<std::int32_t>::min(),
                                std::numeric_limits<std::int32_t>::max());
        case ColumnType::Single:
        case ColumnType::Double:
            return real(column, value, at);
        case ColumnType::Date:
            return date(column, value, at);
        case ColumnType::Money:
        case ColumnType::Numeric:
            return storable(column, decimal(column, value, at), at);
        case ColumnType::Guid:
            return storable(column, text(column, value, at), at);
        case ColumnType::Text:
        case ColumnType::Memo:
            return text(column, value, at);
        case ColumnType::Binary:
        case ColumnType::Ole:
            return bytes(column, value, at);
        case ColumnType::Block:
        case ColumnType::Complex:
            break;
    }
    failFor(ErrNo::Unsupported, column, at, "values of this type cannot be set");
}

}  // namespace vl::sql
