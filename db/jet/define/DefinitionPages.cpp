#include "DefinitionPages.h"

#include <algorithm>
#include <cassert>

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kPageHeader = 8;
constexpr std::size_t kRoom = kPageSize - kPageHeader;
constexpr std::size_t kNeverFree = 8;
constexpr std::uint16_t kKind = 0x0102;
// 255 columns and 32 indexes with the longest names take a quarter of this.
constexpr std::size_t kMostPages = 64;

void finish(Page::Bytes& page, std::size_t used, PageNo next) {
    const std::size_t left = kPageSize - used;
    const std::span<std::byte> bytes(page);
    store(bytes, 0, kKind);
    store(bytes, 2, static_cast<std::uint16_t>(left > kNeverFree ? left - kNeverFree : 0));
    store(bytes, 4, next);
}

}  // namespace

std::size_t definitionPageCount(std::size_t length) noexcept {
    return length <= kPageSize ? 1 : 1 + (length - kPageSize + kRoom - 1) / kRoom;
}

std::vector<Page::Bytes> definitionPages(ByteView definition, std::span<const PageNo> numbers) {
    assert(numbers.size() == definitionPageCount(definition.size()));
    std::vector<Page::Bytes> pages(numbers.size());
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const std::size_t header = i == 0 ? 0 : kPageHeader;
        const std::size_t n = std::min(definition.size(), kPageSize - header);
        std::copy_n(definition.begin(), n, pages[i].begin() + static_cast<std::ptrdiff_t>(header));
        definition = definition.subspan(n);
        finish(pages[i], header + n, i + 1 < numbers.size() ? numbers[i + 1] : 0);
    }
    return pages;
}

Page::Bytes definitionPage(ByteView definition) {
    const PageNo anywhere = 0;
    return definitionPages(definition, std::span(&anywhere, 1)).front();
}

std::vector<PageNo> definitionChain(PageFile& file, PageNo first) {
    std::vector<PageNo> chain;
    for (PageNo number = first; number != 0;) {
        const Page page = file.page(number);
        if (u8(page.bytes(), 0) != 2 || chain.size() == kMostPages) {
            page.origin().corrupt("is no part of the table definition on page " +
                                  std::to_string(first));
        }
        chain.push_back(number);
        number = u32(page.bytes(), 4);
    }
    return chain;
}

}  // namespace vl::jet
