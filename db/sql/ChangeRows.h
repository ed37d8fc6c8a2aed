// INSERT, UPDATE and DELETE on any table.
#pragma once

#include "Scope.h"

namespace vl::sql {

// Each binds its statement to the table, and computes all that it needs before the first change:
// what a statement writes it does not read. Values get the type, range and length of their column.
// Only rows' identities are kept in memory, and what an INSERT has read. Each gives the number of
// rows, and throws as `execute`; what was changed before an error is for the caller to take back.

/// `rows` are those of the query of the statement, if it has one.
std::int64_t insertRows(Insert& statement, StoredTable& table, Result rows,
                        std::span<const Parameter> parameters);
std::int64_t updateRows(Update& statement, StoredTable& table,
                        std::span<const Parameter> parameters);
std::int64_t deleteRows(Delete& statement, StoredTable& table,
                        std::span<const Parameter> parameters);

}  // namespace vl::sql
