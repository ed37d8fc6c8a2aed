#include "Relationships.h"

#include <algorithm>
#include <optional>
#include <string>

#include "Bytes.h"
#include "Catalog.h"
#include "TableDefinition.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "define/Define.h"
#include "define/DefinitionEdit.h"

namespace vl::jet {

namespace {

// Of the block of an index.
constexpr std::size_t kNumberAt = 0x04;
constexpr std::size_t kTreeAt = 0x08;
constexpr std::size_t kOtherNumberAt = 0x0D;
constexpr std::size_t kOtherPageAt = 0x11;
constexpr std::size_t kKindAt = 0x17;
constexpr unsigned kRelationship = 2;

using IndexBlock = DefinitionBlocks::IndexBlock;
/// An index: the page of its table's definition, and its number there.
using IndexId = std::pair<PageNo, std::uint32_t>;

bool relates(const IndexBlock& block) { return u8(block.bytes, kKindAt) == kRelationship; }

bool sameKeys(const IndexDefinition& a, const IndexDefinition& b) {
    return a.unique == b.unique && a.ignoreNulls == b.ignoreNulls && a.required == b.required &&
           std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(), b.columns.end(),
                      [](const KeyColumn& x, const KeyColumn& y) {
                          return x.column.name == y.column.name && x.descending == y.descending;
                      });
}

std::optional<std::uint32_t> treeLike(const TableDefinition& table, const IndexDefinition& keys) {
    for (std::uint32_t i = 0; i < table.trees.size(); ++i) {
        if (sameKeys(table.trees[i], keys)) {
            return i;
        }
    }
    return std::nullopt;
}

// One of these keys that stands alone: an index is made with it, whose name then goes.
std::uint32_t makeTree(PageFile& target, const TableDefinition& table,
                       const IndexDefinition& keys) {
    const std::string name = "VL" + std::to_string(table.trees.size()) + " made for a relationship";
    NewIndex index{name, false, keys.unique, keys.ignoreNulls, keys.required, {}};
    for (const KeyColumn& part : keys.columns) {
        index.columns.push_back({part.column.name, part.descending});
    }
    createIndex(target, table.name, index);
    DefinitionBlocks blocks = readBlocks(target, table.page);
    std::erase_if(blocks.indexes,
                  [&](const IndexBlock& b) { return text::fromUtf16(b.name) == name; });
    Space space(target);
    writeBlocks(target, space, table.page, blocks);
    return static_cast<std::uint32_t>(blocks.trees.size() - 1);
}

void insertByName(std::vector<IndexBlock>& indexes, IndexBlock block) {
    const std::string name = text::fromUtf16(block.name);
    const auto behind = std::find_if(indexes.begin(), indexes.end(), [&](const IndexBlock& other) {
        return text::compareNoCase(text::fromUtf16(other.name), name) > 0;
    });
    indexes.insert(behind, std::move(block));
}

/// One copying.
class Relating {
public:
    Relating(PageFile& source, PageFile& target, const std::map<PageNo, PageNo>& pages)
        : source_(source), target_(target), pages_(pages) {}

    // With numbers of their own; that of the other side is still the old one.
    void addIndexes(PageNo from, PageNo to) {
        const TableDefinition table = readTableDefinition(source_, from, "");
        for (const IndexBlock& block : readBlocks(source_, from).indexes) {
            if (!relates(block) || !pages_.contains(u32(block.bytes, kOtherPageAt))) {
                continue;
            }
            const IndexDefinition& keys = table.trees.at(u32(block.bytes, kTreeAt));
            const std::uint32_t tree = treeFor(to, keys);
            DefinitionBlocks blocks = readBlocks(target_, to);
            std::uint32_t number = 0;
            for (const IndexBlock& other : blocks.indexes) {
                number = std::max(number, u32(other.bytes, kNumberAt) + 1);
            }
            numbers_[{from, u32(block.bytes, kNumberAt)}] = number;
            IndexBlock made = block;
            store(std::span<std::byte>(made.bytes), kNumberAt, number);
            store(std::span<std::byte>(made.bytes), kTreeAt, tree);
            insertByName(blocks.indexes, std::move(made));
            Space space(target_);
            writeBlocks(target_, space, to, blocks);
        }
    }

    void joinIndexes(PageNo to) {
        DefinitionBlocks blocks = readBlocks(target_, to);
        for (IndexBlock& block : blocks.indexes) {
            if (!relates(block)) {
                continue;
            }
            const std::span<std::byte> bytes(block.bytes);
            const PageNo otherPage = u32(block.bytes, kOtherPageAt);
            const auto number = numbers_.find({otherPage, u32(block.bytes, kOtherNumberAt)});
            if (number == numbers_.end()) {
                Origin{source_.name(), otherPage}.corrupt(
                    "a relationship has an index in one of its tables only");
            }
            store(bytes, kOtherNumberAt, number->second);
            store(bytes, kOtherPageAt, pages_.at(otherPage));
        }
        Space space(target_);
        writeBlocks(target_, space, to, blocks);
    }

private:
    std::uint32_t treeFor(PageNo to, const IndexDefinition& keys) {
        const TableDefinition table = readTableDefinition(target_, to, nameOf(to));
        const auto tree = treeLike(table, keys);
        return tree ? *tree : makeTree(target_, table, keys);
    }

    std::string nameOf(PageNo to) {
        for (const TableInfo& info : readCatalog(target_)) {
            if (info.definitionPage == to) {
                return info.name;
            }
        }
        Origin{target_.name(), to}.corrupt("is a table that the catalog does not know");
    }

    PageFile& source_;
    PageFile& target_;
    const std::map<PageNo, PageNo>& pages_;
    std::map<IndexId, std::uint32_t> numbers_;  // old to new
};

}  // namespace

void copyRelationships(PageFile& source, PageFile& target, const std::map<PageNo, PageNo>& pages) {
    Relating relating(source, target, pages);
    for (const auto& [from, to] : pages) {
        relating.addIndexes(from, to);
    }
    for (const auto& [from, to] : pages) {
        relating.joinIndexes(to);
    }
}

}  // namespace vl::jet
