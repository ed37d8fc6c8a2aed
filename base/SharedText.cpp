#include "base/SharedText.h"

#include <cstring>
#include <ostream>

namespace vl {

namespace {

constexpr std::size_t kLongest = 0x7FFFFFFF;  // of one text, and of several together

}  // namespace

// Of a block, with what the next one needs behind it.
std::size_t SharedText::sizeFor(std::string_view text) noexcept {
    return sizeof(Block) + (text.size() + alignof(Block) - 1) / alignof(Block) * alignof(Block);
}

SharedText::Block* SharedText::put(std::byte* room, std::size_t distance,
                                   std::string_view text) noexcept {
    auto* block = ::new (room + distance)
        Block{static_cast<std::uint32_t>(distance), static_cast<std::uint32_t>(text.size())};
    std::memcpy(room + distance + sizeof(Block), text.data(), text.size());
    return block;
}

SharedText::SharedText(std::string_view text) {
    if (text.empty()) {
        return;
    }
    text = text.substr(0, kLongest);
    auto* room = static_cast<std::byte*>(::operator new(sizeof(Users) + sizeFor(text)));
    ::new (room) Users(1);
    block_ = put(room, sizeof(Users), text);
}

void SharedText::setTogether(std::span<const Setting> settings) {
    std::size_t size = sizeof(Users);
    std::uint32_t count = 0;
    for (const Setting& setting : settings) {
        if (!setting.text.empty()) {
            size += sizeFor(setting.text);
            ++count;
        }
    }
    if (count < 2 || size > kLongest) {
        for (const Setting& setting : settings) {
            *setting.to = setting.text;
        }
        return;
    }
    auto* room = static_cast<std::byte*>(::operator new(size));
    ::new (room) Users(count);
    std::size_t at = sizeof(Users);
    for (const Setting& setting : settings) {
        SharedText made;
        if (!setting.text.empty()) {
            made.block_ = put(room, at, setting.text);
            at += sizeFor(setting.text);
        }
        *setting.to = std::move(made);
    }
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the last of the texts frees it

void SharedText::free(Users& users) noexcept {
    users.~Users();
    ::operator delete(&users);
}

std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.view(); }

}  // namespace vl
