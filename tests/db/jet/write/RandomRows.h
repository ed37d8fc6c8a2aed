// Random rows for any table, and what a table should hold after them.
#pragma once

#include <map>
#include <random>
#include <vector>

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

    explicit Model(const jet::Table& table);

    const Rows& rows() const { return rows_; }
    /// An existing row's place; there must be one.
    jet::RowId anyRow(Random& random) const;

    /// What the row would be with these columns changed.
    Row changed(const Row& row, std::span<const jet::Table::Change> changes) const;
    /// Whether an index refuses the row: a key that another one has, or null where none may be.
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

    const jet::Table* table_;
    Rows rows_;
    std::vector<std::map<jet::KeyBytes, int>> unique_;  // by index: how many rows have a key
};

}  // namespace vl::test
