// The table of all objects, MSysObjects.
#pragma once

#include <vector>

#include "PageFile.h"
#include "db/jet/Database.h"

namespace vl::jet {

/// The tables stored in this file, in the catalog's order; linked ones are stored elsewhere.
/// Source: docs/jet4.md, "Catalog".
std::vector<TableInfo> readCatalog(PageFile& file);

}  // namespace vl::jet
