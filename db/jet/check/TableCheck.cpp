#include "TableCheck.h"

#include <algorithm>

#include "Bytes.h"
#include "LongValue.h"
#include "RowPlace.h"
#include "UsageMap.h"
#include "index/IndexCheck.h"
#include "index/IndexCursor.h"
#include "index/IndexKey.h"
#include "write/Field.h"

namespace vl::jet {

namespace {

constexpr std::size_t kSlotTable = 14;

std::string rowText(std::uint16_t row) { return "row " + std::to_string(row); }

void checkFree(const Page& page, const DataPage& data, Findings& findings) {
    const std::uint16_t slots = data.slotCount();
    const std::size_t lowest =
        slots == 0
            ? kPageSize
            : static_cast<std::size_t>(data.row(static_cast<std::uint16_t>(slots - 1)).data() -
                                       page.bytes().data());
    const std::size_t free = lowest - kSlotTable - std::size_t{2} * slots;
    if (u16(page.bytes(), 2) != free) {
        findings.add(page.number(), "says it has " + std::to_string(u16(page.bytes(), 2)) +
                                        " free bytes, but has " + std::to_string(free));
    }
}

}  // namespace

TableCheck::TableCheck(PageFile& file, const TableDefinition& table, Claims& claims,
                       Findings& findings)
    : file_(file),
      table_(table),
      claims_(claims),
      findings_(findings),
      long_(table.columns.size()),
      keys_(table.trees.size()),
      keysKnown_(table.trees.size(), true),
      treePages_(table.trees.size()) {}

std::string TableCheck::label() const { return "table \"" + table_.name + "\""; }

void TableCheck::run(bool countIsExact) {
    checkDefinitionPages();
    readMaps();
    for (const PageNo page : owned_) {
        findings_.attempt(page, [&] { checkDataPage(page); });
    }
    checkBodies();
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        checkLongPages(i);
    }
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        checkTree(i);
    }
    if (countIsExact && rows_ != table_.rowCount) {
        findings_.add(table_.page, "says " + label() + " has " + std::to_string(table_.rowCount) +
                                       " rows, but it has " + std::to_string(rows_));
    }
}

void TableCheck::checkDefinitionPages() {
    findings_.attempt(table_.page, [&] {
        PageNo number = table_.page;
        for (std::size_t size = 0; size < table_.bytes.size();) {
            if (!claims_.claim(number, "the definition of " + label())) {
                return;
            }
            size += size == 0 ? kPageSize : kPageSize - 8;
            number = u32(file_.page(number).bytes(), 4);
        }
    });
}

// The pages of a map, claimed for its owner, as is the map itself.
std::vector<PageNo> TableCheck::mapPages(RowPointer map, const std::string& owner) {
    if (map.page == 0) {
        return {};
    }
    claims_.claimMapRow(map, owner);
    std::vector<PageNo> pages;
    findings_.attempt(map.page, [&] {
        for (const PageNo bitmap : bitmapPages(file_, map)) {
            claims_.claim(bitmap, "a map of " + owner);
        }
        pages = readUsageMap(file_, map);
    });
    return pages;
}

void TableCheck::readMaps() {
    for (const PageNo page : mapPages(table_.ownedPages, label())) {
        if (claims_.claim(page, label())) {
            owned_.insert(page);
        }
    }
    checkFreeMap(table_.freePages, owned_, label());
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        const std::string owner = "index " + std::to_string(i) + " of " + label();
        treePages_[i] = mapPages(table_.trees[i].ownedPages, owner);
        for (const PageNo page : treePages_[i]) {
            claims_.claim(page, owner);
        }
    }
    for (const LongColumn& column : table_.longColumns) {
        const auto found = std::find_if(table_.columns.begin(), table_.columns.end(),
                                        [&](const Column& c) { return c.number == column.number; });
        if (found == table_.columns.end()) {
            continue;  // a column that was deleted
        }
        const std::string owner = "column \"" + found->name + "\" of " + label();
        LongPages& pages = long_[static_cast<std::size_t>(found - table_.columns.begin())];
        for (const PageNo page : mapPages(column.ownedPages, owner)) {
            if (claims_.claim(page, owner)) {
                pages.pages.insert(page);
            }
        }
        checkFreeMap(column.freePages, pages.pages, owner);
    }
}

void TableCheck::checkFreeMap(RowPointer map, const std::set<PageNo>& owned,
                              const std::string& owner) {
    for (const PageNo page : mapPages(map, owner)) {
        if (!owned.contains(page)) {
            findings_.add(page, "may have room for " + owner + ", but is not a page of it");
        }
    }
}

void TableCheck::checkDataPage(PageNo number) {
    const Page page = file_.page(number);
    const DataPage data(page);
    if (data.owner() != table_.page) {
        findings_.add(number, "is in the map of " + label() + ", but names page " +
                                  std::to_string(data.owner()) + " as its definition");
        return;
    }
    checkFree(page, data, findings_);
    for (std::uint16_t i = 0; i < data.slotCount(); ++i) {
        findings_.attempt(number, [&] { checkSlot(page, data, i); });
    }
}

void TableCheck::checkSlot(const Page& page, const DataPage& data, std::uint16_t slot) {
    switch (data.slot(slot)) {
        case DataPage::Slot::Deleted:
            return;
        case DataPage::Slot::Body:
            bodies_.insert({page.number(), slot});
            return;
        case DataPage::Slot::Moved: {
            ++rows_;
            const RowPlace place = findRow(file_, table_, page, data, slot);
            const RowPointer to = RowPointer::read(data.row(slot), 0);
            if (!namedBodies_.insert({to.page, to.row}).second) {
                findings_.add(page.number(), rowText(slot) + " has moved to where another one has");
            }
            checkRow(RowView(place.bytes, table_, place.page.origin()), {page.number(), slot},
                     place.page.origin());
            return;
        }
        default:
            ++rows_;
            checkRow(RowView(data.row(slot), table_, page.origin()), {page.number(), slot},
                     page.origin());
    }
}

void TableCheck::checkRow(const RowView& row, RowId id, const Origin& origin) {
    const Fields fields = fieldsOf(row, table_);
    std::vector<Variant> values;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table_.columns[i];
        if (isLong(column.type) && fields[i].bit) {
            checkLongValue(i, fields[i].bytes, origin);
        }
        values.push_back(valueOf(file_, column, fields[i], origin));
        if (const std::string why = whyUnstorable(column, values.back()); !why.empty()) {
            findings_.add(id.page, rowText(id.row) + " has a value in column \"" + column.name +
                                       "\" of " + label() + " that it cannot hold: " + why);
        }
    }
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        std::vector<Variant> parts;
        for (const KeyColumn& part : table_.trees[i].columns) {
            parts.push_back(values[part.position]);
        }
        try {
            IndexKey key = indexKey(table_.trees[i], parts);
            if (table_.trees[i].required && key.hasNull) {
                findings_.add(id.page, rowText(id.row) + " has no value for an index of " +
                                           label() + " that needs one");
            }
            if (!(table_.trees[i].ignoreNulls && key.isAllNull)) {
                appendRow(key.bytes, id);
                keys_[i].push_back(std::move(key.bytes));
            }
        } catch (const Error& e) {
            if (e.number() == ErrNo::Corrupt || e.number() == ErrNo::Io) {
                throw;
            }
            keysKnown_[i] = false;  // sorted in an order that is not known here
        }
    }
}

// The rows that hold the value's pieces; that they hold it whole is found by reading it.
void TableCheck::checkLongValue(std::size_t column, ByteView definition, const Origin& origin) {
    LongPages& pages = long_[column];
    for (const RowPointer piece : LongValue::pieces(file_, definition, origin)) {
        if (!pages.pages.contains(piece.page)) {
            findings_.add(piece.page, "holds a value of column \"" + table_.columns[column].name +
                                          "\" of " + label() + ", but is no page of it");
        }
        if (!pages.named.insert({piece.page, piece.row}).second) {
            findings_.add(piece.page, rowText(piece.row) + " belongs to two values of column \"" +
                                          table_.columns[column].name + "\" of " + label());
        }
    }
}

void TableCheck::checkBodies() {
    for (const auto& [page, row] : bodies_) {
        if (!namedBodies_.contains({page, row})) {
            findings_.add(page, rowText(row) + " of " + label() +
                                    " has moved here, but nothing points to it");
        }
    }
}

void TableCheck::checkLongPages(std::size_t column) {
    for (const PageNo number : long_[column].pages) {
        findings_.attempt(number, [&] {
            const Page page = file_.page(number);
            const DataPage data(page);
            if (data.owner() != DataPage::kLongValues) {
                findings_.add(number, "is in the map of column \"" + table_.columns[column].name +
                                          "\" of " + label() + ", but is no page of long values");
                return;
            }
            checkFree(page, data, findings_);
            for (std::uint16_t i = 0; i < data.slotCount(); ++i) {
                if (data.slot(i) != DataPage::Slot::Deleted &&
                    !long_[column].named.contains({number, i})) {
                    findings_.add(number, rowText(i) + " of column \"" +
                                              table_.columns[column].name + "\" of " + label() +
                                              " belongs to no row");
                }
            }
        });
    }
}

void TableCheck::checkTree(std::size_t tree) {
    const IndexDefinition& index = table_.trees[tree];
    const std::string owner = "index " + std::to_string(tree) + " of " + label();
    FilePages pages(file_);
    IndexReport report = checkIndex(pages, index, table_.page, treePages_[tree]);
    for (IndexFinding& finding : report.findings) {
        findings_.add(finding.page, owner + ": " + finding.what);
    }
    if (!report.findings.empty() || !keysKnown_[tree]) {
        return;
    }
    std::vector<KeyBytes>& expected = keys_[tree];
    std::sort(expected.begin(), expected.end());
    const auto keyOf = [](const KeyBytes& entry) {
        return ByteView(entry).first(entry.size() - kEntryRow);
    };
    for (std::size_t i = 1; index.unique && i < expected.size(); ++i) {
        const ByteView a = keyOf(expected[i - 1]);
        const ByteView b = keyOf(expected[i]);
        if (std::equal(a.begin(), a.end(), b.begin(), b.end()) && !allNull(index, a)) {
            const RowId row = rowAtEnd(expected[i]);
            findings_.add(row.page, rowText(row.row) + " has a key that another row has, but " +
                                        owner + " is unique");
        }
    }
    findings_.attempt(index.root, [&] {
        IndexCursor cursor(pages, index, table_.page);
        auto next = expected.begin();
        const auto missing = [&](const KeyBytes& entry) {
            const RowId row = rowAtEnd(entry);
            findings_.add(row.page, rowText(row.row) + " has no entry in " + owner);
        };
        while (cursor.next()) {
            KeyBytes entry(cursor.key().begin(), cursor.key().end());
            appendRow(entry, cursor.row());
            while (next != expected.end() && *next < entry) {
                missing(*next++);
            }
            if (next == expected.end() || *next != entry) {
                findings_.add(cursor.page(), owner + " has an entry that is of no row: " +
                                                 rowText(cursor.row().row) + " on page " +
                                                 std::to_string(cursor.row().page));
            } else {
                ++next;
            }
        }
        while (next != expected.end()) {
            missing(*next++);
        }
    });
}

}  // namespace vl::jet
