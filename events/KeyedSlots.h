// The items of a collection in order, found by position and by key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "KeyIndex.h"
#include "SlotOrder.h"
#include "base/SharedText.h"
#include "base/Variant.h"

namespace vl {

/// Items in slots that never move: an item keeps its slot until it is removed, and the slot then
/// serves the next item. The order of the slots is a matter of its own (`SlotOrder`), and so are
/// the keys (`KeyIndex`).
///
/// Invariants: `order_` and `free_` together hold every slot once; `byKey_` holds exactly the
/// keyed items.
///
/// Cost: by key and by position O(1), append and remove at both ends O(1) amortised, insert and
/// remove elsewhere O(sqrt n). A copy shares all until one of the two changes something: of the
/// items it then copies a block, of the order 8 bytes an item, of the keys 11 to 21.
class KeyedSlots {
public:
    using Slot = SlotOrder::Slot;
    struct Item {
        Variant value;
        SharedText key;  // as written
        bool keyed = false;
        std::uint32_t hash = 0;  // of the key (`hashNoCase`)
        /// Of an item without a key the placeholder.
        std::string_view shownKey() const noexcept { return keyed ? key.view() : "z"; }
    };
    static constexpr Slot kNone = KeyIndex::kNone;

    std::size_t count() const noexcept { return order_->size(); }

    /// Slot of a position counted from 1, or of a key; `kNone` when there is none.
    Slot slotAt(std::int64_t position) const noexcept;
    Slot slotOf(std::string_view key) const noexcept {
        return count() == 0 ? kNone : slotOf(key, hashNoCase(key));
    }
    /// The same for who knows the key's hash.
    Slot slotOf(std::string_view key, std::uint32_t hash) const noexcept;
    /// Position, from 1, of the item in a slot.
    std::size_t positionOf(Slot slot) const noexcept { return order_->indexOf(slot) + 1; }

    const Item& operator[](Slot slot) const noexcept {
        return (*blocks_[slot / kBlock])[slot % kBlock];
    }
    /// The item at an index, counted from 0 and less than `count()`.
    const Item& at(std::size_t index) const noexcept { return (*this)[order_->at(index)]; }

    /// See `KeyIndex`.
    void expect(std::uint32_t hash) const noexcept { byKey_->expect(hash); }

    /// How many slots there are, those that wait for an item included.
    std::size_t slotCount() const noexcept;
    /// The slots in which the two hold different values, ascending. Blocks that the two share are
    /// not looked at.
    std::vector<Slot> differing(const KeyedSlots& other) const;

    void setValue(Slot slot, Variant value) { own(slot).value = std::move(value); }
    /// Puts an item before the one at `position` (1 .. count() + 1). The key of a keyed item must
    /// not be taken.
    void insert(std::size_t position, Item item);
    void remove(Slot slot);
    /// The same as taking the slot's item out and putting `item`, which has an equal key, behind
    /// all others.
    void moveToEnd(Slot slot, Item item);

private:
    static constexpr Slot kBlock = 128;
    using Block = std::vector<Item>;

    Item& own(Slot slot);  // for changing
    Slot addSlot();

    std::vector<std::shared_ptr<Block>> blocks_;  // by slot; all full but the last
    std::vector<Slot> free_;
    std::shared_ptr<SlotOrder> order_ = std::make_shared<SlotOrder>();  // never null, nor is this:
    std::shared_ptr<KeyIndex> byKey_ = std::make_shared<KeyIndex>();
};

}  // namespace vl
