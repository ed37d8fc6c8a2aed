#include "TablePlan.h"

#include "Bytes.h"
#include "define/CatalogWriter.h"
#include "write/Counters.h"

namespace vl::jet {

namespace {

constexpr std::size_t kLastNumberAt = 0x14;

NewColumn columnOf(const Column& column) {
    NewColumn made;
    made.name = column.name;
    made.type = column.type;
    if (column.type == ColumnType::Text) {
        made.length = static_cast<std::uint16_t>(column.length / 2);
    } else if (column.type == ColumnType::Binary) {
        made.length = column.length;
    }
    made.autoNumber = column.autoNumber && column.type == ColumnType::Long;
    made.precision = column.precision;
    made.scale = column.scale;
    return made;
}

}  // namespace

TablePlan planOf(const TableDefinition& table, Properties properties) {
    TablePlan plan;
    for (const Column& column : table.columns) {
        plan.columns.push_back(columnOf(column));
    }
    for (const Index& index : table.indexes) {
        if (!index.foreign) {
            plan.indexes.push_back({index.name, index.primary, index.unique, index.ignoreNulls,
                                    index.required, index.columns});
        }
    }
    plan.properties = std::move(properties);
    plan.lastNumber = static_cast<std::int32_t>(u32(table.bytes, kLastNumberAt));
    return plan;
}

void finishTable(PageFile& file, PageNo definition, const TablePlan& plan) {
    if (!plan.properties.empty()) {
        CatalogWriter(file).noteChange(definition, &plan.properties);
    }
    Counters counters(file, definition);
    counters.noteNumber(plan.lastNumber);
    counters.write();
}

}  // namespace vl::jet
