// Expressions over rows.
#pragma once

#include "Ast.h"
#include "RowSource.h"

namespace vl::sql {

/// The place of a column in the shape. Throws `Error` (`ErrNo::NotFound`, naming the place and the
/// table) when there is none of that name, or the reference names another table.
std::size_t findColumn(const ColumnRef& ref, const TableShape& shape);

/// Looks up every column once, before the scan. Throws as `findColumn`. Null is allowed.
void bind(Expr* expr, const TableShape& shape);

/// The value for the current row of `row`; `expr` is bound to its shape. AND and OR stop at the
/// operand that decides. Throws `Error` (`ErrNo::TypeMismatch`, `ErrNo::Overflow`, or
/// `ErrNo::Syntax` for a LIKE pattern), naming the place in the statement.
Variant evaluate(const Expr& expr, const RowSource& row);

/// Whether WHERE keeps the current row: unknown is not kept. A null `where` keeps every row.
bool keeps(const Expr* where, const RowSource& row);

}  // namespace vl::sql
