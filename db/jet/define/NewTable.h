// What a table, a column or an index is to be like.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "db/jet/Types.h"

namespace vl::jet {

struct NewColumn {
    std::string name;
    ColumnType type = ColumnType::Text;
    /// The most that a text (UTF-16 units) or binary column (bytes) holds, at most 255; 0 means
    /// 255. The other types have their own.
    std::uint16_t length = 0;
    /// Of type `Long`: rows get the next number by themselves. One column of a table at most.
    bool autoNumber = false;
    /// Of type `Numeric`: all digits (at most 28; 0 means 18) and those behind the point.
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    /// Null is not allowed.
    bool required = false;
    /// Of a text or memo column: whether the empty text is allowed.
    bool allowZeroLength = true;
};

struct NewIndex {
    std::string name;
    /// Also unique and required.
    bool primary = false;
    bool unique = false;
    /// Rows whose columns here are all null have no entry.
    bool ignoreNulls = false;
    /// Null is not allowed in its columns.
    bool required = false;
    /// One to ten.
    std::vector<IndexColumn> columns;
};

}  // namespace vl::jet
