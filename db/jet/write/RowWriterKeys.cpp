// What becomes of the entries in a table's indexes when a row comes, changes or goes.
#include <algorithm>

#include "IndexPages.h"
#include "Relations.h"
#include "RowWriter.h"
#include "TableLabel.h"
#include "index/IndexTree.h"

namespace vl::jet {

std::vector<Variant> RowWriter::partsOf(std::size_t tree, const Fields& fields,
                                        const Origin& origin) {
    std::vector<Variant> values;
    for (const KeyColumn& part : table_.trees[tree].columns) {
        values.push_back(valueOf(file_, part.column, fields[part.position], origin));
    }
    return values;
}

// What becomes of a tree's entry when a row that was `before` (null: is new) will be `after` (null:
// goes); refused here if it may not.
void RowWriter::planKey(std::vector<KeyChange>& plan, std::size_t tree, const Fields* before,
                        const Fields* after, std::optional<RowId> own) {
    const IndexDefinition& index = table_.trees[tree];
    const auto label = [&] { return indexLabel(tree); };
    const Origin origin{file_.name(), own ? own->page : table_.page};
    KeyChange change{tree, {}, {}};
    std::vector<Variant> oldParts;
    std::vector<Variant> newParts;
    IndexKey newKey;
    if (before) {
        oldParts = partsOf(tree, *before, origin);
        IndexKey key = labelled(label, [&] { return indexKey(index, oldParts); });
        if (!(index.ignoreNulls && key.isAllNull)) {
            change.before = std::move(key.bytes);
        }
    }
    if (after) {
        newParts = partsOf(tree, *after, origin);
        newKey = labelled(label, [&] { return indexKey(index, newParts); });
        if (!(index.ignoreNulls && newKey.isAllNull)) {
            change.after = newKey.bytes;
        }
    }
    if (change.before == change.after) {
        return;
    }
    labelled(label, [&] {
        IndexPages pages(file_);
        Relations relations(file_, table_);
        if (before) {
            relations.checkOld(tree, oldParts);
        }
        if (after) {
            relations.checkNew(tree, newParts);
        }
        if (change.after) {
            IndexTree(pages, index, table_.page).checkKey(newKey, own);
        }
    });
    plan.push_back(std::move(change));
}

std::string RowWriter::indexLabel(std::size_t tree) const {
    const auto index = std::find_if(table_.indexes.begin(), table_.indexes.end(),
                                    [&](const Index& i) { return i.tree == tree; });
    return tableLabel(file_, table_) +
           (index == table_.indexes.end() ? ", an index" : ", index \"" + index->name + "\"");
}

void RowWriter::writeKeys(const std::vector<KeyChange>& plan, RowId id) {
    IndexPages pages(file_);
    for (const KeyChange& change : plan) {
        IndexTree tree(pages, table_.trees[change.tree], table_.page);
        if (change.before) {
            tree.remove(*change.before, id);
        }
        if (change.after && tree.insert(*change.after, id)) {
            counters_.addKey(change.tree);
        }
    }
}

}  // namespace vl::jet
