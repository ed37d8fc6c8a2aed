#include "KeyedSlots.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/Text.h"

namespace vl {

namespace {

/// The part for changing: a copy of its own where a copy of the list has it, too.
template <class Part>
Part& ownOf(std::shared_ptr<Part>& part) {
    if (part.use_count() > 1) {
        part = std::make_shared<Part>(*part);
    }
    return *part;
}

}  // namespace

KeyedSlots::Item& KeyedSlots::own(Slot slot) {
    return ownOf(blocks_[slot / kBlock])[slot % kBlock];
}

KeyedSlots::Slot KeyedSlots::addSlot() {
    if (blocks_.empty() || blocks_.back()->size() == kBlock) {
        blocks_.push_back(std::make_shared<Block>());
        if (blocks_.size() > 1) {
            blocks_.back()->reserve(kBlock);
        }
    }
    ownOf(blocks_.back()).emplace_back();
    return static_cast<Slot>((blocks_.size() - 1) * kBlock + blocks_.back()->size() - 1);
}

KeyedSlots::Slot KeyedSlots::slotAt(std::int64_t position) const noexcept {
    if (position < 1 || static_cast<std::uint64_t>(position) > count()) {
        return kNone;
    }
    return order_->at(static_cast<std::size_t>(position) - 1);
}

KeyedSlots::Slot KeyedSlots::slotOf(std::string_view key, std::uint32_t hash) const noexcept {
    return byKey_->find(hash, [&](Slot slot) {
        const std::string_view present = (*this)[slot].key.view();
        return present == key || text::equalsNoCase(present, key);
    });
}

std::size_t KeyedSlots::slotCount() const noexcept {
    return blocks_.empty() ? 0 : (blocks_.size() - 1) * kBlock + blocks_.back()->size();
}

std::vector<KeyedSlots::Slot> KeyedSlots::differing(const KeyedSlots& other) const {
    std::vector<Slot> slots;
    static const Block kNoItems;
    const auto blockOf = [](const KeyedSlots& of, std::size_t block) -> const Block& {
        return block < of.blocks_.size() ? *of.blocks_[block] : kNoItems;
    };
    for (std::size_t b = 0; b < std::max(blocks_.size(), other.blocks_.size()); ++b) {
        const Block& here = blockOf(*this, b);
        const Block& there = blockOf(other, b);
        if (&here == &there) {
            continue;
        }
        for (std::size_t i = 0; i < std::max(here.size(), there.size()); ++i) {
            if (i >= here.size() || i >= there.size() || here[i].value != there[i].value) {
                slots.push_back(static_cast<Slot>(b * kBlock + i));
            }
        }
    }
    return slots;
}

void KeyedSlots::insert(std::size_t position, Item item) {
    assert(position >= 1 && position <= count() + 1);
    assert(!item.keyed || item.hash == hashNoCase(item.key.view()));
    assert(!item.keyed || slotOf(item.key.view()) == kNone);
    Slot slot = kNone;
    if (free_.empty()) {
        slot = addSlot();
    } else {
        slot = free_.back();
        free_.pop_back();
    }
    if (item.keyed) {
        ownOf(byKey_).add(item.hash, slot);
    }
    own(slot) = std::move(item);
    ownOf(order_).insert(position - 1, slot);
}

void KeyedSlots::remove(Slot slot) {
    ownOf(order_).removeAt(order_->indexOf(slot));
    Item& item = own(slot);
    if (item.keyed) {
        ownOf(byKey_).remove(item.hash, slot);
    }
    item = Item();
    free_.push_back(slot);
}

void KeyedSlots::moveToEnd(Slot slot, Item item) {
    assert((*this)[slot].keyed == item.keyed && (*this)[slot].hash == item.hash);
    SlotOrder& order = ownOf(order_);
    order.removeAt(order.indexOf(slot));
    order.insert(order.size(), slot);
    own(slot) = std::move(item);
}

}  // namespace vl
