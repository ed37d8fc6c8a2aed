// Tables that come, change and go.
#pragma once

#include <span>
#include <string_view>

#include "NewTable.h"
#include "PageFile.h"

namespace vl::jet {

/// Each is what `Database` offers under the same name, inside an open transaction.
void createTable(PageFile& file, std::string_view name, std::span<const NewColumn> columns,
                 std::span<const NewIndex> indexes);
void addColumn(PageFile& file, std::string_view table, const NewColumn& column);
void createIndex(PageFile& file, std::string_view table, const NewIndex& index);
void dropIndex(PageFile& file, std::string_view table, std::string_view name);
void dropTable(PageFile& file, std::string_view name);

}  // namespace vl::jet
