// A table that is there, as one to be made.
#pragma once

#include "TableDefinition.h"
#include "db/jet/define/NewTable.h"
#include "define/Properties.h"

namespace vl::jet {

class Database;

struct TablePlan {
    std::vector<NewColumn> columns;
    std::vector<NewIndex> indexes;  ///< without those of relationships
    Properties properties;
    std::int32_t lastNumber = 0;  ///< of its autonumbers
};

/// Values are not bound by rules while they are copied: these come with the properties.
TablePlan planOf(const TableDefinition& table, Properties properties);

/// What `plan` has beside columns and indexes. `file` is open in a transaction.
void finishTable(PageFile& file, PageNo definition, const TablePlan& plan);

}  // namespace vl::jet
