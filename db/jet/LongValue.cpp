#include "LongValue.h"

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kDefinition = 12;
constexpr std::uint32_t kLengthBits = 0x3FFFFFFF;

}  // namespace

LongValue::LongValue(PageFile& file, ByteView definition, const Origin& origin) {
    if (definition.empty()) {
        return;  // some writers store an empty value as no bytes at all
    }
    if (definition.size() < kDefinition) {
        origin.corrupt("a long value's definition of " + std::to_string(definition.size()) +
                       " bytes");
    }
    const std::uint32_t head = u32(definition, 0);
    const std::size_t length = head & kLengthBits;
    const RowPointer first = RowPointer::read(definition, 4);
    switch (head >> 30) {
        case 2:
            if (length > definition.size() - kDefinition) {
                origin.corrupt("a long value of " + std::to_string(length) +
                               " bytes does not fit into its row");
            }
            bytes_ = definition.subspan(kDefinition, length);
            break;
        case 1: {
            const ByteView row = piece(file, first);
            if (row.size() < length) {
                page_.origin().corrupt("a long value of " + std::to_string(length) +
                                       " bytes ends after " + std::to_string(row.size()));
            }
            bytes_ = row.first(length);
            break;
        }
        case 0:
            if (length > std::uint64_t{file.pageCount()} * kPageSize) {
                origin.corrupt("a long value of " + std::to_string(length) +
                               " bytes is longer than the file");
            }
            readChain(file, first, length);
            break;
        default:
            origin.corrupt("a long value of an unknown kind");
    }
}

std::vector<RowPointer> LongValue::pieces(PageFile& file, ByteView definition,
                                          const Origin& origin) {
    if (definition.size() < kDefinition || u32(definition, 0) >> 30 == 2) {
        return {};
    }
    std::vector<RowPointer> pieces{RowPointer::read(definition, 4)};
    if (u32(definition, 0) >> 30 == 1) {
        return pieces;
    }
    for (std::size_t left = u32(definition, 0) & kLengthBits;;) {
        Page page;
        const ByteView row = plainRow(file, pieces.back(), page);
        if (row.size() <= 4 || row.size() - 4 > left) {
            origin.corrupt("the pieces of a long value are not as long as it");
        }
        left -= row.size() - 4;
        if (left == 0) {
            return pieces;
        }
        pieces.push_back(RowPointer::read(row, 0));
    }
}

ByteView LongValue::piece(PageFile& file, RowPointer pointer) {
    const ByteView row = plainRow(file, pointer, page_);
    if (u32(page_.bytes(), 4) != DataPage::kLongValues) {
        page_.origin().corrupt("is no page of long values");
    }
    return row;
}

// Every piece adds to the value or the chain is broken, so a circle ends too.
void LongValue::readChain(PageFile& file, RowPointer first, std::size_t length) {
    joined_.reserve(length);
    RowPointer next = first;
    while (joined_.size() < length) {
        const ByteView row = piece(file, next);
        if (row.size() <= 4 || row.size() - 4 > length - joined_.size()) {
            page_.origin().corrupt("a piece of a long value of " + std::to_string(length) +
                                   " bytes does not fit into it");
        }
        joined_.insert(joined_.end(), row.begin() + 4, row.end());
        next = RowPointer::read(row, 0);
    }
    bytes_ = joined_;
}

}  // namespace vl::jet
