#include <algorithm>
#include <array>

#include "Catalog.h"
#include "RowBatch.h"
#include "TablePlan.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "db/jet/copy/Copy.h"
#include "define/CatalogWriter.h"

namespace vl::jet {

namespace {

constexpr std::array<std::string_view, 4> kOwnTables = {"MSysObjects", "MSysACEs", "MSysQueries",
                                                        "MSysRelationships"};
constexpr std::int32_t kTable = 1;
constexpr std::int32_t kDatabase = 2;
constexpr std::int32_t kContainer = 3;

std::size_t positionOf(const Table& table, std::string_view name) {
    const auto& columns = table.columns();
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& c) { return c.name == name; });
    if (found == columns.end()) {
        throw Error(ErrNo::Corrupt,
                    table.name() + ": there is no column \"" + std::string(name) + "\"");
    }
    return static_cast<std::size_t>(found - columns.begin());
}

// What would be gone afterwards and is somebody's work; what the desktop product keeps for itself,
// and makes anew when it is gone, is only noted.
void lookAtOtherObjects(const Database& source, Findings& left) {
    const Table objects = source.table("MSysObjects");
    const std::size_t type = positionOf(objects, "Type");
    const std::size_t name = positionOf(objects, "Name");
    for (RowCursor row = objects.scan(); row.next();) {
        const Variant kind = row.value(type);
        const auto* number = kind.get<std::int32_t>();
        const bool kept = number != nullptr &&
                          (*number == kTable || *number == kDatabase || *number == kContainer);
        const std::string label = "\"" + row.value(name).toText() + "\"";
        if (!kept && number != nullptr && *number < 0) {
            left.add(row.id().page, label + " of the desktop product is left out");
        } else if (!kept) {
            throw Error(ErrNo::Unsupported,
                        source.name() + ": " + label + " is no table and cannot be copied");
        }
    }
    for (const TableInfo& info : source.tables()) {
        const bool own =
            std::find(kOwnTables.begin(), kOwnTables.end(), info.name) != kOwnTables.end();
        if (info.system && !own) {
            left.add(info.definitionPage,
                     "table \"" + info.name + "\" of the desktop product is left out");
        }
    }
}

}  // namespace

CopyReport copyTables(Database& source, Database& target) {
    Findings left(source.name());
    lookAtOtherObjects(source, left);
    CopyReport report;
    report.lost = left.take();
    for (const TableInfo& info : source.tables()) {
        if (info.system) {
            continue;
        }
        const TableDefinition definition =
            readTableDefinition(*source.file_, info.definitionPage, info.name);
        const TablePlan plan =
            planOf(definition, CatalogWriter(*source.file_).properties(info.definitionPage));
        target.createTable(info.name, plan.columns);
        RowBatch rows(target, target.table(info.name));
        std::vector<Variant> values(definition.columns.size());
        for (RowCursor row = source.table(info.name).scan(); row.next();) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i] = row.value(i);
            }
            rows.add(values);
            ++report.rows;
        }
        rows.finish();
        // With all rows there each index is made in its own order, and its pages get full.
        for (const NewIndex& index : plan.indexes) {
            target.createIndex(info.name, index);
        }
        Transaction change(target);
        finishTable(*target.file_, definitionPageOf(target, info.name), plan);
        change.commit();
        ++report.tables;
    }
    return report;
}

}  // namespace vl::jet
