// The indexes by which two tables are related.
#pragma once

#include <map>

#include "PageFile.h"

namespace vl::jet {

/// Gives the tables of `target` the indexes of relationships that those of `source` have: each is
/// a pair, one in either table, and they name each other. `pages` says where the definition of a
/// table in `source` is in `target`; pairs of which one table is not there are left out. `target`
/// is in a transaction. Costs a tree of keys where no other index has the same.
/// Source: docs/jet4.md, "Relationships".
void copyRelationships(PageFile& source, PageFile& target, const std::map<PageNo, PageNo>& pages);

}  // namespace vl::jet
