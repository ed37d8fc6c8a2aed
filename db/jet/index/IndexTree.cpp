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

void IndexTree::corrupt(PageNo page, const std::string& what) {
    pages_.page(page).origin().corrupt(what);
}

}  // namespace vl::jet
