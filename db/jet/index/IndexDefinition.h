// A tree of keys, as its table's definition describes it.
#pragma once

#include <vector>

#include "DataPage.h"

namespace vl::jet {

struct KeyColumn {
    std::size_t position = 0;  ///< in the table's `columns`
    Column column;
    bool descending = false;
};

/// A real index: several logical ones may share it.
struct IndexDefinition {
    std::vector<KeyColumn> columns;
    bool unique = false;
    /// Rows whose key columns are all null have no entry.
    bool ignoreNulls = false;
    bool required = false;
    PageNo root = 0;        ///< never changes
    RowPointer ownedPages;  ///< the map of the tree's pages, the root among them
};

}  // namespace vl::jet
