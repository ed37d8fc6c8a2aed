#include "KeyIndex.h"

#include <bit>
#include <cstring>

#include "base/Mix.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr std::size_t kBlock = 8;  // characters

std::uint32_t folded(std::uint64_t hash, std::size_t characters) noexcept {
    return static_cast<std::uint32_t>(mixed(hash, characters));
}

// Eight characters below 0x80 with their letters in lower case.
std::uint64_t lower(std::uint64_t block) noexcept {
    constexpr std::uint64_t kEach = 0x0101010101010101U;
    const std::uint64_t fromA = block + (0x80 - 'A') * kEach;
    const std::uint64_t beyondZ = block + (0x80 - 'Z' - 1) * kEach;
    return block | ((fromA & ~beyondZ & (0x80 * kEach)) >> 2);
}

// Any characters. What is all below 0x80 gets the number that it gets in blocks.
std::uint32_t hashOfAny(std::string_view key) noexcept {
    std::uint64_t hash = 0;
    std::uint64_t block = 0;
    std::size_t characters = 0;
    for (std::size_t at = 0; at < key.size();) {
        const std::uint64_t c = text::foldCase(text::nextCharacter(key, at));
        block ^= std::rotl(c, static_cast<int>(characters % kBlock * 8));
        if (++characters % kBlock == 0) {
            hash = mixed(hash, block);
            block = 0;
        }
    }
    return folded(mixed(hash, block), characters);
}

// The first character in the lowest byte.
std::uint64_t blockOf(const char* from, std::size_t size) noexcept {
    std::uint64_t block = 0;
    if (std::endian::native == std::endian::little) {
        std::memcpy(&block, from, size);
    } else {
        for (std::size_t i = size; i > 0; --i) {
            block = block << 8 | static_cast<unsigned char>(from[i - 1]);
        }
    }
    return block;
}

bool isAscii(std::uint64_t block) noexcept { return (block & 0x8080808080808080U) == 0; }

}  // namespace

std::uint32_t hashNoCase(std::string_view key) noexcept {
    std::uint64_t hash = 0;
    std::size_t at = 0;
    for (; key.size() - at >= kBlock; at += kBlock) {
        const std::uint64_t block = blockOf(key.data() + at, kBlock);
        if (!isAscii(block)) {
            return hashOfAny(key);
        }
        hash = mixed(hash, lower(block));
    }
    // What is left is a block, too, even where it is nothing.
    const std::uint64_t rest = at < key.size() ? blockOf(key.data() + at, key.size() - at) : 0;
    if (!isAscii(rest)) {
        return hashOfAny(key);
    }
    return folded(mixed(hash, lower(rest)), key.size());
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
