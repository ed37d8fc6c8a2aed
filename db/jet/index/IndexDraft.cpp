#include "IndexDraft.h"

#include <algorithm>
#include <cassert>

#include "Bytes.h"

namespace vl::jet {

namespace {

std::ptrdiff_t step(std::size_t n) { return static_cast<std::ptrdiff_t>(n); }

}  // namespace

IndexDraft::IndexDraft(const IndexPage& page)
    : leaf(page.leaf()),
      level(page.level()),
      previous(page.previous()),
      next(page.next()),
      tail(page.tailChild()) {
    ends_.reserve(page.count() + 1);
    bytes_.reserve(page.used() + page.count() * page.prefix() + kLongestEntry);
    KeyBytes entry;
    for (std::size_t i = 0; i < page.count(); ++i) {
        page.entry(i, entry);
        bytes_.insert(bytes_.end(), entry.begin(), entry.end());
        ends_.push_back(bytes_.size());
    }
}

ByteView IndexDraft::entry(std::size_t index) const noexcept {
    assert(index < count());
    return ByteView(bytes_).subspan(start(index), ends_[index] - start(index));
}

ByteView IndexDraft::sorted(std::size_t index) const noexcept {
    const ByteView whole = entry(index);
    return leaf ? whole : whole.first(whole.size() - kEntryChild);
}

PageNo IndexDraft::child(std::size_t index) const noexcept {
    assert(!leaf);
    return index == count() ? tail : childAtEnd(entry(index));
}

std::size_t IndexDraft::lowerBound(ByteView key) const noexcept {
    std::size_t low = 0;
    std::size_t high = count();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const ByteView there = sorted(middle);
        if (std::lexicographical_compare(there.begin(), there.end(), key.begin(), key.end())) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

void IndexDraft::insert(std::size_t index, ByteView entry) {
    const std::size_t at = start(index);
    bytes_.insert(bytes_.begin() + step(at), entry.begin(), entry.end());
    ends_.insert(ends_.begin() + step(index), at);
    for (std::size_t i = index; i < ends_.size(); ++i) {
        ends_[i] += entry.size();
    }
}

void IndexDraft::erase(std::size_t index) {
    const std::size_t size = entry(index).size();
    bytes_.erase(bytes_.begin() + step(start(index)), bytes_.begin() + step(ends_[index]));
    ends_.erase(ends_.begin() + step(index));
    for (std::size_t i = index; i < ends_.size(); ++i) {
        ends_[i] -= size;
    }
}

IndexDraft IndexDraft::takeFront(std::size_t n) {
    IndexDraft front(leaf);
    front.level = level;
    const std::size_t size = start(n);
    front.bytes_.assign(bytes_.begin(), bytes_.begin() + step(size));
    front.ends_.assign(ends_.begin(), ends_.begin() + step(n));
    bytes_.erase(bytes_.begin(), bytes_.begin() + step(size));
    ends_.erase(ends_.begin(), ends_.begin() + step(n));
    for (std::size_t& end : ends_) {
        end -= size;
    }
    return front;
}

std::size_t IndexDraft::commonPrefix(std::size_t from, std::size_t to) const noexcept {
    if (to - from < 2) {
        return 0;
    }
    // What the first and the last have in common all have: they are sorted.
    const ByteView first = entry(from);
    const ByteView last = entry(to - 1);
    std::size_t shortest = std::min(first.size(), last.size());
    const auto differ = std::mismatch(first.begin(), first.begin() + step(shortest), last.begin());
    for (std::size_t i = from; i < to; ++i) {
        shortest = std::min(shortest, entry(i).size());
    }
    return std::min(static_cast<std::size_t>(differ.first - first.begin()), shortest - 1);
}

std::size_t IndexDraft::storedSize(std::size_t from, std::size_t to) const noexcept {
    const std::size_t whole = start(to) - start(from);
    return whole <= kIndexRoom ? whole : whole - commonPrefix(from, to) * (to - from - 1);
}

std::size_t IndexDraft::splitPoint(bool atEnd) const noexcept {
    // A node keeps an entry on both sides: one less would be a node with a single child.
    const std::size_t least = leaf ? 1 : 2;
    const std::size_t most = count() - 1;
    assert(most >= least);
    const auto possible = [&](std::size_t n) {
        return storedSize(0, leaf ? n : n - 1) <= kIndexRoom &&
               storedSize(n, count()) <= kIndexRoom;
    };
    const auto middle = std::lower_bound(ends_.begin(), ends_.end(), bytes_.size() / 2);
    const std::size_t wanted =
        atEnd ? most
              : std::clamp(static_cast<std::size_t>(middle - ends_.begin()) + 1, least, most);
    for (std::size_t away = 0; away < count(); ++away) {
        if (wanted >= least + away && possible(wanted - away)) {
            return wanted - away;
        }
        if (wanted + away <= most && possible(wanted + away)) {
            return wanted + away;
        }
    }
    assert(false);  // no entry is longer than kLongestEntry
    return wanted;
}

Page::Bytes IndexDraft::encode(PageNo definitionPage) const {
    Page::Bytes page{};
    const std::span<std::byte> bytes(page);
    const std::size_t prefix = bytes_.size() <= kIndexRoom ? 0 : commonPrefix(0, count());
    assert(bytes_.size() - prefix * (count() > 1 ? count() - 1 : 0) <= kIndexRoom);
    store(bytes, 0, leaf ? kIndexLeaf : kIndexNode);
    store(bytes, 1, std::uint8_t{1});
    store(bytes, kIndexOwnerAt, definitionPage);
    store(bytes, kIndexPreviousAt, previous);
    store(bytes, kIndexNextAt, next);
    store(bytes, kIndexTailAt, leaf ? PageNo{0} : tail);
    store(bytes, kIndexPrefixAt, static_cast<std::uint16_t>(prefix));
    store(bytes, kIndexLevelAt, leaf ? std::uint8_t{0} : level);
    std::size_t used = 0;
    for (std::size_t i = 0; i < count(); ++i) {
        const ByteView whole = entry(i);
        const ByteView own = whole.subspan(i == 0 ? 0 : prefix);
        std::copy(own.begin(), own.end(), page.begin() + step(kIndexEntriesAt + used));
        used += own.size();
        page[kIndexMaskAt + used / 8] |= static_cast<std::byte>(1U << (used % 8));
    }
    store(bytes, kIndexFreeAt, static_cast<std::uint16_t>(kIndexRoom - used));
    return page;
}

}  // namespace vl::jet
