#include "IndexCursor.h"

namespace vl::jet {

IndexCursor::IndexCursor(PageSource& pages, const IndexDefinition& index, PageNo definitionPage,
                         ByteView from)
    : pages_(pages), definitionPage_(definitionPage), from_(from.begin(), from.end()) {
    descend(index.root);
}

void IndexCursor::descend(PageNo root) {
    PageNo number = root;
    for (int height = 0; height < kHighestTree; ++height) {
        IndexPage page(pages_.page(number), definitionPage_);
        const std::size_t at = page.lowerBound(from_);
        if (page.leaf()) {
            leaf_ = std::move(page);
            nextEntry_ = at;
            return;
        }
        const bool noTail = at == page.count() && page.tailChild() == 0;
        if (noTail && page.count() == 0) {
            page.origin().corrupt("a node of an index has no children");
        }
        number = page.child(noTail ? at - 1 : at);
    }
    pages_.page(root).origin().corrupt("the index that begins here has no leaves");
}

bool IndexCursor::next() {
    PageNo empty = 0;
    while (nextEntry_ == leaf_.count()) {
        if (leaf_.next() == 0) {
            return false;
        }
        if (leaf_.count() > 0) {
            leaf_.entry(leaf_.count() - 1, last_);
        }
        IndexPage following(pages_.page(leaf_.next()), definitionPage_);
        if (!following.leaf()) {
            following.origin().corrupt("is no leaf, but one comes before it");
        }
        if (following.count() == 0 && ++empty > pages_.pageCount()) {
            following.origin().corrupt("empty leaves follow each other in a circle");
        }
        if (following.count() > 0 && !last_.empty()) {
            KeyBytes first;
            following.entry(0, first);
            if (!(last_ < first)) {
                following.origin().corrupt("begins with an entry that belongs before it");
            }
        }
        leaf_ = std::move(following);
        // Leaves that no node names yet may hold less than what was sought.
        nextEntry_ = leaf_.lowerBound(from_);
    }
    leaf_.entry(nextEntry_, entry_);
    ++nextEntry_;
    from_.clear();
    return true;
}

}  // namespace vl::jet
