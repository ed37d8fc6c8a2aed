#include "base/SharedText.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <ostream>

namespace vl {

namespace {

// Of a text in a group: its distance in front of it, and behind it what the next one needs.
constexpr std::size_t kDistance = sizeof(std::uint32_t);
std::size_t rounded(std::size_t length) noexcept {
    return (length + kDistance - 1) / kDistance * kDistance;
}

}  // namespace

SharedText::SharedText(std::string_view text) {
    if (text.empty()) {
        return;
    }
    const std::size_t length = std::min<std::size_t>(text.size(), kTogether - 1);
    void* room = ::operator new(sizeof(Block) + length);
    block_ = ::new (room) Block{1, static_cast<std::uint32_t>(length)};
    std::memcpy(static_cast<std::byte*>(room) + sizeof(Block), text.data(), length);
}

void SharedText::setTogether(std::span<const Setting> settings) {
    std::size_t size = sizeof(Group);
    std::uint32_t count = 0;
    for (const Setting& setting : settings) {
        if (!setting.text.empty()) {
            size += kDistance + sizeof(Block) + rounded(setting.text.size());
            ++count;
        }
    }
    if (count < 2 || size >= kTogether) {
        for (const Setting& setting : settings) {
            *setting.to = setting.text;
        }
        return;
    }
    auto* room = static_cast<std::byte*>(::operator new(size));
    ::new (room) Group{count};
    std::size_t at = sizeof(Group);
    for (const Setting& setting : settings) {
        const std::string_view text = setting.text;
        SharedText made;
        if (!text.empty()) {
            const auto distance = static_cast<std::uint32_t>(at + kDistance);
            std::memcpy(room + at, &distance, kDistance);
            made.block_ = ::new (room + distance)
                Block{1, static_cast<std::uint32_t>(text.size()) | kTogether};
            std::memcpy(room + distance + sizeof(Block), text.data(), text.size());
            at = distance + sizeof(Block) + rounded(text.size());
        }
        *setting.to = std::move(made);
    }
}

void SharedText::release(Block* block) noexcept {
    if ((block->length & kTogether) == 0) {
        block->~Block();
        ::operator delete(block);
        return;
    }
    std::uint32_t distance = 0;
    auto* bytes = reinterpret_cast<std::byte*>(block);
    std::memcpy(&distance, bytes - kDistance, kDistance);
    block->~Block();
    auto* group = std::launder(reinterpret_cast<Group*>(bytes - distance));
    if (group->blocks.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        group->~Group();
        ::operator delete(group);
    }
}

std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.view(); }

}  // namespace vl
