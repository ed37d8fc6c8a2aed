#include "IndexTree.h"

#include <algorithm>

#include "IndexCursor.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

bool same(ByteView a, ByteView b) { return std::equal(a.begin(), a.end(), b.begin(), b.end()); }

bool beginsWith(ByteView bytes, ByteView with) {
    return bytes.size() >= with.size() && same(bytes.first(with.size()), with);
}

ByteView keyOf(ByteView leafEntry) { return leafEntry.first(leafEntry.size() - kEntryRow); }

KeyBytes entryOf(ByteView key, RowId row) {
    KeyBytes entry(key.begin(), key.end());
    appendRow(entry, row);
    return entry;
}

}  // namespace

IndexTree::IndexTree(PageSpace& pages, const IndexDefinition& index, PageNo definitionPage)
    : pages_(pages), index_(index), owner_{definitionPage, index.ownedPages} {}

void IndexTree::checkKey(const IndexKey& key, std::optional<RowId> own) {
    if (key.bytes.size() + kEntryRow + kEntryChild > kLongestEntry) {
        throw Error(ErrNo::Overflow, "a key of " + std::to_string(key.bytes.size()) +
                                         " bytes is too long for an index");
    }
    if (index_.required && key.hasNull) {
        throw Error(ErrNo::TypeMismatch, "a column of the index is null, but needs a value");
    }
    if (index_.unique && !key.isAllNull && contains(key.bytes, own)) {
        throw Error(ErrNo::Exists, "another row has the same key in a unique index");
    }
}

bool IndexTree::contains(ByteView key, std::optional<RowId> except) {
    IndexCursor cursor(pages_, index_, owner_.definitionPage, key);
    // Keys of binary columns may begin with a whole other key, so entries of both may alternate.
    while (cursor.next() && beginsWith(cursor.key(), key)) {
        if (cursor.key().size() == key.size() && cursor.row() != except) {
            return true;
        }
    }
    return false;
}

bool IndexTree::insert(ByteView key, RowId row) {
    const KeyBytes entry = entryOf(key, row);
    if (entry.size() + kEntryChild > kLongestEntry) {
        throw Error(ErrNo::Overflow,
                    "a key of " + std::to_string(key.size()) + " bytes is too long for an index");
    }
    Path path = descendToInsert(entry);
    IndexDraft& leaf = path.back().draft;
    const std::size_t at = leaf.lowerBound(entry);
    if (at < leaf.count() && same(leaf.entry(at), entry)) {
        corrupt(path.back().number, "the index has an entry of the new row already");
    }
    const bool fresh = (at == 0 || !same(keyOf(leaf.entry(at - 1)), key)) &&
                       (at == leaf.count() || !same(keyOf(leaf.entry(at)), key));
    const bool atEnd = at == leaf.count() && atTail(path);
    leaf.insert(at, entry);
    store(path, path.size() - 1, atEnd);
    return fresh;
}

void IndexTree::remove(ByteView key, RowId row) {
    const KeyBytes entry = entryOf(key, row);
    Path path = descend(entry);
    const std::size_t depth = path.size() - 1;
    IndexDraft& leaf = path[depth].draft;
    const std::size_t at = leaf.lowerBound(entry);
    if (at == leaf.count() || !same(leaf.entry(at), entry)) {
        corrupt(path[depth].number, "the index has no entry of row " + std::to_string(row.row) +
                                        " on page " + std::to_string(row.page));
    }
    leaf.erase(at);
    if (leaf.count() == 0 && depth > 0) {
        dropPage(path, depth);
        shrinkRoot();
        return;
    }
    write(path[depth].number, leaf);
    if (at == leaf.count() && depth > 0) {
        const ByteView last = leaf.entry(at - 1);
        lowerSeparator(path, depth, KeyBytes(last.begin(), last.end()));
    }
}

Page::Bytes IndexTree::emptyRoot(PageNo definitionPage) {
    return IndexDraft(true).encode(definitionPage);
}

// Entries that do not ascend are not written again: what they share with the first and last is
// not what those share.
IndexDraft IndexTree::load(PageNo number) {
    IndexDraft page(IndexPage(pages_.page(number), owner_.definitionPage));
    for (std::size_t i = 1; i < page.count(); ++i) {
        const ByteView a = page.sorted(i - 1);
        const ByteView b = page.sorted(i);
        if (!std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end())) {
            corrupt(number, "entry " + std::to_string(i) + " is not behind the one before");
        }
    }
    return page;
}

bool IndexTree::atTail(const Path& path) {
    return std::all_of(path.begin(), path.end() - 1,
                       [](const Step& step) { return step.child == step.draft.count(); });
}

IndexTree::Path IndexTree::descend(ByteView entry) {
    Path path;
    PageNo number = index_.root;
    while (path.size() < kHighestTree) {
        Step& step = path.emplace_back(Step{number, load(number)});
        IndexDraft& page = step.draft;
        if (page.leaf) {
            return path;
        }
        if (page.tail == 0) {
            // The last child may be written as an entry like the others. We write it one way.
            if (page.count() == 0) {
                corrupt(number, "a node of an index has no children");
            }
            page.tail = page.child(page.count() - 1);
            page.erase(page.count() - 1);
            write(number, page);
        }
        step.child = page.lowerBound(entry);
        number = page.child(step.child);
    }
    corrupt(index_.root, "the index that begins here has no leaves");
}

// The engine is said to hang new leaves at the end of the list alone for a while. An entry that
// belongs behind one must not go before it.
IndexTree::Path IndexTree::descendToInsert(ByteView entry) {
    Path path = descend(entry);
    while (path.back().draft.next != 0 && atTail(path)) {
        adoptNext(path);
        path = descend(entry);
    }
    return path;
}

// The last leaf's successor becomes the tail child.
void IndexTree::adoptNext(Path& path) {
    const Step& step = path.back();
    const IndexDraft next = load(step.draft.next);
    const std::size_t count = step.draft.count();
    if (path.size() == 1 || count == 0 || next.count() == 0 || !next.leaf ||
        next.lowerBound(step.draft.entry(count - 1)) != 0 ||
        same(next.entry(0), step.draft.entry(count - 1))) {
        corrupt(step.draft.next,
                "does not continue the index behind page " + std::to_string(step.number));
    }
    const ByteView last = step.draft.entry(count - 1);
    KeyBytes separator(last.begin(), last.end());
    appendChild(separator, step.number);
    IndexDraft& parent = path[path.size() - 2].draft;
    parent.insert(parent.count(), separator);
    parent.tail = step.draft.next;
    store(path, path.size() - 2, true);
}

void IndexTree::write(PageNo number, const IndexDraft& draft) {
    pages_.write(number, draft.encode(owner_.definitionPage));
}

// Changes one link of a page and nothing else.
void IndexTree::link(PageNo number, std::size_t at, PageNo value) {
    if (number == 0) {
        return;
    }
    IndexDraft draft = load(number);
    (at == kIndexNextAt ? draft.next : draft.previous) = value;
    write(number, draft);
}

// Writes a page of the path, in as many pages as it takes.
void IndexTree::store(Path& path, std::size_t depth, bool atEnd) {
    IndexDraft& draft = path[depth].draft;
    draft.level = static_cast<std::uint8_t>(path.size() - 1 - depth);
    if (draft.fits()) {
        write(path[depth].number, draft);
        return;
    }
    if (depth == 0) {
        growRoot(path);
        depth = 1;
    }
    if (path[depth].draft.leaf && atEnd) {
        startNextLeaf(path, depth);
    } else {
        splitInTwo(path, depth, atEnd);
    }
    store(path, depth - 1, atEnd);
}

// The root's content goes to another page; the root becomes a node above it.
void IndexTree::growRoot(Path& path) {
    const PageNo number = pages_.allocate(owner_);
    IndexDraft root(false);
    root.tail = number;
    path.insert(path.begin(), Step{path[0].number, root});
    path[1].number = number;
}

// Keys that come in ascending order fill their pages: the full one stays as it is.
void IndexTree::startNextLeaf(Path& path, std::size_t depth) {
    Step& step = path[depth];
    IndexDraft full = step.draft.takeFront(step.draft.count() - 1);
    const PageNo number = pages_.allocate(owner_);
    IndexDraft& fresh = step.draft;
    full.previous = fresh.previous;
    full.next = number;
    fresh.previous = step.number;
    fresh.next = 0;
    write(number, fresh);
    write(step.number, full);

    const ByteView last = full.entry(full.count() - 1);
    KeyBytes separator(last.begin(), last.end());
    appendChild(separator, step.number);
    IndexDraft& parent = path[depth - 1].draft;
    parent.insert(parent.count(), separator);
    parent.tail = number;
}

// The lower entries go to a new page before this one, which keeps its place in the parent.
void IndexTree::splitInTwo(Path& path, std::size_t depth, bool atEnd) {
    Step& step = path[depth];
    IndexDraft& right = step.draft;
    const PageNo number = pages_.allocate(owner_);
    IndexDraft left = right.takeFront(right.splitPoint(atEnd));
    left.previous = right.previous;
    left.next = step.number;
    right.previous = number;

    const ByteView last = left.sorted(left.count() - 1);
    KeyBytes separator(last.begin(), last.end());
    appendChild(separator, number);
    if (!left.leaf) {
        left.tail = left.child(left.count() - 1);
        left.erase(left.count() - 1);
        if (depth + 2 < path.size()) {  // the children are nodes, now of two parents
            link(left.tail, kIndexNextAt, 0);
            link(right.child(0), kIndexPreviousAt, 0);
        }
    }
    write(number, left);
    link(left.previous, kIndexNextAt, number);
    write(step.number, right);
    path[depth - 1].draft.insert(path[depth - 1].child, separator);
}

// The page, which is not the root, has nothing left in it.
void IndexTree::dropPage(Path& path, std::size_t depth) {
    const IndexDraft& empty = path[depth].draft;
    link(empty.previous, kIndexNextAt, empty.next);
    link(empty.next, kIndexPreviousAt, empty.previous);
    giveBack(path[depth].number);

    IndexDraft& parent = path[depth - 1].draft;
    const std::size_t child = path[depth - 1].child;
    if (child < parent.count()) {
        parent.erase(child);
        write(path[depth - 1].number, parent);
    } else if (parent.count() > 0) {
        const ByteView before = parent.sorted(parent.count() - 1);
        KeyBytes last(before.begin(), before.end());
        parent.tail = parent.child(parent.count() - 1);
        parent.erase(parent.count() - 1);
        write(path[depth - 1].number, parent);
        lowerSeparator(path, depth - 1, std::move(last));
    } else if (depth > 1) {
        dropPage(path, depth - 1);
    } else {
        write(path[0].number, IndexDraft(true));
    }
}

void IndexTree::giveBack(PageNo number) {
    if (number == index_.root) {
        corrupt(number, "the root of an index is below a node");
    }
    pages_.free(owner_, number);
}

// The last entry below this page has changed: so does the entry above that repeats it.
void IndexTree::lowerSeparator(Path& path, std::size_t depth, KeyBytes last) {
    while (depth-- > 0) {
        Step& step = path[depth];
        if (step.child < step.draft.count()) {
            appendChild(last, step.draft.child(step.child));
            step.draft.erase(step.child);
            step.draft.insert(step.child, last);
            store(path, depth, false);
            return;
        }
    }
}

// A root with one child takes its place.
void IndexTree::shrinkRoot() {
    for (;;) {
        const IndexDraft root = load(index_.root);
        if (root.leaf || root.count() > 0) {
            return;
        }
        if (root.tail == index_.root) {
            corrupt(root.tail, "a node of an index is its own child");
        }
        IndexDraft child = load(root.tail);
        child.previous = 0;
        child.next = 0;
        write(index_.root, child);
        giveBack(root.tail);
    }
}

void IndexTree::corrupt(PageNo page, const std::string& what) {
    pages_.page(page).origin().corrupt(what);
}

}  // namespace vl::jet
