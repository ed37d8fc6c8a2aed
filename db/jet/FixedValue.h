// A value as the bytes of a fixed-size field.
#pragma once

#include "base/DateTime.h"
#include "base/Variant.h"
#include "db/jet/Types.h"

namespace vl::jet {

/// What becomes of the parts of a second in a date.
enum class Dates {
    WholeSeconds,  ///< they are cut off
    AsTheyAre,     ///< every bit stays
};

/// `field` has the column's length and receives the value, converted to the column's type: numbers
/// rounded (halves to even), dates as `dates` says, money and numeric kept exact, text padded
/// with blanks. Throws `Error`: `ErrNo::TypeMismatch` when the value (or `Null`) has no such form,
/// `ErrNo::Overflow` when it does not fit; `field` then holds anything.
/// `column` is a number, money, a date, a GUID, or a text of fixed length. Source: docs/jet4.md,
/// "Values".
void encodeFixed(const Column& column, const Variant& value, std::span<std::byte> field,
                 Dates dates = Dates::WholeSeconds);

}  // namespace vl::jet
