// The map of free pages: pages handed out and taken back.
#include <algorithm>
#include <map>
#include <vector>

#include "Bitmap.h"
#include "SpaceMap.h"
#include "SystemPages.h"
#include "base/ErrorState.h"
#include "define/DefinitionBlocks.h"

namespace vl::jet {

namespace {

// Header, map of free pages, beginning of the catalog.
constexpr PageNo kFirstPage = 3;

}  // namespace

PageNo Space::take() {
    for (;;) {
        std::optional<PageNo> page = lowestFree();
        if (!page) {
            if (file_.pageCount() >= kMostPages) {
                throw Error(ErrNo::Overflow, file_.name() + ": the file cannot grow any further");
            }
            page = file_.appendPage();
        } else {
            refuseOwned(*page);
        }
        const Map map = read(kFreePages);
        if (map.inlined && *page < map.first) {
            return *page;
        }
        if (map.inlined && map.inRange(*page)) {
            setBit(map.page, map.at() + kInlineBitmapAt, *page - map.first, false);
            return *page;
        }
        if (const Page bits = map.inlined ? Page() : bitmap(map, *page / kPagesPerBitmap)) {
            setBit(bits, kBitmapAt, *page % kPagesPerBitmap, false);
            return *page;
        }
        expressFree(*page);
    }
}

// What comes behind those pages that the map of free pages speaks about counts as free, what comes
// before them as in use.
std::optional<PageNo> Space::lowestFree() {
    const Map map = read(kFreePages);
    std::size_t page = kMostPages;
    if (map.inlined) {
        page = map.first + lowestBit(map.bits()).value_or(map.count);
    }
    for (std::size_t range = 0; !map.inlined && range < map.count; ++range) {
        const Page bits = bitmap(map, range);
        const auto bit = bits ? lowestBit(bits.bytes().subspan(kBitmapAt)) : std::size_t{0};
        if (bit) {
            page = range * kPagesPerBitmap + *bit;
            break;
        }
    }
    if (page < kFirstPage) {
        map.page.origin().corrupt("the map of free pages holds page " + std::to_string(page));
    }
    return page < file_.pageCount() ? std::optional(static_cast<PageNo>(page)) : std::nullopt;
}

// The map cannot say yet that `page`, the lowest free one, is in use: that page becomes the bitmap
// by which it can. A map that refers to none yet needs them for all pages before that one, too.
void Space::expressFree(PageNo page) {
    const Map map = read(kFreePages);
    std::vector<std::byte> row(map.row.begin(), map.row.end());
    std::map<std::size_t, PageNo> bitmaps = {{page / kPagesPerBitmap, page}};
    if (map.inlined) {
        std::fill(row.begin(), row.end(), std::byte{0});
        row[0] = std::byte{1};
        PageNo highest = page;
        for (std::size_t range = 0; range <= highest / kPagesPerBitmap; ++range) {
            if (!bitmaps.contains(range)) {
                highest = bitmaps[range] = file_.appendPage();
            }
        }
    }
    if (1 + 4 * (bitmaps.rbegin()->first + 1) > row.size()) {
        map.page.origin().corrupt("the map of free pages has no room for page " +
                                  std::to_string(page));
    }
    for (const auto& [range, number] : bitmaps) {
        store(std::span(row), 1 + 4 * range, number);
        file_.writePage(number, freeBits(map, range, bitmaps));
    }
    patch(map.page, map.at(), row);
}

// The bitmap page of that range: what an inline `map` says of it, with the pages of `used` in use.
Page::Bytes Space::freeBits(const Map& map, std::size_t range,
                            const std::map<std::size_t, PageNo>& used) {
    Page::Bytes bits = bitmapPage(std::byte{0xFF});
    const std::size_t begin = range * kPagesPerBitmap;
    const auto clear = [&](std::size_t page) {
        if (page >= begin && page - begin < kPagesPerBitmap) {
            bits[kBitmapAt + (page - begin) / 8] &=
                ~static_cast<std::byte>(1U << ((page - begin) % 8));
        }
    };
    for (std::size_t page = begin; map.inlined && page < map.first + map.count; ++page) {
        if (page < map.first || !bitOf(map.bits(), page - map.first)) {
            clear(page);
        }
    }
    for (const auto& [other, page] : used) {
        clear(page);
    }
    return bits;
}

// What a table that was dropped has left on its pages may point to anything.
bool Space::isMap(RowPointer pointer) {
    try {
        read(pointer);
        return true;
    } catch (const Error& e) {
        if (e.number() != ErrNo::Corrupt) {
            throw;
        }
        return false;
    }
}

// A page that its owner still counts as its own is not free, whatever the map says.
void Space::refuseOwned(PageNo number) {
    const Page page = file_.page(number);
    const std::uint32_t owner = u32(page.bytes(), 4);
    if (u8(page.bytes(), 0) != 1 || owner < 2 || owner >= file_.pageCount()) {
        return;
    }
    const Page definition = file_.page(owner);
    if (u8(definition.bytes(), 0) == 2 && u32(definition.bytes(), 8) >= 63 &&
        !contains(kFreePages, owner) &&
        isMap(RowPointer::read(definition.bytes(), kDefinitionOwnedAt)) &&
        contains(RowPointer::read(definition.bytes(), kDefinitionOwnedAt), number)) {
        page.origin().corrupt(
            "is in the map of free pages, but also in that of the table on page " +
            std::to_string(owner));
    }
}

void Space::giveBack(PageNo page) {
    const Map map = read(kFreePages);
    if (page < kFirstPage || page >= file_.pageCount()) {
        map.page.origin().corrupt("page " + std::to_string(page) + " cannot be given back");
    }
    if (map.inlined && page < map.first) {
        expressFree(file_.appendPage());  // from then on it can be said
        giveBack(page);
        return;
    }
    if (map.inlined ? !map.inRange(page) : map.bitmapOf(page / kPagesPerBitmap) == 0) {
        return;
    }
    if (contains(kFreePages, page)) {
        map.page.origin().corrupt("page " + std::to_string(page) + " is free already");
    }
    if (map.inlined) {
        setBit(map.page, map.at() + kInlineBitmapAt, page - map.first, true);
    } else {
        setBit(bitmap(map, page / kPagesPerBitmap), kBitmapAt, page % kPagesPerBitmap, true);
    }
}

}  // namespace vl::jet
