// The content of a database, written anew.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "db/jet/check/Findings.h"

namespace vl::jet {

class Database;

struct CopyReport {
    std::uint32_t tables = 0;
    std::uint64_t rows = 0;
    std::vector<Finding> lost;  ///< what is not in the copy, and why
};

/// Writes the tables of `source`, their rows, indexes and properties into `target`, which has no
/// tables yet. Autonumbers go on where they are. Throws `Error`: `ErrNo::Unsupported`, before
/// anything is written, for a source that holds what cannot be made anew: queries, relationships,
/// linked tables; what reading and writing throw. `target` is then of no use. What the desktop
/// product keeps for itself is left out.
CopyReport copyTables(Database& source, Database& target);

/// The same with what can still be read of the file at `path`, however damaged. A value that cannot
/// be read becomes null; a row without a key that it needs, or with one that another row has, is
/// lost. Definitions that the catalog has lost are found page by page; these tables are named by
/// their page. Rows are taken from the pages that a table's map says are its own, or where the map
/// is lost from all pages that say so and are not free. Throws `Error`: `ErrNo::Format` for a file
/// of another kind, what the system refuses, what writing throws.
CopyReport salvage(const std::string& path, Database& target);

}  // namespace vl::jet
