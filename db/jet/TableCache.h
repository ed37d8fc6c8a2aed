// What was read of the catalog and of tables' definitions.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "PageFile.h"
#include "TableDefinition.h"
#include "db/jet/Database.h"

namespace vl::jet {

/// Keeps what it has read until the file says that catalog or definitions may be others
/// (`PageFile::definitionsStamp`). Its methods are called while the file is read or changed
/// (`ReadGuard`, `Transaction`) and throw `Error`. `file` must outlive it.
class TableCache {
public:
    explicit TableCache(PageFile& file) : file_(file) {}

    /// Valid until the next call.
    const std::vector<TableInfo>& tables();
    /// The table of that name, without regard to case; null when there is none.
    std::shared_ptr<const TableDefinition> find(std::string_view name);

private:
    PageFile& file_;
    std::uint64_t stamp_ = 0;
    std::optional<std::vector<TableInfo>> tables_;
    std::map<PageNo, std::shared_ptr<const TableDefinition>> definitions_;
};

}  // namespace vl::jet
