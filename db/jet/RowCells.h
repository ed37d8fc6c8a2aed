// All values of a row, decoded in one go.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateTime.h"

namespace vl::jet {

/// A value in the form that needs the least making.
struct Cell {
    enum class Kind : std::uint8_t {
        Null,
        Flag,   ///< of a yes/no column
        Whole,  ///< of a column of longs
        Date,
        Text,   ///< of a text or memo column
        Other,  ///< of a column of another type: `RowCursor::value` gives it
    };
    Kind kind = Kind::Null;
    bool flag = false;
    std::int32_t whole = 0;
    DateTime date;
    std::string_view text;
};

/// What `RowCursor::readAll` has read: the cells of a row, by column. Made once for many rows.
/// Texts are good until the next row is read into it, and until the cursor moves or goes.
class RowCells {
public:
    RowCells();
    ~RowCells();

    const Cell& operator[](std::size_t column) const noexcept { return cells_[column]; }
    std::size_t size() const noexcept { return cells_.size(); }

private:
    friend class RowCursor;
    struct Plan;  // of the table's columns
    std::unique_ptr<Plan> plan_;
    std::vector<Cell> cells_;
    std::vector<std::string> decoded_;  // by column: texts that do not stand in the row as they are
};

}  // namespace vl::jet
