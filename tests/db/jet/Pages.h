// Pages made by hand, for rules that no sample file shows.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "MemoryFile.h"
#include "PageFile.h"

namespace vl::test {

/// "01 ff 3a" as bytes.
inline std::vector<std::byte> hexBytes(std::string_view text) {
    std::vector<std::byte> bytes;
    int high = -1;
    for (const char c : text) {
        const std::size_t digit = std::string_view("0123456789abcdef").find(c);
        if (digit == std::string_view::npos) {
            continue;
        }
        if (high < 0) {
            high = static_cast<int>(digit);
        } else {
            bytes.push_back(static_cast<std::byte>(high * 16 + static_cast<int>(digit)));
            high = -1;
        }
    }
    return bytes;
}

inline std::vector<std::byte> filled(std::size_t size, unsigned byte) {
    return std::vector<std::byte>(size, static_cast<std::byte>(byte));
}

struct SlotContent {
    std::vector<std::byte> bytes;
    unsigned flags = 0;
};

/// Makes page `number` of `disk` a data page of `owner`; the file grows to hold it.
inline void putDataPage(Disk& disk, jet::PageNo number, std::uint32_t owner,
                        const std::vector<SlotContent>& slots) {
    const std::size_t at = number * jet::kPageSize;
    disk.bytes.resize(std::max(disk.bytes.size(), at + jet::kPageSize));
    const std::span<std::byte> page = std::span(disk.bytes).subspan(at, jet::kPageSize);
    jet::store(page, 0, std::uint16_t{0x0101});
    jet::store(page, 4, owner);
    jet::store(page, 12, static_cast<std::uint16_t>(slots.size()));
    std::size_t start = jet::kPageSize;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        start -= slots[i].bytes.size();
        std::copy(slots[i].bytes.begin(), slots[i].bytes.end(),
                  page.begin() + static_cast<std::ptrdiff_t>(start));
        jet::store(page, 14 + 2 * i, static_cast<std::uint16_t>(start | slots[i].flags));
    }
}

inline jet::PageFile pagesOf(Disk& disk) {
    return {std::make_unique<MemoryFile>(disk), "memory", jet::Access::Read};
}

}  // namespace vl::test
