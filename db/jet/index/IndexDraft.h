// An index page while it is changed.
#pragma once

#include <vector>

#include "IndexPage.h"

namespace vl::jet {

/// The longest entry, child page included: an overfull page can then always be split in two.
inline constexpr std::size_t kLongestEntry = kIndexRoom / 2;

/// Entries whole and side by side; how they are stored is settled when the page is encoded. A page
/// that is overfull can be held, but not encoded.
class IndexDraft {
public:
    explicit IndexDraft(bool isLeaf) : leaf(isLeaf) {}
    explicit IndexDraft(const IndexPage& page);

    bool leaf;
    std::uint8_t level = 0;
    PageNo previous = 0;
    PageNo next = 0;
    PageNo tail = 0;  ///< of a node

    std::size_t count() const noexcept { return ends_.size(); }
    ByteView entry(std::size_t index) const noexcept;
    /// What sorts it: the entry of a node without its child.
    ByteView sorted(std::size_t index) const noexcept;
    /// Of a node; `count()` is the one behind the last entry.
    PageNo child(std::size_t index) const noexcept;
    /// The first entry that is not less than `key`.
    std::size_t lowerBound(ByteView key) const noexcept;

    void insert(std::size_t index, ByteView entry);
    void erase(std::size_t index);
    /// Takes the first `n` entries away and gives them as a page of the same kind.
    IndexDraft takeFront(std::size_t n);

    bool fits() const noexcept { return storedSize(0, count()) <= kIndexRoom; }
    /// Where to split an overfull page: the number of entries for the left one. Of a node the last
    /// of these goes up and needs no room. As even as the entries allow; with `atEnd` the right
    /// page gets as little as possible.
    std::size_t splitPoint(bool atEnd) const noexcept;

    Page::Bytes encode(PageNo definitionPage) const;

private:
    std::size_t start(std::size_t index) const noexcept {
        return index == 0 ? 0 : ends_[index - 1];
    }
    std::size_t commonPrefix(std::size_t from, std::size_t to) const noexcept;
    // What the entries from `from` up to `to` take on a page of their own.
    std::size_t storedSize(std::size_t from, std::size_t to) const noexcept;

    KeyBytes bytes_;
    std::vector<std::size_t> ends_;
};

}  // namespace vl::jet
