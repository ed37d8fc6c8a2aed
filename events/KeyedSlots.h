// The items of a collection in order, found by position and by key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Variant.h"

namespace vl {

/// A list of slots. A removed item leaves its slot behind, so that no other slot moves; a Fenwick
/// tree over the slots (1 a live one, 0 a removed one) turns positions into slots and back. While
/// nothing was removed a position simply is its slot plus one, and there is no tree.
///
/// Invariants: `live_` slots are live; the last slot is live; `byKey_` holds exactly the folded
/// keys of live, keyed slots; `tree_` is empty or counts exactly the live slots.
///
/// Cost: by key O(1), by position and append O(log n), remove O(log n) amortised (the list is
/// packed when more than half of it is removed), insert before the end O(n).
class KeyedSlots {
public:
    struct Slot {
        Variant value;
        std::string key;  // as written; of an item without a key the placeholder
        bool keyed = false;
        bool live = true;
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t live() const noexcept { return live_; }

    /// Slot of a position counted from 1, or of a key; `kNone` when there is none.
    std::size_t slotAt(std::int64_t position) const noexcept;
    std::size_t slotOf(std::string_view key) const;
    /// Position, from 1, of a live slot.
    std::size_t positionOf(std::size_t slot) const noexcept;
    /// The first live slot from `slot` on; `kNone` behind the last.
    std::size_t nextLive(std::size_t slot) const noexcept;

    const Slot& operator[](std::size_t slot) const noexcept { return slots_[slot]; }
    void setValue(std::size_t slot, Variant value) { slots_[slot].value = std::move(value); }

    /// Puts an item before the one at `position` (1 .. live() + 1). The key of a keyed item must
    /// not be taken.
    void insert(std::size_t position, Slot item);
    void remove(std::size_t slot);

private:
    void append(Slot item);
    void pack();  // forgets removed slots
    void buildTree();
    std::size_t countThrough(std::size_t slot) const noexcept;

    std::vector<Slot> slots_;
    std::vector<std::uint32_t> tree_;  // tree_[i] counts slots (i & (i + 1)) .. i
    std::unordered_map<std::string, std::size_t> byKey_;
    std::size_t live_ = 0;
};

}  // namespace vl
