#include "LongValueStore.h"

#include <algorithm>

#include "Bytes.h"
#include "LongValue.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

constexpr std::size_t kDefinition = 12;
constexpr std::uint32_t kInline = 0x80000000;
constexpr std::uint32_t kSingle = 0x40000000;
constexpr std::uint32_t kLengthBits = 0x3FFFFFFF;
constexpr std::size_t kLongestRow = 4076;
constexpr std::size_t kPointer = 4;

std::uint32_t raw(RowPointer pointer) { return (pointer.page << 8) | pointer.row; }

std::vector<std::byte> definition(std::uint32_t head, RowPointer first) {
    std::vector<std::byte> bytes(kDefinition);
    store(std::span(bytes), 0, head);
    store(std::span(bytes), 4, raw(first));
    return bytes;
}

RowPages pagesOf(PageFile& file, const TableDefinition& table, const Column& column) {
    const auto found = std::find_if(table.longColumns.begin(), table.longColumns.end(),
                                    [&](const LongColumn& c) { return c.number == column.number; });
    if (found == table.longColumns.end() || found->ownedPages.page == 0) {
        const Origin origin{file.name(), table.page};
        origin.corrupt("column \"" + column.name + "\" of table \"" + table.name +
                       "\" has no map of its pages");
    }
    return {file, DataPage::kLongValues, found->ownedPages, found->freePages};
}

}  // namespace

std::vector<std::byte> inlineLongValue(ByteView value) {
    std::vector<std::byte> bytes =
        definition(kInline | static_cast<std::uint32_t>(value.size()), {});
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

std::vector<std::byte> inlineValue(ByteView bytes) {
    const std::size_t length =
        std::min<std::size_t>(u32(bytes, 0) & kLengthBits, bytes.size() - kDefinition);
    const ByteView value = bytes.subspan(kDefinition, length);
    return {value.begin(), value.end()};
}

bool isInline(ByteView bytes) noexcept {
    return bytes.size() < kDefinition || u32(bytes, 0) >> 30 == 2;
}

LongValueStore::LongValueStore(PageFile& file, const TableDefinition& table, const Column& column)
    : file_(file), pages_(pagesOf(file, table, column)) {}

std::vector<std::byte> LongValueStore::put(ByteView value) {
    if (value.size() > kLengthBits) {
        throw Error(ErrNo::Overflow, "a value of " + std::to_string(value.size()) + " bytes");
    }
    const auto length = static_cast<std::uint32_t>(value.size());
    if (value.size() <= kLongestRow) {
        return definition(kSingle | length, pages_.add(value, DataPage::Slot::Row));
    }
    // From the last piece to the first, for each names the next one.
    constexpr std::size_t kPiece = kLongestRow - kPointer;
    RowPointer next;
    std::vector<std::byte> row;
    for (std::size_t at = (value.size() - 1) / kPiece * kPiece;; at -= kPiece) {
        const ByteView piece = value.subspan(at, std::min(kPiece, value.size() - at));
        row.resize(kPointer);
        store(std::span(row), 0, raw(next));
        row.insert(row.end(), piece.begin(), piece.end());
        next = pages_.addAlone(row);
        if (at == 0) {
            return definition(length, next);
        }
    }
}

void LongValueStore::erase(ByteView bytes, const Origin& origin) {
    if (isInline(bytes)) {
        return;
    }
    for (const RowPointer piece : LongValue::pieces(file_, bytes, origin)) {
        pages_.erase(piece);
    }
}

}  // namespace vl::jet
