// A walk over an index's entries.
#pragma once

#include "IndexPage.h"
#include "PageSpace.h"

namespace vl::jet {

/// Stands before the first entry in question at the beginning; goes upwards only. Holds one page.
/// `pages` must outlive it. Every method throws `Error` (`ErrNo::Corrupt` with the page, or
/// `ErrNo::Io`). However damaged the tree is, a walk ends: pages whose entries do not ascend from
/// one to the next are damage.
class IndexCursor {
public:
    /// Before the first entry whose key is not less than `from`: a key, or what keys begin with;
    /// empty for all. Costs a page for each level of the tree.
    IndexCursor(PageSource& pages, const IndexDefinition& index, PageNo definitionPage,
                ByteView from = {});

    bool next();

    // Of the current entry, after `next` gave true.

    /// Valid until the next call of `next`.
    ByteView key() const noexcept { return ByteView(entry_).first(entry_.size() - kEntryRow); }
    RowId row() const noexcept { return rowAtEnd(entry_); }
    /// The leaf that it stands on.
    PageNo page() const noexcept { return leaf_.number(); }

private:
    void descend(PageNo root);

    PageSource& pages_;
    PageNo definitionPage_;
    KeyBytes from_;  // until the first entry is found
    IndexPage leaf_;
    std::size_t nextEntry_ = 0;
    KeyBytes entry_;
    KeyBytes last_;  // of the pages before
};

/// No tree of keys is higher than this.
inline constexpr int kHighestTree = 32;

}  // namespace vl::jet
