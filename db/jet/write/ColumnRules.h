// What a table's properties demand of the values in its columns.
#pragma once

#include <vector>

#include "TableDefinition.h"

namespace vl::jet {

/// By position in the table's `columns`. Source: docs/jet4.md, "Properties".
struct ColumnRules {
    std::vector<bool> required;  ///< no null
    std::vector<bool> noEmpty;   ///< no empty text

    /// Costs finding the table in the catalog. Tables of the engine's own have no such rules.
    /// Throws `Error` (`ErrNo::Corrupt`) when the catalog's properties cannot be read.
    static ColumnRules load(PageFile& file, const TableDefinition& table);
};

}  // namespace vl::jet
