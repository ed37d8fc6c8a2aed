// A table of an open file.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/Variant.h"
#include "db/jet/RowCursor.h"
#include "db/jet/Types.h"

namespace vl::jet {

struct ColumnRules;

/// The definition as it was when the table was asked for; copying is cheap. The `Database` must
/// outlive it. Every method that reads or writes throws `Error`.
class Table {
public:
    Table(PageFile& file, std::shared_ptr<const TableDefinition> definition);

    const std::string& name() const noexcept;
    /// In the order of creation. Positions here are what the other calls mean by a column.
    const std::vector<Column>& columns() const noexcept;
    const std::vector<Index>& indexes() const noexcept;
    /// What the definition says; some system tables hold a few rows more.
    std::uint32_t rowCount() const noexcept;

    /// Costs reading the table's usage map; rows are read as the cursor goes.
    RowCursor scan() const;

    /// The rows in the order of an index; `index` counts `indexes()`. Rows that it leaves out (all
    /// null, in one that ignores nulls) do not come. Costs a page for each level of its tree, then
    /// pages as the cursor goes: up to one a row. Descending columns have their values' keys
    /// complemented: there `range.from` is what the highest value gives.
    RowCursor indexScan(std::size_t index, KeyRange range = {}) const;
    /// The rows that such a scan would give, in its order, without reading them: an index that
    /// names rows which are not there is not found out. Costs the index's pages only.
    std::vector<RowId> indexRows(std::size_t index, KeyRange range = {}) const;
    /// These rows, in this order. The cursor throws `ErrNo::NotFound` where one is not there.
    RowCursor rows(std::vector<RowId> ids) const;
    /// The bytes by which that index sorts rows with these values: one for each of its columns, in
    /// its order, or for the first few only. Throws `Error`: `ErrNo::TypeMismatch` or
    /// `ErrNo::Overflow` for a value that no such column has, `ErrNo::Unsupported` for a text
    /// column that is sorted in another language's order.
    KeyBytes indexKey(std::size_t index, std::span<const Variant> values) const;

    using Change = std::pair<std::size_t, Variant>;  ///< column, new value
    // Rows are written inside an open `Transaction` (`ErrNo::Unexpected` without one), by a table
    // that is still what it was when it was asked for (`ErrNo::Unexpected`, too). What a call
    // refuses it refuses before anything is written. Of an error that comes later
    // (`ErrNo::Corrupt`, `ErrNo::Io`) nobody knows what it left: the transaction is then to be
    // taken back.

    /// A new row; columns that are not named are null, false, or the next autonumber. An autonumber
    /// that is given here raises those that follow. Throws `Error`: `ErrNo::TypeMismatch` for a
    /// value that is none of its column's type, or null or an empty text where none may be;
    /// `ErrNo::Overflow` for a value, key or row that is too long or too large; `ErrNo::Exists` for
    /// a key that a unique index has already; `ErrNo::Unsupported` for a text in a column that is
    /// sorted in another language's order.
    RowId insert(std::span<const Change> changes);

    /// The same with values that were read from another file's row: dates keep what they have
    /// beyond whole seconds, bit for bit.
    RowId insertCopy(std::span<const Change> changes);

    /// Writes columns of one row; a row that holds all of it already costs no write. Throws what
    /// `insert` throws; also `ErrNo::NotFound` when there is no such row, and `ErrNo::Unsupported`
    /// for an autonumber.
    void update(RowId id, std::span<const Change> changes);

    /// Throws `Error` (`ErrNo::NotFound`) when there is no such row.
    void remove(RowId id);

private:
    const ColumnRules& rules();

    PageFile* file_;
    std::shared_ptr<const TableDefinition> definition_;
    std::shared_ptr<const ColumnRules> rules_;  // null until the first write
};

}  // namespace vl::jet
