#include "Space.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <vector>

#include "Bytes.h"
#include "UsageMap.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

constexpr RowPointer kFreePages{1, 0};
// Header, map of free pages, beginning of the catalog.
constexpr PageNo kFirstPage = 3;
constexpr PageNo kMostPages = 524288;  // 2 GiB
constexpr std::size_t kInlineBitmapAt = 5;
constexpr std::size_t kBitmapAt = 4;
constexpr std::size_t kPagesPerBitmap = (kPageSize - kBitmapAt) * 8;

bool bitOf(ByteView bitmap, std::size_t bit) {
    return (u8(bitmap, bit / 8) & (1U << (bit % 8))) != 0;
}

// Most of a bitmap is empty: whole runs of it are passed at once.
constexpr std::size_t kRun = 64;
constexpr std::array<std::byte, kRun> kEmptyRun{};

std::optional<std::size_t> lowestBit(ByteView bitmap) {
    for (std::size_t i = 0; i < bitmap.size(); ++i) {
        if (i % kRun == 0 && i + kRun <= bitmap.size() &&
            std::memcmp(&bitmap[i], kEmptyRun.data(), kRun) == 0) {
            i += kRun - 1;
        } else if (const unsigned bits = u8(bitmap, i); bits != 0) {
            return 8 * i + static_cast<std::size_t>(std::countr_zero(bits));
        }
    }
    return std::nullopt;
}

// Of the first `end` bits.
std::optional<std::size_t> highestBit(ByteView bitmap, std::size_t end) {
    end = std::min(end, 8 * bitmap.size());
    if (end % 8 != 0) {
        const unsigned bits = u8(bitmap, end / 8) & ((1U << (end % 8)) - 1);
        if (bits != 0) {
            return end / 8 * 8 + static_cast<std::size_t>(std::bit_width(bits)) - 1;
        }
    }
    for (std::size_t i = end / 8; i > 0;) {
        if (i >= kRun && std::memcmp(&bitmap[i - kRun], kEmptyRun.data(), kRun) == 0) {
            i -= kRun;
        } else if (const unsigned bits = u8(bitmap, --i); bits != 0) {
            return 8 * i + static_cast<std::size_t>(std::bit_width(bits)) - 1;
        }
    }
    return std::nullopt;
}

Page::Bytes bitmapPage(std::byte fill) {
    Page::Bytes bytes;
    bytes.fill(fill);
    store(std::span<std::byte>(bytes), 0, std::uint32_t{0x00000105});
    return bytes;
}

}  // namespace

/// A map as it is now.
struct Space::Map {
    Page page;
    ByteView row;
    bool inlined = true;
    PageNo first = 0;       // of an inline map
    std::size_t count = 0;  // bits of an inline map, or bitmap pages it can refer to

    std::size_t at() const { return static_cast<std::size_t>(row.data() - page.bytes().data()); }
    ByteView bits() const { return row.subspan(kInlineBitmapAt); }
    bool inRange(PageNo number) const { return number >= first && number - first < count; }
    PageNo bitmapOf(std::size_t range) const { return range < count ? u32(row, 1 + 4 * range) : 0; }
};

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
        !contains(kFreePages, owner) && isMap(RowPointer::read(definition.bytes(), 0x37)) &&
        contains(RowPointer::read(definition.bytes(), 0x37), number)) {
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
