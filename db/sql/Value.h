// What operators do with values. Null is "unknown" and carries through everything but `&`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Lexer.h"
#include "base/Variant.h"
#include "db/jet/Types.h"

namespace vl::sql {

/// How two texts compare. `General` is the order of all files of this generation: without regard to
/// case, width and blanks at the end; hyphens and apostrophes count last, accents before them.
/// `Folded`, for columns that name another language's order, goes by folded characters, blanks at
/// the end left out.
enum class TextOrder : std::uint8_t { General, Folded };

/// Of a column's texts; `General` for columns of other types.
TextOrder textOrderOf(const jet::Column& column) noexcept;

/// Whether the column's values are decimal texts.
bool isDecimal(const jet::Column& column) noexcept;

/// Negative, 0 or positive.
int compareText(std::string_view a, std::string_view b, TextOrder textOrder);

/// Negative, 0 or positive; nothing when either is null. Numbers and yes/no values (-1, 0) compare
/// with each other, dates by whole milliseconds and with numbers as days. A text compares with a
/// number or a date when it reads as one.
/// Throws `Error` (`ErrNo::TypeMismatch`, naming `at`) when the two do not compare.
std::optional<int> compare(const Variant& a, const Variant& b, Position at,
                           TextOrder textOrder = TextOrder::General);

/// A total order of one column's values, for sorting and for telling them apart: null first, and
/// what is no number before all numbers. `a` and `b` are of one type, or null.
int order(const Variant& a, const Variant& b, TextOrder textOrder = TextOrder::General);

/// Nothing for null; numbers other than 0 are true. Throws `Error` (`ErrNo::TypeMismatch`).
std::optional<bool> truth(const Variant& value, Position at);

/// The text of a value as `&` and LIKE see it: yes/no as "-1" and "0". Not for null.
/// Throws `Error` (`ErrNo::TypeMismatch`) for bytes.
std::string textOf(const Variant& value, Position at);

/// `a` and `b` may be null; two nulls give null, one counts as the empty text.
Variant concatenate(const Variant& a, const Variant& b, Position at);

enum class Arithmetic : char {
    Add = '+',
    Subtract = '-',
    Multiply = '*',
    Divide = '/',
    IntegerDivide = '\\',
    Modulo = '%',
    Power = '^'
};

/// Whole numbers stay whole (except in a division) while they fit into 32 bits. Two texts are
/// joined by `Add`; a text beside a number is read as one. A date plus or minus days is a date, a
/// date minus a date a number of days. Integer division and remainder round both sides first
/// (halves to even) and give whole numbers; the remainder has the sign of the left side.
/// Throws `Error`: `ErrNo::TypeMismatch`, or `ErrNo::Overflow` for a division by zero and results
/// that no double or date can hold.
Variant calculate(Arithmetic op, const Variant& a, const Variant& b, Position at);
Variant negate(const Variant& value, Position at);

/// Money and numeric columns hold decimal texts: such a text as a double, which is exact to 15
/// digits; anything else as it is.
Variant fromDecimal(Variant value);

/// `value` as `column` holds it, so that a write cannot fail for its type, range or length. Null is
/// false in a yes/no column.
/// Throws `Error` (`ErrNo::TypeMismatch`, `ErrNo::Overflow`, naming `at` and the column).
Variant convertFor(const jet::Column& column, const Variant& value, Position at);

}  // namespace vl::sql
