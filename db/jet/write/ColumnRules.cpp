#include "ColumnRules.h"

#include "Bytes.h"
#include "define/CatalogWriter.h"
#include "define/DefinitionBlocks.h"

namespace vl::jet {

ColumnRules ColumnRules::load(PageFile& file, const TableDefinition& table) {
    ColumnRules rules{std::vector<bool>(table.columns.size()),
                      std::vector<bool>(table.columns.size())};
    if (u8(table.bytes, kDefinitionKindAt) == kSystemTable) {
        return rules;
    }
    const Properties properties = CatalogWriter(file).properties(table.page);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const bool isText = column.type == ColumnType::Text || column.type == ColumnType::Memo;
        rules.required[i] = properties.flag(column.name, kRequired, false);
        rules.noEmpty[i] = isText && !properties.flag(column.name, kAllowZeroLength, true);
    }
    return rules;
}

}  // namespace vl::jet
