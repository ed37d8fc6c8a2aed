// What the names of a statement mean.
#pragma once

#include <span>

#include "Ast.h"
#include "RowSource.h"
#include "Sql.h"

namespace vl::sql {

/// Refers to what it is made of. Without a table there are no columns: in VALUES.
class Scope {
public:
    explicit Scope(std::span<const Parameter> parameters) : parameters_(parameters) {}
    Scope(const TableShape& shape, const TableRef& table, std::span<const Parameter> parameters)
        : shape_(&shape), table_(&table), parameters_(parameters) {}

    /// The place of a column in the shape. Throws `Error` (`ErrNo::NotFound`, naming the place and
    /// the table) when there is none of that name, or the reference names another table.
    std::size_t column(const ColumnRef& ref) const;

    /// Whether there is such a column; what table it is said to be of does not count.
    bool has(const ColumnRef& ref) const { return find(ref).has_value(); }

    /// Makes `expr` the column at that place of the shape.
    void bindTo(Expr& expr, std::size_t place) const;

    /// Looks up every column once, before the scan, and puts the given values where parameters
    /// stand: `?`, and names that are no column but of which a value was given. Throws as
    /// `column`; `ErrNo::NotFound` for a parameter without a value. Null is allowed.
    void bind(Expr* expr) const;

    const TableShape& shape() const noexcept { return *shape_; }

private:
    std::optional<std::size_t> find(const ColumnRef& ref) const;
    void bindName(Expr& expr) const;
    const Variant* named(const ColumnRef& ref) const;
    const Variant& numbered(const Expr& expr) const;

    const TableShape* shape_ = nullptr;
    const TableRef* table_ = nullptr;
    std::span<const Parameter> parameters_;
};

}  // namespace vl::sql
