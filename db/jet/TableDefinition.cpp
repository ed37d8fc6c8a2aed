#include "TableDefinition.h"

#include <algorithm>
#include <array>

#include "Bytes.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::size_t kPageHeader = 8;
constexpr std::size_t kHeader = 63;
// 255 columns and 32 indexes with the longest names take a quarter of this.
constexpr std::size_t kLongestDefinition = 1U << 18;
constexpr std::size_t kMostColumns = 255;
constexpr std::size_t kMostIndexes = 255;  // of each kind; the engine makes 32
constexpr std::size_t kMostIndexColumns = 10;
constexpr std::uint16_t kNoColumn = 0xFFFF;

/// The assembled definition, taken block by block; no step leaves it.
class Reader {
public:
    Reader(ByteView bytes, Origin origin) : bytes_(bytes), origin_(origin) {}

    ByteView take(std::size_t n) {
        if (n > bytes_.size() - at_) {
            origin_.corrupt("the table definition ends too early");
        }
        at_ += n;
        return bytes_.subspan(at_ - n, n);
    }
    std::string takeName() {
        const std::uint16_t length = u16(take(2), 0);
        const ByteView bytes = take(length);
        std::u16string units;
        for (std::size_t i = 0; i + 2 <= bytes.size(); i += 2) {
            units.push_back(static_cast<char16_t>(u16(bytes, i)));
        }
        return text::fromUtf16(units);
    }
    std::size_t left() const { return bytes_.size() - at_; }
    const Origin& origin() const { return origin_; }

private:
    ByteView bytes_;
    Origin origin_;
    std::size_t at_ = 0;
};

bool known(ColumnType type) noexcept {
    const auto raw = static_cast<unsigned>(type);
    return (raw >= 1 && raw <= 12) || (raw >= 15 && raw <= 18);
}

Column columnFrom(ByteView block) {
    const unsigned flags = u8(block, 0x0F);
    Column column;
    column.type = static_cast<ColumnType>(u8(block, 0));
    column.number = u16(block, 5);
    column.variableIndex = u16(block, 7);
    column.fixed = (flags & 0x01) != 0;
    column.autoNumber = (flags & 0x44) != 0;
    column.fixedOffset = u16(block, 0x15);
    column.length = u16(block, 0x17);
    column.compressed = (u8(block, 0x10) & 0x01) != 0;
    if (column.type == ColumnType::Numeric) {
        column.precision = u8(block, 0x0B);
        column.scale = u8(block, 0x0C);
    } else if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
        column.sortOrder = u32(block, 0x0B);
    }
    return column;
}

void check(const Column& column, const TableDefinition& table, const Origin& origin) {
    const std::uint16_t size = sizeOf(column.type);
    if (!known(column.type) || column.number >= table.maxColumns ||
        (column.fixed && isLong(column.type)) || (size != 0 && column.length != size) ||
        (!column.fixed && column.type != ColumnType::Boolean &&
         column.variableIndex >= table.variableSlots)) {
        origin.corrupt("column \"" + column.name + "\" of table \"" + table.name +
                       "\" contradicts itself");
    }
}

void readColumns(Reader& reader, std::size_t count, TableDefinition& table) {
    for (std::size_t i = 0; i < count; ++i) {
        table.columns.push_back(columnFrom(reader.take(25)));
    }
    for (Column& column : table.columns) {
        column.name = reader.takeName();
        check(column, table, reader.origin());
    }
    std::sort(table.columns.begin(), table.columns.end(),
              [](const Column& a, const Column& b) { return a.number < b.number; });
    const auto twice =
        std::adjacent_find(table.columns.begin(), table.columns.end(),
                           [](const Column& a, const Column& b) { return a.number == b.number; });
    if (twice != table.columns.end()) {
        reader.origin().corrupt("two columns have the number " + std::to_string(twice->number));
    }
    // Slots are handed out in the order of creation. When the first of them belongs to a column
    // that is younger than a row, that row was written while the table had none.
    table.firstVariableColumns = 0;
    for (const Column& column : table.columns) {
        if (!column.fixed && column.type != ColumnType::Boolean && column.variableIndex == 0) {
            table.firstVariableColumns = static_cast<std::uint16_t>(column.number + 1);
        }
    }
}

IndexDefinition readTree(Reader& reader, TableDefinition& table) {
    const ByteView block = reader.take(52);
    IndexDefinition tree;
    for (std::size_t i = 0; i < kMostIndexColumns; ++i) {
        const std::uint16_t number = u16(block, 4 + 3 * i);
        if (number == kNoColumn) {
            continue;
        }
        const auto column = std::find_if(table.columns.begin(), table.columns.end(),
                                         [&](const Column& c) { return c.number == number; });
        if (column == table.columns.end()) {
            reader.origin().corrupt("an index of table \"" + table.name +
                                    "\" has a column that is not there");
        }
        column->indexed = true;
        tree.columns.push_back({static_cast<std::size_t>(column - table.columns.begin()), *column,
                                u8(block, 6 + 3 * i) == 0});
    }
    const unsigned flags = u8(block, 0x2E);
    tree.unique = (flags & 0x01) != 0;
    tree.ignoreNulls = (flags & 0x02) != 0;
    tree.required = (flags & 0x08) != 0;
    tree.ownedPages = RowPointer::read(block, 0x22);
    tree.root = u32(block, 0x26);
    return tree;
}

void readIndexes(Reader& reader, std::size_t real, std::size_t logical, TableDefinition& table) {
    for (std::size_t i = 0; i < real; ++i) {
        table.trees.push_back(readTree(reader, table));
    }
    for (std::size_t i = 0; i < logical; ++i) {
        const ByteView block = reader.take(28);
        const std::uint32_t stored = u32(block, 8);
        const unsigned kind = u8(block, 0x17);
        if (stored >= real || kind > 2) {
            reader.origin().corrupt("an index of table \"" + table.name + "\" contradicts itself");
        }
        Index index;
        index.number = u32(block, 4);
        index.primary = kind == 1;
        index.foreign = kind == 2;
        index.referenced = index.foreign && u8(block, 0x0C) == 1;
        index.otherNumber = index.foreign ? u32(block, 0x0D) : 0;
        index.otherDefinition = index.foreign ? u32(block, 0x11) : 0;
        const IndexDefinition& tree = table.trees[stored];
        index.tree = stored;
        index.unique = tree.unique;
        index.ignoreNulls = tree.ignoreNulls;
        index.required = tree.required;
        for (const KeyColumn& part : tree.columns) {
            index.columns.push_back({part.column.name, part.descending});
        }
        table.indexes.push_back(std::move(index));
    }
    for (Index& index : table.indexes) {
        index.name = reader.takeName();
    }
    std::stable_sort(table.indexes.begin(), table.indexes.end(),
                     [](const Index& a, const Index& b) { return a.number < b.number; });
}

// Reading rows does not need these: what is missing here concerns only a writer.
void readLongColumns(Reader& reader, TableDefinition& table) {
    while (reader.left() >= 10) {
        const ByteView block = reader.take(10);
        if (u16(block, 0) == kNoColumn) {
            return;
        }
        table.longColumns.push_back(
            {u16(block, 0), RowPointer::read(block, 2), RowPointer::read(block, 6)});
    }
}

}  // namespace

std::uint16_t sizeOf(ColumnType type) noexcept {
    static constexpr std::array<std::uint16_t, 19> kSizes = {0, 0, 1, 2, 4, 8,  4,  8, 8, 0,
                                                             0, 0, 0, 0, 0, 16, 17, 0, 4};
    const auto raw = static_cast<std::size_t>(type);
    return raw < kSizes.size() ? kSizes[raw] : std::uint16_t{0};
}

std::vector<std::byte> definitionBytes(PageFile& file, PageNo first) {
    Page page = file.page(first);
    const std::uint32_t length = u32(page.bytes(), 8);
    if (u8(page.bytes(), 0) != 2 || length < kHeader || length > kLongestDefinition) {
        page.origin().corrupt("is no table definition");
    }
    std::vector<std::byte> bytes(page.bytes().begin(), page.bytes().end());
    while (bytes.size() < length) {
        const PageNo next = u32(page.bytes(), 4);
        page = file.page(next);
        if (next == 0 || u8(page.bytes(), 0) != 2) {
            page.origin().corrupt("is no part of the table definition on page " +
                                  std::to_string(first));
        }
        const ByteView more = page.bytes().subspan(kPageHeader);
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    bytes.resize(length);
    return bytes;
}

bool isLong(ColumnType type) noexcept {
    return type == ColumnType::Memo || type == ColumnType::Ole;
}

TableDefinition readTableDefinition(PageFile& file, PageNo page, std::string name) {
    std::vector<std::byte> bytes = definitionBytes(file, page);
    const ByteView header(bytes.data(), kHeader);
    Reader reader(bytes, Origin{file.name(), page});
    reader.take(kHeader);
    TableDefinition table;
    table.name = std::move(name);
    table.page = page;
    table.rowCount = u32(header, 0x10);
    table.maxColumns = u16(header, 0x29);
    table.variableSlots = u16(header, 0x2B);
    table.ownedPages = RowPointer::read(header, 0x37);
    table.freePages = RowPointer::read(header, 0x3B);
    const std::size_t columns = u16(header, 0x2D);
    const std::size_t logical = u32(header, 0x2F);
    const std::size_t real = u32(header, 0x33);
    if (columns > kMostColumns || logical > kMostIndexes || real > kMostIndexes) {
        reader.origin().corrupt("the definition of table \"" + table.name +
                                "\" has impossible counts");
    }
    reader.take(12 * real);  // counters, for the writer
    readColumns(reader, columns, table);
    readIndexes(reader, real, logical, table);
    readLongColumns(reader, table);
    table.bytes = std::move(bytes);
    return table;
}

}  // namespace vl::jet
