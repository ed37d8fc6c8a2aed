// One row's bytes, told apart into columns.
#pragma once

#include <optional>

#include "TableDefinition.h"

namespace vl::jet {

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

private:
    // Where in the row the mask's byte of a known column stands, and where a known fixed column.
    std::size_t maskAt(const Column& column) const noexcept;
    std::size_t fixedAt(const Column& column) const;
    [[noreturn]] void corrupt(const Column& column) const;

    ByteView bytes_;
    Origin origin_;
    std::uint16_t columns_ = 0;
    std::uint16_t slots_ = 0;
    std::size_t mask_ = 0;     // where the null mask begins
    std::size_t dataEnd_ = 0;  // where the values must have ended
};

}  // namespace vl::jet
