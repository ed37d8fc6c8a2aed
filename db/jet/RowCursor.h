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
class RowCells;
struct TableDefinition;

/// What was on a page of a table, with what its rows have on other pages (long values, rows that
/// have moved), for who looks at the table again: see `RowCursor::holds`.
struct PageMark {
    PageNo page = 0;
    std::uint64_t digest = 0;       ///< 0: nothing that anybody could know again
    std::vector<PageNo> elsewhere;  ///< the other pages
};

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

    // Page by page, over a table's rows as they lie only. A page that is passed by without asking
    // for its rows is not even read when its digest is known (`PageDigests`).

    /// Moves to the table's next page, in front of its first row; false behind the last page.
    bool nextPage();
    /// Moves to the next row of the page; false behind its last.
    bool nextOnPage();
    /// The page that `nextPage` came to.
    PageNo page() const;
    /// Whether the page has the same rows with the same values as when the mark was made of it.
    /// False for a mark of another page or file, and when the table's columns are others now.
    bool holds(const PageMark& mark) const;
    /// Of the page. One of whose rows cannot be read is never known again.
    PageMark mark();

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
    /// The same for all columns of the row at once. Throws for the first that cannot be read.
    void readAll(RowCells& to) const;
    /// A number that depends on every byte of the row, long values included, and on nothing else:
    /// as long as it is the same, so is the row. Decodes nothing; costs reading what it depends on.
    std::uint64_t fingerprint() const;

private:
    void openPage();
    std::uint64_t digestWith(std::uint64_t own, const std::vector<PageNo>& elsewhere) const;
    void addElsewhere(std::uint16_t slot, std::vector<PageNo>& pages) const;
    bool nextOfTable();
    bool nextOfIndex();
    bool nextOfList();
    bool moveTo(RowId id);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vl::jet
