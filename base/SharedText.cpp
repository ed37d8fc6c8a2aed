#include "base/SharedText.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <ostream>

namespace vl {

SharedText::SharedText(std::string_view text) {
    if (text.empty()) {
        return;
    }
    const std::size_t length =
        std::min<std::size_t>(text.size(), std::numeric_limits<std::uint32_t>::max());
    void* room = ::operator new(sizeof(Block) + length);
    block_ = ::new (room) Block{1, static_cast<std::uint32_t>(length)};
    std::memcpy(static_cast<std::byte*>(room) + sizeof(Block), text.data(), length);
}

void SharedText::release(Block* block) noexcept {
    block->~Block();
    ::operator delete(block);
}

std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.view(); }

}  // namespace vl
