// Whether the catalog and the file's tables name each other.
#pragma once

#include <vector>

#include "Claims.h"
#include "db/jet/Database.h"

namespace vl::jet {

/// `tables` are those that the catalog names, and `claims` has their pages. Finds definitions of
/// tables that no row of the catalog names, and which of the objects that every file has are not
/// in it. Costs a look at every page that nobody has and that is not free.
/// Source: docs/jet4.md, "Catalog".
void checkCatalog(PageFile& file, const std::vector<TableInfo>& tables, const Claims& claims,
                  Findings& findings);

}  // namespace vl::jet
