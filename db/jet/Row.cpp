#include "Row.h"

namespace vl::jet {

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

bool RowView::bit(const Column& column) const noexcept { return bit(FieldPlace(column)); }

std::optional<ByteView> RowView::field(const Column& column) const {
    ByteView bytes;
    switch (find(FieldPlace(column), bytes)) {
        case Found::Value:
            return bytes;
        case Found::Null:
            return std::nullopt;
        default:
            origin_.corrupt("the value of column \"" + column.name + "\" is not inside its row");
    }
}

}  // namespace vl::jet
