#include "Value.h"

#include <algorithm>
#include <cmath>

#include "Numbers.h"
#include "base/Text.h"
#include "db/jet/index/TextKey.h"

namespace vl::sql {

namespace {

const char* kindOf(const Variant& v) noexcept {
    if (v.is<std::string>()) {
        return "a text";
    }
    if (v.is<DateTime>()) {
        return "a date";
    }
    if (v.is<bool>()) {
        return "a yes/no value";
    }
    if (v.is<Bytes>()) {
        return "bytes";
    }
    return v.isNull() ? "null" : "a number";
}

[[noreturn]] void mismatch(Position at, const std::string& what) {
    fail(ErrNo::TypeMismatch, at, "data type mismatch: " + what);
}

template <class T>
int sign(T a, T b) noexcept {
    return a < b ? -1 : (b < a ? 1 : 0);
}

// Not-a-number comes before all numbers and equals itself: sorting needs a total order.
int compareDoubles(double a, double b) noexcept {
    if (std::isnan(a) || std::isnan(b)) {
        return sign(std::isnan(a) ? 0 : 1, std::isnan(b) ? 0 : 1);
    }
    return sign(a, b);
}

DateTime dateOf(const Variant& v, Position at) {
    if (const auto* text = v.get<std::string>()) {
        if (const auto number = text::number(*text)) {
            return DateTime(*number);
        }
        try {
            return parseDateTime(text::trimBlanks(*text));
        } catch (const Error& e) {
            mismatch(at, std::string("expected a date, ") + e.what());
        }
    }
    return DateTime(numberOf(v, at, "date"));
}

// A text beside a yes/no value may say so in words.
double flagOrNumber(const Variant& v, Position at) {
    const auto* text = v.get<std::string>();
    if (text != nullptr && text::equalsNoCase(*text, "True")) {
        return -1.0;
    }
    if (text != nullptr && text::equalsNoCase(*text, "False")) {
        return 0.0;
    }
    return numberOf(v, at, "number");
}

int compareBytes(const Bytes& a, const Bytes& b) noexcept {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end())   ? -1
           : std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end()) ? 1
                                                                                  : 0;
}

}  // namespace

double numberOf(const Variant& v, Position at, const char* wanted) {
    if (v.is<Bytes>()) {
        mismatch(at, std::string("bytes are no ") + wanted);
    }
    try {
        return v.toDouble();
    } catch (const Error& e) {
        mismatch(at, std::string("expected a ") + wanted + ", " + e.what());
    }
}

TextOrder textOrderOf(const jet::Column& column) noexcept {
    const bool isText =
        column.type == jet::ColumnType::Text || column.type == jet::ColumnType::Memo;
    return isText && column.sortOrder != jet::kGeneralOrder ? TextOrder::Folded
                                                            : TextOrder::General;
}

bool isDecimal(const jet::Column& column) noexcept {
    return column.type == jet::ColumnType::Money || column.type == jet::ColumnType::Numeric;
}

int compareText(std::string_view a, std::string_view b, TextOrder textOrder) {
    if (textOrder == TextOrder::General) {
        return jet::compareText(a, b);
    }
    const auto withoutBlanks = [](std::string_view s) {
        return s.substr(0, s.find_last_not_of(' ') + 1);
    };
    return text::compareNoCase(withoutBlanks(a), withoutBlanks(b));
}

std::optional<int> compare(const Variant& a, const Variant& b, Position at, TextOrder textOrder) {
    if (a.isNull() || b.isNull()) {
        return std::nullopt;
    }
    const auto* textA = a.get<std::string>();
    const auto* textB = b.get<std::string>();
    if (textA != nullptr && textB != nullptr) {
        return compareText(*textA, *textB, textOrder);
    }
    if (a.is<Bytes>() && b.is<Bytes>()) {
        return compareBytes(*a.get<Bytes>(), *b.get<Bytes>());
    }
    if (a.is<Bytes>() || b.is<Bytes>()) {
        mismatch(at, std::string(kindOf(a)) + " does not compare with " + kindOf(b));
    }
    if (a.is<DateTime>() || b.is<DateTime>()) {
        return sign(dateOf(a, at).milliseconds(), dateOf(b, at).milliseconds());
    }
    if (a.is<bool>() || b.is<bool>()) {
        return compareDoubles(flagOrNumber(a, at), flagOrNumber(b, at));
    }
    if (isWhole(a) && isWhole(b)) {
        return sign(whole(a), whole(b));
    }
    return compareDoubles(numberOf(a, at, "number"), numberOf(b, at, "number"));
}

int order(const Variant& a, const Variant& b, TextOrder textOrder) {
    if (a.isNull() || b.isNull()) {
        return sign(a.isNull() ? 0 : 1, b.isNull() ? 0 : 1);
    }
    return compare(a, b, {}, textOrder).value_or(0);
}

std::optional<bool> truth(const Variant& value, Position at) {
    if (value.isNull()) {
        return std::nullopt;
    }
    return flagOrNumber(value, at) != 0.0;
}

std::string textOf(const Variant& value, Position at) {
    if (value.is<Bytes>()) {
        mismatch(at, "bytes are no text");
    }
    return value.is<bool>() ? std::to_string(whole(value)) : value.toText();
}

Variant concatenate(const Variant& a, const Variant& b, Position at) {
    if (a.isNull() && b.isNull()) {
        return Null{};
    }
    const auto part = [&](const Variant& v) { return v.isNull() ? std::string() : textOf(v, at); };
    return part(a) + part(b);
}

Variant fromDecimal(Variant value) {
    if (const auto* decimal = value.get<std::string>()) {
        return text::number(*decimal).value_or(0.0);
    }
    return value;
}

}  // namespace vl::sql
