#include "IndexBounds.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "Value.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

using jet::ColumnType;

constexpr std::size_t kKeyUnits = 255;  // of a text go into its key

std::optional<double> numberOf(const Variant& value) {
    const bool known = value.is<bool>() || value.is<std::int32_t>() || value.is<double>();
    const double number = known ? value.toDouble() : 0.0;
    return known && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<Bounds> textBounds(const jet::Column& column, const Variant& value) {
    const auto* text = value.get<std::string>();
    if (text == nullptr || textOrderOf(column) != TextOrder::General ||
        text::utf16Length(*text) > kKeyUnits) {
        return std::nullopt;
    }
    return Bounds{value, value};
}

std::optional<Bounds> wholeBounds(const Variant& value, double least, double most) {
    const auto number = numberOf(value);
    if (!number) {
        return std::nullopt;
    }
    const auto whole = [&](double d) {
        return Variant(static_cast<std::int32_t>(std::min(std::max(d, least), most)));
    };
    return Bounds{whole(std::floor(*number)), whole(std::ceil(*number))};
}

// 0 and -0 are equal and have different keys.
std::optional<Bounds> doubleBounds(const Variant& value) {
    const auto number = numberOf(value);
    if (!number) {
        return std::nullopt;
    }
    const double low = *number == 0.0 ? -0.0 : *number;
    const double high = *number == 0.0 ? 0.0 : *number;
    return Bounds{low, high};
}

// The nearest single may lie on either side of a double.
std::optional<Bounds> singleBounds(const Variant& value) {
    const auto number = numberOf(value);
    constexpr float kMost = std::numeric_limits<float>::max();
    if (!number || std::fabs(*number) >= static_cast<double>(kMost)) {
        return std::nullopt;
    }
    const auto near = static_cast<float>(*number);
    return Bounds{static_cast<double>(std::nextafter(near, -kMost)),
                  static_cast<double>(std::nextafter(near, kMost))};
}

std::optional<DateTime> dateOf(const Variant& value) {
    constexpr double kMostDays = 3.0e6;  // beyond the year 9999
    if (const auto* date = value.get<DateTime>()) {
        return *date;
    }
    if (const auto* text = value.get<std::string>()) {
        try {
            return parseDateTime(text::trimBlanks(*text));
        } catch (const Error&) {
            return std::nullopt;
        }
    }
    const auto number = value.is<bool>() ? std::nullopt : numberOf(value);
    return number && std::fabs(*number) < kMostDays ? std::optional(DateTime(*number))
                                                    : std::nullopt;
}

// Dates compare by milliseconds, keys by the days as a number. Before the first day the fraction of
// a negative number counts forward, so that there the numbers of a day run backwards; and on the
// first day a time may be stored with either sign.
std::optional<Bounds> dateBounds(const Variant& value) {
    const auto date = dateOf(value);
    if (!date) {
        return std::nullopt;
    }
    constexpr std::int64_t kDay = 86'400'000;
    const auto low = DateTime::fromMilliseconds(date->milliseconds() - 1);
    const auto high = DateTime::fromMilliseconds(date->milliseconds() + 1);
    const double lowest = low.milliseconds() < kDay ? std::trunc(low.days()) - 1.0 : low.days();
    const double highest = high.milliseconds() < 0 ? std::trunc(high.days()) : high.days();
    return Bounds{DateTime(lowest), DateTime(highest)};
}

// Decimals compare as doubles, which know some 15 of their digits.
std::optional<Bounds> decimalBounds(const Variant& value, unsigned scale, double most) {
    const auto number = numberOf(value);
    if (!number || std::fabs(*number) > most) {
        return std::nullopt;
    }
    constexpr double kDigits = 1e-14;
    const double margin =
        std::fabs(*number) * kDigits + 2 * std::pow(10.0, -static_cast<double>(scale));
    const auto decimal = [&](double d) {
        std::array<char, 400> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), d,
                                       std::chars_format::fixed, static_cast<int>(scale))
                             .ptr;
        return Variant(std::string(text.data(), end));
    };
    return Bounds{decimal(*number - margin), decimal(*number + margin)};
}

std::optional<Bounds> flagBounds(const Variant& value) {
    const auto number = numberOf(value);
    if (!number || (*number != 0.0 && *number != -1.0)) {
        return std::nullopt;
    }
    return Bounds{*number != 0.0, *number != 0.0};
}

}  // namespace

bool hasNumbersOnly(const jet::Column& column) noexcept {
    return column.type != ColumnType::Single && column.type != ColumnType::Double;
}

std::optional<Bounds> equalBounds(const jet::Column& column, const Variant& value) {
    switch (column.type) {
        case ColumnType::Boolean:
            return flagBounds(value);
        case ColumnType::Guid:
            if (value.is<std::string>()) {
                return Bounds{value, value};
            }
            return std::nullopt;
        case ColumnType::Binary:
            if (value.is<Bytes>()) {
                return Bounds{value, value};
            }
            return std::nullopt;
        default:
            return rangeBounds(column, value);
    }
}

std::optional<Bounds> rangeBounds(const jet::Column& column, const Variant& value) {
    constexpr double kMostMoney = 9.0e14;
    constexpr double kMostNumeric = 1.0e15;
    switch (column.type) {
        case ColumnType::Byte:
            return wholeBounds(value, 0, 255);
        case ColumnType::Integer:
            return wholeBounds(value, std::numeric_limits<std::int16_t>::min(),
                               std::numeric_limits<std::int16_t>::max());
        case ColumnType::Long:
            return wholeBounds(value, std::numeric_limits<std::int32_t>::min(),
                               std::numeric_limits<std::int32_t>::max());
        case ColumnType::Single:
            return singleBounds(value);
        case ColumnType::Double:
            return doubleBounds(value);
        case ColumnType::Date:
            return dateBounds(value);
        case ColumnType::Money:
            return decimalBounds(value, 4, kMostMoney);
        case ColumnType::Numeric:
            return decimalBounds(value, column.scale, kMostNumeric);
        case ColumnType::Text:
            return textBounds(column, value);
        default:
            return std::nullopt;
    }
}

}  // namespace vl::sql
