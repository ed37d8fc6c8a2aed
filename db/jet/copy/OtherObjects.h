// What a database holds beside tables: queries, linked tables, relationships.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "PageFile.h"
#include "base/Variant.h"
#include "check/Findings.h"

namespace vl::jet {

class Table;

/// A row of the catalog, for an object that is no table.
struct OtherObject {
    std::int32_t id = 0;
    std::int32_t type = 0;
    std::string name;
    std::vector<std::pair<std::string, Variant>> values;  ///< of all columns, by their names
};

/// On disk.
inline constexpr std::int32_t kQueryType = 5;
inline constexpr std::int32_t kRelationshipType = 8;

/// Those that are somebody's work; what the desktop product keeps for itself, and makes anew when
/// it is gone, is only noted in `left`. Throws `Error`: `ErrNo::Unsupported` for an object of a
/// kind that is not known; `ErrNo::Corrupt` for a catalog without its columns.
std::vector<OtherObject> otherObjects(const PageFile& file, const Table& catalog, Findings& left);

/// Writes the objects into the catalog of `target`, and the rows that belong to them: of queries
/// what they ask, of relationships the columns on their two sides. Relationships of tables that are
/// not among `tables`, folded, are left out and noted. `target` is in a transaction.
/// Source: docs/jet4.md, "Catalog".
void addObjects(PageFile& source, PageFile& target, const std::vector<OtherObject>& objects,
                const std::set<std::string>& tables, Findings& left);

}  // namespace vl::jet
