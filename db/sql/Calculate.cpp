// What the operators of arithmetic give.
#include <cmath>
#include <limits>

#include "Numbers.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

constexpr double kDayMs = 86'400'000.0;

Variant checked(double value, Position at) {
    if (!std::isfinite(value)) {
        fail(ErrNo::Overflow, at, "the result is too large for a number");
    }
    return value;
}

Variant shifted(DateTime date, double days, Position at) {
    static const DateTime kFirst = DateTime::fromCivil(100, 1, 1);
    static const DateTime kLast = DateTime::fromCivil(9999, 12, 31, 23, 59, 59);
    constexpr double kMostDays = 1.0e7;
    if (std::fabs(days) < kMostDays) {
        const auto sum =
            DateTime::fromMilliseconds(date.milliseconds() + std::llround(days * kDayMs));
        if (sum >= kFirst && sum <= kLast) {
            return sum;
        }
    }
    fail(ErrNo::Overflow, at, "the result is no date between the years 100 and 9999");
}

std::optional<Variant> calculateDates(Arithmetic op, const Variant& a, const Variant& b,
                                      Position at) {
    const auto* left = a.get<DateTime>();
    const auto* right = b.get<DateTime>();
    if (op == Arithmetic::Subtract && left != nullptr) {
        if (right != nullptr) {
            return static_cast<double>(left->milliseconds() - right->milliseconds()) / kDayMs;
        }
        return shifted(*left, -numberOf(b, at, "number"), at);
    }
    if (op == Arithmetic::Add && (left == nullptr) != (right == nullptr)) {
        return left != nullptr ? shifted(*left, numberOf(b, at, "number"), at)
                               : shifted(*right, numberOf(a, at, "number"), at);
    }
    return std::nullopt;  // nothing that a plain number would not do
}

std::optional<Variant> calculateWhole(Arithmetic op, std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    switch (op) {
        case Arithmetic::Add:
            result = a + b;
            break;
        case Arithmetic::Subtract:
            result = a - b;
            break;
        case Arithmetic::Multiply:
            result = a * b;
            break;
        default:
            return std::nullopt;
    }
    if (result < std::numeric_limits<std::int32_t>::min() ||
        result > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(result);
}

[[noreturn]] void failDivision(Position at) { fail(ErrNo::Overflow, at, "division by zero"); }

std::int64_t rounded(const Variant& value, Position at) {
    const double number = text::roundHalfEven(numberOf(value, at, "number"));
    if (!(number >= std::numeric_limits<std::int32_t>::min() &&
          number <= std::numeric_limits<std::int32_t>::max())) {
        fail(ErrNo::Overflow, at, text::fromNumber(number) + " is too large for a whole number");
    }
    return static_cast<std::int64_t>(number);
}

Variant divideWhole(Arithmetic op, const Variant& a, const Variant& b, Position at) {
    const std::int64_t left = rounded(a, at);
    const std::int64_t right = rounded(b, at);
    if (right == 0) {
        failDivision(at);
    }
    const std::int64_t result = op == Arithmetic::Modulo ? left % right : left / right;
    if (result > std::numeric_limits<std::int32_t>::max()) {
        fail(ErrNo::Overflow, at, "the result is too large for a whole number");
    }
    return static_cast<std::int32_t>(result);
}

Variant power(double base, double exponent, Position at) {
    const double result = std::pow(base, exponent);
    if (std::isnan(result)) {
        fail(ErrNo::Overflow, at, "a root of a negative number is no number");
    }
    return checked(result, at);
}

}  // namespace

Variant calculate(Arithmetic op, const Variant& a, const Variant& b, Position at) {
    if (a.isNull() || b.isNull()) {
        return Null{};
    }
    if (op == Arithmetic::Add && a.is<std::string>() && b.is<std::string>()) {
        return *a.get<std::string>() + *b.get<std::string>();
    }
    if (const auto dates = calculateDates(op, a, b, at)) {
        return *dates;
    }
    if (op == Arithmetic::IntegerDivide || op == Arithmetic::Modulo) {
        return divideWhole(op, a, b, at);
    }
    if (isWhole(a) && isWhole(b)) {
        if (const auto result = calculateWhole(op, whole(a), whole(b))) {
            return *result;
        }
    }
    const double left = numberOf(a, at, "number");
    const double right = numberOf(b, at, "number");
    switch (op) {
        case Arithmetic::Add:
            return checked(left + right, at);
        case Arithmetic::Subtract:
            return checked(left - right, at);
        case Arithmetic::Multiply:
            return checked(left * right, at);
        case Arithmetic::Power:
            return power(left, right, at);
        default:
            break;
    }
    if (right == 0.0) {
        failDivision(at);
    }
    return checked(left / right, at);
}

Variant negate(const Variant& value, Position at) {
    return calculate(Arithmetic::Subtract, Variant(0), value, at);
}

}  // namespace vl::sql
