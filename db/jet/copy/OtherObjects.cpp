#include "OtherObjects.h"

#include <algorithm>
#include <array>
#include <memory>

#include "TableDefinition.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/Table.h"
#include "define/CatalogWriter.h"
#include "define/FirstPages.h"

namespace vl::jet {

namespace {

constexpr std::int32_t kTable = 1;
constexpr std::int32_t kDatabase = 2;
constexpr std::int32_t kContainer = 3;
constexpr std::array<std::int32_t, 4> kWork = {4, 6, kQueryType, kRelationshipType};

Table systemTable(PageFile& file, PageNo page, const char* name) {
    return {file, std::make_shared<const TableDefinition>(readTableDefinition(file, page, name))};
}

std::size_t positionOf(const Table& table, std::string_view name) {
    const auto& columns = table.columns();
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& c) {
        return text::equalsNoCase(c.name, name);
    });
    if (found == columns.end()) {
        throw Error(ErrNo::Corrupt,
                    table.name() + ": there is no column \"" + std::string(name) + "\"");
    }
    return static_cast<std::size_t>(found - columns.begin());
}

// What a row holds, for the table of the same name in another file.
std::vector<Table::Change> valuesFor(const Table& target, const Table& source,
                                     const RowCursor& row) {
    std::vector<Table::Change> values;
    for (std::size_t i = 0; i < source.columns().size(); ++i) {
        values.emplace_back(positionOf(target, source.columns()[i].name), row.value(i));
    }
    return values;
}

void addQueries(PageFile& source, PageFile& target, const std::set<std::int32_t>& queries) {
    const Table from = systemTable(source, kQueriesPage, "MSysQueries");
    Table to = systemTable(target, kQueriesPage, "MSysQueries");
    const std::size_t object = positionOf(from, "ObjectId");
    for (RowCursor row = from.scan(); row.next();) {
        const Variant id = row.value(object);
        if (const auto* number = id.get<std::int32_t>(); number && queries.contains(*number)) {
            to.insertCopy(valuesFor(to, from, row));
        }
    }
}

// Gives the names of those whose tables are there.
std::set<std::string> addRelationships(PageFile& source, PageFile& target,
                                       const std::set<std::string>& tables) {
    const Table from = systemTable(source, kRelationshipsPage, "MSysRelationships");
    Table to = systemTable(target, kRelationshipsPage, "MSysRelationships");
    const std::size_t name = positionOf(from, "szRelationship");
    const std::array<std::size_t, 2> sides = {positionOf(from, "szObject"),
                                              positionOf(from, "szReferencedObject")};
    std::set<std::string> added;
    for (RowCursor row = from.scan(); row.next();) {
        const bool whole = std::all_of(sides.begin(), sides.end(), [&](std::size_t side) {
            const Variant table = row.value(side);
            const auto* text = table.get<std::string>();
            return text && tables.contains(text::foldCase(*text));
        });
        const Variant label = row.value(name);
        if (const auto* text = label.get<std::string>(); text && whole) {
            to.insertCopy(valuesFor(to, from, row));
            added.insert(text::foldCase(*text));
        }
    }
    return added;
}

}  // namespace

std::vector<OtherObject> otherObjects(const PageFile& file, const Table& catalog, Findings& left) {
    const std::size_t id = positionOf(catalog, "Id");
    const std::size_t type = positionOf(catalog, "Type");
    const std::size_t name = positionOf(catalog, "Name");
    std::vector<OtherObject> objects;
    for (RowCursor row = catalog.scan(); row.next();) {
        const Variant kind = row.value(type);
        const auto* number = kind.get<std::int32_t>();
        if (number && (*number == kTable || *number == kDatabase || *number == kContainer)) {
            continue;
        }
        const std::string label = row.value(name).isNull() ? "" : row.value(name).toText();
        if (number && *number < 0) {
            left.add(row.id().page, "\"" + label + "\" of the desktop product is left out");
            continue;
        }
        const Variant own = row.value(id);
        const auto* identity = own.get<std::int32_t>();
        if (!number || !identity || std::find(kWork.begin(), kWork.end(), *number) == kWork.end()) {
            throw Error(ErrNo::Unsupported,
                        file.name() + ": \"" + label + "\" is of no known kind, and not copied");
        }
        OtherObject& object = objects.emplace_back();
        object.id = *identity;
        object.type = *number;
        object.name = label;
        for (std::size_t i = 0; i < catalog.columns().size(); ++i) {
            object.values.emplace_back(catalog.columns()[i].name, row.value(i));
        }
    }
    return objects;
}

void addObjects(PageFile& source, PageFile& target, const std::vector<OtherObject>& objects,
                const std::set<std::string>& tables, Findings& left) {
    const std::set<std::string> relationships = addRelationships(source, target, tables);
    std::set<std::int32_t> queries;
    CatalogWriter catalog(target);
    for (const OtherObject& object : objects) {
        if (object.type == kRelationshipType &&
            !relationships.contains(text::foldCase(object.name))) {
            left.add(kObjectsPage, "relationship \"" + object.name +
                                       "\" is left out: one of its tables is not copied");
            continue;
        }
        catalog.addObject(object.values);
        if (object.type == kQueryType) {
            queries.insert(object.id);
        }
    }
    addQueries(source, target, queries);
}

}  // namespace vl::jet
