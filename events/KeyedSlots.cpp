#include "KeyedSlots.h"

#include <cassert>
#include <utility>

#include "base/Text.h"

namespace vl {

KeyedSlots::Slot KeyedSlots::slotAt(std::int64_t position) const noexcept {
    if (position < 1 || static_cast<std::uint64_t>(position) > count()) {
        return kNone;
    }
    return order_.at(static_cast<std::size_t>(position) - 1);
}

KeyedSlots::Slot KeyedSlots::slotOf(std::string_view key) const noexcept {
    return byKey_.find(hashNoCase(key), [&](Slot slot) {
        return items_[slot].key == key || text::equalsNoCase(items_[slot].key, key);
    });
}

void KeyedSlots::insert(std::size_t position, Item item) {
    assert(position >= 1 && position <= count() + 1);
    assert(!item.keyed || slotOf(item.key) == kNone);
    auto slot = static_cast<Slot>(items_.size());
    if (free_.empty()) {
        items_.emplace_back();
    } else {
        slot = free_.back();
        free_.pop_back();
    }
    if (item.keyed) {
        item.hash = hashNoCase(item.key);
        byKey_.add(item.hash, slot);
    }
    items_[slot] = std::move(item);
    order_.insert(position - 1, slot);
}

void KeyedSlots::remove(Slot slot) {
    order_.removeAt(order_.indexOf(slot));
    if (items_[slot].keyed) {
        byKey_.remove(items_[slot].hash, slot);
    }
    items_[slot] = Item();
    free_.push_back(slot);
}

}  // namespace vl
