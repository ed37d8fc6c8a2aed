// A column's bytes as a value.
#pragma once

#include <array>
#include <string_view>

#include "Origin.h"
#include "base/Variant.h"

namespace vl::jet {

/// The value of a column other than yes/no, memo and OLE. Throws `Error` (`ErrNo::Corrupt`) when
/// `bytes` has another size than the type, or a date is not a number.
/// Source: docs/jet4.md, "Values".
Variant decodeValue(const Column& column, ByteView bytes, const Origin& origin);

/// The value of a column of longs, and of dates. Throw as `decodeValue`.
std::int32_t longFrom(const Column& column, ByteView bytes, const Origin& origin);
DateTime dateFrom(const Column& column, ByteView bytes, const Origin& origin);

/// "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}".
std::string formatGuid(ByteView bytes);

/// The other way round; without braces too. Throws `Error` (`ErrNo::TypeMismatch`).
std::array<std::byte, 16> parseGuid(std::string_view text);

/// Money is kept as a whole number of ten-thousandths.
inline constexpr unsigned kMoneyDecimals = 4;

}  // namespace vl::jet
