// SELECT over the rows of any source.
#pragma once

#include "Ast.h"
#include "RowSource.h"
#include "Sql.h"

namespace vl::sql {

/// Binds `statement` to `shape` and reads `rows` to their end (or to the TOP row where no order is
/// asked for). Throws as `execute`.
Result select(Select& statement, const TableShape& shape, RowSource& rows);

}  // namespace vl::sql
