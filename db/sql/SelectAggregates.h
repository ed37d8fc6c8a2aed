// SELECT COUNT, MIN, MAX: one row over all that are found.
#pragma once

#include "Scope.h"
#include "db/sql/ScanMemory.h"

namespace vl::sql {

/// As `select`, for a statement with an aggregate in its list. WHERE is bound already. Throws
/// `Error` (`ErrNo::Syntax`) when not all items are aggregates, or with ORDER BY.
Result selectAggregates(const Select& statement, const StoredTable& table, const Scope& scope,
                        ScanMemory* memory);

}  // namespace vl::sql
