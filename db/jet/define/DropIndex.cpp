#include <algorithm>

#include "Bytes.h"
#include "CatalogWriter.h"
#include "Define.h"
#include "DefinitionEdit.h"
#include "MapRows.h"
#include "UsageMap.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

// Of the block of an index.
constexpr std::size_t kTreeAt = 0x08;
// Of the block of a tree.
constexpr std::size_t kOwnedAt = 0x22;

// Those behind it move up.
void eraseTree(DefinitionBlocks& blocks, std::uint32_t tree) {
    blocks.trees.erase(blocks.trees.begin() + static_cast<std::ptrdiff_t>(tree));
    for (auto& index : blocks.indexes) {
        if (const std::uint32_t other = u32(index.bytes, kTreeAt); other > tree) {
            store(std::span<std::byte>(index.bytes), kTreeAt, other - 1);
        }
    }
}

}  // namespace

void dropIndex(PageFile& file, std::string_view table, std::string_view name) {
    const TableDefinition definition = userTable(file, table);
    const auto index =
        std::find_if(definition.indexes.begin(), definition.indexes.end(),
                     [&](const Index& i) { return text::equalsNoCase(i.name, name); });
    const auto refuse = [&](ErrNo number, const std::string& what) {
        throw Error(number, file.name() + ": table \"" + definition.name + "\" " + what + " \"" +
                                std::string(name) + "\"");
    };
    if (index == definition.indexes.end()) {
        refuse(ErrNo::NotFound, "has no index");
    }
    if (index->foreign) {
        refuse(ErrNo::Unsupported, "needs for a relationship its index");
    }
    DefinitionBlocks blocks = readBlocks(file, definition.page);
    std::erase_if(blocks.indexes, [&](const auto& block) {
        return text::equalsNoCase(text::fromUtf16(block.name), name);
    });
    const auto tree = static_cast<std::uint32_t>(index->tree);
    const bool shared =
        std::any_of(blocks.indexes.begin(), blocks.indexes.end(),
                    [&](const auto& block) { return u32(block.bytes, kTreeAt) == tree; });
    Space space(file);
    if (!shared) {
        const RowPointer map = RowPointer::read(blocks.trees.at(tree).bytes, kOwnedAt);
        for (const PageNo page : readUsageMap(file, map)) {
            space.giveBack(page);
        }
        MapRows(file, space).remove(map);
        eraseTree(blocks, tree);
    }
    writeBlocks(file, space, definition.page, blocks);
    CatalogWriter(file).noteChange(definition.page);
}

}  // namespace vl::jet
