// SELECT over the rows of any table.
#pragma once

#include "Scope.h"
#include "db/sql/ScanMemory.h"

namespace vl::sql {

/// Binds `statement` to the table and reads its rows to their end (or to the TOP row where no order
/// is asked for). With `take` rows go there one by one, and not into the result, where they need
/// not be known all before the first can be given. `memory` as in `findRows`. Throws as
/// `execute`.
Result select(Select& statement, const StoredTable& table, std::span<const Parameter> parameters,
              const RowTaker* take = nullptr, ScanMemory* memory = nullptr);

}  // namespace vl::sql
