#include "KeyIndex.h"

#include "base/Text.h"

namespace vl {

std::uint32_t hashNoCase(std::string_view key) noexcept {
    // FNV-1a over folded characters instead of bytes.
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (std::size_t at = 0; at < key.size();) {
        char32_t c = static_cast<unsigned char>(key[at]);
        if (c >= 0x80) {
            c = text::foldCase(text::nextCharacter(key, at));
        } else {
            c += c >= 'A' && c <= 'Z' ? U'a' - U'A' : 0;
            ++at;
        }
        hash = (hash ^ c) * 0x100000001B3U;
    }
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

void KeyIndex::put(Entry entry) noexcept {
    std::size_t at = entry.hash & mask();
    while (table_[at].slot != kNone) {
        at = (at + 1) & mask();
    }
    table_[at] = entry;
}

void KeyIndex::add(std::uint32_t hash, Slot slot) {
    if ((count_ + 1) * 4 > table_.size() * 3) {
        std::vector<Entry> old(table_.empty() ? 8 : 2 * table_.size());
        old.swap(table_);
        for (const Entry& entry : old) {
            if (entry.slot != kNone) {
                put(entry);
            }
        }
    }
    put({hash, slot});
    ++count_;
}

void KeyIndex::remove(std::uint32_t hash, Slot slot) noexcept {
    std::size_t gap = hash & mask();
    while (table_[gap].slot != slot) {
        gap = (gap + 1) & mask();
    }
    // What follows moves up into the gap unless that would be in front of its home.
    for (std::size_t at = (gap + 1) & mask(); table_[at].slot != kNone; at = (at + 1) & mask()) {
        if (((at - table_[at].hash) & mask()) >= ((at - gap) & mask())) {
            table_[gap] = table_[at];
            gap = at;
        }
    }
    table_[gap] = Entry();
    --count_;
}

}  // namespace vl
