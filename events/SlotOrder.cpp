#include "SlotOrder.h"

#include <cassert>
#include <utility>

namespace vl {

std::size_t SlotOrder::entry(std::size_t ring, std::size_t offset) const noexcept {
    return (ring << bits_) + ((heads_[ring] + offset) & (ringSize() - 1));
}

SlotOrder::Slot SlotOrder::at(std::size_t index) const noexcept {
    assert(index < size_);
    const std::size_t place = front_ + index;
    return entries_[entry(place >> bits_, place & (ringSize() - 1))];
}

std::size_t SlotOrder::indexOf(Slot slot) const noexcept {
    const std::size_t at = entryOf_[slot];
    const std::size_t ring = at >> bits_;
    return (ring << bits_) + ((at - heads_[ring]) & (ringSize() - 1)) - front_;
}

void SlotOrder::put(std::size_t ring, std::size_t offset, Slot slot) noexcept {
    const std::size_t at = entry(ring, offset);
    entries_[at] = slot;
    entryOf_[slot] = static_cast<std::uint32_t>(at);
}

void SlotOrder::turn(std::size_t ring, std::size_t by) noexcept {
    heads_[ring] = static_cast<std::uint32_t>((heads_[ring] + by) & (ringSize() - 1));
}

void SlotOrder::insert(std::size_t index, Slot slot) {
    assert(index <= size_);
    if (slot >= entryOf_.size()) {
        entryOf_.resize(slot + std::size_t{1});
    }
    if (front_ + size_ == entries_.size() && heads_.size() > 2 * ringSize()) {
        rebuild(bits_ + 1);
    }
    if (front_ + size_ == entries_.size()) {
        heads_.push_back(0);
        entries_.resize(entries_.size() + ringSize());
    }
    const std::size_t last = ringSize() - 1;
    const std::size_t place = front_ + index;
    const std::size_t ring = place >> bits_;
    const std::size_t free = front_ + size_;  // the first place behind the list
    // The last entry of each ring becomes the first of the next one.
    for (std::size_t r = free >> bits_; r > ring; --r) {
        turn(r, last);
        put(r, 0, entries_[entry(r - 1, last)]);
    }
    const std::size_t offset = place & last;
    for (std::size_t o = free >> bits_ == ring ? free & last : last; o > offset; --o) {
        put(ring, o, entries_[entry(ring, o - 1)]);
    }
    put(ring, offset, slot);
    ++size_;
}

void SlotOrder::removeAt(std::size_t index) {
    assert(index < size_);
    const std::size_t place = front_ + index;
    const std::size_t offset = place & (ringSize() - 1);
    if (index < size_ / 2) {
        closeFromBefore(place >> bits_, offset);
        ++front_;
    } else {
        closeFromBehind(place >> bits_, offset);
    }
    --size_;
    if (front_ > size_ + ringSize()) {
        rebuild(bits_);
    }
}

void SlotOrder::closeFromBehind(std::size_t ring, std::size_t offset) noexcept {
    const std::size_t last = ringSize() - 1;
    const std::size_t back = front_ + size_ - 1;
    const std::size_t top = back >> bits_ == ring ? back & last : last;
    for (std::size_t o = offset; o < top; ++o) {
        put(ring, o, entries_[entry(ring, o + 1)]);
    }
    for (std::size_t r = ring + 1; r <= back >> bits_; ++r) {
        put(r - 1, last, entries_[entry(r, 0)]);
        turn(r, 1);
    }
}

void SlotOrder::closeFromBefore(std::size_t ring, std::size_t offset) noexcept {
    const std::size_t last = ringSize() - 1;
    const std::size_t bottom = front_ >> bits_ == ring ? front_ & last : 0;
    for (std::size_t o = offset; o > bottom; --o) {
        put(ring, o, entries_[entry(ring, o - 1)]);
    }
    for (std::size_t r = ring; r > front_ >> bits_; --r) {
        put(r, 0, entries_[entry(r - 1, last)]);
        turn(r - 1, last);
    }
}

void SlotOrder::rebuild(unsigned bits) {
    std::vector<Slot> order(size_);
    for (std::size_t i = 0; i < size_; ++i) {
        order[i] = at(i);
    }
    bits_ = bits;
    front_ = 0;
    const std::size_t rings = (size_ + ringSize() - 1) >> bits_;
    heads_.assign(rings, 0);
    order.resize(rings << bits_);
    entries_ = std::move(order);
    for (std::size_t i = 0; i < size_; ++i) {
        entryOf_[entries_[i]] = static_cast<std::uint32_t>(i);
    }
}

}  // namespace vl
