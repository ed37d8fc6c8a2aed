#include "IndexCheck.h"

#include <algorithm>
#include <optional>
#include <set>

#include "Bytes.h"
#include "IndexCursor.h"
#include "IndexDraft.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

bool lessBytes(ByteView a, ByteView b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

/// A page's neighbours, as it names them.
struct Links {
    PageNo page = 0;
    PageNo previous = 0;
    PageNo next = 0;
};

class Checker {
public:
    Checker(PageSource& pages, PageNo definitionPage)
        : pages_(pages), definitionPage_(definitionPage) {}

    IndexReport run(PageNo root, const std::vector<PageNo>& ownedPages) {
        if (const std::optional<Links> links = walk(root, 1)) {
            if (!leaves_.empty() && leaves_.front().page != root) {
                checkList({*links}, "node");
            }
        }
        checkList(leaves_, "leaf");
        report_.pages.assign(seen_.begin(), seen_.end());
        compareOwned(ownedPages);
        return std::move(report_);
    }

private:
    void find(PageNo page, std::string what) {
        report_.findings.push_back({page, std::move(what)});
    }

    std::optional<IndexPage> read(PageNo number) {
        if (!seen_.insert(number).second) {
            find(number, "is in the tree twice");
            return std::nullopt;
        }
        try {
            return IndexPage(pages_.page(number), definitionPage_);
        } catch (const Error& e) {
            if (e.number() != ErrNo::Corrupt) {
                throw;
            }
            seen_.erase(number);
            find(number, e.what());
            return std::nullopt;
        }
    }

    /// Checks the subtree that begins on page `number`, `depth` levels down, the root being 1.
    std::optional<Links> walk(PageNo number, int depth) {
        if (depth > kHighestTree) {
            find(number, "is deeper than any tree of keys");
            return std::nullopt;
        }
        const std::optional<IndexPage> page = read(number);
        if (!page) {
            return std::nullopt;
        }
        checkPage(*page);
        if (page->leaf()) {
            walkLeaf(*page, depth);
        } else {
            walkNode(*page, depth);
        }
        return Links{number, page->previous(), page->next()};
    }

    void walkLeaf(const IndexPage& page, int depth) {
        if (report_.height == 0) {
            report_.height = depth;
        } else if (report_.height != depth) {
            find(page.number(), "is a leaf on another level than the first one");
        }
        const IndexDraft draft(page);
        for (std::size_t i = 0; i < draft.count(); ++i) {
            const ByteView entry = draft.entry(i);
            if (!last_.empty() && !lessBytes(last_, entry)) {
                find(page.number(),
                     "entry " + std::to_string(i) + " is not behind the one before it");
            }
            last_.assign(entry.begin(), entry.end());
        }
        report_.entries += page.count();
        report_.emptyLeaves += page.count() == 0 ? 1 : 0;
        leaves_.push_back({page.number(), page.previous(), page.next()});
    }

    void walkNode(const IndexPage& page, int depth) {
        const IndexDraft draft(page);
        const std::size_t children = draft.count() + (draft.tail != 0 ? 1 : 0);
        if (children == 0) {
            find(page.number(), "is a node without children");
        }
        std::vector<Links> nodes;
        for (std::size_t i = 0; i < children; ++i) {
            const std::size_t leavesBefore = leaves_.size();
            const std::uint64_t entriesBefore = report_.entries;
            const std::optional<Links> child = walk(draft.child(i), depth + 1);
            if (child && (leaves_.size() == leavesBefore || leaves_.back().page != child->page)) {
                nodes.push_back(*child);
            }
            if (child && i < draft.count() && report_.entries > entriesBefore) {
                const ByteView named = draft.sorted(i);
                if (!std::equal(named.begin(), named.end(), last_.begin(), last_.end())) {
                    find(page.number(), "entry " + std::to_string(i) +
                                            " is not the last one below page " +
                                            std::to_string(child->page));
                }
            }
        }
        checkList(nodes, "node");
        const int above = report_.height - depth;
        if (page.level() != 0 && report_.height != 0 && page.level() != above) {
            find(page.number(), "says it is " + std::to_string(page.level()) +
                                    " above the leaves, but is " + std::to_string(above));
        }
    }

    void checkPage(const IndexPage& page) {
        if (page.freeBytes() + page.used() != kIndexRoom) {
            find(page.number(), "says it has " + std::to_string(page.freeBytes()) +
                                    " free bytes, but has " +
                                    std::to_string(kIndexRoom - page.used()));
        }
        if (page.leaf() && u32(pages_.page(page.number()).bytes(), kIndexTailAt) != 0) {
            find(page.number(), "is a leaf, but names a child");
        }
        if (page.leaf() && page.level() != 0) {
            find(page.number(), "is a leaf, but says it is above the leaves");
        }
    }

    // Pages that come one after the other on their level must name each other.
    void checkList(const std::vector<Links>& list, const char* kind) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            const PageNo before = i == 0 ? 0 : list[i - 1].page;
            const PageNo after = i + 1 == list.size() ? 0 : list[i + 1].page;
            if (list[i].previous != before) {
                find(list[i].page, std::string("the ") + kind + " before it is page " +
                                       std::to_string(before) + ", but it names page " +
                                       std::to_string(list[i].previous));
            }
            if (list[i].next != after) {
                find(list[i].page, std::string("the ") + kind + " after it is page " +
                                       std::to_string(after) + ", but it names page " +
                                       std::to_string(list[i].next));
            }
        }
    }

    void compareOwned(const std::vector<PageNo>& ownedPages) {
        const std::set<PageNo> owned(ownedPages.begin(), ownedPages.end());
        for (const PageNo page : owned) {
            if (!seen_.contains(page)) {
                find(page, "is in the index's map, but not in its tree");
            }
        }
        for (const PageNo page : seen_) {
            if (!owned.contains(page)) {
                find(page, "is in the index's tree, but not in its map");
            }
        }
    }

    PageSource& pages_;
    PageNo definitionPage_;
    IndexReport report_;
    std::set<PageNo> seen_;
    std::vector<Links> leaves_;
    KeyBytes last_;  // of the leaves so far
};

}  // namespace

IndexReport checkIndex(PageSource& pages, const IndexDefinition& index, PageNo definitionPage,
                       const std::vector<PageNo>& ownedPages) {
    return Checker(pages, definitionPage).run(index.root, ownedPages);
}

}  // namespace vl::jet
