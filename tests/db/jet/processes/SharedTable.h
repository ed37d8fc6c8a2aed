// What several processes write to one table, and what a reader may find there at any moment.
#pragma once

#include <map>
#include <string>

#include "db/jet/Database.h"

namespace vl::test {

/// Statement n of writer w puts one stamp into all rows of the table, n into the writer's own row,
/// inserts a row of its own and removes the one it inserted `kKept` statements before. So a reader
/// who sees half a statement, or a lost one, can tell.
class SharedTable {
public:
    static constexpr int kKept = 5;

    /// Makes the writer's row unless it is there; gives the number of his last statement.
    static int join(jet::Database& db, int writer);
    /// One statement.
    static void write(jet::Database& db, int writer, int number, int stamp);

    /// Reads everything; gives the last statement of each writer. Throws `std::logic_error`,
    /// saying what does not fit.
    static std::map<int, int> read(const jet::Database& db);
};

}  // namespace vl::test
