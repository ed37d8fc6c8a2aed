// A data page while it is changed.
#pragma once

#include "DataPage.h"

namespace vl::jet {

/// A data page's own copy, in which rows come, go and grow; the others move up or down and keep
/// their numbers. Bytes that no row needs are given to the free room when the draft is made.
/// Source: docs/jet4.md, "Data page".
class DataPageDraft {
public:
    using Slot = DataPage::Slot;
    /// Row numbers stay below this.
    static constexpr std::size_t kMostSlots = 255;
    /// What a page without rows has room for.
    static constexpr std::size_t kLongestRow = kPageSize - 14 - 2;

    /// A page without rows.
    explicit DataPageDraft(std::uint32_t owner);
    /// Throws `Error` (`ErrNo::Corrupt`) as `DataPage` does.
    explicit DataPageDraft(const Page& page);

    std::uint32_t owner() const noexcept;
    std::uint16_t slotCount() const noexcept;
    /// `index` < slotCount().
    Slot slot(std::uint16_t index) const noexcept;
    ByteView row(std::uint16_t index) const noexcept;

    /// The longest row that `add` has room for; 0 also when all numbers are taken.
    std::size_t room() const noexcept;
    /// Gives the row's number: a new one, or that of a deleted row when there are no new ones.
    /// `bytes` is no longer than `room()`.
    std::uint8_t add(ByteView bytes, Slot state);

    /// Whether the row can become so long.
    bool fits(std::uint16_t index, std::size_t length) const noexcept;
    /// `bytes` fits, and does not lie in this page.
    void replace(std::uint16_t index, ByteView bytes, Slot state);
    void erase(std::uint16_t index);

    bool allDeleted() const noexcept;
    const Page::Bytes& bytes() const noexcept { return bytes_; }

private:
    std::size_t start(std::uint16_t index) const noexcept;
    std::size_t end(std::uint16_t index) const noexcept;
    std::size_t lowest() const noexcept;
    std::size_t gap() const noexcept;
    void resize(std::uint16_t index, std::size_t length);
    void setSlot(std::uint16_t index, std::size_t start, Slot state);
    void noteFree();

    Page::Bytes bytes_{};
};

}  // namespace vl::jet
