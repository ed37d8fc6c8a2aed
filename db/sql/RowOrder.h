// ORDER BY: what rows are sorted by, and their sorting.
#pragma once

#include "SelectList.h"

namespace vl::sql {

using Row = std::vector<Variant>;

struct OrderBy {
    const Expr* value;  ///< bound
    bool descending;
};

/// What `statement` sorts by, with aliases and places of its list looked up in `output`; binds the
/// rest. Empty without ORDER BY. Throws `Error`: `ErrNo::Syntax` for what is no order, and as
/// `Scope::bind`.
std::vector<OrderBy> orderOf(const Select& statement, const Scope& scope, const Output& output);

/// Moves the rows into the order of their keys, the values of `by`, and cuts behind `top`, but not
/// between equal rows. Rows with equal keys stay in the order that they had.
void arrange(std::vector<Row>& rows, const std::vector<Row>& keys, const std::vector<OrderBy>& by,
             std::optional<std::size_t> top);

}  // namespace vl::sql
