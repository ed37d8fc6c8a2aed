// The page that rows, long values and usage maps are stored on.
#pragma once

#include "PageFile.h"

namespace vl::jet {

/// As a file stores it: row number, then page number in three bytes.
struct RowPointer {
    PageNo page = 0;
    std::uint8_t row = 0;

    static RowPointer read(ByteView bytes, std::size_t at) noexcept;
    friend bool operator==(const RowPointer&, const RowPointer&) = default;
};

/// A data page, read in place: holds no bytes of its own, so `page` must outlive it.
///
///   offset  size  little-endian
///   0       1     0x01, the kind of page
///   2       2     free bytes between the slot table and the lowest row
///   4       4     page of the owning table's definition; "LVAL" for long values, 0 for map pages
///   8       4     not understood; left as read
///   12      2     n, number of slots
///   14      2*n   slot: low 13 bits the row's start, high bits its state
///
/// Rows are stored from the page's end towards its start, so row i ends where row i-1 begins.
/// Source: docs/jet4.md, "Data page".
class DataPage {
public:
    /// The high bits of a slot.
    enum class Slot : std::uint16_t {
        Row = 0,
        Moved = 0x4000,    ///< a pointer to the row stands here
        Body = 0x8000,     ///< a row moved to here, reached through its pointer only
        Deleted = 0xC000,  ///< its bytes may be gone
    };
    static constexpr std::uint16_t kStateBits = 0xC000;
    static constexpr std::uint16_t kStartBits = 0x1FFF;
    static constexpr std::uint32_t kLongValues = 0x4C41564C;  // "LVAL"
    static constexpr std::size_t kMostSlots = 256;            // a row number is one byte

    /// An empty page without slots.
    DataPage() = default;
    /// Throws `Error` (`ErrNo::Corrupt`) unless `page` is a data page whose slots are in order and
    /// inside the page. After that no access can leave it.
    explicit DataPage(const Page& page);

    std::uint32_t owner() const noexcept;
    std::uint16_t slotCount() const noexcept { return slots_; }
    /// `index` < slotCount().
    Slot slot(std::uint16_t index) const noexcept;
    /// The slot's bytes; for a moved row its pointer, not the row. `index` < slotCount().
    ByteView row(std::uint16_t index) const noexcept;

private:
    std::uint16_t rawSlot(std::uint16_t index) const noexcept;
    std::size_t start(std::uint16_t index) const noexcept;

    ByteView bytes_;
    std::uint16_t slots_ = 0;
};

/// The plain row that `pointer` names: a usage map or a piece of a long value, which never move.
/// `page` receives the page, which must outlive the bytes. Throws `Error` (`ErrNo::Corrupt`)
/// unless it is there.
ByteView plainRow(PageFile& file, RowPointer pointer, Page& page);

}  // namespace vl::jet
