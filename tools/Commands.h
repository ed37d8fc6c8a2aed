// The commands of remindb.
#pragma once

#include <iosfwd>
#include <string>

namespace vl::tools {

/// The user tables of `file`: columns, indexes, row counts. Throws `Error`.
void tables(const std::string& file, bool json, std::ostream& out);

/// The rows of a query, or the number of rows that a change touched. The file is opened for
/// writing only when the statement writes. Throws `Error`.
void sql(const std::string& file, const std::string& statement, bool json, std::ostream& out);

}  // namespace vl::tools
