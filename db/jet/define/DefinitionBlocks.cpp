#include "DefinitionBlocks.h"

#include <algorithm>

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::uint16_t kEnd = 0xFFFF;

/// Takes block after block; none leaves the definition.
class BlockReader {
public:
    BlockReader(ByteView bytes, const Origin& origin) : rest_(bytes), origin_(origin) {}

    template <std::size_t N>
    void take(std::array<std::byte, N>& block) {
        const ByteView bytes = take(N);
        std::copy(bytes.begin(), bytes.end(), block.begin());
    }
    ByteView take(std::size_t n) {
        if (n > rest_.size()) {
            origin_.corrupt("the table definition ends too early");
        }
        const ByteView bytes = rest_.first(n);
        rest_ = rest_.subspan(n);
        return bytes;
    }
    std::u16string takeName() {
        const ByteView bytes = take(u16(take(2), 0));
        std::u16string units;
        for (std::size_t i = 0; i + 2 <= bytes.size(); i += 2) {
            units.push_back(static_cast<char16_t>(u16(bytes, i)));
        }
        return units;
    }
    bool empty() const noexcept { return rest_.empty(); }

private:
    ByteView rest_;
    const Origin& origin_;
};

class BlockWriter {
public:
    void put(ByteView block) { bytes.insert(bytes.end(), block.begin(), block.end()); }
    void putNumber(std::uint16_t n) {
        std::array<std::byte, 2> block{};
        store(std::span<std::byte>(block), 0, n);
        put(block);
    }
    void putName(std::u16string_view name) {
        putNumber(static_cast<std::uint16_t>(2 * name.size()));
        for (const char16_t unit : name) {
            putNumber(unit);
        }
    }
    void putPointer(RowPointer pointer) {
        std::array<std::byte, 4> block{};
        store(std::span<std::byte>(block), 0, pointer.page << 8 | pointer.row);
        put(block);
    }

    std::vector<std::byte> bytes;
};

}  // namespace

std::uint16_t DefinitionBlocks::maxColumns() const noexcept {
    return u16(header, kDefinitionMaxColumnsAt);
}
std::uint16_t DefinitionBlocks::variableSlots() const noexcept {
    return u16(header, kDefinitionSlotsAt);
}
RowPointer DefinitionBlocks::ownedPages() const noexcept {
    return RowPointer::read(header, kDefinitionOwnedAt);
}
RowPointer DefinitionBlocks::freePages() const noexcept {
    return RowPointer::read(header, kDefinitionFreeAt);
}

DefinitionBlocks takeApart(ByteView definition, const Origin& origin) {
    DefinitionBlocks blocks;
    BlockReader reader(definition, origin);
    reader.take(blocks.header);
    blocks.columns.resize(u16(blocks.header, kDefinitionColumnsAt));
    blocks.trees.resize(std::min<std::size_t>(u32(blocks.header, kDefinitionTreesAt), kPageSize));
    blocks.indexes.resize(
        std::min<std::size_t>(u32(blocks.header, kDefinitionIndexesAt), kPageSize));
    for (auto& tree : blocks.trees) {
        reader.take(tree.counter);
    }
    for (auto& column : blocks.columns) {
        reader.take(column.bytes);
    }
    for (auto& column : blocks.columns) {
        column.name = reader.takeName();
    }
    for (auto& tree : blocks.trees) {
        reader.take(tree.bytes);
    }
    for (auto& index : blocks.indexes) {
        reader.take(index.bytes);
    }
    for (auto& index : blocks.indexes) {
        index.name = reader.takeName();
    }
    for (;;) {
        const std::uint16_t number = u16(reader.take(2), 0);
        if (number == kEnd) {
            break;
        }
        const ByteView maps = reader.take(8);
        blocks.longColumns.push_back(
            {number, RowPointer::read(maps, 0), RowPointer::read(maps, 4)});
    }
    if (!reader.empty()) {
        origin.corrupt("the table definition goes on behind its end");
    }
    return blocks;
}

std::vector<std::byte> putTogether(const DefinitionBlocks& blocks) {
    BlockWriter writer;
    writer.put(blocks.header);
    for (const auto& tree : blocks.trees) {
        writer.put(tree.counter);
    }
    for (const auto& column : blocks.columns) {
        writer.put(column.bytes);
    }
    for (const auto& column : blocks.columns) {
        writer.putName(column.name);
    }
    for (const auto& tree : blocks.trees) {
        writer.put(tree.bytes);
    }
    for (const auto& index : blocks.indexes) {
        writer.put(index.bytes);
    }
    for (const auto& index : blocks.indexes) {
        writer.putName(index.name);
    }
    for (const auto& column : blocks.longColumns) {
        writer.putNumber(column.number);
        writer.putPointer(column.ownedPages);
        writer.putPointer(column.freePages);
    }
    writer.putNumber(kEnd);
    const std::span<std::byte> bytes(writer.bytes);
    store(bytes, kDefinitionLengthAt, static_cast<std::uint32_t>(bytes.size()));
    store(bytes, kDefinitionColumnsAt, static_cast<std::uint16_t>(blocks.columns.size()));
    store(bytes, kDefinitionIndexesAt, static_cast<std::uint32_t>(blocks.indexes.size()));
    store(bytes, kDefinitionTreesAt, static_cast<std::uint32_t>(blocks.trees.size()));
    return std::move(writer.bytes);
}

}  // namespace vl::jet
