// Whether an index's tree is what it should be.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PageSpace.h"

namespace vl::jet {

struct IndexFinding {
    PageNo page = 0;
    std::string what;
};

struct IndexReport {
    std::vector<IndexFinding> findings;  ///< empty: nothing is wrong
    std::vector<PageNo> pages;           ///< of the tree, ascending
    std::uint64_t entries = 0;           ///< of leaves
    int height = 0;                      ///< levels; 1: the root is a leaf
    int emptyLeaves = 0;                 ///< no damage, but we leave none
};

/// Walks the whole tree once: order within and between pages, prefix, free bytes and mask, levels,
/// links, what nodes say of their children, and that the pages in `ownedPages` (ascending) are the
/// tree's. Does not stop at damage: goes on where pages can still be read, and never twice over
/// one. Throws only what is no damage (`ErrNo::Io`).
IndexReport checkIndex(PageSource& pages, const IndexDefinition& index, PageNo definitionPage,
                       const std::vector<PageNo>& ownedPages);

}  // namespace vl::jet
