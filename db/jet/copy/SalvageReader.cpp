#include "SalvageReader.h"

#include <algorithm>

#include "Bytes.h"
#include "RowPlace.h"
#include "SystemPages.h"
#include "UsageMap.h"
#include "define/DefinitionBlocks.h"
#include "write/Field.h"

namespace vl::jet {

namespace {

std::optional<std::size_t> positionOf(const TableDefinition& table, std::string_view name) {
    const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                    [&](const Column& c) { return c.name == name; });
    if (found == table.columns.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - table.columns.begin());
}

// Not a table, the database itself or a container, and nothing of the desktop product's own.
bool isOther(const Variant& type) {
    constexpr std::int32_t kContainer = 3;
    const auto* number = type.get<std::int32_t>();
    return number != nullptr && *number > kContainer;
}

}  // namespace

SalvageReader::SalvageReader(PageFile& file, Findings& findings)
    : file_(file), findings_(findings) {
    findings_.attempt(kFreePages.page, [&] {
        const std::vector<PageNo> pages = readUsageMap(file_, kFreePages, Beyond::Ignored);
        free_.insert(pages.begin(), pages.end());
    });
}

std::vector<TableDefinition> SalvageReader::tables() {
    std::vector<TableDefinition> found;
    std::set<PageNo> known;  // those of the engine's and other products' own among them
    namedTables(found, known);
    for (PageNo page = kObjectsPage + 1; page < file_.pageCount(); ++page) {
        const ByteView bytes = file_.page(page).bytes();
        const bool begins = u8(bytes, 0) == 2 && u8(bytes, kDefinitionKindAt) == kUserTable;
        if (!begins || known.contains(page) || isFree(page)) {
            continue;
        }
        try {
            found.push_back(readTableDefinition(file_, page, "Table" + std::to_string(page)));
            findings_.add(page, "is the definition of a table that the catalog has lost");
        } catch (const Error& e) {
            if (e.number() != ErrNo::Corrupt) {
                throw;
            }
            // The second page of a definition, most likely.
        }
    }
    return found;
}

void SalvageReader::namedTables(std::vector<TableDefinition>& tables, std::set<PageNo>& known) {
    findings_.attempt(kObjectsPage, [&] {
        const TableDefinition catalog = readTableDefinition(file_, kObjectsPage, "MSysObjects");
        const auto id = positionOf(catalog, "Id");
        const auto name = positionOf(catalog, "Name");
        const auto type = positionOf(catalog, "Type");
        const auto flags = positionOf(catalog, "Flags");
        if (!id || !name || !type || !flags) {
            findings_.add(kObjectsPage, "the catalog lacks columns");
            return;
        }
        rows(catalog, [&](RowId, const std::vector<Variant>& row) {
            const auto* page = row[*id].get<std::int32_t>();
            const auto* label = row[*name].get<std::string>();
            const auto* bits = row[*flags].get<std::int32_t>();
            const bool system =
                bits != nullptr && (static_cast<std::uint32_t>(*bits) & kSystemFlags) != 0;
            if (isOther(row[*type])) {
                findings_.add(kObjectsPage, "\"" + (label ? *label : "") +
                                                "\" is a query, a linked table or a relationship, "
                                                "and is lost");
            }
            if (row[*type] != Variant(1) || page == nullptr || label == nullptr) {
                return;
            }
            known.insert(static_cast<PageNo>(*page));
            if (system) {
                return;
            }
            findings_.attempt(static_cast<PageNo>(*page), [&] {
                tables.push_back(readTableDefinition(file_, static_cast<PageNo>(*page), *label));
            });
        });
    });
}

std::vector<PageNo> SalvageReader::pagesOf(const TableDefinition& table) {
    std::vector<PageNo> pages;
    if (findings_.attempt(table.ownedPages.page,
                          [&] { pages = readUsageMap(file_, table.ownedPages); })) {
        return pages;
    }
    for (PageNo page = kObjectsPage + 1; page < file_.pageCount(); ++page) {
        const ByteView bytes = file_.page(page).bytes();
        if (u8(bytes, 0) == 1 && u32(bytes, 4) == table.page && !isFree(page)) {
            pages.push_back(page);
        }
    }
    return pages;
}

void SalvageReader::rows(const TableDefinition& table, const Take& take) {
    std::set<Place> bodies;
    std::set<Place> named;
    const auto takeRow = [&](ByteView bytes, RowId id, const Origin& origin) {
        const RowView row(bytes, table, origin);
        take(id, valuesOf(row, table, id, origin));
    };
    for (const PageNo number : pagesOf(table)) {
        findings_.attempt(number, [&] {
            const Page page = file_.page(number);
            const DataPage data(page);
            if (data.owner() != table.page) {
                findings_.add(number, "is of another owner than table \"" + table.name + "\"");
                return;
            }
            for (std::uint16_t i = 0; i < data.slotCount(); ++i) {
                if (data.slot(i) == DataPage::Slot::Body) {
                    bodies.insert({number, i});
                } else if (data.slot(i) != DataPage::Slot::Deleted) {
                    findings_.attempt(number, [&] {
                        const RowPlace place = findRow(file_, table, page, data, i);
                        if (data.slot(i) == DataPage::Slot::Moved) {
                            const RowPointer to = RowPointer::read(data.row(i), 0);
                            named.insert({to.page, to.row});
                        }
                        takeRow(place.bytes, {number, i}, place.page.origin());
                    });
                }
            }
        });
    }
    for (const auto& [number, slot] : bodies) {
        if (!named.contains({number, slot})) {
            findings_.attempt(number, [&, at = slot, on = number] {
                const Page page = file_.page(on);
                takeRow(DataPage(page).row(at), {on, at}, page.origin());
            });
        }
    }
}

std::vector<Variant> SalvageReader::valuesOf(const RowView& row, const TableDefinition& table,
                                             RowId id, const Origin& origin) {
    std::vector<Variant> values;
    for (const Column& column : table.columns) {
        Variant& value = values.emplace_back(Null{});
        try {
            if (column.type == ColumnType::Boolean) {
                value = row.bit(column);
            } else if (const auto bytes = row.field(column)) {
                value =
                    valueOf(file_, column, {true, {bytes->begin(), bytes->end()}, false}, origin);
            }
            if (const std::string why = whyUnstorable(column, value); !why.empty()) {
                value = Null{};
                origin.corrupt(why);
            }
        } catch (const Error& e) {
            if (e.number() != ErrNo::Corrupt) {
                throw;
            }
            findings_.add(id.page, "row " + std::to_string(id.row) + " of table \"" + table.name +
                                       "\" loses column \"" + column.name + "\": " + e.what());
        }
    }
    return values;
}

}  // namespace vl::jet
