// The content of a database, written anew.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "db/jet/File.h"
#include "db/jet/OpenOptions.h"
#include "db/jet/check/Findings.h"

namespace vl::jet {

class Database;

struct CopyReport {
    std::uint32_t tables = 0;
    std::uint64_t rows = 0;
    std::vector<Finding> lost;  ///< what is not in the copy, and why
};

/// Writes the tables of `source`, their rows, indexes and properties into `target`, which has no
/// tables yet, and queries, linked tables, relationships and the password. Autonumbers go on where
/// they are. All of it is as it is at one moment.
/// Throws `Error`: `ErrNo::Unsupported`, before anything is written, for a source with objects of
/// other kinds; `ErrNo::Locked` when another engine has written meanwhile; what reading and writing
/// throw. `target` is then of no use. What the desktop
/// product keeps for itself is left out.
CopyReport copyTables(Database& source, Database& target);

/// The same with what can still be read of the file at `path`, however damaged. A value that cannot
/// be read, or that its column cannot hold, becomes null. An index that the rows are against (two
/// with the same values, or null where a value is required) is made a plain one. Definitions that
/// the catalog has lost are found page by page; these tables are named by their page. Rows are
/// taken from the pages that a table's map says are its own, or where the map is lost from all
/// pages that say so and are not free. Queries, linked tables and relationships are lost. The file
/// stays as it is; what it held before a change that was broken off is read from its journal, and
/// writers are kept out meanwhile. Throws `Error`: `ErrNo::Format` for a file of another kind,
/// `ErrNo::Locked` when somebody writes for longer than we wait, what the system refuses, what
/// writing throws.
CopyReport salvage(const std::string& path, Database& target, const OpenOptions& options = {});
/// The same of an open file that nobody else has; `name` stands in the texts of errors.
CopyReport salvage(std::unique_ptr<File> source, const std::string& name, Database& target);

}  // namespace vl::jet
