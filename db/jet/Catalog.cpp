#include "Catalog.h"

#include <algorithm>

#include "SystemPages.h"
#include "TableDefinition.h"

namespace vl::jet {

namespace {

constexpr std::int32_t kTable = 1;

std::size_t position(const TableDefinition& table, std::string_view name, ColumnType type,
                     const Origin& origin) {
    const auto column =
        std::find_if(table.columns.begin(), table.columns.end(),
                     [&](const Column& c) { return c.name == name && c.type == type; });
    if (column == table.columns.end()) {
        origin.corrupt("the catalog has no column \"" + std::string(name) + "\"");
    }
    return static_cast<std::size_t>(column - table.columns.begin());
}

std::uint32_t numberOr0(const Variant& value) {
    const auto* number = value.get<std::int32_t>();
    return number ? static_cast<std::uint32_t>(*number) : 0;
}

}  // namespace

std::vector<TableInfo> readCatalog(PageFile& file) {
    const auto objects = std::make_shared<const TableDefinition>(
        readTableDefinition(file, kObjectsPage, "MSysObjects"));
    const Origin origin{file.name(), kObjectsPage};
    const std::size_t id = position(*objects, "Id", ColumnType::Long, origin);
    const std::size_t name = position(*objects, "Name", ColumnType::Text, origin);
    const std::size_t type = position(*objects, "Type", ColumnType::Integer, origin);
    const std::size_t flags = position(*objects, "Flags", ColumnType::Long, origin);

    std::vector<TableInfo> tables;
    RowCursor row(file, objects);
    while (row.next()) {
        if (row.value(type) != Variant(kTable)) {
            continue;
        }
        const Variant label = row.value(name);
        if (const auto* text = label.get<std::string>()) {
            const bool system = (numberOr0(row.value(flags)) & kSystemFlags) != 0;
            tables.push_back({*text, numberOr0(row.value(id)), system});
        }
    }
    return tables;
}

}  // namespace vl::jet
