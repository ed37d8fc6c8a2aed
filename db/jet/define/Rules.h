// What tables, columns and indexes may be.
#pragma once

#include <span>
#include <string_view>

#include "TableDefinition.h"
#include "db/jet/define/TableRules.h"

namespace vl::jet {

/// Each throws `Error` for what is not allowed, and names it: `ErrNo::Syntax` for a name that is
/// none, `ErrNo::Exists` for one that is taken, `ErrNo::NotFound` for a column that is not there,
/// `ErrNo::Overflow` for too many or too long, `ErrNo::Unsupported` for a type that cannot be
/// made, or not that way.

/// 1 to 64 UTF-16 units without . ! ` [ ] and control characters, not beginning with a blank.
void checkName(std::string_view what, std::string_view name);

/// One more column of `table`.
void checkNewColumn(const TableDefinition& table, const NewColumn& column);

/// One more index of `table`.
void checkNewIndex(const TableDefinition& table, const NewIndex& index);

}  // namespace vl::jet
