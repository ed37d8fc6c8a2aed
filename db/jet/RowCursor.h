// One pass over a table's rows, as they lie or as an index sorts them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/Variant.h"
#include "db/jet/Types.h"

namespace vl::jet {

class PageFile;
struct TableDefinition;

/// Keys from `from` to `to`, for a walk over a part of an index; empty: no end there. Each may be
/// the beginning of keys, and then means all of these.
struct KeyRange {
    KeyBytes from;
    KeyBytes to;
    bool withFrom = true;
    bool withTo = true;
};

/// Stands before the first row at the beginning. Rows come in the order of their original places,
/// of an index's keys, or of a list; the cursor holds one page, and sees it as it was when it came
/// to it: what is written to a row of that page meanwhile is not seen. Rows are not copied, values
/// only when asked for. As long as it lives no other copy of this program writes to the file
/// (`ReadGuard`). The `Database` must outlive it. Every method throws `Error` (`ErrNo::Corrupt`
/// with file and page, or `ErrNo::Io`), making one `ErrNo::Locked` too; a cursor that threw in
/// `next` stays where it is and throws again.
class RowCursor {
public:
    RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table);
    /// Over the rows that a tree of the table has entries of.
    RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table, std::size_t tree,
              KeyRange range);
    /// Over these rows, in this order.
    RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table,
              std::vector<RowId> rows);
    RowCursor(RowCursor&&) noexcept;
    RowCursor& operator=(RowCursor&&) noexcept;
    ~RowCursor();

    /// Moves to the next row; false behind the last one.
    bool next();

    /// A row that cannot be read, or all rows of a page.
    struct Unreadable {
        PageNo page = 0;
        std::optional<std::uint16_t> row;  ///< none: the whole page
    };
    /// After `next` threw `ErrNo::Corrupt`: what it could not read is passed over by the following
    /// `next`. None: it cannot be, since the cursor does not go over the rows as they lie.
    std::optional<Unreadable> passOver();

    // Of the current row, after `next` gave true.

    RowId id() const;
    /// Decodes that column of the row and nothing else; `column` counts `Table::columns()`. A memo
    /// or OLE value costs reading its pages.
    Variant value(std::size_t column) const;
    /// What `read` has found.
    enum class Read {
        Value,  ///< it is in the variable
        Null,   ///< the variable is as it was
        Other,  ///< the same, since the column's values are of another type: `value` gives them
    };
    /// The same as `value`, into a variable of the value's own type: nothing is made that is not
    /// kept.
    Read read(std::size_t column, bool& to) const;
    Read read(std::size_t column, std::int32_t& to) const;
    Read read(std::size_t column, DateTime& to) const;
    Read read(std::size_t column, std::string& to) const;
    /// A number that depends on every byte of the row, long values included, and on nothing else:
    /// as long as it is the same, so is the row. Decodes nothing; costs reading what it depends on.
    std::uint64_t fingerprint() const;

private:
    bool nextOfTable();
    bool nextOfIndex();
    bool nextOfList();
    bool moveTo(RowId id);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vl::jet
