#include <algorithm>
#include <optional>

#include "Bytes.h"
#include "CatalogWriter.h"
#include "Define.h"
#include "DefinitionDraft.h"
#include "DefinitionEdit.h"
#include "IndexTree.h"
#include "MapRows.h"
#include "Rules.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "write/IndexPages.h"

namespace vl::jet {

namespace {

struct Entry {
    IndexKey key;
    RowId row;
};

IndexDefinition planOf(const TableDefinition& table, const NewIndex& index) {
    IndexDefinition plan;
    for (const IndexColumn& part : index.columns) {
        const auto column =
            std::find_if(table.columns.begin(), table.columns.end(),
                         [&](const Column& c) { return text::equalsNoCase(c.name, part.name); });
        plan.columns.push_back(
            {static_cast<std::size_t>(column - table.columns.begin()), *column, part.descending});
    }
    plan.unique = index.unique || index.primary;
    plan.ignoreNulls = index.ignoreNulls;
    plan.required = index.required || index.primary;
    return plan;
}

// In the order of the index.
std::vector<Entry> entriesOf(PageFile& file, const TableDefinition& table,
                             const IndexDefinition& plan) {
    std::vector<Entry> entries;
    std::vector<Variant> values(plan.columns.size());
    RowCursor row(file, std::make_shared<const TableDefinition>(table));
    while (row.next()) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = row.value(plan.columns[i].position);
        }
        IndexKey key = indexKey(plan, values);
        if (!(plan.ignoreNulls && key.isAllNull)) {
            entries.push_back({std::move(key), row.id()});
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.key.bytes < b.key.bytes; });
    return entries;
}

// Before anything is written.
void checkEntries(const std::vector<Entry>& entries, const IndexDefinition& plan,
                  const std::string& what) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const IndexKey& key = entries[i].key;
        if (plan.required && key.hasNull) {
            throw Error(ErrNo::TypeMismatch, what + ": a row has null where a value is required");
        }
        if (plan.unique && i > 0 && !key.isAllNull && key.bytes == entries[i - 1].key.bytes) {
            throw Error(ErrNo::Exists, what + ": two rows have the same values");
        }
        if (key.bytes.size() + kEntryRow + kEntryChild > kLongestEntry) {
            throw Error(ErrNo::Overflow, what + ": the values of a row are too long");
        }
    }
}

}  // namespace

void createIndex(PageFile& file, std::string_view table, const NewIndex& index) {
    const TableDefinition definition = userTable(file, table);
    checkNewIndex(definition, index);
    IndexDefinition plan = planOf(definition, index);
    const std::vector<Entry> entries = entriesOf(file, definition, plan);
    checkEntries(
        entries, plan,
        file.name() + ": index \"" + index.name + "\" of table \"" + definition.name + "\"");

    DefinitionBlocks blocks = readBlocks(file, definition.page);
    Space space(file);
    plan.root = space.take();
    file.writePage(plan.root, IndexTree::emptyRoot(definition.page));
    plan.ownedPages = MapRows(file, space, blocks.ownedPages().page).add();
    space.add(plan.ownedPages, plan.root);
    appendIndex(blocks, index, plan.ownedPages, plan.root);
    IndexPages pages(file);
    IndexTree tree(pages, plan, definition.page);
    std::uint32_t distinct = 0;
    for (const Entry& entry : entries) {
        distinct += tree.insert(entry.key.bytes, entry.row) ? 1U : 0U;
    }
    store(std::span<std::byte>(blocks.trees.back().counter), 4, distinct);
    writeBlocks(file, space, definition.page, blocks);
    CatalogWriter(file).noteChange(definition.page);
}

}  // namespace vl::jet
