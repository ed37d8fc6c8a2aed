// Expressions over rows.
#pragma once

#include "Ast.h"
#include "RowSource.h"

namespace vl::sql {

/// The value for the current row of `row`; `expr` is bound (`Scope`) to its shape. AND and OR stop
/// at the operand that decides. Throws `Error` (`ErrNo::TypeMismatch`, `ErrNo::Overflow`, or
/// `ErrNo::Syntax` for a LIKE pattern), naming the place in the statement.
Variant evaluate(const Expr& expr, const RowSource& row);

/// As `evaluate`, but what a money or numeric column holds stays the exact decimal text.
Variant exactValue(const Expr& expr, const RowSource& row);

/// Whether its value can differ from row to row; `expr` is bound.
bool hasColumns(const Expr& expr);

/// Whether WHERE keeps the current row: unknown is not kept. A null `where` keeps every row.
bool keeps(const Expr* where, const RowSource& row);

}  // namespace vl::sql
