// What a field of a row, a property of an event or an item of a collection can hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "base/DateTime.h"

namespace vl {

/// Base of everything that a `Variant` refers to instead of holding.
class Object {
public:
    virtual ~Object() = default;

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

struct Empty {
    friend bool operator==(Empty, Empty) = default;
};
struct Null {
    friend bool operator==(Null, Null) = default;
};
using Bytes = std::vector<std::byte>;
using ObjectRef = std::shared_ptr<Object>;

/// A value with its type. `Empty` is "nothing was ever put here", `Null` is a database's null.
/// Equality is of type and value: the text "1" is not the number 1, 1 is not 1.0.
class Variant {
public:
    using Value = std::variant<Empty, Null, bool, std::int32_t, std::int64_t, double, DateTime,
                               std::string, Bytes, ObjectRef>;

    Variant() = default;
    Variant(Null) : value_(Null{}) {}
    Variant(bool v) : value_(v) {}
    Variant(std::int32_t v) : value_(v) {}
    Variant(std::int64_t v) : value_(v) {}
    Variant(double v) : value_(v) {}
    Variant(DateTime v) : value_(v) {}
    Variant(std::string v) : value_(std::move(v)) {}
    Variant(std::string_view v) : value_(std::string(v)) {}
    Variant(const char* v) : value_(std::string(v)) {}
    Variant(Bytes v) : value_(std::move(v)) {}
    Variant(ObjectRef v) : value_(std::move(v)) {}
    template <class T>
    requires std::is_base_of_v<Object, T> Variant(std::shared_ptr<T> v)
        : value_(ObjectRef(std::move(v))) {}

    template <class T>
    bool is() const noexcept {
        return std::holds_alternative<T>(value_);
    }
    /// The value when it is of type `T`, else null.
    template <class T>
    const T* get() const noexcept {
        return std::get_if<T>(&value_);
    }
    bool isEmpty() const noexcept { return is<Empty>(); }
    bool isNull() const noexcept { return is<Null>(); }
    const Value& value() const noexcept { return value_; }

    friend bool operator==(const Variant&, const Variant&) = default;

    // Conversions, all in this one place. Each throws `Error` (`ErrNo::TypeMismatch`, or
    // `ErrNo::Overflow` for a number out of range) when the value has no such form. `Empty` is 0,
    // false and the empty text; `Null` converts to nothing.

    /// Numbers in decimal, "True"/"False", date-times as "yyyy-mm-dd[ hh:mm:ss]" (0 also).
    std::string toText() const;
    /// Texts that are a number as a whole; true is -1; a date-time gives its days.
    double toDouble() const;
    /// Rounded, halves to even.
    std::int32_t toInt32() const;
    std::int64_t toInt64() const;
    /// Numbers other than 0 are true; texts "True", "False" (any case) or a number.
    bool toBool() const;
    /// Numbers as days; texts "yyyy-mm-dd" with an optional " hh:mm[:ss]" (or "T" between).
    DateTime toDateTime() const;

private:
    Value value_;
};

/// Reads "yyyy-mm-dd", optionally followed by a blank or "T" and "hh:mm" or "hh:mm:ss". Throws
/// `Error` (`ErrNo::TypeMismatch`) for anything else, dates that do not exist included.
DateTime parseDateTime(std::string_view s);

/// "yyyy-mm-dd" when there is no time of day, else "yyyy-mm-dd hh:mm:ss".
std::string formatDateTime(DateTime d);

}  // namespace vl
