// The two ways of reading a row, against each other.
#pragma once

#include <vector>

#include <gtest/gtest.h>

#include "db/jet/RowCells.h"
#include "db/jet/RowCursor.h"

namespace vl::test {

inline bool hasCell(jet::ColumnType type) {
    using jet::ColumnType;
    return type == ColumnType::Boolean || type == ColumnType::Long || type == ColumnType::Date ||
           type == ColumnType::Text || type == ColumnType::Memo;
}

inline Variant valueOf(const jet::Cell& cell) {
    switch (cell.kind) {
        case jet::Cell::Kind::Flag:
            return cell.flag;
        case jet::Cell::Kind::Whole:
            return cell.whole;
        case jet::Cell::Kind::Date:
            return cell.date;
        case jet::Cell::Kind::Text:
            return cell.text;
        default:
            return Null{};
    }
}

/// All values of the current row at once are what each of them is alone. Throws as `readAll`.
inline void expectCells(const jet::RowCursor& row, const std::vector<jet::Column>& columns,
                        jet::RowCells& cells) {
    row.readAll(cells);
    ASSERT_EQ(cells.size(), columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (cells[i].kind == jet::Cell::Kind::Other) {
            ASSERT_FALSE(hasCell(columns[i].type)) << columns[i].name;
            continue;
        }
        Variant value;
        ASSERT_NO_THROW(value = row.value(i)) << columns[i].name;
        ASSERT_EQ(valueOf(cells[i]), value) << columns[i].name;
    }
}

}  // namespace vl::test
