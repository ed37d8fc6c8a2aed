// What an UPDATE would write, over the rows of any source.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "Ast.h"
#include "RowSource.h"

namespace vl::sql {

/// New values of one row, by column.
using Changes = std::vector<std::pair<std::size_t, Variant>>;

/// Binds `statement` to `shape`, reads `rows` to their end and calls `found` for each row that
/// WHERE keeps, while it is the current one. Values are computed from the row as it is and have
/// the type, range and length of their column. Writes nothing.
/// Throws `Error` as `execute`; also where a column is set twice or fills itself.
void findChanges(Update& statement, const TableShape& shape, RowSource& rows,
                 const std::function<void(Changes)>& found);

}  // namespace vl::sql
