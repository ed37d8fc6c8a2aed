// An index's tree of keys, for writing.
#pragma once

#include <optional>
#include <vector>

#include "IndexDraft.h"
#include "IndexKey.h"
#include "PageSpace.h"

namespace vl::jet {

/// Holds no pages between calls: each reads from the root down (a page for each level) and writes
/// what it changes, children before parents. `pages` and `index` must outlive it. When a call
/// throws between two writes the tree may be half changed: whoever implements `PageSpace` takes
/// such writes back. Throws `Error`: `ErrNo::Corrupt` with the page for a tree that contradicts
/// itself, and what `pages` throws.
///
/// Of the tree it keeps:
///  1. entries ascend, in a page and from leaf to leaf, and every leaf is as far from the root;
///  2. a node's entry is the last entry of its child's subtree; the last child has none;
///  3. all leaves are one list; nodes are linked among the children of one parent;
///  4. the root stays on its page, and no other leaf is empty;
///  5. the index's map holds the tree's pages and no others.
/// Source: docs/jet4.md, "Index page".
class IndexTree {
public:
    IndexTree(PageSpace& pages, const IndexDefinition& index, PageNo definitionPage);

    /// Throws `Error` unless a row may have this key: `ErrNo::TypeMismatch` for a null where the
    /// index needs values, `ErrNo::Exists` where it is unique and another row has the key, unless
    /// all of it is null; `ErrNo::Overflow` for one too long for any page. `own` is the row itself,
    /// when it has an entry already.
    void checkKey(const IndexKey& key, std::optional<RowId> own = {});

    /// Whether a row other than `except` has the key.
    bool contains(ByteView key, std::optional<RowId> except = {});

    /// Whether the key was new, as far as the leaf shows it: a table counts these. Asks for
    /// neither uniqueness nor nulls. Throws `Error` (`ErrNo::Overflow`), before anything is
    /// written, for a key too long for any page, and `ErrNo::Corrupt` when the entry is there.
    bool insert(ByteView key, RowId row);

    /// Throws `Error` (`ErrNo::Corrupt`), before anything is written, when there is no such entry.
    void remove(ByteView key, RowId row);

    /// The first page of an index without entries.
    static Page::Bytes emptyRoot(PageNo definitionPage);

private:
    /// A page on the way from the root to a leaf.
    struct Step {
        PageNo number;
        IndexDraft draft;
        std::size_t child = 0;  // the way goes on here; `count()` of the draft is the tail
    };
    using Path = std::vector<Step>;

    IndexDraft load(PageNo number);
    static bool atTail(const Path& path);
    Path descend(ByteView entry);
    Path descendToInsert(ByteView entry);
    void adoptNext(Path& path);
    void write(PageNo number, const IndexDraft& draft);
    void link(PageNo number, std::size_t at, PageNo value);
    void store(Path& path, std::size_t depth, bool atEnd);
    void growRoot(Path& path);
    void splitInTwo(Path& path, std::size_t depth, bool atEnd);
    void startNextLeaf(Path& path, std::size_t depth);
    void dropPage(Path& path, std::size_t depth);
    void lowerSeparator(Path& path, std::size_t depth, KeyBytes last);
    void shrinkRoot();
    void giveBack(PageNo number);
    [[noreturn]] void corrupt(PageNo page, const std::string& what);

    PageSpace& pages_;
    const IndexDefinition& index_;
    IndexOwner owner_;
};

}  // namespace vl::jet
