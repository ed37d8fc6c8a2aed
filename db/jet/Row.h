// One row's bytes, told apart into columns.
#pragma once

#include <optional>

#include "Bytes.h"
#include "TableDefinition.h"

namespace vl::jet {

/// Where a column stands in the rows of its table: what a row needs to know of it, in few bytes,
/// for who goes through the columns of many rows.
struct FieldPlace {
    FieldPlace() = default;
    explicit FieldPlace(const Column& column) noexcept
        : number(column.number),
          at(column.fixed ? column.fixedOffset : column.variableIndex),
          length(column.length),
          fixed(column.fixed) {}

    std::uint16_t number = 0;
    std::uint16_t at = 0;      // a fixed column's offset, another one's slot
    std::uint16_t length = 0;  // of a fixed column
    bool fixed = false;
};

/// A row, read in place: `bytes` and `table` must outlive it. Nothing is decoded before it is
/// asked for.
///
///   part             size      little-endian
///   column count n   2         what the table's highest column number was when this was written
///   fixed area                 a fixed column's value stands at 2 + its offset
///   variable values            by slot; null takes no bytes
///   end              2         just after the last variable value
///   starts           2*v       of the variable values, last slot first
///   slot count v     2
///   null mask        (n+7)/8   bit c, lowest first: column number c has a value
///
/// End, starts and v are absent when the table had no variable column. A column with a number of n
/// or more was added later: null. A yes/no column is its bit of the mask and nothing else.
/// Source: docs/jet4.md, "Row".
class RowView {
public:
    RowView() = default;
    /// Throws `Error` (`ErrNo::Corrupt`) when count, mask and slots do not fit into the row.
    RowView(ByteView bytes, const TableDefinition& table, const Origin& origin);

    /// Whether the column was there when the row was written.
    bool knows(const Column& column) const noexcept { return column.number < columns_; }
    /// The column's bit of the mask: that it has a value, or a yes/no column's value.
    bool bit(const Column& column) const noexcept;
    /// The bytes of a column other than yes/no; nothing when null. Throws `Error`
    /// (`ErrNo::Corrupt`) when they are not inside the row.
    std::optional<ByteView> field(const Column& column) const;

    /// What `find` has found.
    enum class Found { Value, Null, Outside };
    /// The same without throwing: `Outside` where `field` throws. Null leaves `to` as it is.
    Found find(const FieldPlace& place, ByteView& to) const noexcept;
    bool bit(const FieldPlace& place) const noexcept;

private:
    static constexpr std::size_t kFixedArea = 2;

    ByteView bytes_;
    Origin origin_;
    std::uint16_t columns_ = 0;
    std::uint16_t slots_ = 0;
    std::size_t mask_ = 0;     // where the null mask begins
    std::size_t dataEnd_ = 0;  // where the values must have ended
};

inline bool RowView::bit(const FieldPlace& place) const noexcept {
    return place.number < columns_ &&
           (u8(bytes_, mask_ + place.number / 8U) & (1U << (place.number % 8U))) != 0;
}

inline RowView::Found RowView::find(const FieldPlace& place, ByteView& to) const noexcept {
    if (!bit(place)) {
        return Found::Null;
    }
    if (place.fixed) {
        const std::size_t at = kFixedArea + place.at;
        if (at + place.length > dataEnd_) {
            return Found::Outside;
        }
        to = bytes_.subspan(at, place.length);
        return Found::Value;
    }
    if (place.at >= slots_) {
        return Found::Null;
    }
    const std::size_t at = mask_ - 4 - std::size_t{2} * place.at;
    const std::size_t begin = u16(bytes_, at);
    const std::size_t end = u16(bytes_, at - 2);
    if (begin < kFixedArea || begin > end || end > dataEnd_) {
        return Found::Outside;
    }
    to = bytes_.subspan(begin, end - begin);
    return Found::Value;
}

}  // namespace vl::jet
