// Which rows a condition can be true of, by an index where one helps.
#pragma once

#include <optional>

#include "Ast.h"
#include "RowSource.h"
#include "db/sql/ScanMemory.h"

namespace vl::sql {

/// The parts of one index that hold every row for which `where`, bound to the shape, is true; rows
/// for which it is not may be among them. Nothing where no index helps. Empty: no row can be.
std::optional<std::vector<IndexRange>> planRanges(const Expr* where, const TableShape& shape);

/// All rows for which `where` can be true, and perhaps others, in the order of a scan. Goes by an
/// index where one helps. One whose pages contradict themselves is passed over, which the trace
/// tells: the rows are then those of a scan. That an otherwise sound index lacks entries is not
/// found out here, but by a check of the file. Where no index helps by `memory`, which must have
/// been asked for this statement, or through all rows. Throws `Error` where the system refuses.
std::unique_ptr<RowSource> findRows(const StoredTable& table, const Expr* where,
                                    ScanMemory* memory = nullptr);

}  // namespace vl::sql
