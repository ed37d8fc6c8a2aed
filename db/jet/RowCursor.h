// One pass over a table's rows.
#pragma once

#include <memory>

#include "base/Variant.h"
#include "db/jet/Types.h"

namespace vl::jet {

class PageFile;
struct TableDefinition;

/// Stands before the first row at the beginning. Rows come in the order of their original places;
/// the cursor holds one page, and sees it as it was when it came to it: what is written to a row
/// of that page meanwhile is not seen. Rows are not copied, values only when asked for.
/// The `Database` must outlive it. Every method throws `Error` (`ErrNo::Corrupt` with file and
/// page, or `ErrNo::Io`); a cursor that threw in `next` stays where it is and throws again.
class RowCursor {
public:
    RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table);
    RowCursor(RowCursor&&) noexcept;
    RowCursor& operator=(RowCursor&&) noexcept;
    ~RowCursor();

    /// Moves to the next row; false behind the last one.
    bool next();

    // Of the current row, after `next` gave true.

    RowId id() const;
    /// Decodes that column of the row and nothing else; `column` counts `Table::columns()`. A memo
    /// or OLE value costs reading its pages.
    Variant value(std::size_t column) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vl::jet
