// What tables, columns and indexes may be.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "TableDefinition.h"
#include "db/jet/define/TableRules.h"

namespace vl::jet {

/// Each throws `Error` for what is not allowed, and names it: `ErrNo::Syntax` for a name that is
/// none, `ErrNo::Exists` for one that is taken, `ErrNo::NotFound` for a column that is not there,
/// `ErrNo::Overflow` for too many or too long, `ErrNo::Unsupported` for a type that cannot be
/// made, or not that way.

/// Of a text, in UTF-16 units, and of bytes.
inline constexpr std::uint16_t kLongestField = 255;
/// Of a numeric.
inline constexpr std::uint8_t kMostDigits = 28;

/// Whether a numeric can have so many digits, 0 for as many as usual, and so many of them behind
/// the point.
bool isNumeric(std::uint8_t precision, std::uint8_t scale) noexcept;

/// 1 to 64 UTF-16 units without . ! ` [ ] and control characters, not beginning with a blank.
void checkName(std::string_view what, std::string_view name);

/// One more column of `table`.
void checkNewColumn(const TableDefinition& table, const NewColumn& column);

/// One more index of `table`.
void checkNewIndex(const TableDefinition& table, const NewIndex& index);

}  // namespace vl::jet
