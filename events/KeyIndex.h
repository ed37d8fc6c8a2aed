// Slots found by the hash of their key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "SlotOrder.h"

namespace vl {

/// A hash that is the same for keys that are equal without regard to case.
std::uint32_t hashNoCase(std::string_view key) noexcept;

/// A table of (hash, slot), open addressed, an entry at its home place or in the next free one
/// behind. It holds no keys: these stand with the items, where the caller compares them.
///
/// Cost: everything O(1), adding amortised. Memory: 11 to 21 bytes a slot.
class KeyIndex {
public:
    using Slot = SlotOrder::Slot;
    static constexpr Slot kNone = static_cast<Slot>(-1);

    /// The slot with this hash for which `isWanted(slot)`; `kNone` when there is none.
    template <class IsWanted>
    Slot find(std::uint32_t hash, IsWanted isWanted) const {
        if (count_ == 0) {
            return kNone;
        }
        std::size_t at = hash & mask();
        while (table_[at].slot != kNone &&
               !(table_[at].hash == hash && isWanted(table_[at].slot))) {
            at = (at + 1) & mask();
        }
        return table_[at].slot;
    }
    /// Who will look for several hashes says so first: they are fetched together.
    void expect(std::uint32_t hash) const noexcept {
#if defined(__GNUC__)
        if (count_ != 0) {
            __builtin_prefetch(&table_[hash & mask()]);
        }
#endif
    }
    void add(std::uint32_t hash, Slot slot);
    /// The pair must be there.
    void remove(std::uint32_t hash, Slot slot) noexcept;

private:
    struct Entry {
        std::uint32_t hash = 0;
        Slot slot = kNone;  // none: a free entry
    };
    std::size_t mask() const noexcept { return table_.size() - 1; }
    void put(Entry entry) noexcept;

    std::vector<Entry> table_;  // a power of two, at most three quarters in use
    std::size_t count_ = 0;
};

}  // namespace vl
