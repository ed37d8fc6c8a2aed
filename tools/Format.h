// How remindb shows what it found: one JSON object a line, or text to read.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "db/jet/Database.h"
#include "db/sql/Sql.h"

namespace vl::tools {

using Json = nlohmann::ordered_json;

/// "short_date_time", "long", "memo" ...
std::string_view typeName(jet::ColumnType type);

/// Numbers as they are; decimals and GUIDs as texts; dates "yyyy-mm-ddThh:mm:ss", rounded to the
/// second; bytes "hex:0a1b"; yes/no as true and false; null as null.
Json valueJson(const Variant& value, jet::ColumnType type);

/// Name, number of rows, columns, indexes.
Json tableJson(const jet::Table& table);

/// On one line, characters beyond ASCII as they are; what is no character becomes U+FFFD.
std::string lineOf(const Json& json);

/// As `valueJson`, but texts without quotes: tabs, line ends and backslashes in them become
/// "\t", "\n", "\r", "\\". Null is "\N", which no text is.
std::string valueText(const Variant& value, jet::ColumnType type);

/// As `tableJson`, over several lines.
std::string tableText(const jet::Table& table);

}  // namespace vl::tools
