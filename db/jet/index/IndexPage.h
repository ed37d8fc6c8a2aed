// One page of an index's tree.
#pragma once

#include <vector>

#include "PageFile.h"

namespace vl::jet {

// Where what stands on an index page.
inline constexpr std::size_t kIndexFreeAt = 0x02;
inline constexpr std::size_t kIndexOwnerAt = 0x04;
inline constexpr std::size_t kIndexPreviousAt = 0x0C;
inline constexpr std::size_t kIndexNextAt = 0x10;
inline constexpr std::size_t kIndexTailAt = 0x14;
inline constexpr std::size_t kIndexPrefixAt = 0x18;
inline constexpr std::size_t kIndexLevelAt = 0x1A;
inline constexpr std::size_t kIndexMaskAt = 0x1B;
inline constexpr std::size_t kIndexEntriesAt = 0x1E0;
inline constexpr std::size_t kIndexRoom = kPageSize - kIndexEntriesAt;

inline constexpr std::uint8_t kIndexNode = 3;
inline constexpr std::uint8_t kIndexLeaf = 4;

/// Bytes of the row pointer that ends an entry of a leaf, and of the page number after it that
/// ends one of a node. Both with the highest byte first.
inline constexpr std::size_t kEntryRow = 4;
inline constexpr std::size_t kEntryChild = 4;

/// Appends a row pointer as entries hold it.
void appendRow(KeyBytes& entry, RowId row);
void appendChild(KeyBytes& entry, PageNo child);
/// The row pointer, or page number, in the last four of these bytes.
RowId rowAtEnd(ByteView entry) noexcept;
PageNo childAtEnd(ByteView entry) noexcept;

/// An index page, read in place; keeps the page's bytes.
///
///   offset  size  little-endian
///   0       1     3 node, 4 leaf
///   2       2     free bytes
///   4       4     page of the table's definition
///   C       4     page before on this level, 0 none
///   10      4     page after
///   14      4     node: child behind the last entry, 0 none
///   18      2     prefix: so many bytes of the first entry begin all the others, too, and are not
///                 stored there
///   1A      1     height above the leaves, or 0
///   1B      453   bit k, lowest first: an entry ends k bytes after 1E0
///   1E0     3616  entries, ascending
///
/// An entry of a leaf is a key and a row pointer; one of a node is the last entry of a child's
/// subtree and that child's page. Source: docs/jet4.md, "Index page".
class IndexPage {
public:
    IndexPage() = default;
    /// Throws `Error` (`ErrNo::Corrupt`) unless it is an index page of the table whose definition
    /// is on `definitionPage`, with entries that are whole and a first one not behind the last.
    /// After that no access can leave the page.
    IndexPage(Page page, PageNo definitionPage);

    const Origin& origin() const noexcept { return page_.origin(); }
    PageNo number() const noexcept { return page_.number(); }
    bool leaf() const noexcept { return leaf_; }
    std::uint8_t level() const noexcept;
    PageNo previous() const noexcept;
    PageNo next() const noexcept;
    PageNo tailChild() const noexcept;
    std::size_t prefix() const noexcept { return prefix_; }
    std::size_t freeBytes() const noexcept;
    /// What the entries take.
    std::size_t used() const noexcept { return ends_.empty() ? 0 : ends_.back(); }

    std::size_t count() const noexcept { return ends_.size(); }
    /// Puts the whole entry into `entry`.
    void entry(std::size_t index, KeyBytes& entry) const;
    /// Of a node; counts the child behind the last entry, which must be there, too.
    PageNo child(std::size_t index) const noexcept;
    /// The first entry that is not less than `key`, which may end with a row pointer; `count()`
    /// when all are. What the binary search finds when entries are out of order is some entry.
    std::size_t lowerBound(ByteView key) const noexcept;

private:
    void readMask();
    void checkEntries() const;
    ByteView stored(std::size_t index) const noexcept;
    bool less(std::size_t index, ByteView key) const noexcept;

    Page page_;
    bool leaf_ = true;
    std::size_t prefix_ = 0;
    std::vector<std::uint16_t> ends_;
};

}  // namespace vl::jet
