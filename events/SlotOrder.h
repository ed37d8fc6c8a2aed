// An order of numbers in which a place and its number are found from each other at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vl {

/// Slots (small numbers, each there at most once) in an order that changes in the middle: a list
/// cut into rings of 2^k entries, all full but the first and the last.
///
///   index + front_         = ring number * 2^k + offset in the ring
///   entry of ring `r`      = r * 2^k + (heads_[r] + offset) mod 2^k
///
/// Because every ring but the outer ones is full, an index leads to its ring by division. Because
/// a ring turns by moving its head, taking an entry out moves entries of one ring only, and one
/// entry from each ring to its neighbour up to the nearer end of the list.
///
/// Invariants: entries front_ .. front_ + size_ - 1 are in use; `entryOf_[slot]` is where a slot
/// stands in `entries_`; there are at most 2^(k+1) + 1 rings, so 2^k is about sqrt(n) or above.
///
/// Cost, n being the most slots there ever were: `at` and `indexOf` O(1) always; insert at the end
/// and remove at both ends O(1) amortised; insert and remove elsewhere O(sqrt n), two numbers
/// written for each of some hundred entries at n = 100,000. (With O(1) look-ups no order can change
/// in its middle for less than a power of n.) Memory: 8 bytes a slot.
///
/// An index or slot that is not there is a broken promise: asserted, not reported.
class SlotOrder {
public:
    using Slot = std::uint32_t;

    std::size_t size() const noexcept { return size_; }

    /// The slot at an index, from 0, and the index of a slot.
    Slot at(std::size_t index) const noexcept;
    std::size_t indexOf(Slot slot) const noexcept;

    /// Puts `slot`, which is not there yet, in front of the one at `index`, or at the end.
    void insert(std::size_t index, Slot slot);
    void removeAt(std::size_t index);

private:
    std::size_t ringSize() const noexcept { return std::size_t{1} << bits_; }
    std::size_t entry(std::size_t ring, std::size_t offset) const noexcept;
    void put(std::size_t ring, std::size_t offset, Slot slot) noexcept;
    void turn(std::size_t ring, std::size_t by) noexcept;
    void closeFromBehind(std::size_t ring, std::size_t offset) noexcept;
    void closeFromBefore(std::size_t ring, std::size_t offset) noexcept;
    void rebuild(unsigned bits);

    std::vector<Slot> entries_;
    std::vector<std::uint32_t> heads_;    // of each ring: which entry is its offset 0
    std::vector<std::uint32_t> entryOf_;  // by slot
    std::size_t front_ = 0;               // entries out of use before the first
    std::size_t size_ = 0;
    unsigned bits_ = 4;
};

}  // namespace vl
