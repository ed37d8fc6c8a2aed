// Rows of a table that come, change and go.
#pragma once

#include <span>

#include "ColumnRules.h"
#include "Counters.h"
#include "Field.h"
#include "RowPages.h"
#include "RowPlace.h"
#include "db/jet/Table.h"
#include "index/IndexKey.h"

namespace vl::jet {

/// One operation on a table, inside an open transaction. Everything that can be refused is refused
/// before the first page is written; what fails later leaves a half-made change that the
/// transaction's owner takes back. `file` and `table` must outlive it.
class RowWriter {
public:
    /// Throws `Error`: `ErrNo::Unexpected` unless a transaction is open, or when the table is not
    /// what `table` says any more.
    RowWriter(PageFile& file, const TableDefinition& table);

    RowId insert(std::span<const Table::Change> changes, const ColumnRules& rules,
                 Dates dates = Dates::WholeSeconds);
    void update(RowId id, std::span<const Table::Change> changes, const ColumnRules& rules);
    void remove(RowId id);

private:
    /// A tree's key before and after. Nothing where the tree has no entry of the row.
    struct KeyChange {
        std::size_t tree = 0;
        std::optional<KeyBytes> before;
        std::optional<KeyBytes> after;
    };
    /// A row as it is.
    struct Stored {
        RowPlace place;
        RowPointer home;  ///< its identity
        RowPointer body;  ///< where its bytes are; `home` unless it moved
        Fields fields;
    };

    Stored read(RowId id);
    void assign(Fields& fields, std::span<const Table::Change> changes, Dates dates);
    void number(Fields& fields);
    void checkRule(std::size_t column, const Field& field, const ColumnRules& rules);
    std::vector<Variant> partsOf(std::size_t tree, const Fields& fields, const Origin& origin);
    void planKey(std::vector<KeyChange>& plan, std::size_t tree, const Fields* before,
                 const Fields* after, std::optional<RowId> own);
    std::string indexLabel(std::size_t tree) const;
    void writeKeys(const std::vector<KeyChange>& plan, RowId id);
    std::vector<std::byte> settle(Fields& fields);
    void makeFit(Fields& fields);
    void rewrite(const Stored& row, ByteView bytes);
    RowPages pages();

    PageFile& file_;
    const TableDefinition& table_;
    Counters counters_;
};

}  // namespace vl::jet
