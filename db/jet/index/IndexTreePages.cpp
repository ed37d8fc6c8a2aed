// The pages of an index's tree: how they come to be, part, and go.
#include "IndexTree.h"

namespace vl::jet {

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

}  // namespace vl::jet
