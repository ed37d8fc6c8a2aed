// Whether a table can be made as it is wanted.
#pragma once

#include <span>
#include <string_view>

#include "db/jet/define/NewTable.h"

namespace vl::jet {

/// What is in the file does not count. Throws `Error`, which names what is not allowed, as
/// `Database::createTable` does.
void checkNewTable(std::string_view name, std::span<const NewColumn> columns,
                   std::span<const NewIndex> indexes);

}  // namespace vl::jet
