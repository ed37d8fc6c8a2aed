// What a condition says of each column.
#pragma once

#include "Ast.h"
#include "IndexBounds.h"

namespace vl::sql {

/// What the conditions that are joined by AND say of one column.
struct Limits {
    std::optional<std::vector<Bounds>> equal;  ///< one of these
    bool isNull = false;
    std::optional<Variant> low;
    std::optional<Variant> high;
};

/// The limits that a condition, bound to `shape`, sets; both must outlive this. What it says beyond
/// them is left out.
class ColumnLimits {
public:
    ColumnLimits(const Expr& where, const TableShape& shape)
        : shape_(shape), limits_(shape.columns.size()) {
        see(where);
    }

    /// `column` is a place in the shape.
    const Limits& of(std::size_t column) const { return limits_[column]; }

private:
    void see(const Expr& condition);
    void seeComparison(const Expr& condition);
    void limit(std::size_t column, Op op, const Expr& expr);
    void seeList(const Expr& condition);

    const TableShape& shape_;
    std::vector<Limits> limits_;
};

}  // namespace vl::sql
