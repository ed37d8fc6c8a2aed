// What statements work on: a table of a file, or of a test.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/Variant.h"
#include "db/jet/RowCursor.h"
#include "db/jet/Types.h"

namespace vl::sql {

/// What names are looked up in.
struct TableShape {
    std::string name;
    std::vector<jet::Column> columns;
    std::vector<jet::Index> indexes = {};
};

/// One pass over the rows of a table.
class RowSource {
public:
    virtual ~RowSource() = default;
    /// Moves to the next row, at first to the first one. False: there is none.
    virtual bool next() = 0;
    /// A column of the current row, by its place in the shape. Decoded when asked for.
    virtual Variant value(std::size_t column) const = 0;
    virtual jet::RowId id() const = 0;

protected:
    RowSource() = default;
    RowSource(const RowSource&) = default;
    RowSource& operator=(const RowSource&) = default;
};

/// The same page by page: see `jet::RowCursor`.
class PagedRows : public RowSource {
public:
    virtual bool nextPage() = 0;
    virtual bool nextOnPage() = 0;
    virtual jet::PageNo page() const = 0;
    virtual bool holds(const jet::PageMark& mark) const = 0;
    virtual jet::PageMark mark() = 0;
};

/// For expressions without columns: there is no row to look at.
class NoRow final : public RowSource {
public:
    bool next() override { return false; }
    Variant value(std::size_t) const override { return Null{}; }
    jet::RowId id() const override { return {}; }
};

/// Values of one row, by column.
using Changes = std::vector<std::pair<std::size_t, Variant>>;

/// A part of an index: rows whose values in its first columns lie between `from` and `to`, both
/// included. The two agree but for their last value, and one may be without its last: no end there.
struct IndexRange {
    std::size_t index = 0;  ///< in the shape
    std::vector<Variant> from;
    std::vector<Variant> to;
};

/// All methods throw `Error`.
class StoredTable {
public:
    virtual ~StoredTable() = default;

    virtual const TableShape& shape() const = 0;
    /// All rows, in the order of their places.
    virtual std::unique_ptr<RowSource> scan() const = 0;
    /// The same; null when the table does not lie on pages.
    virtual std::unique_ptr<PagedRows> pages() const { return nullptr; }
    /// These rows, in this order.
    virtual std::unique_ptr<RowSource> rows(std::vector<jet::RowId> ids) const = 0;
    /// The rows of a part of an index; others may be among them.
    virtual std::vector<jet::RowId> find(const IndexRange& range) const = 0;

    // Values are of their columns' types. What is not named in an insert gets what the column gives
    // by itself: a number of its own, false, or null.

    virtual void insert(const Changes& values) = 0;
    virtual void update(jet::RowId row, const Changes& values) = 0;
    virtual void remove(jet::RowId row) = 0;

protected:
    StoredTable() = default;
    StoredTable(const StoredTable&) = default;
    StoredTable& operator=(const StoredTable&) = default;
};

}  // namespace vl::sql
