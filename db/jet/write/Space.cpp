#include "Space.h"

#include <algorithm>
#include <array>
#include <vector>

#include "Bitmap.h"
#include "SpaceMap.h"
#include "base/ErrorState.h"

namespace vl::jet {

Page::Bytes bitmapPage(std::byte fill) {
    Page::Bytes bytes;
    bytes.fill(fill);
    store(std::span<std::byte>(bytes), 0, std::uint32_t{0x00000105});
    return bytes;
}

Space::Map Space::read(RowPointer pointer) {
    Map map;
    map.row = plainRow(file_, pointer, map.page);
    const std::uint32_t owner = u32(map.page.bytes(), 4);
    const unsigned kind = map.row.empty() ? 0xFF : u8(map.row, 0);
    if (owner > 1 || kind > 1 || map.row.size() <= kInlineBitmapAt) {
        map.page.origin().corrupt("row " + std::to_string(pointer.row) + " is no usage map");
    }
    map.inlined = kind == 0;
    map.first = map.inlined ? u32(map.row, 1) : 0;
    map.count = map.inlined ? 8 * map.bits().size() : (map.row.size() - 1) / 4;
    if (map.first > kMostPages) {
        map.page.origin().corrupt("the usage map in row " + std::to_string(pointer.row) +
                                  " begins with page " + std::to_string(map.first));
    }
    return map;
}

// Null where the map refers to none.
Page Space::bitmap(const Map& map, std::size_t range) {
    const PageNo number = map.bitmapOf(range);
    if (number == 0) {
        return {};
    }
    Page page = file_.page(number);
    if (u8(page.bytes(), 0) != 5) {
        page.origin().corrupt("is no bitmap page of a usage map");
    }
    return page;
}

void Space::patch(const Page& page, std::size_t at, ByteView bytes) {
    Page::Bytes changed;
    std::copy(page.bytes().begin(), page.bytes().end(), changed.begin());
    std::copy(bytes.begin(), bytes.end(), changed.begin() + static_cast<std::ptrdiff_t>(at));
    file_.writePage(page.number(), changed);
}

void Space::setBit(const Page& page, std::size_t bitmapAt, std::size_t bit, bool value) {
    const std::size_t at = bitmapAt + bit / 8;
    const auto mask = static_cast<std::byte>(1U << (bit % 8));
    const std::byte changed = value ? page.bytes()[at] | mask : page.bytes()[at] & ~mask;
    patch(page, at, ByteView(&changed, 1));
}

bool Space::contains(RowPointer pointer, PageNo page) {
    if (pointer.page == 0) {
        return false;
    }
    const Map map = read(pointer);
    if (map.inlined) {
        return map.inRange(page) && bitOf(map.bits(), page - map.first);
    }
    const Page bits = bitmap(map, page / kPagesPerBitmap);
    return bits && bitOf(bits.bytes().subspan(kBitmapAt), page % kPagesPerBitmap);
}

bool Space::add(RowPointer pointer, PageNo page) {
    if (pointer.page == 0 || contains(pointer, page)) {
        return false;
    }
    const Map map = read(pointer);
    if (!map.inlined) {
        refer(pointer, page);
    } else if (map.inRange(page)) {
        setBit(map.page, map.at() + kInlineBitmapAt, page - map.first, true);
    } else {
        moveRange(map, page);
        if (!contains(pointer, page)) {
            const std::vector<PageNo> pages = readUsageMap(file_, pointer);
            std::vector<std::byte> row(map.row.size());
            row[0] = std::byte{1};
            patch(map.page, map.at(), row);
            for (const PageNo old : pages) {
                refer(pointer, old);
            }
            refer(pointer, page);
        }
    }
    return true;
}

// An inline map speaks about other pages from here on, if one stretch holds them all.
void Space::moveRange(const Map& map, PageNo page) {
    const auto low = lowestBit(map.bits());
    const auto high = highestBit(map.bits(), map.count);
    const PageNo first = low ? std::min(map.first + static_cast<PageNo>(*low), page) : page;
    const PageNo last = high ? std::max(map.first + static_cast<PageNo>(*high), page) : page;
    const PageNo begin = first / 8 * 8;
    if (last - begin >= map.count) {
        return;
    }
    std::vector<std::byte> row(map.row.size());
    store(std::span(row), 1, begin);
    const auto put = [&](PageNo number) {
        row[kInlineBitmapAt + (number - begin) / 8] |=
            static_cast<std::byte>(1U << ((number - begin) % 8));
    };
    put(page);
    for (std::size_t bit = 0; bit < map.count; ++bit) {
        if (bitOf(map.bits(), bit)) {
            put(map.first + static_cast<PageNo>(bit));
        }
    }
    patch(map.page, map.at(), row);
}

// Sets a bit of a map that refers to bitmap pages.
void Space::refer(RowPointer pointer, PageNo page) {
    const std::size_t range = page / kPagesPerBitmap;
    Map map = read(pointer);
    if (range >= map.count) {
        throw Error(ErrNo::Overflow,
                    file_.name() + ": a usage map has no room for page " + std::to_string(page));
    }
    if (map.bitmapOf(range) == 0) {
        const PageNo fresh = take();
        file_.writePage(fresh, bitmapPage(std::byte{0}));
        map = read(pointer);  // the same page may hold the map of free pages
        std::array<std::byte, 4> entry{};
        store(std::span<std::byte>(entry), 0, fresh);
        patch(map.page, map.at() + 1 + 4 * range, entry);
        map = read(pointer);
    }
    setBit(bitmap(map, range), kBitmapAt, page % kPagesPerBitmap, true);
}

bool Space::remove(RowPointer pointer, PageNo page) {
    if (!contains(pointer, page)) {
        return false;
    }
    const Map map = read(pointer);
    if (map.inlined) {
        setBit(map.page, map.at() + kInlineBitmapAt, page - map.first, false);
    } else {
        setBit(bitmap(map, page / kPagesPerBitmap), kBitmapAt, page % kPagesPerBitmap, false);
    }
    return true;
}

std::optional<PageNo> Space::highestBelow(RowPointer pointer, PageNo below) {
    if (pointer.page == 0) {
        return std::nullopt;
    }
    const Map map = read(pointer);
    below = std::min(below, file_.pageCount());
    if (map.inlined) {
        const auto bit =
            below <= map.first ? std::nullopt : highestBit(map.bits(), below - map.first);
        return bit ? std::optional(map.first + static_cast<PageNo>(*bit)) : std::nullopt;
    }
    for (std::size_t range = std::min(map.count, below / kPagesPerBitmap + 1); range-- > 0;) {
        const Page bits = bitmap(map, range);
        const std::size_t first = range * kPagesPerBitmap;
        if (!bits || below <= first) {
            continue;
        }
        if (const auto bit = highestBit(bits.bytes().subspan(kBitmapAt), below - first)) {
            return static_cast<PageNo>(first + *bit);
        }
    }
    return std::nullopt;
}

void Space::clear(RowPointer pointer) {
    const Map map = read(pointer);
    std::vector<std::byte> row(map.row.size());
    row[0] = map.row[0];
    patch(map.page, map.at(), row);
    for (std::size_t range = 0; !map.inlined && range < map.count; ++range) {
        if (const Page bits = bitmap(map, range)) {
            giveBack(bits.number());
        }
    }
}

}  // namespace vl::jet
