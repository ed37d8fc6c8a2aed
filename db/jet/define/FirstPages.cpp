#include "FirstPages.h"

#include <algorithm>
#include <string_view>

#include "Bytes.h"
#include "DefinitionDraft.h"
#include "DefinitionPages.h"
#include "Header.h"
#include "index/IndexTree.h"

namespace vl::jet {

namespace {

constexpr PageNo kMapsPage = 6;
constexpr PageNo kFirstRoot = 7;
constexpr PageNo kPages = 14;
constexpr std::size_t kMapRow = 69;

constexpr std::uint8_t kSystemColumn = 0x10;
constexpr std::uint8_t kObscured = 0x20;  // names of accounts
constexpr std::uint16_t kLongestSystemField = 510;

/// Header values that belong together, and to the accounts; as the engine wrote them in one file.
constexpr std::uint32_t kInstallation = 0x0000261C;
constexpr std::uint64_t kHeaderDate = 0x40E4AB3E3BD3853E;  // a double's bits
constexpr std::uint32_t kHeaderDay = 42329;                // its whole days

struct SystemColumn {
    const char* name;
    ColumnType type;
};
struct SystemIndex {
    const char* name;
    std::vector<const char*> columns;
    std::uint8_t flags;
    bool primary;
};
struct SystemTable {
    PageNo page;
    std::vector<SystemColumn> columns;  // in the order of their numbers
    std::vector<SystemIndex> indexes;   // in the order of their trees
};

const std::vector<SystemTable>& systemTables() {
    using enum ColumnType;
    static const std::vector<SystemTable> kTables = {
        {kObjectsPage,
         {{"Id", Long},
          {"ParentId", Long},
          {"Name", Text},
          {"Type", Integer},
          {"DateCreate", Date},
          {"DateUpdate", Date},
          {"Owner", Binary},
          {"Flags", Long},
          {"Database", Memo},
          {"Connect", Memo},
          {"ForeignName", Text},
          {"RmtInfoShort", Binary},
          {"RmtInfoLong", Ole},
          {"Lv", Ole},
          {"LvProp", Ole},
          {"LvModule", Ole},
          {"LvExtra", Ole}},
         {{"ParentIdName", {"ParentId", "Name"}, 0x81, false}, {"Id", {"Id"}, 0x81, true}}},
        {kPermissionsPage,
         {{"ObjectId", Long}, {"SID", Binary}, {"ACM", Long}, {"FInheritable", Boolean}},
         {{"ObjectId", {"ObjectId"}, 0x88, false}}},
        {kQueriesPage,
         {{"ObjectId", Long},
          {"Attribute", Byte},
          {"Order", Binary},
          {"Name1", Text},
          {"Name2", Text},
          {"Expression", Memo},
          {"Flag", Integer},
          {"LvExtra", Long}},
         {{"ObjectIdAttribute", {"ObjectId", "Attribute", "Order"}, 0x81, true}}},
        {kRelationshipsPage,
         {{"szRelationship", Text},
          {"grbit", Long},
          {"ccolumn", Long},
          {"icolumn", Long},
          {"szObject", Text},
          {"szColumn", Text},
          {"szReferencedObject", Text},
          {"szReferencedColumn", Text}},
         {{"szRelationship", {"szRelationship"}, 0x82, false},
          {"szObject", {"szObject"}, 0x82, false},
          {"szReferencedObject", {"szReferencedObject"}, 0x82, false}}},
    };
    return kTables;
}

Page::Bytes headerPage() {
    Page::Bytes page{};
    const std::span<std::byte> bytes(page);
    const auto put = [&](std::size_t at, std::string_view text) {
        std::transform(text.begin(), text.end(), page.begin() + static_cast<std::ptrdiff_t>(at),
                       [](char c) { return static_cast<std::byte>(c); });
    };
    store(bytes, 0x00, std::uint32_t{0x100});
    put(0x04, "Standard Jet DB");
    store(bytes, 0x14, std::uint32_t{1});  // the generation
    store(bytes, 0x18, std::uint32_t{kFreePages.page << 8});
    store(bytes, 0x1C, std::uint32_t{kFreePages.page << 8 | 1});
    for (PageNo table = kObjectsPage; table <= kRelationshipsPage; ++table) {
        store(bytes, 0x20 + 4 * (table - kObjectsPage), table);
    }
    store(bytes, 0x3C, std::uint16_t{1252});
    for (std::size_t at = 0x42; at < 0x6A; at += 4) {
        store(bytes, at, kHeaderDay);  // no password, hidden behind the day
    }
    store(bytes, 0x6A, kInstallation);
    store(bytes, 0x6E, kGeneralOrder);
    store(bytes, 0x72, kHeaderDate);
    maskHeader(page);
    store(bytes, 0x98, std::uint32_t{0x0654});
    put(0x9C, "4.0");
    for (std::size_t at = kCommitWords; at < kPageSize; at += 2) {
        store(bytes, at, std::uint16_t{0x0100});
    }
    return page;
}

/// Rows of the same length, from the end of the page downwards.
class MapPage {
public:
    explicit MapPage(std::uint32_t owner) {
        store(span(), 0, std::uint16_t{0x0101});
        store(span(), 4, owner);
    }
    // Gives the number of the map, which is empty.
    std::uint8_t add() {
        const std::uint16_t n = rows_++;
        store(span(), 0x0E + std::size_t{2} * n, static_cast<std::uint16_t>(start(n)));
        store(span(), 0x0C, rows_);
        store(span(), 0x02, static_cast<std::uint16_t>(start(n) - 0x0E - std::size_t{2} * rows_));
        return static_cast<std::uint8_t>(n);
    }
    void set(std::uint16_t row, PageNo page) {
        bytes[start(row) + 5 + page / 8] |= static_cast<std::byte>(1U << page % 8);
    }

    Page::Bytes bytes{};

private:
    std::span<std::byte> span() { return bytes; }
    static std::size_t start(std::uint16_t row) { return kPageSize - kMapRow * (row + 1U); }

    std::uint16_t rows_ = 0;
};

/// Lays out the system tables: their maps on one page, their roots behind it.
class SystemPages {
public:
    DefinitionBlocks define(const SystemTable& table) {
        const RowPointer owned = addMap();
        const RowPointer free = addMap();
        DefinitionBlocks blocks = newDefinition(owned, free);
        store(std::span<std::byte>(blocks.header), kDefinitionKindAt, kSystemTable);
        for (const SystemColumn& column : table.columns) {
            addColumn(blocks, column);
        }
        for (const SystemIndex& index : table.indexes) {
            addIndex(blocks, table.page, index);
        }
        // Readers find them by their numbers; the engine stores them by name.
        std::sort(blocks.columns.begin(), blocks.columns.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        sortLongColumns(blocks);
        return blocks;
    }

    const Page::Bytes& maps() const { return maps_.bytes; }
    const std::vector<Page::Bytes>& roots() const { return roots_; }

private:
    RowPointer addMap() { return {kMapsPage, maps_.add()}; }

    void addColumn(DefinitionBlocks& blocks, const SystemColumn& column) {
        const std::uint16_t number = appendColumn(blocks, {column.name, column.type});
        const std::span<std::byte> bytes(blocks.columns.back().bytes);
        const std::string_view name = column.name;
        const bool account = name == "Owner" || name == "SID";
        store(bytes, 0x09, std::uint16_t{0});
        store(
            bytes, 0x0F,
            static_cast<std::uint8_t>(u8(bytes, 0x0F) | kSystemColumn | (account ? kObscured : 0)));
        store(bytes, 0x10, std::uint8_t{0});
        if (column.type == ColumnType::Binary) {
            store(bytes, 0x17, kLongestSystemField);
        }
        if (isLong(column.type)) {
            const RowPointer owned = addMap();
            const RowPointer free = addMap();
            blocks.longColumns.push_back({number, owned, free});
        }
    }

    void addIndex(DefinitionBlocks& blocks, PageNo table, const SystemIndex& index) {
        const auto root = static_cast<PageNo>(kFirstRoot + roots_.size());
        const RowPointer map = addMap();
        maps_.set(map.row, root);
        roots_.push_back(IndexTree::emptyRoot(table));
        NewIndex made;
        made.name = index.name;
        made.primary = index.primary;
        for (const char* column : index.columns) {
            made.columns.push_back({column, false});
        }
        appendIndex(blocks, made, map, root);
        store(std::span<std::byte>(blocks.trees.back().bytes), 0x2E, index.flags);
    }

    static void sortLongColumns(DefinitionBlocks& blocks) {
        const auto place = [&](std::uint16_t number) {
            return std::find_if(blocks.columns.begin(), blocks.columns.end(),
                                [&](const auto& c) { return u16(c.bytes, 0x05) == number; });
        };
        std::sort(blocks.longColumns.begin(), blocks.longColumns.end(),
                  [&](const auto& a, const auto& b) { return place(a.number) < place(b.number); });
    }

    MapPage maps_{0};
    std::vector<Page::Bytes> roots_;
};

// Pages up to those of this file are used; all others that the map can speak of are free.
Page::Bytes freeMapPage() {
    constexpr PageNo kInMap = 8 * (kMapRow - 5);
    MapPage page(kFreePages.page);
    const std::uint16_t free = page.add();
    page.add();  // always empty
    for (PageNo number = kPages; number < kInMap; ++number) {
        page.set(free, number);
    }
    return page.bytes;
}

constexpr std::array<std::byte, 2> account(unsigned first, unsigned second) {
    return {static_cast<std::byte>(first), static_cast<std::byte>(second)};
}

}  // namespace

Accounts newFileAccounts() noexcept {
    return {account(0x64, 0x8B), account(0x65, 0x89), account(0x65, 0x8B), account(0x65, 0x8E)};
}

std::vector<Page::Bytes> firstPages() {
    std::vector<Page::Bytes> pages = {headerPage(), freeMapPage()};
    SystemPages system;
    for (const SystemTable& table : systemTables()) {
        pages.push_back(definitionPage(putTogether(system.define(table))));
    }
    pages.push_back(system.maps());
    pages.insert(pages.end(), system.roots().begin(), system.roots().end());
    return pages;
}

}  // namespace vl::jet
