// Many new rows of one table.
#pragma once

#include <memory>
#include <optional>

#include "db/jet/Database.h"
#include "db/jet/Transaction.h"

namespace vl::jet {

/// Inserts rows, some thousands in one transaction: nobody reads the file before it is finished,
/// and memory has an end. `db` must outlive it, and have no transaction open. Throws what
/// `Table::insertCopy` throws; a row that is refused is not there, those before it are.
class RowBatch {
public:
    RowBatch(Database& db, Table table) : db_(db), table_(std::move(table)) {}

    /// One value for each of the table's columns.
    void add(const std::vector<Variant>& values);
    /// Without it the last rows are lost.
    void finish();

private:
    static constexpr int kMost = 2000;

    Database& db_;
    Table table_;
    std::unique_ptr<Transaction> change_;
    int rows_ = 0;
};

/// Where the definition of a table is. Throws `Error` (`ErrNo::NotFound`).
PageNo definitionPageOf(const Database& db, std::string_view table);

}  // namespace vl::jet
