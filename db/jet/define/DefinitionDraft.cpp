#include "DefinitionDraft.h"

#include <algorithm>
#include <cassert>

#include "Bytes.h"
#include "TableDefinition.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::uint32_t kMagic = 1625;
constexpr std::uint32_t kTreeMagic = 1923;
constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kAlways = 0x02;
constexpr std::uint8_t kAutoNumber = 0x04;
constexpr std::uint8_t kCompressed = 0x01;
constexpr std::uint16_t kNoColumn = 0xFFFF;
constexpr std::size_t kMostKeyColumns = 10;

template <std::size_t N>
std::span<std::byte> spanOf(std::array<std::byte, N>& block) {
    return block;
}

std::uint32_t rawPointer(RowPointer pointer) { return pointer.page << 8 | pointer.row; }

bool isText(ColumnType type) { return type == ColumnType::Text || type == ColumnType::Memo; }

// In bytes, as the definition says it.
std::uint16_t storedLength(const NewColumn& column) {
    const auto length = static_cast<std::uint16_t>(column.length == 0 ? 255 : column.length);
    switch (column.type) {
        case ColumnType::Boolean:
            return 1;
        case ColumnType::Text:
            return static_cast<std::uint16_t>(2 * length);
        case ColumnType::Binary:
            return length;
        default:
            return sizeOf(column.type);
    }
}

bool isFixed(const DefinitionBlocks::ColumnBlock& column) {
    return (u8(column.bytes, 0x0F) & kFixed) != 0;
}

std::uint16_t nextFixedOffset(const DefinitionBlocks& blocks) {
    std::uint16_t end = 0;
    for (const auto& column : blocks.columns) {
        if (isFixed(column) &&
            u8(column.bytes, 0) != static_cast<std::uint8_t>(ColumnType::Boolean)) {
            end = std::max(
                end, static_cast<std::uint16_t>(u16(column.bytes, 0x15) + u16(column.bytes, 0x17)));
        }
    }
    return end;
}

// Where a column is shown: behind all others.
std::uint16_t nextOrdinal(const DefinitionBlocks& blocks) {
    std::uint16_t last = 0;
    for (const auto& column : blocks.columns) {
        last = std::max(last, u16(column.bytes, 0x09));
    }
    return static_cast<std::uint16_t>(last + 1);
}

std::uint16_t numberOf(const DefinitionBlocks& blocks, std::string_view name) {
    const auto column = std::find_if(
        blocks.columns.begin(), blocks.columns.end(),
        [&](const auto& c) { return text::equalsNoCase(text::fromUtf16(c.name), name); });
    assert(column != blocks.columns.end());
    return u16(column->bytes, 0x05);
}

std::uint8_t treeFlags(const NewIndex& index) {
    return static_cast<std::uint8_t>(0x80 | (index.unique || index.primary ? 0x01 : 0) |
                                     (index.ignoreNulls ? 0x02 : 0) |
                                     (index.required || index.primary ? 0x08 : 0));
}

}  // namespace

bool isFixedType(ColumnType type) noexcept {
    return type == ColumnType::Boolean || sizeOf(type) != 0;
}

DefinitionBlocks newDefinition(RowPointer ownedPages, RowPointer freePages) {
    DefinitionBlocks blocks;
    const auto header = spanOf(blocks.header);
    store(header, 0, std::uint16_t{0x0102});
    store(header, 0x0C, kMagic);
    store(header, 0x18, std::uint32_t{1});
    store(header, kDefinitionKindAt, kUserTable);
    store(header, kDefinitionOwnedAt, rawPointer(ownedPages));
    store(header, kDefinitionFreeAt, rawPointer(freePages));
    return blocks;
}

std::uint16_t appendColumn(DefinitionBlocks& blocks, const NewColumn& column) {
    const std::uint16_t number = blocks.maxColumns();
    const std::uint16_t slot = blocks.variableSlots();
    const bool fixed = isFixedType(column.type);
    DefinitionBlocks::ColumnBlock block;
    block.name = text::toUtf16(column.name);
    const auto bytes = spanOf(block.bytes);
    store(bytes, 0x00, static_cast<std::uint8_t>(column.type));
    store(bytes, 0x01, kMagic);
    store(bytes, 0x05, number);
    store(bytes, 0x07, slot);
    store(bytes, 0x09, nextOrdinal(blocks));
    if (column.type == ColumnType::Numeric) {
        const std::uint8_t digits = column.precision == 0 ? std::uint8_t{18} : column.precision;
        store(bytes, 0x0B, digits);
        store(bytes, 0x0C, column.scale);
    } else {
        store(bytes, 0x0B, kGeneralOrder);
    }
    store(bytes, 0x0F,
          static_cast<std::uint8_t>(kAlways | (fixed ? kFixed : 0) |
                                    (column.autoNumber ? kAutoNumber : 0)));
    store(bytes, 0x10, isText(column.type) ? kCompressed : std::uint8_t{0});
    if (fixed && column.type != ColumnType::Boolean) {
        store(bytes, 0x15, nextFixedOffset(blocks));
    }
    store(bytes, 0x17, storedLength(column));
    blocks.columns.push_back(std::move(block));
    const auto header = spanOf(blocks.header);
    store(header, kDefinitionMaxColumnsAt, static_cast<std::uint16_t>(number + 1));
    if (!fixed) {
        store(header, kDefinitionSlotsAt, static_cast<std::uint16_t>(slot + 1));
    }
    return number;
}

void appendIndex(DefinitionBlocks& blocks, const NewIndex& index, RowPointer ownedPages,
                 PageNo root) {
    DefinitionBlocks::TreeBlock tree;
    const auto bytes = spanOf(tree.bytes);
    store(bytes, 0x00, kTreeMagic);
    for (std::size_t i = 0; i < kMostKeyColumns; ++i) {
        const bool used = i < index.columns.size();
        store(bytes, 4 + 3 * i, used ? numberOf(blocks, index.columns[i].name) : kNoColumn);
        store(bytes, 6 + 3 * i,
              static_cast<std::uint8_t>(used && !index.columns[i].descending ? 1 : 0));
    }
    store(bytes, 0x22, rawPointer(ownedPages));
    store(bytes, 0x26, root);
    store(bytes, 0x2E, treeFlags(index));

    DefinitionBlocks::IndexBlock block;
    block.name = text::toUtf16(index.name);
    std::uint32_t number = 0;
    for (const auto& other : blocks.indexes) {
        number = std::max(number, u32(other.bytes, 0x04) + 1);
    }
    const auto logical = spanOf(block.bytes);
    store(logical, 0x00, kMagic);
    store(logical, 0x04, number);
    store(logical, 0x08, static_cast<std::uint32_t>(blocks.trees.size()));
    store(logical, 0x0D, std::uint32_t{0xFFFFFFFF});  // no index of another table
    store(logical, 0x15, std::uint16_t{0x0404});      // as every writer leaves them where no
                                                      // relationship is
    store(logical, 0x17, static_cast<std::uint8_t>(index.primary ? 1 : 0));
    // Indexes are kept sorted by name.
    const auto behind =
        std::find_if(blocks.indexes.begin(), blocks.indexes.end(), [&](const auto& other) {
            return text::compareNoCase(text::fromUtf16(other.name), index.name) > 0;
        });
    blocks.indexes.insert(behind, std::move(block));
    blocks.trees.push_back(tree);
}

}  // namespace vl::jet
