// A table's definition taken apart, to be changed.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "TableDefinition.h"

namespace vl::jet {

// Where what stands in a definition's header.
inline constexpr std::size_t kDefinitionLengthAt = 0x08;
inline constexpr std::size_t kDefinitionRowsAt = 0x10;
inline constexpr std::size_t kDefinitionLastNumberAt = 0x14;
inline constexpr std::size_t kDefinitionKindAt = 0x28;
inline constexpr std::size_t kDefinitionMaxColumnsAt = 0x29;
inline constexpr std::size_t kDefinitionSlotsAt = 0x2B;
inline constexpr std::size_t kDefinitionColumnsAt = 0x2D;
inline constexpr std::size_t kDefinitionIndexesAt = 0x2F;
inline constexpr std::size_t kDefinitionTreesAt = 0x33;
inline constexpr std::size_t kDefinitionOwnedAt = 0x37;
inline constexpr std::size_t kDefinitionFreeAt = 0x3B;
inline constexpr std::size_t kDefinitionHeader = 0x3F;

// Kinds of tables.
inline constexpr std::uint8_t kUserTable = 'N';
inline constexpr std::uint8_t kSystemTable = 'S';

/// The blocks of a definition, in the order in which they are stored. What is not understood is
/// kept as it was: another program's relationships survive a column that we add.
/// Source: docs/jet4.md, "Table definition".
struct DefinitionBlocks {
    struct ColumnBlock {
        std::array<std::byte, 25> bytes{};
        std::u16string name;
    };
    struct TreeBlock {
        std::array<std::byte, 12> counter{};
        std::array<std::byte, 52> bytes{};
    };
    struct IndexBlock {
        std::array<std::byte, 28> bytes{};
        std::u16string name;
    };

    std::array<std::byte, kDefinitionHeader> header{};
    std::vector<ColumnBlock> columns;
    std::vector<TreeBlock> trees;
    std::vector<IndexBlock> indexes;
    std::vector<LongColumn> longColumns;

    std::uint16_t maxColumns() const noexcept;
    std::uint16_t variableSlots() const noexcept;
    RowPointer ownedPages() const noexcept;
    RowPointer freePages() const noexcept;
};

/// `definition` as `definitionBytes` gives it. Throws `Error` (`ErrNo::Corrupt`) for one that ends
/// too early or has anything behind its end.
DefinitionBlocks takeApart(ByteView definition, const Origin& origin);

/// The whole definition; its length and the counts of its blocks are set.
std::vector<std::byte> putTogether(const DefinitionBlocks& blocks);

}  // namespace vl::jet
