// Random rows for any table, and what a table should hold after them.
#pragma once

#include <map>
#include <random>
#include <vector>

#include "ColumnRules.h"
#include "db/jet/Database.h"

namespace vl::test {

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t n);

/// A value that a column can hold, exactly as it will be read back; null now and then where the
/// column can be null.
Variant randomValue(Random& random, const jet::Column& column);

/// A table's rows as they should be. `table` must outlive it.
class Model {
public:
    using Row = std::vector<Variant>;
    using Rows = std::map<std::pair<jet::PageNo, std::uint16_t>, Row>;

    Model(const jet::Table& table, jet::ColumnRules rules);

    const Rows& rows() const { return rows_; }
    /// An existing row's place; there must be one.
    jet::RowId anyRow(Random& random) const;

    /// What the row would be with these columns changed.
    Row changed(const Row& row, std::span<const jet::Table::Change> changes) const;
    /// Whether the table refuses the row: a key that another one has, null or an empty text where
    /// none may be. Of a row that was there, what has not changed is not asked.
    bool refuses(const Row& row, const Row* before) const;

    void put(jet::RowId id, Row row);
    void remove(jet::RowId id);

    /// The table holds just these rows, by a scan and by each index.
    void expectSame() const;

private:
    jet::KeyBytes key(std::size_t index, const Row& row) const;
    bool allNull(std::size_t index, const Row& row) const;
    bool anyNull(std::size_t index, const Row& row) const;
    std::size_t column(const jet::IndexColumn& part) const;

    bool breaksRules(const Row& row, const Row* before) const;

    const jet::Table* table_;
    jet::ColumnRules rules_;
    Rows rows_;
    std::vector<std::map<jet::KeyBytes, int>> unique_;  // by index: how many rows have a key
};

}  // namespace vl::test
