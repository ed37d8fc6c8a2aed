#include "CatalogCheck.h"

#include <algorithm>
#include <array>

#include "Bytes.h"
#include "SystemPages.h"
#include "TableDefinition.h"
#include "UsageMap.h"
#include "db/jet/Table.h"
#include "define/DefinitionBlocks.h"

namespace vl::jet {

namespace {

struct Object {
    std::uint32_t id;
    const char* what;
};

constexpr std::array kObjects = {
    Object{0x0F000001, "the container of the tables"},
    Object{0x0F000002, "the container of the databases"},
    Object{0x0F000003, "the container of the relationships"},
    Object{0x10000000, "the database itself"},
};

void checkObjects(PageFile& file, Findings& findings) {
    const auto catalog = std::make_shared<const TableDefinition>(
        readTableDefinition(file, kObjectsPage, "MSysObjects"));
    const auto id = std::find_if(catalog->columns.begin(), catalog->columns.end(),
                                 [](const Column& c) { return c.name == "Id"; });
    if (id == catalog->columns.end()) {
        return;  // the reading of the catalog has said so
    }
    const auto place = static_cast<std::size_t>(id - catalog->columns.begin());
    std::set<std::uint32_t> there;
    for (RowCursor row(file, catalog); row.next();) {
        const Variant value = row.value(place);
        if (const auto* number = value.get<std::int32_t>()) {
            there.insert(static_cast<std::uint32_t>(*number));
        }
    }
    for (const Object& object : kObjects) {
        if (!there.contains(object.id)) {
            findings.add(kObjectsPage, std::string("the catalog lacks ") + object.what);
        }
    }
}

// The later pages of a long definition begin like a definition, too, but make none.
bool isDefinition(PageFile& file, PageNo page) {
    const ByteView bytes = file.page(page).bytes();
    const unsigned kind = u8(bytes, kDefinitionKindAt);
    if (u8(bytes, 0) != 2 || (kind != kUserTable && kind != kSystemTable)) {
        return false;
    }
    try {
        readTableDefinition(file, page, {});
        return true;
    } catch (const Error& e) {
        if (e.number() != ErrNo::Corrupt) {
            throw;
        }
        return false;
    }
}

void checkUnnamed(PageFile& file, const std::vector<TableInfo>& tables, const Claims& claims,
                  Findings& findings) {
    const std::vector<PageNo> free = readUsageMap(file, kFreePages, Beyond::Ignored);
    for (PageNo page = kObjectsPage; page < file.pageCount(); ++page) {
        const bool named = std::any_of(tables.begin(), tables.end(), [page](const TableInfo& info) {
            return info.definitionPage == page;
        });
        if (!named && !claims.isClaimed(page) &&
            !std::binary_search(free.begin(), free.end(), page) && isDefinition(file, page)) {
            findings.add(page, "is the definition of a table that the catalog does not name");
        }
    }
}

}  // namespace

void checkCatalog(PageFile& file, const std::vector<TableInfo>& tables, const Claims& claims,
                  Findings& findings) {
    findings.attempt(kObjectsPage, [&] { checkObjects(file, findings); });
    findings.attempt(kFreePages.page, [&] { checkUnnamed(file, tables, claims, findings); });
}

}  // namespace vl::jet
