// Statements of the database's SQL dialect, run on an open file. For users: docs/sql.md.
//
//   SELECT [ALL | DISTINCT | DISTINCTROW] [TOP n [PERCENT]] items FROM table [[AS] name]
//       [WHERE condition] [ORDER BY expression | place | alias [ASC | DESC], ...]
//   INSERT INTO table [(columns)] VALUES (expressions) | SELECT ...
//   UPDATE table [AS name] SET column = expression, ... [WHERE condition]
//   DELETE [* | table.*] FROM table [AS name] [WHERE condition]
//   CREATE TABLE table (column type [NOT NULL] [constraint], ..., [constraint (columns)], ...)
//       constraint: [CONSTRAINT name] PRIMARY KEY | UNIQUE
//   CREATE [UNIQUE] INDEX name ON table (column [ASC | DESC], ...)
//       [WITH PRIMARY | DISALLOW NULL | IGNORE NULL]
//   ALTER TABLE table ADD [COLUMN] column type ... | constraint (columns)
//   DROP TABLE table | DROP INDEX name ON table
//
// Items are `*`, `Table.*`, expressions with an optional AS; or all are COUNT(*), COUNT, MIN, MAX
// of one. A column is `Name`, `Table.Name` or `[any name]`. Expressions have, weakest first: OR,
// AND, NOT, comparisons, [NOT] LIKE, IN, BETWEEN, IS [NOT] NULL, &, + -, MOD, \ (whole numbers),
// * /, sign, ^. Texts stand in double or single quotes, a doubled quote inside is one; dates are
// #2026-11-15 14:30:00# or #11/15/2026 2:30 PM#, bytes 0x0A1B. Names are taken without regard to
// case. What a statement needs to know of a row is all that is decoded of it; an index serves for
// equality, ranges, IN and IS NULL. Rows that an index passes over are not looked at: what could
// not be computed of them is no error then. The engine's own tables are not changed.
//
// Errors: `Error` with line, column and what was expected. `ErrNo::Syntax` for what follows no
// rule; `ErrNo::Unsupported` for joins, other functions, and clauses named there;
// `ErrNo::NotFound` for tables, columns and parameters; `ErrNo::TypeMismatch` and
// `ErrNo::Overflow` for values; `ErrNo::Exists` for keys that are taken. Errors of the file engine
// come through as they are.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Variant.h"
#include "db/jet/Database.h"

namespace vl::sql {

/// A column of a result. COUNT gives `Long`; unnamed results are "Expr1000", "Expr1001" ...
struct Field {
    std::string name;
    jet::ColumnType type = jet::ColumnType::Text;
    std::uint16_t length = 0;  ///< of the column's values, as `jet::Column`; 0: of none
};

struct Result {
    bool isQuery = false;
    std::vector<Field> fields;
    std::vector<std::vector<Variant>> rows;  ///< as wide as `fields`
    std::int64_t affected = 0;  ///< rows that were inserted, changed or removed; 0 for a query
    std::string done;           ///< what CREATE, ALTER and DROP did, in words; else empty
};

/// A value from the program instead of one written into the statement. In the statement stands its
/// name, where no column has it (in brackets, bare, or with @ before it); or `?`, and these take
/// the values without a name in their order.
struct Parameter {
    std::string name;
    Variant value;
};

/// Whether a statement only reads, by its first word; one that cannot be read is no query.
/// Never throws.
bool isQuery(std::string_view statement) noexcept;

/// Runs one statement; a query's rows are all in memory afterwards. Rows come in scan order unless
/// ORDER BY says otherwise; with it, TOP also gives the rows that equal the last one.
/// A statement that changes the file is a transaction: after an error nothing has changed.
Result execute(jet::Database& db, std::string_view statement,
               std::span<const Parameter> parameters = {});

class ScanMemory;

/// The same for a statement that is asked again and again. `memory` serves one statement at a time.
Result execute(jet::Database& db, std::string_view statement, ScanMemory& memory);

/// What a query's row goes to.
using RowTaker =
    std::function<void(const std::vector<Field>& fields, const std::vector<Variant>& row)>;

/// The same, but the rows of a query go to `take` and are not in the result. They are those of one
/// state of the file, found as a whole before the first is given; while `take` looks at them others
/// may write. Beyond a few MiB they wait in a temporary file, except with ORDER BY, which keeps
/// them in memory, as DISTINCT keeps what it tells rows apart by. Throws `ErrNo::Io` also for that
/// file; what `take` throws ends the statement.
Result execute(jet::Database& db, std::string_view statement, const RowTaker& take,
               std::span<const Parameter> parameters = {});

}  // namespace vl::sql
