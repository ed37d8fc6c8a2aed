#include "Relations.h"

#include <algorithm>

#include "IndexPages.h"
#include "base/ErrorState.h"
#include "index/IndexTree.h"

namespace vl::jet {

namespace {

bool anyNull(std::span<const Variant> values) {
    return std::any_of(values.begin(), values.end(), [](const Variant& v) { return v.isNull(); });
}

}  // namespace

void Relations::checkNew(std::size_t tree, std::span<const Variant> values) {
    for (const Index& index : table_.indexes) {
        if (index.foreign && !index.referenced && index.tree == tree && !anyNull(values) &&
            !otherHas(index, values)) {
            throw Error(ErrNo::NotFound, "relationship \"" + index.name +
                                             "\": no row has the key that the row refers to");
        }
    }
}

void Relations::checkOld(std::size_t tree, std::span<const Variant> values) {
    for (const Index& index : table_.indexes) {
        if (index.foreign && index.referenced && index.tree == tree && !anyNull(values) &&
            otherHas(index, values)) {
            throw Error(ErrNo::Exists, "relationship \"" + index.name +
                                           "\": rows of another table refer to the row");
        }
    }
}

bool Relations::otherHas(const Index& index, std::span<const Variant> values) {
    const TableDefinition other = readTableDefinition(file_, index.otherDefinition, "");
    const auto found = std::find_if(other.indexes.begin(), other.indexes.end(),
                                    [&](const Index& i) { return i.number == index.otherNumber; });
    if (found == other.indexes.end() || other.trees[found->tree].columns.size() != values.size()) {
        const Origin origin{file_.name(), table_.page};
        origin.corrupt("the other side of relationship \"" + index.name + "\" is not there");
    }
    IndexPages pages(file_);
    const IndexDefinition& tree = other.trees[found->tree];
    return IndexTree(pages, tree, other.page).contains(indexKey(tree, values).bytes);
}

}  // namespace vl::jet
