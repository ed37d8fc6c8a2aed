#include "base/Variant.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

template <class... F>
struct Overloaded : F... {
    using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

[[noreturn]] void mismatch(const char* from, const char* to) {
    throw Error(ErrNo::TypeMismatch, std::string(from) + " has no " + to + " form");
}

const char* nameOf(const Variant& v) noexcept {
    static constexpr std::array<const char*, 10> kNames = {
        "empty",  "null",   "a Boolean", "a number", "a number",
        "number", "a date", "a text",    "bytes",    "an object"};
    return kNames[v.value().index()];
}

// Digits only, all of them: "12" of 2 digits. -1 when it is anything else.
int digits(std::string_view s) noexcept {
    int n = 0;
    for (const char c : s) {
        if (c < '0' || c > '9') {
            return -1;
        }
        n = n * 10 + (c - '0');
    }
    return s.empty() ? -1 : n;
}

}  // namespace

std::string Variant::toText() const {
    return std::visit(
        Overloaded{[](Empty) { return std::string(); },
                   [](bool v) { return std::string(v ? "True" : "False"); },
                   [](std::int32_t v) { return std::to_string(v); },
                   [](std::int64_t v) { return std::to_string(v); },
                   [](double v) { return text::fromNumber(v); },
                   [](DateTime v) { return formatDateTime(v); },
                   [](const std::string& v) { return v; },
                   [this](const auto&) -> std::string { mismatch(nameOf(*this), "text"); }},
        value_);
}

double Variant::toDouble() const {
    return std::visit(
        Overloaded{[](Empty) { return 0.0; }, [](bool v) { return v ? -1.0 : 0.0; },
                   [](std::int32_t v) { return static_cast<double>(v); },
                   [](std::int64_t v) { return static_cast<double>(v); },
                   [](double v) { return v; }, [](DateTime v) { return v.days(); },
                   [](const std::string& v) {
                       const auto n = text::number(v);
                       if (!n) {
                           throw Error(ErrNo::TypeMismatch, "\"" + v + "\" is no number");
                       }
                       return *n;
                   },
                   [this](const auto&) -> double { mismatch(nameOf(*this), "numeric"); }},
        value_);
}

std::int32_t Variant::toInt32() const { return text::toInt32(toDouble()); }

std::int64_t Variant::toInt64() const {
    if (const auto* v = get<std::int64_t>()) {
        return *v;
    }
    if (const auto* v = get<std::string>()) {
        std::int64_t whole = 0;  // all 64 bits of it, of which a double has 53
        const char* end = v->data() + v->size();
        const auto result = std::from_chars(v->data(), end, whole);
        if (result.ec == std::errc() && result.ptr == end) {
            return whole;
        }
    }
    const double rounded = text::roundHalfEven(toDouble());
    if (!(rounded >= -9223372036854775808.0 && rounded < 9223372036854775808.0)) {
        throw Error(ErrNo::Overflow, text::fromNumber(rounded) + " does not fit into 64 bits");
    }
    return static_cast<std::int64_t>(rounded);
}

bool Variant::toBool() const {
    if (const auto* v = get<std::string>()) {
        if (text::equalsNoCase(*v, "True")) {
            return true;
        }
        if (text::equalsNoCase(*v, "False")) {
            return false;
        }
    }
    return toDouble() != 0.0;
}

DateTime Variant::toDateTime() const {
    if (const auto* v = get<DateTime>()) {
        return *v;
    }
    if (const auto* v = get<std::string>()) {
        return parseDateTime(*v);
    }
    return DateTime(toDouble());
}

DateTime parseDateTime(std::string_view s) {
    const auto fail = [&]() -> DateTime {
        throw Error(ErrNo::TypeMismatch, "\"" + std::string(s) + "\" is no date");
    };
    const auto part = [&](std::size_t at, std::size_t n) {
        return at + n <= s.size() ? digits(s.substr(at, n)) : -1;
    };
    const int year = part(0, 4);
    const int month = part(5, 2);
    const int day = part(8, 2);
    if (year < 0 || month < 1 || month > 12 || day < 1 || s[4] != '-' || s[7] != '-' ||
        civilFromDays(daysFromCivil(year, month, day)).day != day) {
        return fail();
    }
    if (s.size() == 10) {
        return DateTime::fromCivil(year, month, day);
    }
    const int hour = part(11, 2);
    const int minute = part(14, 2);
    const int second = s.size() > 16 ? part(17, 2) : 0;
    const bool shape = (s[10] == ' ' || s[10] == 'T') && (s.size() == 16 || s.size() == 19);
    if (!shape || s[13] != ':' || (s.size() == 19 && s[16] != ':') || hour < 0 || hour > 23 ||
        minute < 0 || minute > 59 || second < 0 || second > 59) {
        return fail();
    }
    return DateTime::fromCivil(year, month, day, hour, minute, second);
}

std::string formatDateTime(DateTime d) {
    const Civil c = d.civil();
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", c.year, c.month, c.day);
    std::string out = buffer.data();
    if (d.hasTime()) {
        std::snprintf(buffer.data(), buffer.size(), " %02d:%02d:%02d", c.hour, c.minute, c.second);
        out += buffer.data();
    }
    return out;
}

}  // namespace vl
