#include "db/jet/Table.h"

#include "TableDefinition.h"

namespace vl::jet {

Table::Table(PageFile& file, std::shared_ptr<const TableDefinition> definition)
    : file_(&file), definition_(std::move(definition)) {}

const std::string& Table::name() const noexcept { return definition_->name; }
const std::vector<Column>& Table::columns() const noexcept { return definition_->columns; }
const std::vector<Index>& Table::indexes() const noexcept { return definition_->indexes; }
std::uint32_t Table::rowCount() const noexcept { return definition_->rowCount; }

RowCursor Table::scan() const { return {*file_, definition_}; }

}  // namespace vl::jet
