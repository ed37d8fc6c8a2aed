// Another reader of our files: the programs of the package mdbtools.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace vl::test {

/// A table's rows as `mdb-json` prints them, dates as "yyyy-mm-dd hh:mm:ss"; null values are left
/// out. A failure when the program is not there or ends badly.
std::vector<nlohmann::json> mdbRows(const std::filesystem::path& file, const std::string& table);

}  // namespace vl::test
