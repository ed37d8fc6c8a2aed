#include "KeyedSlots.h"

#include <bit>
#include <cassert>
#include <utility>

#include "base/Text.h"

namespace vl {

std::size_t KeyedSlots::slotAt(std::int64_t position) const noexcept {
    if (position < 1 || static_cast<std::uint64_t>(position) > live_) {
        return kNone;
    }
    if (tree_.empty()) {
        return static_cast<std::size_t>(position) - 1;
    }
    // Steps down in powers of two: `slot` slots are passed so far, `wanted` live ones remain.
    std::size_t slot = 0;
    auto wanted = static_cast<std::uint64_t>(position);
    for (std::size_t step = std::bit_floor(tree_.size()); step != 0; step /= 2) {
        if (slot + step <= tree_.size() && tree_[slot + step - 1] < wanted) {
            slot += step;
            wanted -= tree_[slot - 1];
        }
    }
    return slot;
}

std::size_t KeyedSlots::slotOf(std::string_view key) const {
    const auto found = byKey_.find(text::foldCase(key));
    return found == byKey_.end() ? kNone : found->second;
}

std::size_t KeyedSlots::positionOf(std::size_t slot) const noexcept {
    return tree_.empty() ? slot + 1 : countThrough(slot);
}

std::size_t KeyedSlots::nextLive(std::size_t slot) const noexcept {
    while (slot < slots_.size() && !slots_[slot].live) {
        ++slot;
    }
    return slot < slots_.size() ? slot : kNone;
}

void KeyedSlots::insert(std::size_t position, Slot item) {
    assert(position >= 1 && position <= live_ + 1);
    assert(!item.keyed || slotOf(item.key) == kNone);
    if (position == live_ + 1) {
        append(std::move(item));
        return;
    }
    pack();
    const std::size_t slot = position - 1;
    for (auto& entry : byKey_) {
        entry.second += entry.second >= slot ? 1 : 0;
    }
    if (item.keyed) {
        byKey_.emplace(text::foldCase(item.key), slot);
    }
    slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(slot), std::move(item));
    ++live_;
}

void KeyedSlots::append(Slot item) {
    const std::size_t slot = slots_.size();
    if (item.keyed) {
        byKey_.emplace(text::foldCase(item.key), slot);
    }
    slots_.push_back(std::move(item));
    ++live_;
    if (!tree_.empty()) {
        std::uint32_t count = 1;
        const std::size_t first = slot & (slot + 1);
        for (std::size_t i = slot; i > first; i = (i - 1) & i) {
            count += tree_[i - 1];
        }
        tree_.push_back(count);
    }
}

void KeyedSlots::remove(std::size_t slot) {
    assert(slot < slots_.size() && slots_[slot].live);
    if (slots_[slot].keyed) {
        byKey_.erase(text::foldCase(slots_[slot].key));
    }
    const bool last = slot + 1 == slots_.size();
    if (!last && tree_.empty()) {
        buildTree();
    }
    slots_[slot] = Slot{Variant(), {}, false, false};
    --live_;
    for (std::size_t i = slot; i < tree_.size(); i |= i + 1) {
        --tree_[i];
    }
    while (!slots_.empty() && !slots_.back().live) {
        slots_.pop_back();
        if (!tree_.empty()) {
            tree_.pop_back();
        }
    }
    if (slots_.size() > 2 * live_) {
        pack();
    }
}

void KeyedSlots::pack() {
    tree_.clear();
    if (slots_.size() == live_) {
        return;
    }
    std::size_t to = 0;
    for (std::size_t from = 0; from < slots_.size(); ++from) {
        if (!slots_[from].live) {
            continue;
        }
        if (to != from) {
            slots_[to] = std::move(slots_[from]);
            if (slots_[to].keyed) {
                byKey_[text::foldCase(slots_[to].key)] = to;
            }
        }
        ++to;
    }
    slots_.resize(to);
}

void KeyedSlots::buildTree() {
    tree_.assign(slots_.size(), 1);
    for (std::size_t i = 0; i < tree_.size(); ++i) {
        const std::size_t parent = i | (i + 1);
        if (parent < tree_.size()) {
            tree_[parent] += tree_[i];
        }
    }
}

std::size_t KeyedSlots::countThrough(std::size_t slot) const noexcept {
    std::size_t count = 0;
    for (std::size_t end = slot + 1; end > 0; end &= end - 1) {
        count += tree_[end - 1];
    }
    return count;
}

}  // namespace vl
