// Where rows come from: a table of a file, or of a test.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/Variant.h"
#include "db/jet/Types.h"

namespace vl::sql {

/// What names are looked up in.
struct TableShape {
    std::string name;
    std::vector<jet::Column> columns;
};

/// One pass over the rows of a table.
class RowSource {
public:
    virtual ~RowSource() = default;
    /// Moves to the next row, at first to the first one. False: there is none.
    virtual bool next() = 0;
    /// A column of the current row, by its place in the shape. Decoded when asked for.
    virtual Variant value(std::size_t column) const = 0;

protected:
    RowSource() = default;
    RowSource(const RowSource&) = default;
    RowSource& operator=(const RowSource&) = default;
};

}  // namespace vl::sql
