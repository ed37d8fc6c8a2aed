#include "DataPageDraft.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kFreeAt = 2;
constexpr std::size_t kOwnerAt = 4;
constexpr std::size_t kCountAt = 12;
constexpr std::size_t kSlotTable = 14;
constexpr std::uint16_t kStartBits = DataPage::kStartBits;
constexpr std::size_t kPointer = 4;

}  // namespace

DataPageDraft::DataPageDraft(std::uint32_t owner) {
    store(std::span<std::byte>(bytes_), 0, std::uint16_t{0x0101});
    store(std::span<std::byte>(bytes_), kOwnerAt, owner);
    noteFree();
}

DataPageDraft::DataPageDraft(const Page& page) {
    const DataPage checked(page);
    std::copy(page.bytes().begin(), page.bytes().end(), bytes_.begin());
    for (std::uint16_t i = 0; i < checked.slotCount(); ++i) {
        const std::size_t length = end(i) - start(i);
        if (slot(i) == Slot::Deleted && length > 0) {
            resize(i, 0);
        } else if (slot(i) == Slot::Moved && length < kPointer) {
            page.origin().corrupt("the pointer of a moved row is cut off");
        } else if (slot(i) == Slot::Moved && length > kPointer) {
            std::array<std::byte, kPointer> pointer{};
            std::copy_n(row(i).begin(), kPointer, pointer.begin());
            replace(i, pointer, Slot::Moved);
        }
    }
    noteFree();
}

std::uint32_t DataPageDraft::owner() const noexcept { return u32(bytes_, kOwnerAt); }
std::uint16_t DataPageDraft::slotCount() const noexcept { return u16(bytes_, kCountAt); }

DataPage::Slot DataPageDraft::slot(std::uint16_t index) const noexcept {
    return static_cast<Slot>(u16(bytes_, kSlotTable + std::size_t{2} * index) &
                             DataPage::kStateBits);
}

ByteView DataPageDraft::row(std::uint16_t index) const noexcept {
    return ByteView(bytes_).subspan(start(index), end(index) - start(index));
}

std::size_t DataPageDraft::start(std::uint16_t index) const noexcept {
    assert(index < slotCount());
    return u16(bytes_, kSlotTable + std::size_t{2} * index) & kStartBits;
}

std::size_t DataPageDraft::end(std::uint16_t index) const noexcept {
    return index == 0 ? kPageSize : start(static_cast<std::uint16_t>(index - 1));
}

std::size_t DataPageDraft::lowest() const noexcept {
    const std::uint16_t slots = slotCount();
    return slots == 0 ? kPageSize : start(static_cast<std::uint16_t>(slots - 1));
}

std::size_t DataPageDraft::gap() const noexcept {
    return lowest() - kSlotTable - std::size_t{2} * slotCount();
}

std::size_t DataPageDraft::room() const noexcept {
    if (slotCount() < kMostSlots) {
        return gap() < 2 ? 0 : gap() - 2;
    }
    for (std::uint16_t i = 0; i < kMostSlots; ++i) {
        if (slot(i) == Slot::Deleted) {
            return gap();
        }
    }
    return 0;
}

std::uint8_t DataPageDraft::add(ByteView bytes, Slot state) {
    assert(bytes.size() <= room());
    std::uint16_t index = slotCount();
    if (index < kMostSlots) {
        const std::size_t at = lowest();
        store(std::span<std::byte>(bytes_), kCountAt, static_cast<std::uint16_t>(index + 1));
        setSlot(index, at, Slot::Deleted);
    } else {
        index = 0;
        while (slot(index) != Slot::Deleted) {
            ++index;
        }
    }
    replace(index, bytes, state);
    return static_cast<std::uint8_t>(index);
}

bool DataPageDraft::fits(std::uint16_t index, std::size_t length) const noexcept {
    return length <= gap() + (end(index) - start(index));
}

void DataPageDraft::replace(std::uint16_t index, ByteView bytes, Slot state) {
    resize(index, bytes.size());
    setSlot(index, start(index), state);
    std::copy(bytes.begin(), bytes.end(),
              bytes_.begin() + static_cast<std::ptrdiff_t>(start(index)));
    noteFree();
}

void DataPageDraft::erase(std::uint16_t index) {
    resize(index, 0);
    setSlot(index, start(index), Slot::Deleted);
    noteFree();
}

bool DataPageDraft::allDeleted() const noexcept {
    for (std::uint16_t i = 0; i < slotCount(); ++i) {
        if (slot(i) != Slot::Deleted) {
            return false;
        }
    }
    return true;
}

// Rows that follow move with the beginning of this one.
void DataPageDraft::resize(std::uint16_t index, std::size_t length) {
    const std::size_t from = lowest();
    const std::size_t upTo = start(index);
    const std::size_t begin = end(index) - length;
    const std::ptrdiff_t shift =
        static_cast<std::ptrdiff_t>(begin) - static_cast<std::ptrdiff_t>(upTo);
    std::memmove(bytes_.data() + static_cast<std::ptrdiff_t>(from) + shift, bytes_.data() + from,
                 upTo - from);
    for (std::uint16_t i = index; i < slotCount(); ++i) {
        const auto moved = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(start(i)) + shift);
        setSlot(i, moved, slot(i));
    }
}

void DataPageDraft::setSlot(std::uint16_t index, std::size_t start, Slot state) {
    store(std::span<std::byte>(bytes_), kSlotTable + std::size_t{2} * index,
          static_cast<std::uint16_t>(start | static_cast<std::uint16_t>(state)));
}

void DataPageDraft::noteFree() {
    store(std::span<std::byte>(bytes_), kFreeAt, static_cast<std::uint16_t>(gap()));
}

}  // namespace vl::jet
