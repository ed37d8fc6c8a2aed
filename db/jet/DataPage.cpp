#include "DataPage.h"

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kSlotTable = 14;

}  // namespace

RowPointer RowPointer::read(ByteView bytes, std::size_t at) noexcept {
    const std::uint32_t raw = u32(bytes, at);
    return {raw >> 8, static_cast<std::uint8_t>(raw)};
}

DataPage::DataPage(const Page& page) : bytes_(page.bytes()) {
    if (u8(bytes_, 0) != 1) {
        page.origin().corrupt("is no data page");
    }
    slots_ = u16(bytes_, 12);
    if (slots_ > kMostSlots) {
        page.origin().corrupt("has " + std::to_string(slots_) + " rows");
    }
    const std::size_t lowest = kSlotTable + std::size_t{2} * slots_;
    std::size_t end = kPageSize;
    for (std::uint16_t i = 0; i < slots_; ++i) {
        const std::size_t begin = start(i);
        if (begin < lowest || begin > end) {
            page.origin().corrupt("row " + std::to_string(i) + " is not inside the page");
        }
        end = begin;
    }
}

std::uint32_t DataPage::owner() const noexcept { return u32(bytes_, 4); }

DataPage::Slot DataPage::slot(std::uint16_t index) const noexcept {
    return static_cast<Slot>(rawSlot(index) & kStateBits);
}

ByteView DataPage::row(std::uint16_t index) const noexcept {
    const std::size_t begin = start(index);
    const std::size_t end = index == 0 ? kPageSize : start(static_cast<std::uint16_t>(index - 1));
    return bytes_.subspan(begin, end - begin);
}

std::uint16_t DataPage::rawSlot(std::uint16_t index) const noexcept {
    return u16(bytes_, kSlotTable + std::size_t{2} * index);
}

std::size_t DataPage::start(std::uint16_t index) const noexcept {
    return rawSlot(index) & kStartBits;
}

ByteView plainRow(PageFile& file, RowPointer pointer, Page& page) {
    page = file.page(pointer.page);
    const DataPage data(page);
    if (pointer.row >= data.slotCount() || data.slot(pointer.row) != DataPage::Slot::Row) {
        page.origin().corrupt("row " + std::to_string(pointer.row) +
                              " is pointed to, but is not there");
    }
    return data.row(pointer.row);
}

}  // namespace vl::jet
