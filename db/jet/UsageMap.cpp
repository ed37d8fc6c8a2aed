#include "UsageMap.h"

#include <bit>

#include "Bytes.h"

namespace vl::jet {

namespace {

void addBits(ByteView bitmap, std::uint64_t first, const PageFile& file, const Origin& origin,
             Beyond beyond, std::vector<PageNo>& pages) {
    for (std::size_t i = 0; i < bitmap.size(); ++i) {
        for (auto bits = std::to_integer<unsigned>(bitmap[i]); bits != 0; bits &= bits - 1) {
            const std::uint64_t page =
                first + 8 * i + static_cast<unsigned>(std::countr_zero(bits));
            if (page >= file.pageCount()) {
                if (beyond == Beyond::Ignored) {
                    return;
                }
                origin.corrupt("a usage map holds page " + std::to_string(page) +
                               ", but the file has " + std::to_string(file.pageCount()) + " pages");
            }
            pages.push_back(static_cast<PageNo>(page));
        }
    }
}

ByteView mapRow(PageFile& file, RowPointer pointer, Page& page) {
    const ByteView row = plainRow(file, pointer, page);
    const unsigned kind = row.empty() ? 0xFF : u8(row, 0);
    if (kind > 1 || row.size() < kInlineBitmapAt) {
        page.origin().corrupt("row " + std::to_string(pointer.row) + " is no usage map");
    }
    return row;
}

}  // namespace

std::vector<PageNo> bitmapPages(PageFile& file, RowPointer pointer) {
    Page page;
    const ByteView row = mapRow(file, pointer, page);
    std::vector<PageNo> pages;
    for (std::size_t i = 0; u8(row, 0) == 1 && 1 + 4 * (i + 1) <= row.size(); ++i) {
        if (const PageNo number = u32(row, 1 + 4 * i); number != 0) {
            pages.push_back(number);
        }
    }
    return pages;
}

std::vector<PageNo> readUsageMap(PageFile& file, RowPointer pointer, Beyond beyond) {
    Page page;
    const ByteView row = mapRow(file, pointer, page);
    const unsigned kind = u8(row, 0);
    std::vector<PageNo> pages;
    if (kind == 0) {
        addBits(row.subspan(kInlineBitmapAt), u32(row, 1), file, page.origin(), beyond, pages);
        return pages;
    }
    for (std::size_t i = 0; 1 + 4 * (i + 1) <= row.size(); ++i) {
        const PageNo number = u32(row, 1 + 4 * i);
        if (number == 0) {
            continue;  // nothing set in this range
        }
        const Page bitmap = file.page(number);
        if (u8(bitmap.bytes(), 0) != 5) {
            bitmap.origin().corrupt("is no bitmap page of a usage map");
        }
        addBits(bitmap.bytes().subspan(kBitmapAt), i * kPagesPerBitmap, file, bitmap.origin(),
                beyond, pages);
    }
    return pages;
}

}  // namespace vl::jet
