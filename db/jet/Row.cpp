#include "Row.h"

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kFixedArea = 2;

}  // namespace

RowView::RowView(ByteView bytes, const TableDefinition& table, const Origin& origin)
    : bytes_(bytes), origin_(origin) {
    if (bytes.size() < 2) {
        origin_.corrupt("a row of " + std::to_string(bytes.size()) + " bytes");
    }
    columns_ = u16(bytes, 0);
    const std::size_t maskSize = (columns_ + 7U) / 8;
    if (columns_ > table.maxColumns || bytes.size() < kFixedArea + maskSize) {
        origin_.corrupt("a row with " + std::to_string(columns_) + " columns in table \"" +
                        table.name + "\"");
    }
    mask_ = bytes.size() - maskSize;
    dataEnd_ = mask_;
    if (table.variableSlots == 0 || columns_ < table.firstVariableColumns) {
        return;
    }
    if (mask_ >= kFixedArea + 2) {
        slots_ = u16(bytes, mask_ - 2);
    }
    const std::size_t offsets = 2U + 2U * (slots_ + 1U);
    if (slots_ > table.variableSlots || mask_ < kFixedArea + offsets) {
        origin_.corrupt("a row with " + std::to_string(slots_) + " variable slots in table \"" +
                        table.name + "\"");
    }
    dataEnd_ = mask_ - offsets;
}

bool RowView::bit(const Column& column) const noexcept {
    return knows(column) && (u8(bytes_, maskAt(column)) & (1U << (column.number % 8U))) != 0;
}

std::optional<ByteView> RowView::field(const Column& column) const {
    if (!bit(column)) {
        return std::nullopt;
    }
    if (column.fixed) {
        return bytes_.subspan(fixedAt(column), column.length);
    }
    if (column.variableIndex >= slots_) {
        return std::nullopt;
    }
    const std::size_t at = mask_ - 4 - std::size_t{2} * column.variableIndex;
    const std::size_t begin = u16(bytes_, at);
    const std::size_t end = u16(bytes_, at - 2);
    if (begin < kFixedArea || begin > end || end > dataEnd_) {
        corrupt(column);
    }
    return bytes_.subspan(begin, end - begin);
}

std::size_t RowView::maskAt(const Column& column) const noexcept {
    return mask_ + column.number / 8U;
}

std::size_t RowView::fixedAt(const Column& column) const {
    const std::size_t at = kFixedArea + column.fixedOffset;
    if (at + column.length > dataEnd_) {
        corrupt(column);
    }
    return at;
}

void RowView::corrupt(const Column& column) const {
    origin_.corrupt("the value of column \"" + column.name + "\" is not inside its row");
}

}  // namespace vl::jet
